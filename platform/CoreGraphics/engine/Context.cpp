#include "platform/CoreGraphics/engine/Context.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "platform/CoreGraphics/engine/CairoSupport.hpp"

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

// One thing to draw: its source in cairo device space (global alpha folded
// in; the caller destroys it) and a routine that composites the current
// source through the thing's coverage. Both run with an identity matrix.
struct Context::Part {
    std::function<cairo_pattern_t*(cairo_t*)> source;
    std::function<void(cairo_t*)> cover;
};

namespace {

constexpr int kMaxScratch = 16384;

// Leaves the cairo_t as found: gstate via save/restore, and the current
// path, which cairo does not save, by copying it.
class CairoScope {
public:
    explicit CairoScope(cairo_t* cr) : cr_(cr), path_(cairo_copy_path(cr)) {
        cairo_save(cr_);
        cairo_new_path(cr_);
        cairo_identity_matrix(cr_);
    }
    ~CairoScope() {
        cairo_restore(cr_);
        cairo_new_path(cr_);
        if (path_ && path_->status == CAIRO_STATUS_SUCCESS && path_->num_data > 0)
            cairo_append_path(cr_, path_);
        cairo_path_destroy(path_);
    }
    CairoScope(const CairoScope&) = delete;
    CairoScope& operator=(const CairoScope&) = delete;

private:
    cairo_t* cr_;
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
        case InterpolationQuality::Low: return CAIRO_FILTER_FAST;
        case InterpolationQuality::High: return CAIRO_FILTER_BEST;
        case InterpolationQuality::Default:
        case InterpolationQuality::Medium: return CAIRO_FILTER_GOOD;
    }
    return CAIRO_FILTER_GOOD;
}

