// The decoders behind the header reader: exact pixels where the format is
// lossless (premultiplied, rows top-down), GIF frames composed with their
// disposal, refusal of cut or oversized input.
#include <gtest/gtest.h>

#include "platform/ImageIO/engine/ImageDecoder.hpp"
#include "tests/engines/ImageHeaderFixtures.hpp"

namespace fx = imagefixtures;
using talvo::imageio::DecodedImage;
using talvo::imageio::DecodeImage;
using talvo::imageio::DecodeLimits;

namespace {

struct Pixel {
  int r, g, b, a;
  bool operator==(const Pixel &o) const { return r == o.r && g == o.g && b == o.b && a == o.a; }
};
std::ostream &operator<<(std::ostream &out, const Pixel &p) {
  return out << "(" << p.r << "," << p.g << "," << p.b << "," << p.a << ")";
}

Pixel At(const DecodedImage &image, uint32_t x, uint32_t y) {
  const uint8_t *p = &image.rgba[(size_t(y) * image.width + x) * 4];
  return {p[0], p[1], p[2], p[3]};
}

DecodedImage Decode(const fx::Bytes &bytes, size_t index = 0) {
  DecodedImage image;
  EXPECT_TRUE(DecodeImage(bytes.data(), bytes.size(), index, &image));
  return image;
}

// A picture whose top row differs from the rest, to catch flipped rows.
fx::Picture TopRowGreen(uint32_t width, uint32_t height) {
  fx::Picture p = fx::SplitPicture(width, height);
  for (uint32_t x = 0; x < width; x++) {
    uint8_t *px = p.at(x, 0);
    px[0] = 0, px[1] = 255, px[2] = 0, px[3] = 255;
  }
  return p;
}

}  // namespace

TEST(ImageHeaderDecode, LosslessFormatsGivePremultipliedPixelsTopRowFirst) {
  fx::Picture picture = TopRowGreen(8, 4);
  const Pixel green{0, 255, 0, 255}, red{255, 0, 0, 255}, halfBlue{0, 0, 128, 128};
  struct Case {
    const char *name;
    fx::Bytes bytes;
    bool alpha;
  } cases[] = {
      {"png", fx::PNG(picture), true},
      {"bmp bottom-up", fx::BMP(picture, 32), true},
      {"bmp top-down", fx::BMP(picture, 32, true), true},
      {"tiff II", fx::TIFF(picture), true},
      {"tiff MM", fx::TIFF(picture, true), true},
      {"webp lossless", fx::WebPLossless(picture), true},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.name);
    DecodedImage image = Decode(c.bytes);
    ASSERT_EQ(image.width, 8u);
    ASSERT_EQ(image.height, 4u);
    EXPECT_EQ(image.hasAlpha, c.alpha);
    EXPECT_EQ(At(image, 6, 0), green);
    EXPECT_EQ(At(image, 1, 3), red);
    EXPECT_EQ(At(image, 6, 3), halfBlue);
  }
  // 24-bit BMP and RGB PNG are opaque.
  DecodedImage bmp = Decode(fx::BMP(picture, 24));
  EXPECT_FALSE(bmp.hasAlpha);
  EXPECT_EQ(At(bmp, 6, 3), (Pixel{0, 0, 255, 255}));
  EXPECT_FALSE(Decode(fx::PNG(picture, false)).hasAlpha);
}

TEST(ImageHeaderDecode, LossyFormatsCloseToTheSource) {
  fx::Picture picture = fx::SolidPicture(16, 16, 200, 40, 40);
  for (const fx::Bytes &bytes :
       {fx::JPEG(picture), fx::JPEG(picture, 6, 72, true), fx::WebPLossy(picture, false)}) {
    DecodedImage image = Decode(bytes);
    ASSERT_EQ(image.width, 16u);
    Pixel p = At(image, 8, 8);
    EXPECT_NEAR(p.r, 200, 6);
    EXPECT_NEAR(p.g, 40, 6);
    EXPECT_NEAR(p.b, 40, 6);
    EXPECT_EQ(p.a, 255);
    EXPECT_FALSE(image.hasAlpha);
  }
}

TEST(ImageHeaderDecode, GIFFramesComposedWithDisposal) {
  // Frame 0 fills the 4x2 screen green; frame 1 draws red at (0,0) and is
  // disposed to background; frame 2 draws blue at (3,1) with index 3
  // transparent elsewhere and is restored to previous; frame 3 draws
  // nothing visible.
  fx::GIFFrame full{0, 0, 4, 2, std::vector<uint8_t>(8, 1)};
  fx::GIFFrame red{0, 0, 1, 1, {0}, -1, DISPOSE_BACKGROUND};
  fx::GIFFrame blue{2, 0, 2, 2, {3, 3, 3, 2}, 3, DISPOSE_PREVIOUS};
  fx::GIFFrame clear{0, 0, 1, 1, {3}, 3};
  fx::Bytes gif = fx::GIF(4, 2, {full, red, blue, clear});
  const Pixel kGreen{0, 255, 0, 255}, kRed{255, 0, 0, 255}, kBlue{0, 0, 255, 255},
      kClear{0, 0, 0, 0};
  DecodedImage f0 = Decode(gif, 0), f1 = Decode(gif, 1), f2 = Decode(gif, 2), f3 = Decode(gif, 3);
  EXPECT_EQ(At(f0, 0, 0), kGreen);
  EXPECT_EQ(At(f1, 0, 0), kRed);
  EXPECT_EQ(At(f2, 0, 0), kClear);  // frame 1 disposed to background
  EXPECT_EQ(At(f2, 3, 1), kBlue);
  EXPECT_EQ(At(f2, 2, 0), kGreen);  // transparent index leaves what was there
  EXPECT_EQ(At(f3, 3, 1), kGreen);  // frame 2 restored to previous
  EXPECT_TRUE(f3.hasAlpha);
  DecodedImage none;
  EXPECT_FALSE(DecodeImage(gif.data(), gif.size(), 4, &none));
  // An interlaced frame comes out in row order.
  std::vector<uint8_t> rows;
  for (int y = 0; y < 9; y++) rows.push_back(uint8_t(y % 3));
  DecodedImage interlaced = Decode(fx::GIF(1, 9, {{0, 0, 1, 9, rows, -1, 0, true}}));
  EXPECT_EQ(At(interlaced, 0, 4), kGreen);
  EXPECT_EQ(At(interlaced, 0, 5), kBlue);
}

