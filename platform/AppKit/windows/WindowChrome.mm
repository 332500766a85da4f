// The title bar settings, the standard buttons, the animation behaviour and
// a settable style mask of NSWindow, which GNUstep 0.29 lacks. Without a
// window manager GNUstep draws no title bar here, so the title bar settings
// are kept for the code that asks for them.

#import "platform/AppKit/windows/TVWindowPlatformState.h"

#import <GNUstepGUI/GSDisplayServer.h>

#import "platform/objc/TVRuntime.h"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

@interface NSObject (TalvoWindowServerStyle)
- (void)stylewindow:(unsigned int)style :(int)win;
@end

namespace {

// The window's frame view (GNUstep's decoration view), which draws what a
// title bar change shows.
void MarkFrameForDisplay(NSWindow *window) {
  NSView *frameView = [[window contentView] superview];
  [(frameView != nil ? frameView : [window contentView]) setNeedsDisplay:YES];
}

bool IsKnownAnimationBehavior(NSInteger behavior) {
  switch (behavior) {
    case NSWindowAnimationBehaviorDefault:
    case NSWindowAnimationBehaviorNone:
    case NSWindowAnimationBehaviorDocumentWindow:
    case NSWindowAnimationBehaviorUtilityWindow:
    case NSWindowAnimationBehaviorAlertPanel:
      return true;
    default:
      return false;
  }
}

// The style bit that enables each standard button.
NSUInteger StyleBitForButton(NSWindowButton kind) {
  switch (kind) {
    case NSWindowCloseButton:
      return NSWindowStyleMaskClosable;
    case NSWindowMiniaturizeButton:
      return NSWindowStyleMaskMiniaturizable;
    default:
      return NSWindowStyleMaskResizable;
  }
}

NSInteger screenUpdatesDisabled = 0;

BOOL (*originalMovableByBackground)(id, SEL) = NULL;

// A window the user may not move is not dragged by its background either.
BOOL TVIsMovableByWindowBackground(NSWindow *window, SEL selector) {
  _TVWindowPlatformState *state = TVWindowPlatformState(window, NO);
  if (state != nil && state->_immovable) {
    return NO;
  }
  return originalMovableByBackground(window, selector);
}

NSRect ScaledRect(NSRect rect, CGFloat factor) {
  return NSMakeRect(rect.origin.x * factor, rect.origin.y * factor, rect.size.width * factor,
                    rect.size.height * factor);
}

NSButton *(*originalStandardWindowButton)(id, SEL, NSWindowButton) = NULL;

// GNUstep answers nil while the backend draws the decorations (always,
// without a window manager). A titled window then gets buttons of its own,
// made once, kept out of the view tree, enabled as the style mask says.
NSButton *TVStandardWindowButton(NSWindow *window, SEL selector, NSWindowButton kind) {
  NSButton *button = originalStandardWindowButton(window, selector, kind);
  if (button != nil || kind > NSWindowZoomButton ||
      ([window styleMask] & NSWindowStyleMaskTitled) == 0) {
    return button;
  }
  _TVWindowPlatformState *state = TVWindowPlatformState(window, YES);
  NSNumber *key = [NSNumber numberWithInteger:kind];
  button = [state->_buttons objectForKey:key];
  if (button == nil) {
    @try {
      button = [NSWindow standardWindowButton:kind forStyleMask:[window styleMask]];
    } @catch (NSException *exception) {
      button = nil;
    }
    if (button == nil) {
      return nil;
    }
    if (state->_buttons == nil) {
      state->_buttons = [[NSMutableDictionary alloc] initWithCapacity:3];
    }
    [state->_buttons setObject:button forKey:key];
  }
  [button setEnabled:([window styleMask] & StyleBitForButton(kind)) != 0];
  return button;
}

// GNUstep gives no window a shadow unless asked; on AppKit a titled window
// has one from the start.
BOOL (*originalHasShadow)(id, SEL) = NULL;
void (*originalSetHasShadow)(id, SEL, BOOL) = NULL;

BOOL TVHasShadow(NSWindow *window, SEL selector) {
  _TVWindowPlatformState *state = TVWindowPlatformState(window, NO);
  if ((state == nil || !state->_shadowSet) && ([window styleMask] & NSWindowStyleMaskTitled) != 0) {
    return YES;
  }
  return originalHasShadow(window, selector);
}

void TVSetHasShadow(NSWindow *window, SEL selector, BOOL flag) {
  TVWindowPlatformState(window, YES)->_shadowSet = YES;
  originalSetHasShadow(window, selector, flag);
}

}  // namespace

@implementation NSWindow (TalvoPlatform)

