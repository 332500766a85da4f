/*
 * A settable backing scale for screens on GNUstep.
 *
 * GNUstep 0.29 answers 1.0 from -[NSScreen backingScaleFactor] whatever the
 * display (even with -GSScaleFactor 2). Tests and the gallery set an
 * override here so that code which renders at the screen's scale can be run
 * at 2x; every screen then answers it.
 *
 * Not covered: per-screen scales, the window's -backingScaleFactor,
 * -convertRectToBacking: and the scale-change notifications.
 */
#ifndef TALVO_PLATFORM_NSSCREEN_H
#define TALVO_PLATFORM_NSSCREEN_H

#import <AppKit/NSScreen.h>

@interface NSScreen (TalvoPlatformScale)
// The scale every screen answers; 0 (the default) gives GNUstep's own.
+ (void)talvo_setBackingScaleFactorOverride:(CGFloat)scale;
+ (CGFloat)talvo_backingScaleFactorOverride;
@end

#endif
