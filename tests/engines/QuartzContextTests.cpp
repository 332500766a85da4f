// Pixel read-back tests of the Quartz context: coordinate spaces, images,
// clipping, blending, shadows, state and the borrowed cairo_t.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <vector>

#include "platform/CoreGraphics/engine/BitmapTarget.hpp"
#include "platform/CoreGraphics/engine/Context.hpp"

using namespace talvo::quartz;

namespace {

constexpr uint32_t kRGBA = static_cast<uint32_t>(AlphaInfo::PremultipliedLast) | kByteOrder32Big;

// An RGBA (premultiplied, big-endian) bitmap and a context on it.
struct Canvas {
    int w, h;
    std::vector<uint8_t> bytes;
    std::shared_ptr<BitmapTarget> target;
    std::unique_ptr<Context> ctx;

    Canvas(int width, int height) : w(width), h(height), bytes(size_t(width) * height * 4, 0) {
        target = BitmapTarget::create(bytes.data(), w, h, 8, size_t(w) * 4, ColorModel::RGB, kRGBA);
        ctx = makeBitmapContext(target);
    }
    // Buffer coordinates: row 0 is the first row in memory (the top).
    std::array<int, 4> at(int x, int row) const {
        const uint8_t* p = &bytes[(size_t(row) * w + x) * 4];
        return {p[0], p[1], p[2], p[3]};
    }
    int alphaAt(int x, int row) const { return at(x, row)[3]; }
    void fillAll(const Color& c) {
        ctx->saveGState();
        ctx->setFillColor(c);
        ctx->setBlendMode(BlendMode::Copy);
        ctx->fillRect(Rect::make(0, 0, w, h));
        ctx->restoreGState();
    }
};

// A small RGBA (non-premultiplied, big-endian) image from rows given top first.
Image* rgbaImage(int w, int h, const std::vector<uint32_t>& rgbaTopFirst) {
    std::vector<uint8_t> bytes;
    for (uint32_t v : rgbaTopFirst) {
        bytes.push_back(uint8_t(v >> 24));
        bytes.push_back(uint8_t(v >> 16));
        bytes.push_back(uint8_t(v >> 8));
        bytes.push_back(uint8_t(v));
    }
    PixelFormat f;
    f.width = w;
    f.height = h;
    f.bitsPerComponent = 8;
    f.bitsPerPixel = 32;
    f.bytesPerRow = size_t(w) * 4;
    f.model = ColorModel::RGB;
    f.bitmapInfo = static_cast<uint32_t>(AlphaInfo::Last);
    return Image::create(f, bytes.data(), bytes.size());
}

Image* grayImage(int w, int h, const std::vector<uint8_t>& levels) {
    PixelFormat f;
    f.width = w;
    f.height = h;
    f.bitsPerComponent = 8;
    f.bitsPerPixel = 8;
    f.bytesPerRow = size_t(w);
    f.model = ColorModel::Gray;
    f.bitmapInfo = static_cast<uint32_t>(AlphaInfo::None);
    return Image::create(f, levels.data(), levels.size());
}

#define EXPECT_PIXEL(canvas, x, row, r, g, b, a)          \
    do {                                                   \
        auto px_ = (canvas).at(x, row);                    \
        EXPECT_NEAR(px_[0], r, 2) << "R at " << x << "," << row; \
        EXPECT_NEAR(px_[1], g, 2) << "G at " << x << "," << row; \
        EXPECT_NEAR(px_[2], b, 2) << "B at " << x << "," << row; \
        EXPECT_NEAR(px_[3], a, 2) << "A at " << x << "," << row; \
    } while (0)

}  // namespace

// --- Coordinate spaces ---------------------------------------------------------

TEST(QuartzContextSpace, FillRectAtOriginLandsInTheLastRows) {
    Canvas c(20, 20);
    c.ctx->setFillColor(Color::rgb(1, 0, 0));
    ASSERT_TRUE(c.ctx->fillRect(Rect::make(0, 0, 10, 10)));
    EXPECT_PIXEL(c, 0, 19, 255, 0, 0, 255);
    EXPECT_PIXEL(c, 9, 10, 255, 0, 0, 255);
    EXPECT_EQ(c.alphaAt(0, 9), 0);   // just above the rect
    EXPECT_EQ(c.alphaAt(10, 19), 0); // just right of it
    EXPECT_EQ(c.alphaAt(0, 0), 0);
}

