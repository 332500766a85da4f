#include "platform/QuartzCore/engine/MediaTiming.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace talvo::animation {

namespace {

double CycleLength(const TimingParameters &timing) {
  return timing.duration * (timing.autoreverses ? 2 : 1);
}

}  // namespace

double ActiveDuration(const TimingParameters &timing) {
  if (timing.repeatDuration > 0) {
    return timing.repeatDuration;
  }
  double repeats = timing.repeatCount > 0 ? timing.repeatCount : 1;
  return CycleLength(timing) * repeats;
}

double EndTime(const TimingParameters &timing) {
  double active = ActiveDuration(timing);
  if (timing.speed == 0 || std::isinf(active)) {
    return std::numeric_limits<double>::infinity();
  }
  return timing.beginTime + (active - timing.timeOffset) / std::fabs(timing.speed);
}

TimingState EvaluateTiming(const TimingParameters &timing, double parentTime) {
  TimingState state;
  double duration = timing.duration > 0 ? timing.duration : 0.25;
  double cycle = duration * (timing.autoreverses ? 2 : 1);
  double active = ActiveDuration(timing);
  double local = (parentTime - timing.beginTime) * timing.speed + timing.timeOffset;

  double position;  // local time at which the value is read
  if (local < 0) {
    state.phase = TimingPhase::Before;
    state.contributes = timing.fillBackwards;
    position = 0;
  } else if (local >= active) {
    state.phase = TimingPhase::After;
    state.contributes = timing.fillForwards;
    position = active;
  } else {
    state.phase = TimingPhase::Active;
    state.contributes = true;
    position = local;
  }

  double iteration = std::floor(position / cycle);
  double within = position - iteration * cycle;
  // The end of a whole number of cycles belongs to the cycle that ends
  // there, not to the next one.
  if (state.phase == TimingPhase::After && within <= 0 && iteration > 0) {
    iteration -= 1;
    within = cycle;
  }
  double fraction = within <= duration ? within / duration : (cycle - within) / duration;
  state.fraction = std::clamp(fraction, 0.0, 1.0);
  state.iteration = iteration;
  return state;
}

}  // namespace talvo::animation
