// Quartz images of 8-bit, 32-bit pixels (the bitmaps drawing makes) decoded
// to cairo's ARGB32 over whole rows: every pixel from its own bytes, rows
// from their own start, premultiplied colour held to its alpha, and red and
// blue swapped on request.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "platform/CoreGraphics/engine/Image.hpp"

using namespace talvo::quartz;

namespace {

ImageRef Make(size_t w, size_t h, uint32_t info, size_t bytesPerRow,
                            const std::vector<uint8_t>& bytes) {
    PixelFormat f;
    f.width = w;
    f.height = h;
    f.bitsPerComponent = 8;
    f.bitsPerPixel = 32;
    f.bytesPerRow = bytesPerRow;
    f.model = ColorModel::RGB;
    f.bitmapInfo = info;
    return ImageRef::adopt(Image::create(f, bytes.data(), bytes.size()));
}

uint32_t Argb(const Image* img, int x, int y, bool swap = false) {
    cairo_surface_t* s = img->cairoSurface(swap);
    uint32_t v;
    std::memcpy(&v, cairo_image_surface_get_data(s) + y * cairo_image_surface_get_stride(s) + 4 * x,
                            4);
    return v;
}

}  // namespace

TEST(QuartzImageRows, EveryPixelOfPaddedRowsInBothByteOrders) {
    // 3 x 2 pixels, rows 16 bytes apart (4 bytes of padding filled with junk).
    // Pixel (x, y) has red 10x + y, green 100 + x, blue 200 + y, alpha 255.
    std::vector<uint8_t> rgba(32, 0xEE), bgra(32, 0xEE);
    for (int y = 0; y < 2; ++y) {
        for (int x = 0; x < 3; ++x) {
            uint8_t r = uint8_t(10 * x + y), g = uint8_t(100 + x), b = uint8_t(200 + y);
            uint8_t* p = &rgba[y * 16 + x * 4];
            p[0] = r, p[1] = g, p[2] = b, p[3] = 255;
            uint8_t* q = &bgra[y * 16 + x * 4];
            q[0] = b, q[1] = g, q[2] = r, q[3] = 255;
        }
    }
    ImageRef last = Make(3, 2, uint32_t(AlphaInfo::PremultipliedLast), 16, rgba);
    ImageRef little =
            Make(3, 2, uint32_t(AlphaInfo::PremultipliedFirst) | kByteOrder32Little, 16, bgra);
    ASSERT_TRUE(last);
    ASSERT_TRUE(little);
    for (int y = 0; y < 2; ++y) {
        for (int x = 0; x < 3; ++x) {
            uint32_t r = 10 * x + y, g = 100 + x, b = 200 + y;
            uint32_t expected = 0xFF000000u | (r << 16) | (g << 8) | b;
            EXPECT_EQ(Argb(last.get(), x, y), expected) << x << "," << y;
            EXPECT_EQ(Argb(little.get(), x, y), expected) << x << "," << y;
            EXPECT_EQ(Argb(last.get(), x, y, true), 0xFF000000u | (b << 16) | (g << 8) | r)
                    << x << "," << y;
        }
    }
}

TEST(QuartzImageRows, ColourIsHeldToAlphaOrPremultiplied) {
    // Two pixels: premultiplied with colour above its alpha (held to it), and
    // straight alpha (multiplied in, rounded).
    ImageRef held = Make(2, 1, uint32_t(AlphaInfo::PremultipliedLast), 8,
                                              {0xFF, 0x10, 0x90, 0x80, 0x00, 0x00, 0x00, 0x00});
    ImageRef straight =
            Make(2, 1, uint32_t(AlphaInfo::Last), 8, {0xFF, 0x10, 0x90, 0x80, 0x40, 0x40, 0x40, 0x00});
    ASSERT_TRUE(held);
    ASSERT_TRUE(straight);
    EXPECT_EQ(Argb(held.get(), 0, 0), 0x80801080u);
    EXPECT_EQ(Argb(held.get(), 1, 0), 0x00000000u);
    // 0xFF * 0x80 / 255 = 0x80; 0x10 * 0x80 / 255 = 8.03 -> 8; 0x90 * 0x80 / 255 = 72.3 -> 0x48.
    EXPECT_EQ(Argb(straight.get(), 0, 0), 0x80800848u);
    EXPECT_EQ(Argb(straight.get(), 1, 0), 0x00000000u);
}
