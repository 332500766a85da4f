// Talvo's Core Graphics against plain cairo, case by case, on surfaces of
// the same size in the same run. Every Talvo case has a cairo twin that
// produces the same pixels the way one would write it by hand with cairo;
// before timing, each pair is drawn once and compared pixel by pixel. After
// the run the program prints each Talvo time as a ratio to its twin, and
// the AppKit bridge (CG calls on -[NSGraphicsContext graphicsPort] sharing
// GNUstep's graphics state) as a ratio to the same calls on the bitmap
// context itself.
#import <AppKit/AppKit.h>
#import <Talvo/Talvo.h>

#include <benchmark/benchmark.h>
#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace {

// --- Surfaces ------------------------------------------------------------------------

constexpr uint32_t kBGRA = kCGImageAlphaPremultipliedFirst | kCGBitmapByteOrder32Little;
constexpr uint32_t kRGBA = kCGImageAlphaPremultipliedLast;

CGContextRef NewBitmap(int side, uint32_t info = kBGRA) {
  CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
  CGContextRef c = CGBitmapContextCreate(NULL, size_t(side), size_t(side), 8, size_t(side) * 4,
                                         space, info);
  CGColorSpaceRelease(space);
  return c;
}

// A plain cairo ARGB32 surface with Quartz's y-up user space.
struct Cairo {
  cairo_surface_t *surface;
  cairo_t *cr;
  int side;
  explicit Cairo(int s) : side(s) {
    surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, s, s);
    cr = cairo_create(surface);
    cairo_matrix_t flip;
    cairo_matrix_init(&flip, 1, 0, 0, -1, 0, s);
    cairo_set_matrix(cr, &flip);
  }
  ~Cairo() {
    cairo_destroy(cr);
    cairo_surface_destroy(surface);
  }
  const uint8_t *pixels() {
    cairo_surface_flush(surface);
    return cairo_image_surface_get_data(surface);
  }
};

// The largest difference of any byte; `rgba` swaps red and blue back.
int Difference(const uint8_t *talvo, const uint8_t *cairo, int side, bool rgba = false) {
  int worst = 0;
  for (size_t i = 0; i < size_t(side) * size_t(side) * 4; i += 4) {
    for (int c = 0; c < 4; ++c) {
      int t = talvo[i + (rgba && (c == 0 || c == 2) ? 2 - c : c)];
      worst = std::max(worst, std::abs(t - int(cairo[i + c])));
    }
  }
  return worst;
}

// --- The cases, each drawn by Talvo and by plain cairo ----------------------------------

const CGRect kShadowRect = CGRectMake(100, 120, 100, 60);
constexpr double kShadowBlur = 8;

void TalvoShadow(CGContextRef c) {
  CGContextSaveGState(c);
  CGContextSetShadow(c, CGSizeMake(4, -4), kShadowBlur);
  CGContextSetRGBFillColor(c, 0.2, 0.4, 0.8, 1);
  CGContextFillRect(c, kShadowRect);
  CGContextRestoreGState(c);
}

// A Gaussian shadow by hand: the shape's alpha in an A8 scratch of its
// bounds plus three sigma, three box blurs, then the shadow colour through
// it and the shape on top.
void BoxBlur(uint8_t *src, uint8_t *dst, int count, int lines, int step, int lineStep, int r) {
  int window = 2 * r + 1;
  for (int l = 0; l < lines; ++l) {
    uint8_t *s = src + l * lineStep, *d = dst + l * lineStep;
    int sum = 0;
    for (int i = 0; i <= r && i < count; ++i) sum += s[i * step];
    for (int i = 0; i < count; ++i) {
      d[i * step] = uint8_t((sum + window / 2) / window);
      if (i + r + 1 < count) sum += s[(i + r + 1) * step];
      if (i - r >= 0) sum -= s[(i - r) * step];
    }
  }
}

