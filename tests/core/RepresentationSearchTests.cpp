#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "core/images/RepresentationSearch.hpp"

using namespace talvo::images;

TEST(RepresentationSide, TruncatesAndWrapsToUnsigned32Bits) {
  EXPECT_EQ(RepresentationSide(20.9), 20u);
  EXPECT_EQ(RepresentationSide(-0.9), 0u);
  EXPECT_EQ(RepresentationSide(-5), 4294967291u);
  EXPECT_EQ(RepresentationSide(4294967296.0 + 7), 7u);
  EXPECT_EQ(RepresentationSide(std::nan("")), 0u);
  EXPECT_EQ(RepresentationSide(std::numeric_limits<double>::infinity()), 0xFFFFFFFFu);
  EXPECT_EQ(RepresentationSide(-std::numeric_limits<double>::infinity()), 0u);
}

TEST(BestRepresentationIndex, LargerSwitchesSmallerOffForTheRestOfTheSearch) {
  const int32_t all = kRepresentationAllowLarger | kRepresentationAllowSmaller |
                      kRepresentationStandardResolution | kRepresentationDoubleResolution;
  auto bitmap = [](double pixels) { return RepresentationInfo{true, pixels, pixels, 16, 16}; };
  // 40 (smaller) is taken, then 64 (larger) replaces it; 47 after that is
  // not considered although it is the closest.
  EXPECT_EQ(BestRepresentationIndex({bitmap(40), bitmap(64), bitmap(47)}, 48, all), 1);
  EXPECT_EQ(BestRepresentationIndex({bitmap(40), bitmap(47)}, 48, all), 1);
  EXPECT_EQ(BestRepresentationIndex({}, 48, all), -1);
  // A side of all ones can never beat the initial best larger side.
  RepresentationInfo huge{false, 0, 0, 4294967295.0, 1};
  EXPECT_EQ(BestRepresentationIndex({huge}, 1, kRepresentationAllowLarger), -1);
  EXPECT_EQ(BestRepresentationIndex({huge}, -1, 0), 0);
  // Zero-sized representations are never "smaller".
  RepresentationInfo empty{false, 0, 0, 0, 0};
  EXPECT_EQ(BestRepresentationIndex({empty}, 5, kRepresentationAllowSmaller), -1);
}