TEST(QuartzContextSpace, PointsTakeTheCTMInForceWhenAdded) {
    Canvas c(20, 20);
    c.ctx->moveTo(0, 0);
    c.ctx->translateCTM(10, 0);
    c.ctx->lineTo(0, 10);  // device (10, 10)
    Point p;
    ASSERT_TRUE(c.ctx->pathCurrentPoint(&p));
    EXPECT_DOUBLE_EQ(p.x, 0);  // back in the new user space
    EXPECT_DOUBLE_EQ(p.y, 10);
    Path user = c.ctx->copyPath();
    std::vector<Point> pts;
    user.apply([&](const PathElement& e) { pts.push_back(e.points[0]); });
    ASSERT_EQ(pts.size(), 2u);
    EXPECT_DOUBLE_EQ(pts[0].x, -10);  // the first point did not move with the CTM
}

TEST(QuartzContextSpace, TranslateThenScaleComposesInQuartzOrder) {
    Canvas c(20, 20);
    c.ctx->translateCTM(10, 0);
    c.ctx->scaleCTM(2, 2);
    AffineTransform t = c.ctx->getCTM();
    Point p = t.apply(Point{1, 1});
    EXPECT_DOUBLE_EQ(p.x, 12);
    EXPECT_DOUBLE_EQ(p.y, 2);
    c.ctx->setFillColor(Color::rgb(0, 0, 1));
    c.ctx->fillRect(Rect::make(0, 0, 2, 2));  // device x 10...14, y-up 0...4
    EXPECT_PIXEL(c, 10, 19, 0, 0, 255, 255);
    EXPECT_PIXEL(c, 13, 16, 0, 0, 255, 255);
    EXPECT_EQ(c.alphaAt(9, 19), 0);
    EXPECT_EQ(c.alphaAt(14, 19), 0);
    EXPECT_EQ(c.alphaAt(10, 15), 0);
}

TEST(QuartzContextSpace, StrokeWidthFollowsTheCTM) {
    Canvas c(40, 40);
    c.ctx->scaleCTM(4, 4);
    c.ctx->setLineWidth(1);  // 4 device pixels
    c.ctx->moveTo(0, 5);
    c.ctx->lineTo(10, 5);
    ASSERT_TRUE(c.ctx->strokePath());
    // y-up 18...22 -> rows 18...21
    EXPECT_EQ(c.alphaAt(5, 18), 255);
    EXPECT_EQ(c.alphaAt(5, 21), 255);
    EXPECT_EQ(c.alphaAt(5, 17), 0);
    EXPECT_EQ(c.alphaAt(5, 22), 0);
    EXPECT_TRUE(c.ctx->isPathEmpty());
}

TEST(QuartzContextSpace, NonzeroAndEvenOddDifferOnNestedRects) {
    Canvas c(20, 20);
    for (FillRule rule : {FillRule::Winding, FillRule::EvenOdd}) {
        c.fillAll(Color::clear());
        c.ctx->addRect(Rect::make(0, 0, 20, 20));
        c.ctx->addRect(Rect::make(5, 5, 10, 10));
        c.ctx->fillPath(rule);
        EXPECT_EQ(c.alphaAt(10, 10), rule == FillRule::Winding ? 255 : 0);
        EXPECT_EQ(c.alphaAt(1, 1), 255);
    }
}

// --- Images --------------------------------------------------------------------

TEST(QuartzContextImages, DrawImageIsUpright) {
    Canvas c(20, 20);
    // Top row red, bottom row blue.
    ImageRef img = ImageRef::adopt(rgbaImage(1, 2, {0xFF0000FF, 0x0000FFFF}));
    ASSERT_TRUE(img);
    c.ctx->setInterpolationQuality(InterpolationQuality::None);
    ASSERT_TRUE(c.ctx->drawImage(Rect::make(0, 0, 20, 20), img.get()));
    EXPECT_PIXEL(c, 5, 0, 255, 0, 0, 255);
    EXPECT_PIXEL(c, 5, 9, 255, 0, 0, 255);
    EXPECT_PIXEL(c, 5, 10, 0, 0, 255, 255);
    EXPECT_PIXEL(c, 5, 19, 0, 0, 255, 255);
}

