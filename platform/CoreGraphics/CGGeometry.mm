// Rectangle and transform functions of the Core Graphics stand-in. The
// rules follow Quartz: rectangles are read standardized, CGRectNull is the
// identity of CGRectUnion and the answer of an empty intersection.

#include <CoreGraphics/CoreGraphics.h>

#include <algorithm>
#include <cmath>
#include <limits>

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

namespace {

constexpr CGFloat kInfinity = std::numeric_limits<CGFloat>::infinity();
// What CGRectInfinite spans: large, but finite arithmetic still works.
constexpr CGFloat kHuge = 8.98846567431157953865e+307;

bool IsNull(const CGRect &r) { return std::isinf(r.origin.x) || std::isinf(r.origin.y); }

CGRect Standard(CGRect r) {
  if (r.size.width < 0) {
    r.origin.x += r.size.width;
    r.size.width = -r.size.width;
  }
  if (r.size.height < 0) {
    r.origin.y += r.size.height;
    r.size.height = -r.size.height;
  }
  return r;
}

}  // namespace

const CGPoint CGPointZero = {0, 0};
const CGSize CGSizeZero = {0, 0};
const CGRect CGRectZero = {{0, 0}, {0, 0}};
const CGRect CGRectNull = {{kInfinity, kInfinity}, {0, 0}};
const CGRect CGRectInfinite = {{-kHuge / 2, -kHuge / 2}, {kHuge, kHuge}};

CGFloat CGRectGetMinX(CGRect r) { return Standard(r).origin.x; }
CGFloat CGRectGetMinY(CGRect r) { return Standard(r).origin.y; }
CGFloat CGRectGetMaxX(CGRect r) {
  r = Standard(r);
  return r.origin.x + r.size.width;
}
CGFloat CGRectGetMaxY(CGRect r) {
  r = Standard(r);
  return r.origin.y + r.size.height;
}
CGFloat CGRectGetMidX(CGRect r) {
  r = Standard(r);
  return r.origin.x + r.size.width / 2;
}
CGFloat CGRectGetMidY(CGRect r) {
  r = Standard(r);
  return r.origin.y + r.size.height / 2;
}
CGFloat CGRectGetWidth(CGRect r) { return std::fabs(r.size.width); }
CGFloat CGRectGetHeight(CGRect r) { return std::fabs(r.size.height); }

bool CGPointEqualToPoint(CGPoint a, CGPoint b) { return a.x == b.x && a.y == b.y; }
bool CGSizeEqualToSize(CGSize a, CGSize b) { return a.width == b.width && a.height == b.height; }

bool CGRectEqualToRect(CGRect a, CGRect b) {
  if (IsNull(a) || IsNull(b)) return IsNull(a) && IsNull(b);
  a = Standard(a);
  b = Standard(b);
  return CGPointEqualToPoint(a.origin, b.origin) && CGSizeEqualToSize(a.size, b.size);
}

bool CGRectIsNull(CGRect r) { return IsNull(r); }
bool CGRectIsEmpty(CGRect r) { return IsNull(r) || r.size.width == 0 || r.size.height == 0; }
bool CGRectIsInfinite(CGRect r) { return CGRectEqualToRect(r, CGRectInfinite); }

CGRect CGRectStandardize(CGRect r) { return IsNull(r) ? CGRectNull : Standard(r); }

CGRect CGRectInset(CGRect r, CGFloat dx, CGFloat dy) {
  if (IsNull(r)) return CGRectNull;
  r = Standard(r);
  r.origin.x += dx;
  r.origin.y += dy;
  r.size.width -= 2 * dx;
  r.size.height -= 2 * dy;
  if (r.size.width < 0 || r.size.height < 0) return CGRectNull;
  return r;
}

CGRect CGRectOffset(CGRect r, CGFloat dx, CGFloat dy) {
  if (IsNull(r)) return CGRectNull;
  r = Standard(r);
  r.origin.x += dx;
  r.origin.y += dy;
  return r;
}

CGRect CGRectIntegral(CGRect r) {
  if (IsNull(r)) return CGRectNull;
  r = Standard(r);
  if (r.size.width == 0 || r.size.height == 0) {
    return CGRectMake(std::floor(r.origin.x), std::floor(r.origin.y), 0, 0);
  }
  CGFloat x0 = std::floor(r.origin.x), y0 = std::floor(r.origin.y);
  CGFloat x1 = std::ceil(r.origin.x + r.size.width), y1 = std::ceil(r.origin.y + r.size.height);
  return CGRectMake(x0, y0, x1 - x0, y1 - y0);
}

CGRect CGRectIntersection(CGRect a, CGRect b) {
  if (IsNull(a) || IsNull(b)) return CGRectNull;
  a = Standard(a);
  b = Standard(b);
  CGFloat x0 = std::max(a.origin.x, b.origin.x), y0 = std::max(a.origin.y, b.origin.y);
  CGFloat x1 = std::min(a.origin.x + a.size.width, b.origin.x + b.size.width);
  CGFloat y1 = std::min(a.origin.y + a.size.height, b.origin.y + b.size.height);
  if (x1 < x0 || y1 < y0) return CGRectNull;
  return CGRectMake(x0, y0, x1 - x0, y1 - y0);
}

