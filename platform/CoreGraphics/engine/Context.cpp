#include "platform/CoreGraphics/engine/Context.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "platform/CoreGraphics/engine/CairoSupport.hpp"
#include "platform/CoreGraphics/engine/Checked.hpp"

namespace talvo::quartz {

struct Context::ClipPath {
    std::shared_ptr<const Path> path;  // Quartz device space
    FillRule rule;
    bool antialias;
};

struct Context::ClipMask {
    ImageRef image;
    Rect rect;
    AffineTransform ctm;  // in force when the clip was set
};

struct Context::GState {
    AffineTransform ctm;
    Color fill{0, 0, 0, 1};
    Color stroke{0, 0, 0, 1};
    double lineWidth = 1;
    LineCap cap = LineCap::Butt;
    LineJoin join = LineJoin::Miter;
    double miterLimit = 10;
    double dashPhase = 0;
    std::vector<double> dashes;
    double alpha = 1;
    BlendMode blend = BlendMode::Normal;
    bool shadowOn = false;
    Size shadowOffset;
    double shadowBlur = 0;
    Color shadowColor{0, 0, 0, 1.0 / 3.0};
    InterpolationQuality interpolation = InterpolationQuality::Default;
    bool antialias = true;
    std::vector<ClipPath> clipPaths;
    std::vector<ClipMask> clipMasks;
};

// One thing to draw: a fill or stroke of a device-space path in a colour, an
// image (or image mask) in a device rectangle, a gradient filling the clip,
// or a device pattern inside a rectangle. Plain data: the engine's own
// state supplies the pen, alpha and filter when the part is drawn.
struct Context::Part {
    enum class Kind { Fill, Stroke, Image, Mask, Gradient, Pattern };
    Kind kind = Kind::Fill;
    const Path* path = nullptr;  // Fill, Stroke: Quartz device space
    FillRule rule = FillRule::Winding;
    Color color;                 // Fill, Stroke, Mask
    Image* image = nullptr;      // Image, Mask
    AffineTransform toDevice;    // Image, Mask: image pixels to cairo device
    cairo_pattern_t* pattern = nullptr;  // Gradient, Pattern: borrowed, device space
    Rect deviceRect;             // Pattern: where it is drawn
};

namespace {

// The largest shadow blur drawn (sigma 128 device pixels); larger blurs are
// drawn with this one.
constexpr double kMaxShadowBlur = 256;

// Leaves the cairo_t as found: gstate via save/restore, and the current
// path, which cairo does not save, by copying it when there is one (no
// current point means an empty path).
//
// A cairo_t the engine owns needs no save: its clip is reset and its path
// cleared afterwards, and every other field the engine uses is set before
// each use.
class CairoScope {
public:
    explicit CairoScope(cairo_t* cr, bool owned = false)
        : cr_(cr), owned_(owned),
          path_(!owned && cairo_has_current_point(cr) ? cairo_copy_path(cr) : nullptr) {
        if (!owned_) cairo_save(cr_);
        cairo_new_path(cr_);
        cairo_identity_matrix(cr_);
    }
    ~CairoScope() {
        if (owned_) {
            cairo_reset_clip(cr_);
            cairo_new_path(cr_);
            cairo_set_operator(cr_, CAIRO_OPERATOR_OVER);
            return;
        }
        cairo_restore(cr_);
        cairo_new_path(cr_);
        if (path_ && path_->status == CAIRO_STATUS_SUCCESS && path_->num_data > 0)
            cairo_append_path(cr_, path_);
        if (path_) cairo_path_destroy(path_);
    }
    CairoScope(const CairoScope&) = delete;
    CairoScope& operator=(const CairoScope&) = delete;

private:
    cairo_t* cr_;
    bool owned_;
    cairo_path_t* path_;
};

void setMatrix(cairo_t* cr, const AffineTransform& t) {
    cairo_matrix_t m = toCairo(t);
    cairo_set_matrix(cr, &m);
}

cairo_filter_t filterFor(InterpolationQuality q, const Image* image) {
    if (!image->shouldInterpolate()) return CAIRO_FILTER_NEAREST;
    switch (q) {
        case InterpolationQuality::None: return CAIRO_FILTER_NEAREST;
        // Bilinear: cairo's "fast" is nearest-neighbour when scaling.
        case InterpolationQuality::Low: return CAIRO_FILTER_BILINEAR;
        case InterpolationQuality::High: return CAIRO_FILTER_BEST;
        case InterpolationQuality::Default:
        case InterpolationQuality::Medium: return CAIRO_FILTER_GOOD;
    }
    return CAIRO_FILTER_GOOD;
}

double clamp01(double v) { return v >= 0 ? (v <= 1 ? v : 1) : 0; }  // NaN -> 0

cairo_pattern_t* colorPattern(const Color& c, double alpha, bool swap) {
    double r = clamp01(c.r), b = clamp01(c.b);
    if (swap) std::swap(r, b);
    return cairo_pattern_create_rgba(r, clamp01(c.g), b, clamp01(c.a) * alpha);
}

void setColorSource(cairo_t* cr, const Color& c, double alpha, bool swap) {
    double r = clamp01(c.r), b = clamp01(c.b);
    if (swap) std::swap(r, b);
    cairo_set_source_rgba(cr, r, clamp01(c.g), b, clamp01(c.a) * alpha);
}

bool isNonSeparable(cairo_operator_t op) {
    return op == CAIRO_OPERATOR_HSL_HUE || op == CAIRO_OPERATOR_HSL_SATURATION ||
           op == CAIRO_OPERATOR_HSL_COLOR || op == CAIRO_OPERATOR_HSL_LUMINOSITY;
}

// The smallest integer rectangle holding `r`; empty when it is not finite.
Rect pixelBounds(const Rect& r) {
    if (r.isEmpty()) return Rect{};
    Rect i = r.integral();
    if (!fitsPixelCoordinate(i.minX()) || !fitsPixelCoordinate(i.maxX()) ||
        !fitsPixelCoordinate(i.minY()) || !fitsPixelCoordinate(i.maxY()))
        return Rect{};
    return i;
}

// An upper bound of how far `t` can stretch a unit length.
double stretchOf(const AffineTransform& t) {
    return std::sqrt(t.a * t.a + t.b * t.b + t.c * t.c + t.d * t.d);
}

// Maps the image's pixel grid (top row first) onto `rect` in a y-up space.
AffineTransform imageToUser(const Rect& rect, const Image* image) {
    Rect r = rect.standardized();
    double sx = r.size.width / static_cast<double>(image->width());
    double sy = r.size.height / static_cast<double>(image->height());
    return AffineTransform::make(sx, 0, 0, -sy, r.origin.x, r.origin.y + r.size.height);
}

// Three box blurs approximating a Gaussian of the given sigma.
void boxRadii(double sigma, int radii[3]) {
    const int n = 3;
    double ideal = std::sqrt(12 * sigma * sigma / n + 1);
    int wl = static_cast<int>(std::floor(ideal));
    if (wl % 2 == 0) --wl;
    int wu = wl + 2;
    double mIdeal = (12 * sigma * sigma - n * wl * wl - 4 * n * wl - 3 * n) / (-4.0 * wl - 4);
    int m = static_cast<int>(std::lround(mIdeal));
    for (int i = 0; i < n; ++i) radii[i] = ((i < m ? wl : wu) - 1) / 2;
}

void boxBlur(const uint8_t* src, uint8_t* dst, int count, int lines, int step, int lineStep, int r) {
    int window = 2 * r + 1;
    for (int l = 0; l < lines; ++l) {
        const uint8_t* s = src + l * lineStep;
        uint8_t* d = dst + l * lineStep;
        int sum = 0;
        for (int i = 0; i <= r && i < count; ++i) sum += s[i * step];
        for (int i = 0; i < count; ++i) {
            d[i * step] = static_cast<uint8_t>((sum + window / 2) / window);
            if (i + r + 1 < count) sum += s[(i + r + 1) * step];
            if (i - r >= 0) sum -= s[(i - r) * step];
        }
    }
}

void gaussianBlurA8(uint8_t* data, int w, int h, int stride, double sigma) {
    if (!(sigma >= 0.3) || !(sigma < 1e5)) return;
    int radii[3];
    boxRadii(sigma, radii);
    std::vector<uint8_t> tmp(static_cast<size_t>(stride) * static_cast<size_t>(h));
    for (int r : radii) {
        if (r <= 0) continue;
        boxBlur(data, tmp.data(), w, h, 1, stride, r);
        boxBlur(tmp.data(), data, h, w, stride, 1, r);
    }
}

}  // namespace

Context::Context(std::shared_ptr<CairoProvider> provider, const AffineTransform& base)
    : provider_(std::move(provider)), base_(base) {
    stack_.emplace_back();
}

Context::~Context() = default;

Context::GState& Context::state() { return stack_.back(); }
const Context::GState& Context::state() const { return stack_.back(); }
size_t Context::gStateDepth() const { return stack_.size() - 1; }

// --- State -------------------------------------------------------------------

void Context::saveGState() {
    try {
        stack_.push_back(stack_.back());
    } catch (...) {
    }
}

bool Context::restoreGState() {
    if (stack_.size() < 2) return false;
    stack_.pop_back();
    return true;
}

namespace {

bool isFiniteTransform(const AffineTransform& t) {
    return std::isfinite(t.a) && std::isfinite(t.b) && std::isfinite(t.c) && std::isfinite(t.d) &&
           std::isfinite(t.tx) && std::isfinite(t.ty);
}

}  // namespace

// A CTM with NaN or infinity in it is refused (the CTM stays as it was):
// cairo would put the cairo_t into a permanent error on such a matrix.
void Context::concatCTM(const AffineTransform& t) {
    AffineTransform next = AffineTransform::concat(t, state().ctm);
    if (isFiniteTransform(next)) state().ctm = next;
}
void Context::scaleCTM(double sx, double sy) { concatCTM(AffineTransform::scale(sx, sy)); }
void Context::translateCTM(double tx, double ty) { concatCTM(AffineTransform::translation(tx, ty)); }
void Context::rotateCTM(double radians) { concatCTM(AffineTransform::rotation(radians)); }
AffineTransform Context::getCTM() const { return state().ctm; }
void Context::setCTM(const AffineTransform& t) {
    if (isFiniteTransform(t)) state().ctm = t;
}
AffineTransform Context::userToCairo() const { return AffineTransform::concat(state().ctm, base_); }

void Context::setFillColor(const Color& c) { state().fill = c; }
void Context::setStrokeColor(const Color& c) { state().stroke = c; }
Color Context::fillColor() const { return state().fill; }
Color Context::strokeColor() const { return state().stroke; }
void Context::setLineWidth(double w) {
    if (w >= 0 && std::isfinite(w)) state().lineWidth = w;
}
double Context::lineWidth() const { return state().lineWidth; }
void Context::setLineCap(LineCap cap) { state().cap = cap; }
void Context::setLineJoin(LineJoin join) { state().join = join; }
void Context::setMiterLimit(double limit) {
    if (std::isfinite(limit)) state().miterLimit = limit;
}

void Context::setLineDash(double phase, const double* lengths, size_t count) {
    GState& g = state();
    g.dashPhase = std::isfinite(phase) ? phase : 0;
    // cairo refuses (and stays in error after) negative, non-finite or
    // all-zero dash lengths: such a pattern means a solid line here.
    bool usable = lengths && count > 0;
    double total = 0;
    for (size_t i = 0; usable && i < count; ++i) {
        usable = std::isfinite(lengths[i]) && lengths[i] >= 0;
        total += usable ? lengths[i] : 0;
    }
    try {
        if (!usable || !(total > 0) || !std::isfinite(total))
            g.dashes.clear();
        else
            g.dashes.assign(lengths, lengths + count);
    } catch (...) {
        g.dashes.clear();
    }
}

void Context::setAlpha(double alpha) { state().alpha = std::min(1.0, std::max(0.0, alpha)); }
double Context::alpha() const { return state().alpha; }
void Context::setBlendMode(BlendMode mode) { state().blend = mode; }
BlendMode Context::blendMode() const { return state().blend; }

void Context::setShadow(Size offset, double blur) {
    Color c{0, 0, 0, 1.0 / 3.0};
    setShadowWithColor(offset, blur, &c);
}

void Context::setShadowWithColor(Size offset, double blur, const Color* color) {
    GState& g = state();
    // A shadow with non-finite geometry is no shadow. The blur is held to
    // kMaxShadowBlur: the scratch it blurs grows with the square of it.
    bool finite = std::isfinite(offset.width) && std::isfinite(offset.height);
    g.shadowOffset = finite ? offset : Size{};
    g.shadowBlur = std::isfinite(blur) ? std::min(std::max(0.0, blur), kMaxShadowBlur) : 0.0;
    g.shadowOn = finite && color && color->a > 0;
    if (color) g.shadowColor = *color;
}

void Context::setInterpolationQuality(InterpolationQuality q) { state().interpolation = q; }
InterpolationQuality Context::interpolationQuality() const { return state().interpolation; }
void Context::setShouldAntialias(bool on) { state().antialias = on; }

// --- Path --------------------------------------------------------------------

void Context::beginPath() { path_.clear(); }
void Context::moveTo(double x, double y) { path_.moveTo({x, y}, state().ctm); }
void Context::lineTo(double x, double y) { path_.lineTo({x, y}, state().ctm); }
void Context::curveTo(double cp1x, double cp1y, double cp2x, double cp2y, double x, double y) {
    path_.curveTo({cp1x, cp1y}, {cp2x, cp2y}, {x, y}, state().ctm);
}
void Context::quadCurveTo(double cpx, double cpy, double x, double y) {
    path_.quadCurveTo({cpx, cpy}, {x, y}, state().ctm);
}
void Context::addRect(const Rect& r) { path_.addRect(r, state().ctm); }
void Context::addRects(const Rect* rects, size_t count) {
    for (size_t i = 0; rects && i < count; ++i) addRect(rects[i]);
}
void Context::addEllipseInRect(const Rect& r) { path_.addEllipseInRect(r, state().ctm); }
void Context::addArc(double x, double y, double radius, double startAngle, double endAngle,
                     bool clockwise) {
    path_.addArc({x, y}, radius, startAngle, endAngle, clockwise, state().ctm);
}
void Context::addArcToPoint(double x1, double y1, double x2, double y2, double radius) {
    path_.addArcToPoint({x1, y1}, {x2, y2}, radius, state().ctm);
}
void Context::addLines(const Point* points, size_t count) { path_.addLines(points, count, state().ctm); }
void Context::closePath() { path_.closeSubpath(); }
void Context::addPath(const Path& path) { path_.addPath(path, state().ctm); }

bool Context::pathCurrentPoint(Point* out) const {
    Point dev;
    AffineTransform inv;
    if (!path_.currentPoint(&dev) || !state().ctm.invert(&inv)) return false;
    if (out) *out = inv.apply(dev);
    return true;
}

Path Context::copyPath() const {
    AffineTransform inv;
    if (!state().ctm.invert(&inv)) return Path();
    return path_.transformed(inv);
}

Rect Context::pathBoundingBox() const { return copyPath().boundingBox(); }

// --- Parts -------------------------------------------------------------------

cairo_pattern_t* Context::partSource(cairo_t* cr, const Part& part, bool swap,
                                     bool alphaInCover) const {
    const GState& g = state();
    switch (part.kind) {
        case Part::Kind::Fill: return colorPattern(g.fill, g.alpha, swap);
        case Part::Kind::Stroke: return colorPattern(g.stroke, g.alpha, swap);
        case Part::Kind::Mask: return colorPattern(part.color, g.alpha, swap);
        case Part::Kind::Image:
        case Part::Kind::Pattern: {
            cairo_pattern_t* p;
            if (part.kind == Part::Kind::Image) {
                cairo_surface_t* s = part.image->cairoSurface(swap);
                if (!s) return cairo_pattern_create_rgba(0, 0, 0, 0);
                p = cairo_pattern_create_for_surface(s);
                AffineTransform inv;
                if (!part.toDevice.invert(&inv)) inv = AffineTransform::identity();
                cairo_matrix_t m = toCairo(inv);
                cairo_pattern_set_matrix(p, &m);
                // Padding plus the coverage rectangle gives crisp edges.
                cairo_pattern_set_extend(p, CAIRO_EXTEND_PAD);
                cairo_pattern_set_filter(p, filterFor(g.interpolation, part.image));
            } else {
                p = cairo_pattern_reference(part.pattern);
            }
            if (g.alpha >= 1 || alphaInCover) return p;
            // Alpha folded into the paint itself, inside the clip (which
            // the caller has narrowed to the operation's bounds).
            cairo_push_group(cr);
            cairo_set_source(cr, p);
            cairo_paint_with_alpha(cr, g.alpha);
            cairo_pattern_destroy(p);
            return cairo_pop_group(cr);
        }
        case Part::Kind::Gradient: {
            if (g.alpha >= 1 || alphaInCover) return cairo_pattern_reference(part.pattern);
            cairo_push_group(cr);
            cairo_set_source(cr, part.pattern);
            cairo_paint_with_alpha(cr, g.alpha);
            return cairo_pop_group(cr);
        }
    }
    return cairo_pattern_create_rgba(0, 0, 0, 0);
}

// A fill part's path as cairo's current path, in device space, with its
// fill rule and the state's antialiasing.
void Context::setFillPath(cairo_t* cr, const Part& part) const {
    setMatrix(cr, base_);
    appendPathToCairo(cr, *part.path);
    cairo_identity_matrix(cr);
    cairo_set_fill_rule(cr, part.rule == FillRule::EvenOdd ? CAIRO_FILL_RULE_EVEN_ODD
                                                           : CAIRO_FILL_RULE_WINDING);
    cairo_set_antialias(cr, state().antialias ? CAIRO_ANTIALIAS_DEFAULT : CAIRO_ANTIALIAS_NONE);
}

void Context::partCover(cairo_t* cr, const Part& part, bool alphaInCover) const {
    const GState& g = state();
    double alpha = alphaInCover ? g.alpha : 1.0;
    switch (part.kind) {
        case Part::Kind::Fill:
            setFillPath(cr, part);
            cairo_fill(cr);
            return;
        case Part::Kind::Stroke: {
            // A singular CTM has no pen (and would put cairo in error).
            AffineTransform inverse;
            if (!userToCairo().invert(&inverse)) return;
            setMatrix(cr, base_);
            appendPathToCairo(cr, *part.path);
            // The pen lives in user space: width and dashes follow the CTM.
            setMatrix(cr, userToCairo());
            cairo_set_line_width(cr, g.lineWidth);
            cairo_set_line_cap(cr, g.cap == LineCap::Round    ? CAIRO_LINE_CAP_ROUND
                                   : g.cap == LineCap::Square ? CAIRO_LINE_CAP_SQUARE
                                                              : CAIRO_LINE_CAP_BUTT);
            cairo_set_line_join(cr, g.join == LineJoin::Round   ? CAIRO_LINE_JOIN_ROUND
                                    : g.join == LineJoin::Bevel ? CAIRO_LINE_JOIN_BEVEL
                                                                : CAIRO_LINE_JOIN_MITER);
            cairo_set_miter_limit(cr, g.miterLimit);
            cairo_set_dash(cr, g.dashes.empty() ? nullptr : g.dashes.data(),
                           static_cast<int>(g.dashes.size()), g.dashPhase);
            cairo_set_antialias(cr, g.antialias ? CAIRO_ANTIALIAS_DEFAULT : CAIRO_ANTIALIAS_NONE);
            cairo_stroke(cr);
            cairo_identity_matrix(cr);
            cairo_set_dash(cr, nullptr, 0, 0);
            return;
        }
        case Part::Kind::Image:
        case Part::Kind::Mask: {
            cairo_save(cr);
            setMatrix(cr, part.toDevice);
            double w = static_cast<double>(part.image->width());
            double h = static_cast<double>(part.image->height());
            cairo_rectangle(cr, 0, 0, w, h);
            if (part.kind == Part::Kind::Image) {
                cairo_clip(cr);
                cairo_paint_with_alpha(cr, alpha);
            } else {
                cairo_clip(cr);
                cairo_surface_t* s = part.image->maskSurface();
                if (s) {
                    cairo_pattern_t* m = cairo_pattern_create_for_surface(s);
                    cairo_pattern_set_extend(m, CAIRO_EXTEND_PAD);
                    cairo_pattern_set_filter(m, filterFor(g.interpolation, part.image));
                    cairo_mask(cr, m);
                    cairo_pattern_destroy(m);
                }
            }
            cairo_restore(cr);
            return;
        }
        case Part::Kind::Pattern:
            cairo_save(cr);
            cairo_rectangle(cr, part.deviceRect.minX(), part.deviceRect.minY(),
                            part.deviceRect.width(), part.deviceRect.height());
            cairo_clip(cr);
            cairo_paint_with_alpha(cr, alpha);
            cairo_restore(cr);
            return;
        case Part::Kind::Gradient: cairo_paint_with_alpha(cr, alpha); return;
    }
}

Rect Context::partBounds(const Part& part, const Rect& clipBox) const {
    const GState& g = state();
    switch (part.kind) {
        case Part::Kind::Fill:
            return base_.apply(part.path->boundingBox()).insetBy(-1, -1);
        case Part::Kind::Stroke: {
            // Half the pen, stretched by the CTM, as far as a miter can reach.
            double reach = g.lineWidth / 2 * stretchOf(userToCairo());
            double joins = g.join == LineJoin::Miter ? std::max(g.miterLimit, 1.5) : 1.5;
            double pad = reach * joins + 2;
            if (!std::isfinite(pad)) return clipBox;
            return base_.apply(part.path->boundingBox()).insetBy(-pad, -pad);
        }
        case Part::Kind::Image:
        case Part::Kind::Mask:
            return part.toDevice
                .apply(Rect::make(0, 0, static_cast<double>(part.image->width()),
                                  static_cast<double>(part.image->height())))
                .insetBy(-1, -1);
        case Part::Kind::Pattern: return part.deviceRect;
        case Part::Kind::Gradient: return clipBox;
    }
    return clipBox;
}

// --- Rendering ---------------------------------------------------------------

void Context::applyPathClips(cairo_t* cr) const {
    for (const ClipPath& c : state().clipPaths) {
        setMatrix(cr, base_);
        cairo_new_path(cr);
        appendPathToCairo(cr, *c.path);
        cairo_set_fill_rule(cr, c.rule == FillRule::EvenOdd ? CAIRO_FILL_RULE_EVEN_ODD : CAIRO_FILL_RULE_WINDING);
        cairo_set_antialias(cr, c.antialias ? CAIRO_ANTIALIAS_DEFAULT : CAIRO_ANTIALIAS_NONE);
        cairo_clip(cr);
    }
    cairo_identity_matrix(cr);
    cairo_set_fill_rule(cr, CAIRO_FILL_RULE_WINDING);
    cairo_set_antialias(cr, CAIRO_ANTIALIAS_DEFAULT);
}

cairo_pattern_t* Context::maskClipPattern(cairo_t* cr, const ClipMask& m) const {
    cairo_surface_t* surface = m.image->maskSurface();
    AffineTransform toDevice =
        AffineTransform::concat(imageToUser(m.rect, m.image.get()), AffineTransform::concat(m.ctm, base_));
    AffineTransform inv;
    if (!surface || !toDevice.invert(&inv)) return cairo_pattern_create_rgba(0, 0, 0, 0);
    cairo_push_group_with_content(cr, CAIRO_CONTENT_ALPHA);
    setMatrix(cr, toDevice);
    cairo_rectangle(cr, 0, 0, static_cast<double>(m.image->width()), static_cast<double>(m.image->height()));
    cairo_clip(cr);
    cairo_pattern_t* p = cairo_pattern_create_for_surface(surface);
    cairo_pattern_set_extend(p, CAIRO_EXTEND_PAD);
    cairo_pattern_set_filter(p, filterFor(state().interpolation, m.image.get()));
    cairo_set_operator(cr, CAIRO_OPERATOR_OVER);
    cairo_set_source(cr, p);
    cairo_paint(cr);
    cairo_pattern_destroy(p);
    cairo_identity_matrix(cr);
    return cairo_pop_group(cr);
}

// Clips to the mask's rectangle and hands back the mask as a pattern in
// device space (null when it cannot be drawn: nothing passes).
void Context::clipToMaskDirect(cairo_t* cr, const ClipMask& m, cairo_pattern_t** pattern) const {
    *pattern = nullptr;
    cairo_surface_t* surface = m.image->maskSurface();
    AffineTransform toDevice =
        AffineTransform::concat(imageToUser(m.rect, m.image.get()), AffineTransform::concat(m.ctm, base_));
    AffineTransform inv;
    if (!surface || !toDevice.invert(&inv)) return;
    setMatrix(cr, toDevice);
    cairo_rectangle(cr, 0, 0, static_cast<double>(m.image->width()), static_cast<double>(m.image->height()));
    cairo_identity_matrix(cr);
    cairo_clip(cr);
    cairo_pattern_t* p = cairo_pattern_create_for_surface(surface);
    cairo_matrix_t mm = toCairo(inv);
    cairo_pattern_set_matrix(p, &mm);
    cairo_pattern_set_extend(p, CAIRO_EXTEND_PAD);
    cairo_pattern_set_filter(p, filterFor(state().interpolation, m.image.get()));
    *pattern = p;
}

cairo_pattern_t* Context::buildShadowLayer(cairo_t* cr, const Part* parts, size_t count,
                                           const Rect& shapeBounds, const Rect& clipBox, bool swap,
                                           cairo_operator_t op, bool direct) const {
    const GState& g = state();
    // Offset and blur are in Quartz device space: only the base applies.
    Size off = base_.apply(g.shadowOffset);
    double sigma = g.shadowBlur / 2 * std::sqrt(std::fabs(base_.determinant()));
    double pad = std::ceil(3 * sigma) + 1;

    // The shape's alpha in an A8 scratch of the shape's bounds grown by the
    // blur, cut to where the shadow can still land in the clip.
    Rect reach = Rect::make(clipBox.minX() - off.width, clipBox.minY() - off.height, clipBox.width(),
                            clipBox.height())
                     .insetBy(-pad, -pad);
    Rect area = pixelBounds(shapeBounds.insetBy(-pad, -pad).intersection(reach));
    size_t w = static_cast<size_t>(area.width()), h = static_cast<size_t>(area.height());
    cairo_surface_t* scratch = nullptr;
    if (!area.isEmpty() && surfaceSizeAllowed(w, h, 1)) {
        scratch = cairo_image_surface_create(CAIRO_FORMAT_A8, static_cast<int>(w), static_cast<int>(h));
        if (cairo_surface_status(scratch) != CAIRO_STATUS_SUCCESS) {
            cairo_surface_destroy(scratch);
            scratch = nullptr;
        }
    }
    if (scratch) {
        cairo_surface_set_device_offset(scratch, -area.minX(), -area.minY());
        cairo_t* sc = cairo_create(scratch);
        cairo_set_operator(sc, CAIRO_OPERATOR_OVER);
        for (size_t i = 0; i < count; ++i) {
            cairo_pattern_t* p = partSource(sc, parts[i], false, true);
            cairo_set_source(sc, p);
            partCover(sc, parts[i], true);
            cairo_pattern_destroy(p);
        }
        cairo_destroy(sc);
        cairo_surface_flush(scratch);
        try {
            gaussianBlurA8(cairo_image_surface_get_data(scratch), static_cast<int>(w),
                           static_cast<int>(h), cairo_image_surface_get_stride(scratch), sigma);
        } catch (...) {
        }
        cairo_surface_mark_dirty(scratch);
    }

    if (!direct) {
        cairo_push_group(cr);
        cairo_set_operator(cr, CAIRO_OPERATOR_OVER);
    } else {
        cairo_set_operator(cr, op);
    }
    // A failed scratch would put the caller's cairo_t in error: skip the shadow.
    if (scratch) {
        setColorSource(cr, g.shadowColor, 1, swap);
        cairo_mask_surface(cr, scratch, off.width, off.height);
        cairo_surface_destroy(scratch);
    }
    if (direct) return nullptr;
    for (size_t i = 0; i < count; ++i) {
        cairo_pattern_t* p = partSource(cr, parts[i], swap, true);
        cairo_set_source(cr, p);
        partCover(cr, parts[i], true);
        cairo_pattern_destroy(p);
    }
    return cairo_pop_group(cr);
}

bool Context::render(const Part* parts, size_t count, bool clearing) {
    cairo_t* cr = provider_ ? provider_->currentCairo() : nullptr;
    if (!cr || cairo_status(cr) != CAIRO_STATUS_SUCCESS) return false;
    provider_->willDraw();
    const GState& g = state();
    cairo_operator_t op = clearing ? CAIRO_OPERATOR_CLEAR : cairoOperator(g.blend);
    bool swap = !clearing && provider_->swapsRedBlue();
    bool swappedInPlace = false;
    if (swap) {
        // Modes that treat red and blue differently, and patterns already in
        // true colours, see the surface in true colours for this operation.
        bool trueColours = isNonSeparable(op);
        for (size_t i = 0; i < count; ++i) trueColours = trueColours || parts[i].kind == Part::Kind::Pattern;
        if (trueColours) {
            provider_->swapRedBlueInPlace();
            swap = false;
            swappedInPlace = true;
        }
    }
    bool keeps = operatorKeepsUncoveredDestination(op);
    bool unbounded = operatorIsUnboundedInCairo(op);
    bool shadow = !clearing && g.shadowOn;
    bool masks = !g.clipMasks.empty();
    Rect touched;
    {
        CairoScope scope(cr, provider_->ownsCairo());
        applyPathClips(cr);
        double cx0, cy0, cx1, cy1;
        cairo_clip_extents(cr, &cx0, &cy0, &cx1, &cy1);
        Rect clipBox = Rect::make(cx0, cy0, cx1 - cx0, cy1 - cy0);

        // Everything the operation can change: the shapes, their shadow,
        // inside every mask's rectangle and the clip.
        Rect shape;
        for (size_t i = 0; i < count; ++i) shape = shape.unionWith(partBounds(parts[i], clipBox));
        Rect reach = shape;
        if (shadow) {
            Size off = base_.apply(g.shadowOffset);
            double pad = std::ceil(1.5 * g.shadowBlur * std::sqrt(std::fabs(base_.determinant()))) + 2;
            Rect moved = Rect::make(shape.minX() + off.width, shape.minY() + off.height, shape.width(),
                                    shape.height());
            reach = shape.unionWith(moved.insetBy(-pad, -pad));
        }
        for (const ClipMask& m : g.clipMasks)
            reach = reach.intersection(AffineTransform::concat(m.ctm, base_).apply(m.rect).insetBy(-1, -1));
        touched = pixelBounds(reach.intersection(clipBox));

        // Composites `src` through whatever `cover` paints, bounded by it
        // even for operators cairo applies everywhere: those are worked out
        // against a copy of the destination, then laid in through the cover.
        auto composite = [&](cairo_pattern_t* src, auto&& cover) {
            if (!unbounded) {
                cairo_set_source(cr, src);
                cairo_set_operator(cr, op);
                cover();
                return;
            }
            cairo_surface_t* target = cairo_get_group_target(cr);
            cairo_push_group(cr);
            cairo_set_source_surface(cr, target, 0, 0);
            cairo_set_operator(cr, CAIRO_OPERATOR_SOURCE);
            cairo_paint(cr);
            cairo_set_source(cr, src);
            cairo_set_operator(cr, op);
            cairo_paint(cr);
            cairo_pattern_t* result = cairo_pop_group(cr);
            cairo_set_source(cr, result);
            cairo_set_operator(cr, CAIRO_OPERATOR_SOURCE);
            cover();
            cairo_pattern_destroy(result);
        };
        auto clipToTouched = [&] {
            cairo_rectangle(cr, touched.minX(), touched.minY(), touched.width(), touched.height());
            cairo_clip(cr);
        };
        auto isColour = [](const Part& p) { return p.kind == Part::Kind::Fill || p.kind == Part::Kind::Stroke; };

        if (touched.isEmpty()) {
            // Nothing of it lands inside the clip.
        } else if (!masks && (!shadow || (keeps && op == CAIRO_OPERATOR_OVER))) {
            // Groups would be clip-sized: keep them to the operation's bounds.
            if (unbounded || shadow || g.alpha < 1) clipToTouched();
            if (shadow) buildShadowLayer(cr, parts, count, shape, clipBox, swap, op, true);
            for (size_t i = 0; i < count; ++i) {
                const Part& part = parts[i];
                if (!unbounded && isColour(part)) {
                    setColorSource(cr, part.kind == Part::Kind::Fill ? g.fill : g.stroke, g.alpha, swap);
                    cairo_set_operator(cr, op);
                    partCover(cr, part, false);
                    continue;
                }
                cairo_pattern_t* src = partSource(cr, part, swap, keeps);
                composite(src, [&] { partCover(cr, part, keeps); });
                cairo_pattern_destroy(src);
            }
        } else if (!shadow && keeps && !unbounded && count == 1 && g.clipMasks.size() == 1 &&
                   parts[0].kind != Part::Kind::Stroke && parts[0].kind != Part::Kind::Mask) {
            // One shape through one mask: clip to the shape, mask with the image.
            clipToTouched();
            const Part& part = parts[0];
            cairo_pattern_t* src = partSource(cr, part, swap, false);
            if (part.kind == Part::Kind::Fill) {
                setFillPath(cr, part);
                cairo_clip(cr);
                cairo_set_antialias(cr, CAIRO_ANTIALIAS_DEFAULT);
            } else if (part.kind == Part::Kind::Image) {
                setMatrix(cr, part.toDevice);
                cairo_rectangle(cr, 0, 0, static_cast<double>(part.image->width()),
                                static_cast<double>(part.image->height()));
                cairo_identity_matrix(cr);
                cairo_clip(cr);
            } else if (part.kind == Part::Kind::Pattern) {
                const Rect& r = part.deviceRect;
                cairo_rectangle(cr, r.minX(), r.minY(), r.width(), r.height());
                cairo_clip(cr);
            }
            cairo_pattern_t* mask = nullptr;
            clipToMaskDirect(cr, g.clipMasks.front(), &mask);
            if (mask) {
                cairo_set_source(cr, src);
                cairo_set_operator(cr, op);
                cairo_mask(cr, mask);
                cairo_pattern_destroy(mask);
            }
            cairo_pattern_destroy(src);
        } else {
            clipToTouched();
            cairo_pattern_t* layer;
            if (shadow) {
                layer = buildShadowLayer(cr, parts, count, shape, clipBox, swap, op, false);
            } else if (count == 1 && !keeps) {
                layer = partSource(cr, parts[0], swap, false);
            } else {
                cairo_push_group(cr);
                cairo_set_operator(cr, CAIRO_OPERATOR_OVER);
                for (size_t i = 0; i < count; ++i) {
                    cairo_pattern_t* p = partSource(cr, parts[i], swap, true);
                    cairo_set_source(cr, p);
                    partCover(cr, parts[i], true);
                    cairo_pattern_destroy(p);
                }
                layer = cairo_pop_group(cr);
            }

            // Coverage: the shape (only where the operator would otherwise
            // reach past it) times every clip mask.
            cairo_push_group_with_content(cr, CAIRO_CONTENT_ALPHA);
            cairo_set_operator(cr, CAIRO_OPERATOR_OVER);
            cairo_set_source_rgba(cr, 0, 0, 0, 1);
            if (keeps || shadow) {
                // With a shadow the whole (clipped) box of shape and shadow.
                cairo_paint(cr);
            } else {
                for (size_t i = 0; i < count; ++i) partCover(cr, parts[i], false);
            }
            for (const ClipMask& m : g.clipMasks) {
                cairo_pattern_t* p = maskClipPattern(cr, m);
                cairo_set_operator(cr, CAIRO_OPERATOR_DEST_IN);
                cairo_set_source(cr, p);
                cairo_paint(cr);
                cairo_pattern_destroy(p);
            }
            cairo_pattern_t* coverage = cairo_pop_group(cr);
            composite(layer, [&] { cairo_mask(cr, coverage); });
            cairo_pattern_destroy(coverage);
            cairo_pattern_destroy(layer);
        }
    }
    if (swappedInPlace) provider_->swapRedBlueInPlace();
    provider_->didDraw(touched.isEmpty() ? nullptr : &touched);
    return true;
}

// --- Painting ----------------------------------------------------------------

bool Context::fillPath(FillRule rule) {
    if (path_.isEmpty()) return true;
    Part part;
    part.kind = Part::Kind::Fill;
    part.path = &path_;
    part.rule = rule;
    bool ok = false;
    try {
        ok = render(&part, 1, false);
    } catch (...) {
    }
    path_.clear();
    return ok;
}

bool Context::strokePath() {
    if (path_.isEmpty()) return true;
    Part part;
    part.kind = Part::Kind::Stroke;
    part.path = &path_;
    bool ok = false;
    try {
        ok = render(&part, 1, false);
    } catch (...) {
    }
    path_.clear();
    return ok;
}

bool Context::drawPath(PathDrawingMode mode) {
    switch (mode) {
        case PathDrawingMode::Fill: return fillPath(FillRule::Winding);
        case PathDrawingMode::EOFill: return fillPath(FillRule::EvenOdd);
        case PathDrawingMode::Stroke: return strokePath();
        case PathDrawingMode::FillStroke:
        case PathDrawingMode::EOFillStroke: {
            if (path_.isEmpty()) return true;
            Part parts[2];
            parts[0].kind = Part::Kind::Fill;
            parts[0].path = &path_;
            parts[0].rule = mode == PathDrawingMode::EOFillStroke ? FillRule::EvenOdd : FillRule::Winding;
            parts[1].kind = Part::Kind::Stroke;
            parts[1].path = &path_;
            bool ok = false;
            try {
                // One object: a shadow or blend mode sees fill and stroke together.
                ok = render(parts, 2, false);
            } catch (...) {
            }
            path_.clear();
            return ok;
        }
    }
    return false;
}

bool Context::fillRect(const Rect& r) { return fillRects(&r, 1); }

bool Context::fillRects(const Rect* rects, size_t count) {
    path_.clear();
    for (size_t i = 0; rects && i < count; ++i) addRect(rects[i]);
    return fillPath();
}

bool Context::strokeRect(const Rect& r) {
    path_.clear();
    addRect(r);
    return strokePath();
}

bool Context::strokeRectWithWidth(const Rect& r, double width) {
    double saved = state().lineWidth;
    setLineWidth(width);
    bool ok = strokeRect(r);
    state().lineWidth = saved;
    return ok;
}

bool Context::fillEllipseInRect(const Rect& r) {
    path_.clear();
    addEllipseInRect(r);
    return fillPath();
}

bool Context::strokeEllipseInRect(const Rect& r) {
    path_.clear();
    addEllipseInRect(r);
    return strokePath();
}

bool Context::clearRect(const Rect& r) {
    try {
        Path p;
        p.addRect(r, state().ctm);
        if (p.isEmpty()) return true;
        Part part;
        part.kind = Part::Kind::Fill;
        part.path = &p;
        return render(&part, 1, true);
    } catch (...) {
        return false;
    }
}

bool Context::drawImage(const Rect& rect, Image* image) {
    if (!image) return false;
    if (rect.isEmpty()) return true;
    try {
        const GState& g = state();
        Part part;
        part.toDevice = AffineTransform::concat(imageToUser(rect, image), userToCairo());
        AffineTransform inv;
        if (!part.toDevice.invert(&inv)) return true;
        part.image = image;
        if (image->isMask()) {
            part.kind = Part::Kind::Mask;
            part.color = g.fill;
        } else {
            part.kind = Part::Kind::Image;
        }
        return render(&part, 1, false);
    } catch (...) {
        return false;
    }
}

namespace {

// Sorted, clamped stops; false when none is usable.
bool addStops(cairo_pattern_t* p, const GradientStop* stops, size_t count, bool swap) {
    std::vector<GradientStop> sorted;
    for (size_t i = 0; stops && i < count; ++i) {
        if (!std::isfinite(stops[i].location)) continue;
        GradientStop s = stops[i];
        s.location = clamp01(s.location);
        sorted.push_back(s);
    }
    if (sorted.empty()) return false;
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const GradientStop& a, const GradientStop& b) { return a.location < b.location; });
    for (const GradientStop& s : sorted) {
        double r = clamp01(s.color.r), b = clamp01(s.color.b);
        if (swap) std::swap(r, b);
        cairo_pattern_add_color_stop_rgba(p, s.location, r, clamp01(s.color.g), b, clamp01(s.color.a));
    }
    return true;
}

}  // namespace

