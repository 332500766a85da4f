// Tracking areas for GNUstep: a hook on -[NSWindow sendEvent:] checks the
// areas of the window's views against every motion event before GNUstep
// dispatches it; geometry changes mark the window, and one deferred pass per
// run-loop turn asks views for updateTrackingAreas and checks the areas
// again against the last mouse location.

#import <AppKit/AppKit.h>

#import "platform/objc/TVRuntime.h"

#include <unordered_map>
#include <unordered_set>
#include <vector>

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

namespace {

struct TVAreaState {
  NSTrackingArea *area;  // retained
  NSTrackingAreaOptions options;  // an area's options and owner never change
  id owner;
  bool inside;
  unsigned long long generation;  // of the window, when rectInWindow was taken
  NSRect rectInWindow;            // zero when the view cannot be hovered
};

struct TVViewTracking {
  std::vector<TVAreaState> areas;  // in the order added
  NSWindow *window = nil;          // not retained: the window the states refer to
};

struct TVWindowTracking {
  unsigned long long generation = 1;
  bool hasPoint = false;
  NSPoint lastPoint = NSZeroPoint;
  bool checkPending = false;
};

// Main thread only. Views and windows are not retained: views leave in their
// dealloc, windows in theirs.
std::unordered_map<NSView *, TVViewTracking> trackedViews;
std::unordered_map<NSWindow *, TVWindowTracking> trackedWindows;
std::unordered_set<NSTrackingArea *> liveAreas;
// Views whose visible rect updateTrackingAreas was last sent for.
std::unordered_map<NSView *, NSRect> updatedViews;
std::unordered_map<Class, bool> classOverridesUpdate;

IMP baseUpdateTrackingAreas = NULL;

enum class TVMotion { Moved, Dragged, Geometry };

}  // namespace

static void TVScheduleWindowCheck(NSWindow *window);

#pragma mark - Private

static BOOL TVClassOverridesUpdate(Class cls) {
  if (baseUpdateTrackingAreas == NULL) {
    baseUpdateTrackingAreas = class_getMethodImplementation([NSView class], @selector(updateTrackingAreas));
  }
  auto found = classOverridesUpdate.find(cls);
  if (found != classOverridesUpdate.end()) {
    return found->second;
  }
  IMP imp = class_getMethodImplementation(cls, @selector(updateTrackingAreas));
  bool overrides = imp != baseUpdateTrackingAreas;
  classOverridesUpdate.emplace(cls, overrides);
  return overrides;
}

static BOOL TVAreaIsActive(NSTrackingAreaOptions options, NSView *view, NSWindow *window) {
  if (options & NSTrackingActiveAlways) {
    return YES;
  }
  if (options & NSTrackingActiveInKeyWindow) {
    return [window isKeyWindow];
  }
  if (options & NSTrackingActiveInActiveApp) {
    return [NSApp isActive];
  }
  if (options & NSTrackingActiveWhenFirstResponder) {
    return [NSApp isActive] && [window firstResponder] == view;
  }
  return NO;
}

// The area's hoverable rectangle in window coordinates: the area's rect (or
// the view's visible rect) within what of the view is visible.
static NSRect TVAreaRectInWindow(NSTrackingArea *area, NSView *view) {
  if ([view isHiddenOrHasHiddenAncestor]) {
    return NSZeroRect;
  }
  NSRect visible = [view visibleRect];
  NSRect rect = ([area options] & NSTrackingInVisibleRect) ? visible
                                                           : NSIntersectionRect([area rect], visible);
  if (NSIsEmptyRect(rect)) {
    return NSZeroRect;
  }
  return [view convertRect:rect toView:nil];
}

namespace {
struct TVPendingMessage {
  id owner;
  SEL selector;
  NSEvent *event;
};
}  // namespace

