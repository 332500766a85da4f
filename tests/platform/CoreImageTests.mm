// The Core Image stand-in: extents of recipes, the three filters' inputs
// and outputs, and bitmaps rendered from recipes.
#import <AppKit/AppKit.h>
#import <CoreImage/CoreImage.h>
#import <Talvo/Talvo.h>

#include <cmath>

#include "images/ImageTestSupport.h"

using imagetest::RepPixel;

namespace {

// A bitmap, rows from the top: the top half red, the bottom half blue (+0).
NSBitmapImageRep *RedOverBlue(NSInteger width, NSInteger height) {
  NSBitmapImageRep *rep = [imagetest::NewRep(width, height) autorelease];
  for (NSInteger y = 0; y < height; ++y) {
    for (NSInteger x = 0; x < width; ++x) {
      uint8_t *p = [rep bitmapData] + y * [rep bytesPerRow] + x * 4;
      bool top = y < height / 2;
      p[0] = top ? 255 : 0, p[1] = 0, p[2] = top ? 0 : 255, p[3] = 255;
    }
  }
  return rep;
}

CIImage *ImageOf(NSBitmapImageRep *rep) {
  return [[[CIImage alloc] initWithBitmapImageRep:rep] autorelease];
}

NSBitmapImageRep *Render(CIImage *image) {
  return [[[NSBitmapImageRep alloc] initWithCIImage:image] autorelease];
}

#define EXPECT_RECT(r, ex, ey, ew, eh)      \
  do {                                      \
    CGRect r_ = (r);                        \
    EXPECT_DOUBLE_EQ(r_.origin.x, (ex));    \
    EXPECT_DOUBLE_EQ(r_.origin.y, (ey));    \
    EXPECT_DOUBLE_EQ(r_.size.width, (ew));  \
    EXPECT_DOUBLE_EQ(r_.size.height, (eh)); \
  } while (0)

}  // namespace

using CoreImageTest = PooledTest;

TEST_F(CoreImageTest, ExtentsOfBitmapsClampsScalesAndCrops) {
  CIImage *image = ImageOf(RedOverBlue(20, 10));
  ASSERT_NE(image, nil);
  EXPECT_RECT([image extent], 0, 0, 20, 10);
  CIImage *clamped = [image imageByClampingToExtent];
  EXPECT_TRUE(CGRectIsInfinite([clamped extent]));
  EXPECT_EQ([clamped imageByClampingToExtent], clamped);

  CIFilter *scale = [CIFilter filterWithName:@"CILanczosScaleTransform"];
  [scale setValue:image forKey:kCIInputImageKey];
  [scale setValue:@0.5 forKey:kCIInputScaleKey];
  [scale setValue:@(3.0f) forKey:kCIInputAspectRatioKey];
  EXPECT_RECT([[scale outputImage] extent], 0, 0, 30, 5);  // aspect scales x only
  [scale setValue:clamped forKey:kCIInputImageKey];
  EXPECT_TRUE(CGRectIsInfinite([[scale outputImage] extent]));

  CIFilter *crop = [CIFilter filterWithName:@"CICrop"];
  [crop setValue:clamped forKey:kCIInputImageKey];
  [crop setValue:[CIVector vectorWithX:-4 Y:2 Z:8 W:3] forKey:@"inputRectangle"];
  EXPECT_RECT([[crop outputImage] extent], -4, 2, 8, 3);
  EXPECT_RECT([[image imageByCroppingToRect:CGRectMake(15, 5, 10, 10)] extent], 15, 5, 5, 5);
  EXPECT_TRUE(CGRectIsNull([[image imageByCroppingToRect:CGRectMake(30, 0, 5, 5)] extent]));
}

TEST_F(CoreImageTest, ClampRepeatsEdgePixelsBeyondTheExtent) {
  // Cropping a clamped image below and left of the bitmap: bottom-left
  // corner pixels (blue), and above it the top edge's red.
  CIImage *clamped = [ImageOf(RedOverBlue(4, 4)) imageByClampingToExtent];
  NSBitmapImageRep *below = Render([clamped imageByCroppingToRect:CGRectMake(-3, -3, 3, 3)]);
  ASSERT_NE(below, nil);
  EXPECT_EQ(RepPixel(below, 0, 0), imagetest::kBlue);
  NSBitmapImageRep *above = Render([clamped imageByCroppingToRect:CGRectMake(1, 10, 2, 2)]);
  ASSERT_NE(above, nil);
  EXPECT_EQ(RepPixel(above, 1, 1), imagetest::kRed);
}

