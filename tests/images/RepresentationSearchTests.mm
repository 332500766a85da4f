// Choosing a representation for a side length: exact matches, the smallest
// larger, the largest smaller, and which bitmaps the resolution bits admit.
#import <AppKit/AppKit.h>
#import <Talvo/Talvo.h>

#include "images/ImageTestSupport.h"

// A representation that is not a bitmap, of whatever size it is given.
@interface TVPlainRep : NSImageRep
@end

@implementation TVPlainRep
- (BOOL)draw {
  return YES;
}
@end

namespace {

// A bitmap of `pixels` square pixels and `points` square points (+0).
NSBitmapImageRep *Bitmap(NSInteger pixels, CGFloat points) {
  NSBitmapImageRep *rep = [imagetest::NewRep(pixels, pixels) autorelease];
  [rep setSize:NSMakeSize(points, points)];
  return rep;
}

NSBitmapImageRep *Bitmap(NSInteger pixelsWide, NSInteger pixelsHigh, NSSize points) {
  NSBitmapImageRep *rep = [imagetest::NewRep(pixelsWide, pixelsHigh) autorelease];
  [rep setSize:points];
  return rep;
}

NSImageRep *Plain(NSSize size) {
  NSImageRep *rep = [[[TVPlainRep alloc] init] autorelease];
  [rep setSize:size];
  return rep;
}

NSImage *ImageWith(NSArray *reps) {
  NSImage *image = [[[NSImage alloc] initWithSize:NSMakeSize(16, 16)] autorelease];
  [image addRepresentations:reps];
  return image;
}

constexpr int32_t kLarger = VXRepresentationAllowLarger;
constexpr int32_t kSmaller = VXRepresentationAllowSmaller;
constexpr int32_t k1x = VXRepresentationStandardResolution;
constexpr int32_t k2x = VXRepresentationDoubleResolution;
constexpr int32_t k3x = VXRepresentationTripleResolution;

}  // namespace

using RepresentationSearchTest = PooledTest;

TEST_F(RepresentationSearchTest, MaskBitsHaveTheirDocumentedValues) {
  EXPECT_EQ(VXRepresentationAllowLarger, 1);
  EXPECT_EQ(VXRepresentationAllowSmaller, 2);
  EXPECT_EQ(VXRepresentationStandardResolution, 4);
  EXPECT_EQ(VXRepresentationDoubleResolution, 8);
  EXPECT_EQ(VXRepresentationTripleResolution, 16);
}

TEST_F(RepresentationSearchTest, ResolutionBitsChooseAmongScalesOfOnePointSize) {
  // 16, 32 and 64 pixels over 16 points: scales 1, 2 and 4.
  NSBitmapImageRep *r16 = Bitmap(16, 16), *r32 = Bitmap(32, 16), *r64 = Bitmap(64, 16);
  NSImage *image = ImageWith(@[ r16, r32, r64 ]);
  EXPECT_EQ([image bestRepresentationForSideSize:32 selector:kLarger | k2x], r32);
  // Only the 1x bitmap is eligible; it is smaller than asked.
  EXPECT_EQ([image bestRepresentationForSideSize:32 selector:kLarger | k1x], nil);
  EXPECT_EQ([image bestRepresentationForSideSize:32 selector:kLarger | kSmaller | k1x], r16);
  // Standard and double together switch filtering off: every scale counts.
  EXPECT_EQ([image bestRepresentationForSideSize:32 selector:kLarger | k1x | k2x], r32);
  EXPECT_EQ([image bestRepresentationForSideSize:64 selector:k1x | k2x], r64);
  // Without any resolution bit no bitmap is eligible, even an exact one.
  EXPECT_EQ([image bestRepresentationForSideSize:32 selector:kLarger | kSmaller], nil);
}

TEST_F(RepresentationSearchTest, LargerBeatsSmallerWhicheverComesFirst) {
  NSBitmapImageRep *r16 = Bitmap(16, 16), *r32 = Bitmap(32, 16), *r64 = Bitmap(64, 16);
  EXPECT_EQ(
      [ImageWith(@[ r16, r32, r64 ]) bestRepresentationForSideSize:48
                                                          selector:kLarger | kSmaller | k1x | k2x],
      r64);
  // A larger one met first also shuts smaller ones out afterwards.
  EXPECT_EQ([ImageWith(@[ r64, r32 ]) bestRepresentationForSideSize:48
                                                           selector:kLarger | kSmaller | k1x | k2x],
            r64);
  // Without AllowLarger the largest smaller one wins.
  EXPECT_EQ([ImageWith(@[ r16, r32 ]) bestRepresentationForSideSize:48
                                                           selector:kSmaller | k1x | k2x],
            r32);
  EXPECT_EQ([ImageWith(@[ r32, r16 ]) bestRepresentationForSideSize:48
                                                           selector:kSmaller | k1x | k2x],
            r32);
  // The smallest of several larger ones.
  NSBitmapImageRep *r128 = Bitmap(128, 16);
  EXPECT_EQ([ImageWith(@[ r128, r64, r16 ]) bestRepresentationForSideSize:48
                                                                 selector:kLarger | k1x | k2x],
            r64);
}