// Checks every area of `window`'s views against `point` and sends what
// changed: exits first, then entries and cursor updates, then mouse moves.
static void TVCheckAreas(NSWindow *window, NSPoint point, TVMotion motion, NSEvent *event) {
  auto windowState = trackedWindows.find(window);
  if (windowState == trackedWindows.end()) {
    return;
  }
  unsigned long long generation = windowState->second.generation;
  std::vector<TVPendingMessage> exits, entries, moves;
  NSInteger windowNumber = [window windowNumber];
  NSEventModifierFlags modifiers = event != nil ? [event modifierFlags] : 0;
  NSTimeInterval timestamp = event != nil ? [event timestamp] : [[NSProcessInfo processInfo] systemUptime];

  for (auto &entry : trackedViews) {
    NSView *view = entry.first;
    if ([view window] != window) {
      continue;
    }
    for (TVAreaState &state : entry.second.areas) {
      NSTrackingArea *area = state.area;
      NSTrackingAreaOptions options = state.options;
      if (motion == TVMotion::Dragged && !(options & NSTrackingEnabledDuringMouseDrag)) {
        continue;
      }
      if (state.generation != generation) {
        state.rectInWindow = TVAreaRectInWindow(area, view);
        state.generation = generation;
      }
      bool inside = NSPointInRect(point, state.rectInWindow) && TVAreaIsActive(options, view, window);
      id owner = state.owner;
      if (inside != state.inside) {
        state.inside = inside;
        if (options & NSTrackingMouseEnteredAndExited) {
          NSEvent *crossing = [NSEvent enterExitEventWithType:inside ? NSMouseEntered : NSMouseExited
                                                     location:point
                                                modifierFlags:modifiers
                                                    timestamp:timestamp
                                                 windowNumber:windowNumber
                                                      context:nil
                                                  eventNumber:0
                                               trackingNumber:(NSInteger)(intptr_t)area
                                                     userData:(void *)[area userInfo]];
          SEL selector = inside ? @selector(mouseEntered:) : @selector(mouseExited:);
          (inside ? entries : exits).push_back({owner, selector, crossing});
        }
        if (inside && (options & NSTrackingCursorUpdate)) {
          NSEvent *update = [NSEvent enterExitEventWithType:NSCursorUpdate
                                                   location:point
                                              modifierFlags:modifiers
                                                  timestamp:timestamp
                                               windowNumber:windowNumber
                                                    context:nil
                                                eventNumber:0
                                             trackingNumber:(NSInteger)(intptr_t)area
                                                   userData:(void *)[area userInfo]];
          entries.push_back({owner, @selector(cursorUpdate:), update});
        }
      }
      if (inside && motion == TVMotion::Moved && (options & NSTrackingMouseMoved)) {
        moves.push_back({owner, @selector(mouseMoved:), event});
      }
    }
  }
  if (exits.empty() && entries.empty() && moves.empty()) {
    return;
  }
  // Owners may add or remove areas, or release views, while they are told:
  // the messages were collected first (their events are autoreleased).
  for (auto *list : {&exits, &entries, &moves}) {
    for (TVPendingMessage &message : *list) {
      if ([message.owner respondsToSelector:message.selector]) {
        [message.owner performSelector:message.selector withObject:message.event];
      }
    }
  }
}

// Sends updateTrackingAreas to the views of `window` whose visible rect
// changed (or that are new to the window), then checks the areas against the
// last known mouse location.
static void TVRunWindowCheck(NSWindow *window) {
  auto found = trackedWindows.find(window);
  if (found == trackedWindows.end()) {
    return;
  }
  found->second.checkPending = false;
  NSView *root = [window contentView];
  while ([root superview] != nil) {
    root = [root superview];
  }
  if (root != nil) {
    NSMutableArray *stack = [NSMutableArray arrayWithObject:root];
    NSMutableArray *toUpdate = [NSMutableArray array];
    while ([stack count] > 0) {
      NSView *view = [stack lastObject];
      [stack removeLastObject];
      [stack addObjectsFromArray:[view subviews]];
      if (!TVClassOverridesUpdate(object_getClass(view)) && trackedViews.count(view) == 0) {
        continue;
      }
      NSRect visible = [view convertRect:[view visibleRect] toView:nil];
      auto previous = updatedViews.find(view);
      if (previous != updatedViews.end() && NSEqualRects(previous->second, visible)) {
        continue;
      }
      updatedViews[view] = visible;
      [toUpdate addObject:view];
    }
    for (NSView *view in toUpdate) {
      if ([view window] == window) {
        [view updateTrackingAreas];
      }
    }
  }
  found = trackedWindows.find(window);
  if (found != trackedWindows.end() && found->second.hasPoint) {
    found->second.generation++;
    TVCheckAreas(window, found->second.lastPoint, TVMotion::Geometry, nil);
  }
}

