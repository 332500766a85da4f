// Bad-input checks for the public API: each call runs inside @try and is
// timed. An escaped exception or a call over a second fails the test; a
// sanitizer report ends the process (and so the test) in the ASan build.
#pragma once

#import <AppKit/AppKit.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <limits>

// Arguments no caller should pass, and some will.
namespace bad {
inline const double kNaN = std::numeric_limits<double>::quiet_NaN();
inline const double kInf = std::numeric_limits<double>::infinity();
inline const double kHuge = 1e300;
inline const double kValues[] = {kNaN, kInf, -kInf, kHuge, -kHuge, -1.0, 0.0,
                                 std::numeric_limits<double>::denorm_min()};
// An object of a class no parameter takes.
inline id WrongObject() { return [NSNumber numberWithInt:7]; }
inline id WrongString() { return @"not this"; }
}  // namespace bad

// Runs `body`; fails if it raises or takes a second or more.
template <typename Body>
testing::AssertionResult CalmCall(const char *what, Body body) {
  auto start = std::chrono::steady_clock::now();
  @try {
    body();
  } @catch (NSException *exception) {
    return testing::AssertionFailure() << what << " raised " << [[exception name] UTF8String]
                                       << ": " << [[exception reason] UTF8String];
  } @catch (id other) {
    return testing::AssertionFailure() << what << " threw a non-exception object";
  }
  double seconds =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  if (seconds >= 1.0) {
    return testing::AssertionFailure() << what << " took " << seconds << " s";
  }
  return testing::AssertionSuccess();
}

// The call may be followed by `<< context`, like any EXPECT_.
#define EXPECT_CALM(...) EXPECT_TRUE(CalmCall(#__VA_ARGS__, [&]() { (void)(__VA_ARGS__); }))
