// Bad input to the images, colours and gradients headers: nil, NaN,
// infinities, huge and negative sizes, objects of the wrong class.

#import <Talvo/Talvo.h>

#import "images/ImageTestSupport.h"
#import "robustness/RobustnessSupport.h"
#import "support/TestSupport.h"

namespace {

class ImagesRobustness : public PooledTest {
 protected:
  NSImage *SmallImage() {
    NSImage *image = [[[NSImage alloc] initWithSize:NSMakeSize(4, 4)] autorelease];
    [image lockFocus];
    [[NSColor redColor] set];
    NSRectFill(NSMakeRect(1, 1, 2, 2));
    [image unlockFocus];
    return image;
  }
};

TEST_F(ImagesRobustness, TrimmingFunctions) {
  CGRect filled = CGRectZero;
  EXPECT_CALM(filled = VXGetFilledRect(NULL));
  EXPECT_TRUE(CGRectIsEmpty(filled) || CGRectIsNull(filled));
  CGImageRef trimmed = NULL;
  EXPECT_CALM(trimmed = VXCreateImageByTrimmingImage(NULL));
  EXPECT_EQ(trimmed, (CGImageRef)NULL);

  // Odd but valid layouts: one pixel, padded rows, 16-bit and gray.
  std::vector<uint8_t> bytes(64 * 64 * 8, 0x80);
  struct Layout {
    size_t width, height, bpc, bpp, row;
    CGBitmapInfo info;
    bool gray;
  };
  for (Layout l : {Layout{1, 1, 8, 32, 4, kCGImageAlphaPremultipliedLast, false},
                   Layout{3, 5, 8, 32, 64, kCGImageAlphaFirst, false},
                   Layout{7, 3, 16, 64, 7 * 8, kCGImageAlphaLast, false},
                   Layout{9, 9, 8, 8, 9, kCGImageAlphaNone, true},
                   Layout{9, 9, 8, 24, 27, kCGImageAlphaNone, false}}) {
    CGImageRef image = imagetest::NewImage(bytes, l.width, l.height, l.bpc, l.bpp, l.row, l.info, l.gray);
    if (image == NULL) {
      continue;
    }
    EXPECT_CALM(filled = VXGetFilledRect(image));
    EXPECT_CALM(trimmed = VXCreateImageByTrimmingImage(image));
    CGImageRelease(trimmed);
    CGImageRelease(image);
  }
}

TEST_F(ImagesRobustness, RepAndImageTrimming) {
  NSBitmapImageRep *empty = [[[NSBitmapImageRep alloc] initWithBitmapDataPlanes:NULL
                                                                     pixelsWide:1
                                                                     pixelsHigh:1
                                                                  bitsPerSample:8
                                                                samplesPerPixel:4
                                                                       hasAlpha:YES
                                                                       isPlanar:NO
                                                                 colorSpaceName:NSDeviceRGBColorSpace
                                                                    bytesPerRow:0
                                                                   bitsPerPixel:0] autorelease];
  id result = nil;
  EXPECT_CALM(result = [empty bitmapImageRepByTrimmingTransparentPixels]);
  NSImage *noReps = [[[NSImage alloc] initWithSize:NSZeroSize] autorelease];
  EXPECT_CALM(result = [noReps imageByTrimmingTransparentPixels]);
  NSImage *sizeless = [[[NSImage alloc] init] autorelease];
  EXPECT_CALM(result = [sizeless imageByTrimmingTransparentPixels]);
  EXPECT_CALM(result = [SmallImage() imageByTrimmingTransparentPixels]);
}

TEST_F(ImagesRobustness, OffscreenDrawing) {
  CGImageRef image = NULL;
  void (^draw)(CGContextRef) = ^(CGContextRef context) {
    CGContextFillRect(context, CGRectMake(0, 0, 1, 1));
  };
  EXPECT_CALM(image = CGCreateImageWithDrawingBlock(NullOf<void (^)(CGContextRef)>(), CGRectMake(0, 0, 4, 4)));
  CGImageRelease(image);
  for (double v : bad::kValues) {
    for (CGRect rect : {CGRectMake(0, 0, v, 4), CGRectMake(0, 0, 4, v), CGRectMake(v, v, 4, 4)}) {
      image = NULL;
      EXPECT_CALM(image = CGCreateImageWithDrawingBlock(draw, rect)) << v;
      CGImageRelease(image);
    }
  }
  EXPECT_CALM(image = CGCreateImageWithDrawingBlock(draw, CGRectNull));
  CGImageRelease(image);
}

TEST_F(ImagesRobustness, CapDrawColorFitSize) {
  NSImage *image = SmallImage();
  id result = nil;
  for (double v : bad::kValues) {
    EXPECT_CALM(result = [image imageWithleftCapWidth:v middleWidth:1 rightCapWidth:1]) << v;
    EXPECT_CALM(result = [image imageWithleftCapWidth:1 middleWidth:v rightCapWidth:1]) << v;
    EXPECT_CALM(result = [image imageWithleftCapWidth:1 middleWidth:1 rightCapWidth:v]) << v;
    NSSize size = NSZeroSize;
    EXPECT_CALM(size = [image scaledSizeThatFitInSize:NSMakeSize(v, 10)]) << v;
    EXPECT_CALM(size = [image scaledSizeForSize:NSMakeSize(10, v)]) << v;
  }
  NSImage *zero = [[[NSImage alloc] initWithSize:NSZeroSize] autorelease];
  NSSize size = NSZeroSize;
  EXPECT_CALM(size = [zero scaledSizeThatFitInSize:NSMakeSize(10, 10)]);
  EXPECT_CALM(size = [zero scaledSizeForSize:NSMakeSize(10, 10)]);
  EXPECT_CALM(result = [zero imageWithleftCapWidth:1 middleWidth:1 rightCapWidth:1]);

  NSImage *canvas = [[[NSImage alloc] initWithSize:NSMakeSize(8, 8)] autorelease];
  [canvas lockFocus];
  EXPECT_CALM([image drawColor:NullOf<NSColor *>() inRect:NSMakeRect(0, 0, 4, 4) flipped:NO]);
  EXPECT_CALM([image drawColor:bad::WrongObject() inRect:NSMakeRect(0, 0, 4, 4) flipped:YES]);
  for (double v : bad::kValues) {
    EXPECT_CALM([image drawColor:[NSColor blueColor] inRect:NSMakeRect(0, 0, v, 4) flipped:NO]) << v;
    EXPECT_CALM([image drawColor:[NSColor blueColor] inRect:NSMakeRect(v, 0, 4, 4) flipped:YES]) << v;
  }
  [canvas unlockFocus];
}

TEST_F(ImagesRobustness, ColoursAndGradients) {
  id result = nil;
  EXPECT_CALM(result = [NSColor standardCheckerboardColor]);
  EXPECT_CALM(result = [NSColor selectedColor]);
  EXPECT_CALM(result = [NSColor checkerboardColorWithFirstColor:NullOf<NSColor *>()
                                                    secondColor:NullOf<NSColor *>()
                                                    squareWidth:4]);
  EXPECT_CALM(result = [NSColor checkerboardColorWithFirstColor:bad::WrongObject()
                                                    secondColor:[NSColor whiteColor]
                                                    squareWidth:4]);
  for (double v : bad::kValues) {
    EXPECT_CALM(result = [NSColor checkerboardColorWithFirstColor:[NSColor blackColor]
                                                      secondColor:[NSColor whiteColor]
                                                      squareWidth:v]) << v;
  }
  NSArray *colors = @[
    [NSColor redColor], [NSColor colorWithCalibratedWhite:0.5 alpha:1],
    [NSColor colorWithDeviceCyan:0.1 magenta:0.2 yellow:0.3 black:0.4 alpha:1],
    [NSColor colorWithCalibratedRed:NAN green:INFINITY blue:-1 alpha:NAN],
    [NSColor standardCheckerboardColor], [NSColor controlTextColor]
  ];
  for (NSColor *color in colors) {
    BOOL darker = NO;
    for (double v : bad::kValues) {
      EXPECT_CALM(darker = [color isDarkerThan:v]) << v;
      EXPECT_CALM(result = [color lighterColor:v]) << v;
      EXPECT_CALM(result = reflectedSizedGradientWithTargetColor(color, v)) << v;
    }
    EXPECT_CALM(result = [color darkerColor]);
    EXPECT_CALM(result = [color lighterColor]);
    EXPECT_CALM(result = reflectedGradientWithTargetColor(color));
  }
  EXPECT_CALM(result = reflectedGradientWithTargetColor(NullOf<NSColor *>()));
  EXPECT_CALM(result = reflectedSizedGradientWithTargetColor(bad::WrongObject(), 10));
  for (BOOL newer : {NO, YES}) {
    EXPECT_CALM(result = [NSGradient grayGradientForNewerLook:newer]);
    EXPECT_CALM(result = [NSGradient lightGrayGradientForNewerLook:newer]);
    EXPECT_CALM(result = [NSGradient blueGradientForNewerLook:newer]);
  }
  EXPECT_CALM(result = [NSGradient grayGradient]);
  EXPECT_CALM(result = [NSGradient lightGrayGradient]);
  EXPECT_CALM(result = [NSGradient blueGradient]);
}

}  // namespace