@interface _TVTrackingCheck : NSObject
@end

@implementation _TVTrackingCheck
- (void)runForWindow:(NSValue *)pointer {
  // The window is not retained: it is checked only if still known here
  // (a window leaves in its dealloc). Its number may not exist yet.
  NSWindow *window = (NSWindow *)[pointer pointerValue];
  if (trackedWindows.count(window) != 0) {
    TVRunWindowCheck(window);
  }
}
@end

static void TVScheduleWindowCheck(NSWindow *window) {
  if (window == nil) {
    return;
  }
  TVWindowTracking &state = trackedWindows[window];
  state.generation++;
  if (state.checkPending) {
    return;
  }
  state.checkPending = true;
  static _TVTrackingCheck *checker = [_TVTrackingCheck new];
  NSArray *modes = @[ NSDefaultRunLoopMode, NSEventTrackingRunLoopMode, NSModalPanelRunLoopMode ];
  [[NSRunLoop currentRunLoop] performSelector:@selector(runForWindow:)
                                       target:checker
                                     argument:[NSValue valueWithPointer:window]
                                        order:0
                                        modes:modes];
}

#pragma mark - Hooks

static void (*originalWindowSendEvent)(id, SEL, id) = NULL;
static void (*originalWindowDealloc)(id, SEL) = NULL;
static void (*originalViewDealloc)(id, SEL) = NULL;
static void (*originalViewDidMoveToWindow)(id, SEL) = NULL;
static void (*originalSetFrame)(id, SEL, NSRect) = NULL;
static void (*originalSetFrameOrigin)(id, SEL, NSPoint) = NULL;
static void (*originalSetFrameSize)(id, SEL, NSSize) = NULL;
static void (*originalSetBounds)(id, SEL, NSRect) = NULL;
static void (*originalSetBoundsOrigin)(id, SEL, NSPoint) = NULL;
static void (*originalSetBoundsSize)(id, SEL, NSSize) = NULL;
static void (*originalSetHidden)(id, SEL, BOOL) = NULL;
static id (*originalAreaInit)(id, SEL, NSRect, NSTrackingAreaOptions, id, id) = NULL;

static void TVWindowSendEvent(id receiver, SEL selector, id argument) {
  NSWindow *window = receiver;
  NSEvent *event = argument;
  NSEventType type = [event type];
  if (type == NSMouseMoved || type == NSLeftMouseDragged || type == NSRightMouseDragged ||
      type == NSOtherMouseDragged) {
    auto found = trackedWindows.find(window);
    if (found != trackedWindows.end()) {
      NSPoint point = [event locationInWindow];
      found->second.hasPoint = true;
      found->second.lastPoint = point;
      TVCheckAreas(window, point, type == NSMouseMoved ? TVMotion::Moved : TVMotion::Dragged, event);
    }
  }
  originalWindowSendEvent(window, selector, event);
}

static void TVWindowDealloc(id receiver, SEL selector) {
  NSWindow *window = receiver;
  trackedWindows.erase(window);
  for (auto &entry : trackedViews) {
    if (entry.second.window == window) {
      entry.second.window = nil;
    }
  }
  originalWindowDealloc(window, selector);
}

