#include <gtest/gtest.h>

#include "core/controls/PopoverOutline.hpp"

using namespace talvo::controls;
using Kind = OutlineStep::Kind;

namespace {

PopoverGeometry Geometry(Rect bounds, double apexX, double width = 10, double height = 10,
                         double radius = 4) {
  PopoverGeometry g;
  g.bounds = bounds;
  g.arrowXOrigin = apexX;
  g.arrowWidth = width;
  g.arrowHeight = height;
  g.radius = radius;
  return g;
}

void ExpectArc(const OutlineStep &step, double cx, double cy, double r, double from, double to) {
  EXPECT_EQ(step.kind, Kind::Arc);
  EXPECT_DOUBLE_EQ(step.point.x, cx);
  EXPECT_DOUBLE_EQ(step.point.y, cy);
  EXPECT_DOUBLE_EQ(step.radius, r);
  EXPECT_DOUBLE_EQ(step.startAngle, from);
  EXPECT_DOUBLE_EQ(step.endAngle, to);
}

void ExpectLine(const OutlineStep &step, double x, double y) {
  EXPECT_EQ(step.kind, Kind::Line);
  EXPECT_DOUBLE_EQ(step.point.x, x);
  EXPECT_DOUBLE_EQ(step.point.y, y);
}

}  // namespace

TEST(PopoverOutline, StepsRunCounterClockwiseWithTheArrowOnTop) {
  // Body {10, 20, 100, 50}; corner centres inset by 4.
  std::vector<OutlineStep> steps = PopoverOutline(Geometry({10, 20, 100, 60}, 40));
  ASSERT_EQ(steps.size(), 8u);
  ExpectArc(steps[0], 14, 24, 4, 180, 270);
  ExpectArc(steps[1], 106, 24, 4, 270, 360);
  ExpectArc(steps[2], 106, 66, 4, 0, 90);
  ExpectLine(steps[3], 45, 70);  // right end of the base, on the body's top
  ExpectLine(steps[4], 40, 80);  // apex, on the top of the bounds
  ExpectLine(steps[5], 35, 70);
  ExpectArc(steps[6], 14, 66, 4, 90, 180);
  EXPECT_EQ(steps[7].kind, Kind::Close);
}

TEST(PopoverOutline, ArrowOverACornerIsNotClamped) {
  std::vector<OutlineStep> steps = PopoverOutline(Geometry({0, 0, 100, 60}, 2));
  ExpectLine(steps[4], 2, 60);
  ExpectLine(steps[5], -3, 50);
}

TEST(PopoverOutline, NegativeSizesAreUsedAsGiven) {
  std::vector<OutlineStep> steps = PopoverOutline(Geometry({0, 0, 100, 60}, 50, -10, -5, -2));
  ExpectArc(steps[0], -2, -2, -2, 180, 270);
  ExpectLine(steps[3], 45, 65);
  ExpectLine(steps[4], 50, 60);
}

TEST(PopoverOutline, ShrinkMovesBodyTopByOffsetAndApexByOneAndAHalf) {
  PopoverGeometry g = Geometry({10, 20, 100, 60}, 40, 12, 10, 4);
  PopoverGeometry s = ShrunkPopover(g, 2);
  EXPECT_DOUBLE_EQ(s.arrowHeight, 9);
  EXPECT_DOUBLE_EQ(s.arrowWidth, 10);
  EXPECT_DOUBLE_EQ(s.arrowXOrigin, 40);
  EXPECT_DOUBLE_EQ(s.radius, 2);
  EXPECT_DOUBLE_EQ(s.bounds.x, 12);
  EXPECT_DOUBLE_EQ(s.bounds.y, 22);
  EXPECT_DOUBLE_EQ(s.bounds.width, 96);
  EXPECT_DOUBLE_EQ(s.bounds.height, 55);
  Rect oldBody = PopoverBody(g);
  Rect newBody = PopoverBody(s);
  EXPECT_DOUBLE_EQ(oldBody.y + oldBody.height - (newBody.y + newBody.height), 2);
  EXPECT_DOUBLE_EQ(g.bounds.y + g.bounds.height - (s.bounds.y + s.bounds.height), 3);
}
