// Quartz images: reference counting, sample layouts decoded to cairo's
// premultiplied ARGB32, mask coverage, and sub-images.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "platform/CoreGraphics/engine/Image.hpp"

using namespace talvo::quartz;

namespace {

PixelFormat format(size_t w, size_t h, size_t bpc, size_t bpp, ColorModel model, uint32_t info,
                   size_t bytesPerRow = 0) {
    PixelFormat f;
    f.width = w;
    f.height = h;
    f.bitsPerComponent = bpc;
    f.bitsPerPixel = bpp;
    f.bytesPerRow = bytesPerRow ? bytesPerRow : (w * bpp + 7) / 8;
    f.model = model;
    f.bitmapInfo = info;
    return f;
}

uint32_t info(AlphaInfo a, uint32_t order = kByteOrderDefault) { return static_cast<uint32_t>(a) | order; }

// Pixel (x, y from the top) of the cached ARGB32 surface as 0xAARRGGBB.
uint32_t argb(const Image* img, int x, int y) {
    cairo_surface_t* s = img->cairoSurface();
    uint32_t v;
    std::memcpy(&v, cairo_image_surface_get_data(s) + y * cairo_image_surface_get_stride(s) + 4 * x, 4);
    return v;
}

int coverage(const Image* img, int x, int y) {
    cairo_surface_t* s = img->maskSurface();
    return cairo_image_surface_get_data(s)[y * cairo_image_surface_get_stride(s) + x];
}

}  // namespace

// --- Reference counting --------------------------------------------------------

TEST(QuartzImageRefs, RetainAndReleaseCount) {
    uint8_t px[4] = {1, 2, 3, 255};
    Image* img = Image::create(format(1, 1, 8, 32, ColorModel::RGB, info(AlphaInfo::Last)), px, 4);
    ASSERT_NE(img, nullptr);
    EXPECT_EQ(img->retainCount(), 1);
    EXPECT_EQ(img->retain(), img);
    EXPECT_EQ(img->retainCount(), 2);
    img->release();
    EXPECT_EQ(img->retainCount(), 1);
    {
        ImageRef a = ImageRef::retain(img);
        ImageRef b = a;
        EXPECT_EQ(img->retainCount(), 3);
        ImageRef c = std::move(b);
        EXPECT_EQ(img->retainCount(), 3);
    }
    EXPECT_EQ(img->retainCount(), 1);
    img->release();
}

TEST(QuartzImageRefs, ImageCopiesItsBytes) {
    uint8_t px[4] = {10, 20, 30, 255};
    ImageRef img = ImageRef::adopt(Image::create(format(1, 1, 8, 32, ColorModel::RGB, info(AlphaInfo::Last)), px, 4));
    px[0] = 99;
    EXPECT_EQ(img->data()[0], 10);
    EXPECT_EQ(argb(img.get(), 0, 0), 0xFF0A141Eu);
}

// --- Layouts -------------------------------------------------------------------

TEST(QuartzImageLayouts, EightBitRGBVariants) {
    struct Case {
        const char* name;
        uint32_t info;
        size_t bpp;
        std::vector<uint8_t> bytes;
        uint32_t expected;
    };
    // Red 0xC0, green 0x40, blue 0x00; alpha 0x80 where present.
    std::vector<Case> cases = {
        {"RGBA premultiplied", info(AlphaInfo::PremultipliedLast), 32, {0x60, 0x20, 0x00, 0x80}, 0x80602000},
        {"RGBA straight", info(AlphaInfo::Last), 32, {0xC0, 0x40, 0x00, 0x80}, 0x80602000},
        {"ARGB straight", info(AlphaInfo::First), 32, {0x80, 0xC0, 0x40, 0x00}, 0x80602000},
        {"BGRA little premultiplied first", info(AlphaInfo::PremultipliedFirst, kByteOrder32Little), 32,
         {0x00, 0x20, 0x60, 0x80}, 0x80602000},
        {"ABGR little premultiplied last", info(AlphaInfo::PremultipliedLast, kByteOrder32Little), 32,
         {0x80, 0x00, 0x20, 0x60}, 0x80602000},
        {"RGBX", info(AlphaInfo::NoneSkipLast), 32, {0xC0, 0x40, 0x00, 0x77}, 0xFFC04000},
        {"XRGB big", info(AlphaInfo::NoneSkipFirst, kByteOrder32Big), 32, {0x77, 0xC0, 0x40, 0x00}, 0xFFC04000},
        {"RGB 24", info(AlphaInfo::None), 24, {0xC0, 0x40, 0x00}, 0xFFC04000},
    };
    for (const Case& c : cases) {
        ImageRef img = ImageRef::adopt(
            Image::create(format(1, 1, 8, c.bpp, ColorModel::RGB, c.info), c.bytes.data(), c.bytes.size()));
        ASSERT_TRUE(img) << c.name;
        EXPECT_EQ(argb(img.get(), 0, 0), c.expected) << c.name;
    }
}

