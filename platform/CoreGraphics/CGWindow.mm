// The window-server stand-in: this process's windows as Quartz's window
// list describes them, and their pictures taken from each window's own back
// buffer. There is no window manager and no compositor under X here, so
// stacking comes from the root window's children and a shadow, when asked
// for, is drawn from the window's alpha.

#import <AppKit/AppKit.h>
#import <CoreGraphics/CGTalvoBridge.h>
#import <CoreGraphics/CoreGraphics.h>

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#import "platform/AppKit/windows/TVWindowServer.h"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

namespace q = talvo::quartz;

const CFStringRef kCGWindowNumber = (CFStringRef)@"kCGWindowNumber";
const CFStringRef kCGWindowStoreType = (CFStringRef)@"kCGWindowStoreType";
const CFStringRef kCGWindowLayer = (CFStringRef)@"kCGWindowLayer";
const CFStringRef kCGWindowBounds = (CFStringRef)@"kCGWindowBounds";
const CFStringRef kCGWindowSharingState = (CFStringRef)@"kCGWindowSharingState";
const CFStringRef kCGWindowAlpha = (CFStringRef)@"kCGWindowAlpha";
const CFStringRef kCGWindowOwnerPID = (CFStringRef)@"kCGWindowOwnerPID";
const CFStringRef kCGWindowMemoryUsage = (CFStringRef)@"kCGWindowMemoryUsage";
const CFStringRef kCGWindowOwnerName = (CFStringRef)@"kCGWindowOwnerName";
const CFStringRef kCGWindowName = (CFStringRef)@"kCGWindowName";
const CFStringRef kCGWindowIsOnscreen = (CFStringRef)@"kCGWindowIsOnscreen";

