#import <Talvo/VXGradientCellDrawer.h>

#import <CoreGraphics/CoreGraphics.h>
#import <Talvo/NSGradient+GradientCell.h>
#import <Talvo/NSImage+FitSize.h>
#import <Talvo/VXOffscreenDrawing.h>

#import "controls/VXGradientCellDrawer+Private.h"

#include <cmath>

#include "core/controls/ControlGeometry.hpp"
#import "support/TalvoLook.h"
#import "support/TalvoMRC.h"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

namespace tc = talvo::controls;

static NSRect ToNSRect(tc::Rect r) { return NSMakeRect(r.x, r.y, r.width, r.height); }

static CGRect ToCGRect(NSRect r) {
  return CGRectMake(r.origin.x, r.origin.y, r.size.width, r.size.height);
}

static BOOL FiniteRect(NSRect r) {
  return std::isfinite(r.origin.x) && std::isfinite(r.origin.y) && std::isfinite(r.size.width) &&
         std::isfinite(r.size.height);
}

static BOOL paintsOffscreen = YES;

// What one draw paints: the icon's raster and mask and where they go.
struct Icon {
  CGImageRef raster;
  CGImageRef mask;
  NSRect imageRect;
  NSRect outerRect;
  CGRect inner;  // the icon in the offscreen bitmaps
  CGRect whole;  // the offscreen bitmaps' extent
  CGFloat frameHeight;
  double margin;
};

// The icon's pixels at `fw` x `fh` points. An image whose one bitmap is
// exactly that size is its own raster; drawing it (what
// CGImageForProposedRect does) would go through GNUstep's image cache on the
// X server and read it back. The caches GNUstep adds to an image it has
// drawn do not count as other pictures of it.
static CGImageRef RasterOf(NSImage *image, CGFloat fw, CGFloat fh, NSGraphicsContext *graphics) {
  NSBitmapImageRep *bitmap = nil;
  NSUInteger others = 0;
  for (NSImageRep *rep in [image representations]) {
    if ([rep isKindOfClass:[NSCachedImageRep class]]) continue;
    if ([rep isKindOfClass:[NSBitmapImageRep class]] && bitmap == nil) {
      bitmap = (NSBitmapImageRep *)rep;
    } else {
      ++others;
    }
  }
  if (bitmap != nil && others == 0 && [bitmap pixelsWide] == (NSInteger)fw &&
      [bitmap pixelsHigh] == (NSInteger)fh && NSEqualSizes([image size], NSMakeSize(fw, fh)) &&
      NSEqualSizes([bitmap size], NSMakeSize(fw, fh)) && ![image isFlipped]) {
    CGImageRef own = [bitmap CGImage];
    if (own != NULL) return own;
  }
  NSRect proposed = NSMakeRect(0, 0, fw, fh);
  return [image CGImageForProposedRect:&proposed context:graphics hints:nil];
}

@implementation VXGradientCellDrawer

#pragma mark - Lifecycle

- (instancetype)init {
  self = [super init];
  if (self != nil) {
    BOOL newer = TalvoUsesNewerLook();
    _gradient = [[NSGradient grayGradient] retain];
    _lightShadowOpacity = newer ? 0.0 : 0.35;
    _innerShadowRadius = newer ? 1.0 : 2.0;
    _innerShadowOpacity = newer ? 1.0 : 0.85;
  }
  return self;
}

- (void)dealloc {
  TalvoDestroy(_onGradient);
  TalvoDestroy(_gradient);
  [super dealloc];
}

#pragma mark - Public

@synthesize enabledDrawing = _enabledDrawing;
@synthesize highlightedDrawing = _highlightedDrawing;
@synthesize mainWindowDrawing = _mainWindowDrawing;
@synthesize mouseOverDrawing = _mouseOverDrawing;
@synthesize drawingState = _drawingState;
@synthesize lightShadowOpacity = _lightShadowOpacity;
@synthesize innerShadowRadius = _innerShadowRadius;
@synthesize innerShadowOpacity = _innerShadowOpacity;

- (NSGradient *)gradient {
  return _gradient;
}

- (void)setGradient:(NSGradient *)gradient {
  if (gradient == _gradient) return;
  NSGradient *old = _gradient;
  _gradient = [gradient retain];
  [old release];
}

- (NSGradient *)onGradient {
  return _onGradient;
}

