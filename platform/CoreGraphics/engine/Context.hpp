// The Quartz drawing context engine over cairo.
//
// The context never owns a cairo_t: it asks its CairoProvider for the
// current one on every operation (the GNUstep bridge hands out a new cairo_t
// per AppKit save), draws in cairo device space with its own matrix, clip,
// source and operator, and leaves the cairo_t exactly as it found it
// (matrix, clip, source, operator, current path). All Quartz state lives in
// the context's own stack. The cairo_t's own matrix is ignored (the base
// transform targets cairo device space) but its clip still applies, so a
// view's clip set by the bridge holds.
//
// Spaces: user space (Quartz, y up) --CTM--> Quartz device space (y up)
// --base transform--> cairo device space. The CTM starts as identity; a
// bitmap of height H uses the base [1 0 0 -1 0 H]. The current path is kept
// in Quartz device space, so points take the CTM in force when they are
// added, as in Quartz. Shadow offsets and blur are in Quartz device space
// (unaffected by the CTM, y up); the blur is a Gaussian with sigma = blur/2.
//
// Compositing: an operation's source (colour or image, with the global
// alpha folded in) is composited through its coverage (the shape), the
// clip paths and every clip mask with the blend mode; pixels outside the
// coverage are never touched, whatever the mode. With a shadow, the shape
// and its shadow are first combined in a layer, which is then composited
// as one; for modes that change uncovered pixels (Clear, Copy, SourceIn,
// SourceOut, DestinationIn, DestinationAtop) the layer's coverage is the
// bounding box of shape and shadow.
//
// Not covered: patterns, shadings and gradients, text, colour spaces beyond
// device RGB/gray, rendering intent, PDF and transparency layers, hairline
// (zero-width) strokes, flatness, font smoothing. Every call is safe when
// the provider has no cairo_t: drawing calls then return false.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

#include <cairo.h>

#include "platform/CoreGraphics/engine/Geometry.hpp"
#include "platform/CoreGraphics/engine/Image.hpp"
#include "platform/CoreGraphics/engine/Path.hpp"

namespace talvo::quartz {

class CairoProvider {
public:
    virtual ~CairoProvider() = default;
    // The cairo_t to draw into now, or null to skip drawing.
    virtual cairo_t* currentCairo() = 0;
    // Bracket every drawing operation (e.g. to sync a scratch buffer).
    virtual void willDraw() {}
    virtual void didDraw() {}
};

// Adapts a plain function (the GNUstep bridge's "current cairo_t").
class FunctionCairoProvider final : public CairoProvider {
public:
    explicit FunctionCairoProvider(std::function<cairo_t*()> fn) : fn_(std::move(fn)) {}
    cairo_t* currentCairo() override { return fn_ ? fn_() : nullptr; }

private:
    std::function<cairo_t*()> fn_;
};

class Context {
public:
    Context(std::shared_ptr<CairoProvider> provider, const AffineTransform& base);
    ~Context();
    Context(const Context&) = delete;
    Context& operator=(const Context&) = delete;

    const AffineTransform& baseTransform() const { return base_; }
    void setBaseTransform(const AffineTransform& base) { base_ = base; }
    CairoProvider* provider() const { return provider_.get(); }

    // --- Graphics state stack (the current path is not part of it) ------
    void saveGState();
    // False (and nothing changes) when there is no matching save.
    bool restoreGState();
    size_t gStateDepth() const;

    // --- CTM ---------------------------------------------------------------
    void concatCTM(const AffineTransform& t);
    void scaleCTM(double sx, double sy);
    void translateCTM(double tx, double ty);
    void rotateCTM(double radians);
    AffineTransform getCTM() const;
    void setCTM(const AffineTransform& t);