namespace {

// The drawn shadow, in points: how far it spreads and how far down it
// falls, for a titled window (the large shadow of a document window) and
// for any other; how dark it is at its densest.
struct ShadowReach {
  double spread, down;
};
constexpr ShadowReach kTitledShadow = {42.0, 8.0};
constexpr ShadowReach kPlainShadow = {17.0, 4.0};
constexpr double kShadowOpacity = 0.45;

ShadowReach ReachOf(NSWindow *window) {
  return ([window styleMask] & NSTitledWindowMask) != 0 ? kTitledShadow : kPlainShadow;
}

#pragma mark - Window arrays

// An element of a window array: a raw CGWindowID stored as a pointer, or
// an NSNumber holding one.
bool WindowIDOf(id element, CGWindowID *windowID) {
  uintptr_t raw = (uintptr_t)element;
  if (raw == 0) {
    return false;
  }
  if (raw <= UINT32_MAX) {
    *windowID = (CGWindowID)raw;
    return true;
  }
  if (![element isKindOfClass:[NSNumber class]]) {
    return false;
  }
  long long value = [(NSNumber *)element longLongValue];
  if (value <= 0 || value > (long long)UINT32_MAX) {
    return false;
  }
  *windowID = (CGWindowID)value;
  return true;
}

NSWindow *WindowWithID(CGWindowID windowID) {
  if (windowID == kCGNullWindowID || windowID > INT32_MAX) {
    return nil;
  }
  NSWindow *window = GSWindowWithNumber((NSInteger)windowID);
  return [window isKindOfClass:[NSWindow class]] ? window : nil;
}

// The known windows of `array`, in its order; nil for something that is
// not an array.
NSArray *WindowsOfArray(CFArrayRef array) {
  id object = (id)array;
  if (object == nil || ![object isKindOfClass:[NSArray class]]) {
    return nil;
  }
  NSMutableArray *windows = [NSMutableArray arrayWithCapacity:[object count]];
  for (NSUInteger i = 0; i < [object count]; i++) {
    CGWindowID windowID = 0;
    NSWindow *window = WindowIDOf([object objectAtIndex:i], &windowID) ? WindowWithID(windowID) : nil;
    if (window != nil) {
      [windows addObject:window];
    }
  }
  return windows;
}

#pragma mark - Descriptions

NSDictionary *Describe(NSWindow *window) {
  NSMutableDictionary *d = [NSMutableDictionary dictionaryWithCapacity:10];
  NSDictionary *bounds = (NSDictionary *)CGRectCreateDictionaryRepresentation(TVWindowServerBounds(window));
  [d setObject:bounds forKey:(NSString *)kCGWindowBounds];
  [bounds release];
  [d setObject:[NSNumber numberWithUnsignedInt:(unsigned)[window windowNumber]]
        forKey:(NSString *)kCGWindowNumber];
  [d setObject:[NSNumber numberWithInt:(int)[window level]] forKey:(NSString *)kCGWindowLayer];
  [d setObject:[NSNumber numberWithDouble:[window alphaValue]] forKey:(NSString *)kCGWindowAlpha];
  [d setObject:[NSNumber numberWithBool:[window isVisible]] forKey:(NSString *)kCGWindowIsOnscreen];
  [d setObject:[NSNumber numberWithInt:(int)[window backingType]]
        forKey:(NSString *)kCGWindowStoreType];
  [d setObject:[NSNumber numberWithInt:kCGWindowSharingReadOnly]
        forKey:(NSString *)kCGWindowSharingState];
  [d setObject:[NSNumber numberWithInt:(int)getpid()] forKey:(NSString *)kCGWindowOwnerPID];
  NSString *owner = [[NSProcessInfo processInfo] processName];
  if (owner != nil) {
    [d setObject:owner forKey:(NSString *)kCGWindowOwnerName];
  }
  NSString *title = [window title];
  if ([title length] > 0) {
    [d setObject:title forKey:(NSString *)kCGWindowName];
  }
  return d;
}

// Windows on screen front to back, then (for the all-windows option) the
// others in the application's order.
NSArray *ListedWindows(CGWindowListOption option, CGWindowID relativeTo) {
  NSArray *stack = [[TVWindowsInStackingOrder() reverseObjectEnumerator] allObjects];
  NSWindow *anchor = WindowWithID(relativeTo);
  NSMutableArray *out = [NSMutableArray array];
  bool above = (option & kCGWindowListOptionOnScreenAboveWindow) != 0;
  bool below = (option & kCGWindowListOptionOnScreenBelowWindow) != 0;
  if ((above || below) && anchor != nil) {
    NSUInteger at = [stack indexOfObjectIdenticalTo:anchor];
    for (NSUInteger i = 0; i < [stack count]; i++) {
      if (at == NSNotFound || (above && i < at) || (below && i > at)) {
        [out addObject:[stack objectAtIndex:i]];
      }
    }
  } else if (option & kCGWindowListOptionOnScreenOnly) {
    [out addObjectsFromArray:stack];
  } else if (option & kCGWindowListOptionIncludingWindow) {
    if (anchor != nil) {
      [out addObject:anchor];
    }
    return out;
  } else {
    [out addObjectsFromArray:stack];
    for (NSWindow *window in [NSApp windows]) {
      if ([window windowNumber] > 0 && [out indexOfObjectIdenticalTo:window] == NSNotFound) {
        [out addObject:window];
      }
    }
  }
  if ((option & kCGWindowListOptionIncludingWindow) && anchor != nil &&
      [out indexOfObjectIdenticalTo:anchor] == NSNotFound) {
    [out insertObject:anchor atIndex:0];
  }
  return out;
}

#pragma mark - Pictures

// One box blur of `radius` along a line of `count` values `step` apart,
// zero beyond the ends; `line` is scratch of `count` values.
void BoxBlurLine(uint8_t *values, ptrdiff_t step, int count, int radius, std::vector<int> &line) {
  const int span = 2 * radius + 1;
  for (int i = 0; i < count; i++) line[i] = values[i * step];
  int sum = 0;
  for (int i = 0; i <= radius && i < count; i++) sum += line[i];
  for (int i = 0; i < count; i++) {
    values[i * step] = (uint8_t)((sum + span / 2) / span);
    if (i + radius + 1 < count) sum += line[i + radius + 1];
    if (i - radius >= 0) sum -= line[i - radius];
  }
}

// Three box blurs each way (close to a gaussian of 1.7 x radius) over an
// alpha-only area. Columns run as rows of running sums, so the memory is
// read in order.
void BlurAlpha(uint8_t *pixels, int stride, int width, int height, int radius) {
  if (radius < 1 || width <= 0 || height <= 0) {
    return;
  }
  const int span = 2 * radius + 1;
  std::vector<int> line(std::max(width, height));
  std::vector<int> sums(width);
  std::vector<uint8_t> source((size_t)width * height);
  for (int pass = 0; pass < 3; pass++) {
    for (int y = 0; y < height; y++) {
      BoxBlurLine(pixels + (size_t)y * stride, 1, width, radius, line);
    }
    for (int y = 0; y < height; y++) {
      std::copy(pixels + (size_t)y * stride, pixels + (size_t)y * stride + width,
                source.begin() + (size_t)y * width);
    }
    std::fill(sums.begin(), sums.end(), 0);
    for (int y = 0; y <= radius && y < height; y++) {
      const uint8_t *row = &source[(size_t)y * width];
      for (int x = 0; x < width; x++) sums[x] += row[x];
    }
    for (int y = 0; y < height; y++) {
      uint8_t *out = pixels + (size_t)y * stride;
      for (int x = 0; x < width; x++) out[x] = (uint8_t)((sums[x] + span / 2) / span);
      if (y + radius + 1 < height) {
        const uint8_t *add = &source[(size_t)(y + radius + 1) * width];
        for (int x = 0; x < width; x++) sums[x] += add[x];
      }
      if (y - radius >= 0) {
        const uint8_t *drop = &source[(size_t)(y - radius) * width];
        for (int x = 0; x < width; x++) sums[x] -= drop[x];
      }
    }
  }
}

// Paints a back buffer at (x, y) of `cr` as it is: GNUstep leaves a device
// offset on it for its own drawing, which a copy must not see.
void PaintBuffer(cairo_t *cr, cairo_surface_t *buffer, double x, double y, cairo_operator_t op) {
  double ox = 0, oy = 0;
  cairo_surface_get_device_offset(buffer, &ox, &oy);
  cairo_surface_set_device_offset(buffer, 0, 0);
  cairo_set_operator(cr, op);
  cairo_set_source_surface(cr, buffer, x, y);
  cairo_paint(cr);
  cairo_set_source_rgba(cr, 0, 0, 0, 0);  // lets go of the buffer
  cairo_surface_set_device_offset(buffer, ox, oy);
}

// Copies the window's pixels to (x, y) of `target`. cairo reads an X
// drawable fastest (shared memory) into an image of exactly its size at
// the origin, so the read goes into an image over that part of the
// target's memory when the window lies wholly inside it.
void FetchInto(cairo_surface_t *target, cairo_surface_t *buffer, int x, int y, int w, int h) {
  const int W = cairo_image_surface_get_width(target), H = cairo_image_surface_get_height(target);
  cairo_surface_flush(target);
  if (x >= 0 && y >= 0 && x + w <= W && y + h <= H) {
    const int stride = cairo_image_surface_get_stride(target);
    uint8_t *origin = cairo_image_surface_get_data(target) + (size_t)y * stride + (size_t)x * 4;
    cairo_surface_t *part = cairo_image_surface_create_for_data(origin, CAIRO_FORMAT_ARGB32, w, h, stride);
    cairo_t *cr = cairo_create(part);
    PaintBuffer(cr, buffer, 0, 0, CAIRO_OPERATOR_SOURCE);
    cairo_destroy(cr);
    cairo_surface_finish(part);
    cairo_surface_destroy(part);
    cairo_surface_mark_dirty(target);
    return;
  }
  cairo_t *cr = cairo_create(target);
  cairo_rectangle(cr, x, y, w, h);
  cairo_clip(cr);
  PaintBuffer(cr, buffer, x, y, CAIRO_OPERATOR_SOURCE);
  cairo_destroy(cr);
  cairo_surface_flush(target);
}

// The window's pixels as an image (one read from the server).
cairo_surface_t *CopyWindow(cairo_surface_t *buffer, int width, int height) {
  cairo_surface_t *copy = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height);
  if (cairo_surface_status(copy) != CAIRO_STATUS_SUCCESS) {
    cairo_surface_destroy(copy);
    return nullptr;
  }
  cairo_t *cr = cairo_create(copy);
  PaintBuffer(cr, buffer, 0, 0, CAIRO_OPERATOR_SOURCE);
  cairo_destroy(cr);
  cairo_surface_flush(copy);
  return copy;
}

