// Paths of the Core Graphics stand-in, over the engine's Path value.

#include <CoreGraphics/CGTalvoBridge.h>

#include <new>

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

namespace q = talvo::quartz;
using talvo::cg::ToQuartz;

namespace {

q::AffineTransform Transform(const CGAffineTransform *m) {
  return m ? ToQuartz(*m) : q::AffineTransform::identity();
}

CGMutablePathRef NewPath(const q::Path *from) {
  CGPath *path = new (std::nothrow) CGPath;
  if (path && from) path->path = *from;
  return path;
}

}  // namespace

CGMutablePathRef CGPathCreateMutable(void) { return NewPath(nullptr); }

CGPathRef CGPathCreateCopy(CGPathRef path) { return path ? NewPath(&path->path) : nullptr; }

CGMutablePathRef CGPathCreateMutableCopy(CGPathRef path) {
  return path ? NewPath(&path->path) : nullptr;
}

CGPathRef CGPathCreateWithRect(CGRect rect, const CGAffineTransform *m) {
  CGMutablePathRef path = NewPath(nullptr);
  CGPathAddRect(path, m, rect);
  return path;
}

CGPathRef CGPathCreateWithEllipseInRect(CGRect rect, const CGAffineTransform *m) {
  CGMutablePathRef path = NewPath(nullptr);
  CGPathAddEllipseInRect(path, m, rect);
  return path;
}

CGPathRef CGPathRetain(CGPathRef path) {
  if (path) const_cast<CGPath *>(path)->refs.fetch_add(1);
  return path;
}

void CGPathRelease(CGPathRef path) {
  if (path && const_cast<CGPath *>(path)->refs.fetch_sub(1) == 1) delete path;
}

void CGPathMoveToPoint(CGMutablePathRef path, const CGAffineTransform *m, CGFloat x, CGFloat y) {
  if (path) path->path.moveTo({x, y}, Transform(m));
}

void CGPathAddLineToPoint(CGMutablePathRef path, const CGAffineTransform *m, CGFloat x, CGFloat y) {
  if (path) path->path.lineTo({x, y}, Transform(m));
}

void CGPathAddQuadCurveToPoint(CGMutablePathRef path, const CGAffineTransform *m, CGFloat cpx,
                               CGFloat cpy, CGFloat x, CGFloat y) {
  if (path) path->path.quadCurveTo({cpx, cpy}, {x, y}, Transform(m));
}

void CGPathAddCurveToPoint(CGMutablePathRef path, const CGAffineTransform *m, CGFloat cp1x,
                           CGFloat cp1y, CGFloat cp2x, CGFloat cp2y, CGFloat x, CGFloat y) {
  if (path) path->path.curveTo({cp1x, cp1y}, {cp2x, cp2y}, {x, y}, Transform(m));
}

void CGPathCloseSubpath(CGMutablePathRef path) {
  if (path) path->path.closeSubpath();
}

void CGPathAddRect(CGMutablePathRef path, const CGAffineTransform *m, CGRect rect) {
  if (path) path->path.addRect(ToQuartz(rect), Transform(m));
}

void CGPathAddRects(CGMutablePathRef path, const CGAffineTransform *m, const CGRect *rects,
                    size_t count) {
  for (size_t i = 0; rects && i < count; ++i) CGPathAddRect(path, m, rects[i]);
}

void CGPathAddLines(CGMutablePathRef path, const CGAffineTransform *m, const CGPoint *points,
                    size_t count) {
  if (!path || !points) return;
  for (size_t i = 0; i < count; ++i) {
    if (i == 0) {
      path->path.moveTo({points[i].x, points[i].y}, Transform(m));
    } else {
      path->path.lineTo({points[i].x, points[i].y}, Transform(m));
    }
  }
}

void CGPathAddEllipseInRect(CGMutablePathRef path, const CGAffineTransform *m, CGRect rect) {
  if (path) path->path.addEllipseInRect(ToQuartz(rect), Transform(m));
}

void CGPathAddRoundedRect(CGMutablePathRef path, const CGAffineTransform *m, CGRect rect,
                          CGFloat cornerWidth, CGFloat cornerHeight) {
  if (path) path->path.addRoundedRect(ToQuartz(rect), cornerWidth, cornerHeight, Transform(m));
}

void CGPathAddArc(CGMutablePathRef path, const CGAffineTransform *m, CGFloat x, CGFloat y,
                  CGFloat radius, CGFloat startAngle, CGFloat endAngle, bool clockwise) {
  if (path) path->path.addArc({x, y}, radius, startAngle, endAngle, clockwise, Transform(m));
}

void CGPathAddArcToPoint(CGMutablePathRef path, const CGAffineTransform *m, CGFloat x1, CGFloat y1,
                         CGFloat x2, CGFloat y2, CGFloat radius) {
  if (path) path->path.addArcToPoint({x1, y1}, {x2, y2}, radius, Transform(m));
}

void CGPathAddPath(CGMutablePathRef path, const CGAffineTransform *m, CGPathRef other) {
  if (path && other) path->path.addPath(other->path, Transform(m));
}

bool CGPathIsEmpty(CGPathRef path) { return !path || path->path.isEmpty(); }

bool CGPathEqualToPath(CGPathRef a, CGPathRef b) {
  if (a == b) return true;
  return a && b && a->path == b->path;
}

CGPoint CGPathGetCurrentPoint(CGPathRef path) {
  q::Point p;
  if (!path || !path->path.currentPoint(&p)) return CGPointZero;
  return CGPointMake(p.x, p.y);
}

CGRect CGPathGetBoundingBox(CGPathRef path) {
  if (CGPathIsEmpty(path)) return CGRectNull;
  return talvo::cg::FromQuartz(path->path.boundingBox());
}

CGRect CGPathGetPathBoundingBox(CGPathRef path) {
  if (CGPathIsEmpty(path)) return CGRectNull;
  return talvo::cg::FromQuartz(path->path.pathBoundingBox());
}

bool CGPathContainsPoint(CGPathRef path, const CGAffineTransform *m, CGPoint point, bool eoFill) {
  if (!path) return false;
  q::Point p{point.x, point.y};
  if (m) {
    q::AffineTransform inverse;
    if (!ToQuartz(*m).invert(&inverse)) return false;
    p = inverse.apply(p);
  }
  return path->path.containsPoint(p, eoFill ? q::FillRule::EvenOdd : q::FillRule::Winding);
}

void CGPathApply(CGPathRef path, void *info, CGPathApplierFunction function) {
  if (!path || !function) return;
  path->path.apply([&](const q::PathElement &e) {
    CGPoint points[3];
    int n = e.type == q::PathElementType::AddCurveToPoint      ? 3
            : e.type == q::PathElementType::AddQuadCurveToPoint ? 2
            : e.type == q::PathElementType::CloseSubpath        ? 0
                                                                : 1;
    for (int i = 0; i < n; ++i) points[i] = CGPointMake(e.points[i].x, e.points[i].y);
    CGPathElement element = {CGPathElementType(e.type), points};
    function(info, &element);
  });
}
