// Input found by fuzzing the images subsystem and the Core Graphics calls
// under it: sizes whose arithmetic wraps, non-finite rectangles, colours
// that raise while an image has the focus, and images too large for any
// offscreen bitmap. Each must come back as nil/NULL or draw nothing, and
// leave drawing afterwards working.
#import <AppKit/AppKit.h>
#import <Talvo/Talvo.h>

#include <cmath>

#include "images/ImageTestSupport.h"

namespace {

// A 16 x 16 opaque RGBA image.
CGImageRef NewOpaqueImage(size_t side) {
  size_t length = side * side * 4;
  CFDataRef bytes = (CFDataRef)[[NSMutableData alloc] initWithLength:length];
  memset([(NSMutableData *)bytes mutableBytes], 0xFF, length);
  CGDataProviderRef provider = CGDataProviderCreateWithCFData(bytes);
  CFRelease(bytes);
  CGColorSpaceRef rgb = CGColorSpaceCreateDeviceRGB();
  CGImageRef image = CGImageCreate(side, side, 8, 32, side * 4, rgb, kCGImageAlphaPremultipliedLast,
                                   provider, NULL, true, kCGRenderingIntentDefault);
  CGColorSpaceRelease(rgb);
  CGDataProviderRelease(provider);
  return image;
}

}  // namespace

// A colour whose -set raises, as a broken colour subclass would.
@interface TVRaisingColor : NSColor
@end

@implementation TVRaisingColor
- (void)set {
  [NSException raise:NSGenericException format:@"this colour cannot be set"];
}
- (void)setFill {
  [self set];
}
- (NSString *)colorSpaceName {
  return NSCalibratedWhiteColorSpace;
}
- (CGFloat)whiteComponent {
  return 0.5;
}
- (CGFloat)alphaComponent {
  return 1;
}
@end

// A representation that draws a filled rectangle over whatever size it is.
@interface TVFillingRep : NSImageRep
@end

@implementation TVFillingRep
- (BOOL)draw {
  [[NSColor redColor] set];
  NSRectFill(NSMakeRect(0, 0, [self size].width, [self size].height));
  return YES;
}
@end

using ImageHostileInput = ImageTest;

TEST_F(ImageHostileInput, RowLengthWrappingAround2To64GivesNoImage) {
  uint8_t bytes[64];
  memset(bytes, 0xFF, sizeof bytes);
  CGDataProviderRef provider = CGDataProviderCreateWithData(NULL, bytes, sizeof bytes, NULL);
  CGColorSpaceRef rgb = CGColorSpaceCreateDeviceRGB();
  CGImageRef image = CGImageCreate(1, 3, 8, 32, (1ull << 63) + 8, rgb, kCGImageAlphaPremultipliedLast,
                                   provider, NULL, true, kCGRenderingIntentDefault);
  EXPECT_EQ(image, (CGImageRef)NULL);
  // Trimming a NULL image is safe and empty.
  EXPECT_TRUE(CGRectIsEmpty(VXGetFilledRect(image)));
  CGImageRelease(image);
  // The same bytes with an honest row length still make an image.
  CGImageRef honest = CGImageCreate(1, 3, 8, 32, 4, rgb, kCGImageAlphaPremultipliedLast, provider,
                                    NULL, true, kCGRenderingIntentDefault);
  ASSERT_NE(honest, (CGImageRef)NULL);
  EXPECT_CGRECT_EQ(VXGetFilledRect(honest), 0, 0, 1, 3);
  CGImageRelease(honest);
  CGColorSpaceRelease(rgb);
  CGDataProviderRelease(provider);
}