TEST_F(CoreImageTest, ScalingAnUnclampedImageFadesItsBorder) {
  // Without the clamp the kernel reads transparency beyond the edges.
  NSBitmapImageRep *solid = RedOverBlue(80, 80);
  CIFilter *scale = [CIFilter filterWithName:@"CILanczosScaleTransform"];
  [scale setValue:ImageOf(solid) forKey:kCIInputImageKey];
  [scale setValue:@0.25 forKey:kCIInputScaleKey];
  NSBitmapImageRep *out = Render([scale outputImage]);
  ASSERT_NE(out, nil);
  EXPECT_EQ([out pixelsWide], 20);
  EXPECT_LT(RepPixel(out, 0, 0).a, 250);
  EXPECT_EQ(RepPixel(out, 5, 4), imagetest::kRed);
}

TEST_F(CoreImageTest, RenderedBitmapsKeepRowsTopFirst) {
  NSBitmapImageRep *out = Render(ImageOf(RedOverBlue(6, 6)));
  ASSERT_NE(out, nil);
  EXPECT_EQ(RepPixel(out, 0, 0), imagetest::kRed);
  EXPECT_EQ(RepPixel(out, 5, 5), imagetest::kBlue);
  EXPECT_EQ([out size].width, 6);
}

TEST_F(CoreImageTest, FiltersRefuseWhatTheyCannotUseWithoutRaising) {
  EXPECT_EQ([CIFilter filterWithName:@"CIGaussianBlur"], nil);
  EXPECT_EQ([CIFilter filterWithName:NullOf<NSString *>()], nil);
  CIFilter *scale = [CIFilter filterWithName:@"CILanczosScaleTransform"];
  EXPECT_EQ([scale outputImage], nil);  // no input image
  [scale setValue:@"not an image" forKey:kCIInputImageKey];
  EXPECT_EQ([scale outputImage], nil);
  [scale setValue:ImageOf(RedOverBlue(4, 4)) forKey:kCIInputImageKey];
  [scale setValue:@3 forKey:@"inputNoSuchKey"];  // ignored
  EXPECT_EQ([scale valueForKey:@"inputNoSuchKey"], nil);
  for (id bad : @[ @0, @-1, @(NAN), @(INFINITY), @"2" ]) {
    [scale setValue:bad forKey:kCIInputScaleKey];
    EXPECT_EQ([scale outputImage], nil) << [[bad description] UTF8String];
  }
  [scale setDefaults];
  EXPECT_NE([scale valueForKey:kCIOutputImageKey], nil);  // the image survives setDefaults

  CIFilter *clamp = [CIFilter filterWithName:@"CIAffineClamp"];
  [clamp setValue:ImageOf(RedOverBlue(4, 4)) forKey:kCIInputImageKey];
  EXPECT_NE([clamp outputImage], nil);
  NSAffineTransform *shift = [NSAffineTransform transform];
  [shift translateXBy:2 yBy:0];
  [clamp setValue:shift forKey:kCIInputTransformKey];
  EXPECT_EQ([clamp outputImage], nil);  // only the identity is covered

  CIFilter *crop = [CIFilter filterWithName:@"CICrop"];
  [crop setValue:ImageOf(RedOverBlue(4, 4)) forKey:kCIInputImageKey];
  [crop setValue:[CIVector vectorWithX:1 Y:1] forKey:@"inputRectangle"];
  EXPECT_EQ([crop outputImage], nil);
  [crop setValue:[CIVector vectorWithX:NAN Y:0 Z:1 W:1] forKey:@"inputRectangle"];
  EXPECT_EQ([crop outputImage], nil);
}

