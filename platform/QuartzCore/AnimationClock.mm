// The one animation clock: a repeating timer on the main run loop, in every
// mode a tracking or modal loop runs (GNUstep never fires timers added for
// NSRunLoopCommonModes), scheduled only while animations run.

#import "platform/QuartzCore/TVAnimationTrack.h"

#import <AppKit/AppKit.h>

#include "platform/QuartzCore/engine/AnimationClock.hpp"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

namespace {

talvo::animation::AnimationClock &Clock() {
  static auto *clock = new talvo::animation::AnimationClock;  // lives for the process
  return *clock;
}

NSMutableArray *activeTracks = nil;
NSTimer *frameTimer = nil;

}  // namespace

@interface _TVAnimationClockDriver : NSObject
+ (void)frame:(NSTimer *)timer;
@end

static void TVStopFrameTimer() {
  NSTimer *timer = frameTimer;
  frameTimer = nil;
  [timer invalidate];
  [timer release];
}

static void TVStartFrameTimerIfNeeded() {
  if (frameTimer != nil || Clock().manual() || [activeTracks count] == 0 ||
      ![NSThread isMainThread]) {
    return;
  }
  frameTimer = [[NSTimer timerWithTimeInterval:talvo::animation::kFrameInterval
                                        target:[_TVAnimationClockDriver class]
                                      selector:@selector(frame:)
                                      userInfo:nil
                                       repeats:YES] retain];
  NSRunLoop *loop = [NSRunLoop currentRunLoop];
  [loop addTimer:frameTimer forMode:NSDefaultRunLoopMode];
  [loop addTimer:frameTimer forMode:NSModalPanelRunLoopMode];
  [loop addTimer:frameTimer forMode:NSEventTrackingRunLoopMode];
}

static void TVRunFrame() {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  CFTimeInterval now = Clock().now();
  // Delegates and completions may add or remove animations.
  NSArray *snapshot = [NSArray arrayWithArray:activeTracks];
  for (_TVAnimationTrack *track in snapshot) {
    [track advanceToTime:now];
  }
  if ([activeTracks count] == 0) {
    TVStopFrameTimer();
  }
  [pool drain];
}

@implementation _TVAnimationClockDriver

+ (void)frame:(NSTimer *)timer {
  TVRunFrame();
}

@end

CFTimeInterval CACurrentMediaTime(void) {
  return Clock().now();
}

CFTimeInterval TVAnimationClockNow(void) {
  return Clock().now();
}

void TVAnimationClockAddTrack(_TVAnimationTrack *track) {
  if (activeTracks == nil) {
    activeTracks = [NSMutableArray new];
  }
  if ([activeTracks indexOfObjectIdenticalTo:track] == NSNotFound) {
    [activeTracks addObject:track];
  }
  TVStartFrameTimerIfNeeded();
}

void TVAnimationClockRemoveTrack(_TVAnimationTrack *track) {
  [activeTracks removeObjectIdenticalTo:track];
  if ([activeTracks count] == 0) {
    TVStopFrameTimer();
  }
}

void TVAnimationClockSetManual(BOOL manual) {
  Clock().setManual(manual);
  if (manual) {
    TVStopFrameTimer();
  } else {
    TVStartFrameTimerIfNeeded();
  }
}

BOOL TVAnimationClockIsManual(void) {
  return Clock().manual();
}

void TVAnimationClockAdvance(NSTimeInterval seconds) {
  Clock().advance(seconds);
  TVRunFrame();
}

BOOL TVAnimationClockIsRunning(void) {
  return frameTimer != nil;
}

NSUInteger TVAnimationClockActiveCount(void) {
  return [activeTracks count];
}
