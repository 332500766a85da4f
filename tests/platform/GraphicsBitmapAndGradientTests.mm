// Bitmap contexts in each layout seen from the caller's memory at the
// moments it may look (CGContextFlush, CGBitmapContextGetData,
// CGBitmapContextCreateImage), directly and through AppKit; and gradients
// and shadings through the C API, compared with plain cairo.
#import <AppKit/AppKit.h>
#include <CoreGraphics/CoreGraphics.h>
#include <cairo.h>

#include <cstring>
#include <vector>

#include "platform/GraphicsTestSupport.h"

namespace {

using GraphicsBitmapMoments = PooledTest;
using GraphicsGradients = PooledTest;

CGContextRef NewContext(void *data, size_t w, size_t h, size_t stride, uint32_t info) {
  CGColorSpaceRef rgb = CGColorSpaceCreateDeviceRGB();
  CGContextRef c = CGBitmapContextCreate(data, w, h, 8, stride, rgb, info);
  CGColorSpaceRelease(rgb);
  return c;
}

// The four bytes of a pixel in memory order; -1 stands for a skipped byte,
// whose value Quartz leaves undefined.
std::vector<int> TopLeft(const uint8_t *p) { return {p[0], p[1], p[2], p[3]}; }
std::vector<int> Bytes(const uint8_t *p, const std::vector<int> &want) {
  std::vector<int> got = TopLeft(p);
  for (size_t i = 0; i < 4; ++i) {
    if (want[i] < 0) got[i] = -1;
  }
  return got;
}

}  // namespace

TEST_F(GraphicsBitmapMoments, EveryLayoutHoldsItsPixelsWhenTheCallerLooks) {
  struct Layout {
    uint32_t info;
    std::vector<int> greenHalf;  // 50% green, premultiplied, memory order
  } layouts[] = {
      {kCGImageAlphaPremultipliedLast, {0, 128, 0, 128}},                              // RGBA
      {kCGImageAlphaPremultipliedFirst, {128, 0, 128, 0}},                             // ARGB
      {kCGImageAlphaPremultipliedFirst | kCGBitmapByteOrder32Little, {0, 128, 0, 128}},  // BGRA
      {kCGImageAlphaPremultipliedLast | kCGBitmapByteOrder32Little, {128, 0, 128, 0}},   // ABGR
      {kCGImageAlphaNoneSkipLast, {0, 128, 0, -1}},                                    // RGBX over black
  };
  for (const Layout &layout : layouts) {
    SCOPED_TRACE(testing::Message() << "bitmap info " << layout.info);
    std::vector<uint8_t> memory(4 * 2 * 4, 0);
    CGContextRef c = NewContext(memory.data(), 4, 2, 16, layout.info);
    ASSERT_NE(c, (CGContextRef)NULL);
    CGContextSetRGBFillColor(c, 0, 1, 0, 0.5);
    CGContextFillRect(c, CGRectMake(0, 1, 1, 1));  // the top-left pixel
    CGContextFlush(c);
    EXPECT_EQ(Bytes(memory.data(), layout.greenHalf), layout.greenHalf) << "after CGContextFlush";

    // A second fill, then GetData.
    CGContextSetBlendMode(c, kCGBlendModeCopy);
    CGContextFillRect(c, CGRectMake(0, 1, 1, 1));
    EXPECT_EQ(CGBitmapContextGetData(c), memory.data());
    EXPECT_EQ(Bytes(memory.data(), layout.greenHalf), layout.greenHalf) << "after CGBitmapContextGetData";

    // The caller writes the bottom-right pixel; the next drawing keeps it
    // and a snapshot shows both.
    for (int i = 0; i < 4; ++i) memory[16 + 12 + i] = uint8_t(layout.greenHalf[i] < 0 ? 255 : layout.greenHalf[i]);
    CGContextFillRect(c, CGRectMake(1, 1, 1, 1));
    CGImageRef image = CGBitmapContextCreateImage(c);
    ASSERT_NE(image, (CGImageRef)NULL);
    CFDataRef data = CGDataProviderCopyData(CGImageGetDataProvider(image));
    const uint8_t *bytes = static_cast<const uint8_t *>([(NSData *)data bytes]);
    EXPECT_EQ(Bytes(bytes, layout.greenHalf), layout.greenHalf) << "in the snapshot";
    EXPECT_EQ(Bytes(bytes + 4, layout.greenHalf), layout.greenHalf) << "the second fill in the snapshot";
    EXPECT_EQ(Bytes(bytes + 16 + 12, layout.greenHalf), layout.greenHalf) << "the caller's own write kept";
    EXPECT_EQ(Bytes(memory.data() + 16 + 12, layout.greenHalf), layout.greenHalf);
    CFRelease(data);
    CGImageRelease(image);
    CGContextRelease(c);
  }
}