TEST_F(CoreImageTest, BitmapsAreNotMadeFromUnboundedOrEmptyImages) {
  CIImage *image = ImageOf(RedOverBlue(4, 4));
  EXPECT_EQ(Render([image imageByClampingToExtent]), nil);
  EXPECT_EQ(Render([image imageByCroppingToRect:CGRectMake(10, 10, 1, 1)]), nil);
  EXPECT_EQ(
      Render([[image imageByClampingToExtent] imageByCroppingToRect:CGRectMake(0, 0, 1e6, 1e6)]),
      nil);
  EXPECT_EQ(Render(NullOf<CIImage *>()), nil);
  EXPECT_EQ(Render((CIImage *)@"image"), nil);
  EXPECT_EQ([[[CIImage alloc] initWithBitmapImageRep:NullOf<NSBitmapImageRep *>()] autorelease],
            nil);
  EXPECT_EQ([[[CIImage alloc] initWithBitmapImageRep:(NSBitmapImageRep *)@"rep"] autorelease], nil);
  EXPECT_EQ([CIImage imageWithCGImage:NullOf<CGImageRef>()], nil);
}

TEST_F(CoreImageTest, VectorsHoldTheirValues) {
  CIVector *v = [CIVector vectorWithCGRect:CGRectMake(1, 2, 3, 4)];
  EXPECT_EQ([v count], 4u);
  EXPECT_EQ([v W], 4);
  EXPECT_EQ([v valueAtIndex:9], 0);
  EXPECT_TRUE(CGRectEqualToRect([v CGRectValue], CGRectMake(1, 2, 3, 4)));
  EXPECT_NSEQ(v, [CIVector vectorWithX:1 Y:2 Z:3 W:4]);
  EXPECT_FALSE([v isEqual:[CIVector vectorWithX:1 Y:2 Z:3]]);
  EXPECT_EQ([[CIVector vectorWithValues:NULL count:0] count], 0u);
}

TEST_F(CoreImageTest, BitmapsWithPaddedRowsAreReadInPlace) {
  // 5 pixels a row, 32 bytes apart: the padding is never read as pixels.
  NSBitmapImageRep *padded =
      [[[NSBitmapImageRep alloc] initWithBitmapDataPlanes:NULL
                                               pixelsWide:5
                                               pixelsHigh:4
                                            bitsPerSample:8
                                          samplesPerPixel:4
                                                 hasAlpha:YES
                                                 isPlanar:NO
                                           colorSpaceName:NSDeviceRGBColorSpace
                                              bytesPerRow:32
                                             bitsPerPixel:32] autorelease];
  ASSERT_EQ([padded bytesPerRow], 32);
  memset([padded bitmapData], 0x99, 32 * 4);
  for (NSInteger y = 0; y < 4; ++y) {
    for (NSInteger x = 0; x < 5; ++x) {
      uint8_t *p = [padded bitmapData] + y * 32 + x * 4;
      p[0] = uint8_t(y < 2 ? 255 : 0), p[1] = 0, p[2] = uint8_t(y < 2 ? 0 : 255), p[3] = 255;
    }
  }
  CIImage *image = ImageOf(padded);
  NSBitmapImageRep *copy = Render(image);
  ASSERT_NE(copy, nil);
  EXPECT_EQ(RepPixel(copy, 4, 0), imagetest::kRed);
  EXPECT_EQ(RepPixel(copy, 4, 3), imagetest::kBlue);
  NSBitmapImageRep *clamped =
      Render([[image imageByClampingToExtent] imageByCroppingToRect:CGRectMake(5, 0, 3, 4)]);
  ASSERT_NE(clamped, nil);
  EXPECT_EQ(RepPixel(clamped, 2, 0), imagetest::kRed);
  EXPECT_EQ(RepPixel(clamped, 2, 3), imagetest::kBlue);
  // Resampled, it matches the same pixels packed tightly.
  NSBitmapImageRep *tight = RedOverBlue(5, 4);
  NSBitmapImageRep *fromPadded = [padded imageRepWithSize:NSMakeSize(10, 10)];
  NSBitmapImageRep *fromTight = [tight imageRepWithSize:NSMakeSize(10, 10)];
  ASSERT_NE(fromPadded, nil);
  ASSERT_NE(fromTight, nil);
  ASSERT_EQ([fromPadded pixelsHigh], 8);
  EXPECT_EQ(memcmp([fromPadded bitmapData], [fromTight bitmapData], 10 * 8 * 4), 0);
}
