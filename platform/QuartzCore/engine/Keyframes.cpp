#include "platform/QuartzCore/engine/Keyframes.hpp"

#include <algorithm>
#include <cmath>

namespace talvo::animation {

Components Interpolate(const Components &from, const Components &to, double fraction) {
  if (from.size() != to.size()) {
    return fraction < 1 ? from : to;
  }
  Components out(from.size());
  for (size_t i = 0; i < from.size(); i++) {
    out[i] = from[i] + (to[i] - from[i]) * fraction;
  }
  return out;
}

Components Add(const Components &a, const Components &b) {
  if (a.size() != b.size()) {
    return a;
  }
  Components out(a.size());
  for (size_t i = 0; i < a.size(); i++) {
    out[i] = a[i] + b[i];
  }
  return out;
}

Components Subtract(const Components &a, const Components &b) {
  return Add(a, Scale(b, -1));
}

Components Scale(const Components &a, double factor) {
  Components out(a);
  for (double &value : out) {
    value *= factor;
  }
  return out;
}

double Distance(const Components &a, const Components &b) {
  if (a.size() != b.size()) {
    return 0;
  }
  double sum = 0;
  for (size_t i = 0; i < a.size(); i++) {
    sum += (a[i] - b[i]) * (a[i] - b[i]);
  }
  return std::sqrt(sum);
}

namespace {

bool Ascending(const std::vector<double> &times) {
  for (size_t i = 0; i < times.size(); i++) {
    if (!(times[i] >= 0 && times[i] <= 1)) {
      return false;
    }
    if (i > 0 && times[i] < times[i - 1]) {
      return false;
    }
  }
  return true;
}

}  // namespace

std::vector<double> EffectiveKeyTimes(const std::vector<double> &keyTimes, size_t count,
                                      CalculationMode mode) {
  if (count == 0) {
    return {};
  }
  bool fits = mode == CalculationMode::Discrete
                  ? keyTimes.size() == count || keyTimes.size() == count + 1
                  : keyTimes.size() == count;
  if (mode != CalculationMode::Paced && fits && Ascending(keyTimes)) {
    return keyTimes;
  }
  // Discrete keyframes each hold for an equal share; linear ones sit at the
  // ends of equal segments.
  size_t intervals = mode == CalculationMode::Discrete ? count : count - 1;
  std::vector<double> even;
  for (size_t i = 0; i <= intervals; i++) {
    even.push_back(intervals == 0 ? 0 : double(i) / double(intervals));
  }
  return even;
}

std::vector<double> PacedKeyTimes(const std::vector<double> &segmentLengths) {
  double total = 0;
  for (double length : segmentLengths) {
    total += std::max(length, 0.0);
  }
  std::vector<double> times{0};
  double sum = 0;
  for (size_t i = 0; i < segmentLengths.size(); i++) {
    sum += std::max(segmentLengths[i], 0.0);
    times.push_back(total > 0 ? sum / total : double(i + 1) / double(segmentLengths.size()));
  }
  times.back() = 1;
  return times;
}

KeyframeLocation LocateKeyframe(const std::vector<double> &keyTimes, size_t count,
                                CalculationMode mode, double t) {
  KeyframeLocation location;
  if (count <= 1 || keyTimes.empty()) {
    return location;
  }
  if (mode == CalculationMode::Discrete) {
    // Keyframe i shows from its key time until the next one; the last from
    // its own key time (or, with one extra key time, from there) to the end.
    size_t shown = 0;
    for (size_t i = 0; i < count && i < keyTimes.size(); i++) {
      if (t >= keyTimes[i]) {
        shown = i;
      }
    }
    if (keyTimes.size() == count + 1 && t >= keyTimes[count]) {
      shown = count - 1;
    }
    location.index = shown;
    return location;
  }
  size_t last = std::min(count, keyTimes.size()) - 1;
  if (t <= keyTimes[0]) {
    return location;
  }
  if (t >= keyTimes[last]) {
    location.index = last - 1;
    location.fraction = 1;
    return location;
  }
  size_t i = 0;
  while (i + 1 < last && t >= keyTimes[i + 1]) {
    i++;
  }
  double span = keyTimes[i + 1] - keyTimes[i];
  location.index = i;
  location.fraction = span > 0 ? std::clamp((t - keyTimes[i]) / span, 0.0, 1.0) : 1;
  return location;
}

// --- Paths -----------------------------------------------------------------

namespace {

constexpr int kLengthSamples = 32;

PathPoint Lerp(PathPoint a, PathPoint b, double u) {
  return {a.x + (b.x - a.x) * u, a.y + (b.y - a.y) * u};
}

double Length(PathPoint a, PathPoint b) {
  return std::hypot(b.x - a.x, b.y - a.y);
}

}  // namespace

void KeyframePath::append(Kind kind, PathPoint c1, PathPoint c2, PathPoint p) {
  if (!hasStart_) {
    // A path that starts without a move starts at its first point.
    current_ = subpathStart_ = p;
    hasStart_ = true;
    return;
  }
  segments_.push_back({kind, current_, c1, c2, p});
  current_ = p;
}

void KeyframePath::moveTo(PathPoint p) {
  if (!hasStart_) {
    current_ = subpathStart_ = p;
    hasStart_ = true;
    return;
  }
  append(Kind::Jump, current_, p, p);
  subpathStart_ = p;
}

void KeyframePath::lineTo(PathPoint p) {
  append(Kind::Line, current_, p, p);
}

void KeyframePath::quadTo(PathPoint c, PathPoint p) {
  PathPoint from = current_;
  PathPoint c1{from.x + 2.0 / 3.0 * (c.x - from.x), from.y + 2.0 / 3.0 * (c.y - from.y)};
  PathPoint c2{p.x + 2.0 / 3.0 * (c.x - p.x), p.y + 2.0 / 3.0 * (c.y - p.y)};
  append(Kind::Cubic, c1, c2, p);
}

void KeyframePath::curveTo(PathPoint c1, PathPoint c2, PathPoint p) {
  append(Kind::Cubic, c1, c2, p);
}

void KeyframePath::close() {
  if (hasStart_ && (current_.x != subpathStart_.x || current_.y != subpathStart_.y)) {
    lineTo(subpathStart_);
  }
}

PathPoint KeyframePath::pointOnSegment(size_t index, double u) const {
  if (index >= segments_.size()) {
    return current_;
  }
  const Segment &s = segments_[index];
  u = std::clamp(u, 0.0, 1.0);
  switch (s.kind) {
    case Kind::Jump:
      return u < 1 ? s.p0 : s.p3;
    case Kind::Line:
      return Lerp(s.p0, s.p3, u);
    case Kind::Cubic: {
      double v = 1 - u;
      double a = v * v * v, b = 3 * v * v * u, c = 3 * v * u * u, d = u * u * u;
      return {a * s.p0.x + b * s.c1.x + c * s.c2.x + d * s.p3.x,
              a * s.p0.y + b * s.c1.y + c * s.c2.y + d * s.p3.y};
    }
  }
  return s.p3;
}

double KeyframePath::segmentLength(size_t index) const {
  if (index >= segments_.size()) {
    return 0;
  }
  const Segment &s = segments_[index];
  if (s.kind == Kind::Jump) {
    return 0;
  }
  if (s.kind == Kind::Line) {
    return Length(s.p0, s.p3);
  }
  double length = 0;
  PathPoint previous = s.p0;
  for (int i = 1; i <= kLengthSamples; i++) {
    PathPoint next = pointOnSegment(index, double(i) / kLengthSamples);
    length += Length(previous, next);
    previous = next;
  }
  return length;
}

PathPoint KeyframePath::pointAtLengthFraction(size_t index, double fraction) const {
  if (index >= segments_.size()) {
    return current_;
  }
  const Segment &s = segments_[index];
  if (s.kind != Kind::Cubic) {
    return pointOnSegment(index, fraction);
  }
  // Invert arc length over the sampled polyline.
  double total = segmentLength(index);
  double wanted = std::clamp(fraction, 0.0, 1.0) * total;
  double walked = 0;
  PathPoint previous = s.p0;
  for (int i = 1; i <= kLengthSamples; i++) {
    PathPoint next = pointOnSegment(index, double(i) / kLengthSamples);
    double step = Length(previous, next);
    if (walked + step >= wanted && step > 0) {
      double u = (double(i - 1) + (wanted - walked) / step) / kLengthSamples;
      return pointOnSegment(index, u);
    }
    walked += step;
    previous = next;
  }
  return s.p3;
}

PathPoint KeyframePath::evaluate(double t, CalculationMode mode,
                                 const std::vector<double> &keyTimes) const {
  size_t count = keyframeCount();
  if (count == 0) {
    return {};
  }
  if (segments_.empty()) {
    return current_;
  }
  if (mode == CalculationMode::Paced) {
    std::vector<double> lengths;
    for (size_t i = 0; i < segments_.size(); i++) {
      lengths.push_back(segmentLength(i));
    }
    std::vector<double> times = PacedKeyTimes(lengths);
    KeyframeLocation at = LocateKeyframe(times, count, CalculationMode::Linear, t);
    return pointAtLengthFraction(at.index, at.fraction);
  }
  std::vector<double> times = EffectiveKeyTimes(keyTimes, count, mode);
  KeyframeLocation at = LocateKeyframe(times, count, mode, t);
  if (mode == CalculationMode::Discrete) {
    return at.index == 0 ? segments_[0].p0 : segments_[at.index - 1].p3;
  }
  return pointOnSegment(at.index, at.fraction);
}

}  // namespace talvo::animation
