// Animation timing engines: the cubic Bézier timing curve, media timing
// (repeats, autoreverse, fill modes) and the animation clock.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "platform/QuartzCore/engine/AnimationClock.hpp"
#include "platform/QuartzCore/engine/MediaTiming.hpp"
#include "platform/QuartzCore/engine/TimingCurve.hpp"

using namespace talvo::animation;

namespace {

// The curve in Bernstein form, written independently of the solver.
double Bernstein(double p1, double p2, double s) {
  double v = 1 - s;
  return 3 * v * v * s * p1 + 3 * v * s * s * p2 + s * s * s;
}

void ExpectOnCurve(const TimingCurve &curve, double tolerance = 1e-7) {
  for (int i = 1; i < 100; i++) {
    double s = i / 100.0;
    double x = Bernstein(curve.x1(), curve.x2(), s);
    double y = Bernstein(curve.y1(), curve.y2(), s);
    EXPECT_NEAR(curve.solve(x), y, tolerance) << "at s = " << s;
  }
}

}  // namespace

// --- Timing curve -----------------------------------------------------------

TEST(AnimationTimingCurve, EndsAreExactForEveryCurve) {
  const double points[][4] = {{0, 0, 1, 1},       {0.42, 0, 1, 1},   {0, 0, 0.58, 1},
                              {0.42, 0, 0.58, 1}, {0.25, 0.1, 0.25, 1}, {0.9, -0.5, 0.1, 1.5}};
  for (const auto &p : points) {
    TimingCurve curve(p[0], p[1], p[2], p[3]);
    EXPECT_EQ(curve.solve(0), 0.0);
    EXPECT_EQ(curve.solve(1), 1.0);
    // Inputs outside the unit interval are clamped.
    EXPECT_EQ(curve.solve(-0.5), 0.0);
    EXPECT_EQ(curve.solve(1.5), 1.0);
  }
}

TEST(AnimationTimingCurve, NamedCurvesMatchReferenceValues) {
  // Reference values from an independent bisection of each curve.
  EXPECT_NEAR(TimingCurve(0.25, 0.1, 0.25, 1).solve(0.5), 0.802403387584857, 1e-6);
  EXPECT_NEAR(TimingCurve(0.25, 0.1, 0.25, 1).solve(0.25), 0.40851059135539586, 1e-6);
  EXPECT_NEAR(TimingCurve(0.42, 0, 1, 1).solve(0.5), 0.31535681257253945, 1e-6);
  EXPECT_NEAR(TimingCurve(0.42, 0, 1, 1).solve(0.1), 0.017026609651562934, 1e-6);
  EXPECT_NEAR(TimingCurve(0, 0, 0.58, 1).solve(0.5), 0.6846431874274606, 1e-6);
  EXPECT_NEAR(TimingCurve(0, 0, 0.58, 1).solve(0.9), 0.982973390348437, 1e-6);
  EXPECT_NEAR(TimingCurve(0.42, 0, 0.58, 1).solve(0.25), 0.1291619310473198, 1e-6);
}

TEST(AnimationTimingCurve, LinearIsIdentity) {
  TimingCurve linear = TimingCurve::linear();
  for (int i = 0; i <= 20; i++) {
    EXPECT_NEAR(linear.solve(i / 20.0), i / 20.0, 1e-9);
  }
}

TEST(AnimationTimingCurve, EaseInEaseOutIsPointSymmetric) {
  TimingCurve curve(0.42, 0, 0.58, 1);
  EXPECT_NEAR(curve.solve(0.5), 0.5, 1e-9);
  for (int i = 1; i < 10; i++) {
    double t = i / 10.0;
    EXPECT_NEAR(curve.solve(t) + curve.solve(1 - t), 1.0, 1e-8);
  }
}

TEST(AnimationTimingCurve, SolvesOnTheCurveEverywhere) {
  ExpectOnCurve(TimingCurve(0.25, 0.1, 0.25, 1));
  ExpectOnCurve(TimingCurve(0.42, 0, 1, 1));
  ExpectOnCurve(TimingCurve(0.68, -0.55, 0.27, 1.55));  // overshoots in y
}