static void TVViewDealloc(id receiver, SEL selector) {
  NSView *view = receiver;
  auto found = trackedViews.find(view);
  if (found != trackedViews.end()) {
    std::vector<TVAreaState> areas;
    areas.swap(found->second.areas);
    trackedViews.erase(found);
    for (TVAreaState &state : areas) {
      liveAreas.erase(state.area);
      [state.area release];
    }
  }
  updatedViews.erase(view);
  originalViewDealloc(view, selector);
}

static void TVMarkGeometry(NSView *view) {
  NSWindow *window = [view window];
  if (window != nil) {
    TVScheduleWindowCheck(window);
  }
}

static void TVViewDidMoveToWindow(id receiver, SEL selector) {
  NSView *view = receiver;
  originalViewDidMoveToWindow(view, selector);
  NSWindow *window = [view window];
  auto found = trackedViews.find(view);
  if (found != trackedViews.end() && found->second.window != window) {
    // In a new window nothing is inside yet (unless assumed so).
    for (TVAreaState &state : found->second.areas) {
      state.inside = (state.options & NSTrackingAssumeInside) != 0;
    }
    found->second.window = window;
  }
  updatedViews.erase(view);
  TVMarkGeometry(view);
}

static void TVSetFrame(id view, SEL selector, NSRect frame) {
  originalSetFrame(view, selector, frame);
  TVMarkGeometry(view);
}
static void TVSetFrameOrigin(id view, SEL selector, NSPoint origin) {
  originalSetFrameOrigin(view, selector, origin);
  TVMarkGeometry(view);
}
static void TVSetFrameSize(id view, SEL selector, NSSize size) {
  originalSetFrameSize(view, selector, size);
  TVMarkGeometry(view);
}
static void TVSetBounds(id view, SEL selector, NSRect bounds) {
  originalSetBounds(view, selector, bounds);
  TVMarkGeometry(view);
}
static void TVSetBoundsOrigin(id view, SEL selector, NSPoint origin) {
  originalSetBoundsOrigin(view, selector, origin);
  TVMarkGeometry(view);
}
static void TVSetBoundsSize(id view, SEL selector, NSSize size) {
  originalSetBoundsSize(view, selector, size);
  TVMarkGeometry(view);
}
static void TVSetHidden(id view, SEL selector, BOOL hidden) {
  originalSetHidden(view, selector, hidden);
  TVMarkGeometry(view);
}

// GNUstep's initialiser retains the old (nil) userInfo instead of the new.
static id TVAreaInit(id area, SEL selector, NSRect rect, NSTrackingAreaOptions options, id owner,
                     id userInfo) {
  area = originalAreaInit(area, selector, rect, options, owner, userInfo);
  if (area != nil) {
    static Ivar slot = class_getInstanceVariable([NSTrackingArea class], "_userInfo");
    id old = object_getIvar(area, slot);
    if (old != userInfo) {
      object_setIvar(area, slot, [userInfo copy]);
      [old release];
    }
  }
  return area;
}

@interface _TVTrackingInstaller : NSObject
@end

