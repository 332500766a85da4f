// Bitmap targets: the bytes that land in the caller's buffer for each
// supported layout, and snapshots taken from it.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "platform/CoreGraphics/engine/BitmapTarget.hpp"

using namespace talvo::quartz;

namespace {

uint32_t info(AlphaInfo a, uint32_t order = kByteOrderDefault) { return static_cast<uint32_t>(a) | order; }

bool hostIsLittle() {
    uint16_t v = 1;
    uint8_t b;
    std::memcpy(&b, &v, 1);
    return b == 1;
}

// Fills the whole bitmap with (1, 0.5, 0) at alpha 0.5 using Copy.
void paintHalfOrange(const std::shared_ptr<BitmapTarget>& t) {
    auto ctx = makeBitmapContext(t);
    ctx->setBlendMode(BlendMode::Copy);
    ctx->setFillColor(Color::rgb(1, 0.5, 0, 0.5));
    ASSERT_TRUE(ctx->fillRect(Rect::make(0, 0, double(t->width()), double(t->height()))));
}

void expectBytes(const uint8_t* p, std::initializer_list<int> want, const char* what) {
    int i = 0;
    for (int w : want) {
        EXPECT_NEAR(p[i], w, 1) << what << " byte " << i;
        ++i;
    }
}

}  // namespace

TEST(QuartzBitmapLayouts, RGBABigEndianHoldsPremultipliedRGBA) {
    std::vector<uint8_t> buf(2 * 2 * 4, 0);
    auto t = BitmapTarget::create(buf.data(), 2, 2, 8, 8, ColorModel::RGB, info(AlphaInfo::PremultipliedLast, kByteOrder32Big));
    ASSERT_TRUE(t);
    paintHalfOrange(t);
    expectBytes(&buf[0], {128, 64, 0, 128}, "RGBA");
    expectBytes(&buf[12], {128, 64, 0, 128}, "RGBA last pixel");
}

TEST(QuartzBitmapLayouts, BGRALittlePremultipliedFirst) {
    std::vector<uint8_t> buf(2 * 2 * 4, 0);
    auto t = BitmapTarget::create(buf.data(), 2, 2, 8, 8, ColorModel::RGB,
                                  info(AlphaInfo::PremultipliedFirst, kByteOrder32Little));
    ASSERT_TRUE(t);
    EXPECT_EQ(t->drawsDirectly(), hostIsLittle());
    paintHalfOrange(t);
    expectBytes(&buf[0], {0, 64, 128, 128}, "BGRA");
}

TEST(QuartzBitmapLayouts, ARGBBigEndianAndSkippedAlpha) {
    std::vector<uint8_t> argb(4, 0), rgbx(4, 0), xbgr(4, 0);
    auto a = BitmapTarget::create(argb.data(), 1, 1, 8, 4, ColorModel::RGB, info(AlphaInfo::PremultipliedFirst));
    auto b = BitmapTarget::create(rgbx.data(), 1, 1, 8, 4, ColorModel::RGB, info(AlphaInfo::NoneSkipLast));
    auto c = BitmapTarget::create(xbgr.data(), 1, 1, 8, 4, ColorModel::RGB,
                                  info(AlphaInfo::NoneSkipLast, kByteOrder32Little));
    ASSERT_TRUE(a && b && c);
    paintHalfOrange(a);
    a->flush();
    expectBytes(argb.data(), {128, 128, 64, 0}, "ARGB");
    // Without alpha the target stays opaque: half orange over black.
    for (auto& t : {b, c}) {
        auto ctx = makeBitmapContext(t);
        ctx->fillRect(Rect::make(0, 0, 1, 1));  // opaque black first
        ctx->setFillColor(Color::rgb(1, 0.5, 0, 0.5));
        ctx->fillRect(Rect::make(0, 0, 1, 1));
        t->flush();
    }
    expectBytes(rgbx.data(), {128, 64, 0, 255}, "RGBX");
    expectBytes(xbgr.data(), {255, 0, 64, 128}, "XBGR");
}

