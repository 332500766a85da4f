#import <Talvo/NSImage+FileSize.h>

#include <ImageIO/ImageIO.h>

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

namespace {

// A number property read as a 32-bit float (0 when missing); the
// dictionary's numbers are toll-free NSNumbers.
float FloatProperty(CFDictionaryRef properties, CFStringRef key) {
  id value = [(NSDictionary *)properties objectForKey:(NSString *)key];
  return [value isKindOfClass:[NSNumber class]] ? [value floatValue] : 0.0f;
}

}  // namespace

@implementation NSImage (fileSize)

+ (NSSize)sizeForFileAtURL:(NSURL *)url {
  if (![url isKindOfClass:[NSURL class]]) return NSZeroSize;
  float width = 0, height = 0;
  @try {
    NSURL *fileURL = [url respondsToSelector:@selector(filePathURL)] ? [url filePathURL] : url;
    CGImageSourceRef source = CGImageSourceCreateWithURL((CFURLRef)fileURL, NULL);
    if (source == NULL) return NSZeroSize;
    CFDictionaryRef properties = CGImageSourceCopyPropertiesAtIndex(source, 0, NULL);
    if (properties != NULL) {
      width = FloatProperty(properties, kCGImagePropertyPixelWidth);
      height = FloatProperty(properties, kCGImagePropertyPixelHeight);
      CFRelease(properties);
    }
    CFRelease(source);
  } @catch (NSException *exception) {
    return NSZeroSize;
  }
  return NSMakeSize(width, height);
}

@end
