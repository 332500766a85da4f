// Window geometry: how far a window's shadow reaches, frames grown by that
// reach, the overshoot of a bounce, the inset of a pop, the points of a
// shake and the arrow of the bottom pop-up. Rects have y growing upward
// unless a function says otherwise. Nothing is clamped: zero and negative
// sizes go through the arithmetic as given; a division by a zero size
// answers the rect unchanged.
#pragma once

#include <vector>

namespace talvo::windows {

struct Point {
  double x, y;
};

struct Rect {
  double x, y, width, height;
};

// Top, left, bottom, right; negative values lie outside the frame.
struct EdgeInsets {
  double top, left, bottom, right;
};

// The shadow of a titled window and of any other window.
EdgeInsets ShadowInsets(bool titled);

// `frame` grown by `insets`. `originAtBottom` says where the rect's origin
// lies: at the bottom-left (AppKit screen space, the bottom inset applies at
// the origin) or at the top-left (window-server space, the top inset).
Rect ShadowedFrame(const Rect &frame, const EdgeInsets &insets, bool originAtBottom);

// As ShadowedFrame, with the insets scaled by frame's size over `scaledFrom`'s
// (the frame at which the insets hold). A zero-size `scaledFrom` scales by 0.
Rect ShadowedFrameFromScaled(const Rect &frame, const Rect &scaledFrom, const EdgeInsets &insets,
                             bool originAtBottom);

// The frame a bounce passes through: the same centre, 4 % of the width and
// height added on each side.
Rect BounceOvershoot(const Rect &frame);

// The frame a pop shrinks to: inset by 5 x width / height on both axes
// (the frame itself when its height is 0).
Rect PopInset(const Rect &frame);

// The points of a horizontal shake through the frame's origin: the origin,
// then ceil(shakes) pairs of (x - o, y), (x + o, y) with o = vigour x width
// (no pairs when shakes <= 0 or is not a number). The path closes back to
// the origin.
std::vector<Point> ShakePoints(const Rect &frame, double vigour, double shakes);

// The vector from the centre of a layer's frame to its anchor point.
Point CenterPointOffset(double anchorX, double anchorY, double width, double height,
                        bool geometryFlipped);

// The pop-up frame view's arrow (left base, apex, right base) and body, for
// bounds of origin (0, 0) and the given size.
struct PopupShape {
  Point arrow[3];
  Rect body;
  double radius;
};
PopupShape BottomPopupShape(double width, double height);

}  // namespace talvo::windows