CGRect CGRectUnion(CGRect a, CGRect b) {
  if (IsNull(a)) return CGRectStandardize(b);
  if (IsNull(b)) return Standard(a);
  a = Standard(a);
  b = Standard(b);
  CGFloat x0 = std::min(a.origin.x, b.origin.x), y0 = std::min(a.origin.y, b.origin.y);
  CGFloat x1 = std::max(a.origin.x + a.size.width, b.origin.x + b.size.width);
  CGFloat y1 = std::max(a.origin.y + a.size.height, b.origin.y + b.size.height);
  return CGRectMake(x0, y0, x1 - x0, y1 - y0);
}

bool CGRectContainsPoint(CGRect r, CGPoint p) {
  if (IsNull(r)) return false;
  r = Standard(r);
  return p.x >= r.origin.x && p.x < r.origin.x + r.size.width && p.y >= r.origin.y &&
         p.y < r.origin.y + r.size.height;
}

bool CGRectContainsRect(CGRect r, CGRect inner) {
  if (IsNull(r) || IsNull(inner)) return false;
  return CGRectEqualToRect(CGRectUnion(r, inner), r);
}

bool CGRectIntersectsRect(CGRect a, CGRect b) { return !CGRectIsEmpty(CGRectIntersection(a, b)); }

// --- Affine transforms --------------------------------------------------------

const CGAffineTransform CGAffineTransformIdentity = {1, 0, 0, 1, 0, 0};

CGAffineTransform CGAffineTransformMake(CGFloat a, CGFloat b, CGFloat c, CGFloat d, CGFloat tx,
                                        CGFloat ty) {
  CGAffineTransform t = {a, b, c, d, tx, ty};
  return t;
}

CGAffineTransform CGAffineTransformMakeTranslation(CGFloat tx, CGFloat ty) {
  return CGAffineTransformMake(1, 0, 0, 1, tx, ty);
}

CGAffineTransform CGAffineTransformMakeScale(CGFloat sx, CGFloat sy) {
  return CGAffineTransformMake(sx, 0, 0, sy, 0, 0);
}

CGAffineTransform CGAffineTransformMakeRotation(CGFloat angle) {
  CGFloat s = std::sin(angle), c = std::cos(angle);
  return CGAffineTransformMake(c, s, -s, c, 0, 0);
}

bool CGAffineTransformIsIdentity(CGAffineTransform t) {
  return CGAffineTransformEqualToTransform(t, CGAffineTransformIdentity);
}

bool CGAffineTransformEqualToTransform(CGAffineTransform x, CGAffineTransform y) {
  return x.a == y.a && x.b == y.b && x.c == y.c && x.d == y.d && x.tx == y.tx && x.ty == y.ty;
}

CGAffineTransform CGAffineTransformConcat(CGAffineTransform t1, CGAffineTransform t2) {
  return CGAffineTransformMake(t1.a * t2.a + t1.b * t2.c, t1.a * t2.b + t1.b * t2.d,
                               t1.c * t2.a + t1.d * t2.c, t1.c * t2.b + t1.d * t2.d,
                               t1.tx * t2.a + t1.ty * t2.c + t2.tx,
                               t1.tx * t2.b + t1.ty * t2.d + t2.ty);
}

CGAffineTransform CGAffineTransformTranslate(CGAffineTransform t, CGFloat tx, CGFloat ty) {
  return CGAffineTransformConcat(CGAffineTransformMakeTranslation(tx, ty), t);
}

CGAffineTransform CGAffineTransformScale(CGAffineTransform t, CGFloat sx, CGFloat sy) {
  return CGAffineTransformConcat(CGAffineTransformMakeScale(sx, sy), t);
}

CGAffineTransform CGAffineTransformRotate(CGAffineTransform t, CGFloat angle) {
  return CGAffineTransformConcat(CGAffineTransformMakeRotation(angle), t);
}

CGAffineTransform CGAffineTransformInvert(CGAffineTransform t) {
  CGFloat det = t.a * t.d - t.b * t.c;
  if (det == 0 || !std::isfinite(det)) return t;
  CGFloat a = t.d / det, b = -t.b / det, c = -t.c / det, d = t.a / det;
  return CGAffineTransformMake(a, b, c, d, -(a * t.tx + c * t.ty), -(b * t.tx + d * t.ty));
}

CGPoint CGPointApplyAffineTransform(CGPoint p, CGAffineTransform t) {
  return CGPointMake(t.a * p.x + t.c * p.y + t.tx, t.b * p.x + t.d * p.y + t.ty);
}

CGSize CGSizeApplyAffineTransform(CGSize s, CGAffineTransform t) {
  return CGSizeMake(t.a * s.width + t.c * s.height, t.b * s.width + t.d * s.height);
}

CGRect CGRectApplyAffineTransform(CGRect r, CGAffineTransform t) {
  if (IsNull(r)) return CGRectNull;
  r = Standard(r);
  CGPoint p[4] = {
      CGPointApplyAffineTransform(r.origin, t),
      CGPointApplyAffineTransform(CGPointMake(r.origin.x + r.size.width, r.origin.y), t),
      CGPointApplyAffineTransform(CGPointMake(r.origin.x, r.origin.y + r.size.height), t),
      CGPointApplyAffineTransform(
          CGPointMake(r.origin.x + r.size.width, r.origin.y + r.size.height), t)};
  CGFloat x0 = p[0].x, x1 = p[0].x, y0 = p[0].y, y1 = p[0].y;
  for (const CGPoint &q : p) {
    x0 = std::min(x0, q.x);
    x1 = std::max(x1, q.x);
    y0 = std::min(y0, q.y);
    y1 = std::max(y1, q.y);
  }
  return CGRectMake(x0, y0, x1 - x0, y1 - y0);
}
