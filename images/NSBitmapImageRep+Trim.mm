#import <Talvo/NSBitmapImageRep+Trim.h>

#import <Talvo/VXImageTrimming.h>

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

@implementation NSBitmapImageRep (trim)

- (NSBitmapImageRep *)bitmapImageRepByTrimmingTransparentPixels {
  CGImageRef trimmed = VXCreateImageByTrimmingImage([self CGImage]);
  if (trimmed == NULL) {
    return nil;
  }
  NSBitmapImageRep *rep = [[NSBitmapImageRep alloc] initWithCGImage:trimmed];
  CGImageRelease(trimmed);
  return [rep autorelease];
}

@end