bool Context::renderGradient(cairo_pattern_t* gradient, const GradientStop* stops, size_t count,
                             bool extendStart, bool extendEnd, const Path* halfPlane) {
    bool swap = provider_ && provider_->swapsRedBlue() && !isNonSeparable(cairoOperator(state().blend));
    AffineTransform inv;
    if (!userToCairo().invert(&inv) || !addStops(gradient, stops, count, swap)) {
        cairo_pattern_destroy(gradient);
        return true;
    }
    // The gradient is laid out in user space; cairo evaluates it per pixel.
    cairo_matrix_t m = toCairo(inv);
    cairo_pattern_set_matrix(gradient, &m);
    cairo_pattern_set_extend(gradient, extendStart || extendEnd ? CAIRO_EXTEND_PAD : CAIRO_EXTEND_NONE);
    Part part;
    part.kind = Part::Kind::Gradient;
    part.pattern = gradient;
    bool ok = false;
    try {
        if (halfPlane) state().clipPaths.push_back({std::make_shared<const Path>(*halfPlane), FillRule::Winding, true});
        ok = render(&part, 1, false);
        if (halfPlane) state().clipPaths.pop_back();
    } catch (...) {
    }
    cairo_pattern_destroy(gradient);
    return ok;
}

bool Context::drawLinearGradient(const GradientStop* stops, size_t count, Point start, Point end,
                                 bool extendStart, bool extendEnd) {
    if (!stops || count == 0 || !start.isFinite() || !end.isFinite()) return true;
    cairo_pattern_t* p = cairo_pattern_create_linear(start.x, start.y, end.x, end.y);
    if (cairo_pattern_status(p) != CAIRO_STATUS_SUCCESS) {
        cairo_pattern_destroy(p);
        return false;
    }
    // One-sided: pad both ends and cut away the side that is not extended
    // with a half-plane through that end, across the gradient's axis.
    std::unique_ptr<Path> half;
    double dx = end.x - start.x, dy = end.y - start.y, len = std::hypot(dx, dy);
    if (extendStart != extendEnd && len > 0) {
        double ux = dx / len, uy = dy / len, far = 1e6;
        Point at = extendEnd ? start : end;
        double sx = extendEnd ? ux : -ux, sy = extendEnd ? uy : -uy;  // towards the kept side
        half.reset(new Path);
        const AffineTransform& ctm = state().ctm;
        half->moveTo({at.x - uy * far, at.y + ux * far}, ctm);
        half->lineTo({at.x + uy * far, at.y - ux * far}, ctm);
        half->lineTo({at.x + uy * far + sx * far, at.y - ux * far + sy * far}, ctm);
        half->lineTo({at.x - uy * far + sx * far, at.y + ux * far + sy * far}, ctm);
        half->closeSubpath();
    }
    return renderGradient(p, stops, count, extendStart, extendEnd, half.get());
}

