// VXPopoverShape: defaults, the cached outline, the shrunk shape, and the
// outline filled in real views.
#import <Talvo/VXPopoverShape.h>

#import "platform/GraphicsTestSupport.h"
#import "support/TestSupport.h"

namespace {

VXPopoverShape *NewShape(NSRect bounds, CGFloat apexX) {
  VXPopoverShape *shape = [[VXPopoverShape alloc] init];
  [shape setBounds:bounds];
  [shape setArrowXOrigin:apexX];
  return shape;
}

bool Filled(NSBitmapImageRep *rep, int x, int y) {
  return RepPixel(rep, x, y) == Pixel{0, 0, 0, 255};
}

}  // namespace

using PopoverShapeTest = PooledTest;
using PopoverShapeDrawingTest = WindowGraphicsTest;

TEST_F(PopoverShapeTest, StartsWithTheDefaults) {
  Owned<VXPopoverShape> shape([[VXPopoverShape alloc] init]);
  EXPECT_EQ([shape arrowXOrigin], 0.0);
  EXPECT_EQ([shape arrowWidth], 10.0);
  EXPECT_EQ([shape arrowHeight], 10.0);
  EXPECT_EQ([shape radius], 4.0);
  EXPECT_TRUE(NSEqualRects([shape bounds], NSZeroRect));
}

TEST_F(PopoverShapeTest, SameValueKeepsThePathAndANewValueDropsIt) {
  Owned<VXPopoverShape> shape(NewShape(NSMakeRect(0, 0, 100, 60), 30));
  VXPopoverShape *s = shape;
  NSBezierPath *path = [s path];
  ASSERT_NE(path, nil);
  EXPECT_EQ([s path], path);

  [s setArrowXOrigin:30];
  [s setArrowWidth:10];
  [s setArrowHeight:10];
  [s setRadius:4];
  [s setBounds:NSMakeRect(0, 0, 100, 60)];
  EXPECT_EQ([s path], path);

  void (^changes[])(void) = {^{
      [s setArrowXOrigin:31];
}
,
    ^{
      [s setArrowWidth:12];
    },
    ^{
      [s setArrowHeight:8];
    },
    ^{
      [s setRadius:5];
    },
    ^{
      [s setBounds:NSMakeRect(0, 0, 100, 61)];
    },
}
;
for (void (^change)(void) : changes) {
  // Kept alive by the pool so identities stay distinct.
  NSBezierPath *before = [[[s path] retain] autorelease];
  change();
  EXPECT_NE([s path], before);
}
}

TEST_F(PopoverShapeTest, PathIsStyledAndStartsAtTheBottomLeftCorner) {
  Owned<VXPopoverShape> shape(NewShape(NSMakeRect(10, 20, 100, 60), 40));
  NSBezierPath *path = [shape.get() path];
  EXPECT_EQ([path lineJoinStyle], NSBevelLineJoinStyle);
  EXPECT_EQ([path lineCapStyle], NSButtLineCapStyle);
  EXPECT_EQ([path windingRule], NSNonZeroWindingRule);
  NSPoint points[3];
  ASSERT_GT([path elementCount], 0);
  EXPECT_EQ([path elementAtIndex:0 associatedPoints:points], NSMoveToBezierPathElement);
  EXPECT_NEAR(points[0].x, 10, 1e-9);
  EXPECT_NEAR(points[0].y, 24, 1e-9);
  EXPECT_EQ([path elementAtIndex:[path elementCount] - 1], NSClosePathBezierPathElement);
  NSRect box = [path bounds];
  EXPECT_NEAR(NSMinX(box), 10, 1e-6);
  EXPECT_NEAR(NSMaxX(box), 110, 1e-6);
  EXPECT_NEAR(NSMinY(box), 20, 1e-6);
  EXPECT_NEAR(NSMaxY(box), 80, 1e-6);
}

TEST_F(PopoverShapeTest, MiddleArrowCountsTheBoundsOrigin) {
  Owned<VXPopoverShape> shape(NewShape(NSMakeRect(10, 0, 100, 50), 0));
  [shape.get() setArrowOriginAtMiddle];
  EXPECT_EQ([shape.get() arrowXOrigin], 60.0);
  NSRect box = [[shape.get() path] bounds];
  EXPECT_NEAR(NSMaxY(box), 50, 1e-6);
  EXPECT_TRUE([[shape.get() path] containsPoint:NSMakePoint(60, 48)]);
  EXPECT_FALSE([[shape.get() path] containsPoint:NSMakePoint(50, 48)]);
}

