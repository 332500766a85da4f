#import <Talvo/NSImage+Cap.h>
#import <Talvo/NSImage+DrawColor.h>
#import <Talvo/NSImage+FitSize.h>

#include "images/ImageTestSupport.h"

using namespace imagetest;

namespace {

// An image of one bitmap rep made from `cg`, of the rep's pixel size.
NSImage *ImageFromCG(CGImageRef cg) {
  NSBitmapImageRep *rep = [[[NSBitmapImageRep alloc] initWithCGImage:cg] autorelease];
  NSImage *image = [[[NSImage alloc] initWithSize:[rep size]] autorelease];
  [image addRepresentation:rep];
  return image;
}

// 20 x 10: 5 red, 10 green, 5 blue columns.
NSImage *StripedImage() {
  CGImageRef cg = NewRGBAImageWithBlocks(
      20, 10, {{0, 0, 5, 10, kRed}, {5, 0, 10, 10, kGreen}, {15, 0, 5, 10, kBlue}});
  NSImage *image = ImageFromCG(cg);
  CGImageRelease(cg);
  return image;
}

NSImage *BlankImage(CGFloat width, CGFloat height) {
  return [[[NSImage alloc] initWithSize:NSMakeSize(width, height)] autorelease];
}

}  // namespace

using ImageCap = ImageTest;

TEST_F(ImageCap, CapsStayUnscaledAndTheSourceMiddleFillsBetween) {
  NSImage *capped = [StripedImage() imageWithleftCapWidth:5 middleWidth:100 rightCapWidth:5];
  ASSERT_NE(capped, nil);
  EXPECT_EQ([capped size].width, 110);
  EXPECT_EQ([capped size].height, 10);
  Owned<NSBitmapImageRep> pixels(NewRepOfImage(capped, 110, 10));
  for (NSInteger row : {0, 9}) {
    EXPECT_EQ(RepPixel(pixels, 0, row), kRed);
    EXPECT_EQ(RepPixel(pixels, 4, row), kRed);
    EXPECT_EQ(RepPixel(pixels, 5, row), kGreen);
    EXPECT_EQ(RepPixel(pixels, 55, row), kGreen);
    EXPECT_EQ(RepPixel(pixels, 104, row), kGreen);
    EXPECT_EQ(RepPixel(pixels, 105, row), kBlue);
    EXPECT_EQ(RepPixel(pixels, 109, row), kBlue);
  }
}

TEST_F(ImageCap, CapsAsWideAsTheSourceLeaveTheMiddleEmpty) {
  // Left cap: source 0..11 (red, green); right cap: source 12..19 (green, blue).
  NSImage *capped = [StripedImage() imageWithleftCapWidth:12 middleWidth:30 rightCapWidth:8];
  EXPECT_EQ([capped size].width, 50);
  Owned<NSBitmapImageRep> pixels(NewRepOfImage(capped, 50, 10));
  EXPECT_EQ(RepPixel(pixels, 2, 5), kRed);
  EXPECT_EQ(RepPixel(pixels, 11, 5), kGreen);
  EXPECT_EQ(RepPixel(pixels, 12, 5), kClear);
  EXPECT_EQ(RepPixel(pixels, 30, 5), kClear);
  EXPECT_EQ(RepPixel(pixels, 41, 5), kClear);
  EXPECT_EQ(RepPixel(pixels, 42, 5), kGreen);
  EXPECT_EQ(RepPixel(pixels, 44, 5), kGreen);
  EXPECT_EQ(RepPixel(pixels, 45, 5), kBlue);
}

TEST_F(ImageCap, EmptyWidthsDrawNothingAndDoNotFail) {
  // (GNUstep reports the size of an image without area as 0 x 0.)
  NSImage *zero = [StripedImage() imageWithleftCapWidth:0 middleWidth:0 rightCapWidth:0];
  ASSERT_NE(zero, nil);
  EXPECT_EQ([zero size].width, 0);
  NSImage *narrow = [StripedImage() imageWithleftCapWidth:15 middleWidth:-20 rightCapWidth:10];
  ASSERT_NE(narrow, nil);
  EXPECT_EQ([narrow size].width, 5);
  EXPECT_EQ([narrow size].height, 10);
  NSImage *flat = [BlankImage(20, 0) imageWithleftCapWidth:5 middleWidth:10 rightCapWidth:5];
  EXPECT_NE(flat, nil);
}

using ImageFitSize = PooledTest;

TEST_F(ImageFitSize, ScaledSizeTouchesTheTargetOnOneSide) {
  NSSize s = [BlankImage(200, 100) scaledSizeForSize:NSMakeSize(50, 50)];
  EXPECT_EQ(s.width, 50);
  EXPECT_EQ(s.height, 25);
  s = [BlankImage(200, 100) scaledSizeForSize:NSMakeSize(400, 100)];
  EXPECT_EQ(s.width, 200);
  EXPECT_EQ(s.height, 100);
  s = [BlankImage(100, 200) scaledSizeForSize:NSMakeSize(50, 50)];
  EXPECT_EQ(s.width, 25);
  EXPECT_EQ(s.height, 50);
  s = [BlankImage(0, 30) scaledSizeForSize:NSMakeSize(50, 50)];
  EXPECT_EQ(s.width, 0);
  EXPECT_EQ(s.height, 0);
}