// The shadow's geometry on the target, in pixels.
struct ShadowShape {
  int radius, reach, dy;
};

// Three box blurs of a radius spread three radii: the radius is a third
// of the spread, rounded down so the shadow stays inside its reach.
ShadowShape ShapeAt(ShadowReach reach, double scale) {
  ShadowShape shape;
  shape.radius = std::max(1, (int)(reach.spread * scale / 3.0));
  shape.reach = 3 * shape.radius;
  shape.dy = (int)std::lround(reach.down * scale);
  return shape;
}

// An opaque window's shadow is a blurred rectangle: the product of two
// blurred edges, computed along one row and one column and laid down only
// where the window will not cover it.
void PaintRectShadow(cairo_surface_t *target, int x, int y, int w, int h, ShadowShape shape) {
  const int W = cairo_image_surface_get_width(target), H = cairo_image_surface_get_height(target);
  const int top = y + shape.dy;
  std::vector<uint8_t> across(W, 0), down(H, 0);
  for (int i = std::max(0, x); i < std::min(W, x + w); i++) across[i] = 255;
  for (int i = std::max(0, top); i < std::min(H, top + h); i++) down[i] = 255;
  std::vector<int> line(std::max(W, H));
  for (int pass = 0; pass < 3; pass++) {
    BoxBlurLine(across.data(), 1, W, shape.radius, line);
    BoxBlurLine(down.data(), 1, H, shape.radius, line);
  }
  cairo_surface_flush(target);
  uint8_t *data = cairo_image_surface_get_data(target);
  const int stride = cairo_image_surface_get_stride(target);
  // alpha = across x down x opacity / 255, in 24-bit fixed point.
  const uint64_t scale = (uint64_t)std::llround(kShadowOpacity * (1 << 24) / 255.0);
  const int y0 = std::max(0, top - shape.reach), y1 = std::min(H, top + h + shape.reach);
  const int x0 = std::max(0, x - shape.reach), x1 = std::min(W, x + w + shape.reach);
  auto shade = [&](uint32_t *pixels, int row, int from, int to) {
    for (int col = std::max(from, x0); col < std::min(to, x1); col++) {
      uint32_t alpha = (uint32_t)(((uint64_t)across[col] * down[row] * scale + (1 << 23)) >> 24);
      uint32_t d = pixels[col];
      if (d == 0) {  // the clear margin, as a rule
        pixels[col] = alpha << 24;
        continue;
      }
      if (alpha == 0) continue;
      // Black over what is there (premultiplied).
      uint32_t keep = 255 - alpha;
      uint32_t a = alpha + (((d >> 24) * keep + 127) / 255);
      uint32_t r = (((d >> 16) & 255) * keep + 127) / 255, g = (((d >> 8) & 255) * keep + 127) / 255,
               b = ((d & 255) * keep + 127) / 255;
      pixels[col] = (a << 24) | (r << 16) | (g << 8) | b;
    }
  };
  for (int row = y0; row < y1; row++) {
    uint32_t *pixels = (uint32_t *)(data + (size_t)row * stride);
    if (row >= y && row < y + h) {
      // Beside the window only: under it nothing shows.
      shade(pixels, row, x0, x);
      shade(pixels, row, x + w, x1);
    } else {
      shade(pixels, row, x0, x1);
    }
  }
  cairo_surface_mark_dirty(target);
}

