#include "platform/QuartzCore/engine/TimingCurve.hpp"

#include <algorithm>
#include <cmath>

namespace talvo::animation {

TimingCurve::TimingCurve(double x1, double y1, double x2, double y2)
    : x1_(x1), y1_(y1), x2_(x2), y2_(y2) {
  // The x control points must stay in [0, 1] for x(s) to be monotonic, as
  // Core Animation requires; clamp rather than produce a curve with no
  // single answer.
  double cx1 = std::clamp(x1, 0.0, 1.0);
  double cx2 = std::clamp(x2, 0.0, 1.0);
  cx_ = 3 * cx1;
  bx_ = 3 * (cx2 - cx1) - cx_;
  ax_ = 1 - cx_ - bx_;
  cy_ = 3 * y1;
  by_ = 3 * (y2 - y1) - cy_;
  ay_ = 1 - cy_ - by_;
}

double TimingCurve::parameterForX(double target, double epsilon) const {
  if (!(target > 0)) {
    return 0;
  }
  if (target >= 1) {
    return 1;
  }
  // Newton converges in a few steps on all but nearly flat stretches.
  double s = target;
  for (int i = 0; i < 8; i++) {
    double error = x(s) - target;
    if (std::fabs(error) < epsilon) {
      return s;
    }
    double slope = dxds(s);
    if (std::fabs(slope) < 1e-12) {
      break;
    }
    double next = s - error / slope;
    if (next < 0 || next > 1) {
      break;
    }
    s = next;
  }
  // x(s) is monotonic on [0, 1]: bisection always lands.
  double low = 0;
  double high = 1;
  s = target;
  for (int i = 0; i < 64; i++) {
    double value = x(s);
    if (std::fabs(value - target) < epsilon) {
      return s;
    }
    if (value < target) {
      low = s;
    } else {
      high = s;
    }
    s = (low + high) / 2;
  }
  return s;
}

double TimingCurve::solve(double t) const {
  if (!(t > 0)) {
    return 0;
  }
  if (t >= 1) {
    return 1;
  }
  return y(parameterForX(t));
}

}  // namespace talvo::animation