void CairoShadow(Cairo &k) {
  double sigma = kShadowBlur / 2;
  int pad = int(std::ceil(3 * sigma)) + 1;
  int x0 = int(kShadowRect.origin.x) - 1 - pad;
  int y0 = k.side - int(kShadowRect.origin.y + kShadowRect.size.height) - 1 - pad;
  int w = int(kShadowRect.size.width) + 2 + 2 * pad, h = int(kShadowRect.size.height) + 2 + 2 * pad;
  cairo_surface_t *scratch = cairo_image_surface_create(CAIRO_FORMAT_A8, w, h);
  cairo_t *sc = cairo_create(scratch);
  cairo_rectangle(sc, kShadowRect.origin.x - x0, k.side - kShadowRect.origin.y - kShadowRect.size.height - y0,
                  kShadowRect.size.width, kShadowRect.size.height);
  cairo_fill(sc);
  cairo_destroy(sc);
  cairo_surface_flush(scratch);
  uint8_t *data = cairo_image_surface_get_data(scratch);
  int stride = cairo_image_surface_get_stride(scratch);
  std::vector<uint8_t> tmp(size_t(stride) * size_t(h));
  for (int r : {3, 3, 4}) {  // three boxes approximating sigma 4
    BoxBlur(data, tmp.data(), w, h, 1, stride, r);
    BoxBlur(tmp.data(), data, h, w, stride, 1, r);
  }
  cairo_surface_mark_dirty(scratch);
  cairo_save(k.cr);
  cairo_identity_matrix(k.cr);
  cairo_set_source_rgba(k.cr, 0, 0, 0, 1.0 / 3.0);
  cairo_mask_surface(k.cr, scratch, x0 + 4, y0 + 4);
  cairo_restore(k.cr);
  cairo_surface_destroy(scratch);
  cairo_set_source_rgba(k.cr, 0.2, 0.4, 0.8, 1);
  cairo_rectangle(k.cr, kShadowRect.origin.x, kShadowRect.origin.y, kShadowRect.size.width,
                  kShadowRect.size.height);
  cairo_fill(k.cr);
}

// The mask: an alpha-only disc, as a CGImage and as the cairo A8 surface
// holding the same bytes.
struct Mask {
  cairo_surface_t *surface;
  CGImageRef image;
  explicit Mask(int side) {
    surface = cairo_image_surface_create(CAIRO_FORMAT_A8, side, side);
    cairo_t *cr = cairo_create(surface);
    cairo_arc(cr, side / 2.0, side / 2.0, side / 2.0 - 16, 0, 2 * M_PI);
    cairo_fill(cr);
    cairo_destroy(cr);
    cairo_surface_flush(surface);
    size_t stride = size_t(cairo_image_surface_get_stride(surface));
    CGDataProviderRef provider = CGDataProviderCreateWithData(
        NULL, cairo_image_surface_get_data(surface), stride * size_t(side), NULL);
    image = CGImageCreate(size_t(side), size_t(side), 8, 8, stride, NULL, kCGImageAlphaOnly,
                          provider, NULL, true, kCGRenderingIntentDefault);
    CGDataProviderRelease(provider);
  }
  ~Mask() {
    CGImageRelease(image);
    cairo_surface_destroy(surface);
  }
};

// NSGradient's stops, for the cairo twin.
cairo_pattern_t *GradientPattern(NSGradient *gradient, double x0, double y0, double x1, double y1) {
  cairo_pattern_t *p = cairo_pattern_create_linear(x0, y0, x1, y1);
  for (NSInteger i = 0; i < [gradient numberOfColorStops]; ++i) {
    NSColor *color = nil;
    CGFloat location = 0;
    [gradient getColor:&color location:&location atIndex:i];
    NSColor *rgb = [color colorUsingColorSpaceName:NSDeviceRGBColorSpace];
    cairo_pattern_add_color_stop_rgba(p, location, [rgb redComponent], [rgb greenComponent],
                                      [rgb blueComponent], [rgb alphaComponent]);
  }
  return p;
}

void TalvoMaskedGradient(CGContextRef c, CGImageRef mask, int side, NSGradient *gradient) {
  CGContextSaveGState(c);
  CGContextClipToMask(c, CGRectMake(0, 0, side, side), mask);
  [gradient drawFromPoint:NSMakePoint(0, 0) toPoint:NSMakePoint(0, side) options:0];
  CGContextRestoreGState(c);
}

