/*
 * Named appearances and their inheritance, which GNUstep 0.29 only stubs.
 *
 * +appearanceNamed: answers a new autoreleased appearance on each call
 * (compare names, not objects): NSAppearanceNameAqua,
 * NSAppearanceNameDarkAqua, NSAppearanceNameVibrantLight and
 * NSAppearanceNameVibrantDark are known, the two vibrant ones allow
 * vibrancy; any other name gets a plain (not vibrant, light) appearance of
 * that name, as AppKit does; nil and non-strings get nil. An appearance
 * that is set is kept (retained) as that object. currentAppearance is Aqua until
 * set, and is the drawing view's effective appearance while a view draws.
 * Views and windows answer an effectiveAppearance: their own, else the
 * superview's, else the window's, else the application's, else Aqua.
 * bestMatchFromAppearancesWithNames: answers the receiver's own name if
 * listed, else for a vibrant appearance the plain one it varies, else nil.
 * Appearances archive their name (keyed and old-style), and the
 * high-contrast name constants have AppKit's values.
 *
 * Not covered: appearances loaded from bundles, high-contrast appearances
 * themselves, named colours that change with the appearance (NSColor is
 * GNUstep's), key-value observing of effectiveAppearance.
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
