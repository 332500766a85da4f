#import <Talvo/NSBitmapImageRep+Trim.h>
#import <Talvo/NSImage+Trim.h>
#import <Talvo/VXImageTrimming.h>

#include "images/ImageTestSupport.h"

using namespace imagetest;

namespace {

// Releases a CGImage when the test ends, however it ends.
struct ImageHolder {
  explicit ImageHolder(CGImageRef i) : image(i) {}
  ~ImageHolder() { CGImageRelease(image); }
  ImageHolder(const ImageHolder &) = delete;
  ImageHolder &operator=(const ImageHolder &) = delete;
  operator CGImageRef() const { return image; }
  CGImageRef image;
};

}  // namespace

using ImageFilledRect = PooledTest;

TEST_F(ImageFilledRect, QuartzDrawingIsFoundInTopDownPixelRows) {
  // A rectangle drawn y-up at rows 2..6 from the bottom of a 10-pixel-high
  // bitmap lies at rows 3..7 from the top.
  CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
  CGContextRef context = CGBitmapContextCreate(NULL, 20, 10, 8, 80, space,
                                               kCGImageAlphaPremultipliedLast);
  CGColorSpaceRelease(space);
  CGContextSetRGBFillColor(context, 0, 0, 1, 1);
  CGContextFillRect(context, CGRectMake(3, 2, 4, 5));
  ImageHolder image(CGBitmapContextCreateImage(context));
  CGContextRelease(context);
  EXPECT_CGRECT_EQ(VXGetFilledRect(image), 3, 3, 4, 5);
}

TEST_F(ImageFilledRect, BoundsOfFilledPixelsAnyNonzeroAlphaCounts) {
  ImageHolder two(NewRGBAImage(12, 10, {{2, 7, kRed}, {9, 3, kRed}}));
  EXPECT_CGRECT_EQ(VXGetFilledRect(two), 2, 3, 8, 5);

  ImageHolder faint(NewRGBAImage(10, 10, {{6, 4, {1, 0, 0, 1}}}));
  EXPECT_CGRECT_EQ(VXGetFilledRect(faint), 6, 4, 1, 1);

  ImageHolder topRow(NewRGBAImage(6, 6, {{5, 0, kGreen}}));
  EXPECT_CGRECT_EQ(VXGetFilledRect(topRow), 5, 0, 1, 1);

  ImageHolder opaque(NewRGBAImageWithBlocks(7, 3, {{0, 0, 7, 3, kBlue}}));
  EXPECT_CGRECT_EQ(VXGetFilledRect(opaque), 0, 0, 7, 3);
}

TEST_F(ImageFilledRect, ImagesWithoutAlphaAreWholeAndTrimToTheirExtent) {
  std::vector<uint8_t> zeros(8 * 5 * 4, 0);
  for (CGBitmapInfo info : {CGBitmapInfo(kCGImageAlphaNoneSkipFirst),
                            CGBitmapInfo(kCGImageAlphaNoneSkipFirst | kCGBitmapByteOrder32Little)}) {
    ImageHolder image(NewImage(zeros, 8, 5, 8, 32, 32, info));
    ASSERT_NE(image.image, nullptr);
    EXPECT_CGRECT_EQ(VXGetFilledRect(image), 0, 0, 8, 5);
    ImageHolder trimmed(VXCreateImageByTrimmingImage(image));
    ASSERT_NE(trimmed.image, nullptr);
    EXPECT_EQ(CGImageGetWidth(trimmed), 8u);
    EXPECT_EQ(CGImageGetHeight(trimmed), 5u);
  }
  std::vector<uint8_t> rgb(8 * 5 * 3, 0);
  ImageHolder none(NewImage(rgb, 8, 5, 8, 24, 24, kCGImageAlphaNone));
  ASSERT_NE(none.image, nullptr);
  EXPECT_CGRECT_EQ(VXGetFilledRect(none), 0, 0, 8, 5);
}

TEST_F(ImageFilledRect, NoneSkipLastIsScannedOnItsPaddingByte) {
  std::vector<uint8_t> bytes(6 * 4 * 4, 0xFF);
  for (size_t i = 3; i < bytes.size(); i += 4) bytes[i] = 0;  // padding 0: transparent
  bytes[(1 * 6 + 2) * 4 + 3] = 7;
  bytes[(3 * 6 + 4) * 4 + 3] = 7;
  ImageHolder image(NewImage(bytes, 6, 4, 8, 32, 24, kCGImageAlphaNoneSkipLast));
  EXPECT_CGRECT_EQ(VXGetFilledRect(image), 2, 1, 3, 3);
}

