// AppKit and Quartz drawing through one graphics state: the CGContext of
// the current NSGraphicsContext, read back as pixels from windows, locked
// images and bitmap reps.

#import <AppKit/AppKit.h>
#include <CoreGraphics/CoreGraphics.h>

#import "GraphicsTestSupport.h"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

namespace {

CGContextRef Port() { return (CGContextRef)[[NSGraphicsContext currentContext] graphicsPort]; }

void FillWhite(NSSize size) {
  [[NSColor whiteColor] set];
  NSRectFill(NSMakeRect(0, 0, size.width, size.height));
}

class GraphicsBridge : public WindowGraphicsTest {};

TEST_F(GraphicsBridge, PrivateGNUstepDetailsAreAllThere) {
  NSArray *problems = [NSGraphicsContext talvo_graphicsBridgeProblems];
  EXPECT_EQ([problems count], 0u) << [[problems description] UTF8String];
  EXPECT_TRUE([NSGraphicsContext talvo_graphicsBridgeInstalled]);
}

TEST_F(GraphicsBridge, PortFollowsTheViewsUserSpacePlainAndFlipped) {
  for (BOOL flipped : {NO, YES}) {
    __block CGContextRef seen = NULL;
    Owned<NSBitmapImageRep> rep(NewWindowSnapshot(NSMakeSize(60, 40), flipped, ^(NSView *, NSRect) {
      FillWhite(NSMakeSize(60, 40));
      CGContextRef c = Port();
      seen = c;
      EXPECT_EQ((CGContextRef)[[NSGraphicsContext currentContext] CGContext], c);
      CGContextSetRGBFillColor(c, 1, 0, 0, 1);
      CGContextFillRect(c, CGRectMake(0, 0, 10, 10));  // at the user-space origin
      [[NSColor greenColor] set];
      NSRectFill(NSMakeRect(10, 0, 10, 10));
      CGContextSetRGBFillColor(c, 0, 0, 1, 1);
      CGContextFillRect(c, CGRectMake(20, 0, 10, 10));
    }));
    ASSERT_TRUE(seen != NULL);
    ASSERT_TRUE(rep.get());
    int y = flipped ? 35 : 5;  // a flipped view's origin is at the top
    EXPECT_PIXEL(RepPixel(rep, 5, y), 255, 0, 0, 255) << "flipped " << flipped;
    EXPECT_PIXEL(RepPixel(rep, 15, y), 0, 255, 0, 255) << "flipped " << flipped;
    EXPECT_PIXEL(RepPixel(rep, 25, y), 0, 0, 255, 255) << "flipped " << flipped;
    EXPECT_PIXEL(RepPixel(rep, 5, 40 - 1 - y), 255, 255, 255, 255) << "flipped " << flipped;
  }
}

TEST_F(GraphicsBridge, ImagesDrawUprightInFlippedViews) {
  static const uint8_t pixels[8] = {255, 0, 0, 255, 0, 0, 255, 255};  // red above blue
  CGDataProviderRef provider = CGDataProviderCreateWithData(NULL, pixels, 8, NULL);
  CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
  CGImageRef image = CGImageCreate(1, 2, 8, 32, 4, space, kCGImageAlphaPremultipliedLast, provider,
                                   NULL, false, kCGRenderingIntentDefault);
  CGColorSpaceRelease(space);
  CGDataProviderRelease(provider);
  Owned<NSBitmapImageRep> rep(NewWindowSnapshot(NSMakeSize(20, 20), YES, ^(NSView *, NSRect) {
    CGContextRef c = Port();
    // The usual idiom in a flipped view: flip back before drawing a CGImage.
    CGContextSaveGState(c);
    CGContextTranslateCTM(c, 0, 20);
    CGContextScaleCTM(c, 1, -1);
    CGContextDrawImage(c, CGRectMake(0, 0, 20, 20), image);
    CGContextRestoreGState(c);
  }));
  CGImageRelease(image);
  ASSERT_TRUE(rep.get());
  EXPECT_PIXEL(RepPixel(rep, 10, 15), 255, 0, 0, 255);
  EXPECT_PIXEL(RepPixel(rep, 10, 5), 0, 0, 255, 255);
}

TEST_F(GraphicsBridge, ColoursAndTransformAreShared) {
  Owned<NSBitmapImageRep> rep(NewLockFocusSnapshot(NSMakeSize(40, 20), ^{
    CGContextRef c = Port();
    [[NSColor redColor] set];
    CGContextFillRect(c, CGRectMake(0, 0, 10, 10));  // AppKit's colour, Quartz fill
    CGContextSetRGBFillColor(c, 0, 0, 1, 1);
    NSRectFill(NSMakeRect(10, 0, 10, 10));  // Quartz's colour, AppKit fill
    CGContextSaveGState(c);
    CGContextTranslateCTM(c, 20, 10);
    [[NSColor greenColor] set];
    NSRectFill(NSMakeRect(0, 0, 10, 10));  // moved by the Quartz transform
    CGContextRestoreGState(c);
    NSRectFill(NSMakeRect(30, 0, 10, 10));  // restored: not moved, colour green is gone
  }));
  EXPECT_PIXEL(RepPixel(rep, 5, 5), 255, 0, 0, 255);
  EXPECT_PIXEL(RepPixel(rep, 15, 5), 0, 0, 255, 255);
  EXPECT_PIXEL(RepPixel(rep, 25, 15), 0, 255, 0, 255);
  EXPECT_PIXEL(RepPixel(rep, 25, 5), 0, 0, 0, 0);
  EXPECT_PIXEL(RepPixel(rep, 35, 5), 0, 0, 255, 255);
}

TEST_F(GraphicsBridge, QuartzClipsConstrainAppKitFills) {
  static const uint8_t samples[2] = {0xFF, 0x00};  // mask rows from the top: keep out, let in
  CGDataProviderRef provider = CGDataProviderCreateWithData(NULL, samples, 2, NULL);
  CGImageRef mask = CGImageMaskCreate(1, 2, 8, 8, 1, provider, NULL, false);
  CGDataProviderRelease(provider);
  ASSERT_TRUE(mask);
  Owned<NSBitmapImageRep> rep(NewLockFocusSnapshot(NSMakeSize(40, 20), ^{
    CGContextRef c = Port();
    CGContextSaveGState(c);
    CGContextClipToRect(c, CGRectMake(0, 0, 10, 20));
    [[NSColor redColor] set];
    NSRectFill(NSMakeRect(0, 0, 20, 20));
    CGContextRestoreGState(c);

    CGContextSaveGState(c);
    CGContextClipToMask(c, CGRectMake(20, 0, 20, 20), mask);
    [[NSColor blueColor] set];
    NSRectFill(NSMakeRect(20, 0, 20, 20));
    [[NSBezierPath bezierPathWithRect:NSMakeRect(20, 0, 20, 20)] fill];
    CGContextRestoreGState(c);
  }));
  CGImageRelease(mask);
  EXPECT_PIXEL(RepPixel(rep, 5, 10), 255, 0, 0, 255);
  EXPECT_PIXEL(RepPixel(rep, 15, 10), 0, 0, 0, 0);
  EXPECT_PIXEL(RepPixel(rep, 30, 15), 0, 0, 0, 0);  // mask sample 1 keeps paint out
  EXPECT_PIXEL(RepPixel(rep, 30, 5), 0, 0, 255, 255);
}

TEST_F(GraphicsBridge, AlphaAndShadowApplyToAppKitFillsAndEndWithTheirState) {
  Owned<NSBitmapImageRep> rep(NewLockFocusSnapshot(NSMakeSize(80, 40), ^{
    FillWhite(NSMakeSize(80, 40));
    CGContextRef c = Port();
    CGContextSaveGState(c);
    CGContextSetAlpha(c, 0.5);
    [[NSColor redColor] set];
    NSRectFill(NSMakeRect(0, 20, 10, 10));
    CGColorRef black = CGColorCreateGenericGray(0, 1);
    CGContextSetAlpha(c, 1);
    CGContextSetShadowWithColor(c, CGSizeMake(5, -5), 0, black);
    CGColorRelease(black);
    [[NSBezierPath bezierPathWithRect:NSMakeRect(20, 20, 10, 10)] fill];
    CGContextRestoreGState(c);
    [[NSColor redColor] set];
    NSRectFill(NSMakeRect(40, 20, 10, 10));  // no alpha, no shadow any more
  }));
  EXPECT_PIXEL(RepPixel(rep, 5, 25), 255, 128, 128, 255);
  EXPECT_PIXEL(RepPixel(rep, 25, 25), 255, 0, 0, 255);
  EXPECT_PIXEL(RepPixel(rep, 32, 17), 0, 0, 0, 255);  // shadow right and below
  EXPECT_PIXEL(RepPixel(rep, 22, 32), 255, 255, 255, 255);
  EXPECT_PIXEL(RepPixel(rep, 45, 25), 255, 0, 0, 255);
  EXPECT_PIXEL(RepPixel(rep, 52, 17), 255, 255, 255, 255);
}

TEST_F(GraphicsBridge, NSShadowDrawsAShadowUntilRestore) {
  Owned<NSBitmapImageRep> rep(NewLockFocusSnapshot(NSMakeSize(60, 40), ^{
    FillWhite(NSMakeSize(60, 40));
    [NSGraphicsContext saveGraphicsState];
    NSShadow *shadow = [[[NSShadow alloc] init] autorelease];
    [shadow setShadowOffset:NSMakeSize(4, -4)];
    [shadow setShadowBlurRadius:0];
    [shadow setShadowColor:[NSColor blackColor]];
    [shadow set];
    [[NSColor blueColor] set];
    NSRectFill(NSMakeRect(10, 20, 10, 10));
    [NSGraphicsContext restoreGraphicsState];
    [[NSColor blueColor] set];
    NSRectFill(NSMakeRect(40, 20, 10, 10));
  }));
  EXPECT_PIXEL(RepPixel(rep, 15, 25), 0, 0, 255, 255);
  EXPECT_PIXEL(RepPixel(rep, 22, 18), 0, 0, 0, 255);
  EXPECT_PIXEL(RepPixel(rep, 52, 18), 255, 255, 255, 255);
}

TEST_F(GraphicsBridge, OvalClipsSurviveSaveGraphicsState) {
  Owned<NSBitmapImageRep> rep(NewLockFocusSnapshot(NSMakeSize(40, 40), ^{
    FillWhite(NSMakeSize(40, 40));
    CGContextRef c = Port();
    CGContextSaveGState(c);
    CGContextAddEllipseInRect(c, CGRectMake(0, 0, 40, 40));
    CGContextClip(c);
    [NSGraphicsContext saveGraphicsState];  // GNUstep would widen the clip to a box here
    [[NSColor greenColor] set];
    NSRectFill(NSMakeRect(0, 0, 40, 40));
    [NSGraphicsContext restoreGraphicsState];
    CGContextRestoreGState(c);
  }));
  EXPECT_PIXEL(RepPixel(rep, 20, 20), 0, 255, 0, 255);
  EXPECT_PIXEL(RepPixel(rep, 2, 2), 255, 255, 255, 255);
}

TEST_F(GraphicsBridge, AppKitDrawsIntoABitmapCGContextWithItsState) {
  CGContextRef bitmap = NewRGBAContext(40, 20);
  CGContextTranslateCTM(bitmap, 10, 0);  // Quartz state from before the wrap carries over
  {
    NSGraphicsContext *context = [NSGraphicsContext graphicsContextWithCGContext:bitmap flipped:NO];
    ASSERT_TRUE(context);
    EXPECT_EQ((CGContextRef)[context graphicsPort], bitmap);
    [NSGraphicsContext saveGraphicsState];
    [NSGraphicsContext setCurrentContext:context];
    [[NSColor redColor] set];
    NSRectFill(NSMakeRect(0, 0, 10, 10));
    CGContextSetRGBFillColor(bitmap, 0, 0, 1, 1);
    CGContextFillRect(bitmap, CGRectMake(10, 0, 10, 10));
    [NSGraphicsContext restoreGraphicsState];
  }
  EXPECT_PIXEL(RGBAPixel(bitmap, 15, 5), 255, 0, 0, 255);
  EXPECT_PIXEL(RGBAPixel(bitmap, 25, 5), 0, 0, 255, 255);
  EXPECT_PIXEL(RGBAPixel(bitmap, 5, 5), 0, 0, 0, 0);
  CGContextRelease(bitmap);
}

TEST_F(GraphicsBridge, BitmapRepContextsDrawIntoTheRepsPixels) {
  Owned<NSBitmapImageRep> rep([[NSBitmapImageRep alloc]
      initWithBitmapDataPlanes:NULL
                    pixelsWide:20
                    pixelsHigh:20
                 bitsPerSample:8
               samplesPerPixel:4
                      hasAlpha:YES
                      isPlanar:NO
                colorSpaceName:NSDeviceRGBColorSpace
                  bitmapFormat:NSAlphaNonpremultipliedBitmapFormat
                   bytesPerRow:80
                  bitsPerPixel:32]);
  memset([rep.get() bitmapData], 0, 80 * 20);
  NSGraphicsContext *context = [NSGraphicsContext graphicsContextWithBitmapImageRep:rep];
  ASSERT_TRUE(context);
  [NSGraphicsContext saveGraphicsState];
  [NSGraphicsContext setCurrentContext:context];
  [[NSColor colorWithDeviceRed:1 green:0 blue:0 alpha:0.5] set];
  NSRectFill(NSMakeRect(0, 0, 10, 10));
  CGContextRef c = Port();
  ASSERT_TRUE(c != NULL);
  CGContextSetRGBFillColor(c, 0, 1, 0, 1);
  CGContextFillRect(c, CGRectMake(10, 10, 10, 10));
  [NSGraphicsContext restoreGraphicsState];
  const uint8_t *bytes = [rep.get() bitmapData];
  const uint8_t *bottomLeft = bytes + 15 * 80 + 5 * 4;  // rows from the top
  EXPECT_EQ(bottomLeft[0], 255);  // not premultiplied in this rep
  EXPECT_NEAR(bottomLeft[3], 128, 1);
  EXPECT_PIXEL(RepPixel(rep, 15, 15), 0, 255, 0, 255);
  EXPECT_PIXEL(RepPixel(rep, 15, 5), 0, 0, 0, 0);
}

TEST_F(GraphicsBridge, ImagesAndColoursConvert) {
  CGContextRef c = NewRGBAContext(4, 2);
  CGContextSetRGBFillColor(c, 1, 0, 0, 1);
  CGContextFillRect(c, CGRectMake(0, 1, 4, 1));  // top row red
  CGImageRef image = CGBitmapContextCreateImage(c);
  CGContextRelease(c);
  Owned<NSBitmapImageRep> rep([[NSBitmapImageRep alloc] initWithCGImage:image]);
  CGImageRelease(image);
  ASSERT_TRUE(rep.get());
  EXPECT_EQ([rep.get() pixelsWide], 4);
  EXPECT_PIXEL(RepPixel(rep, 1, 1), 255, 0, 0, 255);
  EXPECT_PIXEL(RepPixel(rep, 1, 0), 0, 0, 0, 0);

  CGImageRef back = [rep.get() CGImage];
  ASSERT_TRUE(back);
  EXPECT_EQ(CGImageGetWidth(back), 4u);
  CGContextRef check = NewRGBAContext(4, 2);
  CGContextDrawImage(check, CGRectMake(0, 0, 4, 2), back);
  EXPECT_PIXEL(RGBAPixel(check, 2, 1), 255, 0, 0, 255);
  EXPECT_PIXEL(RGBAPixel(check, 2, 0), 0, 0, 0, 0);
  CGContextRelease(check);

  Owned<NSImage> nsImage([[NSImage alloc] initWithSize:NSMakeSize(4, 2)]);
  [nsImage.get() addRepresentation:rep];
  NSRect proposed = NSMakeRect(0, 0, 8, 4);
  CGImageRef scaled = [nsImage.get() CGImageForProposedRect:&proposed context:nil hints:nil];
  ASSERT_TRUE(scaled);
  EXPECT_EQ(CGImageGetWidth(scaled), 8u);
  EXPECT_EQ(CGImageGetHeight(scaled), 4u);
  CGContextRef check2 = NewRGBAContext(8, 4);
  CGContextDrawImage(check2, CGRectMake(0, 0, 8, 4), scaled);
  EXPECT_PIXEL(RGBAPixel(check2, 4, 3), 255, 0, 0, 255);
  EXPECT_PIXEL(RGBAPixel(check2, 4, 0), 0, 0, 0, 0);
  CGContextRelease(check2);

  CGColorRef color = [[NSColor colorWithDeviceRed:0.2 green:0.4 blue:0.6 alpha:0.8] CGColor];
  ASSERT_TRUE(color);
  ASSERT_EQ(CGColorGetNumberOfComponents(color), 4u);
  EXPECT_NEAR(CGColorGetComponents(color)[1], 0.4, 1e-6);
  EXPECT_NEAR(CGColorGetAlpha(color), 0.8, 1e-6);
}

}  // namespace