void CairoMaskedGradient(Cairo &k, const Mask &mask, NSGradient *gradient) {
  cairo_pattern_t *p = GradientPattern(gradient, 0, 0, 0, k.side);
  cairo_set_source(k.cr, p);
  cairo_save(k.cr);
  cairo_identity_matrix(k.cr);
  cairo_mask_surface(k.cr, mask.surface, 0, 0);
  cairo_restore(k.cr);
  cairo_pattern_destroy(p);
}

const CGFloat kStopComponents[8] = {0.9, 0.9, 0.9, 1, 0.3, 0.3, 0.35, 1};

void TalvoMaskedCGGradient(CGContextRef c, CGImageRef mask, int side, CGGradientRef gradient) {
  CGContextSaveGState(c);
  CGContextClipToMask(c, CGRectMake(0, 0, side, side), mask);
  CGContextDrawLinearGradient(c, gradient, CGPointMake(0, 0), CGPointMake(0, side),
                              kCGGradientDrawsBeforeStartLocation | kCGGradientDrawsAfterEndLocation);
  CGContextRestoreGState(c);
}

void CairoMaskedCGGradient(Cairo &k, const Mask &mask) {
  cairo_pattern_t *p = cairo_pattern_create_linear(0, 0, 0, k.side);
  cairo_pattern_add_color_stop_rgba(p, 0, 0.9, 0.9, 0.9, 1);
  cairo_pattern_add_color_stop_rgba(p, 1, 0.3, 0.3, 0.35, 1);
  cairo_pattern_set_extend(p, CAIRO_EXTEND_PAD);
  cairo_set_source(k.cr, p);
  cairo_save(k.cr);
  cairo_identity_matrix(k.cr);
  cairo_mask_surface(k.cr, mask.surface, 0, 0);
  cairo_restore(k.cr);
  cairo_pattern_destroy(p);
}

const CGRect kMaskedRect = CGRectMake(40, 50, 300, 200);

void TalvoMaskedFill(CGContextRef c, CGImageRef mask, int side) {
  CGContextSaveGState(c);
  CGContextClipToMask(c, CGRectMake(0, 0, side, side), mask);
  CGContextSetRGBFillColor(c, 0.8, 0.2, 0.1, 1);
  CGContextFillRect(c, kMaskedRect);
  CGContextRestoreGState(c);
}

void CairoMaskedFill(Cairo &k, const Mask &mask) {
  cairo_save(k.cr);
  cairo_rectangle(k.cr, kMaskedRect.origin.x, kMaskedRect.origin.y, kMaskedRect.size.width,
                  kMaskedRect.size.height);
  cairo_clip(k.cr);
  cairo_set_source_rgba(k.cr, 0.8, 0.2, 0.1, 1);
  cairo_identity_matrix(k.cr);
  cairo_mask_surface(k.cr, mask.surface, 0, 0);
  cairo_restore(k.cr);
}

// Small ellipses spread over the surface, each its own path and colour.
CGRect SmallShape(int i, int side) {
  double x = (i * 37) % (side - 12), y = (i * 53 / 7) % (side - 12);
  return CGRectMake(x, y, 10, 8);
}

void TalvoSmallFills(CGContextRef c, int count, int side) {
  for (int i = 0; i < count; ++i) {
    CGContextSetRGBFillColor(c, (i % 7) / 7.0, (i % 5) / 5.0, (i % 3) / 3.0, 1);
    CGContextAddEllipseInRect(c, SmallShape(i, side));
    CGContextFillPath(c);
  }
}

void CairoEllipse(cairo_t *cr, CGRect r) {
  const double k = 0.5522847498307936;
  double x0 = CGRectGetMinX(r), x1 = CGRectGetMaxX(r), y0 = CGRectGetMinY(r), y1 = CGRectGetMaxY(r);
  double mx = CGRectGetMidX(r), my = CGRectGetMidY(r), kx = r.size.width / 2 * k, ky = r.size.height / 2 * k;
  cairo_move_to(cr, x1, my);
  cairo_curve_to(cr, x1, my + ky, mx + kx, y1, mx, y1);
  cairo_curve_to(cr, mx - kx, y1, x0, my + ky, x0, my);
  cairo_curve_to(cr, x0, my - ky, mx - kx, y0, mx, y0);
  cairo_curve_to(cr, mx + kx, y0, x1, my - ky, x1, my);
  cairo_close_path(cr);
}