TEST(QuartzContextImages, DrawImageStaysInsideItsRect) {
    Canvas c(20, 20);
    ImageRef img = ImageRef::adopt(rgbaImage(2, 2, {0x00FF00FF, 0x00FF00FF, 0x00FF00FF, 0x00FF00FF}));
    ASSERT_TRUE(c.ctx->drawImage(Rect::make(5, 5, 10, 5), img.get()));  // y-up 5...10 -> rows 10...14
    EXPECT_PIXEL(c, 5, 10, 0, 255, 0, 255);
    EXPECT_PIXEL(c, 14, 14, 0, 255, 0, 255);
    EXPECT_EQ(c.alphaAt(4, 12), 0);
    EXPECT_EQ(c.alphaAt(15, 12), 0);
    EXPECT_EQ(c.alphaAt(8, 9), 0);
    EXPECT_EQ(c.alphaAt(8, 15), 0);
}

TEST(QuartzContextImages, NonPremultipliedImageIsPremultipliedOnce) {
    Canvas c(4, 4);
    ImageRef img = ImageRef::adopt(rgbaImage(1, 1, {0xFF000080}));  // red at alpha 0x80
    c.ctx->drawImage(Rect::make(0, 0, 4, 4), img.get());
    EXPECT_PIXEL(c, 1, 1, 128, 0, 0, 128);
}

TEST(QuartzContextImages, ImageMaskPaintsTheFillColourWhereSamplesAreZero) {
    Canvas c(20, 10);
    uint8_t samples[2] = {0x00, 0xFF};  // left lets paint in, right keeps it out
    ImageRef mask = ImageRef::adopt(Image::createMask(2, 1, 8, 8, 2, samples, 2));
    ASSERT_TRUE(mask);
    c.ctx->setFillColor(Color::rgb(0, 0, 1));
    c.ctx->setInterpolationQuality(InterpolationQuality::None);
    ASSERT_TRUE(c.ctx->drawImage(Rect::make(0, 0, 20, 10), mask.get()));
    EXPECT_PIXEL(c, 2, 5, 0, 0, 255, 255);
    EXPECT_EQ(c.alphaAt(17, 5), 0);
}

TEST(QuartzContextImages, GlobalAlphaAppliesToImages) {
    Canvas c(4, 4);
    ImageRef img = ImageRef::adopt(rgbaImage(1, 1, {0xFFFFFFFF}));
    c.ctx->setAlpha(0.25);
    c.ctx->drawImage(Rect::make(0, 0, 4, 4), img.get());
    EXPECT_PIXEL(c, 2, 2, 64, 64, 64, 64);
}

// --- Clipping ------------------------------------------------------------------

TEST(QuartzContextClip, ImageMaskAndGrayImageHaveOppositeSenses) {
    uint8_t levels[2] = {0x00, 0xFF};
    ImageRef mask = ImageRef::adopt(Image::createMask(2, 1, 8, 8, 2, levels, 2));
    ImageRef gray = ImageRef::adopt(grayImage(2, 1, {0x00, 0xFF}));
    ASSERT_TRUE(mask && gray);

    Canvas a(20, 10);
    a.ctx->setInterpolationQuality(InterpolationQuality::None);
    ASSERT_TRUE(a.ctx->clipToMask(Rect::make(0, 0, 20, 10), mask.get()));
    a.ctx->setFillColor(Color::rgb(1, 0, 0));
    a.ctx->fillRect(Rect::make(0, 0, 20, 10));
    EXPECT_EQ(a.alphaAt(3, 5), 255);  // sample 0: paint in
    EXPECT_EQ(a.alphaAt(16, 5), 0);   // sample 1: paint out

    Canvas b(20, 10);
    b.ctx->setInterpolationQuality(InterpolationQuality::None);
    ASSERT_TRUE(b.ctx->clipToMask(Rect::make(0, 0, 20, 10), gray.get()));
    b.ctx->setFillColor(Color::rgb(1, 0, 0));
    b.ctx->fillRect(Rect::make(0, 0, 20, 10));
    EXPECT_EQ(b.alphaAt(3, 5), 0);    // black: paint out
    EXPECT_EQ(b.alphaAt(16, 5), 255); // white: paint in
}

TEST(QuartzContextClip, MaskIsUprightAndNothingDrawsOutsideItsRect) {
    // Top half white (in), bottom half black (out).
    ImageRef gray = ImageRef::adopt(grayImage(1, 2, {0xFF, 0x00}));
    Canvas c(20, 20);
    c.ctx->setInterpolationQuality(InterpolationQuality::None);
    c.ctx->clipToMask(Rect::make(0, 10, 20, 10), gray.get());  // the top half of the canvas
    c.ctx->fillRect(Rect::make(0, 0, 20, 20));
    EXPECT_EQ(c.alphaAt(5, 2), 255);   // mask's top row at the rect's top
    EXPECT_EQ(c.alphaAt(5, 7), 0);     // mask's bottom row
    EXPECT_EQ(c.alphaAt(5, 15), 0);    // outside the mask rect
}