bool Context::drawRadialGradient(const GradientStop* stops, size_t count, Point startCenter,
                                 double startRadius, Point endCenter, double endRadius,
                                 bool extendStart, bool extendEnd) {
    if (!stops || count == 0 || !startCenter.isFinite() || !endCenter.isFinite() ||
        !(startRadius >= 0) || !(endRadius >= 0) || !std::isfinite(startRadius) ||
        !std::isfinite(endRadius))
        return true;
    cairo_pattern_t* p = cairo_pattern_create_radial(startCenter.x, startCenter.y, startRadius,
                                                     endCenter.x, endCenter.y, endRadius);
    if (cairo_pattern_status(p) != CAIRO_STATUS_SUCCESS) {
        cairo_pattern_destroy(p);
        return false;
    }
    return renderGradient(p, stops, count, extendStart, extendEnd, nullptr);
}

bool Context::drawDevicePattern(cairo_pattern_t* pattern, const Rect& deviceBounds) {
    if (!pattern || deviceBounds.isEmpty()) return true;
    Part part;
    part.kind = Part::Kind::Pattern;
    part.pattern = pattern;
    part.deviceRect = deviceBounds.standardized();
    try {
        return render(&part, 1, false);
    } catch (...) {
        return false;
    }
}

// --- Clipping ----------------------------------------------------------------

