// The Core Graphics C API on its own: geometry, colours, data providers,
// images, paths and bitmap contexts read back as pixels.

#include <CoreGraphics/CoreGraphics.h>

#include <type_traits>
#include <vector>

#import "GraphicsTestSupport.h"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

static_assert(std::is_same<CGPoint, NSPoint>::value, "CGPoint is NSPoint");
static_assert(std::is_same<CGSize, NSSize>::value, "CGSize is NSSize");
static_assert(std::is_same<CGRect, NSRect>::value, "CGRect is NSRect");
static_assert(std::is_same<CGFloat, double>::value, "CGFloat is double");

namespace {

// --- Geometry ------------------------------------------------------------------

TEST(GraphicsGeometry, RectanglesAreReadStandardized) {
  CGRect r = CGRectMake(10, 20, -4, -8);
  EXPECT_EQ(CGRectGetMinX(r), 6);
  EXPECT_EQ(CGRectGetMaxY(r), 20);
  EXPECT_EQ(CGRectGetMidY(r), 16);
  EXPECT_EQ(CGRectGetWidth(r), 4);
  EXPECT_TRUE(CGRectEqualToRect(CGRectStandardize(r), CGRectMake(6, 12, 4, 8)));
  EXPECT_TRUE(CGRectEqualToRect(r, CGRectMake(6, 12, 4, 8)));
  EXPECT_TRUE(CGRectContainsPoint(r, CGPointMake(6, 12)));
  EXPECT_FALSE(CGRectContainsPoint(r, CGPointMake(10, 12)));  // max edge is outside
}

TEST(GraphicsGeometry, NullIsTheAnswerOfAnEmptyIntersectionAndTheIdentityOfUnion) {
  CGRect a = CGRectMake(0, 0, 10, 10), far = CGRectMake(20, 20, 5, 5);
  CGRect none = CGRectIntersection(a, far);
  EXPECT_TRUE(CGRectIsNull(none));
  EXPECT_TRUE(CGRectIsEmpty(none));
  EXPECT_FALSE(CGRectIsNull(CGRectZero));
  EXPECT_TRUE(CGRectIsEmpty(CGRectZero));
  EXPECT_TRUE(CGRectEqualToRect(CGRectUnion(CGRectNull, far), far));
  EXPECT_TRUE(CGRectEqualToRect(CGRectUnion(a, far), CGRectMake(0, 0, 25, 25)));
  EXPECT_TRUE(CGRectEqualToRect(CGRectIntersection(a, CGRectMake(5, -5, 10, 10)),
                                CGRectMake(5, 0, 5, 5)));
  EXPECT_FALSE(CGRectIntersectsRect(a, CGRectMake(10, 0, 5, 5)));  // touching only
  EXPECT_TRUE(CGRectIntersectsRect(a, CGRectMake(9, 9, 5, 5)));
  EXPECT_TRUE(CGRectIsNull(CGRectInset(a, 6, 0)));
  EXPECT_TRUE(CGRectEqualToRect(CGRectInset(a, 2, 3), CGRectMake(2, 3, 6, 4)));
  EXPECT_TRUE(CGRectEqualToRect(CGRectOffset(a, 1, -2), CGRectMake(1, -2, 10, 10)));
  EXPECT_TRUE(CGRectEqualToRect(CGRectIntegral(CGRectMake(0.5, 1.2, 2, 2.9)),
                                CGRectMake(0, 1, 3, 4)));
  EXPECT_TRUE(CGRectContainsRect(a, CGRectMake(2, 2, 8, 8)));
  EXPECT_FALSE(CGRectContainsRect(a, CGRectMake(2, 2, 9, 8)));
}

TEST(GraphicsGeometry, TransformsPrependAndConcatenateInOrder) {
  CGAffineTransform t = CGAffineTransformTranslate(CGAffineTransformMakeScale(2, 3), 1, 1);
  CGPoint p = CGPointApplyAffineTransform(CGPointMake(1, 1), t);  // translate first, then scale
  EXPECT_DOUBLE_EQ(p.x, 4);
  EXPECT_DOUBLE_EQ(p.y, 6);
  CGAffineTransform c = CGAffineTransformConcat(CGAffineTransformMakeTranslation(1, 0),
                                                CGAffineTransformMakeScale(2, 2));
  p = CGPointApplyAffineTransform(CGPointZero, c);
  EXPECT_DOUBLE_EQ(p.x, 2);
  CGAffineTransform r = CGAffineTransformMakeRotation(M_PI / 2);
  p = CGPointApplyAffineTransform(CGPointMake(1, 0), r);
  EXPECT_NEAR(p.x, 0, 1e-12);
  EXPECT_NEAR(p.y, 1, 1e-12);  // counter-clockwise in y-up
  CGAffineTransform back = CGAffineTransformConcat(c, CGAffineTransformInvert(c));
  EXPECT_TRUE(CGAffineTransformIsIdentity(back));
  CGRect box = CGRectApplyAffineTransform(CGRectMake(0, 0, 2, 1), r);
  EXPECT_NEAR(CGRectGetMinX(box), -1, 1e-12);
  EXPECT_NEAR(CGRectGetWidth(box), 1, 1e-12);
  EXPECT_NEAR(CGRectGetHeight(box), 2, 1e-12);
}

// --- Colours, data -----------------------------------------------------------------

TEST(GraphicsColor, SpacesAndColorsCountComponentsAndReferences) {
  CGColorSpaceRef rgb = CGColorSpaceCreateWithName(kCGColorSpaceSRGB);
  CGColorSpaceRef gray = CGColorSpaceCreateWithName(kCGColorSpaceGenericGray);
  ASSERT_TRUE(rgb && gray);
  EXPECT_EQ(CGColorSpaceGetNumberOfComponents(rgb), 3u);
  EXPECT_EQ(CGColorSpaceGetNumberOfComponents(gray), 1u);
  EXPECT_EQ(CGColorSpaceGetModel(gray), kCGColorSpaceModelMonochrome);
  EXPECT_EQ(CGColorSpaceCreateWithName((CFStringRef) @"no such space"), (CGColorSpaceRef)NULL);

  CGFloat values[4] = {0.25, 0.5, 0.75, 0.5};
  CGColorRef color = CGColorCreate(rgb, values);
  CGColorSpaceRelease(rgb);  // the colour keeps its space
  ASSERT_TRUE(color);
  EXPECT_EQ(CGColorGetNumberOfComponents(color), 4u);
  EXPECT_EQ(CGColorGetComponents(color)[2], 0.75);
  EXPECT_EQ(CGColorGetAlpha(color), 0.5);
  EXPECT_EQ(CGColorSpaceGetModel(CGColorGetColorSpace(color)), kCGColorSpaceModelRGB);
  CGColorRef same = CGColorCreateGenericRGB(0.25, 0.5, 0.75, 0.5);
  EXPECT_TRUE(CGColorEqualToColor(color, same));
  CGColorRef opaque = CGColorCreateCopyWithAlpha(color, 1);
  EXPECT_FALSE(CGColorEqualToColor(color, opaque));
  EXPECT_EQ(CGColorRetain(color), color);
  CGColorRelease(color);
  CGColorRelease(color);
  CGColorRelease(same);
  CGColorRelease(opaque);

  CGColorRef g = CGColorCreateGenericGray(0.5, 1);
  EXPECT_EQ(CGColorGetNumberOfComponents(g), 2u);
  CGColorRelease(g);
  CGColorSpaceRelease(gray);
}

void CountRelease(void *info, const void *, size_t size) { *static_cast<int *>(info) += int(size); }

TEST(GraphicsData, ProvidersCopyTheirBytesAndReleaseThemOnce) {
  static const uint8_t bytes[4] = {1, 2, 3, 4};
  int released = 0;
  CGDataProviderRef provider = CGDataProviderCreateWithData(&released, bytes, 4, CountRelease);
  CFDataRef copy = CGDataProviderCopyData(provider);
  NSData *data = (NSData *)copy;
  ASSERT_EQ([data length], 4u);
  EXPECT_EQ(static_cast<const uint8_t *>([data bytes])[3], 4);
  EXPECT_NE([data bytes], (const void *)bytes);
  CFRelease(copy);
  CGDataProviderRetain(provider);
  CGDataProviderRelease(provider);
  EXPECT_EQ(released, 0);
  CGDataProviderRelease(provider);
  EXPECT_EQ(released, 4);

  NSData *source = [NSData dataWithBytes:bytes length:2];
  CGDataProviderRef fromData = CGDataProviderCreateWithCFData((CFDataRef)source);
  CFDataRef back = CGDataProviderCopyData(fromData);
  EXPECT_NSEQ((NSData *)back, source);
  CFRelease(back);
  CGDataProviderRelease(fromData);
}

// --- Images ----------------------------------------------------------------------

// A 2x2 RGBA image: red, green on top; blue, white below.
CGImageRef NewQuadImage() {
  static const uint8_t pixels[16] = {255, 0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255, 255, 255, 255, 255};
  CGDataProviderRef provider = CGDataProviderCreateWithData(NULL, pixels, sizeof pixels, NULL);
  CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
  CGImageRef image = CGImageCreate(2, 2, 8, 32, 8, space, kCGImageAlphaPremultipliedLast, provider,
                                   NULL, false, kCGRenderingIntentDefault);
  CGColorSpaceRelease(space);
  CGDataProviderRelease(provider);
  return image;
}

TEST(GraphicsImage, DescribesItsLayoutAndCutsSubImages) {
  CGImageRef image = NewQuadImage();
  ASSERT_TRUE(image);
  EXPECT_EQ(CGImageGetWidth(image), 2u);
  EXPECT_EQ(CGImageGetHeight(image), 2u);
  EXPECT_EQ(CGImageGetBitsPerComponent(image), 8u);
  EXPECT_EQ(CGImageGetBitsPerPixel(image), 32u);
  EXPECT_EQ(CGImageGetBytesPerRow(image), 8u);
  EXPECT_EQ(CGImageGetAlphaInfo(image), kCGImageAlphaPremultipliedLast);
  EXPECT_EQ(CGImageGetBitmapInfo(image), uint32_t(kCGImageAlphaPremultipliedLast));
  EXPECT_EQ(CGColorSpaceGetModel(CGImageGetColorSpace(image)), kCGColorSpaceModelRGB);
  CFDataRef bytes = CGDataProviderCopyData(CGImageGetDataProvider(image));
  EXPECT_EQ(static_cast<const uint8_t *>([(NSData *)bytes bytes])[5], 255);  // green of (1, 0)
  CFRelease(bytes);

  CGImageRef corner = CGImageCreateWithImageInRect(image, CGRectMake(1, 1, 1, 1));
  ASSERT_TRUE(corner);
  EXPECT_EQ(CGImageGetWidth(corner), 1u);
  CFDataRef cornerBytes = CGDataProviderCopyData(CGImageGetDataProvider(corner));
  const uint8_t *c = static_cast<const uint8_t *>([(NSData *)cornerBytes bytes]);
  EXPECT_EQ(c[0] + c[1] + c[2], 255 * 3);  // white: rows count from the top
  CFRelease(cornerBytes);
  CGImageRelease(corner);
  EXPECT_FALSE(CGImageCreateWithImageInRect(image, CGRectMake(5, 5, 1, 1)));
  EXPECT_EQ(CGImageRetain(image), image);
  CGImageRelease(image);
  CGImageRelease(image);

  CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
  static const uint8_t few[2] = {0, 0};
  CGDataProviderRef shortData = CGDataProviderCreateWithData(NULL, few, 2, NULL);
  EXPECT_FALSE(CGImageCreate(2, 2, 8, 32, 8, space, kCGImageAlphaPremultipliedLast, shortData, NULL,
                             false, kCGRenderingIntentDefault));
  CGDataProviderRelease(shortData);
  CGColorSpaceRelease(space);
}

// --- Paths -----------------------------------------------------------------------

void Collect(void *info, const CGPathElement *element) {
  auto *out = static_cast<std::vector<std::pair<CGPathElementType, CGPoint>> *>(info);
  CGPoint last = element->type == kCGPathElementCloseSubpath ? CGPointZero
                 : element->type == kCGPathElementAddCurveToPoint ? element->points[2]
                 : element->type == kCGPathElementAddQuadCurveToPoint ? element->points[1]
                                                                      : element->points[0];
  out->push_back({element->type, last});
}

TEST(GraphicsPath, AppliesElementsInOrderWithTransformedPoints) {
  CGMutablePathRef path = CGPathCreateMutable();
  CGAffineTransform shift = CGAffineTransformMakeTranslation(10, 0);
  CGPathMoveToPoint(path, &shift, 0, 0);
  CGPathAddLineToPoint(path, NULL, 5, 5);
  CGPathAddQuadCurveToPoint(path, NULL, 6, 6, 7, 5);
  CGPathAddCurveToPoint(path, NULL, 8, 8, 9, 9, 20, 0);
  CGPathCloseSubpath(path);
  std::vector<std::pair<CGPathElementType, CGPoint>> seen;
  CGPathApply(path, &seen, Collect);
  ASSERT_EQ(seen.size(), 5u);
  EXPECT_EQ(seen[0].first, kCGPathElementMoveToPoint);
  EXPECT_EQ(seen[0].second.x, 10);
  EXPECT_EQ(seen[2].first, kCGPathElementAddQuadCurveToPoint);
  EXPECT_EQ(seen[3].first, kCGPathElementAddCurveToPoint);
  EXPECT_EQ(seen[3].second.x, 20);
  EXPECT_EQ(seen[4].first, kCGPathElementCloseSubpath);
  EXPECT_TRUE(CGRectEqualToRect(CGPathGetBoundingBox(path), CGRectMake(5, 0, 15, 9)));

  CGMutablePathRef other = CGPathCreateMutable();
  CGPathAddRect(other, NULL, CGRectMake(0, 0, 4, 4));
  CGPathAddEllipseInRect(other, NULL, CGRectMake(10, 10, 4, 4));
  CGPathAddPath(path, NULL, other);
  EXPECT_TRUE(CGRectEqualToRect(CGPathGetBoundingBox(other), CGRectMake(0, 0, 14, 14)));
  EXPECT_TRUE(CGPathContainsPoint(other, NULL, CGPointMake(12, 12), false));
  EXPECT_FALSE(CGPathContainsPoint(other, NULL, CGPointMake(7, 7), false));
  EXPECT_TRUE(CGRectIsNull(CGPathGetBoundingBox(NullOf<CGPathRef>())));
  CGPathRelease(other);
  CGPathRelease(path);
}

// --- Bitmap contexts -------------------------------------------------------------------

TEST(GraphicsBitmapContext, QuartzOriginIsBottomLeftOfTheBuffer) {
  CGContextRef c = NewRGBAContext(20, 10);
  ASSERT_TRUE(c);
  EXPECT_EQ(CGBitmapContextGetWidth(c), 20u);
  EXPECT_EQ(CGBitmapContextGetHeight(c), 10u);
  EXPECT_GE(CGBitmapContextGetBytesPerRow(c), 80u);
  CGContextSetRGBFillColor(c, 1, 0, 0, 1);
  CGContextFillRect(c, CGRectMake(0, 0, 5, 5));
  const uint8_t *data = static_cast<const uint8_t *>(CGBitmapContextGetData(c));
  size_t last = 9 * CGBitmapContextGetBytesPerRow(c);
  EXPECT_EQ(data[last + 0], 255);  // bottom row of the image is the last row in memory
  EXPECT_EQ(data[0 + 3], 0);
  EXPECT_PIXEL(RGBAPixel(c, 2, 2), 255, 0, 0, 255);
  EXPECT_PIXEL(RGBAPixel(c, 2, 7), 0, 0, 0, 0);
  CGContextRelease(c);
}

TEST(GraphicsBitmapContext, DrawsIntoTheCallersBufferAndSnapshotsStayPut) {
  std::vector<uint8_t> memory(8 * 8 * 4, 0);
  CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
  CGContextRef c = CGBitmapContextCreate(memory.data(), 8, 8, 8, 32, space,
                                         kCGImageAlphaPremultipliedFirst | kCGBitmapByteOrder32Little);
  CGColorSpaceRelease(space);
  ASSERT_TRUE(c);
  EXPECT_EQ(CGBitmapContextGetData(c), memory.data());
  CGContextSetRGBFillColor(c, 0, 0, 1, 1);
  CGContextFillRect(c, CGRectMake(0, 0, 8, 8));
  EXPECT_EQ(memory[0], 255);  // BGRA in memory: blue first
  EXPECT_EQ(memory[2], 0);
  CGImageRef snapshot = CGBitmapContextCreateImage(c);
  CGContextClearRect(c, CGRectMake(0, 0, 8, 8));
  EXPECT_EQ(memory[3], 0);
  CFDataRef bytes = CGDataProviderCopyData(CGImageGetDataProvider(snapshot));
  EXPECT_EQ(static_cast<const uint8_t *>([(NSData *)bytes bytes])[0], 255);
  CFRelease(bytes);
  CGImageRelease(snapshot);
  CGContextRelease(c);
  EXPECT_FALSE(CGBitmapContextCreate(NULL, 4, 4, 16, 0, NULL, kCGImageAlphaPremultipliedLast));
}

TEST(GraphicsBitmapContext, SaveAndRestoreBracketColorTransformClipAndAlpha) {
  CGContextRef c = NewRGBAContext(40, 10);
  CGContextSetRGBFillColor(c, 0, 0, 1, 1);
  CGContextSaveGState(c);
  CGContextSetRGBFillColor(c, 1, 0, 0, 1);
  CGContextTranslateCTM(c, 10, 0);
  CGContextClipToRect(c, CGRectMake(0, 0, 5, 10));
  CGContextSetAlpha(c, 0.5);
  CGContextFillRect(c, CGRectMake(0, 0, 10, 10));  // lands in x 10..15 only
  EXPECT_TRUE(CGAffineTransformEqualToTransform(CGContextGetCTM(c),
                                                CGAffineTransformMakeTranslation(10, 0)));
  CGContextRestoreGState(c);
  EXPECT_TRUE(CGAffineTransformIsIdentity(CGContextGetCTM(c)));
  CGContextFillRect(c, CGRectMake(30, 0, 10, 10));
  EXPECT_PIXEL(RGBAPixel(c, 12, 5), 128, 0, 0, 128);
  EXPECT_PIXEL(RGBAPixel(c, 17, 5), 0, 0, 0, 0);
  EXPECT_PIXEL(RGBAPixel(c, 35, 5), 0, 0, 255, 255);  // blue, opaque, unclipped
  CGContextRelease(c);
}

TEST(GraphicsBitmapContext, PathsFillWithBothRulesAndStroke) {
  CGContextRef c = NewRGBAContext(30, 30);
  CGContextAddRect(c, CGRectMake(0, 0, 30, 30));
  CGContextAddRect(c, CGRectMake(10, 10, 10, 10));
  EXPECT_FALSE(CGContextIsPathEmpty(c));
  CGContextSetGrayFillColor(c, 0, 1);
  CGContextEOFillPath(c);
  EXPECT_TRUE(CGContextIsPathEmpty(c));
  EXPECT_PIXEL(RGBAPixel(c, 15, 15), 0, 0, 0, 0);  // the hole
  EXPECT_PIXEL(RGBAPixel(c, 5, 5), 0, 0, 0, 255);
  CGContextSetRGBStrokeColor(c, 0, 1, 0, 1);
  CGContextSetLineWidth(c, 2);
  CGContextMoveToPoint(c, 15, 0);
  CGContextAddLineToPoint(c, 15, 30);
  CGContextStrokePath(c);
  EXPECT_PIXEL(RGBAPixel(c, 15, 15), 0, 255, 0, 255);
  EXPECT_PIXEL(RGBAPixel(c, 17, 15), 0, 0, 0, 0);
  CGContextSetRGBFillColor(c, 1, 0, 0, 1);
  CGContextFillEllipseInRect(c, CGRectMake(10, 10, 10, 10));
  EXPECT_PIXEL(RGBAPixel(c, 12, 17), 255, 0, 0, 255);
  EXPECT_PIXEL(RGBAPixel(c, 10, 10), 0, 0, 0, 0);  // corner outside the ellipse
  CGContextRelease(c);
}

TEST(GraphicsBitmapContext, ImagesDrawUprightAndMasksKeepPaintOutWhereSamplesAreOne) {
  CGContextRef c = NewRGBAContext(20, 20);
  CGImageRef image = NewQuadImage();
  CGContextDrawImage(c, CGRectMake(0, 0, 20, 20), image);
  CGImageRelease(image);
  EXPECT_PIXEL(RGBAPixel(c, 5, 15), 255, 0, 0, 255);  // top-left stays top-left
  EXPECT_PIXEL(RGBAPixel(c, 15, 15), 0, 255, 0, 255);
  EXPECT_PIXEL(RGBAPixel(c, 5, 5), 0, 0, 255, 255);
  CGContextClearRect(c, CGRectMake(0, 0, 20, 20));

  // Mask rows from the top: 1 0 / 0 0 (8 bits per sample).
  static const uint8_t samples[2] = {0x80, 0x00};
  CGDataProviderRef provider = CGDataProviderCreateWithData(NULL, samples, 2, NULL);
  CGImageRef mask = CGImageMaskCreate(2, 2, 1, 1, 1, provider, NULL, false);
  CGDataProviderRelease(provider);
  ASSERT_TRUE(mask);
  EXPECT_TRUE(CGImageIsMask(mask));
  CGContextSaveGState(c);
  CGContextClipToMask(c, CGRectMake(0, 0, 20, 20), mask);
  CGContextSetRGBFillColor(c, 0, 0, 1, 1);
  CGContextFillRect(c, CGRectMake(0, 0, 20, 20));
  CGContextRestoreGState(c);
  EXPECT_PIXEL(RGBAPixel(c, 5, 15), 0, 0, 0, 0);  // sample 1: no paint
  EXPECT_PIXEL(RGBAPixel(c, 15, 15), 0, 0, 255, 255);
  EXPECT_PIXEL(RGBAPixel(c, 5, 5), 0, 0, 255, 255);
  CGContextSetRGBFillColor(c, 1, 0, 0, 1);
  CGContextFillRect(c, CGRectMake(0, 10, 10, 10));  // the clip did not outlive the restore
  EXPECT_PIXEL(RGBAPixel(c, 5, 15), 255, 0, 0, 255);
  CGImageRelease(mask);
  CGContextRelease(c);
}

TEST(GraphicsBitmapContext, ShadowOffsetsAreYUpAndBlendModesApply) {
  CGContextRef c = NewRGBAContext(40, 40);
  CGColorRef black = CGColorCreateGenericGray(0, 1);
  CGContextSetShadowWithColor(c, CGSizeMake(10, -10), 0, black);
  CGColorRelease(black);
  CGContextSetRGBFillColor(c, 1, 0, 0, 1);
  CGContextFillRect(c, CGRectMake(10, 20, 10, 10));
  EXPECT_PIXEL(RGBAPixel(c, 15, 25), 255, 0, 0, 255);
  EXPECT_PIXEL(RGBAPixel(c, 25, 15), 0, 0, 0, 255);  // right and below in y-up
  EXPECT_PIXEL(RGBAPixel(c, 25, 35), 0, 0, 0, 0);
  CGContextSetShadowWithColor(c, CGSizeZero, 0, NULL);

  CGContextSetRGBFillColor(c, 1, 1, 0, 1);
  CGContextFillRect(c, CGRectMake(0, 0, 10, 10));
  CGContextSetBlendMode(c, kCGBlendModeMultiply);
  CGContextSetRGBFillColor(c, 0, 1, 1, 1);
  CGContextFillRect(c, CGRectMake(0, 0, 10, 10));
  EXPECT_PIXEL(RGBAPixel(c, 5, 5), 0, 255, 0, 255);
  CGContextRelease(c);
}

}  // namespace
