// Conversions between AppKit's images and colours and Core Graphics ones.

#import <AppKit/AppKit.h>
#import <AppKit/NSGraphicsContext+TalvoPlatform.h>

#include <CoreGraphics/CGTalvoBridge.h>

#include <cmath>

#include "platform/CoreGraphics/engine/Checked.hpp"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

// Releases a CGImage or CGColor when the autorelease pool drains, so that
// the "get" methods hand out references the caller does not own.
@interface _TVCGReference : NSObject {
  CGImageRef _image;
  CGColorRef _color;
}
+ (CGImageRef)autoreleaseImage:(CGImageRef)image;
+ (CGColorRef)autoreleaseColor:(CGColorRef)color;
@end

@implementation _TVCGReference

+ (CGImageRef)autoreleaseImage:(CGImageRef)image {
  if (!image) return nullptr;
  _TVCGReference *holder = [[self alloc] init];
  holder->_image = image;
  [holder autorelease];
  return image;
}

+ (CGColorRef)autoreleaseColor:(CGColorRef)color {
  if (!color) return nullptr;
  _TVCGReference *holder = [[self alloc] init];
  holder->_color = color;
  [holder autorelease];
  return color;
}

- (void)dealloc {
  CGImageRelease(_image);
  CGColorRelease(_color);
  [super dealloc];
}

@end

namespace {

NSBitmapImageRep *InitRGBARepUnchecked(NSBitmapImageRep *rep, NSInteger width, NSInteger height);

// Whether an offscreen RGBA bitmap of this many pixels is within the
// engine's cap (talvo::quartz::kMaxSurfaceSide / kMaxSurfaceBytes).
bool OffscreenAllowed(NSInteger width, NSInteger height) {
  return width > 0 && height > 0 &&
         talvo::quartz::surfaceSizeAllowed(size_t(width), size_t(height), 4);
}

// Initialises `rep` as 8-bit RGBA of the given pixel size with its own
// memory; nil (and `rep` released) beyond the cap or when memory runs out.
NSBitmapImageRep *InitRGBARep(NSBitmapImageRep *rep, NSInteger width, NSInteger height) {
  if (!OffscreenAllowed(width, height)) {
    [rep release];
    return nil;
  }
  @try {
    return InitRGBARepUnchecked(rep, width, height);
  } @catch (NSException *e) {
    // Out of memory below the cap: the half-made rep is left alone rather
    // than risk releasing what GNUstep's initialiser may have freed.
    return nil;
  }
}

NSBitmapImageRep *InitRGBARepUnchecked(NSBitmapImageRep *rep, NSInteger width, NSInteger height) {
  return [rep initWithBitmapDataPlanes:NULL
                                                 pixelsWide:width
                                                 pixelsHigh:height
                                              bitsPerSample:8
                                            samplesPerPixel:4
                                                   hasAlpha:YES
                                                   isPlanar:NO
                                             colorSpaceName:NSDeviceRGBColorSpace
                                               bitmapFormat:NSBitmapFormat(0)
                                                bytesPerRow:width * 4
                                               bitsPerPixel:32];
}

// A CGImage of `width` x `height` pixels with whatever `draw` paints in a
// context whose user space spans `size` points; +1, NULL on failure.
CGImageRef NewImageByDrawing(NSInteger width, NSInteger height, NSSize size, void (^draw)(void)) {
  if (!OffscreenAllowed(width, height)) return nullptr;
  if (!std::isfinite(size.width) || !std::isfinite(size.height)) size = NSMakeSize(width, height);
  NSBitmapImageRep *rep = InitRGBARep([NSBitmapImageRep alloc], width, height);
  if (!rep) return nullptr;
  memset([rep bitmapData], 0, size_t(width) * size_t(height) * 4);
  CGImageRef image = nullptr;
  @try {
    [rep setSize:size];
    NSGraphicsContext *context = [NSGraphicsContext graphicsContextWithBitmapImageRep:rep];
    if (context) {
      [NSGraphicsContext saveGraphicsState];
      @try {
        [NSGraphicsContext setCurrentContext:context];
        draw();
      } @catch (NSException *e) {
      } @finally {
        [NSGraphicsContext restoreGraphicsState];  // brings the pixels to the rep
      }
      image = CGImageRetain([rep CGImage]);
    }
  } @catch (NSException *e) {
    CGImageRelease(image);
    image = nullptr;
  }
  [rep release];
  return image;
}

// Whole pixels for a length in points; 0 (nothing to draw) when the length
// is not a positive finite number or is beyond the offscreen cap.
NSInteger PixelsFor(CGFloat points) {
  double pixels = std::ceil(points - 1e-9);
  if (!(pixels > 0) || !(pixels <= double(talvo::quartz::kMaxSurfaceSide))) return 0;
  return NSInteger(pixels);
}

}  // namespace

