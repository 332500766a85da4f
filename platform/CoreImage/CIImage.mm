// Images as recipes, rendered on demand on the CPU.

#import <CoreImage/CoreImage.h>

#import "platform/CoreImage/TVCIImageRecipe.h"

#include "core/images/Lanczos.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <initializer_list>
#include <new>
#include <vector>

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

namespace {

enum RecipeKind { kBitmap = 0, kClamp, kScale, kCrop };

// Rectangles beyond this are treated as unbounded; whole-pixel arithmetic
// on them stays exact in doubles and in 64-bit integers.
constexpr double kLargestCoordinate = 1099511627776.0;  // 2^40

bool RegionFits(const TVCIRegion &r) {
  return r.width > 0 && r.height > 0 && r.width <= kTVCIMaxSide && r.height <= kTVCIMaxSide &&
         r.width * r.height <= kTVCIMaxPixels;
}

// A scratch buffer of premultiplied RGBA for a region.
struct Scratch {
  std::vector<uint8_t> bytes;
  bool make(const TVCIRegion &r) {
    if (!RegionFits(r)) return false;
    try {
      bytes.assign(size_t(r.width) * size_t(r.height) * 4, 0);
    } catch (const std::bad_alloc &) {
      return false;
    }
    return true;
  }
};

TVCIRegion Intersect(const TVCIRegion &a, const TVCIRegion &b) {
  int64_t x0 = std::max(a.x, b.x), y0 = std::max(a.y, b.y);
  int64_t x1 = std::min(a.x + a.width, b.x + b.width),
          y1 = std::min(a.y + a.height, b.y + b.height);
  return {x0, y0, std::max<int64_t>(0, x1 - x0), std::max<int64_t>(0, y1 - y0)};
}

void ClearRows(uint8_t *pixels, ptrdiff_t bytesPerRow, const TVCIRegion &region) {
  for (int64_t row = 0; row < region.height; ++row) {
    memset(pixels + row * bytesPerRow, 0, size_t(region.width) * 4);
  }
}

// Copies `source` (rows top first, origin `from` in Core Image coordinates)
// into `region`, each pixel taken from the nearest one inside the source:
// the edges repeat outward.
void ClampCopy(const uint8_t *source, ptrdiff_t sourceRow, const TVCIRegion &from,
               const TVCIRegion &region, uint8_t *pixels, ptrdiff_t bytesPerRow) {
  for (int64_t row = 0; row < region.height; ++row) {
    int64_t y = std::clamp(region.y + region.height - 1 - row, from.y, from.y + from.height - 1);
    const uint8_t *in = source + (from.y + from.height - 1 - y) * sourceRow;
    uint8_t *out = pixels + row * bytesPerRow;
    for (int64_t col = 0; col < region.width; ++col) {
      int64_t x = std::clamp(region.x + col, from.x, from.x + from.width - 1) - from.x;
      memcpy(out + col * 4, in + x * 4, 4);
    }
  }
}

}  // namespace

BOOL TVCIRegionForRect(CGRect rect, TVCIRegion *region) {
  if (CGRectIsNull(rect) || CGRectIsInfinite(rect) || CGRectIsEmpty(rect)) return NO;
  rect = CGRectStandardize(rect);
  double x0 = std::floor(rect.origin.x), y0 = std::floor(rect.origin.y);
  double x1 = std::ceil(rect.origin.x + rect.size.width);
  double y1 = std::ceil(rect.origin.y + rect.size.height);
  for (double v : {x0, y0, x1, y1}) {
    if (!std::isfinite(v) || std::fabs(v) > kLargestCoordinate) return NO;
  }
  if (!(x1 > x0) || !(y1 > y0)) return NO;
  *region = {int64_t(x0), int64_t(y0), int64_t(x1 - x0), int64_t(y1 - y0)};
  return YES;
}

@implementation CIImage

#pragma mark - Lifecycle

+ (instancetype)imageWithCGImage:(CGImageRef)image {
  return [[[self alloc] initWithCGImage:image] autorelease];
}

- (instancetype)init {
  [self release];
  return nil;
}

