// Keyframe arithmetic: which pair of keyframes a moment falls between, the
// values in between, and motion along a path.
#pragma once

#include <cstddef>
#include <vector>

namespace talvo::animation {

/** An animatable value as its components: one for a number, two for a
 * point or size, four for a rectangle. */
using Components = std::vector<double>;

Components Interpolate(const Components &from, const Components &to, double fraction);
Components Add(const Components &a, const Components &b);
Components Subtract(const Components &a, const Components &b);
Components Scale(const Components &a, double factor);
/** Euclidean distance; 0 for values of different shapes. */
double Distance(const Components &a, const Components &b);

enum class CalculationMode { Linear, Discrete, Paced };

/** Between keyframe `index` and `index + 1` at `fraction` (linear and paced);
 * for discrete mode, `index` is the keyframe that shows and `fraction` is 0. */
struct KeyframeLocation {
  size_t index = 0;
  double fraction = 0;
};

/** Key times used for `count` keyframes: the given ones when they fit the
 * mode (linear: one per keyframe; discrete: one per keyframe or one more;
 * ascending, within 0…1), otherwise evenly spaced. Paced mode ignores
 * them: see PacedKeyTimes. */
std::vector<double> EffectiveKeyTimes(const std::vector<double> &keyTimes, size_t count,
                                      CalculationMode mode);

/** Key times proportional to the lengths of the segments between keyframes;
 * evenly spaced when every length is 0. */
std::vector<double> PacedKeyTimes(const std::vector<double> &segmentLengths);

/** Where `t` (0…1, after the animation's timing function) falls among
 * `count` keyframes with the given effective key times. */
KeyframeLocation LocateKeyframe(const std::vector<double> &keyTimes, size_t count,
                                CalculationMode mode, double t);

struct PathPoint {
  double x = 0;
  double y = 0;
};

/** A motion path as keyframes: every element's end point is a keyframe; the
 * segment between two is a line, a cubic curve (quadratic curves are raised
 * to cubic) or, after a move inside the path, a jump. */
class KeyframePath {
 public:
  void moveTo(PathPoint p);
  void lineTo(PathPoint p);
  void quadTo(PathPoint c, PathPoint p);
  void curveTo(PathPoint c1, PathPoint c2, PathPoint p);
  void close();

  /** Keyframes: one more than the segments (0 for an empty path). */
  size_t keyframeCount() const { return segments_.empty() ? (hasStart_ ? 1 : 0) : segments_.size() + 1; }
  size_t segmentCount() const { return segments_.size(); }
  double segmentLength(size_t index) const;

  /** The point at curve parameter `u` (0…1) of segment `index`. */
  PathPoint pointOnSegment(size_t index, double u) const;
  /** The point a distance `fraction` of the segment's length along it. */
  PathPoint pointAtLengthFraction(size_t index, double fraction) const;

  /** The point at `t` (0…1): linear and discrete modes use the key times
   * (empty: evenly spaced) and the curve parameter; paced mode moves at
   * constant speed along the whole path. */
  PathPoint evaluate(double t, CalculationMode mode, const std::vector<double> &keyTimes) const;

 private:
  enum class Kind { Line, Cubic, Jump };
  struct Segment {
    Kind kind;
    PathPoint p0, c1, c2, p3;
  };
  void append(Kind kind, PathPoint c1, PathPoint c2, PathPoint p);

  std::vector<Segment> segments_;
  PathPoint current_;
  PathPoint subpathStart_;
  bool hasStart_ = false;
};

}  // namespace talvo::animation