TEST(QuartzBitmapLayouts, GrayAndAlphaOnly) {
    std::vector<uint8_t> gray(4 * 2, 0), alpha(4 * 2, 0);
    auto g = BitmapTarget::create(gray.data(), 4, 2, 8, 4, ColorModel::Gray, info(AlphaInfo::None));
    auto a = BitmapTarget::create(alpha.data(), 4, 2, 8, 4, ColorModel::RGB, info(AlphaInfo::Only));
    ASSERT_TRUE(g && a);
    for (auto& t : {g, a}) {
        auto ctx = makeBitmapContext(t);
        ctx->setFillColor(Color::gray(1, 0.5));
        ctx->fillRect(Rect::make(0, 0, 2, 1));  // the bottom row, left half
        t->flush();
    }
    EXPECT_NEAR(gray[4], 128, 1);  // half white over black
    EXPECT_EQ(gray[6], 0);
    EXPECT_EQ(gray[0], 0);
    EXPECT_NEAR(alpha[4], 128, 1);
    EXPECT_EQ(alpha[0], 0);
}

TEST(QuartzBitmapLayouts, UnsupportedLayoutsAreRefused) {
    std::vector<uint8_t> buf(256, 0);
    EXPECT_FALSE(BitmapTarget::create(buf.data(), 2, 2, 16, 16, ColorModel::RGB, info(AlphaInfo::PremultipliedLast)));
    EXPECT_FALSE(BitmapTarget::create(buf.data(), 2, 2, 8, 8, ColorModel::RGB, info(AlphaInfo::Last)));
    EXPECT_FALSE(BitmapTarget::create(buf.data(), 2, 2, 8, 8, ColorModel::RGB, info(AlphaInfo::None)));
    EXPECT_FALSE(BitmapTarget::create(buf.data(), 2, 2, 8, 4, ColorModel::Gray, info(AlphaInfo::PremultipliedLast)));
    EXPECT_FALSE(BitmapTarget::create(buf.data(), 2, 2, 8, 4, ColorModel::RGB, info(AlphaInfo::PremultipliedLast)));
    EXPECT_FALSE(BitmapTarget::create(buf.data(), 0, 2, 8, 8, ColorModel::RGB, info(AlphaInfo::PremultipliedLast)));
}

// --- Buffer synchronisation ----------------------------------------------------

TEST(QuartzBitmapSync, DrawingKeepsWhatTheBufferAlreadyHeld) {
    // Padded rows; the existing contents must survive a partial fill.
    const size_t stride = 4 * 3 + 4;
    std::vector<uint8_t> buf(stride * 2, 0);
    for (size_t i = 0; i < 4; ++i) buf[i] = 0xFF;  // top-left opaque white
    buf[12] = 0xAB;                               // padding byte
    auto t = BitmapTarget::create(buf.data(), 3, 2, 8, stride, ColorModel::RGB, info(AlphaInfo::PremultipliedLast));
    ASSERT_TRUE(t);
    auto ctx = makeBitmapContext(t);
    ctx->setFillColor(Color::rgb(0, 0, 1));
    ctx->fillRect(Rect::make(2, 0, 1, 1));  // bottom-right
    expectBytes(&buf[0], {255, 255, 255, 255}, "kept");
    expectBytes(&buf[stride + 8], {0, 0, 255, 255}, "drawn");
    EXPECT_EQ(buf[12], 0xAB);

    // A direct write between operations is seen by the next one.
    std::memset(&buf[stride], 0xFF, 4);  // bottom-left white
    ctx->setBlendMode(BlendMode::Multiply);
    ctx->setFillColor(Color::rgb(1, 0, 0));
    ctx->fillRect(Rect::make(0, 0, 1, 1));
    expectBytes(&buf[stride], {255, 0, 0, 255}, "multiplied over the direct write");
}