- (void)setOnGradient:(NSGradient *)onGradient {
  if (onGradient == _onGradient) return;
  NSGradient *old = _onGradient;
  _onGradient = [onGradient retain];
  [old release];
}

- (void)drawImage:(NSImage *)image inFrame:(NSRect)frame {
  if (![image isKindOfClass:[NSImage class]] || !FiniteRect(frame)) return;
  NSGraphicsContext *graphics = [NSGraphicsContext currentContext];
  CGContextRef context = (CGContextRef)[graphics graphicsPort];
  if (context == NULL) return;
  @try {
    [self _drawImage:image inFrame:frame graphics:graphics context:context];
  } @catch (NSException *exception) {
    // A platform call that raises leaves the icon undrawn, never the caller.
  }
}

#pragma mark - Private

- (void)_drawImage:(NSImage *)image
           inFrame:(NSRect)frame
          graphics:(NSGraphicsContext *)graphics
           context:(CGContextRef)context {
  NSSize fitted = [image scaledSizeThatFitInSize:frame.size];
  tc::Rect iconRect =
      tc::CenteredIconRect({frame.origin.x, frame.origin.y, frame.size.width, frame.size.height},
                           {fitted.width, fitted.height});
  if (!(iconRect.width > 0.0 && iconRect.height > 0.0)) return;
  double margin = std::isfinite(_innerShadowRadius) ? _innerShadowRadius : 0.0;
  // A negative radius has no shadow and no margin; the bitmaps stay the icon's size.
  double r = margin > 0.0 ? margin : 0.0;
  NSRect imageRect = ToNSRect(iconRect);
  NSRect outerRect = NSInsetRect(imageRect, -r, -r);
  CGFloat fw = imageRect.size.width;
  CGFloat fh = imageRect.size.height;

  CGImageRef raster = RasterOf(image, fw, fh, graphics);
  if (raster == NULL) return;

  // The mask: the icon dark on white, with a white margin.
  CGRect inner = CGRectMake(r, r, fw, fh);
  CGRect whole = CGRectMake(0, 0, outerRect.size.width, outerRect.size.height);
  CGImageRef source = CGCreateImageWithDrawingBlock(
      ^(CGContextRef c) {
        CGContextSetRGBFillColor(c, 1, 1, 1, 1);
        CGContextFillRect(c, whole);
        CGContextDrawImage(c, inner, raster);
      },
      outerRect);
  if (source == NULL) return;
  CGImageRef mask =
      CGImageMaskCreate(CGImageGetWidth(source), CGImageGetHeight(source),
                        CGImageGetBitsPerComponent(source), CGImageGetBitsPerPixel(source),
                        CGImageGetBytesPerRow(source), CGImageGetDataProvider(source), NULL, false);
  CGImageRelease(source);
  if (mask == NULL) return;

  Icon icon = {raster, mask, imageRect, outerRect, inner, whole, frame.size.height, margin};
  @try {
    if (![self _paintOffscreen:icon graphics:graphics context:context]) {
      [self _paint:icon context:context];
    }
  } @finally {
    CGImageRelease(mask);
  }
}