TEST(QuartzContextClip, AlphaImageMasksByItsAlpha) {
    ImageRef img = ImageRef::adopt(rgbaImage(2, 1, {0x000000FF, 0xFFFFFF00}));
    Canvas c(20, 10);
    c.ctx->setInterpolationQuality(InterpolationQuality::None);
    c.ctx->clipToMask(Rect::make(0, 0, 20, 10), img.get());
    c.ctx->fillRect(Rect::make(0, 0, 20, 10));
    EXPECT_EQ(c.alphaAt(3, 5), 255);
    EXPECT_EQ(c.alphaAt(16, 5), 0);
}

TEST(QuartzContextClip, ClipsAccumulateAndClipConsumesThePath) {
    Canvas c(20, 20);
    c.ctx->clipToRect(Rect::make(0, 0, 15, 20));
    c.ctx->addRect(Rect::make(5, 0, 15, 20));
    c.ctx->clip();
    EXPECT_TRUE(c.ctx->isPathEmpty());
    c.ctx->fillRect(Rect::make(0, 0, 20, 20));
    EXPECT_EQ(c.alphaAt(2, 10), 0);
    EXPECT_EQ(c.alphaAt(10, 10), 255);
    EXPECT_EQ(c.alphaAt(17, 10), 0);
    Rect box = c.ctx->clipBoundingBox();
    EXPECT_DOUBLE_EQ(box.minX(), 5);
    EXPECT_DOUBLE_EQ(box.maxX(), 15);
}

TEST(QuartzContextClip, EmptyPathClipsEverythingAway) {
    Canvas c(10, 10);
    c.ctx->clip();
    c.ctx->fillRect(Rect::make(0, 0, 10, 10));
    EXPECT_EQ(c.alphaAt(5, 5), 0);
}

TEST(QuartzContextClip, ClearRectHonoursTheClipAndIgnoresBlendAndAlpha) {
    Canvas c(20, 10);
    c.fillAll(Color::rgb(1, 0, 0));
    c.ctx->setAlpha(0.1);
    c.ctx->setBlendMode(BlendMode::Multiply);
    c.ctx->clipToRect(Rect::make(0, 0, 10, 10));
    ASSERT_TRUE(c.ctx->clearRect(Rect::make(0, 0, 20, 10)));
    EXPECT_EQ(c.alphaAt(5, 5), 0);
    EXPECT_PIXEL(c, 15, 5, 255, 0, 0, 255);
}

// --- Blending and alpha --------------------------------------------------------

TEST(QuartzContextBlend, HalfAlphaBlackOverWhiteIsMidGray) {
    Canvas c(10, 10);
    c.fillAll(Color::gray(1));
    c.ctx->setAlpha(0.5);
    c.ctx->setFillColor(Color::gray(0));
    c.ctx->fillRect(Rect::make(0, 0, 10, 10));
    EXPECT_PIXEL(c, 5, 5, 128, 128, 128, 255);
}

TEST(QuartzContextBlend, CopyReplacesWhereNormalBlends) {
    Canvas normal(10, 10), copy(10, 10);
    for (Canvas* c : {&normal, &copy}) {
        c->fillAll(Color::rgb(0, 0, 1));
        c->ctx->setFillColor(Color::rgb(1, 0, 0, 0.5));
    }
    copy.ctx->setBlendMode(BlendMode::Copy);
    normal.ctx->fillRect(Rect::make(0, 0, 5, 10));
    copy.ctx->fillRect(Rect::make(0, 0, 5, 10));
    EXPECT_PIXEL(normal, 2, 5, 128, 0, 128, 255);
    EXPECT_PIXEL(copy, 2, 5, 128, 0, 0, 128);  // premultiplied half red
    // Copy stays inside the shape.
    EXPECT_PIXEL(copy, 7, 5, 0, 0, 255, 255);
}

TEST(QuartzContextBlend, CopyWithGlobalAlphaScalesTheSource) {
    Canvas c(10, 10);
    c.fillAll(Color::rgb(0, 0, 1));
    c.ctx->setBlendMode(BlendMode::Copy);
    c.ctx->setAlpha(0.5);
    c.ctx->setFillColor(Color::rgb(1, 0, 0));
    c.ctx->fillRect(Rect::make(0, 0, 10, 10));
    EXPECT_PIXEL(c, 5, 5, 128, 0, 0, 128);
}