void CairoSmallFills(Cairo &k, int count) {
  for (int i = 0; i < count; ++i) {
    cairo_set_source_rgba(k.cr, (i % 7) / 7.0, (i % 5) / 5.0, (i % 3) / 3.0, 1);
    CairoEllipse(k.cr, SmallShape(i, k.side));
    cairo_fill(k.cr);
  }
}

CGImageRef NewPhoto(int side) {
  std::vector<uint8_t> bytes(size_t(side) * size_t(side) * 4);
  for (int y = 0; y < side; ++y) {
    for (int x = 0; x < side; ++x) {
      uint8_t *p = &bytes[(size_t(y) * size_t(side) + size_t(x)) * 4];
      p[0] = uint8_t(x * 255 / side), p[1] = uint8_t(y * 255 / side), p[2] = uint8_t((x ^ y) & 255), p[3] = 255;
    }
  }
  CGDataProviderRef provider = CGDataProviderCreateWithData(NULL, bytes.data(), bytes.size(), NULL);
  CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
  CGImageRef image = CGImageCreate(size_t(side), size_t(side), 8, 32, size_t(side) * 4, space,
                                   kCGImageAlphaPremultipliedLast, provider, NULL, true,
                                   kCGRenderingIntentDefault);
  CGColorSpaceRelease(space);
  CGDataProviderRelease(provider);
  return image;  // the engine copied the bytes
}

// The image's own ARGB32 surface for cairo (same pixels, cairo's layout).
cairo_surface_t *PhotoSurface(int side) {
  cairo_surface_t *s = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, side, side);
  cairo_surface_flush(s);
  uint8_t *data = cairo_image_surface_get_data(s);
  int stride = cairo_image_surface_get_stride(s);
  for (int y = 0; y < side; ++y) {
    uint32_t *row = reinterpret_cast<uint32_t *>(data + y * stride);
    for (int x = 0; x < side; ++x) {
      uint32_t r = uint32_t(x * 255 / side), g = uint32_t(y * 255 / side), b = uint32_t((x ^ y) & 255);
      row[x] = 0xFF000000u | (r << 16) | (g << 8) | b;
    }
  }
  cairo_surface_mark_dirty(s);
  return s;
}

const CGRect kScaledImageRect = CGRectMake(20, 30, 380, 300);

void CairoScaledImage(Cairo &k, cairo_surface_t *photo, int imageSide) {
  cairo_save(k.cr);
  // The image's top row at the top of the rectangle, in the y-up space.
  cairo_translate(k.cr, kScaledImageRect.origin.x, kScaledImageRect.origin.y + kScaledImageRect.size.height);
  cairo_scale(k.cr, kScaledImageRect.size.width / imageSide, -kScaledImageRect.size.height / imageSide);
  cairo_pattern_t *p = cairo_pattern_create_for_surface(photo);
  cairo_pattern_set_extend(p, CAIRO_EXTEND_PAD);
  cairo_pattern_set_filter(p, CAIRO_FILTER_GOOD);
  cairo_set_source(k.cr, p);
  cairo_rectangle(k.cr, 0, 0, imageSide, imageSide);
  cairo_fill(k.cr);
  cairo_pattern_destroy(p);
  cairo_restore(k.cr);
}

// An AppKit graphics context around a bitmap context, current while alive.
struct AppKitOn {
  NSGraphicsContext *previous;
  CGContextRef port;
  explicit AppKitOn(CGContextRef bitmap) {
    previous = [[NSGraphicsContext currentContext] retain];
    NSGraphicsContext *context = [NSGraphicsContext graphicsContextWithGraphicsPort:bitmap flipped:NO];
    [NSGraphicsContext setCurrentContext:context];
    port = (CGContextRef)[context graphicsPort];
  }
  ~AppKitOn() {
    [NSGraphicsContext setCurrentContext:previous];
    [previous release];
  }
};

// --- Benchmarks -------------------------------------------------------------------------

void Clear(CGContextRef c, int side) { CGContextClearRect(c, CGRectMake(0, 0, side, side)); }

