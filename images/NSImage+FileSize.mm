#import <Talvo/NSImage+FileSize.h>

#include <ImageIO/ImageIO.h>

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

namespace {

// Looked up once: the GCC runtime finds a class by name on each `[X class]`.
Class URLClass() {
  static Class cls = Nil;
  if (cls == Nil) cls = [NSURL class];
  return cls;
}

// A number property read as a 32-bit float; 0 when it is missing.
float FloatProperty(CFDictionaryRef properties, CFStringRef key) {
  float value = 0;
  CFNumberRef number = (CFNumberRef)CFDictionaryGetValue(properties, key);
  if (number != NULL && CFGetTypeID(number) == CFNumberGetTypeID()) {
    CFNumberGetValue(number, kCFNumberFloatType, &value);
  }
  return value;
}

}  // namespace

@implementation NSImage (fileSize)

+ (NSSize)sizeForFileAtURL:(NSURL *)url {
  if (![url isKindOfClass:URLClass()]) return NSZeroSize;
  float width = 0, height = 0;
  @try {
    // A file URL is its own file path URL here (GNUstep has no file
    // reference URLs); asking would build a copy on every call.
    NSURL *fileURL = [url isFileURL] ? url : [url filePathURL];
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