TEST(QuartzBitmapSync, OwnedBufferAndSnapshot) {
    auto t = BitmapTarget::create(nullptr, 3, 2, 8, 0, ColorModel::RGB, info(AlphaInfo::PremultipliedLast));
    ASSERT_TRUE(t);
    EXPECT_EQ(t->bytesPerRow(), 12u);
    auto ctx = makeBitmapContext(t);
    ctx->setFillColor(Color::rgb(0, 1, 0));
    ctx->fillRect(Rect::make(0, 1, 1, 1));  // top-left pixel
    ImageRef snap = ImageRef::adopt(t->createImage());
    ASSERT_TRUE(snap);
    EXPECT_EQ(snap->width(), 3u);
    EXPECT_EQ(snap->height(), 2u);
    EXPECT_EQ(snap->bitmapInfo(), info(AlphaInfo::PremultipliedLast));
    expectBytes(snap->data(), {0, 255, 0, 255}, "snapshot top-left");

    // Later drawing does not reach the snapshot.
    ctx->setFillColor(Color::rgb(1, 0, 0));
    ctx->fillRect(Rect::make(0, 0, 3, 2));
    expectBytes(snap->data(), {0, 255, 0, 255}, "snapshot unchanged");

    // Drawing the snapshot back reproduces it, upright.
    auto t2 = BitmapTarget::create(nullptr, 3, 2, 8, 0, ColorModel::RGB, info(AlphaInfo::PremultipliedLast));
    auto ctx2 = makeBitmapContext(t2);
    ctx2->drawImage(Rect::make(0, 0, 3, 2), snap.get());
    EXPECT_EQ(std::memcmp(t2->data(), snap->data(), 24), 0);
}

TEST(QuartzBitmapSync, GraySnapshotIsAGrayImage) {
    auto t = BitmapTarget::create(nullptr, 2, 1, 8, 0, ColorModel::Gray, info(AlphaInfo::None));
    ASSERT_TRUE(t);
    auto ctx = makeBitmapContext(t);
    ctx->setFillColor(Color::gray(1));
    ctx->fillRect(Rect::make(1, 0, 1, 1));
    ImageRef snap = ImageRef::adopt(t->createImage());
    ASSERT_TRUE(snap);
    EXPECT_EQ(snap->colorModel(), ColorModel::Gray);
    EXPECT_EQ(snap->bitsPerPixel(), 8u);
    EXPECT_EQ(snap->data()[0], 0);
    EXPECT_EQ(snap->data()[1], 255);
}

// --- Where the pixels go, per layout ---------------------------------------------

TEST(QuartzBitmapModes, CairoLayoutsAndRGBADrawInPlaceOthersThroughAScratch) {
    if (!hostIsLittle()) GTEST_SKIP() << "modes below are the little-endian ones";
    std::vector<uint8_t> buf(4 * 4 * 4 + 1, 0);
    auto mode = [&](uint32_t bitmapInfo, size_t stride = 16, void* data = nullptr) {
        auto t = BitmapTarget::create(data ? data : buf.data(), 4, 4, 8, stride, ColorModel::RGB, bitmapInfo);
        return t ? t->mode() : BitmapTarget::Mode::Scratch;
    };
    EXPECT_EQ(mode(info(AlphaInfo::PremultipliedFirst, kByteOrder32Little)), BitmapTarget::Mode::Direct);
    EXPECT_EQ(mode(info(AlphaInfo::NoneSkipFirst, kByteOrder32Little)), BitmapTarget::Mode::Direct);
    EXPECT_EQ(mode(info(AlphaInfo::PremultipliedLast)), BitmapTarget::Mode::Swapped);
    EXPECT_EQ(mode(info(AlphaInfo::PremultipliedLast, kByteOrder32Big)), BitmapTarget::Mode::Swapped);
    EXPECT_EQ(mode(info(AlphaInfo::NoneSkipLast)), BitmapTarget::Mode::Swapped);
    EXPECT_EQ(mode(info(AlphaInfo::PremultipliedFirst)), BitmapTarget::Mode::Scratch);
    EXPECT_EQ(mode(info(AlphaInfo::PremultipliedLast, kByteOrder32Little)), BitmapTarget::Mode::Scratch);
    // Rows or memory cairo cannot address as 32-bit words.
    EXPECT_EQ(mode(info(AlphaInfo::PremultipliedLast), 16, buf.data() + 1), BitmapTarget::Mode::Scratch);
}