TEST(ImageHeaderDecode, TIFFClaimingAssociatedAlphaStaysPremultiplied) {
  // Straight pixels declared as premultiplied: (0, 0, 255) at alpha 128.
  DecodedImage image = Decode(fx::TIFF(fx::SplitPicture(4, 2), false, 1, 0, 0, true));
  EXPECT_EQ(At(image, 3, 1), (Pixel{0, 0, 128, 128}));
  EXPECT_EQ(At(image, 0, 0), (Pixel{255, 0, 0, 255}));
}

TEST(ImageHeaderDecode, TIFFPagesAndSingleImageFormatsByIndex) {
  fx::Picture picture = fx::SplitPicture(4, 4);
  fx::Bytes tiff = fx::TIFF(picture, false, 2);
  EXPECT_EQ(Decode(tiff, 1).width, 4u);
  DecodedImage image;
  EXPECT_FALSE(DecodeImage(tiff.data(), tiff.size(), 2, &image));
  fx::Bytes png = fx::PNG(picture);
  EXPECT_FALSE(DecodeImage(png.data(), png.size(), 1, &image));
  EXPECT_TRUE(image.rgba.empty());
}

TEST(ImageHeaderDecode, CutCorruptAndOversizedInputRefused) {
  fx::Picture picture = fx::SplitPicture(16, 16);
  DecodedImage image;
  for (const fx::Bytes &whole :
       {fx::PNG(picture), fx::GIF(16, 16, {{0, 0, 16, 16, std::vector<uint8_t>(256, 2)}}),
        fx::BMP(picture, 24), fx::TIFF(picture), fx::WebPLossless(picture)}) {
    fx::Bytes half(whole.begin(), whole.begin() + long(whole.size() / 2));
    EXPECT_FALSE(DecodeImage(half.data(), half.size(), 0, &image));
    EXPECT_EQ(image.width, 0u);
  }
  // A JPEG cut after its header gives an image of the stated size, as
  // other decoders do; cut inside the header gives none.
  fx::Bytes jpeg = fx::JPEG(picture);
  size_t scan = 2;
  while (scan + 1 < jpeg.size() && !(jpeg[scan] == 0xFF && jpeg[scan + 1] == 0xDA)) scan++;
  fx::Bytes cut(jpeg.begin(), jpeg.begin() + long(scan + 20));
  EXPECT_TRUE(DecodeImage(cut.data(), cut.size(), 0, &image));
  EXPECT_EQ(image.width, 16u);
  EXPECT_FALSE(DecodeImage(jpeg.data(), 20, 0, &image));
  // A header stating 60000 x 60000 pixels is refused before any allocation.
  fx::Bytes huge = fx::PNG(picture);
  huge[18] = 0xEA, huge[19] = 0x60, huge[22] = 0xEA, huge[23] = 0x60;
  EXPECT_FALSE(DecodeImage(huge.data(), huge.size(), 0, &image));
  DecodeLimits tight;
  tight.maxPixels = 255;
  fx::Bytes bytes = fx::BMP(picture, 24);
  EXPECT_FALSE(DecodeImage(bytes.data(), bytes.size(), 0, &image, tight));
  const uint8_t text[] = "GIF89a but not really";
  EXPECT_FALSE(DecodeImage(text, sizeof text, 0, &image));
}

TEST(ImageHeaderDecode, EveryPrefixDecodedWithinBounds) {
  fx::Picture picture = fx::SplitPicture(5, 3);
  for (const fx::Bytes &whole :
       {fx::PNG(picture), fx::JPEG(picture, 6),
        fx::GIF(5, 3, {{0, 0, 5, 3, std::vector<uint8_t>(15, 1), 1}}), fx::BMP(picture, 32),
        fx::TIFF(picture, true), fx::WebPLossy(picture, true)}) {
    for (size_t n = 1; n < whole.size(); n++) {
      std::vector<uint8_t> prefix(whole.begin(), whole.begin() + long(n));
      DecodedImage image;
      if (DecodeImage(prefix.data(), n, 0, &image)) {
        EXPECT_EQ(image.rgba.size(), size_t(image.width) * image.height * 4);
      }
    }
  }
}