- (instancetype)initWithCGImage:(CGImageRef)image {
  self = [super init];
  if (!self) return nil;
  size_t width = image ? CGImageGetWidth(image) : 0, height = image ? CGImageGetHeight(image) : 0;
  TVCIRegion whole = {0, 0, int64_t(std::min<size_t>(width, kTVCIMaxSide + 1)),
                      int64_t(std::min<size_t>(height, kTVCIMaxSide + 1))};
  if (!RegionFits(whole)) {
    [self release];
    return nil;
  }
  NSMutableData *pixels = [[NSMutableData alloc] initWithLength:width * height * 4];
  CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
  CGContextRef context =
      pixels ? CGBitmapContextCreate([pixels mutableBytes], width, height, 8, width * 4, space,
                                     kCGImageAlphaPremultipliedLast)
             : NULL;
  CGColorSpaceRelease(space);
  if (!context) {
    [pixels release];
    [self release];
    return nil;
  }
  CGContextSetBlendMode(context, kCGBlendModeCopy);
  CGContextDrawImage(context, CGRectMake(0, 0, width, height), image);
  CGContextRelease(context);
  _kind = kBitmap;
  _pixels = pixels;
  _pixelsWide = width;
  _pixelsHigh = height;
  _bytesPerRow = width * 4;
  _extent = CGRectMake(0, 0, width, height);
  _scaleX = _scaleY = 1;
  return self;
}

// A bitmap recipe over premultiplied RGBA rows, top first, `bytesPerRow`
// apart, in memory that `owner` keeps alive.
- (instancetype)_initWithPixels:(NSData *)pixels
                          owner:(id)owner
                          width:(size_t)width
                         height:(size_t)height
                    bytesPerRow:(size_t)bytesPerRow {
  self = [super init];
  if (self) {
    _kind = kBitmap;
    _pixels = [pixels retain];
    _owner = [owner retain];
    _pixelsWide = width;
    _pixelsHigh = height;
    _bytesPerRow = bytesPerRow;
    _extent = CGRectMake(0, 0, width, height);
    _scaleX = _scaleY = 1;
  }
  return self;
}

- (instancetype)_initWithKind:(int)kind input:(CIImage *)input extent:(CGRect)extent {
  self = [super init];
  if (self) {
    _kind = kind;
    _input = [input retain];
    _extent = extent;
    _scaleX = _scaleY = 1;
  }
  return self;
}

- (void)dealloc {
  CIImage *input = _input;
  _input = nil;
  [input release];
  NSData *pixels = _pixels;
  _pixels = nil;
  [pixels release];
  id owner = _owner;
  _owner = nil;
  [owner release];
  [super dealloc];
}

#pragma mark - Public

- (CGRect)extent {
  return _extent;
}

- (CIImage *)imageByCroppingToRect:(CGRect)rect {
  CGRect extent = CGRectIntersection(_extent, CGRectStandardize(rect));
  if (CGRectIsEmpty(extent)) extent = CGRectNull;
  return [[[CIImage alloc] _initWithKind:kCrop input:self extent:extent] autorelease];
}

- (CIImage *)imageByClampingToExtent {
  if (CGRectIsInfinite(_extent)) return [[self retain] autorelease];
  return [[[CIImage alloc] _initWithKind:kClamp input:self extent:CGRectInfinite] autorelease];
}

#pragma mark - NSObject

- (NSString *)description {
  static NSString *const names[] = {@"bitmap", @"clamp", @"Lanczos scale", @"crop"};
  return
      [NSString stringWithFormat:@"<CIImage %p %@ extent {{%g, %g}, {%g, %g}}>", self, names[_kind],
                                 double(_extent.origin.x), double(_extent.origin.y),
                                 double(_extent.size.width), double(_extent.size.height)];
}

#pragma mark - NSCopying

- (id)copyWithZone:(NSZone *)zone {
  return [self retain];  // immutable
}

@end

@implementation CIImage (TalvoRecipe)

- (CIImage *)_clampedImage {
  return [self imageByClampingToExtent];
}

- (CIImage *)_imageScaledByX:(CGFloat)scaleX y:(CGFloat)scaleY {
  if (!std::isfinite(scaleX) || !std::isfinite(scaleY) || !(scaleX > 0) || !(scaleY > 0)) {
    return nil;
  }
  CGRect extent = _extent;
  if (!CGRectIsInfinite(extent) && !CGRectIsNull(extent)) {
    extent = CGRectMake(extent.origin.x * scaleX, extent.origin.y * scaleY,
                        extent.size.width * scaleX, extent.size.height * scaleY);
  }
  CIImage *scaled = [[CIImage alloc] _initWithKind:kScale input:self extent:extent];
  scaled->_scaleX = scaleX;
  scaled->_scaleY = scaleY;
  return [scaled autorelease];
}