TEST_F(GraphicsBitmapMoments, AppKitDrawingReachesRGBAMemoryInRGBAOrder) {
  std::vector<uint8_t> memory(8 * 8 * 4, 0);
  CGContextRef c = NewContext(memory.data(), 8, 8, 32, kCGImageAlphaPremultipliedLast);
  ASSERT_NE(c, (CGContextRef)NULL);
  CGContextSetRGBFillColor(c, 0, 0, 1, 1);
  CGContextFillRect(c, CGRectMake(0, 0, 8, 4));  // Quartz: the bottom half blue
  NSGraphicsContext *previous = [[NSGraphicsContext currentContext] retain];
  // The AppKit context holds the bitmap context, which writes to `memory`
  // until it goes: both go before `memory` does.
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  NSGraphicsContext *appKit = [NSGraphicsContext graphicsContextWithGraphicsPort:c flipped:NO];
  if (appKit == nil) {
    [pool drain];
    [previous release];
    CGContextRelease(c);
    FAIL() << "no AppKit context around the bitmap context";
  }
  [NSGraphicsContext setCurrentContext:appKit];
  [[NSColor redColor] set];
  NSRectFill(NSMakeRect(0, 4, 4, 4));  // top-left quarter red
  EXPECT_EQ(CGBitmapContextGetData(c), memory.data());
  EXPECT_EQ(TopLeft(&memory[0]), (std::vector<int>{255, 0, 0, 255})) << "AppKit's red, while it draws";
  EXPECT_EQ(TopLeft(&memory[7 * 32]), (std::vector<int>{0, 0, 255, 255})) << "Quartz's blue below";
  CGContextSetRGBFillColor((CGContextRef)[appKit graphicsPort], 0, 1, 0, 1);
  CGContextFillRect((CGContextRef)[appKit graphicsPort], CGRectMake(4, 4, 4, 4));
  [NSGraphicsContext setCurrentContext:previous];
  [previous release];
  CGContextFlush(c);
  EXPECT_EQ(TopLeft(&memory[4 * 4]), (std::vector<int>{0, 255, 0, 255})) << "Quartz through AppKit";
  [pool drain];
  EXPECT_EQ(TopLeft(&memory[4 * 4]), (std::vector<int>{0, 255, 0, 255})) << "after AppKit let go";
  CGContextRelease(c);
}

// --- Gradients and shadings ---------------------------------------------------------

namespace {

// A 32 x 32 BGRA (cairo-native) context and a cairo surface with the same
// y-up space; their largest byte difference.
struct Twin {
  CGContextRef c;
  cairo_surface_t *surface;
  cairo_t *cr;
  Twin() {
    c = NewContext(NULL, 32, 32, 128, kCGImageAlphaPremultipliedFirst | kCGBitmapByteOrder32Little);
    surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 32, 32);
    cr = cairo_create(surface);
    cairo_matrix_t flip;
    cairo_matrix_init(&flip, 1, 0, 0, -1, 0, 32);
    cairo_set_matrix(cr, &flip);
  }
  ~Twin() {
    cairo_destroy(cr);
    cairo_surface_destroy(surface);
    CGContextRelease(c);
  }
  int difference() {
    cairo_surface_flush(surface);
    const uint8_t *a = static_cast<const uint8_t *>(CGBitmapContextGetData(c));
    const uint8_t *b = cairo_image_surface_get_data(surface);
    int worst = 0;
    for (int i = 0; i < 32 * 32 * 4; ++i) worst = std::max(worst, std::abs(int(a[i]) - int(b[i])));
    return worst;
  }
};