// A window's surface lives on the X server, where each group, mask and
// image of the layers below costs a round trip: the icon is painted in
// memory, in the window's device pixels, and laid onto it with one image.
// Only for an upright transform (no rotation), whose device pixels an
// offscreen bitmap can share. Its operations all composite over, so laying
// them in together is laying them in one by one.
- (BOOL)_paintOffscreen:(const Icon &)icon
               graphics:(NSGraphicsContext *)graphics
                context:(CGContextRef)context {
  if (!paintsOffscreen) return NO;
  CGAffineTransform ctm = CGContextGetCTM(context);
  if (ctm.b != 0.0 || ctm.c != 0.0 || !(ctm.a != 0.0) || !(ctm.d != 0.0)) return NO;
  CGAffineTransform flip = CGAffineTransformMake(1, 0, 0, -1, 0, icon.frameHeight);
  // The outer rect holds every operation but the light edge, one pixel
  // below the image; two more for antialiasing.
  CGRect device =
      CGRectApplyAffineTransform(ToCGRect(icon.outerRect), CGAffineTransformConcat(flip, ctm));
  device = CGRectIntegral(CGRectInset(device, -3, -3));
  if (!FiniteRect(
          NSMakeRect(device.origin.x, device.origin.y, device.size.width, device.size.height)) ||
      device.size.width > 4096 || device.size.height > 4096 || device.size.width < 1 ||
      device.size.height < 1) {
    return NO;
  }
  size_t width = (size_t)device.size.width, height = (size_t)device.size.height;
  CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
  // cairo's own pixel layout: nothing to convert on either side.
  CGContextRef bitmap =
      CGBitmapContextCreate(NULL, width, height, 8, 4 * width, space,
                            kCGImageAlphaPremultipliedFirst | kCGBitmapByteOrder32Little);
  CGColorSpaceRelease(space);
  if (bitmap == NULL) return NO;
  CGImageRef painted = NULL;
  [NSGraphicsContext saveGraphicsState];
  @try {
    NSGraphicsContext *offscreen =
        [NSGraphicsContext graphicsContextWithGraphicsPort:bitmap flipped:[graphics isFlipped]];
    if (offscreen != nil) {
      [NSGraphicsContext setCurrentContext:offscreen];
      // User space as in the window, shifted to the bitmap's corner.
      CGContextTranslateCTM(bitmap, -device.origin.x, -device.origin.y);
      CGContextConcatCTM(bitmap, ctm);
      [self _paint:icon context:bitmap];
      painted = CGBitmapContextCreateImage(bitmap);
    }
  } @finally {
    [NSGraphicsContext restoreGraphicsState];
    CGContextRelease(bitmap);
  }
  if (painted == NULL) return NO;
  CGContextSaveGState(context);
  CGContextConcatCTM(context, CGAffineTransformInvert(ctm));
  CGContextDrawImage(context, device, painted);
  CGContextRestoreGState(context);
  CGImageRelease(painted);
  return YES;
}

// Steps from the flip on, in `context`, its state saved and restored.
- (void)_paint:(const Icon &)icon context:(CGContextRef)context {
  CGImageRef raster = icon.raster;
  CGRect inner = icon.inner;
  CGRect whole = icon.whole;
  NSRect imageRect = icon.imageRect;
  NSRect outerRect = icon.outerRect;
  double margin = icon.margin;

  CGContextSaveGState(context);
  CGContextConcatCTM(context, CGAffineTransformMake(1, 0, 0, -1, 0, icon.frameHeight));

  if (_mainWindowDrawing) {
    CGContextSetAlpha(context, _enabledDrawing ? 1.0 : 0.3);
    if (_lightShadowOpacity > 0.0) {
      CGColorRef light = CGColorCreateGenericGray(1.0, _lightShadowOpacity);
      CGContextSetShadowWithColor(context, CGSizeMake(0, -1), 0, light);
      CGColorRelease(light);
      CGContextDrawImage(context, imageRect, raster);
    }
  } else {
    CGContextSetAlpha(context, 0.3);
  }

  CGContextClipToMask(context, outerRect, icon.mask);

  if (_drawingState == 1 && _onGradient != nil) {
    [_onGradient drawInRect:imageRect angle:90.0];
  } else {
    [_gradient drawInRect:imageRect angle:-90.0];
  }

  if (_enabledDrawing) {
    if (_mouseOverDrawing) {
      [[NSColor colorWithCalibratedWhite:0.0 alpha:0.3] setFill];
      NSRectFillUsingOperation(imageRect, NSCompositeSourceOver);
    }
    if (_highlightedDrawing) {
      [[NSColor colorWithCalibratedWhite:0.0 alpha:0.5] setFill];
      NSRectFillUsingOperation(imageRect, NSCompositeSourceOver);
    }
  }

  if (margin > 0.0) {
    // White everywhere but the icon's shape: its shadow falls inside the icon.
    CGImageRef surround = CGCreateImageWithDrawingBlock(
        ^(CGContextRef c) {
          CGContextSetBlendMode(c, kCGBlendModeXOR);
          CGContextDrawImage(c, inner, raster);
          CGContextSetRGBFillColor(c, 1, 1, 1, 1);
          CGContextFillRect(c, whole);
        },
        outerRect);
    if (surround != NULL) {
      CGColorRef dark = CGColorCreateGenericGray(0.0, _innerShadowOpacity);
      CGContextSetShadowWithColor(context, CGSizeMake(0, 0), margin, dark);
      CGColorRelease(dark);
      CGContextDrawImage(context, outerRect, surround);
      CGImageRelease(surround);
    }
  }

  CGContextRestoreGState(context);
}

@end

@implementation VXGradientCellDrawer (Private)

+ (void)_setPaintsOffscreenForTesting:(BOOL)offscreen {
  paintsOffscreen = offscreen;
}

@end