- (BOOL)_renderRegion:(TVCIRegion)region into:(uint8_t *)pixels bytesPerRow:(ptrdiff_t)bytesPerRow {
  if (!RegionFits(region) || !pixels || bytesPerRow < region.width * 4) return NO;
  switch (_kind) {
    case kBitmap: {
      TVCIRegion own = {0, 0, int64_t(_pixelsWide), int64_t(_pixelsHigh)};
      TVCIRegion inside = Intersect(region, own);
      ClearRows(pixels, bytesPerRow, region);
      const uint8_t *source = static_cast<const uint8_t *>([_pixels bytes]);
      const ptrdiff_t sourceRow = ptrdiff_t(_bytesPerRow);
      for (int64_t y = inside.y; y < inside.y + inside.height; ++y) {
        const uint8_t *in = source + (own.height - 1 - y) * sourceRow + inside.x * 4;
        uint8_t *out =
            pixels + (region.y + region.height - 1 - y) * bytesPerRow + (inside.x - region.x) * 4;
        memcpy(out, in, size_t(inside.width) * 4);
      }
      return YES;
    }
    case kClamp: {
      TVCIRegion from;
      if (!TVCIRegionForRect([_input extent], &from)) {
        ClearRows(pixels, bytesPerRow, region);
        return YES;
      }
      if (_input->_kind == kBitmap) {
        ClampCopy(static_cast<const uint8_t *>([_input->_pixels bytes]),
                  ptrdiff_t(_input->_bytesPerRow), from, region, pixels, bytesPerRow);
        return YES;
      }
      Scratch scratch;
      if (!scratch.make(from) || ![_input _renderRegion:from
                                                   into:scratch.bytes.data()
                                            bytesPerRow:from.width * 4]) {
        return NO;
      }
      ClampCopy(scratch.bytes.data(), from.width * 4, from, region, pixels, bytesPerRow);
      return YES;
    }
    case kScale:
      return [self _renderScaledRegion:region into:pixels bytesPerRow:bytesPerRow];
    case kCrop: {
      TVCIRegion keep;
      CGRect kept = [self extent];
      if (!TVCIRegionForRect(kept, &keep)) {
        ClearRows(pixels, bytesPerRow, region);
        return YES;
      }
      if (![_input _renderRegion:region into:pixels bytesPerRow:bytesPerRow]) return NO;
      // Pixels whose centre lies outside the crop are cleared: the columns
      // kept are one span, the same on every row.
      int64_t first = region.width, end = 0;
      for (int64_t col = 0; col < region.width; ++col) {
        double cx = double(region.x + col) + 0.5;
        if (cx > kept.origin.x && cx < CGRectGetMaxX(kept)) {
          first = std::min(first, col);
          end = col + 1;
        }
      }
      for (int64_t row = 0; row < region.height; ++row) {
        double cy = double(region.y + region.height - 1 - row) + 0.5;
        uint8_t *out = pixels + row * bytesPerRow;
        if (first >= end || !(cy > kept.origin.y && cy < CGRectGetMaxY(kept))) {
          memset(out, 0, size_t(region.width) * 4);
          continue;
        }
        memset(out, 0, size_t(first) * 4);
        memset(out + end * 4, 0, size_t(region.width - end) * 4);
      }
      return YES;
    }
  }
  return NO;
}

