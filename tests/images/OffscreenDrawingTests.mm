#import <Talvo/VXOffscreenDrawing.h>

#include "images/ImageTestSupport.h"

using namespace imagetest;

namespace {

// Runs each test at a chosen main-screen scale and puts GNUstep's back.
class ImageOffscreenDrawing : public ImageTest {
 protected:
  void SetScale(CGFloat scale) { [NSScreen talvo_setBackingScaleFactorOverride:scale]; }
  void TearDown() override {
    [NSScreen talvo_setBackingScaleFactorOverride:0];
    ImageTest::TearDown();
  }
};

}  // namespace

TEST_F(ImageOffscreenDrawing, BitmapIsTheSizeTimesTheScreenScale) {
  SetScale(2);
  ASSERT_EQ([[NSScreen mainScreen] backingScaleFactor], 2);
  __block size_t seenWidth = 0, seenHeight = 0;
  CGImageRef image = CGCreateImageWithDrawingBlock(^(CGContextRef context) {
    seenWidth = CGBitmapContextGetWidth(context);
    seenHeight = CGBitmapContextGetHeight(context);
  }, CGRectMake(0, 0, 10, 4));
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(seenWidth, 20u);
  EXPECT_EQ(seenHeight, 8u);
  EXPECT_EQ(CGImageGetWidth(image), 20u);
  EXPECT_EQ(CGImageGetHeight(image), 8u);
  EXPECT_EQ(CGImageGetBytesPerRow(image), 80u);
  EXPECT_EQ(CGImageGetBitsPerComponent(image), 8u);
  EXPECT_EQ(CGImageGetAlphaInfo(image), kCGImageAlphaPremultipliedLast);
  CGImageRelease(image);

  SetScale(1);
  image = CGCreateImageWithDrawingBlock(^(CGContextRef context) {
  }, CGRectMake(0, 0, 10.6, 4.99));
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(CGImageGetWidth(image), 10u);
  EXPECT_EQ(CGImageGetHeight(image), 4u);
  CGImageRelease(image);
}

TEST_F(ImageOffscreenDrawing, BlockDrawsInPointsFromTheBottomLeft) {
  SetScale(2);
  // The origin of the rectangle plays no part.
  CGImageRef image = CGCreateImageWithDrawingBlock(^(CGContextRef context) {
    CGContextSetRGBFillColor(context, 1, 0, 0, 1);
    CGContextFillRect(context, CGRectMake(0, 0, 2, 1));
  }, CGRectMake(50, 70, 10, 4));
  ASSERT_NE(image, nullptr);
  // 2 x 1 points at scale 2: columns 0..3 of the last two rows.
  EXPECT_EQ(ImagePixel(image, 0, 7), kRed);
  EXPECT_EQ(ImagePixel(image, 3, 6), kRed);
  EXPECT_EQ(ImagePixel(image, 4, 7), kClear);
  EXPECT_EQ(ImagePixel(image, 0, 5), kClear);
  EXPECT_EQ(ImagePixel(image, 0, 0), kClear);
  CGImageRelease(image);
}

TEST_F(ImageOffscreenDrawing, AppKitDrawingInTheBlockLandsScaled) {
  SetScale(2);
  CGImageRef image = CGCreateImageWithDrawingBlock(^(CGContextRef context) {
    EXPECT_EQ((CGContextRef)[[NSGraphicsContext currentContext] graphicsPort], context);
    [[NSColor colorWithDeviceRed:0 green:0 blue:1 alpha:1] set];
    NSRectFill(NSMakeRect(1, 1, 1, 1));
  }, CGRectMake(0, 0, 10, 4));
  ASSERT_NE(image, nullptr);
  // Point (1, 1) to (2, 2): columns 2..3, rows 4..5 from the top of 8.
  EXPECT_EQ(ImagePixel(image, 2, 4), kBlue);
  EXPECT_EQ(ImagePixel(image, 3, 5), kBlue);
  EXPECT_EQ(ImagePixel(image, 1, 5), kClear);
  EXPECT_EQ(ImagePixel(image, 2, 6), kClear);
  EXPECT_EQ(ImagePixel(image, 2, 3), kClear);
  CGImageRelease(image);
}

TEST_F(ImageOffscreenDrawing, CurrentContextIsRestored) {
  Owned<NSBitmapImageRep> rep(NewRep(4, 4));
  NSGraphicsContext *outer = [NSGraphicsContext graphicsContextWithBitmapImageRep:rep];
  [NSGraphicsContext saveGraphicsState];
  [NSGraphicsContext setCurrentContext:outer];
  __block NSGraphicsContext *inside = nil;
  CGImageRef image = CGCreateImageWithDrawingBlock(^(CGContextRef context) {
    inside = [NSGraphicsContext currentContext];
  }, CGRectMake(0, 0, 3, 3));
  EXPECT_EQ([NSGraphicsContext currentContext], outer);
  EXPECT_NE(inside, outer);
  EXPECT_NE(inside, nil);
  CGImageRelease(image);

  // A block that raises gives no image and still restores the context.
  image = CGCreateImageWithDrawingBlock(^(CGContextRef context) {
    [NSException raise:NSGenericException format:@"drawing failed"];
  }, CGRectMake(0, 0, 3, 3));
  EXPECT_EQ(image, nullptr);
  EXPECT_EQ([NSGraphicsContext currentContext], outer);
  [NSGraphicsContext restoreGraphicsState];
}

TEST_F(ImageOffscreenDrawing, NoPixelsOrNoBlockGiveNoImage) {
  SetScale(1);
  __block int calls = 0;
  EXPECT_EQ(CGCreateImageWithDrawingBlock(^(CGContextRef context) {
    calls++;
  }, CGRectMake(0, 0, 0.9, 10)), nullptr);
  EXPECT_EQ(CGCreateImageWithDrawingBlock(^(CGContextRef context) {
    calls++;
  }, CGRectMake(0, 0, -4, 10)), nullptr);
  EXPECT_EQ(calls, 0);
  EXPECT_EQ(CGCreateImageWithDrawingBlock(nil, CGRectMake(0, 0, 5, 5)),
            nullptr);
}
