#import <Talvo/VXGradientCellDrawer.h>

#import <CoreGraphics/CoreGraphics.h>
#import <Talvo/NSGradient+GradientCell.h>
#import <Talvo/NSImage+FitSize.h>
#import <Talvo/VXOffscreenDrawing.h>

#include <cmath>

#include "core/controls/ControlGeometry.hpp"
#import "support/TalvoLook.h"
#import "support/TalvoMRC.h"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

namespace tc = talvo::controls;

static NSRect ToNSRect(tc::Rect r) { return NSMakeRect(r.x, r.y, r.width, r.height); }

static BOOL FiniteRect(NSRect r) {
  return std::isfinite(r.origin.x) && std::isfinite(r.origin.y) && std::isfinite(r.size.width) &&
         std::isfinite(r.size.height);
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

  NSRect proposed = NSMakeRect(0, 0, fw, fh);
  CGImageRef raster = [image CGImageForProposedRect:&proposed context:graphics hints:nil];
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

  CGContextSaveGState(context);
  CGContextConcatCTM(context, CGAffineTransformMake(1, 0, 0, -1, 0, frame.size.height));

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

  CGContextClipToMask(context, outerRect, mask);
  CGImageRelease(mask);

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
