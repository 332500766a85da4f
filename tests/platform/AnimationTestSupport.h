// Shared helpers for the animation tests: a fixture on the manual animation
// clock, and a delegate that records what it is told.
#pragma once

#import <AppKit/AppKit.h>
#import <QuartzCore/QuartzCore.h>

#import "platform/QuartzCore/TVAnimationClock.h"
#import "support/TestSupport.h"

// Records animationDidStart: / animationDidStop:finished: as "start",
// "stop" and "cancel".
@interface TVAnimationEventRecorder : NSObject <CAAnimationDelegate> {
  NSMutableArray *_events;
}
@property(nonatomic, readonly) NSMutableArray *events;
@end

// Every test runs on the manual clock and must leave no animation running.
class AnimationTest : public PooledTest {
 protected:
  void SetUp() override;
  void TearDown() override;
  // Moves the clock and runs one frame.
  void Advance(double seconds) { TVAnimationClockAdvance(seconds); }
  // Runs one turn of the main run loop (performers, completions).
  void RunLoopTurn();
};

// An NSValue for a point, size or rect, and their components back.
NSValue *PointValue(double x, double y);
NSPoint PointOf(id value);

#define EXPECT_POINT_NEAR(point, ex, ey)      \
  do {                                        \
    NSPoint p_ = (point);                     \
    EXPECT_NEAR(p_.x, (ex), 1e-6);            \
    EXPECT_NEAR(p_.y, (ey), 1e-6);            \
  } while (0)

#define EXPECT_RECT_NEAR(rect, ex, ey, ew, eh) \
  do {                                         \
    NSRect r_ = (rect);                        \
    EXPECT_NEAR(r_.origin.x, (ex), 1e-6);      \
    EXPECT_NEAR(r_.origin.y, (ey), 1e-6);      \
    EXPECT_NEAR(r_.size.width, (ew), 1e-6);    \
    EXPECT_NEAR(r_.size.height, (eh), 1e-6);   \
  } while (0)