int releasedInfo = 0;

void RedToBlue(void *, const CGFloat *in, CGFloat *out) {
  out[0] = 1 - in[0];
  out[1] = 0;
  out[2] = in[0];
  out[3] = 1;
}

void CountRelease(void *info) { releasedInfo += *static_cast<int *>(info); }

}  // namespace

TEST_F(GraphicsGradients, GradientsFromComponentsAndColorsDrawLikeCairo) {
  CGColorSpaceRef rgb = CGColorSpaceCreateDeviceRGB();
  const CGFloat components[8] = {1, 0, 0, 1, 0, 0, 1, 0.5};
  const CGFloat locations[2] = {0.25, 0.75};
  CGGradientRef fromComponents = CGGradientCreateWithColorComponents(rgb, components, locations, 2);
  CGColorRef red = CGColorCreateGenericRGB(1, 0, 0, 1), blue = CGColorCreateGenericRGB(0, 0, 1, 0.5);
  // CGColorRef is no object here: the array carries it in an NSValue (or
  // holds NSColors).
  NSArray *colors = [NSArray arrayWithObjects:[NSValue valueWithPointer:red],
                                              [NSColor colorWithDeviceRed:0 green:0 blue:1 alpha:0.5], nil];
  CGGradientRef fromColors = CGGradientCreateWithColors(rgb, (CFArrayRef)colors, locations);
  CGColorRelease(red);
  CGColorRelease(blue);
  ASSERT_NE(fromComponents, (CGGradientRef)NULL);
  ASSERT_NE(fromColors, (CGGradientRef)NULL);
  EXPECT_EQ(CGGradientRetain(fromColors), fromColors);
  CGGradientRelease(fromColors);

  for (CGGradientRef gradient : {fromComponents, fromColors}) {
    Twin twin;
    CGContextDrawLinearGradient(twin.c, gradient, CGPointMake(0, 0), CGPointMake(32, 16),
                                kCGGradientDrawsAfterEndLocation);
    cairo_pattern_t *p = cairo_pattern_create_linear(0, 0, 32, 16);
    cairo_pattern_add_color_stop_rgba(p, 0.25, 1, 0, 0, 1);
    cairo_pattern_add_color_stop_rgba(p, 0.75, 0, 0, 1, 0.5);
    cairo_pattern_set_extend(p, CAIRO_EXTEND_PAD);
    cairo_set_source(twin.cr, p);
    // After the end only: the half-plane on the end's side of the start.
    cairo_move_to(twin.cr, 0 - 16 * 100, 0 + 32 * 100);
    cairo_line_to(twin.cr, 0 + 16 * 100, 0 - 32 * 100);
    cairo_line_to(twin.cr, 0 + 16 * 100 + 32 * 100, -32 * 100 + 16 * 100);
    cairo_line_to(twin.cr, 0 - 16 * 100 + 32 * 100, 32 * 100 + 16 * 100);
    cairo_close_path(twin.cr);
    cairo_fill(twin.cr);
    cairo_pattern_destroy(p);
    EXPECT_LE(twin.difference(), 1);
  }
  {
    Twin twin;
    CGContextDrawRadialGradient(twin.c, fromComponents, CGPointMake(10, 10), 2, CGPointMake(16, 16), 14, 0);
    cairo_pattern_t *p = cairo_pattern_create_radial(10, 10, 2, 16, 16, 14);
    cairo_pattern_add_color_stop_rgba(p, 0.25, 1, 0, 0, 1);
    cairo_pattern_add_color_stop_rgba(p, 0.75, 0, 0, 1, 0.5);
    cairo_pattern_set_extend(p, CAIRO_EXTEND_NONE);
    cairo_set_source(twin.cr, p);
    cairo_paint(twin.cr);
    cairo_pattern_destroy(p);
    EXPECT_LE(twin.difference(), 1);
  }
  CGGradientRelease(fromColors);
  CGGradientRelease(fromComponents);
  EXPECT_EQ(CGGradientCreateWithColorComponents(NULL, components, NULL, 2), (CGGradientRef)NULL);
  EXPECT_EQ(CGGradientCreateWithColorComponents(rgb, components, NULL, 0), (CGGradientRef)NULL);
  CGColorSpaceRelease(rgb);
}

