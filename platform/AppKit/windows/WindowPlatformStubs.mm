// First cut of the window API: declarations answered with defaults until
// the real implementations land.

#import <AppKit/AppKit.h>
#import <CoreGraphics/CoreGraphics.h>

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

@implementation NSWindow (TalvoPlatform)
- (BOOL)titlebarAppearsTransparent { return NO; }
- (void)setTitlebarAppearsTransparent:(BOOL)transparent {}
- (NSWindowTitleVisibility)titleVisibility { return NSWindowTitleVisible; }
- (void)setTitleVisibility:(NSWindowTitleVisibility)visibility {}
- (NSWindowAnimationBehavior)animationBehavior { return NSWindowAnimationBehaviorDefault; }
- (void)setAnimationBehavior:(NSWindowAnimationBehavior)behavior {}
- (void)setStyleMask:(NSWindowStyleMask)styleMask {}
- (NSRect)convertRectToBacking:(NSRect)rect { return rect; }
- (NSRect)convertRectFromBacking:(NSRect)rect { return rect; }
@end

@implementation NSAppearance (TalvoPlatform)
- (BOOL)talvo_isDark { return NO; }
@end

@implementation NSView (TalvoAppearance)
- (NSAppearance *)appearance { return nil; }
- (void)setAppearance:(NSAppearance *)appearance {}
- (NSAppearance *)effectiveAppearance { return [NSAppearance currentAppearance]; }
@end

@implementation NSWindow (TalvoAppearance)
- (NSAppearance *)appearance { return nil; }
- (void)setAppearance:(NSAppearance *)appearance {}
- (NSAppearance *)effectiveAppearance { return [NSAppearance currentAppearance]; }
@end

@implementation NSApplication (TalvoAppearance)
- (NSAppearance *)appearance { return nil; }
- (void)setAppearance:(NSAppearance *)appearance {}
- (NSAppearance *)effectiveAppearance { return [NSAppearance currentAppearance]; }
@end

@implementation NSVisualEffectView (TalvoPlatform)
- (BOOL)isEmphasized { return NO; }
- (void)setEmphasized:(BOOL)emphasized {}
@end
