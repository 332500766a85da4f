#import "gallery/pages/ImageLoadingPage.h"

#import <Talvo/NSBitmapImageRep+Addons.h>
#import <Talvo/NSImage+Directory.h>
#import <Talvo/NSImage+RepresentationsSearching.h>

#include <cmath>

#pragma mark - Sample files

// The icon at `scale` pixels per point, 24 points square: a colour of its
// own per scale and stripes as many pixels wide as the scale (+1).
static NSBitmapImageRep *NewIconRep(int scale) {
  const size_t side = size_t(24 * scale);
  CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
  CGContextRef c =
      CGBitmapContextCreate(NULL, side, side, 8, side * 4, space, kCGImageAlphaPremultipliedLast);
  CGColorSpaceRelease(space);
  if (c == NULL) {
    return nil;
  }
  static const CGFloat colours[3][3] = {{0.25, 0.45, 0.85}, {0.30, 0.65, 0.40}, {0.90, 0.55, 0.20}};
  const CGFloat *colour = colours[scale - 1];
  CGContextSetRGBFillColor(c, colour[0], colour[1], colour[2], 1);
  CGContextFillEllipseInRect(c, CGRectMake(0, 0, side, side));
  CGContextSetRGBFillColor(c, 1, 1, 1, 0.8);
  for (size_t x = side / 4; x < side * 3 / 4; x += size_t(3 * scale)) {
    CGContextFillRect(c, CGRectMake(x, side / 4, scale, side / 2));
  }
  CGImageRef image = CGBitmapContextCreateImage(c);
  CGContextRelease(c);
  NSBitmapImageRep *rep = [[NSBitmapImageRep alloc] initWithCGImage:image];
  CGImageRelease(image);
  return rep;
}

// Writes icon.png, icon@2x.png and icon@3x.png into a new directory under
// the temporary one, loads the directory as one image and removes it.
static NSImage *NewIconFromDirectory(void) {
  NSString *directory = [NSTemporaryDirectory()
      stringByAppendingPathComponent:[NSString stringWithFormat:@"talvo-gallery-icons-%d",
                                                                [[NSProcessInfo processInfo]
                                                                    processIdentifier]]];
  NSFileManager *files = [NSFileManager defaultManager];
  [files removeItemAtPath:directory error:NULL];
  if (![files createDirectoryAtPath:directory
          withIntermediateDirectories:YES
                           attributes:nil
                                error:NULL]) {
    return nil;
  }
  static NSString *const names[] = {@"icon.png", @"icon@2x.png", @"icon@3x.png"};
  for (int scale = 1; scale <= 3; scale++) {
    NSBitmapImageRep *rep = NewIconRep(scale);
    NSData *png = [rep representationUsingType:NSPNGFileType properties:[NSDictionary dictionary]];
    [png writeToFile:[directory stringByAppendingPathComponent:names[scale - 1]] atomically:NO];
    [rep release];
  }
  NSImage *image =
      [[NSImage alloc] initWithContentsOfDirectoryAtURL:[NSURL fileURLWithPath:directory]];
  [files removeItemAtPath:directory error:NULL];
  return image;
}

// Rings that alias when sampled carelessly, over a checkerboard, `side`
// pixels square (+1).
static NSBitmapImageRep *NewZonePlate(NSInteger side) {
  NSBitmapImageRep *rep = [[NSBitmapImageRep alloc] initWithBitmapDataPlanes:NULL
                                                                  pixelsWide:side
                                                                  pixelsHigh:side
                                                               bitsPerSample:8
                                                             samplesPerPixel:4
                                                                    hasAlpha:YES
                                                                    isPlanar:NO
                                                              colorSpaceName:NSDeviceRGBColorSpace
                                                                 bytesPerRow:side * 4
                                                                bitsPerPixel:32];
  for (NSInteger y = 0; y < side; y++) {
    for (NSInteger x = 0; x < side; x++) {
      double u = (x + 0.5) / side - 0.5, v = (y + 0.5) / side - 0.5;
      double ring = 0.5 + 0.5 * cos((u * u + v * v) * side * 2.2);
      bool check = ((x / 12) + (y / 12)) % 2;
      unsigned char *p = [rep bitmapData] + y * [rep bytesPerRow] + x * 4;
      p[0] = (unsigned char)(255 * ring);
      p[1] = (unsigned char)(check ? 200 : 60);
      p[2] = (unsigned char)(255 * (1 - ring));
      p[3] = 255;
    }
  }
  return rep;
}