TEST_F(PopoverShapeTest, ZeroOffsetGivesAnEqualShapeWithItsOwnPath) {
  Owned<VXPopoverShape> shape(NewShape(NSMakeRect(10, 20, 100, 60), 40));
  VXPopoverShape *copy = [shape.get() popoverShapeWithOffset:0];
  ASSERT_NE(copy, nil);
  EXPECT_NE(copy, shape.get());
  EXPECT_EQ([copy arrowXOrigin], 40.0);
  EXPECT_EQ([copy arrowWidth], 10.0);
  EXPECT_EQ([copy arrowHeight], 10.0);
  EXPECT_EQ([copy radius], 4.0);
  EXPECT_TRUE(NSEqualRects([copy bounds], NSMakeRect(10, 20, 100, 60)));
  NSBezierPath *mine = [shape.get() path];
  NSBezierPath *theirs = [copy path];
  EXPECT_NE(mine, theirs);
  ASSERT_EQ([mine elementCount], [theirs elementCount]);
  for (NSInteger i = 0; i < [mine elementCount]; ++i) {
    NSPoint a[3], b[3];
    EXPECT_EQ([mine elementAtIndex:i associatedPoints:a], [theirs elementAtIndex:i
                                                                associatedPoints:b]);
    EXPECT_NEAR(a[0].x, b[0].x, 1e-9);
    EXPECT_NEAR(a[0].y, b[0].y, 1e-9);
  }
}

TEST_F(PopoverShapeTest, OffsetShrinksAndLeavesTheReceiverAlone) {
  Owned<VXPopoverShape> shape(NewShape(NSMakeRect(10, 20, 100, 60), 40));
  [shape.get() setArrowWidth:12];
  NSBezierPath *path = [shape.get() path];
  VXPopoverShape *inner = [shape.get() popoverShapeWithOffset:2];
  EXPECT_EQ([inner arrowHeight], 9.0);
  EXPECT_EQ([inner arrowWidth], 10.0);
  EXPECT_EQ([inner arrowXOrigin], 40.0);
  EXPECT_EQ([inner radius], 2.0);
  EXPECT_TRUE(NSEqualRects([inner bounds], NSMakeRect(12, 22, 96, 55)));
  EXPECT_EQ([shape.get() path], path);
  EXPECT_EQ([shape.get() radius], 4.0);
  // Apex 1.5 x offset below the old one.
  EXPECT_NEAR(NSMaxY([[inner path] bounds]), 77, 1e-6);

  // Past the radius: negative values, used as they are.
  VXPopoverShape *past = [shape.get() popoverShapeWithOffset:30];
  EXPECT_EQ([past radius], -26.0);
  EXPECT_NE([past path], nil);
}

TEST_F(PopoverShapeDrawingTest, FilledOutlineShowsBodyAndArrowInAnUnflippedView) {
  Owned<VXPopoverShape> shape(NewShape(NSMakeRect(10, 10, 80, 50), 30));
  [shape.get() setArrowWidth:16];
  NSBezierPath *path = [shape.get() path];
  Owned<NSBitmapImageRep> rep(NewWindowSnapshot(NSMakeSize(100, 70), NO, ^(NSView *view, NSRect) {
    [[NSColor whiteColor] set];
    NSRectFill([view bounds]);
    [[NSColor blackColor] set];
    [path fill];
  }));
  ASSERT_NE(rep.get(), nil);
  EXPECT_TRUE(Filled(rep, 50, 25));   // body
  EXPECT_TRUE(Filled(rep, 30, 57));   // under the apex, above the body
  EXPECT_TRUE(Filled(rep, 24, 51));   // near the base's left end
  EXPECT_FALSE(Filled(rep, 70, 55));  // beside the arrow
  EXPECT_FALSE(Filled(rep, 30, 61));  // above the apex
  EXPECT_FALSE(Filled(rep, 30, 5));   // nothing hangs below
  EXPECT_FALSE(Filled(rep, 10, 10));  // bottom-left corner rounded off
  EXPECT_TRUE(Filled(rep, 11, 30));   // straight left side
}

TEST_F(PopoverShapeDrawingTest, FlippedViewTurnsTheArrowDownward) {
  Owned<VXPopoverShape> shape(NewShape(NSMakeRect(10, 10, 80, 50), 30));
  [shape.get() setArrowWidth:16];
  NSBezierPath *path = [shape.get() path];
  Owned<NSBitmapImageRep> rep(NewWindowSnapshot(NSMakeSize(100, 70), YES, ^(NSView *view, NSRect) {
    [[NSColor whiteColor] set];
    NSRectFill([view bounds]);
    [[NSColor blackColor] set];
    [path fill];
  }));
  ASSERT_NE(rep.get(), nil);
  // The same outline, mirrored: y counts from the window's bottom here.
  EXPECT_TRUE(Filled(rep, 30, 70 - 57));
  EXPECT_FALSE(Filled(rep, 70, 70 - 55));
  EXPECT_FALSE(Filled(rep, 30, 70 - 5));
}
