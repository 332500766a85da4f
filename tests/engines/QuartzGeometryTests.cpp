// Quartz value types and paths: transform conventions, rectangles, path
// elements, bounds and hit testing.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "platform/CoreGraphics/engine/Path.hpp"

using namespace talvo::quartz;

namespace {

constexpr double kPi = 3.14159265358979323846;

struct Recorded {
    PathElementType type;
    std::vector<Point> points;
};

std::vector<Recorded> record(const Path& p) {
    std::vector<Recorded> out;
    p.apply([&](const PathElement& e) {
        size_t n = e.type == PathElementType::AddCurveToPoint      ? 3
                   : e.type == PathElementType::AddQuadCurveToPoint ? 2
                   : e.type == PathElementType::CloseSubpath        ? 0
                                                                    : 1;
        out.push_back({e.type, std::vector<Point>(e.points, e.points + n)});
    });
    return out;
}

void expectPoint(Point p, double x, double y) {
    EXPECT_NEAR(p.x, x, 1e-9);
    EXPECT_NEAR(p.y, y, 1e-9);
}

}  // namespace

// --- Transforms ----------------------------------------------------------------

TEST(QuartzGeometryTransform, AppleComponentConvention) {
    AffineTransform t = AffineTransform::make(1, 2, 3, 4, 5, 6);
    expectPoint(t.apply(Point{1, 1}), 1 + 3 + 5, 2 + 4 + 6);
    Size s = t.apply(Size{1, 0});
    EXPECT_DOUBLE_EQ(s.width, 1);
    EXPECT_DOUBLE_EQ(s.height, 2);
}

TEST(QuartzGeometryTransform, ConcatAppliesTheFirstOperandFirst) {
    AffineTransform scale = AffineTransform::scale(2, 2);
    AffineTransform move = AffineTransform::translation(10, 0);
    expectPoint(AffineTransform::concat(scale, move).apply(Point{1, 1}), 12, 2);
    expectPoint(AffineTransform::concat(move, scale).apply(Point{1, 1}), 22, 2);
    // translated() prepends, as CGAffineTransformTranslate does.
    expectPoint(scale.translated(10, 0).apply(Point{1, 1}), 22, 2);
}

TEST(QuartzGeometryTransform, RotationIsCounterClockwiseInYUp) {
    expectPoint(AffineTransform::rotation(kPi / 2).apply(Point{1, 0}), 0, 1);
}

TEST(QuartzGeometryTransform, InvertRoundTripsAndRefusesSingular) {
    AffineTransform t = AffineTransform::make(2, 1, -1, 3, 4, -5);
    AffineTransform inv;
    ASSERT_TRUE(t.invert(&inv));
    expectPoint(inv.apply(t.apply(Point{7, -3})), 7, -3);
    EXPECT_FALSE(AffineTransform::scale(0, 1).invert(&inv));
}

TEST(QuartzGeometryRect, EdgesIntersectionUnionIntegral) {
    Rect r = Rect::make(10, 10, -4, 6);  // negative widths are legal
    EXPECT_DOUBLE_EQ(r.minX(), 6);
    EXPECT_DOUBLE_EQ(r.maxX(), 10);
    Rect i = Rect::make(0, 0, 10, 10).intersection(Rect::make(5, 5, 10, 10));
    EXPECT_EQ(i, Rect::make(5, 5, 5, 5));
    EXPECT_TRUE(Rect::make(0, 0, 1, 1).intersection(Rect::make(2, 2, 1, 1)).isEmpty());
    EXPECT_EQ(Rect::make(0, 0, 1, 1).unionWith(Rect::make(2, 2, 1, 1)), Rect::make(0, 0, 3, 3));
    EXPECT_EQ(Rect::make(0.5, 0.2, 1, 1).integral(), Rect::make(0, 0, 2, 2));
    Rect turned = AffineTransform::rotation(kPi / 2).apply(Rect::make(0, 0, 2, 1));
    EXPECT_NEAR(turned.minX(), -1, 1e-9);
    EXPECT_NEAR(turned.maxX(), 0, 1e-9);
    EXPECT_NEAR(turned.minY(), 0, 1e-9);
    EXPECT_NEAR(turned.maxY(), 2, 1e-9);
}

// --- Paths ---------------------------------------------------------------------

TEST(QuartzGeometryPath, RectElementsFollowQuartz) {
    Path p;
    p.addRect(Rect::make(1, 2, 3, 4));
    auto els = record(p);
    ASSERT_EQ(els.size(), 5u);
    EXPECT_EQ(els[0].type, PathElementType::MoveToPoint);
    expectPoint(els[0].points[0], 1, 2);
    expectPoint(els[1].points[0], 4, 2);
    expectPoint(els[2].points[0], 4, 6);
    expectPoint(els[3].points[0], 1, 6);
    EXPECT_EQ(els[4].type, PathElementType::CloseSubpath);
    EXPECT_EQ(static_cast<int>(els[4].type), 4);
}

