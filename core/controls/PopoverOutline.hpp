// The outline of a popover balloon as a list of drawing steps: a rounded
// body with an arrow rising from its top edge to the top of the bounds
// (y grows upward). Nothing is clamped: an arrow over a corner arc or a
// negative size is used as given.
#pragma once

#include <vector>

namespace talvo::controls {

struct Point {
  double x, y;
};

struct Rect {
  double x, y, width, height;
};

struct PopoverGeometry {
  Rect bounds = {0, 0, 0, 0};
  double arrowXOrigin = 0.0;  // x of the apex, in the bounds' space
  double arrowWidth = 10.0;
  double arrowHeight = 10.0;
  double radius = 4.0;
};

// One step of the outline. An arc runs counter-clockwise about `point` from
// startAngle to endAngle (degrees); appended to a non-empty path it is led
// into by a straight line. A line runs to `point`.
struct OutlineStep {
  enum class Kind { Arc, Line, Close };
  Kind kind;
  Point point;
  double radius;
  double startAngle;
  double endAngle;
};

// The bounds less the arrow height at the top.
Rect PopoverBody(const PopoverGeometry &geometry);

// Bottom-left, bottom-right and top-right corners, the arrow's right base,
// apex and left base, the top-left corner, close.
std::vector<OutlineStep> PopoverOutline(const PopoverGeometry &geometry);

// A shape `offset` inside: body top `offset` lower, apex 1.5 x offset lower,
// base and radius `offset` smaller, apex x unchanged.
PopoverGeometry ShrunkPopover(const PopoverGeometry &geometry, double offset);

// The apex x that centres the arrow over the bounds.
double MiddleArrowX(const Rect &bounds);

}  // namespace talvo::controls