TEST(QuartzImageLayouts, SixteenBitSamplesAreNarrowed) {
    // Opaque RGBA, 16 bits per sample: R = 0xFFFF, G = 0x8000, B = 0x0000.
    uint8_t big[8] = {0xFF, 0xFF, 0x80, 0x00, 0x00, 0x00, 0xFF, 0xFF};
    uint8_t little[8] = {0xFF, 0xFF, 0x00, 0x80, 0x00, 0x00, 0xFF, 0xFF};
    ImageRef a = ImageRef::adopt(Image::create(format(1, 1, 16, 64, ColorModel::RGB, info(AlphaInfo::Last)), big, 8));
    ImageRef b = ImageRef::adopt(Image::create(
        format(1, 1, 16, 64, ColorModel::RGB, info(AlphaInfo::Last, kByteOrder16Little)), little, 8));
    ASSERT_TRUE(a && b);
    EXPECT_EQ(argb(a.get(), 0, 0), 0xFFFF8000u);
    EXPECT_EQ(argb(b.get(), 0, 0), 0xFFFF8000u);
}

TEST(QuartzImageLayouts, GrayDepthsAndGrayWithAlpha) {
    uint8_t oneBit[1] = {0xA0};  // 1 0 1 0
    ImageRef g1 = ImageRef::adopt(Image::create(format(4, 1, 1, 1, ColorModel::Gray, info(AlphaInfo::None)), oneBit, 1));
    ASSERT_TRUE(g1);
    EXPECT_EQ(argb(g1.get(), 0, 0), 0xFFFFFFFFu);
    EXPECT_EQ(argb(g1.get(), 1, 0), 0xFF000000u);
    EXPECT_EQ(argb(g1.get(), 2, 0), 0xFFFFFFFFu);

    uint8_t fourBit[1] = {0x5F};
    ImageRef g4 = ImageRef::adopt(Image::create(format(2, 1, 4, 4, ColorModel::Gray, info(AlphaInfo::None)), fourBit, 1));
    ASSERT_TRUE(g4);
    EXPECT_EQ(argb(g4.get(), 0, 0), 0xFF555555u);
    EXPECT_EQ(argb(g4.get(), 1, 0), 0xFFFFFFFFu);

    uint8_t ga[2] = {0xFF, 0x80};  // white at half alpha, straight
    ImageRef gA = ImageRef::adopt(Image::create(format(1, 1, 8, 16, ColorModel::Gray, info(AlphaInfo::Last)), ga, 2));
    ASSERT_TRUE(gA);
    EXPECT_EQ(argb(gA.get(), 0, 0), 0x80808080u);
}

TEST(QuartzImageLayouts, RowsHonourBytesPerRowPadding) {
    // Two rows of one RGBA pixel, 8 bytes apart; top row red, bottom blue.
    uint8_t px[12] = {0xFF, 0, 0, 0xFF, 0xEE, 0xEE, 0xEE, 0xEE, 0, 0, 0xFF, 0xFF};
    ImageRef img = ImageRef::adopt(
        Image::create(format(1, 2, 8, 32, ColorModel::RGB, info(AlphaInfo::Last), 8), px, sizeof px));
    ASSERT_TRUE(img);
    EXPECT_EQ(argb(img.get(), 0, 0), 0xFFFF0000u);
    EXPECT_EQ(argb(img.get(), 0, 1), 0xFF0000FFu);
}

TEST(QuartzImageLayouts, UnsupportedLayoutsAreRefused) {
    uint8_t px[64] = {};
    EXPECT_EQ(Image::create(format(1, 1, 8, 32, ColorModel::RGB, info(AlphaInfo::Last) | kFloatComponents), px, 64), nullptr);
    EXPECT_EQ(Image::create(format(1, 1, 5, 16, ColorModel::RGB, info(AlphaInfo::NoneSkipFirst)), px, 64), nullptr);
    EXPECT_EQ(Image::create(format(1, 1, 8, 24, ColorModel::RGB, info(AlphaInfo::Last)), px, 64), nullptr);  // no room
    EXPECT_EQ(Image::create(format(4, 1, 8, 32, ColorModel::RGB, info(AlphaInfo::Last), 8), px, 64), nullptr);
    EXPECT_EQ(Image::create(format(4, 4, 8, 32, ColorModel::RGB, info(AlphaInfo::Last)), px, 20), nullptr);  // short
    EXPECT_EQ(Image::create(format(1, 1, 8, 32, ColorModel::RGB, info(AlphaInfo::Last)), nullptr, 4), nullptr);
    EXPECT_EQ(Image::create(format(0, 1, 8, 32, ColorModel::RGB, info(AlphaInfo::Last)), px, 64), nullptr);
    EXPECT_EQ(Image::createMask(1, 1, 16, 16, 2, px, 64), nullptr);
}

