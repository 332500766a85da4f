// Shared helpers for Talvo's Objective-C++ tests.
#pragma once

#import <AppKit/AppKit.h>

#include <gtest/gtest.h>

#include <functional>

// Owns one reference to an Objective-C object, so that a failed assertion
// does not leak it.
template <typename T>
class Owned {
 public:
  Owned() = default;
  explicit Owned(T *object) : object_(object) {}  // takes a +1 reference
  ~Owned() { [object_ release]; }
  Owned(const Owned &) = delete;
  Owned &operator=(const Owned &) = delete;
  void reset(T *object = nil) {
    [object_ release];
    object_ = object;
  }
  T *get() const { return object_; }
  operator T *() const { return object_; }

 private:
  T *object_ = nil;
};

// A fixture whose every test runs inside its own autorelease pool.
class PooledTest : public testing::Test {
 protected:
  void SetUp() override { pool_ = [NSAutoreleasePool new]; }
  void TearDown() override {
    [pool_ drain];
    pool_ = nil;
  }

 private:
  NSAutoreleasePool *pool_ = nil;
};

// Runs the main run loop until `done` answers true or `seconds` pass;
// returns whether `done` became true.
bool RunMainLoopUntil(const std::function<bool()> &done, double seconds = 2.0);

// Whether a window server is there (tests that need one skip without).
bool HasWindowServer();