TEST_F(ImageFitSize, FitShrinksLargeImagesAndKeepsSmallOnes) {
  NSSize s = [BlankImage(20, 10) scaledSizeThatFitInSize:NSMakeSize(50, 50)];
  EXPECT_EQ(s.width, 20);
  EXPECT_EQ(s.height, 10);
  s = [BlankImage(200, 100) scaledSizeThatFitInSize:NSMakeSize(50, 50)];
  EXPECT_EQ(s.width, 50);
  EXPECT_EQ(s.height, 25);
  s = [BlankImage(30, 60) scaledSizeThatFitInSize:NSMakeSize(50, 50)];
  EXPECT_EQ(s.width, 25);
  EXPECT_EQ(s.height, 50);
}

using ImageDrawColor = ImageTest;

namespace {

// 10 x 10, opaque in its top half (rows 0..4 of the data), clear below.
NSImage *TopHalfMask() {
  CGImageRef cg = NewRGBAImageWithBlocks(10, 10, {{0, 0, 10, 5, {0, 0, 0, 255}}});
  NSImage *image = ImageFromCG(cg);
  CGImageRelease(cg);
  return image;
}

}  // namespace

TEST_F(ImageDrawColor, ColourGoesThroughTheOpaquePartOfTheMask) {
  NSImage *mask = TopHalfMask();
  Owned<NSBitmapImageRep> rep(NewRep(20, 20));
  DrawIntoRep(rep, ^{
    [mask drawColor:[NSColor colorWithDeviceRed:0 green:0 blue:1 alpha:1]
             inRect:NSMakeRect(5, 5, 10, 10)
            flipped:NO];
  });
  // The rectangle spans rows 5..14 from the top; its upper half is coloured.
  EXPECT_EQ(RepPixel(rep, 5, 5), kBlue);
  EXPECT_EQ(RepPixel(rep, 14, 9), kBlue);
  EXPECT_EQ(RepPixel(rep, 5, 10), kClear);
  EXPECT_EQ(RepPixel(rep, 14, 14), kClear);
  EXPECT_EQ(RepPixel(rep, 4, 5), kClear);
  EXPECT_EQ(RepPixel(rep, 15, 9), kClear);
  EXPECT_EQ(RepPixel(rep, 10, 4), kClear);
}

TEST_F(ImageDrawColor, FlippedMirrorsTheMaskWithinTheSameRectangle) {
  NSImage *mask = TopHalfMask();
  Owned<NSBitmapImageRep> rep(NewRep(20, 20));
  DrawIntoRep(rep, ^{
    [mask drawColor:[NSColor colorWithDeviceRed:1 green:0 blue:0 alpha:1]
             inRect:NSMakeRect(5, 3, 10, 10)
            flipped:YES];
  });
  // Rows 7..16 from the top; now the lower half is coloured.
  EXPECT_EQ(RepPixel(rep, 5, 7), kClear);
  EXPECT_EQ(RepPixel(rep, 14, 11), kClear);
  EXPECT_EQ(RepPixel(rep, 5, 12), kRed);
  EXPECT_EQ(RepPixel(rep, 14, 16), kRed);
  EXPECT_EQ(RepPixel(rep, 10, 17), kClear);
  EXPECT_EQ(RepPixel(rep, 10, 6), kClear);
}

TEST_F(ImageDrawColor, GraphicsStateIsLeftAsFound) {
  NSImage *mask = TopHalfMask();
  Owned<NSBitmapImageRep> rep(NewRep(20, 20));
  DrawIntoRep(rep, ^{
    [[NSColor colorWithDeviceRed:0 green:1 blue:0 alpha:1] set];
    [mask drawColor:[NSColor colorWithDeviceRed:1 green:0 blue:0 alpha:1]
             inRect:NSMakeRect(5, 5, 10, 10)
            flipped:YES];
    // Neither the clip, the flip nor the fill colour stays behind.
    NSRectFill(NSMakeRect(0, 0, 2, 2));
    NSRectFill(NSMakeRect(18, 18, 2, 2));
  });
  EXPECT_EQ(RepPixel(rep, 0, 19), kGreen);
  EXPECT_EQ(RepPixel(rep, 19, 0), kGreen);
}

TEST_F(ImageDrawColor, WithoutAContextNothingHappens) {
  [NSGraphicsContext saveGraphicsState];
  [NSGraphicsContext setCurrentContext:nil];
  [TopHalfMask() drawColor:[NSColor redColor] inRect:NSMakeRect(0, 0, 10, 10) flipped:NO];
  EXPECT_EQ([NSGraphicsContext currentContext], nil);
  [NSGraphicsContext restoreGraphicsState];
}