TEST(QuartzContextBlend, XorClearsWhereBothAreOpaque) {
    Canvas c(20, 10);
    c.ctx->setFillColor(Color::rgb(0, 0, 1));
    c.ctx->fillRect(Rect::make(0, 0, 10, 10));
    c.ctx->setBlendMode(BlendMode::XOR);
    c.ctx->setFillColor(Color::rgb(1, 0, 0));
    c.ctx->fillRect(Rect::make(0, 0, 20, 10));
    EXPECT_EQ(c.alphaAt(5, 5), 0);
    EXPECT_PIXEL(c, 15, 5, 255, 0, 0, 255);
}

TEST(QuartzContextBlend, MultiplyAndScreenAreSeparable) {
    Canvas c(10, 10);
    c.fillAll(Color::rgb(1, 0.5, 0));
    c.ctx->setBlendMode(BlendMode::Multiply);
    c.ctx->setFillColor(Color::rgb(0.5, 1, 1));
    c.ctx->fillRect(Rect::make(0, 0, 5, 10));
    c.ctx->setBlendMode(BlendMode::Screen);
    c.ctx->fillRect(Rect::make(5, 0, 5, 10));
    EXPECT_PIXEL(c, 2, 5, 128, 128, 0, 255);
    EXPECT_PIXEL(c, 7, 5, 255, 255, 255, 255);
}

TEST(QuartzContextBlend, PlusLighterAdds) {
    Canvas c(10, 10);
    c.fillAll(Color::rgb(0.25, 0.5, 0.75));
    c.ctx->setBlendMode(BlendMode::PlusLighter);
    c.ctx->setFillColor(Color::rgb(0.25, 0.75, 0.5));
    c.ctx->fillRect(Rect::make(0, 0, 10, 10));
    EXPECT_PIXEL(c, 5, 5, 128, 255, 255, 255);
}

TEST(QuartzContextBlend, DestinationInAndSourceInStayInsideTheShape) {
    for (BlendMode mode : {BlendMode::DestinationIn, BlendMode::SourceIn}) {
        Canvas c(20, 10);
        c.fillAll(Color::rgb(1, 0, 0));
        c.ctx->setBlendMode(mode);
        c.ctx->setFillColor(Color::rgb(0, 0, 1, 0.5));
        c.ctx->fillRect(Rect::make(0, 0, 10, 10));
        if (mode == BlendMode::DestinationIn)
            EXPECT_PIXEL(c, 5, 5, 128, 0, 0, 128);
        else
            EXPECT_PIXEL(c, 5, 5, 0, 0, 128, 128);
        EXPECT_PIXEL(c, 15, 5, 255, 0, 0, 255);  // cairo alone would clear this
    }
}

TEST(QuartzContextBlend, StrokedDestinationOutCutsOnlyTheStroke) {
    Canvas c(20, 20);
    c.fillAll(Color::rgb(0, 1, 0));
    c.ctx->setBlendMode(BlendMode::DestinationOut);
    c.ctx->setLineWidth(4);
    c.ctx->moveTo(0, 10);
    c.ctx->lineTo(20, 10);
    c.ctx->strokePath();
    EXPECT_EQ(c.alphaAt(5, 9), 0);
    EXPECT_EQ(c.alphaAt(5, 2), 255);
}

TEST(QuartzContextBlend, ClearModeClearsTheShapeOnly) {
    Canvas c(20, 10);
    c.fillAll(Color::rgb(1, 1, 0));
    c.ctx->setBlendMode(BlendMode::Clear);
    c.ctx->fillRect(Rect::make(0, 0, 10, 10));
    EXPECT_EQ(c.alphaAt(5, 5), 0);
    EXPECT_EQ(c.alphaAt(15, 5), 255);
}

TEST(QuartzContextBlend, SourceInThroughAClipMaskStaysInsideTheMask) {
    ImageRef gray = ImageRef::adopt(grayImage(2, 1, {0xFF, 0x00}));
    Canvas c(20, 10);
    c.fillAll(Color::rgb(1, 0, 0));
    c.ctx->setInterpolationQuality(InterpolationQuality::None);
    c.ctx->clipToMask(Rect::make(0, 0, 20, 10), gray.get());
    c.ctx->setBlendMode(BlendMode::SourceIn);
    c.ctx->setFillColor(Color::rgb(0, 0, 1));
    c.ctx->fillRect(Rect::make(0, 0, 20, 10));
    EXPECT_PIXEL(c, 3, 5, 0, 0, 255, 255);
    EXPECT_PIXEL(c, 16, 5, 255, 0, 0, 255);
}