TEST_F(GraphicsGradients, AxialShadingSamplesItsFunctionAndOwnsIt) {
  releasedInfo = 0;
  int weight = 1;
  CGFunctionCallbacks callbacks = {0, RedToBlue, CountRelease};
  const CGFloat domain[2] = {0, 1};
  CGFunctionRef function = CGFunctionCreate(&weight, 1, domain, 4, NULL, &callbacks);
  ASSERT_NE(function, (CGFunctionRef)NULL);
  CGColorSpaceRef rgb = CGColorSpaceCreateDeviceRGB();
  CGShadingRef shading = CGShadingCreateAxial(rgb, CGPointMake(0, 0), CGPointMake(32, 0), function, true, true);
  CGFunctionRelease(function);
  CGColorSpaceRelease(rgb);
  EXPECT_EQ(releasedInfo, 0) << "the shading holds the function";
  ASSERT_NE(shading, (CGShadingRef)NULL);
  Twin twin;
  CGContextDrawShading(twin.c, shading);
  cairo_pattern_t *p = cairo_pattern_create_linear(0, 0, 32, 0);
  cairo_pattern_add_color_stop_rgba(p, 0, 1, 0, 0, 1);
  cairo_pattern_add_color_stop_rgba(p, 1, 0, 0, 1, 1);
  cairo_set_source(twin.cr, p);
  cairo_paint(twin.cr);
  cairo_pattern_destroy(p);
  EXPECT_LE(twin.difference(), 2);
  CGShadingRelease(shading);
  EXPECT_EQ(releasedInfo, 1) << "released once, with the shading";
  EXPECT_EQ(CGFunctionCreate(NULL, 1, NULL, 4, NULL, NULL), (CGFunctionRef)NULL);
}

TEST_F(GraphicsGradients, GradientsReachAppKitContextsThroughTheSharedState) {
  if (!HasWindowServer()) GTEST_SKIP() << "needs a window server";
  CGColorSpaceRef rgb = CGColorSpaceCreateDeviceRGB();
  const CGFloat components[8] = {1, 0, 0, 1, 0, 0, 1, 1};
  CGGradientRef gradient = CGGradientCreateWithColorComponents(rgb, components, NULL, 2);
  CGColorSpaceRelease(rgb);
  Owned<NSBitmapImageRep> rep(NewLockFocusSnapshot(NSMakeSize(20, 10), ^{
    CGContextRef c = (CGContextRef)[[NSGraphicsContext currentContext] graphicsPort];
    CGContextClipToRect(c, CGRectMake(0, 0, 10, 10));  // the clip bounds the gradient
    CGContextDrawLinearGradient(c, gradient, CGPointMake(0, 0), CGPointMake(10, 0),
                                kCGGradientDrawsBeforeStartLocation | kCGGradientDrawsAfterEndLocation);
  }));
  CGGradientRelease(gradient);
  EXPECT_PIXEL_NEAR(RepPixel(rep.get(), 0, 5), 16, 242, 0, 13, 255);
  EXPECT_PIXEL_NEAR(RepPixel(rep.get(), 9, 5), 16, 13, 0, 242, 255);
  EXPECT_PIXEL(RepPixel(rep.get(), 15, 5), 0, 0, 0, 0);
}
