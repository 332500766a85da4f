#import <Talvo/NSImage+URLDefinition.h>

#include <ImageIO/ImageIO.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cmath>

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

namespace {

// "@(\d)x$", case-insensitive; compiled once.
NSRegularExpression *ScaleSuffixPattern() {
  static NSRegularExpression *pattern = nil;
  if (pattern == nil) {
    pattern = [[NSRegularExpression alloc] initWithPattern:@"@(\\d)x$"
                                                   options:NSRegularExpressionCaseInsensitive
                                                     error:NULL];
  }
  return pattern;
}

// The scale a base name's suffix states, or 0 for none.
double ScaleOfBaseName(NSString *base) {
  NSRegularExpression *pattern = ScaleSuffixPattern();
  if (pattern == nil || [base length] == 0) return 0;
  NSTextCheckingResult *match = [pattern firstMatchInString:base
                                                    options:0
                                                      range:NSMakeRange(0, [base length])];
  if (match == nil || [match numberOfRanges] < 2) return 0;
  return [[base substringWithRange:[match rangeAtIndex:1]] doubleValue];
}

// GNUstep's loaders raise on empty files and read directories as errors:
// only a non-empty regular file that can be opened is handed to them.
bool IsLoadableFile(NSString *path) {
  struct stat info;
  const char *name = [path fileSystemRepresentation];
  return name != NULL && stat(name, &info) == 0 && S_ISREG(info.st_mode) && info.st_size > 0 &&
         access(name, R_OK) == 0;
}

// Decoding allocates what the header declares: a few hundred bytes can ask
// for gigabytes. Files of a known format declaring more pixels than this
// are not handed to the platform's decoders.
constexpr double kMaxPixels = double(1u << 28);

bool DeclaresTooManyPixels(NSURL *url) {
  CGImageSourceRef source = CGImageSourceCreateWithURL((CFURLRef)url, NULL);
  if (source == NULL) return false;
  bool tooMany = false;
  CFDictionaryRef properties = CGImageSourceCopyPropertiesAtIndex(source, 0, NULL);
  if (properties != NULL) {
    NSDictionary *values = (NSDictionary *)properties;
    double width = [[values objectForKey:(NSString *)kCGImagePropertyPixelWidth] doubleValue];
    double height = [[values objectForKey:(NSString *)kCGImagePropertyPixelHeight] doubleValue];
    tooMany = width * height > kMaxPixels;
    CFRelease(properties);
  }
  CFRelease(source);
  return tooMany;
}

}  // namespace

@implementation NSImage (urlDefinition)

- (instancetype)initWithDefinitionContentsOfURL:(NSURL *)url {
  if (![url isKindOfClass:[NSURL class]] || ![url isFileURL] || !IsLoadableFile([url path]) ||
      DeclaresTooManyPixels(url)) {
    [self release];
    return nil;
  }
  NSImage *image = nil;
  @try {
    image = [self initWithContentsOfURL:url];
  } @catch (NSException *exception) {
    // GNUstep's -initWithContentsOfURL: initialises the receiver before its
    // decoders raise (a truncated file) and does not release it.
    [self release];
    return nil;
  }
  if (image == nil) return nil;
  // A failed load can leave an image with no representation.
  if ([[image representations] count] == 0) {
    [image release];
    return nil;
  }
  double scale = ScaleOfBaseName([[[url path] lastPathComponent] stringByDeletingPathExtension]);
  // "@0x" would make every size infinite: such a suffix is ignored.
  if (scale > 0 && std::isfinite(scale)) {
    for (NSImageRep *rep in [image representations]) {
      if ([rep isKindOfClass:[NSBitmapImageRep class]]) {
        [rep setSize:NSMakeSize([rep pixelsWide] / scale, [rep pixelsHigh] / scale)];
      }
    }
  }
  return image;
}

@end
