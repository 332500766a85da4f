// Resampling a bitmap through the Core Image stand-in, bitmaps from
// images, and representations stacked on one canvas, read back as pixels.
#import <AppKit/AppKit.h>
#import <Talvo/Talvo.h>

#include <cmath>
#include <functional>

#include "images/ImageTestSupport.h"

using imagetest::RGBA;
using imagetest::RepPixel;

namespace {

// A premultiplied RGBA bitmap whose pixel (x, y), rows from the top, is
// `colour(x, y)` (+0).
NSBitmapImageRep *Painted(NSInteger width, NSInteger height,
                          const std::function<RGBA(NSInteger, NSInteger)> &colour) {
  NSBitmapImageRep *rep = [imagetest::NewRep(width, height) autorelease];
  for (NSInteger y = 0; y < height; ++y) {
    for (NSInteger x = 0; x < width; ++x) {
      RGBA c = colour(x, y);
      uint8_t *p = [rep bitmapData] + y * [rep bytesPerRow] + x * 4;
      p[0] = uint8_t(c.r), p[1] = uint8_t(c.g), p[2] = uint8_t(c.b), p[3] = uint8_t(c.a);
    }
  }
  return rep;
}

NSBitmapImageRep *Solid(NSInteger width, NSInteger height, RGBA colour) {
  return Painted(width, height, [colour](NSInteger, NSInteger) { return colour; });
}

// Every pixel of `rep` equals `colour`.
::testing::AssertionResult AllPixels(NSBitmapImageRep *rep, RGBA colour) {
  for (NSInteger y = 0; y < [rep pixelsHigh]; ++y) {
    for (NSInteger x = 0; x < [rep pixelsWide]; ++x) {
      if (!(RepPixel(rep, x, y) == colour)) {
        return ::testing::AssertionFailure()
               << "pixel (" << x << ", " << y << ") is " << RepPixel(rep, x, y);
      }
    }
  }
  return ::testing::AssertionSuccess();
}

constexpr RGBA kWarm{200, 100, 50, 255};
constexpr RGBA kHalfGreen{0, 100, 0, 128};

}  // namespace

using BitmapAddonsTest = PooledTest;

TEST_F(BitmapAddonsTest, ResampledSizeFollowsTheLargerSideAndFloors) {
  NSBitmapImageRep *tall = [Solid(200, 400, kWarm) imageRepWithSize:NSMakeSize(50, 100)];
  ASSERT_NE(tall, nil);
  EXPECT_EQ([tall pixelsWide], 50);
  EXPECT_EQ([tall pixelsHigh], 100);
  NSBitmapImageRep *third = [Solid(200, 300, kWarm) imageRepWithSize:NSMakeSize(50, 100)];
  ASSERT_NE(third, nil);
  EXPECT_EQ([third pixelsWide], 66);  // floor(200 / 3)
  EXPECT_EQ([third pixelsHigh], 100);
  EXPECT_EQ([third size].width, 66);
  // Only the larger target side counts; enlarging works the same way.
  NSBitmapImageRep *up = [Solid(30, 20, kWarm) imageRepWithSize:NSMakeSize(1, 90)];
  ASSERT_NE(up, nil);
  EXPECT_EQ([up pixelsWide], 90);
  EXPECT_EQ([up pixelsHigh], 60);
}

TEST_F(BitmapAddonsTest, UniformBitmapsStayExactlyUniformToTheEdge) {
  for (RGBA colour : {kWarm, kHalfGreen, imagetest::kClear}) {
    EXPECT_TRUE(AllPixels([Solid(200, 300, colour) imageRepWithSize:NSMakeSize(50, 100)], colour));
    EXPECT_TRUE(AllPixels([Solid(17, 9, colour) imageRepWithSize:NSMakeSize(51, 0)], colour));
  }
}

TEST_F(BitmapAddonsTest, EdgesRepeatInsteadOfFadingToTransparency) {
  // A red frame, 40 pixels wide, around a blue centre: the corners of a 4x
  // shrink see only red.
  NSBitmapImageRep *framed = Painted(200, 200, [](NSInteger x, NSInteger y) {
    bool centre = x >= 40 && x < 160 && y >= 40 && y < 160;
    return centre ? imagetest::kBlue : imagetest::kRed;
  });
  NSBitmapImageRep *small = [framed imageRepWithSize:NSMakeSize(50, 50)];
  ASSERT_NE(small, nil);
  for (NSInteger x : {0, 49}) {
    for (NSInteger y : {0, 49}) EXPECT_EQ(RepPixel(small, x, y), imagetest::kRed);
  }
  EXPECT_EQ(RepPixel(small, 25, 25), imagetest::kBlue);
}

