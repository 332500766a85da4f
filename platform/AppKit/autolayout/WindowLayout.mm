// NSWindow's Auto Layout API on GNUstep: layoutIfNeeded and
// updateConstraintsIfNeeded, and a window sized by its content's
// constraints: when the content's required constraints need more room than
// the window gives, the window grows to the content's fitting size as it
// lays out, and a resize below that size is limited to it.

#import <AppKit/AppKit.h>

#include <cmath>

#import "platform/AppKit/autolayout/TVLayoutState.h"
#import "platform/objc/TVRuntime.h"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

namespace {

// True while this file resizes a window itself.
bool fitting = false;

// The smallest content size the content's constraints accept, or zero when
// nothing in the window is placed by constraints. Worked out again only when
// something that can move a layout changed.
NSSize MinimumContentSize(NSWindow *window) {
  NSView *content = [window contentView];
  if (content == nil || !TVLayoutRootUsesConstraints(content)) {
    return NSZeroSize;
  }
  static NSView *cachedContent = nil;  // compared, never messaged
  static unsigned long long cachedGeneration = 0;
  static NSSize cachedSize = NSZeroSize;
  if (content == cachedContent && cachedGeneration == TVLayoutGeneration()) {
    return cachedSize;
  }
  NSSize size = TVFittingSize(content);
  if (!std::isfinite(size.width) || !std::isfinite(size.height)) {
    size = NSZeroSize;
  }
  cachedContent = content;
  cachedGeneration = TVLayoutGeneration();
  cachedSize = NSMakeSize(MAX(0, size.width), MAX(0, size.height));
  return cachedSize;
}

// Grows the content to its minimum size, keeping the window's top-left
// corner where it is; answers whether the window changed.
bool GrowToFit(NSWindow *window) {
  if (fitting) {
    return false;
  }
  NSSize minimum = MinimumContentSize(window);
  NSRect frame = [window frame];
  NSRect content = [window contentRectForFrameRect:frame];
  CGFloat width = MAX(NSWidth(content), std::ceil(minimum.width));
  CGFloat height = MAX(NSHeight(content), std::ceil(minimum.height));
  if (width == NSWidth(content) && height == NSHeight(content)) {
    return false;
  }
  content.origin.y -= height - NSHeight(content);
  content.size = NSMakeSize(width, height);
  fitting = true;
  [window setFrame:[window frameRectForContentRect:content] display:NO];
  fitting = false;
  return true;
}

}  // namespace

// The layout pass that runs before a window displays grows the window first,
// so that it lays out the size the content needs.
void TVGrowWindowToFit(NSWindow *window) { GrowToFit(window); }

#pragma mark - Public

@implementation NSWindow (TalvoPlatformLayout)

- (void)layoutIfNeeded {
  NSView *content = [self contentView];
  if (content == nil) {
    return;
  }
  // Grown first, so that the pass lays out the size the content needs.
  GrowToFit(self);
  TVRunLayoutPasses(content);
}

- (void)updateConstraintsIfNeeded {
  [[self contentView] updateConstraintsForSubtreeIfNeeded];
}

@end

#pragma mark - Hooks

static void (*originalSetFrameDisplay)(id, SEL, NSRect, BOOL) = NULL;

// A resize below what the content's constraints need is limited to it; the
// top edge stays where the caller put it.
static void TVWindowSetFrameDisplay(id window, SEL selector, NSRect frame, BOOL display) {
  if (!fitting) {
    NSSize minimum = MinimumContentSize(window);
    if (minimum.width > 0 || minimum.height > 0) {
      NSRect content = [window contentRectForFrameRect:frame];
      CGFloat width = MAX(NSWidth(content), std::ceil(minimum.width));
      CGFloat height = MAX(NSHeight(content), std::ceil(minimum.height));
      if (width != NSWidth(content) || height != NSHeight(content)) {
        content.origin.y -= height - NSHeight(content);
        content.size = NSMakeSize(width, height);
        frame = [window frameRectForContentRect:content];
      }
    }
  }
  originalSetFrameDisplay(window, selector, frame, display);
}

@interface _TVWindowLayoutHooks : NSObject
@end

@implementation _TVWindowLayoutHooks

+ (void)load {
  Class window = [NSWindow class];
  originalSetFrameDisplay = (void (*)(id, SEL, NSRect, BOOL))TVReplaceInstanceMethod(
      window, @selector(setFrame:display:), (IMP)TVWindowSetFrameDisplay);
}

@end
