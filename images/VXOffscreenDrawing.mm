#import <Talvo/VXOffscreenDrawing.h>

#include "core/images/ImageGeometry.hpp"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

#pragma mark - Private

// The one place the main screen's scale is read; without a screen, 1.
static CGFloat TVMainScreenBackingScale(void) {
  CGFloat scale = 0;
  @try {
    scale = [[NSScreen mainScreen] backingScaleFactor];
  } @catch (NSException *exception) {
    scale = 0;
  }
  return scale > 0 ? scale : 1.0;
}

#pragma mark - Public

CGImageRef CGCreateImageWithDrawingBlock(void (^drawingBlock)(CGContextRef context), CGRect rect) {
  if (drawingBlock == nil) {
    return NULL;
  }
  NSGraphicsContext *previous = [[NSGraphicsContext currentContext] retain];
  CGFloat scale = TVMainScreenBackingScale();
  size_t width = size_t(talvo::images::PixelExtent(rect.size.width, scale));
  size_t height = size_t(talvo::images::PixelExtent(rect.size.height, scale));
  CGContextRef context = NULL;
  if (width > 0 && height > 0) {
    CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
    context = CGBitmapContextCreate(NULL, width, height, 8, 4 * width, space,
                                    kCGImageAlphaPremultipliedLast);
    CGColorSpaceRelease(space);
  }
  CGImageRef image = NULL;
  if (context != NULL) {
    @try {
      NSGraphicsContext *wrapper = [NSGraphicsContext graphicsContextWithGraphicsPort:context
                                                                              flipped:YES];
      [NSGraphicsContext setCurrentContext:wrapper];
      // After wrapping, so that AppKit drawing in the block is scaled too.
      CGContextScaleCTM(context, scale, scale);
      drawingBlock(context);
      image = CGBitmapContextCreateImage(context);
    } @catch (NSException *exception) {
      CGImageRelease(image);
      image = NULL;
    }
    CGContextRelease(context);
  }
  [NSGraphicsContext setCurrentContext:previous];
  [previous release];
  return image;
}