// The same pixels taken one per `factor` (no filtering), for comparison (+1).
static NSBitmapImageRep *NewNearestDownscale(NSBitmapImageRep *source, NSInteger factor) {
  NSInteger side = [source pixelsWide] / factor;
  NSBitmapImageRep *rep = [[NSBitmapImageRep alloc] initWithBitmapDataPlanes:NULL
                                                                  pixelsWide:side
                                                                  pixelsHigh:side
                                                               bitsPerSample:8
                                                             samplesPerPixel:4
                                                                    hasAlpha:YES
                                                                    isPlanar:NO
                                                              colorSpaceName:NSDeviceRGBColorSpace
                                                                 bytesPerRow:side * 4
                                                                bitsPerPixel:32];
  for (NSInteger y = 0; y < side; y++) {
    for (NSInteger x = 0; x < side; x++) {
      memcpy([rep bitmapData] + y * [rep bytesPerRow] + x * 4,
             [source bitmapData] + (y * factor + factor / 2) * [source bytesPerRow] +
                 (x * factor + factor / 2) * 4,
             4);
    }
  }
  return rep;
}

#pragma mark - Canvas

static const int32_t kAnyScale = VXRepresentationAllowLarger | VXRepresentationAllowSmaller |
                                 VXRepresentationStandardResolution |
                                 VXRepresentationDoubleResolution;
static const int32_t kSides[] = {16, 24, 36, 48, 60, 72, 96};

// Draws the samples; owns the images it shows.
@interface ImageLoadingPageCanvas : NSView {
  NSImage *_icon;
  NSBitmapImageRep *_source;
  NSBitmapImageRep *_lanczos;
  NSBitmapImageRep *_nearest;
}
@end

@implementation ImageLoadingPageCanvas

- (instancetype)initWithFrame:(NSRect)frame {
  self = [super initWithFrame:frame];
  if (self == nil) {
    return nil;
  }
  _icon = NewIconFromDirectory();
  _source = NewZonePlate(180);
  _lanczos = [[_source imageRepWithSize:NSMakeSize(60, 60)] retain];
  _nearest = NewNearestDownscale(_source, 3);
  [self addLabels];
  return self;
}

- (void)dealloc {
  [_nearest release];
  [_lanczos release];
  [_source release];
  [_icon release];
  [super dealloc];
}

- (double)top {
  return NSHeight([self bounds]);
}