TEST(AnimationTimingCurve, FallsBackToBisectionWhereTheSlopeVanishes) {
  // x'(s) = 3(1 - 2s)^2 is zero at s = 0.5: Newton alone stalls there.
  TimingCurve curve(1, 0, 0, 1);
  ExpectOnCurve(curve, 1e-6);
  EXPECT_NEAR(curve.solve(0.5), 0.5, 1e-6);
  double previous = 0;
  for (int i = 1; i <= 200; i++) {
    double y = curve.solve(i / 200.0);
    EXPECT_GE(y, previous - 1e-9);
    previous = y;
  }
}

TEST(AnimationTimingCurve, ParameterForXInvertsX) {
  TimingCurve curve(0.42, 0, 0.58, 1);
  for (int i = 0; i <= 10; i++) {
    double s = curve.parameterForX(i / 10.0);
    EXPECT_NEAR(curve.x(s), i / 10.0, 1e-9);
  }
}

TEST(AnimationTimingCurve, ClampsXControlPointsToKeepTheCurveAFunction) {
  TimingCurve curve(1.5, 0, -0.5, 1);
  double previous = 0;
  for (int i = 1; i <= 100; i++) {
    double y = curve.solve(i / 100.0);
    EXPECT_GE(y, previous - 1e-9);
    previous = y;
  }
  EXPECT_NEAR(curve.solve(0.5), TimingCurve(1, 0, 0, 1).solve(0.5), 1e-9);
}

// --- Media timing -----------------------------------------------------------

TEST(AnimationMediaTiming, OnePassFromBeginToEnd) {
  TimingParameters timing;
  timing.beginTime = 10;
  timing.duration = 2;
  TimingState before = EvaluateTiming(timing, 9.5);
  EXPECT_EQ(before.phase, TimingPhase::Before);
  EXPECT_FALSE(before.contributes);

  TimingState start = EvaluateTiming(timing, 10);
  EXPECT_EQ(start.phase, TimingPhase::Active);
  EXPECT_TRUE(start.contributes);
  EXPECT_DOUBLE_EQ(start.fraction, 0);

  EXPECT_DOUBLE_EQ(EvaluateTiming(timing, 10.5).fraction, 0.25);
  EXPECT_DOUBLE_EQ(EvaluateTiming(timing, 11.999).fraction, 0.9995);

  TimingState end = EvaluateTiming(timing, 12);
  EXPECT_EQ(end.phase, TimingPhase::After);
  EXPECT_FALSE(end.contributes);  // removed fill: the model value shows again
  EXPECT_DOUBLE_EQ(end.fraction, 1);
  EXPECT_DOUBLE_EQ(EndTime(timing), 12);
}

TEST(AnimationMediaTiming, FillModesHoldTheEndValues) {
  TimingParameters timing;
  timing.beginTime = 5;
  timing.duration = 1;
  timing.fillForwards = true;
  EXPECT_FALSE(EvaluateTiming(timing, 4).contributes);
  TimingState after = EvaluateTiming(timing, 100);
  EXPECT_TRUE(after.contributes);
  EXPECT_DOUBLE_EQ(after.fraction, 1);

  timing.fillForwards = false;
  timing.fillBackwards = true;
  TimingState before = EvaluateTiming(timing, 4);
  EXPECT_TRUE(before.contributes);
  EXPECT_DOUBLE_EQ(before.fraction, 0);
  EXPECT_FALSE(EvaluateTiming(timing, 7).contributes);
}

TEST(AnimationMediaTiming, AutoreverseRunsBackAndDoublesTheActiveTime) {
  TimingParameters timing;
  timing.duration = 1;
  timing.autoreverses = true;
  EXPECT_DOUBLE_EQ(ActiveDuration(timing), 2);
  EXPECT_DOUBLE_EQ(EvaluateTiming(timing, 0.5).fraction, 0.5);
  EXPECT_DOUBLE_EQ(EvaluateTiming(timing, 1).fraction, 1);
  EXPECT_DOUBLE_EQ(EvaluateTiming(timing, 1.25).fraction, 0.75);
  EXPECT_EQ(EvaluateTiming(timing, 1.9).phase, TimingPhase::Active);
  TimingState end = EvaluateTiming(timing, 2);
  EXPECT_EQ(end.phase, TimingPhase::After);
  EXPECT_DOUBLE_EQ(end.fraction, 0);  // back where it started
}

