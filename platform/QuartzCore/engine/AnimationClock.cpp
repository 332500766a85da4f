#include "platform/QuartzCore/engine/AnimationClock.hpp"

#include <time.h>

#include <cmath>

namespace talvo::animation {

double AnimationClock::MonotonicSeconds() {
  timespec now;
  clock_gettime(CLOCK_MONOTONIC, &now);
  return double(now.tv_sec) + double(now.tv_nsec) * 1e-9;
}

double AnimationClock::now() const {
  return manual_ ? manualTime_ : MonotonicSeconds() + offset_;
}

void AnimationClock::setManual(bool manual) {
  if (manual == manual_) {
    return;
  }
  if (manual) {
    manualTime_ = now();
    manual_ = true;
  } else {
    double real = MonotonicSeconds();
    // Only ever forward: a manual clock that ran ahead keeps its lead.
    if (manualTime_ > real + offset_) {
      offset_ = manualTime_ - real;
    }
    manual_ = false;
  }
}

void AnimationClock::advance(double seconds) {
  if (manual_ && std::isfinite(seconds) && seconds > 0) {
    manualTime_ += seconds;
  }
}

}  // namespace talvo::animation