TEST_F(ImageFilledRect, LittleEndianAlphaFirstIsReadOnItsAlphaByte) {
  // BGRA in memory: the fourth byte is the alpha.
  std::vector<uint8_t> bytes(5 * 5 * 4, 0);
  uint8_t *p = &bytes[(4 * 5 + 1) * 4];
  p[0] = 255, p[3] = 255;
  ImageHolder image(NewImage(bytes, 5, 5, 8, 32, 20,
                             kCGImageAlphaPremultipliedFirst | kCGBitmapByteOrder32Little));
  EXPECT_CGRECT_EQ(VXGetFilledRect(image), 1, 4, 1, 1);
}

TEST_F(ImageFilledRect, OtherLayoutsAreConvertedNotMisread) {
  // ARGB in memory, not premultiplied: a transparent pixel whose blue (the
  // fourth byte) is 255 must not count.
  std::vector<uint8_t> argb(6 * 3 * 4, 0);
  argb[3] = 255;  // pixel (0, 0): A = 0, B = 255
  uint8_t *filled = &argb[(2 * 6 + 4) * 4];
  filled[0] = 255, filled[1] = 255;  // pixel (4, 2): opaque red
  ImageHolder alphaFirst(NewImage(argb, 6, 3, 8, 32, 24, kCGImageAlphaFirst));
  ASSERT_NE(alphaFirst.image, nullptr);
  EXPECT_CGRECT_EQ(VXGetFilledRect(alphaFirst), 4, 2, 1, 1);

  // 16 bits per component, big-endian samples: alpha in bytes 6 and 7.
  std::vector<uint8_t> wide(4 * 5 * 8, 0);
  uint8_t *w = &wide[(3 * 4 + 1) * 8];
  w[0] = w[1] = w[6] = w[7] = 0xFF;
  ImageHolder sixteen(NewImage(wide, 4, 5, 16, 64, 32,
                               kCGImageAlphaPremultipliedLast | kCGBitmapByteOrder16Big));
  ASSERT_NE(sixteen.image, nullptr);
  EXPECT_CGRECT_EQ(VXGetFilledRect(sixteen), 1, 3, 1, 1);

  // One alpha byte per pixel: a stride of 1 would read past each row.
  std::vector<uint8_t> alpha(7 * 3, 0);
  alpha[1 * 7 + 5] = 200;
  ImageHolder alphaOnly(NewImage(alpha, 7, 3, 8, 8, 7, kCGImageAlphaOnly));
  ASSERT_NE(alphaOnly.image, nullptr);
  EXPECT_CGRECT_EQ(VXGetFilledRect(alphaOnly), 5, 1, 1, 1);
}

TEST_F(ImageFilledRect, NothingFilledGivesEmptyRectAndNoTrimmedImage) {
  ImageHolder clear(NewRGBAImage(9, 4, {}));
  EXPECT_CGRECT_EQ(VXGetFilledRect(clear), 0, 0, 0, 0);
  EXPECT_EQ(VXCreateImageByTrimmingImage(clear), nullptr);
  EXPECT_CGRECT_EQ(VXGetFilledRect(nullptr), 0, 0, 0, 0);
  EXPECT_EQ(VXCreateImageByTrimmingImage(nullptr), nullptr);
}

TEST_F(ImageFilledRect, TrimmedImageHoldsTheFilledPixels) {
  ImageHolder image(NewRGBAImageWithBlocks(16, 12, {{3, 2, 5, 4, kRed}, {7, 5, 1, 1, kBlue}}));
  ImageHolder trimmed(VXCreateImageByTrimmingImage(image));
  ASSERT_NE(trimmed.image, nullptr);
  EXPECT_EQ(CGImageGetWidth(trimmed), 5u);
  EXPECT_EQ(CGImageGetHeight(trimmed), 4u);
  EXPECT_EQ(ImagePixel(trimmed, 0, 0), kRed);
  EXPECT_EQ(ImagePixel(trimmed, 4, 3), kBlue);
  // The source is untouched and still owned once by the holder.
  EXPECT_EQ(CGImageGetWidth(image), 16u);
}

using ImageTrimRep = ImageTest;

