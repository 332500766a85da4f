// Window levels and child windows without a window manager: GNUstep
// stacks windows in the order they were ordered in, whatever their level,
// and leaves child windows where they are. After a window is ordered in
// (or its level or children change) the stack is put back in order: by
// level, each child right above its parent; children move with their
// parent, whether moved by code or by the server.

#import "platform/AppKit/windows/TVWindowServer.h"

#import "platform/objc/TVRuntime.h"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

namespace {

bool restacking = false;

// A window's parent when the parent is on screen too; a child of a hidden
// parent is stacked as a window of its own.
NSWindow *VisibleParent(NSWindow *window, NSArray *stack) {
  NSWindow *parent = [window parentWindow];
  return (parent != nil && [stack indexOfObjectIdenticalTo:parent] != NSNotFound) ? parent : nil;
}

// Appends `window` and then its children (in their present order), so that
// each child sits above its parent and above the parent's earlier children.
void AppendWithChildren(NSWindow *window, NSArray *stack, NSMutableArray *order) {
  [order addObject:window];
  for (NSWindow *candidate in stack) {
    if (VisibleParent(candidate, stack) == window) {
      AppendWithChildren(candidate, stack, order);
    }
  }
}

// The order the stack should have, bottom to top: top-level windows sorted
// by level (a stable sort keeps the present order within a level), each
// followed by its children.
NSArray *WantedOrder(NSArray *stack) {
  NSMutableArray *topLevel = [NSMutableArray array];
  for (NSWindow *window in stack) {
    if (VisibleParent(window, stack) == nil) {
      [topLevel addObject:window];
    }
  }
  NSArray *sorted = [topLevel sortedArrayWithOptions:NSSortStable
                                     usingComparator:^NSComparisonResult(id a, id b) {
                                       NSInteger la = [a level], lb = [b level];
                                       return la < lb   ? NSOrderedAscending
                                              : la > lb ? NSOrderedDescending
                                                        : NSOrderedSame;
                                     }];
  NSMutableArray *order = [NSMutableArray arrayWithCapacity:[stack count]];
  for (NSWindow *window in sorted) {
    AppendWithChildren(window, stack, order);
  }
  return order;
}

// Moves windows on the server until the stack matches the wanted order;
// only windows found below their wanted lower neighbour move.
void Restack() {
  if (restacking) {
    return;
  }
  restacking = true;
  @try {
    NSMutableArray *stack = [NSMutableArray arrayWithArray:TVWindowsInStackingOrder()];
    NSArray *wanted = WantedOrder(stack);
    for (NSUInteger i = 1; i < [wanted count]; i++) {
      NSWindow *lower = [wanted objectAtIndex:i - 1];
      NSWindow *window = [wanted objectAtIndex:i];
      NSUInteger lowerIndex = [stack indexOfObjectIdenticalTo:lower];
      NSUInteger index = [stack indexOfObjectIdenticalTo:window];
      if (index == lowerIndex + 1) {
        continue;
      }
      TVOrderWindowAbove(window, lower);
      [window retain];
      [stack removeObjectAtIndex:index];
      [stack insertObject:window atIndex:[stack indexOfObjectIdenticalTo:lower] + 1];
      [window release];
    }
  } @catch (NSException *exception) {
  }
  restacking = false;
}

void (*originalOrderWindow)(id, SEL, NSWindowOrderingMode, NSInteger) = NULL;
void (*originalSetLevel)(id, SEL, NSInteger) = NULL;
void (*originalAddChild)(id, SEL, NSWindow *, NSWindowOrderingMode) = NULL;
void (*originalSetFrameDisplay)(id, SEL, NSRect, BOOL) = NULL;
void (*originalSendEvent)(id, SEL, NSEvent *) = NULL;

void TVOrderWindow(NSWindow *window, SEL selector, NSWindowOrderingMode place, NSInteger other) {
  originalOrderWindow(window, selector, place, other);
  if (place != NSWindowOut && [window isVisible]) {
    Restack();
  }
}

void TVSetLevel(NSWindow *window, SEL selector, NSInteger level) {
  originalSetLevel(window, selector, level);
  if ([window isVisible]) {
    Restack();
  }
}

void TVAddChildWindow(NSWindow *window, SEL selector, NSWindow *child, NSWindowOrderingMode place) {
  originalAddChild(window, selector, child, place);
  if ([window isVisible]) {
    Restack();
  }
}

// Children keep their offset from the parent when the parent moved from
// `old` to where it is now.
void MoveChildren(NSWindow *window, NSRect old) {
  NSRect now = [window frame];
  CGFloat dx = NSMinX(now) - NSMinX(old), dy = NSMinY(now) - NSMinY(old);
  if (dx == 0 && dy == 0) {
    return;
  }
  NSArray *children = [[[window childWindows] copy] autorelease];
  for (NSWindow *child in children) {
    NSRect childFrame = [child frame];
    childFrame.origin.x += dx;
    childFrame.origin.y += dy;
    [child setFrame:childFrame display:NO];
  }
}

// The window whose setFrame:display: is running, and whether the server's
// move event inside it (GNUstep sends one to itself) already took the
// children along.
NSWindow *settingFrame = nil;
bool childrenMoved = false;

void TVSetFrameDisplay(NSWindow *window, SEL selector, NSRect frame, BOOL display) {
  NSWindow *outerWindow = settingFrame;
  bool outerMoved = childrenMoved;
  settingFrame = window;
  childrenMoved = false;
  NSRect old = [window frame];
  originalSetFrameDisplay(window, selector, frame, display);
  if (!childrenMoved) {
    MoveChildren(window, old);
  }
  settingFrame = outerWindow;
  childrenMoved = outerMoved;
}

// A move the server reports (the window dragged by its frame) changes the
// frame without setFrame:display:.
void TVWindowSendEvent(NSWindow *window, SEL selector, NSEvent *event) {
  if ([event type] != NSAppKitDefined || [event subtype] != GSAppKitWindowMoved) {
    originalSendEvent(window, selector, event);
    return;
  }
  NSRect old = [window frame];
  originalSendEvent(window, selector, event);
  MoveChildren(window, old);
  if (window == settingFrame) {
    childrenMoved = true;
  }
}

}  // namespace

@interface _TVWindowOrderingHooks : NSObject
@end

@implementation _TVWindowOrderingHooks

+ (void)load {
  Class window = [NSWindow class];
  originalOrderWindow = (void (*)(id, SEL, NSWindowOrderingMode, NSInteger))TVReplaceInstanceMethod(
      window, @selector(orderWindow:relativeTo:), (IMP)TVOrderWindow);
  originalSetLevel = (void (*)(id, SEL, NSInteger))TVReplaceInstanceMethod(
      window, @selector(setLevel:), (IMP)TVSetLevel);
  originalAddChild = (void (*)(id, SEL, NSWindow *, NSWindowOrderingMode))TVReplaceInstanceMethod(
      window, @selector(addChildWindow:ordered:), (IMP)TVAddChildWindow);
  originalSetFrameDisplay = (void (*)(id, SEL, NSRect, BOOL))TVReplaceInstanceMethod(
      window, @selector(setFrame:display:), (IMP)TVSetFrameDisplay);
  originalSendEvent = (void (*)(id, SEL, NSEvent *))TVReplaceInstanceMethod(
      window, @selector(sendEvent:), (IMP)TVWindowSendEvent);
}

@end
