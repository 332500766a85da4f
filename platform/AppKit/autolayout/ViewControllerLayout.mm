// NSViewController's part in Auto Layout: the updateViewConstraints,
// viewWillLayout and viewDidLayout callbacks GNUstep lacks, and the lookup
// from a view to the controller whose view it is, which the layout passes
// use to send them.
//
// The lookup is a side table from view to controller, weak both ways: a
// controller's view is recorded when it is set (setView:, which nib
// outlets also go through) or first answered by -view (a loadView override
// that writes the ivar itself), and forgotten when the controller lets the
// view go, when the controller dies, or when the view dies.

#import <AppKit/AppKit.h>

#include <unordered_map>

#import "platform/AppKit/autolayout/TVLayoutAnchorSupport.h"
#import "platform/AppKit/autolayout/TVLayoutState.h"
#import "platform/objc/TVRuntime.h"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

namespace {

std::unordered_map<NSView *, NSViewController *> *controllers =
    new std::unordered_map<NSView *, NSViewController *>();

NSView *ViewIvar(NSViewController *controller) {
  static Ivar slot = class_getInstanceVariable([NSViewController class], "view");
  return object_getIvar(controller, slot);
}

void Forget(NSViewController *controller, NSView *view) {
  auto found = controllers->find(view);
  if (found != controllers->end() && found->second == controller) {
    controllers->erase(found);
  }
}

// A view has one controller: the last one given it.
void Record(NSViewController *controller, NSView *view) {
  if (view == nil) {
    return;
  }
  TVInstallViewLifetimeHook();
  (*controllers)[view] = controller;
}

}  // namespace

NSViewController *TVViewControllerForView(NSView *view) {
  if (view == nil) {
    return nil;
  }
  auto found = controllers->find(view);
  if (found == controllers->end()) {
    return nil;
  }
  // The controller may have let the view go by writing its ivar directly.
  if (ViewIvar(found->second) != view) {
    controllers->erase(found);
    return nil;
  }
  return found->second;
}

void TVForgetViewControllerOfView(NSView *view) { controllers->erase(view); }

#pragma mark - Replaced GNUstep methods

static void (*originalSetView)(id, SEL, NSView *) = NULL;
static NSView *(*originalView)(id, SEL) = NULL;
static void (*originalLoadView)(id, SEL) = NULL;
static void (*originalControllerDealloc)(id, SEL) = NULL;

static void TVControllerSetView(NSViewController *controller, SEL selector, NSView *view) {
  NSView *old = ViewIvar(controller);
  originalSetView(controller, selector, view);
  NSView *now = ViewIvar(controller);
  if (old != now) {
    Forget(controller, old);
  }
  Record(controller, now);
}

static NSView *TVControllerView(NSViewController *controller, SEL selector) {
  NSView *view = originalView(controller, selector);
  if (view != nil && TVViewControllerForView(view) != controller) {
    Record(controller, view);
  }
  return view;
}

static void TVControllerLoadView(NSViewController *controller, SEL selector) {
  originalLoadView(controller, selector);
  Record(controller, ViewIvar(controller));
}

static void TVControllerDealloc(NSViewController *controller, SEL selector) {
  Forget(controller, ViewIvar(controller));
  originalControllerDealloc(controller, selector);
}

#pragma mark - Public

@implementation NSViewController (TalvoPlatformLayout)

// AppKit reaches a view's updateConstraints through its controller; here
// the update pass has already sent it when it sends this, so the default
// only updates a view still marked as needing it (a direct call).
- (void)updateViewConstraints {
  NSView *ownView = ViewIvar(self);
  if (ownView != nil && [ownView needsUpdateConstraints]) {
    [ownView updateConstraints];
  }
}

- (void)viewWillLayout {
}

- (void)viewDidLayout {
}

@end

#pragma mark - Hooks

@interface _TVViewControllerLayoutHooks : NSObject
@end

@implementation _TVViewControllerLayoutHooks

+ (void)load {
  Class controller = [NSViewController class];
  originalSetView = (void (*)(id, SEL, NSView *))TVReplaceInstanceMethod(
      controller, @selector(setView:), (IMP)TVControllerSetView);
  originalView =
      (NSView * (*)(id, SEL)) TVReplaceInstanceMethod(controller, @selector(view), (IMP)TVControllerView);
  originalLoadView = (void (*)(id, SEL))TVReplaceInstanceMethod(controller, @selector(loadView),
                                                                (IMP)TVControllerLoadView);
  originalControllerDealloc = (void (*)(id, SEL))TVReplaceInstanceMethod(
      controller, @selector(dealloc), (IMP)TVControllerDealloc);
}

@end
