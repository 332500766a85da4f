/*
 * Named appearances and their inheritance, which GNUstep 0.29 only stubs.
 *
 * +appearanceNamed: answers one shared, autoreleased appearance for each of
 * NSAppearanceNameAqua, NSAppearanceNameDarkAqua,
 * NSAppearanceNameVibrantLight and NSAppearanceNameVibrantDark (the same
 * object on every call), and nil for any other name. currentAppearance is
 * Aqua until set, and is the drawing view's effective appearance while a
 * view draws. Views and windows answer an effectiveAppearance: their own,
 * else the superview's, else the window's, else the application's, else
 * Aqua. bestMatchFromAppearancesWithNames: picks a name by darkness and
 * vibrancy.
 *
 * Not covered: appearances loaded from bundles, the high-contrast names,
 * named colours that change with the appearance (NSColor is GNUstep's),
 * key-value observing of effectiveAppearance, archiving.
 */
#ifndef TALVO_PLATFORM_NSAPPEARANCE_PLATFORM_H
#define TALVO_PLATFORM_NSAPPEARANCE_PLATFORM_H

#import <AppKit/NSAppearance.h>
#import <AppKit/NSApplication.h>
#import <AppKit/NSView.h>
#import <AppKit/NSWindow.h>

NS_ASSUME_NONNULL_BEGIN

@protocol NSAppearanceCustomization <NSObject>
/** The appearance set on this object; nil means inherited. */
- (nullable NSAppearance *)appearance;
- (void)setAppearance:(nullable NSAppearance *)appearance;
/** The appearance in effect: the own one or the inherited one. */
- (NSAppearance *)effectiveAppearance;
@end

@interface NSAppearance (TalvoPlatform)
/** Whether the appearance is one of the dark ones (DarkAqua, VibrantDark). */
- (BOOL)talvo_isDark;
@end

@interface NSView (TalvoAppearance) <NSAppearanceCustomization>
@end

@interface NSWindow (TalvoAppearance) <NSAppearanceCustomization>
@end

@interface NSApplication (TalvoAppearance) <NSAppearanceCustomization>
@end

NS_ASSUME_NONNULL_END

#endif
