// Keyframe arithmetic: key times in each calculation mode, value
// interpolation and motion along a path.
#include <gtest/gtest.h>

#include <vector>

#include "platform/QuartzCore/engine/Keyframes.hpp"

using namespace talvo::animation;

namespace {

void ExpectLocation(KeyframeLocation at, size_t index, double fraction) {
  EXPECT_EQ(at.index, index);
  EXPECT_NEAR(at.fraction, fraction, 1e-9);
}

void ExpectPoint(PathPoint p, double x, double y, double tolerance = 1e-9) {
  EXPECT_NEAR(p.x, x, tolerance);
  EXPECT_NEAR(p.y, y, tolerance);
}

}  // namespace

TEST(AnimationKeyframes, LinearKeyTimesDefaultToEvenSpacing) {
  EXPECT_EQ(EffectiveKeyTimes({}, 3, CalculationMode::Linear), (std::vector<double>{0, 0.5, 1}));
  // A count that does not match, or times out of order, are ignored.
  EXPECT_EQ(EffectiveKeyTimes({0, 1}, 3, CalculationMode::Linear),
            (std::vector<double>{0, 0.5, 1}));
  EXPECT_EQ(EffectiveKeyTimes({0, 0.7, 0.2}, 3, CalculationMode::Linear),
            (std::vector<double>{0, 0.5, 1}));
  EXPECT_EQ(EffectiveKeyTimes({0, 0.8, 1}, 3, CalculationMode::Linear),
            (std::vector<double>{0, 0.8, 1}));
}

TEST(AnimationKeyframes, LinearLocatesTheSegmentByKeyTimes) {
  std::vector<double> times{0, 0.8, 1};
  ExpectLocation(LocateKeyframe(times, 3, CalculationMode::Linear, 0), 0, 0);
  ExpectLocation(LocateKeyframe(times, 3, CalculationMode::Linear, 0.4), 0, 0.5);
  ExpectLocation(LocateKeyframe(times, 3, CalculationMode::Linear, 0.8), 1, 0);
  ExpectLocation(LocateKeyframe(times, 3, CalculationMode::Linear, 0.9), 1, 0.5);
  ExpectLocation(LocateKeyframe(times, 3, CalculationMode::Linear, 1), 1, 1);
}

TEST(AnimationKeyframes, DiscreteHoldsEachValueForAnEqualShare) {
  std::vector<double> times = EffectiveKeyTimes({}, 4, CalculationMode::Discrete);
  EXPECT_EQ(times, (std::vector<double>{0, 0.25, 0.5, 0.75, 1}));
  EXPECT_EQ(LocateKeyframe(times, 4, CalculationMode::Discrete, 0).index, 0u);
  EXPECT_EQ(LocateKeyframe(times, 4, CalculationMode::Discrete, 0.2499).index, 0u);
  EXPECT_EQ(LocateKeyframe(times, 4, CalculationMode::Discrete, 0.25).index, 1u);
  EXPECT_EQ(LocateKeyframe(times, 4, CalculationMode::Discrete, 0.99).index, 3u);
  EXPECT_EQ(LocateKeyframe(times, 4, CalculationMode::Discrete, 1).index, 3u);
  EXPECT_EQ(LocateKeyframe(times, 4, CalculationMode::Discrete, 0.6).fraction, 0);
}

TEST(AnimationKeyframes, DiscreteAcceptsOneKeyTimePerValue) {
  std::vector<double> times = EffectiveKeyTimes({0, 0.9}, 2, CalculationMode::Discrete);
  EXPECT_EQ(times, (std::vector<double>{0, 0.9}));
  EXPECT_EQ(LocateKeyframe(times, 2, CalculationMode::Discrete, 0.89).index, 0u);
  EXPECT_EQ(LocateKeyframe(times, 2, CalculationMode::Discrete, 0.9).index, 1u);
}

TEST(AnimationKeyframes, PacedTimesFollowDistance) {
  EXPECT_EQ(PacedKeyTimes({1, 3}), (std::vector<double>{0, 0.25, 1}));
  EXPECT_EQ(PacedKeyTimes({0, 0}), (std::vector<double>{0, 0.5, 1}));
  // Paced mode ignores given key times.
  EXPECT_EQ(EffectiveKeyTimes({0, 0.9, 1}, 3, CalculationMode::Paced),
            (std::vector<double>{0, 0.5, 1}));
}

