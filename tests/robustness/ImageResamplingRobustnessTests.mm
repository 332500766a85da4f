// Bad input to representation search, the bitmap add-ons and the Core Image
// stand-in under them: nil, NaN, infinities, huge and negative sizes,
// objects of the wrong class, extreme masks.

#import <CoreImage/CoreImage.h>
#import <Talvo/Talvo.h>

#import "images/ImageTestSupport.h"
#import "robustness/RobustnessSupport.h"
#import "support/TestSupport.h"

namespace {

class ImageResamplingRobustness : public PooledTest {};

TEST_F(ImageResamplingRobustness, RepresentationSearch) {
  NSImage *image = [[[NSImage alloc] initWithSize:NSMakeSize(4, 4)] autorelease];
  NSBitmapImageRep *rep = [imagetest::NewRep(8, 8) autorelease];
  [image addRepresentation:rep];
  NSImageRep *odd = [[[NSImageRep alloc] init] autorelease];
  for (double v : bad::kValues) {
    [odd setSize:NSMakeSize(v, v)];
    [image addRepresentation:odd];
    for (int32_t side : {0, -1, 1, 8, INT32_MAX, INT32_MIN}) {
      for (int32_t mask : {0, -1, 1, 31, INT32_MIN, INT32_MAX}) {
        EXPECT_CALM([image bestRepresentationForSideSize:side selector:mask]);
      }
    }
    [image removeRepresentation:odd];
  }
}

TEST_F(ImageResamplingRobustness, BitmapAddons) {
  NSBitmapImageRep *rep = [imagetest::NewRep(8, 8) autorelease];
  for (double w : bad::kValues) {
    for (double h : bad::kValues) {
      NSBitmapImageRep *out = rep;
      EXPECT_CALM(out = [rep imageRepWithSize:NSMakeSize(w, h)]) << w << " x " << h;
      if (out) {
        EXPECT_LE([out pixelsWide] * [out pixelsHigh], 1 << 28);
      }
    }
  }
  EXPECT_CALM([NSBitmapImageRep imageRepWithImage:NullOf<NSImage *>()]);
  EXPECT_CALM([NSBitmapImageRep imageRepWithImage:(NSImage *)bad::WrongObject()]);
  EXPECT_CALM([NSBitmapImageRep imageRepWithImageReps:NullOf<NSArray *>()]);
  EXPECT_CALM([NSBitmapImageRep imageRepWithImageReps:(NSArray *)bad::WrongObject()]);
  EXPECT_CALM([NSBitmapImageRep imageRepWithImageReps:@[]]);
  NSImageRep *odd = [[[NSImageRep alloc] init] autorelease];
  for (double v : bad::kValues) {
    [odd setSize:NSMakeSize(v, v)];
    NSArray *reps = @[ rep, odd, bad::WrongObject() ];
    EXPECT_CALM([NSBitmapImageRep imageRepWithImageReps:reps]) << v;
  }
}

TEST_F(ImageResamplingRobustness, CoreImageStandIn) {
  CIImage *image =
      [[[CIImage alloc] initWithBitmapImageRep:[imagetest::NewRep(8, 8) autorelease]] autorelease];
  ASSERT_NE(image, nil);
  for (NSString *name : @[ @"CIAffineClamp", @"CILanczosScaleTransform", @"CICrop" ]) {
    CIFilter *filter = [CIFilter filterWithName:name];
    for (NSString *key : [filter inputKeys]) {
      for (id value : @[
             bad::WrongObject(), bad::WrongString(), [NSNull null], @(bad::kNaN),
             [CIVector vectorWithX:bad::kInf Y:0 Z:bad::kHuge W:-1]
           ]) {
        EXPECT_CALM([filter setValue:value forKey:key]);
        EXPECT_CALM([filter setValue:image forKey:kCIInputImageKey]);
        CIImage *output = nil;
        EXPECT_CALM(output = [filter outputImage]) << [name UTF8String] << " " << [key UTF8String];
        EXPECT_CALM([[[NSBitmapImageRep alloc] initWithCIImage:output] autorelease]);
      }
      [filter setDefaults];
    }
    EXPECT_CALM([filter setValue:image forKey:NullOf<NSString *>()]);
    EXPECT_CALM([filter setValue:image forKey:(NSString *)bad::WrongObject()]);
    EXPECT_CALM([filter valueForKey:(NSString *)bad::WrongObject()]);
  }
  for (double v : bad::kValues) {
    CGRect rect = CGRectMake(v, v, v, v);
    EXPECT_CALM(
        [[[NSBitmapImageRep alloc] initWithCIImage:[image imageByCroppingToRect:rect]] autorelease])
        << v;
    EXPECT_CALM([[[NSBitmapImageRep alloc]
        initWithCIImage:[[image imageByClampingToExtent] imageByCroppingToRect:rect]] autorelease])
        << v;
  }
  EXPECT_CALM([CIVector vectorWithValues:NULL count:SIZE_MAX]);
}

}  // namespace