void BM_Shadow_Talvo(benchmark::State &state) {
  int side = int(state.range(0));
  CGContextRef c = NewBitmap(side);
  for (auto _ : state) TalvoShadow(c);
  CGContextRelease(c);
}
void BM_Shadow_Cairo(benchmark::State &state) {
  Cairo k(int(state.range(0)));
  for (auto _ : state) CairoShadow(k);
}
void BM_Shadow_Bridge(benchmark::State &state) {
  int side = int(state.range(0));
  CGContextRef c = NewBitmap(side);
  {
    AppKitOn appKit(c);
    for (auto _ : state) TalvoShadow(appKit.port);
  }
  CGContextRelease(c);
}

void BM_MaskedNSGradient_Talvo(benchmark::State &state) {
  int side = int(state.range(0));
  CGContextRef c = NewBitmap(side);
  Mask mask(side);
  NSGradient *gradient = [NSGradient grayGradient];
  {
    AppKitOn appKit(c);
    for (auto _ : state) TalvoMaskedGradient(c, mask.image, side, gradient);
  }
  CGContextRelease(c);
}
void BM_MaskedNSGradient_Cairo(benchmark::State &state) {
  Cairo k(int(state.range(0)));
  Mask mask(k.side);
  NSGradient *gradient = [NSGradient grayGradient];
  for (auto _ : state) CairoMaskedGradient(k, mask, gradient);
}

void BM_MaskedCGGradient_Talvo(benchmark::State &state) {
  int side = int(state.range(0));
  CGContextRef c = NewBitmap(side);
  Mask mask(side);
  CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
  CGGradientRef gradient = CGGradientCreateWithColorComponents(space, kStopComponents, NULL, 2);
  CGColorSpaceRelease(space);
  for (auto _ : state) TalvoMaskedCGGradient(c, mask.image, side, gradient);
  CGGradientRelease(gradient);
  CGContextRelease(c);
}
void BM_MaskedCGGradient_Cairo(benchmark::State &state) {
  Cairo k(int(state.range(0)));
  Mask mask(k.side);
  for (auto _ : state) CairoMaskedCGGradient(k, mask);
}

void BM_MaskedFill_Talvo(benchmark::State &state) {
  int side = int(state.range(0));
  CGContextRef c = NewBitmap(side);
  Mask mask(side);
  for (auto _ : state) TalvoMaskedFill(c, mask.image, side);
  CGContextRelease(c);
}
void BM_MaskedFill_Cairo(benchmark::State &state) {
  Cairo k(int(state.range(0)));
  Mask mask(k.side);
  for (auto _ : state) CairoMaskedFill(k, mask);
}
void BM_MaskedFill_Bridge(benchmark::State &state) {
  int side = int(state.range(0));
  CGContextRef c = NewBitmap(side);
  Mask mask(side);
  {
    AppKitOn appKit(c);
    for (auto _ : state) TalvoMaskedFill(appKit.port, mask.image, side);
  }
  CGContextRelease(c);
}

void BM_SmallFills1000_Talvo(benchmark::State &state) {
  int side = int(state.range(0));
  CGContextRef c = NewBitmap(side);
  for (auto _ : state) TalvoSmallFills(c, 1000, side);
  CGContextRelease(c);
}
void BM_SmallFills1000_Cairo(benchmark::State &state) {
  Cairo k(int(state.range(0)));
  for (auto _ : state) CairoSmallFills(k, 1000);
}
void BM_SmallFills1000_Bridge(benchmark::State &state) {
  int side = int(state.range(0));
  CGContextRef c = NewBitmap(side);
  {
    AppKitOn appKit(c);
    for (auto _ : state) TalvoSmallFills(appKit.port, 1000, side);
  }
  CGContextRelease(c);
}

// RGBA memory: Talvo draws into it in place; the caller reads it once per
// round (CGBitmapContextGetData). cairo draws its own layout.
void BM_RGBAFills100_Talvo(benchmark::State &state) {
  int side = int(state.range(0));
  CGContextRef c = NewBitmap(side, kRGBA);
  for (auto _ : state) {
    TalvoSmallFills(c, 100, side);
    benchmark::DoNotOptimize(CGBitmapContextGetData(c));
  }
  CGContextRelease(c);
}
void BM_RGBAFills100_Cairo(benchmark::State &state) {
  Cairo k(int(state.range(0)));
  for (auto _ : state) {
    CairoSmallFills(k, 100);
    benchmark::DoNotOptimize(k.pixels());
  }
}

