/*
 * A true, and settable, backing scale for screens on GNUstep.
 *
 * GNUstep 0.29 answers 1.0 from -[NSScreen backingScaleFactor] whatever the
 * display. Here a screen answers its user-space scale, so 2 under
 * -GSScaleFactor 2. Tests and the gallery may also set an override, so that
 * code which renders at the screen's scale can be run at 2x in a 1x
 * process; every screen then answers it.
 *
 * Not covered: screens of different scales in one process (GNUstep has one
 * scale for all), -convertRectToBacking: on screens and the scale-change
 * notifications. The window's -backingScaleFactor is NSWindow+TalvoPlatform.h's.
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
