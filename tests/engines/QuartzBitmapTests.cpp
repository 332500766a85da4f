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
    expectBytes(argb.data(), {128, 128, 64, 0}, "ARGB");
    // Without alpha the target stays opaque: half orange over black.
    for (auto& t : {b, c}) {
        auto ctx = makeBitmapContext(t);
        ctx->fillRect(Rect::make(0, 0, 1, 1));  // opaque black first
        ctx->setFillColor(Color::rgb(1, 0.5, 0, 0.5));
        ctx->fillRect(Rect::make(0, 0, 1, 1));
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