#pragma mark - Lifecycle

+ (void)load {
  originalMovableByBackground = (BOOL(*)(id, SEL))TVReplaceInstanceMethod(
      self, @selector(isMovableByWindowBackground), (IMP)TVIsMovableByWindowBackground);
  originalStandardWindowButton = (NSButton * (*)(id, SEL, NSWindowButton)) TVReplaceInstanceMethod(
      self, @selector(standardWindowButton:), (IMP)TVStandardWindowButton);
  originalHasShadow =
      (BOOL(*)(id, SEL))TVReplaceInstanceMethod(self, @selector(hasShadow), (IMP)TVHasShadow);
  originalSetHasShadow = (void (*)(id, SEL, BOOL))TVReplaceInstanceMethod(
      self, @selector(setHasShadow:), (IMP)TVSetHasShadow);
}

#pragma mark - Public

- (BOOL)titlebarAppearsTransparent {
  _TVWindowPlatformState *state = TVWindowPlatformState(self, NO);
  return state != nil && state->_titlebarAppearsTransparent;
}

- (void)setTitlebarAppearsTransparent:(BOOL)transparent {
  TVWindowPlatformState(self, YES)->_titlebarAppearsTransparent = transparent ? YES : NO;
  MarkFrameForDisplay(self);
}

- (NSWindowTitleVisibility)titleVisibility {
  _TVWindowPlatformState *state = TVWindowPlatformState(self, NO);
  return state != nil ? state->_titleVisibility : NSWindowTitleVisible;
}

- (void)setTitleVisibility:(NSWindowTitleVisibility)visibility {
  if (visibility != NSWindowTitleVisible && visibility != NSWindowTitleHidden) {
    return;
  }
  TVWindowPlatformState(self, YES)->_titleVisibility = visibility;
  MarkFrameForDisplay(self);
}

- (NSWindowAnimationBehavior)animationBehavior {
  _TVWindowPlatformState *state = TVWindowPlatformState(self, NO);
  return state != nil ? state->_animationBehavior : NSWindowAnimationBehaviorDefault;
}

- (void)setAnimationBehavior:(NSWindowAnimationBehavior)behavior {
  if (IsKnownAnimationBehavior(behavior)) {
    TVWindowPlatformState(self, YES)->_animationBehavior = behavior;
  }
}

- (void)setStyleMask:(NSWindowStyleMask)styleMask {
  // GNUstep keeps the mask in this ivar and reads it everywhere (key
  // ability, frame computations); the server restyles the X window.
  static ptrdiff_t offset = -1;
  if (offset < 0) {
    Ivar ivar = class_getInstanceVariable([NSWindow class], "_styleMask");
    if (ivar == NULL) {
      return;
    }
    offset = ivar_getOffset(ivar);
  }
  NSUInteger *stored = (NSUInteger *)((char *)self + offset);
  if (*stored == styleMask) {
    return;
  }
  *stored = styleMask;
  GSDisplayServer *server = GSServerForWindow(self);
  if ([self windowNumber] > 0 && [server handlesWindowDecorations] &&
      [server respondsToSelector:@selector(stylewindow::)]) {
    [(id)server stylewindow:(unsigned int)styleMask :(int)[self windowNumber]];
  }
  // Buttons made for another mask follow the new one when asked again.
  _TVWindowPlatformState *state = TVWindowPlatformState(self, NO);
  if (state != nil && (styleMask & NSWindowStyleMaskTitled) == 0) {
    [state->_buttons removeAllObjects];
  }
  MarkFrameForDisplay(self);
}

- (BOOL)isMovable {
  _TVWindowPlatformState *state = TVWindowPlatformState(self, NO);
  return state == nil || !state->_immovable;
}

- (void)setMovable:(BOOL)movable {
  TVWindowPlatformState(self, YES)->_immovable = movable ? NO : YES;
}

- (BOOL)isSheet {
  for (NSWindow *window in [NSApp windows]) {
    if (window != self && [window attachedSheet] == self) {
      return YES;
    }
  }
  return NO;
}

- (NSRect)convertRectToBacking:(NSRect)rect {
  return ScaledRect(rect, [self backingScaleFactor]);
}

- (NSRect)convertRectFromBacking:(NSRect)rect {
  return ScaledRect(rect, 1.0 / [self backingScaleFactor]);
}

@end

void NSDisableScreenUpdates(void) { screenUpdatesDisabled++; }

void NSEnableScreenUpdates(void) {
  if (screenUpdatesDisabled > 0) {
    screenUpdatesDisabled--;
  }
}

NSInteger TVScreenUpdatesDisabledCount(void) { return screenUpdatesDisabled; }