void BM_ScaledImage_Talvo(benchmark::State &state) {
  int side = int(state.range(0));
  CGContextRef c = NewBitmap(side);
  CGImageRef photo = NewPhoto(512);
  CGContextDrawImage(c, kScaledImageRect, photo);  // the image's surface is made once
  for (auto _ : state) CGContextDrawImage(c, kScaledImageRect, photo);
  CGImageRelease(photo);
  CGContextRelease(c);
}
void BM_ScaledImage_Cairo(benchmark::State &state) {
  Cairo k(int(state.range(0)));
  cairo_surface_t *photo = PhotoSurface(512);
  for (auto _ : state) CairoScaledImage(k, photo, 512);
  cairo_surface_destroy(photo);
}

#define PAIR(name)                                                                       \
  BENCHMARK(BM_##name##_Talvo)->Arg(512)->Arg(1024)->Unit(benchmark::kMicrosecond);     \
  BENCHMARK(BM_##name##_Cairo)->Arg(512)->Arg(1024)->Unit(benchmark::kMicrosecond)
PAIR(Shadow);
BENCHMARK(BM_Shadow_Bridge)->Arg(512)->Arg(1024)->Unit(benchmark::kMicrosecond);
PAIR(MaskedNSGradient);
PAIR(MaskedCGGradient);
PAIR(MaskedFill);
BENCHMARK(BM_MaskedFill_Bridge)->Arg(512)->Arg(1024)->Unit(benchmark::kMicrosecond);
PAIR(SmallFills1000);
BENCHMARK(BM_SmallFills1000_Bridge)->Arg(512)->Arg(1024)->Unit(benchmark::kMicrosecond);
PAIR(RGBAFills100);
PAIR(ScaledImage);

// --- Pixel agreement --------------------------------------------------------------------

struct Check {
  const char *name;
  int difference;
  int allowed;
};

std::vector<Check> CheckPixels(int side) {
  std::vector<Check> checks;
  auto compare = [&](const char *name, CGContextRef c, Cairo &k, int allowed, bool rgba = false) {
    const uint8_t *t = static_cast<const uint8_t *>(CGBitmapContextGetData(c));
    checks.push_back({name, Difference(t, k.pixels(), side, rgba), allowed});
  };
  Mask mask(side);
  {
    CGContextRef c = NewBitmap(side);
    Cairo k(side);
    TalvoShadow(c);
    CairoShadow(k);
    compare("shadow", c, k, 1);
    CGContextRelease(c);
  }
  {
    CGContextRef c = NewBitmap(side);
    Cairo k(side);
    NSGradient *gradient = [NSGradient grayGradient];
    {
      AppKitOn appKit(c);
      TalvoMaskedGradient(c, mask.image, side, gradient);
    }
    CairoMaskedGradient(k, mask, gradient);
    compare("NSGradient through a mask", c, k, 2);
    CGContextRelease(c);
  }
  {
    CGContextRef c = NewBitmap(side);
    Cairo k(side);
    CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
    CGGradientRef gradient = CGGradientCreateWithColorComponents(space, kStopComponents, NULL, 2);
    CGColorSpaceRelease(space);
    TalvoMaskedCGGradient(c, mask.image, side, gradient);
    CGGradientRelease(gradient);
    CairoMaskedCGGradient(k, mask);
    compare("CGGradient through a mask", c, k, 1);
    CGContextRelease(c);
  }
  {
    CGContextRef c = NewBitmap(side);
    Cairo k(side);
    TalvoMaskedFill(c, mask.image, side);
    CairoMaskedFill(k, mask);
    compare("fill through a mask", c, k, 1);
    CGContextRelease(c);
  }
  {
    CGContextRef c = NewBitmap(side);
    Cairo k(side);
    TalvoSmallFills(c, 1000, side);
    CairoSmallFills(k, 1000);
    compare("1000 small fills", c, k, 0);
    CGContextRelease(c);
  }
  {
    CGContextRef c = NewBitmap(side);
    Cairo k(side);
    {
      AppKitOn appKit(c);
      TalvoSmallFills(appKit.port, 1000, side);
    }
    CairoSmallFills(k, 1000);
    compare("1000 small fills through AppKit", c, k, 0);
    CGContextRelease(c);
  }
  {
    CGContextRef c = NewBitmap(side, kRGBA);
    Cairo k(side);
    TalvoSmallFills(c, 100, side);
    CairoSmallFills(k, 100);
    compare("100 fills on RGBA", c, k, 0, true);
    CGContextRelease(c);
  }
  {
    CGContextRef c = NewBitmap(side);
    Cairo k(side);
    CGImageRef photo = NewPhoto(512);
    CGContextDrawImage(c, kScaledImageRect, photo);
    CGImageRelease(photo);
    cairo_surface_t *surface = PhotoSurface(512);
    CairoScaledImage(k, surface, 512);
    cairo_surface_destroy(surface);
    compare("scaled image", c, k, 0);
    CGContextRelease(c);
  }
  return checks;
}

// --- Ratios -----------------------------------------------------------------------------

class RatioReporter : public benchmark::ConsoleReporter {
 public:
  std::map<std::string, double> times;
  std::set<std::string> medians;
  void ReportRuns(const std::vector<Run> &runs) override {
    // The median of the repetitions when there are some, else the run.
    for (const Run &run : runs) {
      std::string name = run.run_name.str();
      if (run.run_type == Run::RT_Aggregate && run.aggregate_name == "median") {
        times[name] = run.GetAdjustedCPUTime();
        medians.insert(name);
      } else if (run.run_type == Run::RT_Iteration && !medians.count(name)) {
        times[name] = run.GetAdjustedCPUTime();
      }
    }
    ConsoleReporter::ReportRuns(runs);
  }
};

void PrintRatios(const std::map<std::string, double> &times) {
  std::printf("\nCPU time per iteration, median of the repetitions\n");
  std::printf("%-22s %6s %12s %12s %8s\n", "case", "side", "Talvo (us)", "cairo (us)", "ratio");
  for (const auto &entry : times) {
    const std::string &name = entry.first;
    size_t at = name.find("_Talvo/");
    if (at == std::string::npos) continue;
    std::string twin = name.substr(0, at) + "_Cairo/" + name.substr(at + 7);
    auto other = times.find(twin);
    if (other == times.end()) continue;
    std::printf("%-22s %6s %12.1f %12.1f %7.2fx\n", name.substr(3, at - 3).c_str(),
                name.substr(at + 7).c_str(), entry.second, other->second, entry.second / other->second);
  }
  std::printf("\n%-22s %6s %12s %12s %8s\n", "AppKit bridge", "side", "bridge (us)", "direct (us)",
              "ratio");
  for (const auto &entry : times) {
    const std::string &name = entry.first;
    size_t at = name.find("_Bridge/");
    if (at == std::string::npos) continue;
    auto direct = times.find(name.substr(0, at) + "_Talvo/" + name.substr(at + 8));
    if (direct == times.end()) continue;
    std::printf("%-22s %6s %12.1f %12.1f %7.2fx\n", name.substr(3, at - 3).c_str(),
                name.substr(at + 8).c_str(), entry.second, direct->second, entry.second / direct->second);
  }
}

}  // namespace

int main(int argc, char **argv) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  [[NSUserDefaults standardUserDefaults]
      registerDefaults:[NSDictionary dictionaryWithObject:@"YES" forKey:@"GSSuppressAppIcon"]];
  [NSApplication sharedApplication];
  bool agree = true;
  for (int side : {512, 1024}) {
    for (const Check &check : CheckPixels(side)) {
      bool ok = check.difference <= check.allowed;
      agree = agree && ok;
      std::printf("pixels %-34s %4d: %s (largest byte difference %d, allowed %d)\n", check.name, side,
                  ok ? "agree" : "DIFFER", check.difference, check.allowed);
    }
  }
  benchmark::Initialize(&argc, argv);
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  PrintRatios(reporter.times);
  benchmark::Shutdown();
  [pool drain];
  return agree ? 0 : 1;
}
