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
// (unaffected by the CTM, y up); the blur is a Gaussian with sigma = blur/2,
// held to at most 256 (larger values draw as 256), and the shadow's cost
// grows with the shape's area plus the blur, not with the surface's.
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
// Cost: an operation touches only its own device bounds. Layers (for a
// shadow, a mask clip or a blend mode cairo applies unbounded) are cairo
// groups clipped to those bounds, and a shadow blurs a scratch the size of
// the shape plus three sigma, never the whole clip. A plain fill or stroke
// is one cairo fill or stroke, between a cairo save and restore on a
// borrowed cairo_t and with none on one the provider owns; nothing is
// allocated for it beyond what cairo itself does.
//
// Gradients: linear and radial, drawn through cairo gradient patterns in
// the clip. Extending before the start and after the end is exact for
// linear gradients; for radial gradients one-sided extension draws both
// sides (cairo pads both ends or neither).
//
// Not covered: patterns, text, colour spaces beyond device RGB/gray,
// rendering intent, PDF and transparency layers, hairline (zero-width)
// strokes, flatness, font smoothing. Every call is safe when the provider
// has no cairo_t: drawing calls then return false.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <utility>
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
    // `touched` is the operation's bounds in cairo device space (pixels,
    // top row first), or null when unknown.
    virtual void willDraw() {}
    virtual void didDraw(const Rect* touched) { (void)touched; }
    // True when the surface stores red where cairo writes blue and the
    // reverse (an RGBA buffer drawn as cairo's ARGB): the engine then
    // swaps red and blue in every colour, image and gradient it draws.
    virtual bool swapsRedBlue() const { return false; }
    // Swaps red and blue in place over the whole surface, for the blend
    // modes that are not symmetric in red and blue (hue, saturation,
    // colour, luminosity): called before and after such an operation.
    virtual void swapRedBlueInPlace() {}
    // True when nobody else draws with the cairo_t: the engine then resets
    // what it changed instead of saving and restoring the whole state.
    virtual bool ownsCairo() const { return false; }
};

// One colour stop of a gradient (location 0...1).
struct GradientStop {
    double location = 0;
    Color color;
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
    // Fills the clip with a gradient from `start` to `end` (user space).
    // Stops are sorted by location; extending paints the end colours beyond
    // the ends.
    bool drawLinearGradient(const GradientStop* stops, size_t count, Point start, Point end,
                            bool extendStart, bool extendEnd);
    bool drawRadialGradient(const GradientStop* stops, size_t count, Point startCenter,
                            double startRadius, Point endCenter, double endRadius,
                            bool extendStart, bool extendEnd);
    // Composites `pattern` (cairo device space, not swapped: true colours)
    // inside `deviceBounds` with the whole state, as one object: what the
    // AppKit bridge uses to lay AppKit's own drawing in with Quartz effects.
    bool drawDevicePattern(cairo_pattern_t* pattern, const Rect& deviceBounds);

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
    // Drops every clip path and mask of the current state (the AppKit
    // bridge reloads the state it keeps elsewhere before each drawing).
    void resetClip();

private:
    struct Part;
    struct GState;
    struct ClipPath;
    struct ClipMask;

    GState& state();
    const GState& state() const;
    AffineTransform userToCairo() const;

    bool render(const Part* parts, size_t count, bool clearing);
    bool renderGradient(cairo_pattern_t* gradient, const GradientStop* stops, size_t count,
                        bool extendStart, bool extendEnd, const Path* halfPlanes);
    // The part's paint (the caller destroys it) and its coverage.
    cairo_pattern_t* partSource(cairo_t* cr, const Part& part, bool swap, bool alphaInCover) const;
    void partCover(cairo_t* cr, const Part& part, bool alphaInCover) const;
    void setFillPath(cairo_t* cr, const Part& part) const;
    // Conservative bounds of what the part paints, cairo device space.
    Rect partBounds(const Part& part, const Rect& clipBox) const;
    void applyPathClips(cairo_t* cr) const;
    cairo_pattern_t* buildShadowLayer(cairo_t* cr, const Part* parts, size_t count,
                                      const Rect& shapeBounds, const Rect& clipBox, bool swap,
                                      cairo_operator_t op, bool direct) const;
    cairo_pattern_t* maskClipPattern(cairo_t* cr, const ClipMask& m) const;
    void clipToMaskDirect(cairo_t* cr, const ClipMask& m, cairo_pattern_t** pattern) const;

    std::shared_ptr<CairoProvider> provider_;
    AffineTransform base_;
    std::vector<GState> stack_;
    Path path_;
};

}  // namespace talvo::quartz
