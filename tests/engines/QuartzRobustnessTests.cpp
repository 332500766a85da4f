// Hostile input to the Quartz engine: sizes whose arithmetic wraps around
// 2^64, non-finite geometry, and requests beyond the surface cap. Each must
// be refused or drawn as nothing, never read out of bounds or hang.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "platform/CoreGraphics/engine/BitmapTarget.hpp"
#include "platform/CoreGraphics/engine/Checked.hpp"
#include "platform/CoreGraphics/engine/Context.hpp"
#include "platform/CoreGraphics/engine/Image.hpp"
#include "platform/CoreGraphics/engine/Path.hpp"

using namespace talvo::quartz;

namespace {

PixelFormat rgba(size_t w, size_t h, size_t bytesPerRow) {
    PixelFormat f;
    f.width = w;
    f.height = h;
    f.bytesPerRow = bytesPerRow;
    return f;
}

bool allFinite(const Path& p) {
    bool ok = true;
    p.apply([&](const PathElement& e) {
        int n = e.type == PathElementType::AddCurveToPoint       ? 3
                : e.type == PathElementType::AddQuadCurveToPoint ? 2
                : e.type == PathElementType::CloseSubpath        ? 0
                                                                 : 1;
        for (int i = 0; i < n; ++i) ok = ok && e.points[i].isFinite();
    });
    return ok;
}

}  // namespace

TEST(QuartzRobustnessSizes, RowLengthsThatWrapAround2To64AreRefused) {
    std::vector<uint8_t> bytes(64, 0x5A);
    // (3 - 1) * (2^63 + 8) wraps to 16: a 64-byte buffer looked long enough.
    PixelFormat f = rgba(1, 3, (size_t(1) << 63) + 8);
    EXPECT_EQ(f.minimumLength(), SIZE_MAX);
    EXPECT_EQ(Image::create(f, bytes.data(), bytes.size()), nullptr);
    // bytesPerRow * 8 wrapping.
    EXPECT_EQ(Image::create(rgba(1, 1, (size_t(1) << 61) + 1), bytes.data(), bytes.size()), nullptr);
    // width * bitsPerPixel wrapping.
    PixelFormat wide = rgba(size_t(1) << 62, 1, 64);
    EXPECT_EQ(Image::create(wide, bytes.data(), bytes.size()), nullptr);
    EXPECT_EQ(Image::createMask(8, 3, 1, 1, (size_t(1) << 63) + 1, bytes.data(), bytes.size()), nullptr);
    // The honest layout of the same bytes still works.
    ImageRef ok = ImageRef::adopt(Image::create(rgba(1, 3, 4), bytes.data(), 12));
    EXPECT_TRUE(ok);
}

TEST(QuartzRobustnessSizes, CheckedHelpersReportOverflow) {
    size_t out = 7;
    EXPECT_FALSE(checkedMul(SIZE_MAX / 2 + 1, 2, &out));
    EXPECT_EQ(out, 7u);
    EXPECT_FALSE(checkedAdd(SIZE_MAX, 1, &out));
    EXPECT_TRUE(checkedMulAdd(3, 4, 5, &out));
    EXPECT_EQ(out, 17u);
    EXPECT_TRUE(surfaceSizeAllowed(kMaxSurfaceSide, 1, 4));
    EXPECT_FALSE(surfaceSizeAllowed(kMaxSurfaceSide + 1, 1, 4));
    EXPECT_FALSE(surfaceSizeAllowed(30000, 30000, 4));  // 3.6 GB
    EXPECT_FALSE(surfaceSizeAllowed(0, 10, 4));
}

TEST(QuartzRobustnessGeometry, NonFiniteCropRectanglesGiveNoImage) {
    std::vector<uint8_t> bytes(16 * 16 * 4, 0xFF);
    ImageRef image = ImageRef::adopt(Image::create(rgba(16, 16, 64), bytes.data(), bytes.size()));
    ASSERT_TRUE(image);
    const Rect hostile[] = {Rect::make(NAN, NAN, NAN, NAN), Rect::make(2, 2, NAN, 3),
                            Rect::make(NAN, 2, 3, 3),       Rect::make(INFINITY, 0, 4, 4),
                            Rect::make(0, 0, INFINITY, 4),  Rect::make(-INFINITY, 0, INFINITY, 4)};
    for (const Rect& r : hostile) EXPECT_EQ(image->createWithImageInRect(r), nullptr);
    ImageRef inside = ImageRef::adopt(image->createWithImageInRect(Rect::make(2.5, 2, 3, 3)));
    ASSERT_TRUE(inside);
    EXPECT_EQ(inside->width(), 4u);  // rounded out to whole pixels
}

TEST(QuartzRobustnessGeometry, NonFiniteRectsAreEmptyAndIntersectToNothing) {
    Rect nan = Rect::make(NAN, 0, 1, 1);
    EXPECT_TRUE(nan.isEmpty());
    EXPECT_TRUE(nan.intersection(Rect::make(0, 0, 10, 10)).isEmpty());
    EXPECT_TRUE(Rect::make(0, 0, 10, 10).intersection(nan).isEmpty());
    EXPECT_TRUE(nan.integral().isFinite());
    EXPECT_TRUE(nan.unionWith(Rect::make(0, 0, NAN, 1)).isFinite());
}

