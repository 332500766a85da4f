#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "core/colors/ColorMath.hpp"

using namespace talvo::colors;

namespace {

void ExpectHsb(const Hsb &actual, double h, double s, double b) {
  EXPECT_NEAR(actual.h, h, 1e-9);
  EXPECT_NEAR(actual.s, s, 1e-9);
  EXPECT_NEAR(actual.b, b, 1e-9);
}

}  // namespace

TEST(ColorMath, HsbFromRgbCoversEverySectorAndWrapsNegativeHues) {
  ExpectHsb(HsbFromRgb({1, 0, 0}), 0.0, 1, 1);
  ExpectHsb(HsbFromRgb({1, 1, 0}), 1.0 / 6, 1, 1);
  ExpectHsb(HsbFromRgb({0, 1, 0}), 2.0 / 6, 1, 1);
  ExpectHsb(HsbFromRgb({0, 1, 1}), 3.0 / 6, 1, 1);
  ExpectHsb(HsbFromRgb({0, 0, 1}), 4.0 / 6, 1, 1);
  ExpectHsb(HsbFromRgb({1, 0, 1}), 5.0 / 6, 1, 1);
  // A red leaning to blue: just below a full turn, not negative.
  ExpectHsb(HsbFromRgb({1, 0, 0.5}), 11.0 / 12, 1, 1);
  ExpectHsb(HsbFromRgb({0.8, 0.4, 0.2}), 1.0 / 18, 0.75, 0.8);
  // Greys and black: no hue, no saturation.
  ExpectHsb(HsbFromRgb({0.5, 0.5, 0.5}), 0, 0, 0.5);
  ExpectHsb(HsbFromRgb({0, 0, 0}), 0, 0, 0);
}

TEST(ColorMath, RgbFromHsbRoundTripsAndWrapsTheHue) {
  const Rgb samples[] = {{0.039, 0.373, 0.996}, {0.9, 0.1, 0.4}, {0.2, 0.7, 0.3}, {0.3, 0.3, 0.3}};
  for (const Rgb &rgb : samples) {
    Rgb back = RgbFromHsb(HsbFromRgb(rgb));
    EXPECT_NEAR(back.r, rgb.r, 1e-9);
    EXPECT_NEAR(back.g, rgb.g, 1e-9);
    EXPECT_NEAR(back.b, rgb.b, 1e-9);
  }
  Rgb full = RgbFromHsb({1.0, 1, 1});
  EXPECT_NEAR(full.r, 1, 1e-12);
  EXPECT_NEAR(full.g, 0, 1e-12);
  Rgb wrapped = RgbFromHsb({1.0 + 2.0 / 6, 1, 1});
  EXPECT_NEAR(wrapped.g, 1, 1e-9);
  EXPECT_NEAR(wrapped.r, 0, 1e-9);
}

TEST(ColorMath, LighterByDesaturatesColoursAndClampsGreys) {
  ExpectHsb(LighterBy({0.6, 0.8, 0.4}, 0.8), 0.6, 0.64, 0.4);
  // A factor above 1 darkens a grey, down to 0 at most.
  ExpectHsb(LighterBy({0, 0, 0.5}, 1.5), 0, 0, 0.25);
  ExpectHsb(LighterBy({0, 0, 0.5}, 3.5), 0, 0, 0.0);
  ExpectHsb(LighterBy({0.6, 0.8, 0.4}, -1), 0.6, 0.0, 0.4);
}

TEST(ColorMath, LighterByLiftsBlackToOneMinusFactor) {
  ExpectHsb(LighterBy({0, 0, 0}, 0.8), 0, 0, 0.2);
  ExpectHsb(LighterBy({0, 0, 0}, 1.5), 0, 0, 0.0);
  // No saturation but a hue: scaled by the factor, not brightened.
  ExpectHsb(LighterBy({0.3, 0, 0.5}, 0.8), 0.3, 0, 0.4);
}

TEST(ColorMath, LighterByCountsNaNAsNonzero) {
  double nan = std::numeric_limits<double>::quiet_NaN();
  // A NaN hue is no grey: falls to the third case (b x f).
  Hsb noHue = LighterBy({nan, 0, 0.5}, 0.8);
  EXPECT_NEAR(noHue.b, 0.4, 1e-12);
  // A NaN saturation counts as coloured: brightness kept.
  Hsb noSaturation = LighterBy({0.2, nan, 0.5}, 0.8);
  EXPECT_NEAR(noSaturation.b, 0.5, 1e-12);
}

TEST(ColorMath, CheckerboardTilePutsFirstColourBottomLeftAndTopRight) {
  CheckerboardTile tile = CheckerboardTileFor(8);
  EXPECT_DOUBLE_EQ(tile.size, 16);
  auto covers = [](const std::array<Square, 2> &squares, double x, double y) {
    for (const Square &s : squares) {
      if (x >= s.x && x < s.x + s.width && y >= s.y && y < s.y + s.height) return true;
    }
    return false;
  };
  EXPECT_TRUE(covers(tile.first, 1, 1));
  EXPECT_TRUE(covers(tile.first, 15, 15));
  EXPECT_TRUE(covers(tile.second, 1, 15));
  EXPECT_TRUE(covers(tile.second, 15, 1));
  EXPECT_FALSE(covers(tile.first, 1, 15));
  EXPECT_FALSE(covers(tile.second, 1, 1));
}

TEST(ColorMath, ReflectedLocationsAreUncheckedAroundTheMiddle) {
  std::array<double, 4> standard = ReflectedGradientLocations(kReflectedDefaultSize);
  EXPECT_DOUBLE_EQ(standard[0], 0.0);
  EXPECT_NEAR(standard[1], 0.35, 1e-12);
  EXPECT_NEAR(standard[2], 0.65, 1e-12);
  EXPECT_DOUBLE_EQ(standard[3], 1.0);
  std::array<double, 4> wide = ReflectedGradientLocations(0.5);
  EXPECT_DOUBLE_EQ(wide[1], 0.0);
  EXPECT_DOUBLE_EQ(wide[2], 1.0);
  std::array<double, 4> over = ReflectedGradientLocations(0.7);
  EXPECT_NEAR(over[1], -0.2, 1e-12);
  EXPECT_NEAR(over[2], 1.2, 1e-12);
}
