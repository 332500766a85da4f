#import <Talvo/NSBitmapImageRep+Addons.h>

#import <CoreImage/CoreImage.h>

#include <cmath>
#include <cstring>

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

namespace {

// The largest canvas imageRepWithImageReps: makes, on a side and in pixels.
constexpr NSInteger kMaxCanvasSide = 32768;
constexpr NSInteger kMaxCanvasPixels = NSInteger(1) << 28;

bool Finite(NSSize size) { return std::isfinite(size.width) && std::isfinite(size.height); }

// Whether a representation of this size can be drawn on a canvas: sizes of
// nothing, negative ones and ones beyond any canvas are passed over (GNUstep
// raises on some of them and leaks what it was drawing with).
bool Drawable(NSSize size) {
  const double limit = 1e6;
  return size.width > 0 && size.height > 0 && size.width <= limit && size.height <= limit;
}

// The output image of filter `name` with these inputs; nil when anything
// fails.
CIImage *Filtered(NSString *name, NSDictionary *inputs) {
  CIFilter *filter = [CIFilter filterWithName:name];
  for (NSString *key in inputs) [filter setValue:[inputs objectForKey:key] forKey:key];
  return [filter valueForKey:kCIOutputImageKey];
}

}  // namespace

@implementation NSBitmapImageRep (addons)

#pragma mark - Public

- (NSBitmapImageRep *)imageRepWithSize:(NSSize)size {
  if (!Finite(size)) return nil;
  @try {
    NSInteger pixelsWide = [self pixelsWide], pixelsHigh = [self pixelsHigh];
    if (pixelsWide <= 0 || pixelsHigh <= 0) return nil;
    double scale = MAX(size.width, size.height) / double(MAX(pixelsWide, pixelsHigh));
    if (!(scale > 0) || !std::isfinite(scale)) return nil;
    CIImage *image = [[[CIImage alloc] initWithBitmapImageRep:self] autorelease];
    if (!image) return nil;
    // Clamped first, so that the kernel reads repeated edge pixels rather
    // than the transparency beyond them.
    CIImage *clamped =
        Filtered(@"CIAffineClamp",
                 @{@"inputTransform" : [NSAffineTransform transform], @"inputImage" : image});
    if (!clamped) return nil;
    CIImage *scaled = Filtered(
        @"CILanczosScaleTransform",
        @{@"inputScale" : @(scale), @"inputAspectRatio" : @(1.0f), @"inputImage" : clamped});
    if (!scaled) return nil;
    CIVector *rectangle = [CIVector vectorWithX:0
                                              Y:0
                                              Z:std::floor(pixelsWide * scale)
                                              W:std::floor(pixelsHigh * scale)];
    CIImage *cropped =
        Filtered(@"CICrop", @{@"inputImage" : scaled, @"inputRectangle" : rectangle});
    if (!cropped) return nil;
    return [[[NSBitmapImageRep alloc] initWithCIImage:cropped] autorelease];
  } @catch (NSException *e) {
    return nil;
  }
}

+ (NSBitmapImageRep *)imageRepWithImage:(NSImage *)image {
  if (![image isKindOfClass:[NSImage class]]) return nil;
  @try {
    NSData *tiff = [image TIFFRepresentation];
    return tiff ? [NSBitmapImageRep imageRepWithData:tiff] : nil;
  } @catch (NSException *e) {
    return nil;
  }
}

+ (NSBitmapImageRep *)imageRepWithImageReps:(NSArray *)imageReps {
  // An empty array has no first representation to size the canvas: nil.
  if (![imageReps isKindOfClass:[NSArray class]] || [imageReps count] == 0) return nil;
  NSImageRep *first = [imageReps objectAtIndex:0];
  if (![first isKindOfClass:[NSImageRep class]]) return nil;
  NSInteger width = 0, height = 0;
  NSSize firstSize = NSZeroSize;
  @try {
    width = [first pixelsWide];
    height = [first pixelsHigh];
    firstSize = [first size];
  } @catch (NSException *e) {
    return nil;
  }
  if (width <= 0 || height <= 0 || width > kMaxCanvasSide || height > kMaxCanvasSide ||
      width * height > kMaxCanvasPixels) {
    return nil;
  }
  NSBitmapImageRep *canvas = nil;
  @try {
    canvas = [[NSBitmapImageRep alloc] initWithBitmapDataPlanes:NULL
                                                     pixelsWide:width
                                                     pixelsHigh:height
                                                  bitsPerSample:8
                                                samplesPerPixel:4
                                                       hasAlpha:YES
                                                       isPlanar:NO
                                                 colorSpaceName:NSDeviceRGBColorSpace
                                                    bytesPerRow:0
                                                   bitsPerPixel:0];
  } @catch (NSException *e) {
    return nil;
  }
  if (!canvas || ![canvas bitmapData]) {
    [canvas release];
    return nil;
  }
  memset([canvas bitmapData], 0, size_t([canvas bytesPerRow]) * size_t(height));
  [NSGraphicsContext saveGraphicsState];
  @try {
    NSGraphicsContext *context = [NSGraphicsContext graphicsContextWithBitmapImageRep:canvas];
    [NSGraphicsContext setCurrentContext:context];
    [context setImageInterpolation:NSImageInterpolationNone];
    for (NSImageRep *rep in imageReps) {
      if (![rep isKindOfClass:[NSImageRep class]]) continue;
      NSSize size = [rep size];
      if (!Drawable(size) || !Drawable(firstSize)) continue;
      NSRect into =
          NSMakeRect(std::floor((firstSize.width - size.width) * 0.5),
                     std::floor((firstSize.height - size.height) * 0.5), size.width, size.height);
      [rep drawInRect:into
                fromRect:NSMakeRect(0, 0, size.width, size.height)
               operation:NSCompositeSourceOver
                fraction:1.0
          respectFlipped:NO
                   hints:nil];
    }
  } @catch (NSException *e) {
    // What was drawn before the failure stays on the canvas.
  } @finally {
    [NSGraphicsContext restoreGraphicsState];
  }
  return [canvas autorelease];
}

@end