cairo_pattern_t* colorPattern(const Color& c, double alpha) {
    auto clamp = [](double v) { return std::min(1.0, std::max(0.0, v)); };
    return cairo_pattern_create_rgba(clamp(c.r), clamp(c.g), clamp(c.b), clamp(c.a) * alpha);
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
    if (sigma < 0.3) return;
    int radii[3];
    boxRadii(sigma, radii);
    std::vector<uint8_t> tmp(static_cast<size_t>(stride) * h);
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

void Context::concatCTM(const AffineTransform& t) { state().ctm = AffineTransform::concat(t, state().ctm); }
void Context::scaleCTM(double sx, double sy) { concatCTM(AffineTransform::scale(sx, sy)); }
void Context::translateCTM(double tx, double ty) { concatCTM(AffineTransform::translation(tx, ty)); }
void Context::rotateCTM(double radians) { concatCTM(AffineTransform::rotation(radians)); }
AffineTransform Context::getCTM() const { return state().ctm; }
void Context::setCTM(const AffineTransform& t) { state().ctm = t; }
AffineTransform Context::userToCairo() const { return AffineTransform::concat(state().ctm, base_); }

void Context::setFillColor(const Color& c) { state().fill = c; }
void Context::setStrokeColor(const Color& c) { state().stroke = c; }
Color Context::fillColor() const { return state().fill; }
Color Context::strokeColor() const { return state().stroke; }
void Context::setLineWidth(double w) {
    if (w >= 0) state().lineWidth = w;
}
double Context::lineWidth() const { return state().lineWidth; }
void Context::setLineCap(LineCap cap) { state().cap = cap; }
void Context::setLineJoin(LineJoin join) { state().join = join; }
void Context::setMiterLimit(double limit) { state().miterLimit = limit; }

void Context::setLineDash(double phase, const double* lengths, size_t count) {
    GState& g = state();
    g.dashPhase = phase;
    try {
        if (!lengths || count == 0)
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
    g.shadowOffset = offset;
    g.shadowBlur = std::max(0.0, blur);
    g.shadowOn = color && color->a > 0;
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

std::shared_ptr<const Path> Context::takePath() {
    auto p = std::make_shared<const Path>(path_);
    path_.clear();
    return p;
}

// --- Parts -------------------------------------------------------------------

Context::Part Context::fillPart(std::shared_ptr<const Path> path, FillRule rule) const {
    const GState& g = state();
    Color color = g.fill;
    double alpha = g.alpha;
    AffineTransform base = base_;
    bool aa = g.antialias;
    Part part;
    part.source = [color, alpha](cairo_t*) { return colorPattern(color, alpha); };
    part.cover = [path, rule, base, aa](cairo_t* cr) {
        cairo_save(cr);
        setMatrix(cr, base);
        cairo_new_path(cr);
        appendPathToCairo(cr, *path);
        cairo_set_fill_rule(cr, rule == FillRule::EvenOdd ? CAIRO_FILL_RULE_EVEN_ODD : CAIRO_FILL_RULE_WINDING);
        cairo_set_antialias(cr, aa ? CAIRO_ANTIALIAS_DEFAULT : CAIRO_ANTIALIAS_NONE);
        cairo_fill(cr);
        cairo_restore(cr);
    };
    return part;
}

Context::Part Context::strokePart(std::shared_ptr<const Path> path) const {
    const GState& g = state();
    Color color = g.stroke;
    double alpha = g.alpha;
    AffineTransform base = base_, user = userToCairo();
    double width = g.lineWidth, miter = g.miterLimit, phase = g.dashPhase;
    std::vector<double> dashes = g.dashes;
    LineCap cap = g.cap;
    LineJoin join = g.join;
    bool aa = g.antialias;
    Part part;
    part.source = [color, alpha](cairo_t*) { return colorPattern(color, alpha); };
    part.cover = [=](cairo_t* cr) {
        cairo_save(cr);
        setMatrix(cr, base);
        cairo_new_path(cr);
        appendPathToCairo(cr, *path);
        // The pen lives in user space: width and dashes follow the CTM.
        setMatrix(cr, user);
        cairo_set_line_width(cr, width);
        cairo_set_line_cap(cr, cap == LineCap::Round    ? CAIRO_LINE_CAP_ROUND
                               : cap == LineCap::Square ? CAIRO_LINE_CAP_SQUARE
                                                        : CAIRO_LINE_CAP_BUTT);
        cairo_set_line_join(cr, join == LineJoin::Round   ? CAIRO_LINE_JOIN_ROUND
                                : join == LineJoin::Bevel ? CAIRO_LINE_JOIN_BEVEL
                                                          : CAIRO_LINE_JOIN_MITER);
        cairo_set_miter_limit(cr, miter);
        cairo_set_dash(cr, dashes.empty() ? nullptr : dashes.data(), static_cast<int>(dashes.size()), phase);
        cairo_set_antialias(cr, aa ? CAIRO_ANTIALIAS_DEFAULT : CAIRO_ANTIALIAS_NONE);
        cairo_stroke(cr);
        cairo_restore(cr);
    };
    return part;
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
    return cairo_pop_group(cr);
}

cairo_pattern_t* Context::buildShadowLayer(cairo_t* cr, const std::vector<Part>& parts, Rect* box) const {
    const GState& g = state();
    // Offset and blur are in Quartz device space: only the base applies.
    Size off = base_.apply(g.shadowOffset);
    double sigma = g.shadowBlur / 2 * std::sqrt(std::fabs(base_.determinant()));
    int pad = static_cast<int>(std::ceil(3 * sigma)) + 1;

    double cx0, cy0, cx1, cy1;
    cairo_clip_extents(cr, &cx0, &cy0, &cx1, &cy1);
    double sx0 = std::floor(cx0 - off.width - pad), sy0 = std::floor(cy0 - off.height - pad);
    double sx1 = std::ceil(cx1 - off.width + pad), sy1 = std::ceil(cy1 - off.height + pad);
    int w = static_cast<int>(std::min<double>(sx1 - sx0, kMaxScratch));
    int h = static_cast<int>(std::min<double>(sy1 - sy0, kMaxScratch));

    // The shape's alpha, unclipped, in a scratch A8 surface.
    cairo_surface_t* scratch = cairo_image_surface_create(CAIRO_FORMAT_A8, std::max(w, 1), std::max(h, 1));
    cairo_surface_set_device_offset(scratch, -sx0, -sy0);
    cairo_t* sc = cairo_create(scratch);
    cairo_set_operator(sc, CAIRO_OPERATOR_OVER);
    for (const Part& part : parts) {
        cairo_pattern_t* p = part.source(sc);
        cairo_set_source(sc, p);
        part.cover(sc);
        cairo_pattern_destroy(p);
    }
    cairo_destroy(sc);
    cairo_surface_flush(scratch);

    Rect content;
    bool scratchOk = cairo_surface_status(scratch) == CAIRO_STATUS_SUCCESS;
    if (scratchOk) {
        uint8_t* data = cairo_image_surface_get_data(scratch);
        int stride = cairo_image_surface_get_stride(scratch);
        int minX = w, minY = h, maxX = -1, maxY = -1;
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x)
                if (data[y * stride + x]) {
                    minX = std::min(minX, x), maxX = std::max(maxX, x);
                    minY = std::min(minY, y), maxY = std::max(maxY, y);
                }
        if (maxX >= 0)
            content = Rect::make(sx0 + minX, sy0 + minY, maxX - minX + 1.0, maxY - minY + 1.0);
        try {
            gaussianBlurA8(data, w, h, stride, sigma);
        } catch (...) {
        }
        cairo_surface_mark_dirty(scratch);
    }

    cairo_push_group(cr);
    cairo_set_operator(cr, CAIRO_OPERATOR_OVER);
    const Color& c = g.shadowColor;
    cairo_set_source_rgba(cr, c.r, c.g, c.b, c.a);
    // A failed scratch would put the caller's cairo_t in error: skip the shadow.
    if (scratchOk) cairo_mask_surface(cr, scratch, off.width, off.height);
    for (const Part& part : parts) {
        cairo_pattern_t* p = part.source(cr);
        cairo_set_source(cr, p);
        part.cover(cr);
        cairo_pattern_destroy(p);
    }
    cairo_surface_destroy(scratch);

    Rect shadow = content;
    shadow.origin.x += off.width;
    shadow.origin.y += off.height;
    *box = content.unionWith(content.isEmpty() ? Rect{} : shadow.insetBy(-pad, -pad));
    return cairo_pop_group(cr);
}

bool Context::render(const std::vector<Part>& parts, bool clearing) {
    cairo_t* cr = provider_ ? provider_->currentCairo() : nullptr;
    if (!cr || cairo_status(cr) != CAIRO_STATUS_SUCCESS) return false;
    provider_->willDraw();
    {
        CairoScope scope(cr);
        applyPathClips(cr);
        const GState& g = state();
        cairo_operator_t op = clearing ? CAIRO_OPERATOR_CLEAR : cairoOperator(g.blend);
        bool keeps = operatorKeepsUncoveredDestination(op);
        bool unbounded = operatorIsUnboundedInCairo(op);
        bool shadow = !clearing && g.shadowOn;

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

        if (!shadow && state().clipMasks.empty()) {
            for (const Part& part : parts) {
                cairo_pattern_t* src = part.source(cr);
                composite(src, [&] { part.cover(cr); });
                cairo_pattern_destroy(src);
            }
        } else {
            cairo_pattern_t* layer;
            Rect box;
            if (shadow) {
                layer = buildShadowLayer(cr, parts, &box);
            } else if (parts.size() == 1 && !keeps) {
                layer = parts[0].source(cr);
            } else {
                cairo_push_group(cr);
                cairo_set_operator(cr, CAIRO_OPERATOR_OVER);
                for (const Part& part : parts) {
                    cairo_pattern_t* p = part.source(cr);
                    cairo_set_source(cr, p);
                    part.cover(cr);
                    cairo_pattern_destroy(p);
                }
                layer = cairo_pop_group(cr);
            }

            // Coverage: the shape (only where the operator would otherwise
            // reach past it) times every clip mask.
            cairo_push_group_with_content(cr, CAIRO_CONTENT_ALPHA);
            cairo_set_operator(cr, CAIRO_OPERATOR_OVER);
            cairo_set_source_rgba(cr, 0, 0, 0, 1);
            if (keeps) {
                cairo_paint(cr);
            } else if (shadow) {
                cairo_rectangle(cr, box.origin.x, box.origin.y, box.size.width, box.size.height);
                cairo_fill(cr);
            } else {
                for (const Part& part : parts) part.cover(cr);
            }
            for (const ClipMask& m : state().clipMasks) {
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
    provider_->didDraw();
    return true;
}

// --- Painting ----------------------------------------------------------------

bool Context::fillPath(FillRule rule) {
    try {
        auto p = takePath();
        if (p->isEmpty()) return true;
        return render({fillPart(p, rule)}, false);
    } catch (...) {
        return false;
    }
}

bool Context::strokePath() {
    try {
        auto p = takePath();
        if (p->isEmpty()) return true;
        return render({strokePart(p)}, false);
    } catch (...) {
        return false;
    }
}

bool Context::drawPath(PathDrawingMode mode) {
    switch (mode) {
        case PathDrawingMode::Fill: return fillPath(FillRule::Winding);
        case PathDrawingMode::EOFill: return fillPath(FillRule::EvenOdd);
        case PathDrawingMode::Stroke: return strokePath();
        case PathDrawingMode::FillStroke:
        case PathDrawingMode::EOFillStroke:
            try {
                auto p = takePath();
                if (p->isEmpty()) return true;
                FillRule rule = mode == PathDrawingMode::EOFillStroke ? FillRule::EvenOdd : FillRule::Winding;
                // One object: a shadow or blend mode sees fill and stroke together.
                return render({fillPart(p, rule), strokePart(p)}, false);
            } catch (...) {
                return false;
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
    saveGState();
    setLineWidth(width);
    bool ok = strokeRect(r);
    restoreGState();
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
        auto p = std::make_shared<Path>();
        p->addRect(r, state().ctm);
        return render({fillPart(p, FillRule::Winding)}, true);
    } catch (...) {
        return false;
    }
}

bool Context::drawImage(const Rect& rect, Image* image) {
    if (!image) return false;
    if (rect.isEmpty()) return true;
    try {
        const GState& g = state();
        AffineTransform toDevice = AffineTransform::concat(imageToUser(rect, image), userToCairo());
        AffineTransform inv;
        if (!toDevice.invert(&inv)) return true;
        ImageRef keep = ImageRef::retain(image);
        cairo_filter_t filter = filterFor(g.interpolation, image);
        double alpha = g.alpha;
        double w = static_cast<double>(image->width()), h = static_cast<double>(image->height());
        Part part;
        if (image->isMask()) {
            Color color = g.fill;
            part.source = [color, alpha](cairo_t*) { return colorPattern(color, alpha); };
            part.cover = [keep, toDevice, filter, w, h](cairo_t* cr) {
                cairo_surface_t* s = keep->maskSurface();
                if (!s) return;
                cairo_save(cr);
                setMatrix(cr, toDevice);
                cairo_rectangle(cr, 0, 0, w, h);
                cairo_clip(cr);
                cairo_pattern_t* m = cairo_pattern_create_for_surface(s);
                cairo_pattern_set_extend(m, CAIRO_EXTEND_PAD);
                cairo_pattern_set_filter(m, filter);
                cairo_mask(cr, m);
                cairo_pattern_destroy(m);
                cairo_restore(cr);
            };
        } else {
            if (!image->cairoSurface()) return false;
            part.source = [keep, inv, filter, alpha](cairo_t* cr) {
                cairo_pattern_t* p = cairo_pattern_create_for_surface(keep->cairoSurface());
                cairo_matrix_t m = toCairo(inv);
                cairo_pattern_set_matrix(p, &m);
                // Padding plus the coverage rectangle gives crisp edges.
                cairo_pattern_set_extend(p, CAIRO_EXTEND_PAD);
                cairo_pattern_set_filter(p, filter);
                if (alpha >= 1) return p;
                cairo_push_group(cr);
                cairo_set_source(cr, p);
                cairo_paint_with_alpha(cr, alpha);
                cairo_pattern_destroy(p);
                return cairo_pop_group(cr);
            };
            part.cover = [toDevice, w, h](cairo_t* cr) {
                cairo_save(cr);
                setMatrix(cr, toDevice);
                cairo_rectangle(cr, 0, 0, w, h);
                cairo_fill(cr);
                cairo_restore(cr);
            };
        }
        return render({part}, false);
    } catch (...) {
        return false;
    }
}

// --- Clipping ----------------------------------------------------------------

void Context::clip(FillRule rule) {
    try {
        auto p = takePath();
        state().clipPaths.push_back({p, rule, state().antialias});
    } catch (...) {
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