TEST_F(RepresentationSearchTest, TiesKeepTheFirstMetAndExactMatchesWinAtOnce) {
  NSBitmapImageRep *a = Bitmap(64, 16), *b = Bitmap(64, 16), *exact = Bitmap(48, 16);
  EXPECT_EQ([ImageWith(@[ a, b ]) bestRepresentationForSideSize:48 selector:kLarger | k1x | k2x],
            a);
  EXPECT_EQ([ImageWith(@[ a, b, exact ]) bestRepresentationForSideSize:48
                                                              selector:kLarger | k1x | k2x],
            exact);
}

TEST_F(RepresentationSearchTest, DoubleAndTripleNeedExactScales) {
  NSBitmapImageRep *r2x = Bitmap(32, 16), *r3x = Bitmap(48, 16), *odd = Bitmap(33, 16);
  NSImage *image = ImageWith(@[ odd, r2x, r3x ]);
  EXPECT_EQ([image bestRepresentationForSideSize:40 selector:kLarger | k3x], r3x);
  EXPECT_EQ([image bestRepresentationForSideSize:40 selector:kLarger | k2x], nil);
  EXPECT_EQ([image bestRepresentationForSideSize:40 selector:kSmaller | k2x], r2x);
  // 33 pixels over 16 points is neither 2x nor 3x, and not under 2x.
  EXPECT_EQ([image bestRepresentationForSideSize:33 selector:kLarger | kSmaller | k2x | k3x], r3x);
}

TEST_F(RepresentationSearchTest, StandardResolutionComparesWithThePointHeight) {
  // 40 x 20 pixels over 30 x 10 points: 2 x height (20) is not above the
  // pixel side (40), though 2 x the point side (60) would be.
  NSBitmapImageRep *wide = Bitmap(40, 20, NSMakeSize(30, 10));
  EXPECT_EQ([ImageWith(@[ wide ]) bestRepresentationForSideSize:40 selector:kLarger | k1x], nil);
  // 40 x 20 pixels over 10 x 30 points: 2 x 30 > 40.
  NSBitmapImageRep *tall = Bitmap(40, 20, NSMakeSize(10, 30));
  EXPECT_EQ([ImageWith(@[ tall ]) bestRepresentationForSideSize:40 selector:kLarger | k1x], tall);
}

TEST_F(RepresentationSearchTest, OtherRepresentationsCountByPointsAndAreAlwaysEligible) {
  NSImageRep *plain = Plain(NSMakeSize(20, 10.9));
  NSBitmapImageRep *bitmap = Bitmap(20, 20);
  NSImage *image = ImageWith(@[ bitmap, plain ]);
  EXPECT_EQ([image bestRepresentationForSideSize:20 selector:0], plain);
  EXPECT_EQ([image bestRepresentationForSideSize:20 selector:k1x], bitmap);
  // Sides are truncated: 20.9 points is a side of 20.
  NSImageRep *fractional = Plain(NSMakeSize(20.9, 3));
  EXPECT_EQ([ImageWith(@[ fractional ]) bestRepresentationForSideSize:20 selector:0], fractional);
}

TEST_F(RepresentationSearchTest, SidesCompareAsUnsigned32BitValues) {
  // A negative side wraps to a very large one: "larger" than any positive
  // side, and equal to the same negative request.
  NSImageRep *negative = Plain(NSMakeSize(-5, -5));
  NSImage *image = ImageWith(@[ negative ]);
  EXPECT_EQ([image bestRepresentationForSideSize:10 selector:kLarger], negative);
  EXPECT_EQ([image bestRepresentationForSideSize:10 selector:kSmaller], nil);
  EXPECT_EQ([image bestRepresentationForSideSize:-5 selector:0], negative);
  NSImageRep *small = Plain(NSMakeSize(8, 8));
  EXPECT_EQ([ImageWith(@[ small ]) bestRepresentationForSideSize:-1 selector:kSmaller], small);
}

TEST_F(RepresentationSearchTest, EmptyImagesAndOddRepresentationsGiveNil) {
  NSImage *empty = [[[NSImage alloc] initWithSize:NSMakeSize(10, 10)] autorelease];
  EXPECT_EQ([empty bestRepresentationForSideSize:10 selector:-1], nil);
  NSImageRep *nan = Plain(NSMakeSize(NAN, NAN));
  EXPECT_EQ([ImageWith(@[ nan ]) bestRepresentationForSideSize:0 selector:0], nan);
  EXPECT_EQ([ImageWith(@[ nan ]) bestRepresentationForSideSize:1 selector:kLarger], nil);
  NSImageRep *huge = Plain(NSMakeSize(INFINITY, 1e300));
  EXPECT_EQ([ImageWith(@[ huge ]) bestRepresentationForSideSize:1 selector:kLarger], nil);
}
