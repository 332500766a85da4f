#include "platform/CoreGraphics/engine/Geometry.hpp"

#include <algorithm>
#include <cmath>

namespace talvo::quartz {

bool Point::isFinite() const { return std::isfinite(x) && std::isfinite(y); }

bool Rect::isFinite() const {
    return origin.isFinite() && std::isfinite(size.width) && std::isfinite(size.height);
}

double Rect::minX() const { return size.width < 0 ? origin.x + size.width : origin.x; }
double Rect::minY() const { return size.height < 0 ? origin.y + size.height : origin.y; }
double Rect::maxX() const { return size.width < 0 ? origin.x : origin.x + size.width; }
double Rect::maxY() const { return size.height < 0 ? origin.y : origin.y + size.height; }

bool Rect::contains(Point p) const {
    return p.x >= minX() && p.x < maxX() && p.y >= minY() && p.y < maxY();
}

Rect Rect::standardized() const { return make(minX(), minY(), width(), height()); }

Rect Rect::integral() const {
    if (!isFinite()) return Rect{};
    if (isEmpty()) return standardized();
    double x0 = std::floor(minX()), y0 = std::floor(minY());
    double x1 = std::ceil(maxX()), y1 = std::ceil(maxY());
    return make(x0, y0, x1 - x0, y1 - y0);
}

Rect Rect::intersection(const Rect& o) const {
    if (!isFinite() || !o.isFinite()) return Rect{};
    double x0 = std::max(minX(), o.minX()), y0 = std::max(minY(), o.minY());
    double x1 = std::min(maxX(), o.maxX()), y1 = std::min(maxY(), o.maxY());
    if (x1 <= x0 || y1 <= y0) return Rect{};
    return make(x0, y0, x1 - x0, y1 - y0);
}

Rect Rect::unionWith(const Rect& o) const {
    if (isEmpty()) return o.isFinite() ? o.standardized() : Rect{};
    if (o.isEmpty()) return standardized();
    double x0 = std::min(minX(), o.minX()), y0 = std::min(minY(), o.minY());
    double x1 = std::max(maxX(), o.maxX()), y1 = std::max(maxY(), o.maxY());
    return make(x0, y0, x1 - x0, y1 - y0);
}

Rect Rect::insetBy(double dx, double dy) const {
    Rect r = standardized();
    return make(r.origin.x + dx, r.origin.y + dy, r.size.width - 2 * dx, r.size.height - 2 * dy);
}

bool operator==(const Rect& a, const Rect& b) { return a.origin == b.origin && a.size == b.size; }

AffineTransform AffineTransform::rotation(double radians) {
    double s = std::sin(radians), c = std::cos(radians);
    return {c, s, -s, c, 0, 0};
}

AffineTransform AffineTransform::concat(const AffineTransform& t1, const AffineTransform& t2) {
    return {t1.a * t2.a + t1.b * t2.c,
            t1.a * t2.b + t1.b * t2.d,
            t1.c * t2.a + t1.d * t2.c,
            t1.c * t2.b + t1.d * t2.d,
            t1.tx * t2.a + t1.ty * t2.c + t2.tx,
            t1.tx * t2.b + t1.ty * t2.d + t2.ty};
}

bool AffineTransform::invert(AffineTransform* out) const {
    double det = determinant();
    if (det == 0 || !std::isfinite(det)) return false;
    double ia = d / det, ib = -b / det, ic = -c / det, id = a / det;
    *out = {ia, ib, ic, id, -(ia * tx + ic * ty), -(ib * tx + id * ty)};
    return true;
}

Rect AffineTransform::apply(const Rect& r) const {
    Point p[4] = {apply(Point{r.minX(), r.minY()}), apply(Point{r.maxX(), r.minY()}),
                  apply(Point{r.maxX(), r.maxY()}), apply(Point{r.minX(), r.maxY()})};
    double x0 = p[0].x, x1 = p[0].x, y0 = p[0].y, y1 = p[0].y;
    for (const Point& q : p) {
        x0 = std::min(x0, q.x);
        x1 = std::max(x1, q.x);
        y0 = std::min(y0, q.y);
        y1 = std::max(y1, q.y);
    }
    return Rect::make(x0, y0, x1 - x0, y1 - y0);
}

bool operator==(const AffineTransform& x, const AffineTransform& y) {
    return x.a == y.a && x.b == y.b && x.c == y.c && x.d == y.d && x.tx == y.tx && x.ty == y.ty;
}

}  // namespace talvo::quartz