TEST_F(BitmapAddonsTest, KeepsOrientationAndCropsFromTheOrigin) {
  // Top rows red, bottom rows blue, right quarter green (rows from the top).
  NSBitmapImageRep *source = Painted(200, 300, [](NSInteger x, NSInteger y) {
    if (x >= 150) return imagetest::kGreen;
    return y < 150 ? imagetest::kRed : imagetest::kBlue;
  });
  NSBitmapImageRep *small = [source imageRepWithSize:NSMakeSize(50, 100)];
  ASSERT_NE(small, nil);
  EXPECT_EQ(RepPixel(small, 0, 0), imagetest::kRed);
  EXPECT_EQ(RepPixel(small, 0, 99), imagetest::kBlue);
  // 200 / 3 = 66.67 columns: the crop keeps columns 0...65; the last one is
  // still inside the green quarter.
  EXPECT_EQ(RepPixel(small, 65, 10), imagetest::kGreen);
  EXPECT_EQ(RepPixel(small, 30, 10), imagetest::kRed);
}

TEST_F(BitmapAddonsTest, ConvertsOtherBitmapLayoutsToPremultipliedRGBA) {
  // Unpremultiplied RGBA, as GNUstep loads PNG files: 200 at alpha 128
  // becomes about 100 once premultiplied.
  NSBitmapImageRep *straight =
      [[[NSBitmapImageRep alloc] initWithBitmapDataPlanes:NULL
                                               pixelsWide:20
                                               pixelsHigh:20
                                            bitsPerSample:8
                                          samplesPerPixel:4
                                                 hasAlpha:YES
                                                 isPlanar:NO
                                           colorSpaceName:NSDeviceRGBColorSpace
                                             bitmapFormat:NSAlphaNonpremultipliedBitmapFormat
                                              bytesPerRow:80
                                             bitsPerPixel:32] autorelease];
  for (NSInteger i = 0; i < 400; ++i) {
    uint8_t *p = [straight bitmapData] + i * 4;
    p[0] = 200, p[1] = 0, p[2] = 0, p[3] = 128;
  }
  NSBitmapImageRep *out = [straight imageRepWithSize:NSMakeSize(10, 10)];
  ASSERT_NE(out, nil);
  RGBA p = RepPixel(out, 5, 5);
  EXPECT_NEAR(p.r, 100, 1);
  EXPECT_EQ(p.a, 128);
  EXPECT_TRUE(AllPixels(out, p));
  // RGB without alpha comes out opaque.
  NSBitmapImageRep *rgb = [[[NSBitmapImageRep alloc] initWithBitmapDataPlanes:NULL
                                                                   pixelsWide:8
                                                                   pixelsHigh:8
                                                                bitsPerSample:8
                                                              samplesPerPixel:3
                                                                     hasAlpha:NO
                                                                     isPlanar:NO
                                                               colorSpaceName:NSDeviceRGBColorSpace
                                                                  bytesPerRow:24
                                                                 bitsPerPixel:24] autorelease];
  memset([rgb bitmapData], 0x40, 8 * 24);
  EXPECT_TRUE(AllPixels([rgb imageRepWithSize : NSMakeSize(4, 4)], RGBA { 0x40, 0x40, 0x40, 255 }));
}

TEST_F(BitmapAddonsTest, BadSizesGiveNil) {
  NSBitmapImageRep *rep = Solid(20, 10, kWarm);
  for (NSSize size :
       {NSMakeSize(0, 0), NSMakeSize(-5, -1), NSMakeSize(NAN, 10), NSMakeSize(10, INFINITY),
        NSMakeSize(-INFINITY, 3), NSMakeSize(0.01, 0.01), NSMakeSize(1e12, 1)}) {
    EXPECT_EQ([rep imageRepWithSize:size], nil) << size.width << " x " << size.height;
  }
}

TEST_F(BitmapAddonsTest, ImageRepWithImageRoundTripsThroughTIFF) {
  NSBitmapImageRep *source = Painted(
      6, 4, [](NSInteger x, NSInteger y) { return x < 3 ? imagetest::kRed : imagetest::kBlue; });
  NSImage *image = [[[NSImage alloc] initWithSize:NSMakeSize(6, 4)] autorelease];
  [image addRepresentation:source];
  NSBitmapImageRep *rep = [NSBitmapImageRep imageRepWithImage:image];
  ASSERT_NE(rep, nil);
  EXPECT_EQ([rep pixelsWide], 6);
  EXPECT_EQ([rep pixelsHigh], 4);
  EXPECT_EQ(RepPixel(rep, 0, 0), imagetest::kRed);
  EXPECT_EQ(RepPixel(rep, 5, 3), imagetest::kBlue);
  EXPECT_EQ([NSBitmapImageRep imageRepWithImage:NullOf<NSImage *>()], nil);
  EXPECT_EQ([NSBitmapImageRep imageRepWithImage:(NSImage *)@"image"], nil);
  EXPECT_EQ([NSBitmapImageRep imageRepWithImage:[[[NSImage alloc] init] autorelease]], nil);
}