TEST_F(ImageHostileInput, NonFiniteCropsAndArcsAreRefused) {
  CGImageRef image = NewOpaqueImage(16);
  ASSERT_NE(image, (CGImageRef)NULL);
  const CGRect crops[] = {CGRectMake(NAN, NAN, NAN, NAN), CGRectMake(2, 2, NAN, 3),
                          CGRectMake(NAN, 2, 3, 3), CGRectMake(0, 0, INFINITY, 4)};
  for (CGRect crop : crops) {
    EXPECT_EQ(CGImageCreateWithImageInRect(image, crop), (CGImageRef)NULL);
  }
  CGImageRelease(image);

  CGMutablePathRef path = CGPathCreateMutable();
  CGPathMoveToPoint(path, NULL, 0, 0);
  CGPathAddArcToPoint(path, NULL, 10, 0, 10, 10, NAN);
  CGPathAddArc(path, NULL, NAN, 5, 3, 0, 1, false);
  CGRect box = CGPathGetBoundingBox(path);
  EXPECT_TRUE(std::isfinite(box.origin.x) && std::isfinite(box.size.width));
  CGPathRelease(path);
}

TEST_F(ImageHostileInput, RaisingColourLeavesNoFocusBehind) {
  NSGraphicsContext *before = [NSGraphicsContext currentContext];
  TVRaisingColor *bad = [[[TVRaisingColor alloc] init] autorelease];
  NSColor *pattern = [NSColor checkerboardColorWithFirstColor:bad
                                                  secondColor:[NSColor whiteColor]
                                                  squareWidth:4];
  EXPECT_EQ(pattern, (NSColor *)nil);
  EXPECT_EQ([NSGraphicsContext currentContext], before) << "the image's focus was given back";
  // Offscreen drawing afterwards works and draws where it should.
  CGImageRef drawn = CGCreateImageWithDrawingBlock(^(CGContextRef context) {
    CGContextSetRGBFillColor(context, 0, 0, 1, 1);
    CGContextFillRect(context, CGRectMake(0, 0, 4, 4));
  }, CGRectMake(0, 0, 8, 8));
  ASSERT_NE(drawn, (CGImageRef)NULL);
  EXPECT_FALSE(CGRectIsEmpty(VXGetFilledRect(drawn)));
  CGImageRelease(drawn);
  // And a normal checkerboard can still be made.
  EXPECT_NE([NSColor checkerboardColorWithFirstColor:[NSColor blackColor]
                                         secondColor:[NSColor whiteColor]
                                         squareWidth:4],
            (NSColor *)nil);
}

TEST_F(ImageHostileInput, HugeAndNonFiniteImagesGiveNoBitmapAndNeverRaise) {
  for (CGFloat side : {CGFloat(1e5), CGFloat(1e9), CGFloat(NAN), CGFloat(INFINITY)}) {
    NSImage *image = [[[NSImage alloc] initWithSize:NSMakeSize(side, side)] autorelease];
    TVFillingRep *rep = [[[TVFillingRep alloc] init] autorelease];
    [rep setSize:NSMakeSize(side, side)];
    [image addRepresentation:rep];
    CGImageRef cg = NULL;
    NSImage *trimmed = nil;
    EXPECT_NO_THROW({
      cg = [image CGImageForProposedRect:NULL context:nil hints:nil];
      trimmed = [image imageByTrimmingTransparentPixels];
    }) << "side " << side;
    EXPECT_EQ(cg, (CGImageRef)NULL) << "side " << side;
    EXPECT_EQ([[trimmed representations] count], 0u) << "side " << side;
    NSRect proposed = NSMakeRect(0, 0, side, 10);
    EXPECT_EQ([rep CGImageForProposedRect:&proposed context:nil hints:nil], (CGImageRef)NULL);
  }
  EXPECT_EQ(CGCreateImageWithDrawingBlock(^(CGContextRef) {}, CGRectMake(0, 0, 40000, 4)),
            (CGImageRef)NULL);
  // A sensible size still works.
  NSImage *small = [[[NSImage alloc] initWithSize:NSMakeSize(6, 4)] autorelease];
  TVFillingRep *rep = [[[TVFillingRep alloc] init] autorelease];
  [rep setSize:NSMakeSize(6, 4)];
  [small addRepresentation:rep];
  CGImageRef cg = [small CGImageForProposedRect:NULL context:nil hints:nil];
  ASSERT_NE(cg, (CGImageRef)NULL);
  EXPECT_EQ(CGImageGetWidth(cg), 6u);
}
