// AppKit window API that not every platform build has (GNUstep 0.29 lacks
// titlebar transparency, title visibility, animation behaviour, a style
// mask setter, movability, view appearances and screen-update batching).
// The toolkit asks for each by selector, so that a window without it is
// left as it is instead of raising.
#pragma once

#import <AppKit/AppKit.h>

@interface NSWindow (TVWindowPlatformOptional)
- (void)setTitlebarAppearsTransparent:(BOOL)flag;
- (void)setTitleVisibility:(NSInteger)visibility;
- (NSInteger)animationBehavior;
- (void)setAnimationBehavior:(NSInteger)behavior;
- (void)setStyleMask:(NSUInteger)styleMask;
- (void)setMovable:(BOOL)flag;
- (BOOL)isSheet;
- (id)accessibilityAttributeValue:(NSString *)attribute;
@end

@interface NSView (TVWindowPlatformOptional)
- (void)setAppearance:(NSAppearance *)appearance;
- (NSAppearance *)appearance;
@end

static inline BOOL TVResponds(id object, SEL selector) {
  return object != nil && [object respondsToSelector:selector];
}

static inline void TVSetTitlebarTransparent(NSWindow *window) {
  if (TVResponds(window, @selector(setTitlebarAppearsTransparent:))) {
    [window setTitlebarAppearsTransparent:YES];
  }
}

// 1 is NSWindowTitleHidden.
static inline void TVHideTitle(NSWindow *window) {
  if (TVResponds(window, @selector(setTitleVisibility:))) {
    [window setTitleVisibility:1];
  }
}

// 2 (NSWindowAnimationBehaviorNone) where the platform has no behaviours:
// it animates nothing when ordering windows in or out.
static inline NSInteger TVAnimationBehavior(NSWindow *window) {
  return TVResponds(window, @selector(animationBehavior)) ? [window animationBehavior] : 2;
}

static inline void TVSetAnimationBehavior(NSWindow *window, NSInteger behavior) {
  if (TVResponds(window, @selector(setAnimationBehavior:))) {
    [window setAnimationBehavior:behavior];
  }
}

static inline void TVAddStyleMask(NSWindow *window, NSUInteger bits) {
  if (TVResponds(window, @selector(setStyleMask:))) {
    [window setStyleMask:[window styleMask] | bits];
  }
}

static inline BOOL TVIsSheet(NSWindow *window) {
  return TVResponds(window, @selector(isSheet)) ? [window isSheet] : NO;
}

static inline CGFloat TVBackingScale(NSScreen *screen) {
  return TVResponds(screen, @selector(backingScaleFactor)) ? [screen backingScaleFactor] : 1.0;
}