// Any other window's shadow: the alpha of `source` (the window's pixels,
// whose top-left lies at (x, y) of the target), moved down, blurred and
// laid down in black with `op`.
void PaintAlphaShadow(cairo_surface_t *target, cairo_surface_t *source, int x, int y, int w, int h,
                      ShadowShape shape, cairo_operator_t op) {
  const int W = cairo_image_surface_get_width(target), H = cairo_image_surface_get_height(target);
  const int x0 = std::max(0, x - shape.reach), y0 = std::max(0, y + shape.dy - shape.reach);
  const int x1 = std::min(W, x + w + shape.reach), y1 = std::min(H, y + shape.dy + h + shape.reach);
  if (x1 <= x0 || y1 <= y0) {
    return;
  }
  cairo_surface_t *mask = cairo_image_surface_create(CAIRO_FORMAT_A8, x1 - x0, y1 - y0);
  if (cairo_surface_status(mask) != CAIRO_STATUS_SUCCESS) {
    cairo_surface_destroy(mask);
    return;
  }
  cairo_t *m = cairo_create(mask);
  cairo_set_operator(m, CAIRO_OPERATOR_SOURCE);
  cairo_set_source_surface(m, source, x - x0, y + shape.dy - y0);
  cairo_paint(m);
  cairo_destroy(m);
  cairo_surface_flush(mask);
  BlurAlpha(cairo_image_surface_get_data(mask), cairo_image_surface_get_stride(mask), x1 - x0, y1 - y0,
            shape.radius);
  cairo_surface_mark_dirty(mask);
  cairo_t *cr = cairo_create(target);
  cairo_set_operator(cr, op);
  cairo_set_source_rgba(cr, 0, 0, 0, kShadowOpacity);
  cairo_mask_surface(cr, mask, x0, y0);
  cairo_destroy(cr);
  cairo_surface_destroy(mask);
}