TEST(QuartzBitmapModes, OversizedBuffersAreRefusedWithoutAllocating) {
    std::vector<uint8_t> one(16, 0);
    uint32_t rgba = info(AlphaInfo::PremultipliedLast);
    EXPECT_FALSE(BitmapTarget::create(one.data(), 40000, 1, 8, 160000, ColorModel::RGB, rgba));
    // 32767 a side is allowed by cairo, but not 4 GiB of pixels.
    EXPECT_FALSE(BitmapTarget::create(nullptr, 32767, 32767, 8, 0, ColorModel::RGB, rgba));
    // A row length whose product with the height wraps around 2^64.
    EXPECT_FALSE(BitmapTarget::create(one.data(), 1, 3, 8, (size_t(1) << 63) + 8, ColorModel::RGB, rgba));
}

// The same scene in BGRA (cairo's own layout) and in RGBA (drawn with red
// and blue swapped) must give the same pixels, blend modes that treat red
// and blue differently included.
TEST(QuartzBitmapModes, SwappedRGBAMatchesBGRAForColoursImagesGradientsAndBlendModes) {
    const size_t side = 8;
    std::vector<uint8_t> bgra(side * side * 4, 0), rgba(side * side * 4, 0);
    auto direct = BitmapTarget::create(bgra.data(), side, side, 8, side * 4, ColorModel::RGB,
                                       info(AlphaInfo::PremultipliedFirst, kByteOrder32Little));
    auto swapped = BitmapTarget::create(rgba.data(), side, side, 8, side * 4, ColorModel::RGB,
                                        info(AlphaInfo::PremultipliedLast));
    ASSERT_TRUE(direct && swapped);
    if (!hostIsLittle() || direct->mode() != BitmapTarget::Mode::Direct) GTEST_SKIP();
    ASSERT_EQ(swapped->mode(), BitmapTarget::Mode::Swapped);
    // A 2x1 RGBA image: pure red, pure blue.
    const uint8_t px[8] = {255, 0, 0, 255, 0, 0, 255, 255};
    PixelFormat f;
    f.width = 2;
    f.height = 1;
    f.bytesPerRow = 8;
    ImageRef image = ImageRef::adopt(Image::create(f, px, sizeof px));
    ASSERT_TRUE(image);
    GradientStop stops[2] = {{0, Color::rgb(1, 0, 0)}, {1, Color::rgb(0, 0.2, 1, 0.5)}};
    for (auto& t : {direct, swapped}) {
        auto ctx = makeBitmapContext(t);
        ctx->setFillColor(Color::rgb(0.9, 0.3, 0.1));
        ctx->fillRect(Rect::make(0, 0, 8, 4));
        ctx->drawImage(Rect::make(0, 4, 8, 2), image.get());
        ctx->drawLinearGradient(stops, 2, {0, 6}, {8, 8}, false, false);
        ctx->setBlendMode(BlendMode::Luminosity);
        ctx->setFillColor(Color::rgb(0.1, 0.2, 0.95));
        ctx->fillRect(Rect::make(0, 0, 4, 8));
        ctx->setBlendMode(BlendMode::Multiply);
        ctx->setFillColor(Color::rgb(0.2, 0.9, 0.6));
        ctx->fillRect(Rect::make(2, 2, 4, 4));
        t->flush();
    }
    for (size_t i = 0; i < side * side; ++i) {
        const uint8_t* b = &bgra[4 * i];
        const uint8_t* r = &rgba[4 * i];
        ASSERT_NEAR(r[0], b[2], 1) << "red of pixel " << i;
        ASSERT_NEAR(r[1], b[1], 1) << "green of pixel " << i;
        ASSERT_NEAR(r[2], b[0], 1) << "blue of pixel " << i;
        ASSERT_EQ(r[3], b[3]) << "alpha of pixel " << i;
    }
}

// --- Scratch layouts: converted lazily, only where drawn -------------------------