@implementation _TVTrackingInstaller
+ (void)load {
  // The classes are initialised before their methods change (the runtime
  // shares one dispatch table among classes not yet initialised), inside a
  // pool of its own: none exists yet.
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  Class view = [NSView class];
  Class window = [NSWindow class];
  Class area = [NSTrackingArea class];
  originalWindowSendEvent = (void (*)(id, SEL, id))TVReplaceInstanceMethod(
      window, @selector(sendEvent:), (IMP)TVWindowSendEvent);
  originalWindowDealloc = (void (*)(id, SEL))TVReplaceInstanceMethod(
      window, @selector(dealloc), (IMP)TVWindowDealloc);
  originalViewDealloc =
      (void (*)(id, SEL))TVReplaceInstanceMethod(view, @selector(dealloc), (IMP)TVViewDealloc);
  originalViewDidMoveToWindow = (void (*)(id, SEL))TVReplaceInstanceMethod(
      view, @selector(_viewDidMoveToWindow), (IMP)TVViewDidMoveToWindow);
  originalSetFrame = (void (*)(id, SEL, NSRect))TVReplaceInstanceMethod(
      view, @selector(setFrame:), (IMP)TVSetFrame);
  originalSetFrameOrigin = (void (*)(id, SEL, NSPoint))TVReplaceInstanceMethod(
      view, @selector(setFrameOrigin:), (IMP)TVSetFrameOrigin);
  originalSetFrameSize = (void (*)(id, SEL, NSSize))TVReplaceInstanceMethod(
      view, @selector(setFrameSize:), (IMP)TVSetFrameSize);
  originalSetBounds = (void (*)(id, SEL, NSRect))TVReplaceInstanceMethod(
      view, @selector(setBounds:), (IMP)TVSetBounds);
  originalSetBoundsOrigin = (void (*)(id, SEL, NSPoint))TVReplaceInstanceMethod(
      view, @selector(setBoundsOrigin:), (IMP)TVSetBoundsOrigin);
  originalSetBoundsSize = (void (*)(id, SEL, NSSize))TVReplaceInstanceMethod(
      view, @selector(setBoundsSize:), (IMP)TVSetBoundsSize);
  originalSetHidden = (void (*)(id, SEL, BOOL))TVReplaceInstanceMethod(
      view, @selector(setHidden:), (IMP)TVSetHidden);
  originalAreaInit = (id(*)(id, SEL, NSRect, NSTrackingAreaOptions, id, id))
      TVReplaceInstanceMethod(area, @selector(initWithRect:options:owner:userInfo:),
                              (IMP)TVAreaInit);
  [pool drain];
}
@end

#pragma mark - Public

@implementation NSView (TalvoTracking)

- (void)addTrackingArea:(NSTrackingArea *)trackingArea {
  if (![trackingArea isKindOfClass:[NSTrackingArea class]] || liveAreas.count(trackingArea) != 0) {
    return;
  }
  TVViewTracking &tracking = trackedViews[self];
  if (tracking.window != [self window]) {
    tracking.window = [self window];
  }
  NSTrackingAreaOptions options = [trackingArea options];
  bool assumeInside = (options & NSTrackingAssumeInside) != 0;
  tracking.areas.push_back(
      {[trackingArea retain], options, [trackingArea owner], assumeInside, 0, NSZeroRect});
  liveAreas.insert(trackingArea);
  if ([self window] != nil) {
    trackedWindows[[self window]];  // the window's motion events are checked from now on
  }
}

- (void)removeTrackingArea:(NSTrackingArea *)trackingArea {
  auto found = trackedViews.find(self);
  if (found == trackedViews.end()) {
    return;
  }
  std::vector<TVAreaState> &areas = found->second.areas;
  for (auto it = areas.begin(); it != areas.end(); ++it) {
    if (it->area == trackingArea) {
      areas.erase(it);
      liveAreas.erase(trackingArea);
      if (areas.empty()) {
        trackedViews.erase(found);
      }
      [trackingArea release];
      return;
    }
  }
}

- (NSArray *)trackingAreas {
  auto found = trackedViews.find(self);
  if (found == trackedViews.end()) {
    return @[];
  }
  NSMutableArray *areas = [NSMutableArray arrayWithCapacity:found->second.areas.size()];
  for (TVAreaState &state : found->second.areas) {
    [areas addObject:state.area];
  }
  return areas;
}

- (void)updateTrackingAreas {
}

@end

@implementation NSEvent (TalvoTracking)

- (NSTrackingArea *)trackingArea {
  NSEventType type = [self type];
  if (type != NSMouseEntered && type != NSMouseExited && type != NSCursorUpdate) {
    return nil;
  }
  NSTrackingArea *candidate = (NSTrackingArea *)(intptr_t)[self trackingNumber];
  return liveAreas.count(candidate) != 0 ? candidate : nil;
}

@end