- (void)addLabels {
  double top = [self top];
  NSMutableArray *pixels = [NSMutableArray array];
  for (NSImageRep *rep in [_icon representations]) {
    [pixels addObject:[NSString stringWithFormat:@"%ld px (%g pt)", (long)[rep pixelsWide],
                                                 [rep size].width]];
  }
  NSString *loaded = _icon == nil
                         ? @"The directory did not load"
                         : [NSString stringWithFormat:@"icon.png, icon@2x.png, icon@3x.png -> one "
                                                      @"image: %@",
                                                      [pixels componentsJoinedByString:@", "]];
  [self addSubview:GalleryLabel(loaded, NSMakeRect(20, top - 28, 680, 18))];
  [self addSubview:GalleryLabel(@"24 pt at 1x", NSMakeRect(20, top - 106, 110, 18))];
  [self addSubview:GalleryLabel(@"24 pt at 2x (shown 48 pt)", NSMakeRect(110, top - 106, 200, 18))];
  [self addSubview:GalleryLabel(@"24 pt at 3x (shown 72 pt)", NSMakeRect(300, top - 106, 200, 18))];

  [self addSubview:GalleryLabel(@"Chosen for a side (larger, else smaller; any scale):",
                                NSMakeRect(20, top - 136, 500, 18))];
  NSInteger column = 0;
  for (int32_t side : kSides) {
    NSImageRep *rep = [_icon bestRepresentationForSideSize:side selector:kAnyScale];
    NSString *text = [NSString
        stringWithFormat:@"%d -> %@", side,
                         rep ? [NSString stringWithFormat:@"%ld px", (long)[rep pixelsWide]]
                             : @"none"];
    [self addSubview:GalleryLabel(text, NSMakeRect(20 + column * 95, top - 196, 92, 18))];
    column++;
  }
  NSImageRep *tripleOnly = [_icon
      bestRepresentationForSideSize:40
                           selector:VXRepresentationAllowLarger | VXRepresentationTripleResolution];
  NSImageRep *doubleOnly = [_icon
      bestRepresentationForSideSize:60
                           selector:VXRepresentationAllowLarger | VXRepresentationDoubleResolution];
  [self addSubview:GalleryLabel([NSString stringWithFormat:@"40, 3x only -> %ld px;   60, 2x only, "
                                                           @"larger -> %@",
                                                           (long)[tripleOnly pixelsWide],
                                                           doubleOnly ? @"found" : @"none"],
                                NSMakeRect(20, top - 216, 500, 18))];

  [self addSubview:GalleryLabel(@"Source 180 px", NSMakeRect(20, top - 436, 180, 18))];
  [self addSubview:GalleryLabel(@"Lanczos 60 px", NSMakeRect(210, top - 316, 90, 18))];
  [self addSubview:GalleryLabel(@"Lanczos, 3x enlarged", NSMakeRect(300, top - 436, 180, 18))];
  [self addSubview:GalleryLabel(@"Every 3rd pixel, 3x enlarged",
                                NSMakeRect(500, top - 436, 200, 18))];
}

- (void)drawRep:(NSImageRep *)rep inRect:(NSRect)rect {
  if (rep == nil) {
    return;
  }
  [rep drawInRect:rect
            fromRect:NSZeroRect
           operation:NSCompositeSourceOver
            fraction:1
      respectFlipped:YES
               hints:nil];
}

- (void)drawRect:(NSRect)dirtyRect {
  [[NSColor colorWithCalibratedWhite:0.96 alpha:1] set];
  NSRectFill(dirtyRect);
  double top = [self top];
  [[NSGraphicsContext currentContext] setImageInterpolation:NSImageInterpolationNone];

  // The icon at 24 points for 1x, 2x and 3x screens: the representation
  // for a side of 24 × scale pixels, enlarged so the pixels show.
  for (int scale = 1; scale <= 3; scale++) {
    NSImageRep *rep = [_icon bestRepresentationForSideSize:24 * scale selector:kAnyScale];
    double x = scale == 1 ? 40 : (scale == 2 ? 130 : 320);
    [self drawRep:rep inRect:NSMakeRect(x, top - 86, 24 * scale, 24 * scale)];
  }

  NSInteger column = 0;
  for (int32_t side : kSides) {
    NSImageRep *rep = [_icon bestRepresentationForSideSize:side selector:kAnyScale];
    [self drawRep:rep inRect:NSMakeRect(40 + column * 95, top - 174, 32, 32)];
    column++;
  }

  [self drawRep:_source inRect:NSMakeRect(20, top - 416, 180, 180)];
  [self drawRep:_lanczos inRect:NSMakeRect(215, top - 296, 60, 60)];
  [self drawRep:_lanczos inRect:NSMakeRect(300, top - 416, 180, 180)];
  [self drawRep:_nearest inRect:NSMakeRect(500, top - 416, 180, 180)];
}

@end

#pragma mark - Page

@implementation ImageLoadingPage

- (NSString *)identifier {
  return @"image-loading";
}

- (NSString *)title {
  return @"Multi-resolution images";
}

- (NSString *)caption {
  return @"A directory of @1x, @2x and @3x files loaded as one image and drawn for 1x, 2x and "
         @"3x screens, the representation chosen for several side lengths, and a Lanczos-3 "
         @"downscale beside its source and beside plain decimation.";
}

- (NSView *)makeViewWithFrame:(NSRect)frame {
  return [[[ImageLoadingPageCanvas alloc] initWithFrame:frame] autorelease];
}

@end
