#include "core/windows/WindowGeometry.hpp"

#include <cmath>

namespace talvo::windows {

EdgeInsets ShadowInsets(bool titled) {
  if (titled) {
    return {-34.0, -42.0, -50.0, -42.0};
  }
  return {-13.0, -17.0, -21.0, -17.0};
}

Rect ShadowedFrame(const Rect &frame, const EdgeInsets &insets, bool originAtBottom) {
  return {frame.x + insets.left, frame.y + (originAtBottom ? insets.bottom : insets.top),
          frame.width - (insets.right + insets.left), frame.height - (insets.top + insets.bottom)};
}

Rect ShadowedFrameFromScaled(const Rect &frame, const Rect &scaledFrom, const EdgeInsets &insets,
                             bool originAtBottom) {
  double sx = scaledFrom.width != 0.0 ? frame.width / scaledFrom.width : 0.0;
  double sy = scaledFrom.height != 0.0 ? frame.height / scaledFrom.height : 0.0;
  EdgeInsets scaled = {insets.top * sy, insets.left * sx, insets.bottom * sy, insets.right * sx};
  return ShadowedFrame(frame, scaled, originAtBottom);
}

Rect BounceOvershoot(const Rect &frame) {
  double dx = 0.04 * frame.width;
  double dy = 0.04 * frame.height;
  return {frame.x - dx, frame.y - dy, frame.width + 2.0 * dx, frame.height + 2.0 * dy};
}

Rect PopInset(const Rect &frame) {
  if (frame.height == 0.0) {
    return frame;
  }
  double d = 5.0 * frame.width / frame.height;
  return {frame.x + d, frame.y + d, frame.width - 2.0 * d, frame.height - 2.0 * d};
}

std::vector<Point> ShakePoints(const Rect &frame, double vigour, double shakes) {
  std::vector<Point> points = {{frame.x, frame.y}};
  if (!(shakes > 0.0)) {
    return points;
  }
  double offset = vigour * frame.width;
  // Very large counts would only make an enormous path; keep it bounded.
  double pairs = std::ceil(std::fmin(shakes, 10000.0));
  for (int i = 0; i < static_cast<int>(pairs); ++i) {
    points.push_back({frame.x - offset, frame.y});
    points.push_back({frame.x + offset, frame.y});
  }
  return points;
}

Point CenterPointOffset(double anchorX, double anchorY, double width, double height,
                        bool geometryFlipped) {
  double sign = geometryFlipped ? 1.0 : -1.0;
  return {-((0.5 - anchorX) * width), (0.5 - anchorY) * (sign * height)};
}

PopupShape BottomPopupShape(double width, double height) {
  // The body is the bounds inset by 1 less a 5-point band at the top, where
  // the arrow sits. The arrow's x is measured from 0 and its apex from the
  // inset height, which places it 3 points above its base.
  Rect r = {1.0, 1.0, width - 2.0, height - 2.0};
  double half = r.width * 0.5;
  double top = r.y + r.height - 5.0;
  PopupShape shape;
  shape.arrow[0] = {std::round(half - 5.0), top};
  shape.arrow[1] = {std::round(half), r.height - 1.0};
  shape.arrow[2] = {std::round(half + 5.0), top};
  shape.body = {r.x, r.y, r.width, r.height - 5.0};
  shape.radius = 4.0;
  return shape;
}

}  // namespace talvo::windows