    // --- Paint state -------------------------------------------------------
    void setFillColor(const Color& c);
    void setStrokeColor(const Color& c);
    Color fillColor() const;
    Color strokeColor() const;
    void setLineWidth(double w);
    double lineWidth() const;
    void setLineCap(LineCap cap);
    void setLineJoin(LineJoin join);
    void setMiterLimit(double limit);
    // count == 0 (or null lengths) turns dashing off.
    void setLineDash(double phase, const double* lengths, size_t count);
    // Clamped to 0...1.
    void setAlpha(double alpha);
    double alpha() const;
    void setBlendMode(BlendMode mode);
    BlendMode blendMode() const;
    // Quartz's default shadow colour: black at 1/3 alpha.
    void setShadow(Size offset, double blur);
    // A null colour (or alpha 0) turns the shadow off.
    void setShadowWithColor(Size offset, double blur, const Color* color);
    void setInterpolationQuality(InterpolationQuality q);
    InterpolationQuality interpolationQuality() const;
    void setShouldAntialias(bool on);

    // --- Current path (user space in, stored in device space) -------------
    void beginPath();
    void moveTo(double x, double y);
    void lineTo(double x, double y);
    void curveTo(double cp1x, double cp1y, double cp2x, double cp2y, double x, double y);
    void quadCurveTo(double cpx, double cpy, double x, double y);
    void addRect(const Rect& r);
    void addRects(const Rect* rects, size_t count);
    void addEllipseInRect(const Rect& r);
    void addArc(double x, double y, double radius, double startAngle, double endAngle,
                bool clockwise);
    void addArcToPoint(double x1, double y1, double x2, double y2, double radius);
    void addLines(const Point* points, size_t count);
    void closePath();
    void addPath(const Path& path);
    bool isPathEmpty() const { return path_.isEmpty(); }
    // In user space; false when there is no current point or the CTM is
    // singular.
    bool pathCurrentPoint(Point* out) const;
    Rect pathBoundingBox() const;
    // The current path in user space.
    Path copyPath() const;

    // --- Painting (each consumes the current path, as Quartz does) --------
    bool fillPath(FillRule rule = FillRule::Winding);
    bool strokePath();
    bool drawPath(PathDrawingMode mode);
    bool fillRect(const Rect& r);
    bool fillRects(const Rect* rects, size_t count);
    bool strokeRect(const Rect& r);
    bool strokeRectWithWidth(const Rect& r, double width);
    bool fillEllipseInRect(const Rect& r);
    bool strokeEllipseInRect(const Rect& r);
    // Paints transparent, ignoring blend mode, alpha and shadow; clipped.
    bool clearRect(const Rect& r);
    // Upright in a y-up space: the image's top row at the top of `rect`.
    // An image mask paints the fill colour through the mask.
    bool drawImage(const Rect& rect, Image* image);

    // --- Clipping (accumulates; saved and restored with the state) --------
    // Consumes the current path; an empty path clips everything away.
    void clip(FillRule rule = FillRule::Winding);
    void clipToRect(const Rect& r);
    void clipToRects(const Rect* rects, size_t count);
    // Outside `rect` nothing is drawn. An image mask lets paint in where its
    // samples are 0; an image with alpha uses its alpha; a gray image lets
    // paint in where it is white. False if the image is null.
    bool clipToMask(const Rect& rect, Image* image);
    // User-space bounds of the clip (path clips and mask rectangles).
    Rect clipBoundingBox() const;

private:
    struct Part;
    struct GState;
    struct ClipPath;
    struct ClipMask;

    GState& state();
    const GState& state() const;
    AffineTransform userToCairo() const;

    Part fillPart(std::shared_ptr<const Path> devicePath, FillRule rule) const;
    Part strokePart(std::shared_ptr<const Path> devicePath) const;
    bool render(const std::vector<Part>& parts, bool clearing);
    void applyPathClips(cairo_t* cr) const;
    cairo_pattern_t* buildShadowLayer(cairo_t* cr, const std::vector<Part>& parts, Rect* box) const;
    cairo_pattern_t* maskClipPattern(cairo_t* cr, const ClipMask& m) const;
    std::shared_ptr<const Path> takePath();

    std::shared_ptr<CairoProvider> provider_;
    AffineTransform base_;
    std::vector<GState> stack_;
    Path path_;
};

}  // namespace talvo::quartz