TEST(QuartzRobustnessGeometry, PathsRefuseNonFinitePointsAndRadii) {
    Path p;
    p.moveTo({0, 0});
    p.addArcToPoint({10, 0}, {10, 10}, NAN);
    EXPECT_EQ(p.elementCount(), 1u) << "a NaN radius adds nothing";
    p.addArcToPoint({10, 0}, {10, 10}, INFINITY);  // a line to the corner, as for radius 0
    p.addArc({5, 5}, NAN, 0, 1, false);
    p.addArc({NAN, 5}, 3, 0, 1, false);
    p.addArc({5, 5}, 3, 0, INFINITY, false);
    p.lineTo({NAN, 1});
    p.curveTo({1, 1}, {INFINITY, 2}, {3, 3});
    p.quadCurveTo({NAN, 1}, {3, 3});
    p.addRect(Rect::make(0, 0, NAN, 4));
    p.addEllipseInRect(Rect::make(0, 0, 1e308, 1e308));  // width * kappa overflows
    p.addRoundedRect(Rect::make(0, 0, 10, 10), NAN, NAN);
    EXPECT_TRUE(allFinite(p));
    Rect box = p.boundingBox();
    EXPECT_TRUE(box.isFinite());
    // A transform that sends points to infinity is refused the same way.
    Path q;
    q.moveTo({1e308, 1e308}, AffineTransform::scale(10, 10));
    EXPECT_TRUE(q.isEmpty());
}

TEST(QuartzRobustnessContext, NonFiniteDrawingAndShadowsDrawNothingOrNoShadow) {
    std::vector<uint8_t> buf(16 * 16 * 4, 0);
    auto t = BitmapTarget::create(buf.data(), 16, 16, 8, 64, ColorModel::RGB,
                                  static_cast<uint32_t>(AlphaInfo::PremultipliedLast));
    auto ctx = makeBitmapContext(t);
    ASSERT_TRUE(ctx);
    EXPECT_TRUE(ctx->fillRect(Rect::make(NAN, 0, 4, 4)));
    EXPECT_TRUE(ctx->fillEllipseInRect(Rect::make(0, 0, INFINITY, 4)));
    ctx->addArc(8, 8, NAN, 0, 3, false);
    EXPECT_TRUE(ctx->strokePath());
    for (uint8_t b : buf) ASSERT_EQ(b, 0);

    // A NaN shadow offset or blur means no shadow; the shape still draws.
    Color black{0, 0, 0, 1};
    ctx->setShadowWithColor(Size{NAN, 2}, 4, &black);
    EXPECT_TRUE(ctx->fillRect(Rect::make(4, 4, 4, 4)));
    ctx->setShadowWithColor(Size{2, -2}, NAN, &black);
    EXPECT_TRUE(ctx->fillRect(Rect::make(4, 4, 4, 4)));
    ctx->setShadowWithColor(Size{2, -2}, 1e300, &black);  // held to a sane blur
    EXPECT_TRUE(ctx->fillRect(Rect::make(4, 4, 4, 4)));
    t->flush();
    EXPECT_EQ(buf[(8 * 16 + 6) * 4 + 3], 255) << "the shape itself";
}

TEST(QuartzRobustnessContext, HugeShadowBlurIsHeldToTheLargestDrawnBlur) {
    // A blur of a million pixels once blurred a scratch of (clip + 3 sigma)^2
    // for seconds; it now draws as the largest blur the engine draws.
    auto shadowed = [](double blur) {
        std::vector<uint8_t> buf(48 * 48 * 4, 0);
        auto t = BitmapTarget::create(buf.data(), 48, 48, 8, 48 * 4, ColorModel::RGB,
                                      static_cast<uint32_t>(AlphaInfo::PremultipliedLast));
        auto ctx = makeBitmapContext(t);
        Color black{0, 0, 0, 1};
        ctx->setShadowWithColor(Size{3, -3}, blur, &black);
        EXPECT_TRUE(ctx->fillRect(Rect::make(10, 10, 20, 20)));
        t->flush();
        return buf;
    };
    EXPECT_EQ(shadowed(1e6), shadowed(256));
    EXPECT_NE(shadowed(256), shadowed(8));
}

TEST(QuartzRobustnessContext, StateThatWouldBreakCairoIsRefusedAndDrawingGoesOn) {
    std::vector<uint8_t> buf(16 * 16 * 4, 0);
    auto t = BitmapTarget::create(buf.data(), 16, 16, 8, 64, ColorModel::RGB,
                                  static_cast<uint32_t>(AlphaInfo::PremultipliedLast));
    auto ctx = makeBitmapContext(t);
    ctx->concatCTM(AffineTransform::make(NAN, 0, 0, 1, 0, 0));
    ctx->scaleCTM(INFINITY, 1);
    EXPECT_EQ(ctx->getCTM(), AffineTransform::identity());
    const double dashes[2] = {NAN, -1};
    ctx->setLineDash(NAN, dashes, 2);
    const double zeros[2] = {0, 0};
    ctx->setLineDash(0, zeros, 2);
    ctx->setMiterLimit(NAN);
    ctx->setLineWidth(INFINITY);
    ctx->strokeRect(Rect::make(2, 2, 10, 10));
    ctx->saveGState();
    ctx->scaleCTM(0, 1);  // singular: strokes have no pen
    EXPECT_TRUE(ctx->strokeRect(Rect::make(2, 2, 10, 10)));
    ctx->restoreGState();
    // The cairo_t is still usable: a fill lands.
    EXPECT_EQ(cairo_status(t->cairoContext()), CAIRO_STATUS_SUCCESS);
    ctx->setFillColor(Color::rgb(1, 0, 0));
    EXPECT_TRUE(ctx->fillRect(Rect::make(0, 0, 16, 16)));
    t->flush();
    EXPECT_EQ(buf[0], 255);
    EXPECT_EQ(buf[3], 255);
}