TEST(QuartzGeometryPath, ElementKindsAndTransformedPoints) {
    Path p;
    AffineTransform m = AffineTransform::translation(100, 0);
    p.lineTo({5, 5});  // no current point: ignored
    p.moveTo({0, 0}, m);
    p.quadCurveTo({1, 1}, {2, 0}, m);
    p.curveTo({3, 1}, {4, 1}, {5, 0}, m);
    p.closeSubpath();
    auto els = record(p);
    ASSERT_EQ(els.size(), 4u);
    EXPECT_EQ(static_cast<int>(els[1].type), 2);
    EXPECT_EQ(static_cast<int>(els[2].type), 3);
    expectPoint(els[1].points[0], 101, 1);
    expectPoint(els[2].points[2], 105, 0);
    Point cur;
    ASSERT_TRUE(p.currentPoint(&cur));
    expectPoint(cur, 100, 0);  // back at the subpath start after close
}

TEST(QuartzGeometryPath, EllipseStartsAtMaxXAndFitsItsRect) {
    Path p;
    p.addEllipseInRect(Rect::make(0, 0, 20, 10));
    auto els = record(p);
    ASSERT_EQ(els.size(), 6u);
    expectPoint(els[0].points[0], 20, 5);
    expectPoint(els[1].points[2], 10, 10);  // counter-clockwise in y-up: up first
    Rect b = p.pathBoundingBox();
    EXPECT_NEAR(b.minX(), 0, 1e-9);
    EXPECT_NEAR(b.maxX(), 20, 1e-9);
    EXPECT_NEAR(b.maxY(), 10, 1e-9);
}

TEST(QuartzGeometryPath, ControlPointBoundsVersusTightBounds) {
    Path p;
    p.moveTo({0, 0});
    p.curveTo({0, 10}, {10, 10}, {10, 0});
    EXPECT_DOUBLE_EQ(p.boundingBox().maxY(), 10);
    EXPECT_NEAR(p.pathBoundingBox().maxY(), 7.5, 1e-9);
    Path q;
    q.moveTo({0, 0});
    q.quadCurveTo({5, 10}, {10, 0});
    EXPECT_NEAR(q.pathBoundingBox().maxY(), 5, 1e-9);
    EXPECT_TRUE(Path().boundingBox().isEmpty());
}

TEST(QuartzGeometryPath, ArcsHonourDirection) {
    Path ccw;
    ccw.addArc({0, 0}, 10, 0, kPi / 2, false);  // quarter turn through the first quadrant
    Rect a = ccw.pathBoundingBox();
    EXPECT_NEAR(a.minX(), 0, 1e-6);
    EXPECT_NEAR(a.maxY(), 10, 1e-6);
    EXPECT_NEAR(a.minY(), 0, 1e-6);

    Path cw;
    cw.addArc({0, 0}, 10, 0, kPi / 2, true);  // three quarters the other way
    Rect b = cw.pathBoundingBox();
    EXPECT_NEAR(b.minX(), -10, 1e-6);
    EXPECT_NEAR(b.minY(), -10, 1e-6);
    Point end;
    ASSERT_TRUE(cw.currentPoint(&end));
    expectPoint(Point{std::round(end.x * 1e6) / 1e6, std::round(end.y * 1e6) / 1e6}, 0, 10);

    Path full;
    full.addArc({0, 0}, 5, 0, 2 * kPi, false);
    EXPECT_NEAR(full.pathBoundingBox().width(), 10, 1e-6);
}

TEST(QuartzGeometryPath, ArcToPointIsTangentToBothLines) {
    Path p;
    p.moveTo({0, 0});
    p.addArcToPoint({10, 0}, {10, 10}, 4);
    auto els = record(p);
    ASSERT_GE(els.size(), 3u);
    expectPoint(els[1].points[0], 6, 0);  // tangent point on the first line
    Point end;
    ASSERT_TRUE(p.currentPoint(&end));
    EXPECT_NEAR(end.x, 10, 1e-9);
    EXPECT_NEAR(end.y, 4, 1e-9);  // tangent point on the second line
}

TEST(QuartzGeometryPath, ContainsPointWithBothRules) {
    Path p;
    p.addRect(Rect::make(0, 0, 10, 10));
    p.addRect(Rect::make(2, 2, 6, 6));
    EXPECT_TRUE(p.containsPoint({5, 5}, FillRule::Winding));
    EXPECT_FALSE(p.containsPoint({5, 5}, FillRule::EvenOdd));
    EXPECT_TRUE(p.containsPoint({1, 1}, FillRule::EvenOdd));
    EXPECT_FALSE(p.containsPoint({11, 1}, FillRule::Winding));
}

TEST(QuartzGeometryPath, TransformedAddPathAndEquality) {
    Path p;
    p.addRoundedRect(Rect::make(0, 0, 10, 10), 2, 2);
    Path moved = p.transformed(AffineTransform::translation(5, 5));
    EXPECT_NEAR(moved.pathBoundingBox().minX(), 5, 1e-9);
    Path again;
    again.addPath(p, AffineTransform::translation(5, 5));
    EXPECT_TRUE(again == moved);
    EXPECT_FALSE(again == p);
}