// The pixels the scale reads: a clamped input gives its unclamped source
// whole (the resampler repeats the edges itself, as the clamp would);
// anything else is rendered over the part under the region plus the
// kernel's reach, transparent outside its extent.
- (BOOL)_renderScaledRegion:(TVCIRegion)region
                       into:(uint8_t *)pixels
                bytesPerRow:(ptrdiff_t)bytesPerRow {
  const double sx = _scaleX, sy = _scaleY;
  CIImage *source = _input;
  TVCIRegion from;
  Scratch scratch;
  const uint8_t *sourcePixels = nullptr;
  ptrdiff_t sourceRow = 0;
  if (source->_kind == kClamp && TVCIRegionForRect([source->_input extent], &from)) {
    source = source->_input;
  } else {
    const int64_t marginX = int64_t(std::ceil(3 * std::max(1.0, 1 / sx))) + 2;
    const int64_t marginY = int64_t(std::ceil(3 * std::max(1.0, 1 / sy))) + 2;
    CGRect under = CGRectMake(region.x / sx, region.y / sy, region.width / sx, region.height / sy);
    if (!TVCIRegionForRect(under, &from)) return NO;
    from = {from.x - marginX, from.y - marginY, from.width + 2 * marginX,
            from.height + 2 * marginY};
    TVCIRegion limit;
    if (!CGRectIsInfinite([source extent])) {
      if (!TVCIRegionForRect([source extent], &limit)) {
        ClearRows(pixels, bytesPerRow, region);
        return YES;
      }
      limit = {limit.x - marginX, limit.y - marginY, limit.width + 2 * marginX,
               limit.height + 2 * marginY};
      from = Intersect(from, limit);
      if (from.width == 0 || from.height == 0) {
        ClearRows(pixels, bytesPerRow, region);
        return YES;
      }
    }
  }
  if (source->_kind == kBitmap && from.x == 0 && from.y == 0 &&
      from.width == int64_t(source->_pixelsWide) && from.height == int64_t(source->_pixelsHigh)) {
    sourcePixels = static_cast<const uint8_t *>([source->_pixels bytes]);
    sourceRow = ptrdiff_t(source->_bytesPerRow);
  } else {
    if (!scratch.make(from) || ![source _renderRegion:from
                                                 into:scratch.bytes.data()
                                          bytesPerRow:from.width * 4]) {
      return NO;
    }
    sourcePixels = scratch.bytes.data();
    sourceRow = from.width * 4;
  }
  // Destination column i samples the source at (x + i + 0.5) / sx in Core
  // Image units; rows count down from the top of both.
  talvo::images::PixelView in{const_cast<uint8_t *>(sourcePixels), int(from.width),
                              int(from.height), sourceRow};
  talvo::images::PixelView out{pixels, int(region.width), int(region.height), bytesPerRow};
  talvo::images::ResampleAxis ax{sx, double(region.x) - double(from.x) * sx};
  talvo::images::ResampleAxis ay{
      sy, double(from.y + from.height) * sy - double(region.y + region.height)};
  return talvo::images::ResampleLanczos3(in, out, ax, ay) ? YES : NO;
}

@end

@implementation CIImage (NSAppKitAdditions)

- (instancetype)initWithBitmapImageRep:(NSBitmapImageRep *)rep {
  if (![rep isKindOfClass:[NSBitmapImageRep class]]) {
    [self release];
    return nil;
  }
  @try {
    NSInteger width = [rep pixelsWide], height = [rep pixelsHigh];
    TVCIRegion whole = {0, 0, int64_t(width), int64_t(height)};
    if (!RegionFits(whole) || [rep bitmapData] == NULL) {
      [self release];
      return nil;
    }
    // Premultiplied 8-bit RGBA already: read in place, the bitmap kept.
    NSString *space = [rep colorSpaceName];
    if ([rep bitsPerSample] == 8 && [rep samplesPerPixel] == 4 && [rep hasAlpha] &&
        ![rep isPlanar] && [rep bitmapFormat] == 0 && [rep bitsPerPixel] == 32 &&
        [rep bytesPerRow] >= width * 4 &&
        ([space isEqualToString:NSDeviceRGBColorSpace] ||
         [space isEqualToString:NSCalibratedRGBColorSpace])) {
      size_t bytesPerRow = size_t([rep bytesPerRow]);
      NSData *pixels = [[NSData alloc] initWithBytesNoCopy:[rep bitmapData]
                                                    length:bytesPerRow * size_t(height)
                                              freeWhenDone:NO];
      self = [self _initWithPixels:pixels
                             owner:rep
                             width:size_t(width)
                            height:size_t(height)
                       bytesPerRow:bytesPerRow];
      [pixels release];
      return self;
    }
    return [self initWithCGImage:[rep CGImage]];
  } @catch (NSException *e) {
    // Only the bitmap's getters raise, before the receiver holds anything.
    [self release];
    return nil;
  }
}

@end