@implementation NSBitmapImageRep (TalvoPlatformGraphics)

- (instancetype)initWithCGImage:(CGImageRef)image {
  if (!image) {
    [self release];
    return nil;
  }
  size_t imageWidth = CGImageGetWidth(image), imageHeight = CGImageGetHeight(image);
  if (!talvo::quartz::surfaceSizeAllowed(imageWidth, imageHeight, 4)) {
    [self release];
    return nil;
  }
  NSInteger width = NSInteger(imageWidth), height = NSInteger(imageHeight);
  self = InitRGBARep(self, width, height);
  if (!self) return nil;
  memset([self bitmapData], 0, size_t(width) * size_t(height) * 4);
  CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
  CGContextRef c = CGBitmapContextCreate([self bitmapData], size_t(width), size_t(height), 8,
                                         size_t(width * 4), space, kCGImageAlphaPremultipliedLast);
  CGColorSpaceRelease(space);
  if (!c) {
    [self release];
    return nil;
  }
  CGContextSetBlendMode(c, kCGBlendModeCopy);
  CGContextDrawImage(c, CGRectMake(0, 0, width, height), image);
  CGContextRelease(c);
  return self;
}

- (CGImageRef)CGImage {
  NSInteger width = [self pixelsWide], height = [self pixelsHigh];
  NSInteger spp = [self samplesPerPixel], bps = [self bitsPerSample];
  NSBitmapFormat format = [self bitmapFormat];
  bool gray = spp - ([self hasAlpha] ? 1 : 0) == 1;
  bool usable = ![self isPlanar] && (bps == 8 || bps == 16) &&
                (format & NSFloatingPointSamplesBitmapFormat) == 0 && [self bitmapData] != NULL &&
                spp >= 1 && spp <= 4;
  if (!usable || width <= 0 || height <= 0) {
    // Anything else goes through drawing.
    NSBitmapImageRep *me = self;
    return [_TVCGReference autoreleaseImage:NewImageByDrawing(width, height, [self size], ^{
                             [me drawInRect:NSMakeRect(0, 0, [me size].width, [me size].height)];
                           })];
  }
  CGBitmapInfo info = kCGImageAlphaNone;
  if ([self hasAlpha]) {
    bool first = (format & NSAlphaFirstBitmapFormat) != 0;
    bool premultiplied = (format & NSAlphaNonpremultipliedBitmapFormat) == 0;
    info = first ? (premultiplied ? kCGImageAlphaPremultipliedFirst : kCGImageAlphaFirst)
                 : (premultiplied ? kCGImageAlphaPremultipliedLast : kCGImageAlphaLast);
  }
  if (bps == 16) info |= kCGBitmapByteOrder16Host;  // GNUstep keeps native 16-bit samples
  size_t length = size_t([self bytesPerRow]) * size_t(height);
  CGDataProviderRef provider = CGDataProviderCreateWithData(NULL, [self bitmapData], length, NULL);
  CGColorSpaceRef space = gray ? CGColorSpaceCreateDeviceGray() : CGColorSpaceCreateDeviceRGB();
  CGImageRef image = CGImageCreate(size_t(width), size_t(height), size_t(bps),
                                   size_t([self bitsPerPixel]), size_t([self bytesPerRow]), space,
                                   info, provider, NULL, true, kCGRenderingIntentDefault);
  CGColorSpaceRelease(space);
  CGDataProviderRelease(provider);
  return [_TVCGReference autoreleaseImage:image];
}

