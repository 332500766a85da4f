// Placement arithmetic of the controls: the icon rect, the slider's track,
// split and knob, the popup's x and the centred text rect.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "core/controls/ControlGeometry.hpp"

namespace tc = talvo::controls;

#define EXPECT_RECT(r, ex, ey, ew, eh) \
  do {                                 \
    tc::Rect r_ = (r);                 \
    EXPECT_DOUBLE_EQ(r_.x, (ex));      \
    EXPECT_DOUBLE_EQ(r_.y, (ey));      \
    EXPECT_DOUBLE_EQ(r_.width, (ew));  \
    EXPECT_DOUBLE_EQ(r_.height, (eh)); \
  } while (0)

TEST(ControlGeometry, IconRectIsWholeAndCentredWithItsOriginTakenDown) {
  // 17.9 x 9.5 fits as 17 x 9; (40 - 17) / 2 = 11.5 -> 11, (20 - 9) / 2 = 5.5 -> 5.
  EXPECT_RECT(tc::CenteredIconRect({10, 20, 40, 20}, {17.9, 9.5}), 21, 25, 17, 9);
  // Larger than the frame: the origin moves left/down (floor of a negative half).
  EXPECT_RECT(tc::CenteredIconRect({0, 0, 10, 10}, {13, 13}), -2, -2, 13, 13);
  EXPECT_RECT(tc::OutsetRect({5, 5, 10, 4}, 2), 3, 3, 14, 8);
  EXPECT_RECT(tc::OutsetRect({5, 5, 10, 4}, 0), 5, 5, 10, 4);
}

TEST(ControlGeometry, SliderTrackIsInsetTwoAndCentredOnePointUp) {
  // (21 - 4) / 2 = 8.5 rounds half away from zero to 9, then 1 up.
  EXPECT_RECT(tc::SliderTrackRect({0, 0, 100, 21}, 4), 2, 10, 96, 4);
  EXPECT_RECT(tc::SliderTrackRect({10, 5, 50, 4}, 4), 12, 6, 46, 4);
  // A track taller than the bar: -1.5 rounds to -2.
  EXPECT_RECT(tc::SliderTrackRect({0, 0, 20, 2}, 5), 2, -1, 16, 5);
}

TEST(ControlGeometry, SliderSplitReachesTheKnobCentreAtBothEnds) {
  EXPECT_DOUBLE_EQ(tc::SliderSplit(96, 15, 0, 100), 8);     // round(7.5)
  EXPECT_DOUBLE_EQ(tc::SliderSplit(96, 15, 100, 100), 89);  // round(96 - 7.5)
  EXPECT_DOUBLE_EQ(tc::SliderSplit(96, 16, 50, 100), 48);
  EXPECT_DOUBLE_EQ(tc::SliderSplit(96, 16, 0.25, 1), 28);
  // No usable maximum: the value counts as 0.
  EXPECT_DOUBLE_EQ(tc::SliderSplit(96, 16, 5, 0), 8);
  EXPECT_DOUBLE_EQ(tc::SliderSplit(96, 16, 5, std::numeric_limits<double>::quiet_NaN()), 8);
  EXPECT_DOUBLE_EQ(tc::SliderSplit(96, 16, std::numeric_limits<double>::infinity(), 1), 8);
}

TEST(ControlGeometry, KnobOriginIsMeasuredFromZeroNotFromTheKnobRect) {
  tc::Point p = tc::SliderKnobOrigin({40.0, 100.0, 16.0, 21.0}, {15.0, 15.0});
  EXPECT_DOUBLE_EQ(p.x, 41.0);  // 40.5 rounds away from zero
  EXPECT_DOUBLE_EQ(p.y, 4.0);   // round(3) + 1, K.y ignored
  p = tc::SliderKnobOrigin({-3.0, 0.0, 2.0, 4.0}, {3.0, 7.0});
  EXPECT_DOUBLE_EQ(p.x, -4.0);  // -3.5 -> -4
  EXPECT_DOUBLE_EQ(p.y, -1.0);  // -1.5 -> -2, + 1
}

TEST(ControlGeometry, SegmentPadsAndThePopupCentreOverTheSegment) {
  EXPECT_DOUBLE_EQ(tc::SegmentPad(0, 3), 2);
  EXPECT_DOUBLE_EQ(tc::SegmentPad(1, 3), 4);
  EXPECT_DOUBLE_EQ(tc::SegmentPad(2, 3), 6);
  EXPECT_DOUBLE_EQ(tc::SegmentPad(0, 1), 2);  // the only segment is the first
  std::vector<double> widths = {40, 50, 60};
  // Centre: 100 + 40 + 4 + 25 = 169; popup 80 wide starts at 129.
  EXPECT_DOUBLE_EQ(tc::SegmentPopupX(100, 80, widths, 1), 129);
  EXPECT_DOUBLE_EQ(tc::SegmentPopupX(100, 80, widths, 0), 100 - 40 + 2 + 20);
  EXPECT_DOUBLE_EQ(tc::SegmentPopupX(100, 80, widths, 2), 100 - 40 + 90 + 6 + 30);
  // Out of range: no segment width is added beyond the list.
  EXPECT_DOUBLE_EQ(tc::SegmentPopupX(100, 80, widths, 7), 100 - 40 + 150 + 4);
}

TEST(ControlGeometry, TextRectShrinksToTheTextAndMovesHalfTheDifference) {
  EXPECT_RECT(tc::VerticallyCenteredRect({2, 3, 100, 40}, 17), 2, 14.5, 100, 17);
  // As tall or taller: unchanged.
  EXPECT_RECT(tc::VerticallyCenteredRect({2, 3, 100, 17}, 17), 2, 3, 100, 17);
  EXPECT_RECT(tc::VerticallyCenteredRect({2, 3, 100, 10}, 17), 2, 3, 100, 10);
  // The difference is taken in single precision.
  tc::Rect r = tc::VerticallyCenteredRect({0, 0, 10, 20.1}, 0.1);
  EXPECT_DOUBLE_EQ(r.y, static_cast<double>(static_cast<float>(20.1 - 0.1) * 0.5f));
  EXPECT_RECT(tc::VerticallyCenteredRect({0, 0, 10, 20}, std::nan("")), 0, 0, 10, 20);
}
