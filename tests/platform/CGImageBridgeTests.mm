// CGImage <-> NSBitmapImageRep / NSImage: byte order, premultiplication,
// row order and ownership of the pixels, both ways.

#import <AppKit/AppKit.h>

#include <cmath>
#include <cstring>

#import "GraphicsTestSupport.h"
#include "support/TestSupport.h"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

namespace {

// A 2 x 2 CGImage from raw bytes (rows top first); +1.
CGImageRef NewImage(const uint8_t *bytes, size_t bytesPerRow, CGBitmapInfo info,
                    size_t width = 2, size_t height = 2) {
  NSData *data = [NSData dataWithBytes:bytes length:bytesPerRow * height];
  CGDataProviderRef provider = CGDataProviderCreateWithCFData((CFDataRef)data);
  CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
  CGImageRef image = CGImageCreate(width, height, 8, 32, bytesPerRow, space, info, provider, NULL,
                                   false, kCGRenderingIntentDefault);
  CGColorSpaceRelease(space);
  CGDataProviderRelease(provider);
  return image;
}

// The four bytes of pixel (x, row from the top) of a meshed 8-bit rep.
Pixel RepBytes(NSBitmapImageRep *rep, int x, int row) {
  const uint8_t *p = [rep bitmapData] + row * [rep bytesPerRow] + x * 4;
  return Pixel{p[0], p[1], p[2], p[3]};
}

class CGImageBridge : public PooledTest {};

TEST_F(CGImageBridge, RepFromImage_PremultipliesAndReordersEveryLayout) {
  // Rows top first: red 50% | green opaque / blue 25% | transparent.
  // Non-premultiplied RGBA.
  const uint8_t straight[] = {200, 100, 50, 128, 0, 255, 0, 255,  //
                              0, 0, 255, 64, 0, 0, 0, 0};
  // Premultiplied BGRA in memory (32-bit little-endian ARGB).
  const uint8_t bgra[] = {25, 50, 100, 128, 0, 255, 0, 255,  //
                          64, 0, 0, 64, 0, 0, 0, 0};
  // No alpha, a skipped byte last: every pixel opaque.
  const uint8_t skip[] = {10, 20, 30, 0, 40, 50, 60, 7,  //
                          70, 80, 90, 1, 100, 110, 120, 255};
  struct Case {
    const char *name;
    const uint8_t *bytes;
    CGBitmapInfo info;
    Pixel expect[4];  // premultiplied RGBA, rows top first
  } cases[] = {
      {"straight RGBA", straight, kCGImageAlphaLast,
       {{100, 50, 25, 128}, {0, 255, 0, 255}, {0, 0, 64, 64}, {0, 0, 0, 0}}},
      {"premultiplied BGRA", bgra, kCGImageAlphaPremultipliedFirst | kCGBitmapByteOrder32Little,
       {{100, 50, 25, 128}, {0, 255, 0, 255}, {0, 0, 64, 64}, {0, 0, 0, 0}}},
      {"RGBX", skip, kCGImageAlphaNoneSkipLast,
       {{10, 20, 30, 255}, {40, 50, 60, 255}, {70, 80, 90, 255}, {100, 110, 120, 255}}},
  };
  for (const Case &c : cases) {
    CGImageRef image = NewImage(c.bytes, 8, c.info);
    ASSERT_TRUE(image != NULL) << c.name;
    Owned<NSBitmapImageRep> rep([[NSBitmapImageRep alloc] initWithCGImage:image]);
    CGImageRelease(image);
    ASSERT_TRUE(rep.get()) << c.name;
    EXPECT_EQ([rep.get() pixelsWide], 2) << c.name;
    EXPECT_EQ([rep.get() samplesPerPixel], 4) << c.name;
    EXPECT_EQ([rep.get() bitmapFormat] & NSAlphaNonpremultipliedBitmapFormat, 0u) << c.name;
    EXPECT_EQ([rep.get() bitmapFormat] & NSAlphaFirstBitmapFormat, 0u) << c.name;
    for (int i = 0; i < 4; i++) {
      EXPECT_TRUE(PixelNear(RepBytes(rep, i % 2, i / 2), c.expect[i], 0))
          << c.name << " pixel " << i;
    }
  }
}

TEST_F(CGImageBridge, ImageFromRep_KeepsBytesAndOutlivesTheRep) {
  const uint8_t premultiplied[] = {100, 50, 25, 128, 0, 255, 0, 255,  //
                                   0, 0, 64, 64, 0, 0, 0, 0};
  CGImageRef source = NewImage(premultiplied, 8, kCGImageAlphaPremultipliedLast);
  NSBitmapImageRep *rep = [[NSBitmapImageRep alloc] initWithCGImage:source];
  CGImageRelease(source);
  ASSERT_TRUE(rep);
  CGImageRef image = CGImageRetain([rep CGImage]);
  [rep release];  // the image must not point into the rep's memory
  ASSERT_TRUE(image != NULL);
  EXPECT_EQ(CGImageGetAlphaInfo(image), kCGImageAlphaPremultipliedLast);
  EXPECT_EQ(CGImageGetBitmapInfo(image) & kCGBitmapByteOrderMask, 0u);
  CFDataRef data = CGDataProviderCopyData(CGImageGetDataProvider(image));
  ASSERT_TRUE(data != NULL);
  size_t row = CGImageGetBytesPerRow(image);
  const uint8_t *bytes = (const uint8_t *)[(NSData *)data bytes];
  EXPECT_EQ(memcmp(bytes, premultiplied, 8), 0);
  EXPECT_EQ(memcmp(bytes + row, premultiplied + 8, 8), 0);
  CFRelease(data);
  // Drawn into a bitmap context: upright, the same premultiplied values.
  CGContextRef c = NewRGBAContext(2, 2);
  CGContextDrawImage(c, CGRectMake(0, 0, 2, 2), image);
  EXPECT_PIXEL_NEAR(RGBAPixel(c, 0, 1), 0, 100, 50, 25, 128);
  EXPECT_PIXEL_NEAR(RGBAPixel(c, 0, 0), 0, 0, 0, 64, 64);
  CGContextRelease(c);
  CGImageRelease(image);
}

TEST_F(CGImageBridge, ImageFromStraightRep_IsMarkedStraightAndDrawsPremultiplied) {
  Owned<NSBitmapImageRep> rep([[NSBitmapImageRep alloc]
      initWithBitmapDataPlanes:NULL
                    pixelsWide:1
                    pixelsHigh:1
                 bitsPerSample:8
               samplesPerPixel:4
                      hasAlpha:YES
                      isPlanar:NO
                colorSpaceName:NSDeviceRGBColorSpace
                  bitmapFormat:NSAlphaNonpremultipliedBitmapFormat
                   bytesPerRow:4
                  bitsPerPixel:32]);
  const uint8_t straight[] = {200, 100, 50, 128};
  memcpy([rep.get() bitmapData], straight, 4);
  CGImageRef image = [rep.get() CGImage];
  ASSERT_TRUE(image != NULL);
  EXPECT_EQ(CGImageGetAlphaInfo(image), kCGImageAlphaLast);
  CGContextRef c = NewRGBAContext(1, 1);
  CGContextDrawImage(c, CGRectMake(0, 0, 1, 1), image);
  EXPECT_PIXEL_NEAR(RGBAPixel(c, 0, 0), 0, 100, 50, 25, 128);
  CGContextRelease(c);
}

TEST_F(CGImageBridge, NSImageFromImage_SizeInPointsAndPixelsBack) {
  // 4 x 2: top row red, bottom row half-transparent blue.
  uint8_t bytes[32];
  for (int i = 0; i < 4; i++) {
    const uint8_t top[] = {255, 0, 0, 255}, bottom[] = {0, 0, 128, 128};
    memcpy(bytes + i * 4, top, 4);
    memcpy(bytes + 16 + i * 4, bottom, 4);
  }
  CGImageRef cg = NewImage(bytes, 16, kCGImageAlphaPremultipliedLast, 4, 2);
  ASSERT_TRUE(cg != NULL);

  Owned<NSImage> natural([[NSImage alloc] initWithCGImage:cg size:NSZeroSize]);
  ASSERT_TRUE(natural.get());
  EXPECT_TRUE(NSEqualSizes([natural.get() size], NSMakeSize(4, 2)));

  Owned<NSImage> half([[NSImage alloc] initWithCGImage:cg size:NSMakeSize(2, 1)]);
  CGImageRelease(cg);
  ASSERT_TRUE(half.get());
  EXPECT_TRUE(NSEqualSizes([half.get() size], NSMakeSize(2, 1)));
  ASSERT_EQ([[half.get() representations] count], 1u);
  NSBitmapImageRep *rep = [[half.get() representations] objectAtIndex:0];
  EXPECT_EQ([rep pixelsWide], 4);
  EXPECT_EQ([rep pixelsHigh], 2);
  EXPECT_TRUE(NSEqualSizes([rep size], NSMakeSize(2, 1)));

  // Back to a CGImage with no size asked: the pixels themselves.
  CGImageRef back = [half.get() CGImageForProposedRect:NULL context:nil hints:nil];
  ASSERT_TRUE(back != NULL);
  EXPECT_EQ(CGImageGetWidth(back), 4u);
  EXPECT_EQ(CGImageGetHeight(back), 2u);
  CGContextRef c = NewRGBAContext(4, 2);
  CGContextDrawImage(c, CGRectMake(0, 0, 4, 2), back);
  EXPECT_PIXEL_NEAR(RGBAPixel(c, 3, 1), 0, 255, 0, 0, 255);
  EXPECT_PIXEL_NEAR(RGBAPixel(c, 3, 0), 0, 0, 0, 128, 128);
  CGContextRelease(c);

  // Drawn by AppKit at its point size (scaled 2:1 into 8 x 4): upright.
  NSImage *drawn = natural.get();
  Owned<NSBitmapImageRep> shot(NewLockFocusSnapshot(NSMakeSize(8, 4), ^{
    [drawn drawInRect:NSMakeRect(0, 0, 8, 4)
                     fromRect:NSZeroRect
                    operation:NSCompositeSourceOver
                     fraction:1];
  }));
  ASSERT_TRUE(shot.get());
  EXPECT_PIXEL(RepPixel(shot, 4, 3), 255, 0, 0, 255);
  EXPECT_PIXEL(RepPixel(shot, 4, 0), 0, 0, 128, 128);
}

TEST_F(CGImageBridge, BadInput_AnswersNilAndNeverRaises) {
  const uint8_t pixel[] = {1, 2, 3, 255, 1, 2, 3, 255, 1, 2, 3, 255, 1, 2, 3, 255};
  CGImageRef cg = NewImage(pixel, 8, kCGImageAlphaPremultipliedLast);
  const NSSize bad[] = {NSMakeSize(NAN, 2),      NSMakeSize(2, INFINITY), NSMakeSize(-1, 2),
                        NSMakeSize(2, -0.5),     NSMakeSize(0, 3),        NSMakeSize(3, 0),
                        NSMakeSize(-INFINITY, 1)};
  for (NSSize size : bad) {
    NSImage *image = (NSImage *)[NSNull null];
    EXPECT_NO_THROW(image = [[NSImage alloc] initWithCGImage:cg size:size]);
    EXPECT_EQ(image, (NSImage *)nil) << size.width << " x " << size.height;
  }
  CGImageRelease(cg);
  EXPECT_EQ([[NSImage alloc] initWithCGImage:NullOf<CGImageRef>() size:NSZeroSize], (NSImage *)nil);
  EXPECT_EQ([[NSBitmapImageRep alloc] initWithCGImage:NullOf<CGImageRef>()],
            (NSBitmapImageRep *)nil);
  // An image mask has no colours to keep, but still converts without raising.
  const uint8_t maskBits[] = {0x00, 0xff};
  CGDataProviderRef provider = CGDataProviderCreateWithData(NULL, maskBits, 2, NULL);
  CGImageRef mask = CGImageMaskCreate(1, 2, 8, 8, 1, provider, NULL, false);
  CGDataProviderRelease(provider);
  ASSERT_TRUE(mask != NULL);
  NSBitmapImageRep *fromMask = nil;
  EXPECT_NO_THROW(fromMask = [[NSBitmapImageRep alloc] initWithCGImage:mask]);
  [fromMask release];
  CGImageRelease(mask);
}

}  // namespace