// Whether the part of `image` in the rect (x, y, w, h) is opaque.
bool IsOpaque(cairo_surface_t *image, int x, int y, int w, int h) {
  const int W = cairo_image_surface_get_width(image), H = cairo_image_surface_get_height(image);
  const int stride = cairo_image_surface_get_stride(image);
  const uint8_t *data = cairo_image_surface_get_data(image);
  const int x0 = std::max(0, x), x1 = std::min(W, x + w), y0 = std::max(0, y), y1 = std::min(H, y + h);
  for (int row = y0; row < y1; row++) {
    const uint32_t *pixels = (const uint32_t *)(data + (size_t)row * stride);
    uint32_t all = 0xff000000u;
    for (int col = x0; col < x1; col++) all &= pixels[col];
    if ((all & 0xff000000u) != 0xff000000u) return false;
  }
  return true;
}

struct Source {
  NSWindow *window;
  cairo_surface_t *buffer;
  int width, height;  // pixels
  NSRect bounds;      // window-server units
  double scale;       // pixels per unit
};

bool IsFinite(CGRect r) {
  return std::isfinite(r.origin.x) && std::isfinite(r.origin.y) && std::isfinite(r.size.width) &&
         std::isfinite(r.size.height);
}

CGImageRef CreateImage(CGRect screenBounds, NSArray *windows, CGWindowImageOption option) {
  std::vector<Source> sources;
  for (NSWindow *window in windows) {
    if (![window isVisible]) {
      continue;
    }
    Source s{window, nullptr, 0, 0, TVWindowServerBounds(window), 1};
    s.buffer = TVWindowBackBuffer(window, &s.width, &s.height);
    if (s.buffer == nullptr || s.bounds.size.width <= 0 || s.bounds.size.height <= 0) {
      continue;
    }
    s.scale = s.width / s.bounds.size.width;
    sources.push_back(s);
  }
  if (sources.empty()) {
    return nullptr;
  }
  const bool framing = (option & kCGWindowImageBoundsIgnoreFraming) == 0;
  // A null or infinite rect asks for all of the windows (with their
  // shadows when framed).
  CGRect area = screenBounds;
  if (CGRectIsNull(area) || CGRectIsInfinite(area)) {
    area = CGRectNull;
    for (const Source &s : sources) {
      CGRect r = s.bounds;
      if (framing && [s.window hasShadow]) {
        ShadowReach reach = ReachOf(s.window);
        r = CGRectMake(r.origin.x - reach.spread, r.origin.y - reach.spread + reach.down,
                       r.size.width + 2 * reach.spread, r.size.height + 2 * reach.spread);
      }
      area = CGRectUnion(area, r);
    }
  } else if (!IsFinite(area) || area.size.width <= 0 || area.size.height <= 0) {
    return nullptr;
  }
  // Without framing the picture is the windows' own area within the rect.
  if (!framing) {
    CGRect windowsArea = CGRectNull;
    for (const Source &s : sources) windowsArea = CGRectUnion(windowsArea, s.bounds);
    area = CGRectIntersection(area, windowsArea);
    if (CGRectIsNull(area) || area.size.width <= 0 || area.size.height <= 0) {
      return nullptr;
    }
  }
  // Sized from the first (uppermost) window's backing: its pixels plus
  // whole pixels of margin, never the rect times a scale.
  const Source &first = sources.front();
  const double scale = first.scale;
  auto px = [scale](double units) { return (long)std::lround(units * scale); };
  const long left = px(first.bounds.origin.x - area.origin.x);
  const long top = px(first.bounds.origin.y - area.origin.y);
  const long right = px(CGRectGetMaxX(area) - CGRectGetMaxX(first.bounds));
  const long bottom = px(CGRectGetMaxY(area) - CGRectGetMaxY(first.bounds));
  const long width = first.width + left + right, height = first.height + top + bottom;
  if (width <= 0 || height <= 0 || width > 32767 || height > 32767) {
    return nullptr;
  }
  const int stride = cairo_format_stride_for_width(CAIRO_FORMAT_ARGB32, (int)width);
  std::vector<uint8_t> pixels((size_t)stride * height, 0);
  cairo_surface_t *target = cairo_image_surface_create_for_data(
      pixels.data(), CAIRO_FORMAT_ARGB32, (int)width, (int)height, stride);
  if (cairo_surface_status(target) != CAIRO_STATUS_SUCCESS) {
    cairo_surface_destroy(target);
    return nullptr;
  }
  // Back to front: the array's first window ends up on top. A lone window
  // is copied straight in and its shadow put under it; among several, each
  // window's shadow goes over what lies below it, then the window.
  const bool alone = sources.size() == 1;
  for (auto s = sources.rbegin(); s != sources.rend(); ++s) {
    const int x = (int)(left + px(s->bounds.origin.x - first.bounds.origin.x));
    const int y = (int)(top + px(s->bounds.origin.y - first.bounds.origin.y));
    const bool shadow = framing && [s->window hasShadow];
    const ShadowShape shape = ShapeAt(ReachOf(s->window), s->scale);
    if (alone) {
      FetchInto(target, s->buffer, x, y, s->width, s->height);
      // As the window server does, an opaque window casts the shadow of its
      // frame; only a non-opaque one is read for its shape.
      if (shadow && ([s->window isOpaque] || IsOpaque(target, x, y, s->width, s->height))) {
        PaintRectShadow(target, x, y, s->width, s->height, shape);
      } else if (shadow) {
        PaintAlphaShadow(target, target, 0, 0, cairo_image_surface_get_width(target),
                         cairo_image_surface_get_height(target), shape, CAIRO_OPERATOR_DEST_OVER);
      }
      continue;
    }
    cairo_surface_t *copy = CopyWindow(s->buffer, s->width, s->height);
    if (copy == nullptr) {
      continue;
    }
    const bool opaque = [s->window isOpaque] || IsOpaque(copy, 0, 0, s->width, s->height);
    if (shadow && opaque) {
      PaintRectShadow(target, x, y, s->width, s->height, shape);
    } else if (shadow) {
      PaintAlphaShadow(target, copy, x, y, s->width, s->height, shape, CAIRO_OPERATOR_OVER);
    }
    cairo_t *cr = cairo_create(target);
    cairo_set_operator(cr, opaque ? CAIRO_OPERATOR_SOURCE : CAIRO_OPERATOR_OVER);
    cairo_set_source_surface(cr, copy, x, y);
    cairo_rectangle(cr, x, y, s->width, s->height);
    cairo_fill(cr);
    cairo_destroy(cr);
    cairo_surface_destroy(copy);
  }
  cairo_surface_flush(target);
  cairo_surface_destroy(target);
  q::PixelFormat format;
  format.width = (size_t)width;
  format.height = (size_t)height;
  format.bitsPerComponent = 8;
  format.bitsPerPixel = 32;
  format.bytesPerRow = (size_t)stride;
  format.bitmapInfo = kCGImageAlphaPremultipliedFirst | kCGBitmapByteOrder32Little;
  return TVCGImageCreateWithImage(q::Image::create(format, std::move(pixels)));
}

