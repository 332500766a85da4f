#include "core/controls/PopoverOutline.hpp"

namespace talvo::controls {

Rect PopoverBody(const PopoverGeometry &g) {
  return {g.bounds.x, g.bounds.y, g.bounds.width, g.bounds.height - g.arrowHeight};
}

std::vector<OutlineStep> PopoverOutline(const PopoverGeometry &g) {
  Rect body = PopoverBody(g);
  // Corner centres: the body inset by the radius on every side.
  double r = g.radius;
  double left = body.x + r;
  double right = left + (body.width - 2.0 * r);
  double bottom = body.y + r;
  double top = bottom + (body.height - 2.0 * r);
  double baseY = g.bounds.y + g.bounds.height - g.arrowHeight;
  double apexY = g.bounds.y + g.bounds.height;
  using Kind = OutlineStep::Kind;
  return {
      {Kind::Arc, {left, bottom}, r, 180.0, 270.0},
      {Kind::Arc, {right, bottom}, r, 270.0, 360.0},
      {Kind::Arc, {right, top}, r, 0.0, 90.0},
      {Kind::Line, {g.arrowXOrigin + g.arrowWidth * 0.5, baseY}, 0, 0, 0},
      {Kind::Line, {g.arrowXOrigin, apexY}, 0, 0, 0},
      {Kind::Line, {g.arrowXOrigin - g.arrowWidth * 0.5, baseY}, 0, 0, 0},
      {Kind::Arc, {left, top}, r, 90.0, 180.0},
      {Kind::Close, {0, 0}, 0, 0, 0},
  };
}

PopoverGeometry ShrunkPopover(const PopoverGeometry &g, double offset) {
  double half = 0.5 * offset;
  PopoverGeometry shrunk;
  shrunk.arrowHeight = g.arrowHeight - half;
  shrunk.arrowWidth = g.arrowWidth - offset;
  shrunk.arrowXOrigin = g.arrowXOrigin;
  shrunk.bounds = {g.bounds.x + offset, g.bounds.y + offset, g.bounds.width - 2.0 * offset,
                   g.bounds.height - 2.0 * offset - half};
  shrunk.radius = g.radius - offset;
  return shrunk;
}

double MiddleArrowX(const Rect &bounds) { return bounds.x + bounds.width * 0.5; }

}  // namespace talvo::controls
