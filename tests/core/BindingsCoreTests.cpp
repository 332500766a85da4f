#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

#include "core/bindings/DayOfMonth.hpp"
#include "core/bindings/KeyEquivalent.hpp"

using talvo::bindings::ModifiersMatch;
using talvo::bindings::WrappedDayOfMonth;

namespace {
constexpr uint64_t kShift = 1u << 17;
constexpr uint64_t kCommand = 1u << 20;
constexpr uint64_t kOption = 1u << 19;
}  // namespace

TEST(KeyEquivalentModifiers, RequiredFlagsMustAllBeHeld) {
  EXPECT_TRUE(ModifiersMatch(kCommand, kCommand));
  EXPECT_TRUE(ModifiersMatch(kCommand, kCommand | kShift));
  EXPECT_FALSE(ModifiersMatch(kCommand, 0));
  EXPECT_FALSE(ModifiersMatch(kCommand | kShift, kCommand));
  EXPECT_TRUE(ModifiersMatch(kCommand | kOption, kCommand | kOption | kShift));
}

TEST(KeyEquivalentModifiers, ZeroMatchesAnyModifiers) {
  EXPECT_TRUE(ModifiersMatch(0, 0));
  EXPECT_TRUE(ModifiersMatch(0, kCommand | kShift | 0xFFFF));
}

TEST(KeyEquivalentModifiers, FlagsOutsideDeviceIndependentBitsNeverMatch) {
  // The low 16 bits are device-dependent; bits above 31 are beyond the
  // 32-bit comparison.
  EXPECT_FALSE(ModifiersMatch(0x1, 0x1));
  EXPECT_FALSE(ModifiersMatch(kCommand | 0x2, kCommand | 0x2));
  EXPECT_FALSE(ModifiersMatch(uint64_t(1) << 32, uint64_t(1) << 32));
  EXPECT_FALSE(ModifiersMatch(kCommand | (uint64_t(1) << 40), ~uint64_t(0)));
}

TEST(WrappedDayOfMonth, WrapsForwardAndBackwardWithinTheMonth) {
  EXPECT_EQ(WrappedDayOfMonth(31, 31, 1), 1);
  EXPECT_EQ(WrappedDayOfMonth(1, 31, -1), 31);
  EXPECT_EQ(WrappedDayOfMonth(28, 28, 1), 1);
  EXPECT_EQ(WrappedDayOfMonth(15, 30, 0), 15);
  EXPECT_EQ(WrappedDayOfMonth(15, 30, 30), 15);
  EXPECT_EQ(WrappedDayOfMonth(15, 30, -45), 30);
  EXPECT_EQ(WrappedDayOfMonth(10, 31, 5), 15);
}

TEST(WrappedDayOfMonth, ExtremeDeltasDoNotOverflow) {
  int64_t big = std::numeric_limits<int64_t>::max();
  int64_t small = std::numeric_limits<int64_t>::min();
  int64_t forward = WrappedDayOfMonth(31, 31, big);
  int64_t backward = WrappedDayOfMonth(1, 31, small);
  EXPECT_GE(forward, 1);
  EXPECT_LE(forward, 31);
  EXPECT_GE(backward, 1);
  EXPECT_LE(backward, 31);
  EXPECT_EQ(WrappedDayOfMonth(5, 0, 3), 5);
}