// --- Shadows -------------------------------------------------------------------

TEST(QuartzContextShadow, PositiveXNegativeYGoesRightAndDown) {
    Canvas c(40, 40);
    Color black = Color::rgb(0, 0, 0);
    c.ctx->setShadowWithColor(Size{5, -5}, 0, &black);
    c.ctx->setFillColor(Color::rgb(1, 0, 0));
    c.ctx->fillRect(Rect::make(10, 20, 10, 10));  // rows 10...19, cols 10...19
    EXPECT_PIXEL(c, 12, 12, 255, 0, 0, 255);      // shape over its shadow
    EXPECT_PIXEL(c, 22, 22, 0, 0, 0, 255);        // shadow: cols 15...24, rows 15...24
    EXPECT_PIXEL(c, 17, 24, 0, 0, 0, 255);
    EXPECT_EQ(c.alphaAt(12, 8), 0);   // nothing above
    EXPECT_EQ(c.alphaAt(8, 12), 0);   // nothing to the left
    EXPECT_EQ(c.alphaAt(26, 22), 0);
    EXPECT_EQ(c.alphaAt(22, 26), 0);
}

TEST(QuartzContextShadow, OffsetIgnoresAScaledCTM) {
    Canvas c(40, 40);
    Color black = Color::rgb(0, 0, 0);
    c.ctx->scaleCTM(2, 2);
    c.ctx->setShadowWithColor(Size{5, -5}, 0, &black);
    c.ctx->setFillColor(Color::rgb(1, 0, 0));
    c.ctx->fillRect(Rect::make(5, 10, 5, 5));  // the same device rect as above
    EXPECT_PIXEL(c, 22, 22, 0, 0, 0, 255);
    EXPECT_PIXEL(c, 24, 24, 0, 0, 0, 255);
    EXPECT_EQ(c.alphaAt(26, 26), 0);  // an offset of 10 would reach here
}

TEST(QuartzContextShadow, BlurSoftensTheEdgeAndColourAndAlphaApply) {
    Canvas c(60, 60);
    Color blue = Color::rgb(0, 0, 1, 1);
    c.ctx->setShadowWithColor(Size{0, 0}, 8, &blue);
    c.ctx->setAlpha(0.5);
    c.ctx->setFillColor(Color::rgb(1, 0, 0));
    c.ctx->fillRect(Rect::make(20, 20, 20, 20));  // rows/cols 20...39
    // Deep inside: half-alpha red over the half-alpha shadow, which shows
    // through the translucent shape.
    auto inside = c.at(30, 30);
    EXPECT_NEAR(inside[0], 128, 3);
    EXPECT_NEAR(inside[2], 64, 3);
    EXPECT_NEAR(inside[3], 191, 3);
    // Outside the shape the blurred shadow fades out.
    int near = c.alphaAt(42, 30), far = c.alphaAt(48, 30);
    EXPECT_GT(near, far);
    EXPECT_GT(near, 5);
    EXPECT_LT(near, 128);
    EXPECT_EQ(c.at(42, 30)[0], 0);
    EXPECT_GT(c.at(42, 30)[2], 0);
    EXPECT_EQ(c.alphaAt(55, 30), 0);
}

TEST(QuartzContextShadow, DefaultShadowIsTranslucentBlackAndNullColourTurnsItOff) {
    Canvas c(40, 20);
    c.ctx->setShadow(Size{10, 0}, 0);
    c.ctx->fillRect(Rect::make(0, 0, 10, 10));
    EXPECT_NEAR(c.alphaAt(15, 15), 85, 2);
    c.ctx->setShadowWithColor(Size{10, 0}, 0, nullptr);
    c.ctx->fillRect(Rect::make(20, 0, 10, 10));
    EXPECT_EQ(c.alphaAt(35, 15), 0);
}

// --- Graphics state ------------------------------------------------------------