TEST(AnimationMediaTiming, RepeatsCountWholeAndPartialPasses) {
  TimingParameters timing;
  timing.duration = 1;
  timing.repeatCount = 2.5;
  EXPECT_DOUBLE_EQ(ActiveDuration(timing), 2.5);
  TimingState second = EvaluateTiming(timing, 1.25);
  EXPECT_DOUBLE_EQ(second.iteration, 1);
  EXPECT_DOUBLE_EQ(second.fraction, 0.25);
  TimingState end = EvaluateTiming(timing, 3);
  EXPECT_DOUBLE_EQ(end.iteration, 2);
  EXPECT_DOUBLE_EQ(end.fraction, 0.5);

  // A whole number of passes ends at the end of the last pass, not at the
  // start of one more.
  timing.repeatCount = 2;
  TimingState whole = EvaluateTiming(timing, 2);
  EXPECT_EQ(whole.phase, TimingPhase::After);
  EXPECT_DOUBLE_EQ(whole.iteration, 1);
  EXPECT_DOUBLE_EQ(whole.fraction, 1);
}

TEST(AnimationMediaTiming, RepeatDurationOverridesRepeatCount) {
  TimingParameters timing;
  timing.duration = 1;
  timing.repeatCount = 10;
  timing.repeatDuration = 1.5;
  EXPECT_DOUBLE_EQ(ActiveDuration(timing), 1.5);
  EXPECT_EQ(EvaluateTiming(timing, 1.5).phase, TimingPhase::After);
}

TEST(AnimationMediaTiming, EndlessRepeatsNeverEnd) {
  TimingParameters timing;
  timing.duration = 0.5;
  timing.repeatCount = std::numeric_limits<double>::infinity();
  EXPECT_TRUE(std::isinf(EndTime(timing)));
  TimingState late = EvaluateTiming(timing, 1e6 + 0.125);
  EXPECT_EQ(late.phase, TimingPhase::Active);
  EXPECT_NEAR(late.fraction, 0.25, 1e-6);
}

TEST(AnimationMediaTiming, SpeedScalesLocalTime) {
  TimingParameters timing;
  timing.beginTime = 1;
  timing.duration = 1;
  timing.speed = 2;
  EXPECT_DOUBLE_EQ(EndTime(timing), 1.5);
  EXPECT_DOUBLE_EQ(EvaluateTiming(timing, 1.25).fraction, 0.5);
  timing.speed = 0;
  EXPECT_TRUE(std::isinf(EndTime(timing)));
  EXPECT_EQ(EvaluateTiming(timing, 100).phase, TimingPhase::Active);
}

// --- Clock --------------------------------------------------------------------

TEST(AnimationClockEngine, ManualTimeMovesOnlyWhenAdvanced) {
  AnimationClock clock;
  clock.setManual(true);
  double start = clock.now();
  EXPECT_EQ(clock.now(), start);
  clock.advance(0.5);
  EXPECT_DOUBLE_EQ(clock.now(), start + 0.5);
  clock.advance(-1);
  clock.advance(std::numeric_limits<double>::quiet_NaN());
  clock.advance(std::numeric_limits<double>::infinity());
  EXPECT_DOUBLE_EQ(clock.now(), start + 0.5);
}

TEST(AnimationClockEngine, ManualTimeStartsAtRealTime) {
  AnimationClock clock;
  double real = clock.now();
  clock.setManual(true);
  EXPECT_GE(clock.now(), real);
  EXPECT_LT(clock.now(), real + 1);
}

TEST(AnimationClockEngine, RealTimeResumesWithoutGoingBack) {
  AnimationClock clock;
  clock.setManual(true);
  clock.advance(1000);
  double manual = clock.now();
  clock.setManual(false);
  EXPECT_GE(clock.now(), manual);
  EXPECT_LT(clock.now(), manual + 1);
  // Advancing has no effect on real time.
  double before = clock.now();
  clock.advance(500);
  EXPECT_LT(clock.now(), before + 1);
}
