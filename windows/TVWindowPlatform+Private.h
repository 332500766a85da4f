// AppKit window API that GNUstep lacks even with the platform layer
// (movability, sheets' own flag, screen-update batching, the older
// accessibility API), asked for by selector so that a window without it is
// left as it is instead of raising; and one-line helpers for the title bar
// settings the family applies.
#pragma once

#import <AppKit/AppKit.h>

@interface NSWindow (TVWindowPlatformOptional)
- (void)setMovable:(BOOL)flag;
- (BOOL)isSheet;
- (id)accessibilityAttributeValue:(NSString *)attribute;
@end

static inline BOOL TVResponds(id object, SEL selector) {
  return object != nil && [object respondsToSelector:selector];
}

static inline void TVSetTitlebarTransparent(NSWindow *window) {
  [window setTitlebarAppearsTransparent:YES];
}

static inline void TVHideTitle(NSWindow *window) {
  [window setTitleVisibility:NSWindowTitleHidden];
}

static inline NSInteger TVAnimationBehavior(NSWindow *window) {
  return [window animationBehavior];
}

static inline void TVSetAnimationBehavior(NSWindow *window, NSInteger behavior) {
  [window setAnimationBehavior:(NSWindowAnimationBehavior)behavior];
}

static inline void TVAddStyleMask(NSWindow *window, NSUInteger bits) {
  [window setStyleMask:[window styleMask] | bits];
}

static inline BOOL TVIsSheet(NSWindow *window) {
  if (TVResponds(window, @selector(isSheet))) {
    return [window isSheet];
  }
  // GNUstep has no flag: a sheet is a window attached to its parent.
  return [[window parentWindow] attachedSheet] == window;
}

// Whether the user asked for reduced motion: the effects then go straight
// to their end state.
static inline BOOL TVReduceMotion(void) {
  return [[NSWorkspace sharedWorkspace] accessibilityDisplayShouldReduceMotion];
}