TEST(QuartzContextState, RestoreBringsBackAlphaClipCTMAndBlend) {
    Canvas c(20, 20);
    c.ctx->saveGState();
    c.ctx->setAlpha(0.5);
    c.ctx->clipToRect(Rect::make(0, 0, 5, 5));
    c.ctx->translateCTM(7, 7);
    c.ctx->setBlendMode(BlendMode::XOR);
    c.ctx->setFillColor(Color::rgb(0, 1, 0));
    EXPECT_EQ(c.ctx->gStateDepth(), 1u);
    ASSERT_TRUE(c.ctx->restoreGState());
    EXPECT_FALSE(c.ctx->restoreGState());  // unbalanced restore is refused
    EXPECT_TRUE(c.ctx->getCTM().isIdentity());
    EXPECT_EQ(c.ctx->blendMode(), BlendMode::Normal);
    EXPECT_DOUBLE_EQ(c.ctx->alpha(), 1);
    c.ctx->fillRect(Rect::make(0, 0, 20, 20));
    EXPECT_PIXEL(c, 15, 2, 0, 0, 0, 255);  // outside the old clip, full alpha, black
    EXPECT_PIXEL(c, 0, 19, 0, 0, 0, 255);
}

TEST(QuartzContextState, PathSurvivesSaveAndRestore) {
    Canvas c(10, 10);
    c.ctx->addRect(Rect::make(0, 0, 10, 10));
    c.ctx->saveGState();
    c.ctx->restoreGState();
    EXPECT_FALSE(c.ctx->isPathEmpty());
}

TEST(QuartzContextState, MaskImageIsRetainedByTheStateThatClips) {
    ImageRef gray = ImageRef::adopt(grayImage(1, 1, {0xFF}));
    Canvas c(4, 4);
    EXPECT_EQ(gray->retainCount(), 1);
    c.ctx->saveGState();
    c.ctx->clipToMask(Rect::make(0, 0, 4, 4), gray.get());
    EXPECT_EQ(gray->retainCount(), 2);
    c.ctx->restoreGState();
    EXPECT_EQ(gray->retainCount(), 1);
}

TEST(QuartzContextState, LineDashLeavesGaps) {
    Canvas c(20, 4);
    double dash[2] = {5, 5};
    c.ctx->setLineDash(0, dash, 2);
    c.ctx->setLineWidth(4);
    c.ctx->moveTo(0, 2);
    c.ctx->lineTo(20, 2);
    c.ctx->strokePath();
    EXPECT_EQ(c.alphaAt(2, 2), 255);
    EXPECT_EQ(c.alphaAt(7, 2), 0);
    EXPECT_EQ(c.alphaAt(12, 2), 255);
}

// --- The borrowed cairo_t ------------------------------------------------------

namespace {

struct CairoSnapshot {
    cairo_matrix_t matrix;
    double clip[4];
    cairo_pattern_t* source;
    cairo_operator_t op;
    double lineWidth;
    cairo_fill_rule_t rule;
    int pathData;
    double cx, cy;

    static CairoSnapshot take(cairo_t* cr) {
        CairoSnapshot s;
        cairo_get_matrix(cr, &s.matrix);
        cairo_clip_extents(cr, &s.clip[0], &s.clip[1], &s.clip[2], &s.clip[3]);
        s.source = cairo_get_source(cr);
        s.op = cairo_get_operator(cr);
        s.lineWidth = cairo_get_line_width(cr);
        s.rule = cairo_get_fill_rule(cr);
        cairo_path_t* p = cairo_copy_path(cr);
        s.pathData = p->num_data;
        cairo_path_destroy(p);
        cairo_get_current_point(cr, &s.cx, &s.cy);
        return s;
    }
    void expectSame(const CairoSnapshot& o, const char* what) const {
        EXPECT_EQ(std::memcmp(&matrix, &o.matrix, sizeof matrix), 0) << what;
        for (int i = 0; i < 4; ++i) EXPECT_DOUBLE_EQ(clip[i], o.clip[i]) << what;
        EXPECT_EQ(source, o.source) << what;
        EXPECT_EQ(op, o.op) << what;
        EXPECT_DOUBLE_EQ(lineWidth, o.lineWidth) << what;
        EXPECT_EQ(rule, o.rule) << what;
        EXPECT_EQ(pathData, o.pathData) << what;
        EXPECT_DOUBLE_EQ(cx, o.cx) << what;
        EXPECT_DOUBLE_EQ(cy, o.cy) << what;
    }
};

}  // namespace