TEST_F(ImageTrimRep, BitmapRepIsCroppedAndReceiverUnchanged) {
  Owned<NSBitmapImageRep> rep(NewRep(30, 20));
  DrawIntoRep(rep, ^{
    [[NSColor colorWithDeviceRed:0 green:1 blue:0 alpha:1] set];
    NSRectFill(NSMakeRect(4, 3, 6, 5));  // y up: rows 12..16 from the top
  });
  NSBitmapImageRep *trimmed = [rep.get() bitmapImageRepByTrimmingTransparentPixels];
  ASSERT_NE(trimmed, nil);
  EXPECT_NE(trimmed, rep.get());
  EXPECT_EQ([trimmed pixelsWide], 6);
  EXPECT_EQ([trimmed pixelsHigh], 5);
  EXPECT_EQ(RepPixel(trimmed, 0, 0), kGreen);
  EXPECT_EQ(RepPixel(trimmed, 5, 4), kGreen);
  EXPECT_EQ([rep.get() pixelsWide], 30);
  EXPECT_EQ(RepPixel(rep, 4, 12), kGreen);
  EXPECT_EQ(RepPixel(rep, 4, 11), kClear);

  Owned<NSBitmapImageRep> empty(NewRep(8, 8));
  EXPECT_EQ([empty.get() bitmapImageRepByTrimmingTransparentPixels], nil);
}

TEST_F(ImageTrimRep, ImageKeepsItsSizeAndEachRepGetsItsOwnRect) {
  Owned<NSImage> image([[NSImage alloc] initWithSize:NSMakeSize(15, 10)]);
  ImageHolder oneX(NewRGBAImageWithBlocks(15, 10, {{1, 1, 3, 2, kRed}}));
  ImageHolder twoX(NewRGBAImageWithBlocks(30, 20, {{10, 4, 8, 12, kBlue}}));
  ImageHolder clear(NewRGBAImage(15, 10, {}));
  for (CGImageRef cg : {oneX.image, clear.image, twoX.image}) {
    Owned<NSBitmapImageRep> rep([[NSBitmapImageRep alloc] initWithCGImage:cg]);
    [rep.get() setSize:NSMakeSize(15, 10)];
    [image.get() addRepresentation:rep];
  }

  NSImage *trimmed = [image.get() imageByTrimmingTransparentPixels];
  EXPECT_NE(trimmed, image.get());
  EXPECT_EQ([trimmed size].width, 15);
  EXPECT_EQ([trimmed size].height, 10);
  NSArray *reps = [trimmed representations];
  ASSERT_EQ([reps count], 2u);  // the clear one is left out
  NSBitmapImageRep *first = [reps objectAtIndex:0];
  NSBitmapImageRep *second = [reps objectAtIndex:1];
  EXPECT_EQ([first pixelsWide], 3);
  EXPECT_EQ([first pixelsHigh], 2);
  EXPECT_EQ(RepPixel(first, 0, 0), kRed);
  EXPECT_EQ([second pixelsWide], 8);
  EXPECT_EQ([second pixelsHigh], 12);
  EXPECT_EQ(RepPixel(second, 7, 11), kBlue);
  EXPECT_EQ([[image.get() representations] count], 3u);
}

TEST_F(ImageTrimRep, RepsThatAreNotBitmapsAreRenderedFirst) {
  Owned<NSImage> image([[NSImage alloc] initWithSize:NSMakeSize(20, 16)]);
  [image.get() lockFocus];
  [[NSColor colorWithDeviceRed:1 green:0 blue:0 alpha:1] set];
  NSRectFill(NSMakeRect(5, 2, 4, 3));  // y up: rows 11..13 from the top
  [image.get() unlockFocus];
  ASSERT_GT([[image.get() representations] count], 0u);
  ASSERT_FALSE(
      [[[image.get() representations] objectAtIndex:0] isKindOfClass:[NSBitmapImageRep class]]);

  NSImage *trimmed = [image.get() imageByTrimmingTransparentPixels];
  ASSERT_EQ([[trimmed representations] count], 1u);
  NSBitmapImageRep *rep = [[trimmed representations] objectAtIndex:0];
  ASSERT_TRUE([rep isKindOfClass:[NSBitmapImageRep class]]);
  EXPECT_EQ([rep pixelsWide], 4);
  EXPECT_EQ([rep pixelsHigh], 3);
  EXPECT_EQ(RepPixel(rep, 3, 2), kRed);
}

TEST_F(ImageTrimRep, ImageWithoutRepsGivesEmptyImageOfSameSize) {
  Owned<NSImage> image([[NSImage alloc] initWithSize:NSMakeSize(32, 24)]);
  NSImage *trimmed = [image.get() imageByTrimmingTransparentPixels];
  ASSERT_NE(trimmed, nil);
  EXPECT_EQ([trimmed size].width, 32);
  EXPECT_EQ([trimmed size].height, 24);
  EXPECT_EQ([[trimmed representations] count], 0u);
}