#pragma mark - Dictionary representations

NSDictionary *CreateNumbers(NSString *const *keys, const CGFloat *values, int count) {
  id objects[4];
  for (int i = 0; i < count; i++) objects[i] = [NSNumber numberWithDouble:values[i]];
  return [[NSDictionary alloc] initWithObjects:objects forKeys:keys count:count];
}

bool ReadNumbers(CFDictionaryRef dict, NSString *const *keys, CGFloat *values, int count) {
  id object = (id)dict;
  if (object == nil || ![object isKindOfClass:[NSDictionary class]]) {
    return false;
  }
  CGFloat read[4];
  for (int i = 0; i < count; i++) {
    id value = [object objectForKey:keys[i]];
    if (![value isKindOfClass:[NSNumber class]]) {
      return false;
    }
    read[i] = [value doubleValue];
  }
  std::copy(read, read + count, values);
  return true;
}

NSString *const kRectKeys[] = {@"X", @"Y", @"Width", @"Height"};

}  // namespace

#pragma mark - Public

CFArrayRef CGWindowListCreate(CGWindowListOption option, CGWindowID relativeToWindow) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  NSMutableArray *numbers = [[NSMutableArray alloc] init];
  @try {
    for (NSWindow *window in ListedWindows(option, relativeToWindow)) {
      [numbers addObject:[NSNumber numberWithUnsignedInt:(unsigned)[window windowNumber]]];
    }
  } @catch (NSException *exception) {
  }
  [pool drain];
  return (CFArrayRef)numbers;
}