TEST(QuartzContextCairo, EveryCallLeavesTheCairoStateAsFound) {
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 40, 40);
    cairo_t* cr = cairo_create(surface);
    cairo_translate(cr, 3, 4);
    cairo_rectangle(cr, 0, 0, 30, 30);
    cairo_clip(cr);
    cairo_set_source_rgb(cr, 0.1, 0.2, 0.3);
    cairo_set_operator(cr, CAIRO_OPERATOR_ADD);
    cairo_set_line_width(cr, 7);
    cairo_set_fill_rule(cr, CAIRO_FILL_RULE_EVEN_ODD);
    cairo_move_to(cr, 1, 2);
    cairo_line_to(cr, 5, 6);

    auto provider = std::make_shared<FunctionCairoProvider>([cr] { return cr; });
    Context ctx(provider, AffineTransform::make(1, 0, 0, -1, 0, 40));
    ImageRef img = ImageRef::adopt(rgbaImage(1, 1, {0x00FF00FF}));
    ImageRef gray = ImageRef::adopt(grayImage(1, 1, {0xFF}));
    CairoSnapshot before = CairoSnapshot::take(cr);

    ctx.setFillColor(Color::rgb(1, 0, 0));
    ctx.fillRect(Rect::make(0, 0, 10, 10));
    before.expectSame(CairoSnapshot::take(cr), "fillRect");
    ctx.moveTo(0, 0);
    ctx.lineTo(30, 30);
    ctx.strokePath();
    before.expectSame(CairoSnapshot::take(cr), "strokePath");
    ctx.drawImage(Rect::make(10, 10, 5, 5), img.get());
    before.expectSame(CairoSnapshot::take(cr), "drawImage");
    ctx.saveGState();
    ctx.clipToRect(Rect::make(0, 0, 20, 20));
    ctx.clipToMask(Rect::make(0, 0, 20, 20), gray.get());
    Color black{0, 0, 0, 1};
    ctx.setShadowWithColor(Size{2, -2}, 3, &black);
    ctx.setBlendMode(BlendMode::DestinationIn);
    ctx.fillEllipseInRect(Rect::make(2, 2, 10, 10));
    before.expectSame(CairoSnapshot::take(cr), "clipped shadowed DestinationIn");
    ctx.restoreGState();
    ctx.clearRect(Rect::make(0, 0, 3, 3));
    before.expectSame(CairoSnapshot::take(cr), "clearRect");
    ctx.clipBoundingBox();
    before.expectSame(CairoSnapshot::take(cr), "clipBoundingBox");
    EXPECT_EQ(cairo_status(cr), CAIRO_STATUS_SUCCESS);

    cairo_destroy(cr);
    cairo_surface_destroy(surface);
}

TEST(QuartzContextCairo, BaseTransformIgnoresTheCairoMatrixButKeepsItsClip) {
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 20, 20);
    cairo_t* cr = cairo_create(surface);
    cairo_translate(cr, 5, 5);        // ignored: the base goes to device space
    cairo_rectangle(cr, -5, -5, 10, 20);  // device x 0...10 stays clipped in
    cairo_clip(cr);
    Context ctx(std::make_shared<FunctionCairoProvider>([cr] { return cr; }),
                AffineTransform::make(1, 0, 0, -1, 0, 20));
    ctx.fillRect(Rect::make(0, 0, 20, 2));
    cairo_surface_flush(surface);
    auto alphaAt = [&](int x, int y) {
        uint32_t v;
        std::memcpy(&v, cairo_image_surface_get_data(surface) + y * cairo_image_surface_get_stride(surface) + 4 * x, 4);
        return int(v >> 24);
    };
    EXPECT_EQ(alphaAt(0, 19), 255);
    EXPECT_EQ(alphaAt(0, 17), 0);
    EXPECT_EQ(alphaAt(15, 19), 0);  // outside the cairo_t's own clip
    cairo_destroy(cr);
    cairo_surface_destroy(surface);
}

TEST(QuartzContextCairo, NoCairoMeansNoDrawingButStateStillWorks) {
    Context ctx(std::make_shared<FunctionCairoProvider>([] { return static_cast<cairo_t*>(nullptr); }),
                AffineTransform());
    EXPECT_FALSE(ctx.fillRect(Rect::make(0, 0, 1, 1)));
    EXPECT_FALSE(ctx.drawImage(Rect::make(0, 0, 1, 1), nullptr));
    ctx.translateCTM(1, 2);
    ctx.saveGState();
    ctx.scaleCTM(2, 2);
    ctx.restoreGState();
    EXPECT_EQ(ctx.getCTM(), AffineTransform::translation(1, 2));
}