void Context::clip(FillRule rule) {
    try {
        auto p = std::make_shared<const Path>(path_);
        path_.clear();
        state().clipPaths.push_back({p, rule, state().antialias});
    } catch (...) {
        path_.clear();
    }
}

void Context::clipToRect(const Rect& r) { clipToRects(&r, 1); }

void Context::clipToRects(const Rect* rects, size_t count) {
    try {
        auto p = std::make_shared<Path>();
        for (size_t i = 0; rects && i < count; ++i) p->addRect(rects[i], state().ctm);
        state().clipPaths.push_back({p, FillRule::Winding, state().antialias});
    } catch (...) {
    }
}

bool Context::clipToMask(const Rect& rect, Image* image) {
    if (!image) return false;
    try {
        state().clipMasks.push_back({ImageRef::retain(image), rect, state().ctm});
        return true;
    } catch (...) {
        return false;
    }
}

void Context::resetClip() {
    state().clipPaths.clear();
    state().clipMasks.clear();
}

Rect Context::clipBoundingBox() const {
    Rect dev;
    bool known = false;
    cairo_t* cr = provider_ ? provider_->currentCairo() : nullptr;
    if (cr && cairo_status(cr) == CAIRO_STATUS_SUCCESS) {
        CairoScope scope(cr);
        applyPathClips(cr);
        double x0, y0, x1, y1;
        cairo_clip_extents(cr, &x0, &y0, &x1, &y1);
        dev = Rect::make(x0, y0, x1 - x0, y1 - y0);
        known = true;
    } else {
        for (const ClipPath& c : state().clipPaths) {
            Rect r = base_.apply(c.path->boundingBox());
            dev = known ? dev.intersection(r) : r;
            known = true;
        }
    }
    for (const ClipMask& m : state().clipMasks) {
        Rect r = AffineTransform::concat(m.ctm, base_).apply(m.rect);
        dev = known ? dev.intersection(r) : r;
        known = true;
    }
    AffineTransform inv;
    if (!known || dev.isEmpty() || !userToCairo().invert(&inv)) return Rect{};
    return inv.apply(dev);
}

}  // namespace talvo::quartz
