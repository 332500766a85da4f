#include <gtest/gtest.h>

#include <vector>

#include "core/images/FilledRect.hpp"

using namespace talvo::images;

namespace {

// An RGBA buffer, every pixel transparent, rows padded to `rowBytes`.
struct Rgba {
  Rgba(uint64_t w, uint64_t h, uint64_t rowBytes = 0) : width(w), height(h) {
    bytesPerRow = rowBytes ? rowBytes : w * 4;
    bytes.assign(bytesPerRow * h, 0);
  }
  void setAlpha(uint64_t x, uint64_t y, uint8_t alpha) { bytes[y * bytesPerRow + x * 4 + 3] = alpha; }
  PixelBuffer buffer(AlphaInfo info = AlphaInfo::PremultipliedLast) const {
    PixelBuffer b;
    b.width = width;
    b.height = height;
    b.bytesPerRow = bytesPerRow;
    b.bitsPerPixel = 32;
    b.bitsPerComponent = 8;
    b.alphaInfo = info;
    b.bytes = bytes.data();
    b.length = bytes.size();
    return b;
  }
  uint64_t width, height, bytesPerRow;
  std::vector<uint8_t> bytes;
};

PixelRect Found(const PixelBuffer &buffer) {
  std::optional<PixelRect> rect = FindFilledRect(buffer);
  EXPECT_TRUE(rect.has_value());
  return rect.value_or(PixelRect{99, 99, 99, 99});
}

}  // namespace

TEST(ImageTrimming, WithoutAlphaIsWholeImageAndBytesAreNotRead) {
  for (AlphaInfo info : {AlphaInfo::None, AlphaInfo::NoneSkipFirst}) {
    PixelBuffer b;
    b.width = 12;
    b.height = 7;
    b.bytesPerRow = 48;
    b.bitsPerPixel = 32;
    b.bitsPerComponent = 8;
    b.alphaInfo = info;
    b.bytes = nullptr;  // reading would crash
    EXPECT_EQ(Found(b), (PixelRect{0, 0, 12, 7}));
  }
  EXPECT_FALSE(HasAlpha(AlphaInfo::None));
  EXPECT_FALSE(HasAlpha(AlphaInfo::NoneSkipFirst));
  EXPECT_TRUE(HasAlpha(AlphaInfo::NoneSkipLast));
  EXPECT_TRUE(HasAlpha(AlphaInfo::Only));
}

TEST(ImageTrimming, OpaqueImageIsWholeImage) {
  Rgba image(5, 3);
  for (uint64_t y = 0; y < 3; ++y)
    for (uint64_t x = 0; x < 5; ++x) image.setAlpha(x, y, 255);
  EXPECT_EQ(Found(image.buffer()), (PixelRect{0, 0, 5, 3}));
}

TEST(ImageTrimming, SinglePixelWithAlphaOneIsFilled) {
  Rgba image(10, 10);
  image.setAlpha(6, 4, 1);
  EXPECT_EQ(Found(image.buffer()), (PixelRect{6, 4, 1, 1}));
}

TEST(ImageTrimming, TwoPixelsSpanTheirBoundingBox) {
  Rgba image(12, 10);
  image.setAlpha(2, 7, 200);
  image.setAlpha(9, 3, 200);
  EXPECT_EQ(Found(image.buffer()), (PixelRect{2, 3, 8, 5}));
}

TEST(ImageTrimming, RowsCountFromTheFirstRowOfData) {
  Rgba image(4, 6);
  image.setAlpha(1, 0, 255);
  EXPECT_EQ(Found(image.buffer()), (PixelRect{1, 0, 1, 1}));
  Rgba last(4, 6);
  last.setAlpha(3, 5, 255);
  EXPECT_EQ(Found(last.buffer()), (PixelRect{3, 5, 1, 1}));
}

TEST(ImageTrimming, ColourBytesAreIgnoredAndPaddingBeyondTheRowIsSkipped) {
  // 3 pixels in rows of 20 bytes: the padding holds nonzero junk.
  Rgba image(3, 4, 20);
  for (uint8_t &byte : image.bytes) byte = 0xAB;
  for (uint64_t y = 0; y < 4; ++y)
    for (uint64_t x = 0; x < 3; ++x) image.setAlpha(x, y, 0);
  image.setAlpha(1, 2, 9);
  EXPECT_EQ(Found(image.buffer()), (PixelRect{1, 2, 1, 1}));
}

TEST(ImageTrimming, NoneSkipLastIsScannedOnItsPaddingByte) {
  Rgba image(6, 6);
  image.setAlpha(4, 1, 255);
  image.setAlpha(5, 2, 255);
  EXPECT_EQ(Found(image.buffer(AlphaInfo::NoneSkipLast)), (PixelRect{4, 1, 2, 2}));
}

TEST(ImageTrimming, NothingFilledOrNoAreaGivesEmptyRect) {
  Rgba clear(8, 8);
  EXPECT_EQ(Found(clear.buffer()), PixelRect{});
  Rgba none(0, 5);
  EXPECT_EQ(Found(none.buffer()), PixelRect{});
}

TEST(ImageTrimming, AlphaSlotMustBeTheFourthByte) {
  Rgba image(2, 2);
  PixelBuffer b = image.buffer();
  EXPECT_TRUE(AlphaIsFourthByte(b));
  b.byteOrder = ByteOrder::Big32;
  EXPECT_TRUE(AlphaIsFourthByte(b));
  b.byteOrder = ByteOrder::Little32;  // ABGR in memory
  EXPECT_FALSE(AlphaIsFourthByte(b));
  EXPECT_FALSE(FindFilledRect(b).has_value());

  b.alphaInfo = AlphaInfo::PremultipliedFirst;  // BGRA in memory
  EXPECT_TRUE(AlphaIsFourthByte(b));
  b.byteOrder = ByteOrder::Default;  // ARGB in memory
  EXPECT_FALSE(AlphaIsFourthByte(b));

  PixelBuffer wide = image.buffer();
  wide.bitsPerComponent = 16;
  wide.bitsPerPixel = 64;
  EXPECT_FALSE(FindFilledRect(wide).has_value());
  PixelBuffer alphaOnly = image.buffer(AlphaInfo::Only);
  alphaOnly.bitsPerPixel = 8;
  EXPECT_FALSE(FindFilledRect(alphaOnly).has_value());
}

TEST(ImageTrimming, ShortDataIsRefusedNotOverread) {
  Rgba image(4, 3);
  PixelBuffer b = image.buffer();
  b.length -= 1;  // the last alpha byte is missing
  EXPECT_FALSE(FindFilledRect(b).has_value());
  b.length += 1;
  EXPECT_TRUE(FindFilledRect(b).has_value());
  b.bytesPerRow = 15;  // narrower than the pixels
  EXPECT_FALSE(FindFilledRect(b).has_value());
  b = image.buffer();
  b.bytes = nullptr;
  EXPECT_FALSE(FindFilledRect(b).has_value());

  // A last row shorter than the others is fine while its pixels are there.
  Rgba padded(2, 2, 12);
  padded.setAlpha(1, 1, 5);
  PixelBuffer tight = padded.buffer();
  tight.length = 12 + 8;
  EXPECT_EQ(Found(tight), (PixelRect{1, 1, 1, 1}));
}
