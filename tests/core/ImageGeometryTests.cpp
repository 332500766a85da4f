#include <gtest/gtest.h>

#include <cmath>

#include "core/images/ImageGeometry.hpp"

using namespace talvo::images;

namespace {

void ExpectSize(Size actual, double width, double height) {
  EXPECT_DOUBLE_EQ(actual.width, width);
  EXPECT_DOUBLE_EQ(actual.height, height);
}

}  // namespace

TEST(ImageGeometry, ScaledSizeTouchesTheBoxOnOneSide) {
  ExpectSize(ScaledSizeForSize({200, 100}, {50, 50}), 50, 25);
  ExpectSize(ScaledSizeForSize({200, 100}, {400, 100}), 200, 100);
  ExpectSize(ScaledSizeForSize({100, 200}, {50, 50}), 25, 50);
  // Grows when the box is larger.
  ExpectSize(ScaledSizeForSize({10, 20}, {100, 100}), 50, 100);
}

TEST(ImageGeometry, ScaledSizeUsesASinglePrecisionRatio) {
  // 1/3 as a float is 0.3333333432674408; a double ratio would give 10.
  Size size = ScaledSizeForSize({3, 1}, {30, 100});
  EXPECT_EQ(size.width, 30);
  EXPECT_EQ(size.height, 30 * static_cast<double>(1.0f / 3.0f));
  EXPECT_NE(size.height, 10.0);
}

TEST(ImageGeometry, ScaledSizeOfImageWithoutWidthIsZero) {
  ExpectSize(ScaledSizeForSize({0, 10}, {50, 50}), 0, 0);
  ExpectSize(ScaledSizeForSize({0, 0}, {50, 50}), 0, 0);
  ExpectSize(ScaledSizeForSize({1e-320, 10}, {0, 50}), 0, 0);
}

TEST(ImageGeometry, FitShrinksButNeverGrows) {
  ExpectSize(ScaledSizeThatFits({20, 10}, {50, 50}), 20, 10);
  ExpectSize(ScaledSizeThatFits({200, 100}, {50, 50}), 50, 25);
  // Only one side too large is enough.
  ExpectSize(ScaledSizeThatFits({40, 80}, {50, 50}), 25, 50);
  // Equal sizes stay.
  ExpectSize(ScaledSizeThatFits({50, 50}, {50, 50}), 50, 50);
}

TEST(ImageGeometry, CapSlicesKeepTheSourceMiddle) {
  CapSlices slices = CapSlicesFor(20, 5, 100, 5);
  EXPECT_EQ(slices.left.x, 0);
  EXPECT_EQ(slices.left.width, 5);
  EXPECT_EQ(slices.middle.x, 5);
  EXPECT_EQ(slices.middle.width, 10);
  EXPECT_EQ(slices.right.x, 15);
  EXPECT_EQ(slices.right.width, 5);
  EXPECT_EQ(slices.resultWidth, 110);

  CapSlices noMiddle = CapSlicesFor(20, 12, 30, 8);
  EXPECT_EQ(noMiddle.middle.width, 0);
  EXPECT_EQ(noMiddle.right.x, 12);
  EXPECT_EQ(noMiddle.resultWidth, 50);
}

TEST(ImageGeometry, PixelExtentTruncatesTowardZero) {
  EXPECT_EQ(PixelExtent(10, 2), 20u);
  EXPECT_EQ(PixelExtent(4, 2), 8u);
  EXPECT_EQ(PixelExtent(10.6, 1), 10u);
  EXPECT_EQ(PixelExtent(10.6, 2), 21u);
  EXPECT_EQ(PixelExtent(0.9, 1), 0u);
  EXPECT_EQ(PixelExtent(-3, 2), 0u);
  EXPECT_EQ(PixelExtent(NAN, 1), 0u);
  EXPECT_EQ(PixelExtent(INFINITY, 1), 0u);
}
