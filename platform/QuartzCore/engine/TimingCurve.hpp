// The cubic Bézier timing curve of CAMediaTimingFunction: from (0,0) to
// (1,1) through two control points, read as y(x).
#pragma once

namespace talvo::animation {

class TimingCurve {
 public:
  TimingCurve(double x1, double y1, double x2, double y2);

  static TimingCurve linear() { return TimingCurve(0, 0, 1, 1); }

  /** Eased output for an input fraction: solves x(s) = t for the curve
   * parameter s and answers y(s). Inputs are clamped to [0, 1]; 0 and 1
   * answer exactly 0 and 1. */
  double solve(double t) const;

  /** The curve parameter s with x(s) = x, to within `epsilon`: Newton's
   * method from s = x, bisection when Newton stalls or leaves [0, 1]. */
  double parameterForX(double x, double epsilon = 1e-9) const;

  double x(double s) const { return ((ax_ * s + bx_) * s + cx_) * s; }
  double y(double s) const { return ((ay_ * s + by_) * s + cy_) * s; }
  double dxds(double s) const { return (3 * ax_ * s + 2 * bx_) * s + cx_; }

  double x1() const { return x1_; }
  double y1() const { return y1_; }
  double x2() const { return x2_; }
  double y2() const { return y2_; }

 private:
  double x1_, y1_, x2_, y2_;
  // Polynomial coefficients: x(s) = ax s^3 + bx s^2 + cx s, likewise y.
  double ax_, bx_, cx_, ay_, by_, cy_;
};

}  // namespace talvo::animation