CFArrayRef CGWindowListCopyWindowInfo(CGWindowListOption option, CGWindowID relativeToWindow) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  NSMutableArray *descriptions = [[NSMutableArray alloc] init];
  @try {
    for (NSWindow *window in ListedWindows(option, relativeToWindow)) {
      [descriptions addObject:Describe(window)];
    }
  } @catch (NSException *exception) {
  }
  [pool drain];
  return (CFArrayRef)descriptions;
}

CFArrayRef CGWindowListCreateDescriptionFromArray(CFArrayRef windowArray) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  NSMutableArray *descriptions = nil;
  @try {
    NSArray *windows = WindowsOfArray(windowArray);
    if (windows != nil) {
      descriptions = [[NSMutableArray alloc] initWithCapacity:[windows count]];
      for (NSWindow *window in windows) {
        [descriptions addObject:Describe(window)];
      }
    }
  } @catch (NSException *exception) {
  }
  [pool drain];
  return (CFArrayRef)descriptions;
}

CGImageRef CGWindowListCreateImageFromArray(CGRect screenBounds, CFArrayRef windowArray,
                                            CGWindowImageOption imageOption) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  CGImageRef image = nullptr;
  @try {
    NSArray *windows = WindowsOfArray(windowArray);
    if ([windows count] > 0) {
      image = CreateImage(screenBounds, windows, imageOption);
    }
  } @catch (NSException *exception) {
    image = nullptr;
  }
  [pool drain];
  return image;
}

CGImageRef CGWindowListCreateImage(CGRect screenBounds, CGWindowListOption listOption,
                                   CGWindowID windowID, CGWindowImageOption imageOption) {
  CFArrayRef windows = CGWindowListCreate(listOption, windowID);
  CGImageRef image = CGWindowListCreateImageFromArray(screenBounds, windows, imageOption);
  if (windows != NULL) {
    CFRelease(windows);
  }
  return image;
}

CFDictionaryRef CGRectCreateDictionaryRepresentation(CGRect rect) {
  CGFloat values[] = {rect.origin.x, rect.origin.y, rect.size.width, rect.size.height};
  return (CFDictionaryRef)CreateNumbers(kRectKeys, values, 4);
}

bool CGRectMakeWithDictionaryRepresentation(CFDictionaryRef dict, CGRect *rect) {
  CGFloat values[4];
  if (rect == NULL || !ReadNumbers(dict, kRectKeys, values, 4)) {
    return false;
  }
  *rect = CGRectMake(values[0], values[1], values[2], values[3]);
  return true;
}

CFDictionaryRef CGPointCreateDictionaryRepresentation(CGPoint point) {
  CGFloat values[] = {point.x, point.y};
  return (CFDictionaryRef)CreateNumbers(kRectKeys, values, 2);
}

bool CGPointMakeWithDictionaryRepresentation(CFDictionaryRef dict, CGPoint *point) {
  CGFloat values[2];
  if (point == NULL || !ReadNumbers(dict, kRectKeys, values, 2)) {
    return false;
  }
  *point = CGPointMake(values[0], values[1]);
  return true;
}

CFDictionaryRef CGSizeCreateDictionaryRepresentation(CGSize size) {
  CGFloat values[] = {size.width, size.height};
  return (CFDictionaryRef)CreateNumbers(kRectKeys + 2, values, 2);
}

bool CGSizeMakeWithDictionaryRepresentation(CFDictionaryRef dict, CGSize *size) {
  CGFloat values[2];
  if (size == NULL || !ReadNumbers(dict, kRectKeys + 2, values, 2)) {
    return false;
  }
  *size = CGSizeMake(values[0], values[1]);
  return true;
}
