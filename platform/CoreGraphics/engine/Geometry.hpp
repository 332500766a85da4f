// Value types of the Quartz engine: points, sizes, rectangles, affine
// transforms, colours and the drawing-state enums, numbered as Apple numbers
// them so the C layer above can cast straight through.
#pragma once

#include <cstdint>

namespace talvo::quartz {

struct Point {
    double x = 0;
    double y = 0;

    bool isFinite() const;
};

struct Size {
    double width = 0;
    double height = 0;
};

inline bool operator==(const Point& a, const Point& b) { return a.x == b.x && a.y == b.y; }
inline bool operator!=(const Point& a, const Point& b) { return !(a == b); }
inline bool operator==(const Size& a, const Size& b) { return a.width == b.width && a.height == b.height; }

struct Rect {
    Point origin;
    Size size;

    static Rect make(double x, double y, double w, double h) { return Rect{{x, y}, {w, h}}; }

    // Negative widths and heights are legal in Quartz; these read the
    // standardized edges.
    double minX() const;
    double minY() const;
    double maxX() const;
    double maxY() const;
    double midX() const { return (minX() + maxX()) / 2; }
    double midY() const { return (minY() + maxY()) / 2; }
    double width() const { return maxX() - minX(); }
    double height() const { return maxY() - minY(); }

    // Non-finite rectangles (NaN or infinite in any field) count as empty,
    // so no caller ever turns their edges into integers.
    bool isEmpty() const { return !(size.width != 0 && size.height != 0) || !isFinite(); }
    bool isFinite() const;
    bool contains(Point p) const;
    Rect standardized() const;
    // Smallest rectangle with integral edges containing this one.
    Rect integral() const;
    // An empty intersection comes back as a zero rect; test with isEmpty().
    Rect intersection(const Rect& other) const;
    Rect unionWith(const Rect& other) const;
    Rect insetBy(double dx, double dy) const;
};

bool operator==(const Rect& a, const Rect& b);

// Apple's convention: x' = a x + c y + tx, y' = b x + d y + ty. Same layout
// as cairo_matrix_t (xx = a, yx = b, xy = c, yy = d, x0 = tx, y0 = ty).
struct AffineTransform {
    double a = 1, b = 0, c = 0, d = 1, tx = 0, ty = 0;

    static AffineTransform identity() { return {}; }
    static AffineTransform make(double a, double b, double c, double d, double tx, double ty) {
        return AffineTransform{a, b, c, d, tx, ty};
    }
    static AffineTransform translation(double tx, double ty) { return {1, 0, 0, 1, tx, ty}; }
    static AffineTransform scale(double sx, double sy) { return {sx, 0, 0, sy, 0, 0}; }
    // Positive angles turn counter-clockwise in a y-up space.
    static AffineTransform rotation(double radians);
    // "first then second", as CGAffineTransformConcat(first, second).
    static AffineTransform concat(const AffineTransform& first, const AffineTransform& second);

    // These prepend, like CGAffineTransformTranslate/Scale/Rotate: the new
    // operation is applied to points before this transform.
    AffineTransform translated(double x, double y) const { return concat(translation(x, y), *this); }
    AffineTransform scaled(double sx, double sy) const { return concat(scale(sx, sy), *this); }
    AffineTransform rotated(double radians) const { return concat(rotation(radians), *this); }

    // False (and *out untouched) when the transform is singular.
    bool invert(AffineTransform* out) const;
    bool isIdentity() const { return a == 1 && b == 0 && c == 0 && d == 1 && tx == 0 && ty == 0; }
    double determinant() const { return a * d - b * c; }

    Point apply(Point p) const { return {a * p.x + c * p.y + tx, b * p.x + d * p.y + ty}; }
    // Linear part only, as CGSizeApplyAffineTransform.
    Size apply(Size s) const { return {a * s.width + c * s.height, b * s.width + d * s.height}; }
    // Bounding box of the transformed corners.
    Rect apply(const Rect& r) const;
};

bool operator==(const AffineTransform& x, const AffineTransform& y);
inline bool operator!=(const AffineTransform& x, const AffineTransform& y) { return !(x == y); }

// Device RGB, components 0...1, NOT premultiplied.
struct Color {
    double r = 0, g = 0, b = 0, a = 1;

    static Color rgb(double r, double g, double b, double a = 1) { return Color{r, g, b, a}; }
    static Color gray(double w, double a = 1) { return Color{w, w, w, a}; }
    static Color clear() { return Color{0, 0, 0, 0}; }
};

inline bool operator==(const Color& x, const Color& y) {
    return x.r == y.r && x.g == y.g && x.b == y.b && x.a == y.a;
}

// CGBlendMode numbering. Every mode maps to a cairo operator except
// PlusDarker, which cairo lacks: it falls back to Multiply (the nearest
// darkening mode), so results differ where both layers are light.
// PlusLighter is cairo's saturating ADD. Copy is cairo's SOURCE.
// All modes are bounded by the drawn shape: pixels the shape does not cover
// are left alone, even for SourceIn, SourceOut, DestinationIn and
// DestinationAtop, which cairo itself would apply everywhere.
enum class BlendMode : int {
    Normal = 0,
    Multiply = 1,
    Screen = 2,
    Overlay = 3,
    Darken = 4,
    Lighten = 5,
    ColorDodge = 6,
    ColorBurn = 7,
    SoftLight = 8,
    HardLight = 9,
    Difference = 10,
    Exclusion = 11,
    Hue = 12,
    Saturation = 13,
    Color = 14,
    Luminosity = 15,
    Clear = 16,
    Copy = 17,
    SourceIn = 18,
    SourceOut = 19,
    SourceAtop = 20,
    DestinationOver = 21,
    DestinationIn = 22,
    DestinationOut = 23,
    DestinationAtop = 24,
    XOR = 25,
    PlusDarker = 26,
    PlusLighter = 27,
};

enum class LineCap : int { Butt = 0, Round = 1, Square = 2 };
enum class LineJoin : int { Miter = 0, Round = 1, Bevel = 2 };
enum class FillRule : int { Winding = 0, EvenOdd = 1 };

// CGPathDrawingMode.
enum class PathDrawingMode : int { Fill = 0, EOFill = 1, Stroke = 2, FillStroke = 3, EOFillStroke = 4 };

// CGInterpolationQuality.
enum class InterpolationQuality : int { Default = 0, None = 1, Low = 2, High = 3, Medium = 4 };

}  // namespace talvo::quartz
