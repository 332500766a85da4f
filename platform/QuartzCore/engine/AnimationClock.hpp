// The time every animation reads: the monotonic clock, or a manual clock
// that only moves when told to (for tests that check a value at an exact
// moment).
#pragma once

namespace talvo::animation {

/** Frame rate of the run-loop clock. */
constexpr double kFrameInterval = 1.0 / 60.0;

class AnimationClock {
 public:
  /** Seconds of CLOCK_MONOTONIC. */
  static double MonotonicSeconds();

  double now() const;
  bool manual() const { return manual_; }

  /** Switching keeps time continuous: manual time starts where real time
   * stood, and real time resumes from the manual time, never going back. */
  void setManual(bool manual);

  /** Moves manual time forward; ignored for real time and for negative or
   * non-finite steps. */
  void advance(double seconds);

 private:
  bool manual_ = false;
  double manualTime_ = 0;
  double offset_ = 0;  // added to monotonic time after a manual stretch
};

}  // namespace talvo::animation