// --- Masks ---------------------------------------------------------------------

TEST(QuartzImageMasks, CoverageSensePerKindOfImage) {
    uint8_t bits[1] = {0x40};  // 0 1 0 0: only the second sample keeps paint out
    ImageRef mask = ImageRef::adopt(Image::createMask(4, 1, 1, 1, 1, bits, 1));
    ASSERT_TRUE(mask);
    EXPECT_TRUE(mask->isMask());
    EXPECT_EQ(coverage(mask.get(), 0, 0), 255);
    EXPECT_EQ(coverage(mask.get(), 1, 0), 0);

    uint8_t levels[2] = {0x00, 0xFF};
    ImageRef gray = ImageRef::adopt(Image::create(format(2, 1, 8, 8, ColorModel::Gray, info(AlphaInfo::None)), levels, 2));
    EXPECT_EQ(coverage(gray.get(), 0, 0), 0);
    EXPECT_EQ(coverage(gray.get(), 1, 0), 255);

    uint8_t rgba[8] = {0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0x40};
    ImageRef alpha = ImageRef::adopt(Image::create(format(2, 1, 8, 32, ColorModel::RGB, info(AlphaInfo::Last)), rgba, 8));
    EXPECT_EQ(coverage(alpha.get(), 0, 0), 255);  // alpha, not colour
    EXPECT_EQ(coverage(alpha.get(), 1, 0), 0x40);
}

// --- Sub-images ----------------------------------------------------------------

namespace {

// 4x3 RGBA where pixel (x, y from the top) is R = 10 x, G = 10 y.
ImageRef gridImage() {
    std::vector<uint8_t> px;
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 4; ++x) px.insert(px.end(), {uint8_t(10 * x), uint8_t(10 * y), 0, 255});
    return ImageRef::adopt(Image::create(format(4, 3, 8, 32, ColorModel::RGB, info(AlphaInfo::Last)), px.data(), px.size()));
}

}  // namespace

TEST(QuartzImageSub, RectIsMeasuredFromTheTopLeft) {
    ImageRef grid = gridImage();
    ImageRef sub = ImageRef::adopt(grid->createWithImageInRect(Rect::make(1, 0, 2, 2)));
    ASSERT_TRUE(sub);
    EXPECT_EQ(sub->width(), 2u);
    EXPECT_EQ(sub->height(), 2u);
    EXPECT_EQ(sub->bitmapInfo(), grid->bitmapInfo());
    EXPECT_EQ(sub->data()[0], 10);  // pixel (1, 0)
    EXPECT_EQ(sub->data()[1], 0);
    EXPECT_EQ(argb(sub.get(), 1, 1), 0xFF140A00u);  // pixel (2, 1)
}

TEST(QuartzImageSub, RectIsRoundedOutAndClipped) {
    ImageRef grid = gridImage();
    ImageRef clipped = ImageRef::adopt(grid->createWithImageInRect(Rect::make(3, 2, 5, 5)));
    ASSERT_TRUE(clipped);
    EXPECT_EQ(clipped->width(), 1u);
    EXPECT_EQ(clipped->height(), 1u);
    EXPECT_EQ(argb(clipped.get(), 0, 0), 0xFF1E1400u);
    ImageRef rounded = ImageRef::adopt(grid->createWithImageInRect(Rect::make(0.5, 0.5, 1, 1)));
    ASSERT_TRUE(rounded);
    EXPECT_EQ(rounded->width(), 2u);
    EXPECT_EQ(rounded->height(), 2u);
    EXPECT_EQ(grid->createWithImageInRect(Rect::make(10, 10, 2, 2)), nullptr);
    EXPECT_EQ(grid->createWithImageInRect(Rect::make(1, 1, 0, 2)), nullptr);
    EXPECT_EQ(grid->retainCount(), 1);  // sub-images do not hold their parent
}

TEST(QuartzImageSub, SubByteMaskRowsAreRepacked) {
    uint8_t bits[2] = {0x0F, 0xF0};  // two rows of 8 one-bit samples
    ImageRef mask = ImageRef::adopt(Image::createMask(8, 2, 1, 1, 1, bits, 2));
    ImageRef sub = ImageRef::adopt(mask->createWithImageInRect(Rect::make(3, 0, 3, 2)));
    ASSERT_TRUE(sub);
    EXPECT_TRUE(sub->isMask());
    EXPECT_EQ(sub->bytesPerRow(), 1u);
    EXPECT_EQ(sub->data()[0], 0x60);  // samples 3, 4, 5 of 00001111: 0 1 1
    EXPECT_EQ(sub->data()[1], 0x80);  // of 11110000: 1 0 0
    EXPECT_EQ(coverage(sub.get(), 0, 0), 255);
    EXPECT_EQ(coverage(sub.get(), 1, 0), 0);
}