TEST(QuartzBitmapSync, ScratchLayoutsWriteOnlyTouchedRowsAndOnlyOnFlush) {
    const size_t w = 4, h = 6, stride = 16;
    std::vector<uint8_t> buf(stride * h, 0);
    // ARGB in memory order: not a layout cairo draws into.
    auto t = BitmapTarget::create(buf.data(), w, h, 8, stride, ColorModel::RGB, info(AlphaInfo::PremultipliedFirst));
    ASSERT_TRUE(t);
    ASSERT_EQ(t->mode(), BitmapTarget::Mode::Scratch);
    auto ctx = makeBitmapContext(t);
    ctx->setFillColor(Color::rgb(0, 1, 0));
    ctx->fillRect(Rect::make(0, 5, 4, 1));  // the top row (y up)
    EXPECT_EQ(buf[0], 0) << "no conversion per operation";
    // A row nobody drew: a conversion of the whole buffer would overwrite it.
    std::memset(&buf[4 * stride], 0x7F, stride);
    t->flush();
    expectBytes(&buf[0], {255, 0, 255, 0}, "top row converted");
    expectBytes(&buf[12], {255, 0, 255, 0}, "top row, last pixel");
    EXPECT_EQ(buf[4 * stride], 0x7F) << "an untouched row stays as the caller left it";
    EXPECT_EQ(buf[stride], 0) << "the row below the fill is not touched";

    // Snapshots flush first.
    ctx->setFillColor(Color::rgb(0, 0, 1));
    ctx->fillRect(Rect::make(0, 0, 1, 1));  // bottom-left
    ImageRef snap = ImageRef::adopt(t->createImage());
    ASSERT_TRUE(snap);
    expectBytes(snap->data() + 5 * stride, {255, 0, 0, 255}, "snapshot bottom-left");
    expectBytes(&buf[5 * stride], {255, 0, 0, 255}, "buffer bottom-left");
}

TEST(QuartzBitmapSync, ExposedMemoryIsReadBackBeforeTheNextDrawing) {
    const size_t stride = 8;
    std::vector<uint8_t> buf(stride * 2, 0);
    auto t = BitmapTarget::create(buf.data(), 2, 2, 8, stride, ColorModel::RGB,
                                  info(AlphaInfo::PremultipliedLast, kByteOrder32Little));  // ABGR
    ASSERT_TRUE(t);
    ASSERT_EQ(t->mode(), BitmapTarget::Mode::Scratch);
    auto ctx = makeBitmapContext(t);
    ctx->setFillColor(Color::rgb(1, 0, 0));
    ctx->fillRect(Rect::make(1, 1, 1, 1));  // top-right red, not yet flushed
    t->flush();
    t->exposeMemory();
    // The caller paints the bottom-left pixel white by hand.
    const uint8_t white[4] = {255, 255, 255, 255};
    std::memcpy(&buf[stride], white, 4);
    ctx->setBlendMode(BlendMode::Multiply);
    ctx->setFillColor(Color::rgb(0, 1, 0));
    ctx->fillRect(Rect::make(0, 0, 1, 1));
    t->flush();
    expectBytes(&buf[stride], {255, 0, 255, 0}, "green multiplied over the caller's white");
    expectBytes(&buf[4], {255, 0, 0, 255}, "earlier drawing kept");
}

TEST(QuartzBitmapSync, ForeignDrawingOnRGBASeesAndReturnsTrueColours) {
    std::vector<uint8_t> buf(2 * 1 * 4, 0);
    auto t = BitmapTarget::create(buf.data(), 2, 1, 8, 8, ColorModel::RGB, info(AlphaInfo::PremultipliedLast));
    ASSERT_TRUE(t);
    buf[0] = 255, buf[3] = 255;  // left pixel red, written by hand
    cairo_surface_t* s = t->beginForeignDrawing();
    ASSERT_TRUE(s);
    ASSERT_EQ(cairo_image_surface_get_format(s), CAIRO_FORMAT_ARGB32);
    cairo_surface_flush(s);
    uint32_t left;
    std::memcpy(&left, cairo_image_surface_get_data(s), 4);
    EXPECT_EQ(left, 0xFFFF0000u) << "AppKit sees red as cairo's red";
    cairo_t* cr = cairo_create(s);
    cairo_set_source_rgb(cr, 0, 0, 1);
    cairo_rectangle(cr, 1, 0, 1, 1);
    cairo_fill(cr);
    cairo_destroy(cr);
    t->flush();  // what GetData does while AppKit draws
    expectBytes(&buf[4], {0, 0, 255, 255}, "AppKit's blue in RGBA order");
    t->endForeignDrawing();
    expectBytes(&buf[0], {255, 0, 0, 255}, "left pixel kept");
}
