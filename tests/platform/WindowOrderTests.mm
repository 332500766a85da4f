// Window levels and child windows kept in order without a window manager,
// checked against the X server's own stacking (XQueryTree).

#import "platform/WindowTestSupport.h"

namespace {

using WindowOrder = WindowServerTest;

// Stacking positions bottom to top must rise in the order given.
testing::AssertionResult StackedInOrder(NSArray *bottomToTop) {
  std::vector<int> indexes = XStackingIndexes(bottomToTop);
  for (size_t i = 0; i < indexes.size(); i++) {
    if (indexes[i] < 0) {
      return testing::AssertionFailure() << "window " << i << " is not on the server";
    }
    if (i > 0 && indexes[i] <= indexes[i - 1]) {
      return testing::AssertionFailure() << "window " << i << " at " << indexes[i] << " is not above window "
                                         << i - 1 << " at " << indexes[i - 1];
    }
  }
  return testing::AssertionSuccess();
}

TEST_F(WindowOrder, HigherLevelsStayAboveWindowsOrderedInLater) {
  NSWindow *top = MakeWindow(NSMakeRect(200, 140, 100, 80), [NSColor redColor], [NSColor redColor]);
  NSWindow *floating = MakeWindow(NSMakeRect(150, 120, 100, 80), [NSColor greenColor], [NSColor greenColor]);
  NSWindow *normal = MakeWindow(NSMakeRect(100, 100, 100, 80), [NSColor blueColor], [NSColor blueColor]);
  [top setLevel:NSFloatingWindowLevel + 1];
  [floating setLevel:NSFloatingWindowLevel];
  [top orderFrontRegardless];
  [floating orderFrontRegardless];
  [normal orderFrontRegardless];
  EXPECT_TRUE(StackedInOrder(@[ normal, floating, top ]));

  [normal makeKeyAndOrderFront:nil];
  EXPECT_TRUE(StackedInOrder(@[ normal, floating, top ]));

  // Within a level the last ordered in is in front.
  NSWindow *second = MakeWindow(NSMakeRect(120, 100, 100, 80), [NSColor blueColor], [NSColor blueColor]);
  EXPECT_TRUE(StackedInOrder(@[ normal, second, floating, top ]));
  [normal orderFrontRegardless];
  EXPECT_TRUE(StackedInOrder(@[ second, normal, floating, top ]));

  // A level change of a window on screen takes effect at once.
  [top setLevel:NSNormalWindowLevel];
  [normal orderFrontRegardless];
  EXPECT_TRUE(StackedInOrder(@[ top, normal, floating ]));
  [floating setLevel:NSNormalWindowLevel - 1];
  EXPECT_TRUE(StackedInOrder(@[ floating, top ]));
}

TEST_F(WindowOrder, ChildrenStayAboveTheirParentAndMoveWithIt) {
  NSWindow *parent = MakeWindow(NSMakeRect(100, 100, 200, 150), [NSColor blueColor], [NSColor blueColor]);
  NSWindow *child = MakeWindow(NSMakeRect(120, 110, 60, 40), [NSColor redColor], [NSColor redColor]);
  NSWindow *other = MakeWindow(NSMakeRect(140, 120, 100, 80), [NSColor greenColor], [NSColor greenColor]);
  [parent addChildWindow:child ordered:NSWindowAbove];
  [parent orderFrontRegardless];
  EXPECT_TRUE(StackedInOrder(@[ other, parent, child ]));
  [other orderFrontRegardless];
  [parent orderFrontRegardless];
  EXPECT_TRUE(StackedInOrder(@[ other, parent, child ]));

  // A grandchild sits above the child, and all of them follow a move.
  NSWindow *grandchild = MakeWindow(NSMakeRect(125, 115, 20, 20), [NSColor greenColor], [NSColor greenColor]);
  [child addChildWindow:grandchild ordered:NSWindowAbove];
  [other orderFrontRegardless];
  [parent orderFrontRegardless];
  EXPECT_TRUE(StackedInOrder(@[ other, parent, child, grandchild ]));

  [parent setFrame:NSMakeRect(40, 50, 200, 150) display:YES];
  EXPECT_TRUE(NSEqualPoints([child frame].origin, NSMakePoint(60, 60)));
  EXPECT_TRUE(NSEqualPoints([grandchild frame].origin, NSMakePoint(65, 65)));
  EXPECT_TRUE(NSEqualSizes([child frame].size, NSMakeSize(60, 40)));
  // A resize that keeps the origin leaves the children alone.
  [parent setFrame:NSMakeRect(40, 50, 300, 250) display:YES];
  EXPECT_TRUE(NSEqualPoints([child frame].origin, NSMakePoint(60, 60)));
  // Moving the child alone moves its own child, not its parent.
  [child setFrameOrigin:NSMakePoint(70, 70)];
  EXPECT_TRUE(NSEqualPoints([grandchild frame].origin, NSMakePoint(75, 75)));
  EXPECT_TRUE(NSEqualPoints([parent frame].origin, NSMakePoint(40, 50)));

  // A move reported by the server (the window dragged) takes them along too.
  NSEvent *moved = [NSEvent otherEventWithType:NSAppKitDefined
                                      location:NSZeroPoint
                                 modifierFlags:0
                                     timestamp:0
                                  windowNumber:[parent windowNumber]
                                       context:nil
                                       subtype:GSAppKitWindowMoved
                                         data1:100
                                         data2:120];
  [parent sendEvent:moved];
  NSPoint offset = NSMakePoint(NSMinX([parent frame]) - 40, NSMinY([parent frame]) - 50);
  EXPECT_FALSE(NSEqualPoints(offset, NSZeroPoint));
  EXPECT_TRUE(NSEqualPoints([child frame].origin, NSMakePoint(70 + offset.x, 70 + offset.y)));
  EXPECT_TRUE(NSEqualPoints([grandchild frame].origin, NSMakePoint(75 + offset.x, 75 + offset.y)));

  [parent removeChildWindow:child];
  NSPoint before = [child frame].origin;
  [parent setFrameOrigin:NSMakePoint(0, 0)];
  EXPECT_TRUE(NSEqualPoints([child frame].origin, before));
}

// A floating child of a normal window stays with its parent's group, and
// a floating window still covers both.
TEST_F(WindowOrder, ChildrenTravelWithTheirParentsGroup) {
  NSWindow *floating = MakeWindow(NSMakeRect(100, 100, 80, 80), [NSColor greenColor], [NSColor greenColor]);
  [floating setLevel:NSFloatingWindowLevel];
  NSWindow *parent = MakeWindow(NSMakeRect(110, 110, 80, 80), [NSColor blueColor], [NSColor blueColor]);
  NSWindow *child = MakeWindow(NSMakeRect(120, 120, 30, 30), [NSColor redColor], [NSColor redColor]);
  [parent addChildWindow:child ordered:NSWindowAbove];
  [parent orderFrontRegardless];
  EXPECT_TRUE(StackedInOrder(@[ parent, child, floating ]));
}

}  // namespace
