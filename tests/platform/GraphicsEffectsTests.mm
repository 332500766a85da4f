// Quartz effects on every kind of AppKit drawing: gradients, images, text,
// blend modes; and the clip bounding box through the bridge.

#import <AppKit/AppKit.h>
#include <CoreGraphics/CoreGraphics.h>

#include <algorithm>

#import "GraphicsTestSupport.h"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

namespace {

CGContextRef Port() { return (CGContextRef)[[NSGraphicsContext currentContext] graphicsPort]; }

class GraphicsEffects : public WindowGraphicsTest {};

TEST_F(GraphicsEffects, GlobalAlphaFadesGradientsImagesAndText) {
  Owned<NSImage> red([[NSImage alloc] initWithSize:NSMakeSize(10, 10)]);
  [red.get() lockFocus];
  [[NSColor redColor] set];
  NSRectFill(NSMakeRect(0, 0, 10, 10));
  [red.get() unlockFocus];
  NSImage *redImage = red.get();
  Owned<NSBitmapImageRep> rep(NewLockFocusSnapshot(NSMakeSize(100, 40), ^{
    [[NSColor whiteColor] set];
    NSRectFill(NSMakeRect(0, 0, 100, 40));
    CGContextRef c = Port();
    CGContextSaveGState(c);
    CGContextSetAlpha(c, 0.5);
    Owned<NSGradient> gradient([[NSGradient alloc] initWithStartingColor:[NSColor blueColor]
                                                             endingColor:[NSColor blueColor]]);
    [gradient.get() drawInRect:NSMakeRect(0, 0, 10, 10) angle:0];
    [redImage drawInRect:NSMakeRect(20, 0, 10, 10)
                 fromRect:NSZeroRect
                operation:NSCompositeSourceOver
                 fraction:1];
    [@"W" drawAtPoint:NSMakePoint(60, 10)
        withAttributes:[NSDictionary dictionaryWithObject:[NSFont systemFontOfSize:24]
                                                   forKey:NSFontAttributeName]];
    CGContextRestoreGState(c);
    [@"W" drawAtPoint:NSMakePoint(30, 10)
        withAttributes:[NSDictionary dictionaryWithObject:[NSFont systemFontOfSize:24]
                                                   forKey:NSFontAttributeName]];
  }));
  EXPECT_PIXEL(RepPixel(rep, 5, 5), 128, 128, 255, 255);
  EXPECT_PIXEL(RepPixel(rep, 25, 5), 255, 128, 128, 255);
  // Text: the darkest ink of the faded glyph is about half as dark.
  int darkestFull = 255, darkestFaded = 255;
  for (int y = 0; y < 40; ++y) {
    for (int x = 30; x < 60; ++x) darkestFull = std::min(darkestFull, RepPixel(rep, x, y).r);
    for (int x = 60; x < 90; ++x) darkestFaded = std::min(darkestFaded, RepPixel(rep, x, y).r);
  }
  int inkFull = 255 - darkestFull, inkFaded = 255 - darkestFaded;
  EXPECT_GT(inkFull, 200);
  EXPECT_NEAR(inkFaded, inkFull / 2, 20);
}

TEST_F(GraphicsEffects, BlendModesApplyToAppKitFills) {
  Owned<NSBitmapImageRep> rep(NewLockFocusSnapshot(NSMakeSize(20, 10), ^{
    [[NSColor yellowColor] set];
    NSRectFill(NSMakeRect(0, 0, 20, 10));
    CGContextRef c = Port();
    CGContextSaveGState(c);
    CGContextSetBlendMode(c, kCGBlendModeMultiply);
    [[NSColor cyanColor] set];
    NSRectFill(NSMakeRect(0, 0, 10, 10));
    CGContextRestoreGState(c);
    [[NSColor cyanColor] set];  // the colour was part of the restored state too
    NSRectFill(NSMakeRect(10, 0, 10, 10));
  }));
  EXPECT_PIXEL(RepPixel(rep, 5, 5), 0, 255, 0, 255);
  EXPECT_PIXEL(RepPixel(rep, 15, 5), 0, 255, 255, 255);
}

TEST_F(GraphicsEffects, ShadowBlurSpreadsAndStaysUnderTheShape) {
  Owned<NSBitmapImageRep> rep(NewLockFocusSnapshot(NSMakeSize(60, 60), ^{
    [[NSColor whiteColor] set];
    NSRectFill(NSMakeRect(0, 0, 60, 60));
    CGContextRef c = Port();
    CGContextSaveGState(c);
    CGContextSetShadow(c, CGSizeMake(0, 0), 8);
    [[NSColor blueColor] set];
    [[NSBezierPath bezierPathWithRect:NSMakeRect(20, 20, 20, 20)] fill];
    CGContextRestoreGState(c);
  }));
  EXPECT_PIXEL(RepPixel(rep, 30, 30), 0, 0, 255, 255);
  Pixel near = RepPixel(rep, 42, 30), far = RepPixel(rep, 55, 30);
  EXPECT_LT(near.r, 250);  // grey shadow just outside the edge
  EXPECT_GT(near.r, 150);
  EXPECT_GT(far.r, near.r);
}

TEST_F(GraphicsEffects, ClipBoundingBoxIsInUserSpace) {
  __block CGRect box = CGRectNull;
  Owned<NSBitmapImageRep> rep(NewLockFocusSnapshot(NSMakeSize(50, 40), ^{
    CGContextRef c = Port();
    CGContextSaveGState(c);
    CGContextTranslateCTM(c, 10, 5);
    CGContextClipToRect(c, CGRectMake(0, 0, 20, 10));
    box = CGContextGetClipBoundingBox(c);
    CGContextRestoreGState(c);
  }));
  EXPECT_TRUE(CGRectEqualToRect(box, CGRectMake(0, 0, 20, 10)))
      << box.origin.x << "," << box.origin.y << " " << box.size.width << "x" << box.size.height;
}

TEST_F(GraphicsEffects, BitmapContextsInEitherByteOrderTakeAppKitDrawing) {
  CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
  CGContextRef bgra = CGBitmapContextCreate(NULL, 10, 10, 8, 0, space,
                                            kCGImageAlphaPremultipliedFirst | kCGBitmapByteOrder32Host);
  CGColorSpaceRelease(space);
  ASSERT_TRUE(bgra);
  NSGraphicsContext *context = [NSGraphicsContext graphicsContextWithCGContext:bgra flipped:NO];
  [NSGraphicsContext saveGraphicsState];
  [NSGraphicsContext setCurrentContext:context];
  [[NSColor colorWithDeviceRed:0 green:1 blue:0 alpha:1] set];
  NSRectFill(NSMakeRect(0, 0, 5, 10));
  [NSGraphicsContext restoreGraphicsState];
  const uint8_t *p = static_cast<const uint8_t *>(CGBitmapContextGetData(bgra));
  EXPECT_EQ(p[1], 255);  // green of the top-left pixel, B G R A in memory
  EXPECT_EQ(p[3], 255);
  EXPECT_EQ(p[9 * 4 + 3], 0);  // right half untouched
  CGContextRelease(bgra);
}

}  // namespace
