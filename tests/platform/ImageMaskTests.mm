// Image masks made over the 32-bit pixels of an offscreen image: each
// pixel's grey level decides, with Quartz's polarity (black paints, white
// keeps paint out), through CGContextClipToMask and CGContextDrawImage.

#import <AppKit/AppKit.h>
#include <CoreGraphics/CoreGraphics.h>

#import "GraphicsTestSupport.h"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

namespace {

// A 4 x 1 offscreen image, left to right: black, white, 50 % grey, red;
// all opaque (the way a drawing block that first fills white leaves them).
CGImageRef NewSourceImage() {
  CGContextRef context = NewRGBAContext(4, 1);
  const CGFloat levels[4][3] = {{0, 0, 0}, {1, 1, 1}, {0.5, 0.5, 0.5}, {1, 0, 0}};
  for (int x = 0; x < 4; x++) {
    CGContextSetRGBFillColor(context, levels[x][0], levels[x][1], levels[x][2], 1);
    CGContextFillRect(context, CGRectMake(x, 0, 1, 1));
  }
  CGImageRef image = CGBitmapContextCreateImage(context);
  CGContextRelease(context);
  return image;
}

// A mask over the very pixels of `image`, as the gradient drawer makes it.
CGImageRef NewMaskOver(CGImageRef image) {
  return CGImageMaskCreate(CGImageGetWidth(image), CGImageGetHeight(image),
                           CGImageGetBitsPerComponent(image), CGImageGetBitsPerPixel(image),
                           CGImageGetBytesPerRow(image), CGImageGetDataProvider(image), NULL,
                           false);
}

TEST(ImageMask, RGBAPixelsAreAcceptedAsAMask) {
  CGImageRef source = NewSourceImage();
  ASSERT_TRUE(source != NULL);
  EXPECT_EQ(CGImageGetBitsPerPixel(source), 32u);
  CGImageRef mask = NewMaskOver(source);
  ASSERT_TRUE(mask != NULL);
  EXPECT_TRUE(CGImageIsMask(mask));
  EXPECT_EQ(CGImageGetWidth(mask), 4u);
  EXPECT_EQ(CGImageGetHeight(mask), 1u);
  CGImageRelease(mask);
  CGImageRelease(source);
}

TEST(ImageMask, ClipToMaskPaintsWhereTheSourceIsDark) {
  CGImageRef source = NewSourceImage();
  CGImageRef mask = NewMaskOver(source);
  ASSERT_TRUE(mask != NULL);
  // Scaled up 10x so that each mask pixel covers a block of the target.
  CGContextRef target = NewRGBAContext(40, 10);
  CGContextSetRGBFillColor(target, 1, 1, 1, 1);
  CGContextFillRect(target, CGRectMake(0, 0, 40, 10));
  CGContextSaveGState(target);
  CGContextClipToMask(target, CGRectMake(0, 0, 40, 10), mask);
  CGContextSetRGBFillColor(target, 0, 0, 1, 1);
  CGContextFillRect(target, CGRectMake(0, 0, 40, 10));
  CGContextRestoreGState(target);
  EXPECT_PIXEL(RGBAPixel(target, 5, 5), 0, 0, 255, 255);      // black: paint goes through
  EXPECT_PIXEL(RGBAPixel(target, 15, 5), 255, 255, 255, 255);  // white: kept out
  EXPECT_PIXEL_NEAR(RGBAPixel(target, 25, 5), 4, 127, 127, 255, 255);  // grey: half
  // Red's grey level (luminance 0.299) lets 70 % of the paint through.
  EXPECT_PIXEL_NEAR(RGBAPixel(target, 35, 5), 6, 76, 76, 255, 255);
  // The clip ended with the restore.
  CGContextSetRGBFillColor(target, 0, 1, 0, 1);
  CGContextFillRect(target, CGRectMake(10, 0, 10, 10));
  EXPECT_PIXEL(RGBAPixel(target, 15, 5), 0, 255, 0, 255);
  CGContextRelease(target);
  CGImageRelease(mask);
  CGImageRelease(source);
}

TEST(ImageMask, DrawingTheMaskPaintsTheFillColourThroughIt) {
  CGImageRef source = NewSourceImage();
  CGImageRef mask = NewMaskOver(source);
  ASSERT_TRUE(mask != NULL);
  CGContextRef target = NewRGBAContext(4, 1);
  CGContextSetRGBFillColor(target, 1, 0, 0, 1);
  CGContextDrawImage(target, CGRectMake(0, 0, 4, 1), mask);
  EXPECT_PIXEL(RGBAPixel(target, 0, 0), 255, 0, 0, 255);
  EXPECT_PIXEL(RGBAPixel(target, 1, 0), 0, 0, 0, 0);
  EXPECT_PIXEL_NEAR(RGBAPixel(target, 2, 0), 4, 128, 0, 0, 128);
  CGContextRelease(target);
  CGImageRelease(mask);
  CGImageRelease(source);
}

TEST(ImageMask, RowsKeepTheirOrderAndPaddingIsSkipped) {
  // 2 x 2 RGBA with 12-byte rows (4 bytes of padding): top row black,
  // bottom row white. The padding is white and must not shift anything.
  uint8_t bytes[24];
  memset(bytes, 0xff, sizeof bytes);
  for (int i = 0; i < 2; i++) {
    uint8_t *p = bytes + 4 * i;
    p[0] = p[1] = p[2] = 0;
  }
  CGDataProviderRef provider = CGDataProviderCreateWithData(NULL, bytes, sizeof bytes, NULL);
  CGImageRef mask = CGImageMaskCreate(2, 2, 8, 32, 12, provider, NULL, false);
  CGDataProviderRelease(provider);
  ASSERT_TRUE(mask != NULL);
  CGContextRef target = NewRGBAContext(2, 2);
  CGContextClipToMask(target, CGRectMake(0, 0, 2, 2), mask);
  CGContextSetRGBFillColor(target, 0, 0, 0, 1);
  CGContextFillRect(target, CGRectMake(0, 0, 2, 2));
  EXPECT_PIXEL(RGBAPixel(target, 0, 1), 0, 0, 0, 255);  // top row: painted
  EXPECT_PIXEL(RGBAPixel(target, 1, 1), 0, 0, 0, 255);
  EXPECT_PIXEL(RGBAPixel(target, 0, 0), 0, 0, 0, 0);  // bottom row: kept out
  EXPECT_PIXEL(RGBAPixel(target, 1, 0), 0, 0, 0, 0);
  CGContextRelease(target);
  CGImageRelease(mask);
}

TEST(ImageMask, BadLayoutsGiveNull) {
  uint8_t bytes[64] = {};
  CGDataProviderRef provider = CGDataProviderCreateWithData(NULL, bytes, sizeof bytes, NULL);
  // Rows shorter than their pixels, data too short, zero sizes, decode arrays.
  EXPECT_TRUE(CGImageMaskCreate(4, 2, 8, 32, 8, provider, NULL, false) == NULL);
  EXPECT_TRUE(CGImageMaskCreate(4, 5, 8, 32, 16, provider, NULL, false) == NULL);
  EXPECT_TRUE(CGImageMaskCreate(0, 2, 8, 32, 16, provider, NULL, false) == NULL);
  EXPECT_TRUE(CGImageMaskCreate(4, 0, 8, 32, 16, provider, NULL, false) == NULL);
  EXPECT_TRUE(CGImageMaskCreate(SIZE_MAX / 2, 2, 8, 32, 16, provider, NULL, false) == NULL);
  EXPECT_TRUE(CGImageMaskCreate(2, SIZE_MAX / 2, 8, 32, 8, provider, NULL, false) == NULL);
  const CGFloat decode[2] = {1, 0};
  EXPECT_TRUE(CGImageMaskCreate(4, 2, 8, 32, 16, provider, decode, false) == NULL);
  EXPECT_TRUE(CGImageMaskCreate(4, 2, 8, 32, 16, NULL, NULL, false) == NULL);
  // Exactly long enough: the last row needs only its pixels.
  CGImageRef fits = CGImageMaskCreate(4, 4, 8, 32, 16, provider, NULL, false);
  EXPECT_TRUE(fits != NULL);
  CGImageRelease(fits);
  CGDataProviderRelease(provider);
}

}  // namespace
