// Core Animation's media timing: where an animation stands at a moment of
// its parent's time (begin time, speed, repeats, autoreverse, fill modes).
#pragma once

namespace talvo::animation {

struct TimingParameters {
  double beginTime = 0;  // in the parent's (the clock's) time
  double duration = 0.25;  // one forward pass; must be > 0
  double speed = 1;
  double timeOffset = 0;  // shifts local time; no wrap-around
  double repeatCount = 0;  // 0 plays once; may be fractional or infinite
  double repeatDuration = 0;  // when > 0, overrides repeatCount
  bool autoreverses = false;
  bool fillBackwards = false;
  bool fillForwards = false;
};

enum class TimingPhase { Before, Active, After };

struct TimingState {
  TimingPhase phase = TimingPhase::Before;
  // Whether the animation's value shows at this moment (active, or held by
  // a fill mode).
  bool contributes = false;
  // Progress through the current pass, 0…1, before any timing function.
  double fraction = 0;
  // Completed repeats (for cumulative animations).
  double iteration = 0;
};

/** Length of the active period in local time: every repeat, each forward
 * and (with autoreverse) backward pass. Infinite for endless repeats. */
double ActiveDuration(const TimingParameters &timing);

/** The parent time at which the active period ends (infinite if never; a
 * speed of 0 freezes the animation, which then never ends). */
double EndTime(const TimingParameters &timing);

TimingState EvaluateTiming(const TimingParameters &timing, double parentTime);

}  // namespace talvo::animation
