#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "core/windows/WindowGeometry.hpp"

using namespace talvo::windows;

namespace {

void ExpectRect(const Rect &r, double x, double y, double w, double h) {
  EXPECT_DOUBLE_EQ(r.x, x);
  EXPECT_DOUBLE_EQ(r.y, y);
  EXPECT_DOUBLE_EQ(r.width, w);
  EXPECT_DOUBLE_EQ(r.height, h);
}

}  // namespace

TEST(WindowShadowGeometry, OriginSideChoosesBottomOrTopInset) {
  // Titled: the bottom inset (-50) applies at an AppKit origin, the top
  // (-34) at a window-server origin.
  ExpectRect(ShadowedFrame({100, 100, 400, 300}, ShadowInsets(true), true), 58, 50, 484, 384);
  ExpectRect(ShadowedFrame({100, 100, 400, 300}, ShadowInsets(true), false), 58, 66, 484, 384);
  ExpectRect(ShadowedFrame({0, 0, 100, 100}, ShadowInsets(false), true), -17, -21, 134, 134);
  ExpectRect(ShadowedFrame({0, 0, 100, 100}, ShadowInsets(false), false), -17, -13, 134, 134);
}

TEST(WindowShadowGeometry, ScaledInsetsFollowTheSizeRatioPerAxis) {
  Rect frame = {100, 100, 400, 300};
  EdgeInsets titled = ShadowInsets(true);
  for (bool flipped : {true, false}) {
    Rect same = ShadowedFrameFromScaled(frame, frame, titled, flipped);
    Rect plain = ShadowedFrame(frame, titled, flipped);
    ExpectRect(same, plain.x, plain.y, plain.width, plain.height);
  }
  // The zoom example: 40 x 30 from 400 x 300 scales by 0.1 on both axes.
  ExpectRect(ShadowedFrameFromScaled({200, 200, 40, 30}, frame, titled, true), 195.8, 195.0, 48.4,
             38.4);
  // Half width, quarter height: x grows by half, y by a quarter.
  ExpectRect(ShadowedFrameFromScaled({0, 0, 200, 75}, frame, titled, false), -21, -8.5, 242, 96);
  // A zero-size reference frame does not divide by zero.
  ExpectRect(ShadowedFrameFromScaled({1, 2, 3, 4}, {0, 0, 0, 0}, titled, true), 1, 2, 3, 4);
}

TEST(WindowAnimationGeometry, BounceAndPopRects) {
  ExpectRect(BounceOvershoot({0, 0, 100, 50}), -4, -2, 108, 54);
  Rect pop = PopInset({10, 20, 400, 300});
  double d = 5.0 * 400 / 300;
  ExpectRect(pop, 10 + d, 20 + d, 400 - 2 * d, 300 - 2 * d);
  ExpectRect(PopInset({1, 1, 100, 0}), 1, 1, 100, 0);
}

TEST(WindowAnimationGeometry, ShakePairsAreRoundedUp) {
  std::vector<Point> points = ShakePoints({100, 200, 400, 300}, 0.05, 3);
  ASSERT_EQ(points.size(), 7u);
  EXPECT_DOUBLE_EQ(points[0].x, 100);
  for (size_t i = 1; i < points.size(); ++i) {
    EXPECT_DOUBLE_EQ(points[i].x, i % 2 ? 80 : 120) << i;
    EXPECT_DOUBLE_EQ(points[i].y, 200);
  }
  EXPECT_EQ(ShakePoints({0, 0, 10, 10}, 1, 2.5).size(), 7u);
  EXPECT_EQ(ShakePoints({0, 0, 10, 10}, 1, 1).size(), 3u);
  EXPECT_EQ(ShakePoints({0, 0, 10, 10}, 1, 0.5).size(), 3u);
  EXPECT_EQ(ShakePoints({0, 0, 10, 10}, 1, 0).size(), 1u);
  EXPECT_EQ(ShakePoints({0, 0, 10, 10}, 1, -3).size(), 1u);
  EXPECT_EQ(ShakePoints({0, 0, 10, 10}, 1, std::nan("")).size(), 1u);
  EXPECT_LE(ShakePoints({0, 0, 10, 10}, 1, std::numeric_limits<double>::infinity()).size(), 20001u);
}

TEST(WindowAnimationGeometry, CenterOffsetFlipsItsHeight) {
  Point unflipped = CenterPointOffset(0, 0, 200, 100, false);
  EXPECT_DOUBLE_EQ(unflipped.x, -100);
  EXPECT_DOUBLE_EQ(unflipped.y, -50);
  Point flipped = CenterPointOffset(0, 0, 200, 100, true);
  EXPECT_DOUBLE_EQ(flipped.x, -100);
  EXPECT_DOUBLE_EQ(flipped.y, 50);
  Point corner = CenterPointOffset(1, 0.25, 200, 100, false);
  EXPECT_DOUBLE_EQ(corner.x, 100);
  EXPECT_DOUBLE_EQ(corner.y, -25);
}

TEST(WindowPopupGeometry, ArrowIsMeasuredFromZeroAndRisesThreePoints) {
  PopupShape shape = BottomPopupShape(200, 100);
  ExpectRect(shape.body, 1, 1, 198, 93);
  EXPECT_DOUBLE_EQ(shape.radius, 4);
  double expected[3][2] = {{94, 94}, {99, 97}, {104, 94}};
  for (int i = 0; i < 3; ++i) {
    EXPECT_DOUBLE_EQ(shape.arrow[i].x, expected[i][0]);
    EXPECT_DOUBLE_EQ(shape.arrow[i].y, expected[i][1]);
  }
  // Halves round away from zero: (201 - 2) / 2 = 99.5 gives an apex at 100.
  EXPECT_DOUBLE_EQ(BottomPopupShape(201, 100).arrow[1].x, 100);
}