TEST(AnimationKeyframes, ValuesInterpolateComponentwise) {
  EXPECT_EQ(Interpolate({0, 10}, {10, 30}, 0.25), (Components{2.5, 15}));
  EXPECT_EQ(Add({1, 2}, {3, 4}), (Components{4, 6}));
  EXPECT_EQ(Subtract({1, 2}, {3, 4}), (Components{-2, -2}));
  EXPECT_DOUBLE_EQ(Distance({0, 0}, {3, 4}), 5);
  // Values of different shapes do not blend: the start holds until the end.
  EXPECT_EQ(Interpolate({1}, {1, 2}, 0.99), (Components{1}));
  EXPECT_EQ(Interpolate({1}, {1, 2}, 1), (Components{1, 2}));
  EXPECT_DOUBLE_EQ(Distance({1}, {1, 2}), 0);
}

TEST(AnimationKeyframePath, EveryEndPointIsAKeyframe) {
  KeyframePath path;
  path.moveTo({0, 0});
  path.lineTo({10, 0});
  path.lineTo({10, 30});
  EXPECT_EQ(path.keyframeCount(), 3u);
  EXPECT_DOUBLE_EQ(path.segmentLength(1), 30);
  ExpectPoint(path.evaluate(0, CalculationMode::Linear, {}), 0, 0);
  ExpectPoint(path.evaluate(0.25, CalculationMode::Linear, {}), 5, 0);
  ExpectPoint(path.evaluate(0.5, CalculationMode::Linear, {}), 10, 0);
  ExpectPoint(path.evaluate(0.75, CalculationMode::Linear, {}), 10, 15);
  ExpectPoint(path.evaluate(1, CalculationMode::Linear, {}), 10, 30);
  ExpectPoint(path.evaluate(0.2, CalculationMode::Linear, {0, 0.8, 1}), 2.5, 0);
}

TEST(AnimationKeyframePath, PacedMovesAtConstantSpeed) {
  KeyframePath path;
  path.moveTo({0, 0});
  path.lineTo({10, 0});
  path.lineTo({10, 30});
  ExpectPoint(path.evaluate(0.125, CalculationMode::Paced, {}), 5, 0);
  ExpectPoint(path.evaluate(0.5, CalculationMode::Paced, {}), 10, 10);
}

TEST(AnimationKeyframePath, DiscreteJumpsBetweenEndPoints) {
  KeyframePath path;
  path.moveTo({0, 0});
  path.lineTo({10, 0});
  path.lineTo({10, 30});
  ExpectPoint(path.evaluate(0.3, CalculationMode::Discrete, {}), 0, 0);
  ExpectPoint(path.evaluate(0.4, CalculationMode::Discrete, {}), 10, 0);
  ExpectPoint(path.evaluate(0.7, CalculationMode::Discrete, {}), 10, 30);
}

TEST(AnimationKeyframePath, CurvesFollowTheirControlPoints) {
  KeyframePath cubic;
  cubic.moveTo({0, 0});
  cubic.curveTo({0, 10}, {10, 10}, {10, 0});
  ExpectPoint(cubic.evaluate(0.5, CalculationMode::Linear, {}), 5, 7.5);
  // Paced: the middle of a symmetric curve is its middle by length too.
  ExpectPoint(cubic.evaluate(0.5, CalculationMode::Paced, {}), 5, 7.5, 1e-3);

  KeyframePath quad;
  quad.moveTo({0, 0});
  quad.quadTo({5, 10}, {10, 0});
  ExpectPoint(quad.pointOnSegment(0, 0.5), 5, 5);
  ExpectPoint(quad.pointOnSegment(0, 0.25), 2.5, 3.75);
}

TEST(AnimationKeyframePath, MovesInsideThePathJumpAndClosesReturn) {
  KeyframePath path;
  path.moveTo({0, 0});
  path.lineTo({10, 0});
  path.moveTo({20, 0});
  path.lineTo({30, 0});
  EXPECT_EQ(path.keyframeCount(), 4u);
  EXPECT_DOUBLE_EQ(path.segmentLength(1), 0);
  ExpectPoint(path.evaluate(0.5, CalculationMode::Linear, {}), 10, 0);
  ExpectPoint(path.evaluate(0.7, CalculationMode::Linear, {}), 21, 0);

  KeyframePath closed;
  closed.moveTo({0, 0});
  closed.lineTo({10, 0});
  closed.lineTo({10, 10});
  closed.close();
  EXPECT_EQ(closed.segmentCount(), 3u);
  ExpectPoint(closed.evaluate(1, CalculationMode::Linear, {}), 0, 0);
}

TEST(AnimationKeyframePath, EmptyAndSinglePointPaths) {
  KeyframePath empty;
  EXPECT_EQ(empty.keyframeCount(), 0u);
  ExpectPoint(empty.evaluate(0.5, CalculationMode::Linear, {}), 0, 0);
  KeyframePath point;
  point.moveTo({3, 4});
  EXPECT_EQ(point.keyframeCount(), 1u);
  ExpectPoint(point.evaluate(0.5, CalculationMode::Paced, {}), 3, 4);
}
