#include "platform/CoreGraphics/engine/Path.hpp"

#include <algorithm>
#include <cmath>

#include "platform/CoreGraphics/engine/CairoSupport.hpp"

namespace talvo::quartz {

namespace {

constexpr double kPi = 3.14159265358979323846;
// Control-point distance for a quarter circle of radius 1 drawn with a cubic.
constexpr double kKappa = 0.5522847498307936;

// Roots in (0, 1) of a t^2 + b t + c.
int unitRoots(double a, double b, double c, double out[2]) {
    int n = 0;
    auto keep = [&](double t) {
        if (t > 0 && t < 1) out[n++] = t;
    };
    if (std::fabs(a) < 1e-12) {
        if (std::fabs(b) > 1e-12) keep(-c / b);
        return n;
    }
    double disc = b * b - 4 * a * c;
    if (disc < 0) return 0;
    double s = std::sqrt(disc);
    keep((-b + s) / (2 * a));
    keep((-b - s) / (2 * a));
    return n;
}

struct Bounds {
    double x0 = 0, y0 = 0, x1 = 0, y1 = 0;
    bool any = false;
    void add(Point p) {
        if (!any) {
            x0 = x1 = p.x;
            y0 = y1 = p.y;
            any = true;
            return;
        }
        x0 = std::min(x0, p.x);
        x1 = std::max(x1, p.x);
        y0 = std::min(y0, p.y);
        y1 = std::max(y1, p.y);
    }
    Rect rect() const { return any ? Rect::make(x0, y0, x1 - x0, y1 - y0) : Rect{}; }
};

Point cubicAt(Point p0, Point p1, Point p2, Point p3, double t) {
    double u = 1 - t;
    double w0 = u * u * u, w1 = 3 * u * u * t, w2 = 3 * u * t * t, w3 = t * t * t;
    return {w0 * p0.x + w1 * p1.x + w2 * p2.x + w3 * p3.x,
            w0 * p0.y + w1 * p1.y + w2 * p2.y + w3 * p3.y};
}

}  // namespace

void Path::push(PathElementType t, std::initializer_list<Point> pts) {
    types_.push_back(t);
    points_.insert(points_.end(), pts.begin(), pts.end());
}

// Non-finite points are refused: the element is not added, so nothing
// downstream (cairo, bounds, rasterising) ever sees a NaN or an infinity.
void Path::moveTo(Point p, const AffineTransform& m) {
    Point q = m.apply(p);
    if (!q.isFinite()) return;
    push(PathElementType::MoveToPoint, {q});
    current_ = subpathStart_ = q;
    hasCurrent_ = true;
}

void Path::lineTo(Point p, const AffineTransform& m) {
    if (!hasCurrent_) return;
    Point q = m.apply(p);
    if (!q.isFinite()) return;
    push(PathElementType::AddLineToPoint, {q});
    current_ = q;
}

void Path::quadCurveTo(Point cp, Point p, const AffineTransform& m) {
    if (!hasCurrent_) return;
    Point q = m.apply(p), c = m.apply(cp);
    if (!q.isFinite() || !c.isFinite()) return;
    push(PathElementType::AddQuadCurveToPoint, {c, q});
    current_ = q;
}

void Path::curveTo(Point cp1, Point cp2, Point p, const AffineTransform& m) {
    if (!hasCurrent_) return;
    Point q = m.apply(p), c1 = m.apply(cp1), c2 = m.apply(cp2);
    if (!q.isFinite() || !c1.isFinite() || !c2.isFinite()) return;
    push(PathElementType::AddCurveToPoint, {c1, c2, q});
    current_ = q;
}

void Path::closeSubpath() {
    if (!hasCurrent_) return;
    push(PathElementType::CloseSubpath, {});
    current_ = subpathStart_;
}

void Path::addRect(const Rect& r, const AffineTransform& m) {
    if (!r.isFinite()) return;
    moveTo({r.minX(), r.minY()}, m);
    lineTo({r.maxX(), r.minY()}, m);
    lineTo({r.maxX(), r.maxY()}, m);
    lineTo({r.minX(), r.maxY()}, m);
    closeSubpath();
}

void Path::addEllipseInRect(const Rect& r, const AffineTransform& m) {
    if (!r.isFinite()) return;
    double x0 = r.minX(), x1 = r.maxX(), y0 = r.minY(), y1 = r.maxY();
    double mx = r.midX(), my = r.midY();
    double kx = (x1 - x0) / 2 * kKappa, ky = (y1 - y0) / 2 * kKappa;
    moveTo({x1, my}, m);
    curveTo({x1, my + ky}, {mx + kx, y1}, {mx, y1}, m);
    curveTo({mx - kx, y1}, {x0, my + ky}, {x0, my}, m);
    curveTo({x0, my - ky}, {mx - kx, y0}, {mx, y0}, m);
    curveTo({mx + kx, y0}, {x1, my - ky}, {x1, my}, m);
    closeSubpath();
}

void Path::addRoundedRect(const Rect& r, double cw, double ch, const AffineTransform& m) {
    if (!r.isFinite()) return;
    if (!std::isfinite(cw)) cw = 0;
    if (!std::isfinite(ch)) ch = 0;
    double x0 = r.minX(), x1 = r.maxX(), y0 = r.minY(), y1 = r.maxY();
    cw = std::min(std::max(cw, 0.0), (x1 - x0) / 2);
    ch = std::min(std::max(ch, 0.0), (y1 - y0) / 2);
    if (cw == 0 || ch == 0) {
        addRect(r, m);
        return;
    }
    double kw = cw * kKappa, kh = ch * kKappa;
    moveTo({x0 + cw, y0}, m);
    lineTo({x1 - cw, y0}, m);
    curveTo({x1 - cw + kw, y0}, {x1, y0 + ch - kh}, {x1, y0 + ch}, m);
    lineTo({x1, y1 - ch}, m);
    curveTo({x1, y1 - ch + kh}, {x1 - cw + kw, y1}, {x1 - cw, y1}, m);
    lineTo({x0 + cw, y1}, m);
    curveTo({x0 + cw - kw, y1}, {x0, y1 - ch + kh}, {x0, y1 - ch}, m);
    lineTo({x0, y0 + ch}, m);
    curveTo({x0, y0 + ch - kh}, {x0 + cw - kw, y0}, {x0 + cw, y0}, m);
    closeSubpath();
}

void Path::appendArcSegments(Point c, double radius, double start, double sweep,
                             const AffineTransform& m) {
    if (!std::isfinite(sweep) || !std::isfinite(start) || !std::isfinite(radius) || !c.isFinite())
        return;
    int segments = std::max(1, static_cast<int>(std::ceil(std::fabs(sweep) / (kPi / 2) - 1e-9)));
    double step = sweep / segments;
    double k = 4.0 / 3.0 * std::tan(step / 4);
    double a0 = start;
    for (int i = 0; i < segments; ++i) {
        double a1 = a0 + step;
        double c0 = std::cos(a0), s0 = std::sin(a0), c1 = std::cos(a1), s1 = std::sin(a1);
        Point p0{c.x + radius * c0, c.y + radius * s0};
        Point p3{c.x + radius * c1, c.y + radius * s1};
        Point cp1{p0.x - k * radius * s0, p0.y + k * radius * c0};
        Point cp2{p3.x + k * radius * s1, p3.y - k * radius * c1};
        curveTo(cp1, cp2, p3, m);
        a0 = a1;
    }
}

void Path::addArc(Point c, double radius, double startAngle, double endAngle, bool clockwise,
                  const AffineTransform& m) {
    if (!(radius >= 0) || !std::isfinite(radius) || !c.isFinite() || !std::isfinite(startAngle) ||
        !std::isfinite(endAngle))
        return;
    double sweep = endAngle - startAngle;
    if (!clockwise) {
        if (sweep < 0) {
            sweep = std::fmod(sweep, 2 * kPi);
            if (sweep < 0) sweep += 2 * kPi;
        }
        sweep = std::min(sweep, 2 * kPi);
    } else {
        if (sweep > 0) {
            sweep = std::fmod(sweep, 2 * kPi);
            if (sweep > 0) sweep -= 2 * kPi;
        }
        sweep = std::max(sweep, -2 * kPi);
    }
    Point start{c.x + radius * std::cos(startAngle), c.y + radius * std::sin(startAngle)};
    if (hasCurrent_)
        lineTo(start, m);
    else
        moveTo(start, m);
    if (sweep != 0 && radius > 0) appendArcSegments(c, radius, startAngle, sweep, m);
}

void Path::addArcToPoint(Point p1, Point p2, double radius, const AffineTransform& m) {
    if (!hasCurrent_ || std::isnan(radius) || !p1.isFinite() || !p2.isFinite()) return;
    AffineTransform inv;
    if (!m.invert(&inv)) return;
    Point p0 = inv.apply(current_);
    double v1x = p0.x - p1.x, v1y = p0.y - p1.y, v2x = p2.x - p1.x, v2y = p2.y - p1.y;
    double l1 = std::hypot(v1x, v1y), l2 = std::hypot(v2x, v2y);
    double cross = v1x * v2y - v1y * v2x;
    if (radius <= 0 || !std::isfinite(radius) || !(l1 > 0) || !(l2 > 0) || !std::isfinite(cross) ||
        std::fabs(cross) < 1e-12 * l1 * l2) {
        lineTo(p1, m);
        return;
    }
    v1x /= l1, v1y /= l1, v2x /= l2, v2y /= l2;
    double cosTheta = std::max(-1.0, std::min(1.0, v1x * v2x + v1y * v2y));
    double theta = std::acos(cosTheta);
    double dist = radius / std::tan(theta / 2);
    Point t1{p1.x + v1x * dist, p1.y + v1y * dist};
    double bx = v1x + v2x, by = v1y + v2y, bl = std::hypot(bx, by);
    double cd = radius / std::sin(theta / 2);
    Point center{p1.x + bx / bl * cd, p1.y + by / bl * cd};
    double a1 = std::atan2(t1.y - center.y, t1.x - center.x);
    Point t2{p1.x + v2x * dist, p1.y + v2y * dist};
    double a2 = std::atan2(t2.y - center.y, t2.x - center.x);
    double sweep = a2 - a1;
    while (sweep > kPi) sweep -= 2 * kPi;
    while (sweep < -kPi) sweep += 2 * kPi;
    lineTo(t1, m);
    appendArcSegments(center, radius, a1, sweep, m);
}

void Path::addLines(const Point* points, size_t count, const AffineTransform& m) {
    if (!points || count == 0) return;
    moveTo(points[0], m);
    for (size_t i = 1; i < count; ++i) lineTo(points[i], m);
}

void Path::addPath(const Path& other, const AffineTransform& m) {
    other.apply([&](const PathElement& e) {
        switch (e.type) {
            case PathElementType::MoveToPoint: moveTo(e.points[0], m); break;
            case PathElementType::AddLineToPoint: lineTo(e.points[0], m); break;
            case PathElementType::AddQuadCurveToPoint: quadCurveTo(e.points[0], e.points[1], m); break;
            case PathElementType::AddCurveToPoint:
                curveTo(e.points[0], e.points[1], e.points[2], m);
                break;
            case PathElementType::CloseSubpath: closeSubpath(); break;
        }
    });
}

void Path::clear() {
    types_.clear();
    points_.clear();
    hasCurrent_ = false;
}

bool Path::currentPoint(Point* out) const {
    if (!hasCurrent_) return false;
    if (out) *out = current_;
    return true;
}

Rect Path::boundingBox() const {
    Bounds b;
    for (const Point& p : points_) b.add(p);
    return b.rect();
}

Rect Path::pathBoundingBox() const {
    Bounds b;
    Point cur{}, start{};
    apply([&](const PathElement& e) {
        switch (e.type) {
            case PathElementType::MoveToPoint:
                cur = start = e.points[0];
                b.add(cur);
                break;
            case PathElementType::AddLineToPoint:
                cur = e.points[0];
                b.add(cur);
                break;
            case PathElementType::AddQuadCurveToPoint: {
                Point p0 = cur, p1 = e.points[0], p2 = e.points[1];
                for (int axis = 0; axis < 2; ++axis) {
                    double a = axis ? p0.y : p0.x, c1 = axis ? p1.y : p1.x, c2 = axis ? p2.y : p2.x;
                    double den = a - 2 * c1 + c2;
                    if (den == 0) continue;
                    double t = (a - c1) / den;
                    if (t > 0 && t < 1) {
                        double u = 1 - t;
                        b.add({u * u * p0.x + 2 * u * t * p1.x + t * t * p2.x,
                               u * u * p0.y + 2 * u * t * p1.y + t * t * p2.y});
                    }
                }
                cur = p2;
                b.add(cur);
                break;
            }
            case PathElementType::AddCurveToPoint: {
                Point p0 = cur, p1 = e.points[0], p2 = e.points[1], p3 = e.points[2];
                for (int axis = 0; axis < 2; ++axis) {
                    double q0 = axis ? p0.y : p0.x, q1 = axis ? p1.y : p1.x;
                    double q2 = axis ? p2.y : p2.x, q3 = axis ? p3.y : p3.x;
                    double roots[2];
                    int n = unitRoots(-q0 + 3 * q1 - 3 * q2 + q3, 2 * (q0 - 2 * q1 + q2), q1 - q0, roots);
                    for (int i = 0; i < n; ++i) b.add(cubicAt(p0, p1, p2, p3, roots[i]));
                }
                cur = p3;
                b.add(cur);
                break;
            }
            case PathElementType::CloseSubpath: cur = start; break;
        }
    });
    return b.rect();
}

bool Path::containsPoint(Point p, FillRule rule) const {
    if (isEmpty()) return false;
    cairo_surface_t* s = cairo_image_surface_create(CAIRO_FORMAT_A8, 1, 1);
    cairo_t* cr = cairo_create(s);
    appendPathToCairo(cr, *this);
    cairo_set_fill_rule(cr, rule == FillRule::EvenOdd ? CAIRO_FILL_RULE_EVEN_ODD : CAIRO_FILL_RULE_WINDING);
    bool inside = cairo_status(cr) == CAIRO_STATUS_SUCCESS && cairo_in_fill(cr, p.x, p.y);
    cairo_destroy(cr);
    cairo_surface_destroy(s);
    return inside;
}

Path Path::transformed(const AffineTransform& m) const {
    Path out;
    out.addPath(*this, m);
    return out;
}

void Path::apply(const Visitor& visitor) const {
    if (!visitor) return;
    size_t pi = 0;
    for (PathElementType t : types_) {
        size_t n = 0;
        switch (t) {
            case PathElementType::MoveToPoint:
            case PathElementType::AddLineToPoint: n = 1; break;
            case PathElementType::AddQuadCurveToPoint: n = 2; break;
            case PathElementType::AddCurveToPoint: n = 3; break;
            case PathElementType::CloseSubpath: n = 0; break;
        }
        visitor(PathElement{t, n ? &points_[pi] : nullptr});
        pi += n;
    }
}

bool operator==(const Path& a, const Path& b) {
    return a.types_ == b.types_ && a.points_.size() == b.points_.size() &&
           std::equal(a.points_.begin(), a.points_.end(), b.points_.begin());
}

}  // namespace talvo::quartz
