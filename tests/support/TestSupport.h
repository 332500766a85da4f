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

// Takes and sends every event that arrives within `seconds` (window-server
// traffic, synthesized input, queued blocks), each under a pool of its own.
void PumpEvents(double seconds = 0.05);

// Counts its deallocations into *deaths, so that tests see exactly when an
// object dies.
@interface TVDeathWatch : NSObject {
  int *_deaths;
}
@property(nonatomic, assign) int *deaths;
@end

// Sends a mouse event of `type` at `point` (in `view`'s coordinates) to the
// application, for `view`'s window.
void SendMouseEvent(NSView *view, NSEventType type, NSPoint point);

// A date at any time at all, infinities and NaN included, as Apple's NSDate
// allows (GNUstep's own dates refuse them).
@interface TVFixedDate : NSDate {
  NSTimeInterval _interval;
}
@end

// A key-down event for `window` (nil: no window).
NSEvent *KeyDownEvent(NSWindow *window, NSString *characters, NSString *charactersIgnoringModifiers,
                      NSUInteger modifierFlags);

// A view that becomes first responder and records the characters of the
// key-down events that reach it.
@interface TVKeyRecorderView : NSView {
  NSMutableArray *_received;
}
@property(nonatomic, readonly) NSMutableArray *received;
@end

// A titled window (no window manager under Xvfb: frame = content) whose
// content is a key recorder, ordered front and made key. Returned +1.
NSWindow *NewKeyWindowWithRecorder();

// Objective-C equality for GoogleTest, printing both descriptions.
#define EXPECT_NSEQ(actual, expected)                                              \
  EXPECT_TRUE([(actual) isEqual:(expected)])                                       \
      << "actual: " << [[(id)(actual) description] UTF8String]                     \
      << "\nexpected: " << [[(id)(expected) description] UTF8String]

// A fixture with a key window whose first responder records key-downs;
// skipped without a window server.
class KeyWindowTest : public PooledTest {
 protected:
  void SetUp() override {
    PooledTest::SetUp();
    if (!HasWindowServer()) {
      GTEST_SKIP() << "needs a window server";
    }
    window_.reset(NewKeyWindowWithRecorder());
  }
  void TearDown() override {
    [window_.get() close];
    window_.reset();
    PooledTest::TearDown();
  }
  NSMutableArray *received() { return [(TVKeyRecorderView *)[window_.get() contentView] received]; }

  Owned<NSWindow> window_;
};

// A null of any pointer or block type that the compiler cannot see through,
// for tests that pass nil where the API declares nonnull.
template <typename T>
T NullOf() {
  volatile T value = nullptr;
  return value;
}
