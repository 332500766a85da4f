// A reusable path value with CGPath's element model. Every adder takes an
// optional transform applied to the points it generates (CGPath's `m`).
#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "platform/CoreGraphics/engine/Geometry.hpp"

namespace talvo::quartz {

// CGPathElementType numbering.
enum class PathElementType : int {
    MoveToPoint = 0,
    AddLineToPoint = 1,
    AddQuadCurveToPoint = 2,
    AddCurveToPoint = 3,
    CloseSubpath = 4,
};

// Points are 1 (move, line), 2 (quad: control, end), 3 (cubic: c1, c2,
// end) or 0 (close); valid only during the visitor call.
struct PathElement {
    PathElementType type;
    const Point* points;
};

class Path {
public:
    using Visitor = std::function<void(const PathElement&)>;

    void moveTo(Point p, const AffineTransform& m = {});
    // Without a current point these are ignored, as Quartz does.
    void lineTo(Point p, const AffineTransform& m = {});
    void quadCurveTo(Point cp, Point p, const AffineTransform& m = {});
    void curveTo(Point cp1, Point cp2, Point p, const AffineTransform& m = {});
    void closeSubpath();

    // Rect: move to (minX, minY), then counter-clockwise in y-up, closed.
    void addRect(const Rect& r, const AffineTransform& m = {});
    // Ellipse: four cubics from (maxX, midY), counter-clockwise, closed.
    void addEllipseInRect(const Rect& r, const AffineTransform& m = {});
    void addRoundedRect(const Rect& r, double cornerWidth, double cornerHeight,
                        const AffineTransform& m = {});
    // Angles in radians; `clockwise` in the path's own (y-up) sense. Lines
    // from the current point to the arc's start if there is one.
    void addArc(Point center, double radius, double startAngle, double endAngle, bool clockwise,
                const AffineTransform& m = {});
    // Tangent arc between the lines current->p1 and p1->p2.
    void addArcToPoint(Point p1, Point p2, double radius, const AffineTransform& m = {});
    void addLines(const Point* points, size_t count, const AffineTransform& m = {});
    void addPath(const Path& other, const AffineTransform& m = {});

    void clear();
    bool isEmpty() const { return types_.empty(); }
    // False when there is no current point.
    bool currentPoint(Point* out) const;
    size_t elementCount() const { return types_.size(); }

    // Includes control points, as CGPathGetBoundingBox.
    Rect boundingBox() const;
    // Tight bounds of the curves, as CGPathGetPathBoundingBox.
    Rect pathBoundingBox() const;
    // Hit test with the given fill rule (uses cairo's rasteriser geometry).
    bool containsPoint(Point p, FillRule rule) const;

    Path transformed(const AffineTransform& m) const;
    void apply(const Visitor& visitor) const;
    // As apply(), without the std::function: for the engine's hot loops.
    template <typename F>
    void visit(F&& f) const {
        size_t pi = 0;
        for (PathElementType t : types_) {
            size_t n = t == PathElementType::AddCurveToPoint       ? 3
                       : t == PathElementType::AddQuadCurveToPoint ? 2
                       : t == PathElementType::CloseSubpath        ? 0
                                                                   : 1;
            f(PathElement{t, n ? &points_[pi] : nullptr});
            pi += n;
        }
    }

    friend bool operator==(const Path& a, const Path& b);

private:
    void appendArcSegments(Point center, double radius, double start, double sweep,
                           const AffineTransform& m);
    void push(PathElementType t, std::initializer_list<Point> pts);

    std::vector<PathElementType> types_;
    std::vector<Point> points_;
    Point current_{};
    Point subpathStart_{};
    bool hasCurrent_ = false;
};

}  // namespace talvo::quartz
