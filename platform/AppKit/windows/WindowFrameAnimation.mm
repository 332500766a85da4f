// -[NSWindow setFrame:display:animate:] as AppKit runs it: the frame moves
// over -animationResizeTime: with an ease-in-out pace and the call returns
// when it has arrived. GNUstep's own starts a non-blocking animation on a
// timer of its own instead. Each frame pumps events, because every resize
// queues one for the window (left alone they pile up and slow the server
// down). Time comes from the platform's animation clock; under the manual
// clock each frame advances it by one frame interval, so tests see the
// same frames every run.

#import <AppKit/AppKit.h>
#import <QuartzCore/QuartzCore.h>

#include <cmath>

#import "platform/QuartzCore/TVAnimationClock.h"
#import "platform/objc/TVRuntime.h"
#include "platform/QuartzCore/engine/AnimationClock.hpp"
#include "platform/QuartzCore/engine/TimingCurve.hpp"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

namespace {

namespace anim = talvo::animation;

bool IsFiniteRect(NSRect r) {
  return std::isfinite(r.origin.x) && std::isfinite(r.origin.y) && std::isfinite(r.size.width) &&
         std::isfinite(r.size.height);
}

CGFloat Mix(CGFloat from, CGFloat to, double t) { return from + (to - from) * t; }

NSRect MixRect(NSRect from, NSRect to, double t) {
  // Whole points, as the window server takes them.
  return NSMakeRect(std::round(Mix(from.origin.x, to.origin.x, t)),
                    std::round(Mix(from.origin.y, to.origin.y, t)),
                    std::round(Mix(from.size.width, to.size.width, t)),
                    std::round(Mix(from.size.height, to.size.height, t)));
}

// One pass over the events already queued, then until `deadline` if it
// lies ahead (the rest of the frame).
void PumpEventsUntil(NSDate *deadline) {
  NSEvent *event;
  // As a blocking animation does on macOS, user input waits in the queue
  // until the animation ends: a click handled in the middle of it would
  // start a nested tracking loop whose mouse-up the next frame takes.
  const NSUInteger input = NSLeftMouseDownMask | NSLeftMouseUpMask | NSRightMouseDownMask |
                           NSRightMouseUpMask | NSOtherMouseDownMask | NSOtherMouseUpMask |
                           NSMouseMovedMask | NSLeftMouseDraggedMask | NSRightMouseDraggedMask |
                           NSOtherMouseDraggedMask | NSKeyDownMask | NSKeyUpMask |
                           NSFlagsChangedMask | NSScrollWheelMask;
  while ((event = [NSApp nextEventMatchingMask:NSAnyEventMask & ~input
                                     untilDate:deadline
                                        inMode:NSEventTrackingRunLoopMode
                                       dequeue:YES]) != nil) {
    [NSApp sendEvent:event];
  }
}

void (*originalSetFrameDisplayAnimate)(id, SEL, NSRect, BOOL, BOOL) = NULL;

bool animating = false;

void TVSetFrameDisplayAnimate(NSWindow *window, SEL selector, NSRect frame, BOOL display,
                              BOOL animate) {
  if (!IsFiniteRect(frame)) {
    return;
  }
  NSTimeInterval duration = animate ? [window animationResizeTime:frame] : 0;
  // Nested calls (a delegate moving the window again) and windows off
  // screen jump; so does a zero or unusable duration.
  if (!animate || animating || NSApp == nil || ![window isVisible] || !std::isfinite(duration) ||
      duration <= 0) {
    [window setFrame:frame display:display];
    return;
  }
  animating = true;
  [window retain];
  const anim::TimingCurve curve(0.42, 0, 0.58, 1.0);
  const NSRect start = [window frame];
  const bool manual = TVAnimationClockIsManual();
  const CFTimeInterval begin = CACurrentMediaTime();
  @try {
    for (;;) {
      NSAutoreleasePool *pool = [NSAutoreleasePool new];
      if (manual) {
        TVAnimationClockAdvance(anim::kFrameInterval);
      }
      double elapsed = CACurrentMediaTime() - begin;
      double t = elapsed >= duration ? 1.0 : elapsed / duration;
      [window setFrame:MixRect(start, frame, curve.solve(t)) display:display];
      NSDate *next = manual ? [NSDate distantPast]
                            : [NSDate dateWithTimeIntervalSinceNow:anim::kFrameInterval];
      PumpEventsUntil(next);
      [pool drain];
      if (t >= 1.0) {
        break;
      }
    }
  } @catch (NSException *exception) {
  }
  // The exact target, whatever rounding the frames did.
  if (!NSEqualRects([window frame], frame)) {
    [window setFrame:frame display:display];
  }
  [window release];
  animating = false;
}

}  // namespace

@interface _TVWindowFrameAnimationHooks : NSObject
@end

@implementation _TVWindowFrameAnimationHooks

+ (void)load {
  originalSetFrameDisplayAnimate = (void (*)(id, SEL, NSRect, BOOL, BOOL))TVReplaceInstanceMethod(
      [NSWindow class], @selector(setFrame:display:animate:), (IMP)TVSetFrameDisplayAnimate);
}

@end