@end

@implementation NSImageRep (TalvoPlatformGraphics)

- (CGImageRef)CGImageForProposedRect:(NSRect *)proposedDestRect
                             context:(NSGraphicsContext *)referenceContext
                               hints:(NSDictionary *)hints {
  NSSize size = proposedDestRect ? proposedDestRect->size : [self size];
  NSInteger width = proposedDestRect ? PixelsFor(size.width) : [self pixelsWide];
  NSInteger height = proposedDestRect ? PixelsFor(size.height) : [self pixelsHigh];
  if (width <= 0 || height <= 0) width = PixelsFor(size.width), height = PixelsFor(size.height);
  NSImageRep *me = self;
  return [_TVCGReference autoreleaseImage:NewImageByDrawing(width, height, size, ^{
                           [me drawInRect:NSMakeRect(0, 0, size.width, size.height)];
                         })];
}

@end

@implementation NSImage (TalvoPlatformGraphics)

- (instancetype)initWithCGImage:(CGImageRef)image size:(NSSize)size {
  bool pixelSize = size.width == 0 && size.height == 0;
  if (!image || (!pixelSize && !(size.width > 0 && size.height > 0 && std::isfinite(size.width) &&
                                 std::isfinite(size.height)))) {
    [self release];
    return nil;
  }
  NSBitmapImageRep *rep = [[NSBitmapImageRep alloc] initWithCGImage:image];
  if (!rep) {
    [self release];
    return nil;
  }
  if (pixelSize) size = NSMakeSize([rep pixelsWide], [rep pixelsHigh]);
  [rep setSize:size];
  self = [self initWithSize:size];
  if (self) [self addRepresentation:rep];
  [rep release];
  return self;
}

- (CGImageRef)CGImageForProposedRect:(NSRect *)proposedRect
                             context:(NSGraphicsContext *)context
                               hints:(NSDictionary *)hints {
  // One bitmap and no size asked for: its own pixels, not a redrawing at
  // one pixel per point (an image made from a CGImage gives it back).
  NSArray *reps = [self representations];
  if (!proposedRect && [reps count] == 1) {
    NSImageRep *only = [reps objectAtIndex:0];
    if ([only isKindOfClass:[NSBitmapImageRep class]] && [only pixelsWide] > 0 &&
        [only pixelsHigh] > 0 && [(NSBitmapImageRep *)only bitmapData] != NULL) {
      return [(NSBitmapImageRep *)only CGImage];
    }
  }
  NSSize size = proposedRect ? proposedRect->size : [self size];
  NSImage *me = self;
  return [_TVCGReference
      autoreleaseImage:NewImageByDrawing(PixelsFor(size.width), PixelsFor(size.height), size, ^{
        [me drawInRect:NSMakeRect(0, 0, size.width, size.height)
              fromRect:NSZeroRect
             operation:NSCompositeSourceOver
              fraction:1];
      })];
}

@end

@implementation NSColor (TalvoPlatformGraphics)

- (CGColorRef)CGColor {
  NSColor *rgb = nil;
  @try {
    rgb = [self colorUsingColorSpaceName:NSDeviceRGBColorSpace];
    if (!rgb) rgb = [self colorUsingColorSpaceName:NSCalibratedRGBColorSpace];
  } @catch (NSException *e) {
    rgb = nil;
  }
  if (!rgb) return nullptr;
  return [_TVCGReference autoreleaseColor:CGColorCreateGenericRGB([rgb redComponent],
                                                                  [rgb greenComponent],
                                                                  [rgb blueComponent],
                                                                  [rgb alphaComponent])];
}

@end
