// Linear and radial gradients of the Quartz context, read back and compared
// with the same gradient drawn by plain cairo, extension options included.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <vector>

#include "platform/CoreGraphics/engine/BitmapTarget.hpp"
#include "platform/CoreGraphics/engine/Context.hpp"

using namespace talvo::quartz;

namespace {

constexpr int kSide = 32;
constexpr uint32_t kBGRA = static_cast<uint32_t>(AlphaInfo::PremultipliedFirst) | kByteOrder32Little;
constexpr uint32_t kRGBA = static_cast<uint32_t>(AlphaInfo::PremultipliedLast);

const GradientStop kStops[3] = {
    {0.0, Color::rgb(1, 0, 0, 1)}, {0.5, Color::rgb(0, 1, 0, 0.5)}, {1.0, Color::rgb(0, 0, 1, 1)}};

// A context on a native ARGB32 buffer, and the same-sized plain cairo
// surface with Quartz's y-up matrix.
struct Pair {
    std::vector<uint8_t> quartz = std::vector<uint8_t>(kSide * kSide * 4, 0);
    std::shared_ptr<BitmapTarget> target;
    std::unique_ptr<Context> ctx;
    cairo_surface_t* surface;
    cairo_t* cr;

    explicit Pair(uint32_t bitmapInfo = kBGRA) {
        target = BitmapTarget::create(quartz.data(), kSide, kSide, 8, kSide * 4, ColorModel::RGB, bitmapInfo);
        ctx = makeBitmapContext(target);
        surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, kSide, kSide);
        cr = cairo_create(surface);
        cairo_matrix_t flip;
        cairo_matrix_init(&flip, 1, 0, 0, -1, 0, kSide);
        cairo_set_matrix(cr, &flip);
    }
    ~Pair() {
        cairo_destroy(cr);
        cairo_surface_destroy(surface);
    }
    cairo_pattern_t* withStops(cairo_pattern_t* p) {
        for (const GradientStop& s : kStops)
            cairo_pattern_add_color_stop_rgba(p, s.location, s.color.r, s.color.g, s.color.b, s.color.a);
        return p;
    }
    // Max difference of any byte; red and blue swapped back for RGBA.
    int difference(bool rgba = false) {
        target->flush();
        cairo_surface_flush(surface);
        const uint8_t* ref = cairo_image_surface_get_data(surface);
        int stride = cairo_image_surface_get_stride(surface), worst = 0;
        for (int y = 0; y < kSide; ++y)
            for (int x = 0; x < kSide; ++x)
                for (int c = 0; c < 4; ++c) {
                    int q = quartz[(y * kSide + x) * 4 + (rgba && c != 1 && c != 3 ? 2 - c : c)];
                    worst = std::max(worst, std::abs(q - ref[y * stride + x * 4 + c]));
                }
        return worst;
    }
    bool anyInk() {
        target->flush();
        for (uint8_t b : quartz)
            if (b) return true;
        return false;
    }
};

}  // namespace

TEST(QuartzGradient, LinearMatchesCairoWithAndWithoutExtension) {
    for (int mode = 0; mode < 4; ++mode) {
        bool before = mode & 1, after = mode & 2;
        Pair p;
        EXPECT_TRUE(p.ctx->drawLinearGradient(kStops, 3, {8, 4}, {24, 4}, before, after));
        cairo_pattern_t* g = p.withStops(cairo_pattern_create_linear(8, 4, 24, 4));
        cairo_pattern_set_extend(g, before || after ? CAIRO_EXTEND_PAD : CAIRO_EXTEND_NONE);
        cairo_set_source(p.cr, g);
        // One-sided: only the extended side is painted beyond the ends.
        if (before != after) {
            cairo_rectangle(p.cr, after ? 8 : 0, 0, after ? kSide - 8 : 24, kSide);
            cairo_clip(p.cr);
        }
        cairo_paint(p.cr);
        cairo_pattern_destroy(g);
        EXPECT_LE(p.difference(), 1) << "before " << before << " after " << after;
    }
}

TEST(QuartzGradient, RadialMatchesCairoAndFollowsTheCTM) {
    Pair p;
    p.ctx->translateCTM(16, 16);
    p.ctx->scaleCTM(2, 1);  // radii follow the CTM: an ellipse
    EXPECT_TRUE(p.ctx->drawRadialGradient(kStops, 3, {0, 0}, 1, {1, 2}, 6, true, true));
    cairo_translate(p.cr, 16, 16);
    cairo_scale(p.cr, 2, 1);
    cairo_pattern_t* g = p.withStops(cairo_pattern_create_radial(0, 0, 1, 1, 2, 6));
    cairo_pattern_set_extend(g, CAIRO_EXTEND_PAD);
    cairo_set_source(p.cr, g);
    cairo_paint(p.cr);
    cairo_pattern_destroy(g);
    EXPECT_LE(p.difference(), 1);
}

TEST(QuartzGradient, FillsOnlyTheClipAndTakesTheGlobalAlpha) {
    Pair p;
    p.ctx->clipToRect(Rect::make(4, 4, 10, 20));
    p.ctx->setAlpha(0.5);
    p.ctx->drawLinearGradient(kStops, 3, {0, 0}, {0, 32}, true, true);
    cairo_rectangle(p.cr, 4, 4, 10, 20);
    cairo_clip(p.cr);
    cairo_pattern_t* g = p.withStops(cairo_pattern_create_linear(0, 0, 0, 32));
    cairo_pattern_set_extend(g, CAIRO_EXTEND_PAD);
    cairo_set_source(p.cr, g);
    cairo_paint_with_alpha(p.cr, 0.5);
    cairo_pattern_destroy(g);
    EXPECT_LE(p.difference(), 1);
}

TEST(QuartzGradient, RGBATargetsGetTheSameColours) {
    Pair p(kRGBA);
    ASSERT_EQ(p.target->mode(), BitmapTarget::Mode::Swapped);
    p.ctx->drawLinearGradient(kStops, 3, {0, 0}, {32, 32}, true, true);
    cairo_pattern_t* g = p.withStops(cairo_pattern_create_linear(0, 0, 32, 32));
    cairo_pattern_set_extend(g, CAIRO_EXTEND_PAD);
    cairo_set_source(p.cr, g);
    cairo_paint(p.cr);
    cairo_pattern_destroy(g);
    EXPECT_LE(p.difference(true), 1);
}

TEST(QuartzGradient, UnusableInputDrawsNothing) {
    Pair p;
    const GradientStop nanStop[1] = {{NAN, Color::rgb(1, 0, 0)}};
    EXPECT_TRUE(p.ctx->drawLinearGradient(nullptr, 0, {0, 0}, {1, 1}, true, true));
    EXPECT_TRUE(p.ctx->drawLinearGradient(nanStop, 1, {0, 0}, {1, 1}, true, true));
    EXPECT_TRUE(p.ctx->drawLinearGradient(kStops, 3, {NAN, 0}, {1, 1}, true, true));
    EXPECT_TRUE(p.ctx->drawRadialGradient(kStops, 3, {0, 0}, NAN, {1, 1}, 4, true, true));
    EXPECT_TRUE(p.ctx->drawRadialGradient(kStops, 3, {0, 0}, -1, {1, 1}, 4, true, true));
    EXPECT_FALSE(p.anyInk());
}