class StackedRepsTest : public ImageTest {};

TEST_F(StackedRepsTest, LaterRepresentationsAreCentredOnTheFirstAtWholePoints) {
  // 32 points red, then 15 points blue: floor(17 / 2) = 8 from the left
  // and from the bottom, so rows 9...23 from the top.
  NSBitmapImageRep *big = Solid(32, 32, imagetest::kRed);
  NSBitmapImageRep *small = Solid(15, 15, imagetest::kBlue);
  NSBitmapImageRep *canvas = [NSBitmapImageRep imageRepWithImageReps:@[ big, small ]];
  ASSERT_NE(canvas, nil);
  EXPECT_EQ([canvas pixelsWide], 32);
  EXPECT_EQ([canvas pixelsHigh], 32);
  EXPECT_EQ(RepPixel(canvas, 8, 9), imagetest::kBlue);
  EXPECT_EQ(RepPixel(canvas, 22, 23), imagetest::kBlue);
  EXPECT_EQ(RepPixel(canvas, 7, 9), imagetest::kRed);
  EXPECT_EQ(RepPixel(canvas, 8, 8), imagetest::kRed);
  EXPECT_EQ(RepPixel(canvas, 23, 23), imagetest::kRed);
  EXPECT_EQ(RepPixel(canvas, 22, 24), imagetest::kRed);
  // The 32 and 16 point case: (8, 8) on both axes.
  NSBitmapImageRep *even =
      [NSBitmapImageRep imageRepWithImageReps:@[ big, Solid(16, 16, imagetest::kGreen) ]];
  EXPECT_EQ(RepPixel(even, 8, 8), imagetest::kGreen);
  EXPECT_EQ(RepPixel(even, 23, 23), imagetest::kGreen);
  EXPECT_EQ(RepPixel(even, 7, 8), imagetest::kRed);
  EXPECT_EQ(RepPixel(even, 24, 23), imagetest::kRed);
}

TEST_F(StackedRepsTest, CompositesSourceOverAndSkipsWhatIsNotARepresentation) {
  NSBitmapImageRep *clear = Solid(10, 10, imagetest::kClear);
  NSBitmapImageRep *half = Solid(10, 10, RGBA{0, 0, 128, 128});
  NSBitmapImageRep *canvas = [NSBitmapImageRep imageRepWithImageReps:(NSArray *)@[
    Solid(10, 10, imagetest::kRed), (id) @"no", clear, half
  ]];
  ASSERT_NE(canvas, nil);
  RGBA p = RepPixel(canvas, 5, 5);
  EXPECT_NEAR(p.r, 127, 2);
  EXPECT_EQ(p.g, 0);
  EXPECT_NEAR(p.b, 128, 2);
  EXPECT_EQ(p.a, 255);
}

TEST_F(StackedRepsTest, CanvasHasThePixelSizeOfTheFirstAndPointsEqualToPixels) {
  NSBitmapImageRep *retina = Solid(64, 64, imagetest::kRed);
  [retina setSize:NSMakeSize(32, 32)];
  NSBitmapImageRep *canvas = [NSBitmapImageRep imageRepWithImageReps:@[ retina ]];
  ASSERT_NE(canvas, nil);
  EXPECT_EQ([canvas pixelsWide], 64);
  EXPECT_EQ([canvas size].width, 64);
}

TEST_F(StackedRepsTest, EmptyOrUnusableArraysGiveNil) {
  EXPECT_EQ([NSBitmapImageRep imageRepWithImageReps:@[]], nil);
  EXPECT_EQ([NSBitmapImageRep imageRepWithImageReps:NullOf<NSArray *>()], nil);
  EXPECT_EQ([NSBitmapImageRep imageRepWithImageReps:(NSArray *)@"reps"], nil);
  NSArray *numberFirst = @[ @1, Solid(4, 4, kWarm) ];
  EXPECT_EQ([NSBitmapImageRep imageRepWithImageReps:numberFirst], nil);
  // A representation without pixels (pixelsWide 0) cannot size a canvas.
  NSImageRep *sizeless = [[[NSImageRep alloc] init] autorelease];
  [sizeless setSize:NSMakeSize(10, 10)];
  EXPECT_EQ([NSBitmapImageRep imageRepWithImageReps:@[ sizeless ]], nil);
}
