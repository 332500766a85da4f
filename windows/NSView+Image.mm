#import <Talvo/NSView+Image.h>

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

@interface CALayer (TVRenderingOptional)
- (void)renderInContext:(CGContextRef)context;
@end

@implementation NSView (image)

#pragma mark - Public

- (CGImageRef)CGImageWithSubviews {
  NSRect bounds = [self bounds];
  if (!(bounds.size.width >= 1.0) || !(bounds.size.height >= 1.0) ||
      !isfinite(bounds.size.width) || !isfinite(bounds.size.height)) {
    return NULL;
  }
  CALayer *layer = [[self layer] presentationLayer];
  if (layer == nil || ![layer respondsToSelector:@selector(renderInContext:)]) {
    return NULL;
  }
  size_t width = (size_t)bounds.size.width;
  size_t height = (size_t)bounds.size.height;
  CGColorSpaceRef space = CGColorSpaceCreateWithName(kCGColorSpaceGenericRGB);
  CGContextRef context =
      CGBitmapContextCreate(NULL, width, height, 8, width * 4, space, kCGImageAlphaPremultipliedLast);
  CGColorSpaceRelease(space);
  if (context == NULL) {
    return NULL;
  }
  [layer renderInContext:context];
  CGImageRef image = CGBitmapContextCreateImage(context);
  CGContextRelease(context);
  return image;
}

@end
