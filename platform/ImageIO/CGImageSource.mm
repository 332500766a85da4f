// Image sources: a file's or a buffer's bytes, the header read once, and
// decoding on request through the engine.
#import <Foundation/Foundation.h>
#include <ImageIO/ImageIO.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/ImageIO/engine/ImageDecoder.hpp"
#include "platform/ImageIO/engine/ImageHeader.hpp"
#import "platform/ImageIO/TVPropertyDictionary.h"
#import "platform/objc/TVRuntime.h"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

namespace io = talvo::imageio;

const CFStringRef kCGImagePropertyPixelWidth = (CFStringRef) @"PixelWidth";
const CFStringRef kCGImagePropertyPixelHeight = (CFStringRef) @"PixelHeight";
const CFStringRef kCGImagePropertyOrientation = (CFStringRef) @"Orientation";
const CFStringRef kCGImagePropertyDPIWidth = (CFStringRef) @"DPIWidth";
const CFStringRef kCGImagePropertyDPIHeight = (CFStringRef) @"DPIHeight";
const CFStringRef kCGImagePropertyHasAlpha = (CFStringRef) @"HasAlpha";

@interface _TVImageSource : NSObject {
  NSString *_path;          // nil for a source over data
  NSData *_bytes;           // the whole file; nil until pixels or a count are wanted
  BOOL _partial;            // the header was read from the file, not _bytes
  io::HeaderInfo *_header;  // NULL when the header is unreadable
}
- (instancetype)initWithBytes:(NSData *)bytes;
// The header is read from the open file `fd`, which stays the caller's,
// up to where the file ends (its size is not asked).
- (instancetype)initWithPath:(NSString *)path file:(int)fd;
- (const io::HeaderInfo *)header;
// The header with the image count of the whole file: GIF frames and TIFF
// directories further on than the first block are counted.
- (const io::HeaderInfo *)countedHeader;
- (NSData *)allBytes;
@end

@implementation _TVImageSource

#pragma mark - Lifecycle

- (instancetype)initWithBytes:(NSData *)bytes {
  if ((self = [super init]) == nil) return nil;
  _bytes = [bytes retain];
  io::HeaderInfo header;
  if (io::ReadHeader(static_cast<const uint8_t *>([_bytes bytes]), [_bytes length], &header)) {
    _header = new io::HeaderInfo(header);
  }
  return self;
}

- (instancetype)initWithPath:(NSString *)path file:(int)fd {
  if ((self = [super init]) == nil) return nil;
  _path = [path copy];
  _partial = YES;
  // Counting GIF frames or TIFF directories can mean reading the whole
  // file: that waits until the count is asked for.
  io::FileSource file(fd, io::FileSource::kUnknownSize);
  io::HeaderInfo header;
  if (io::ReadHeader(file, &header, false)) _header = new io::HeaderInfo(header);
  return self;
}

- (void)dealloc {
  delete _header;
  _header = NULL;
  [_bytes release];
  [_path release];
  [super dealloc];
}

#pragma mark - Public

- (const io::HeaderInfo *)header {
  return _header;
}

- (const io::HeaderInfo *)countedHeader {
  if (_header == NULL || !_partial ||
      (_header->format != io::Format::GIF && _header->format != io::Format::TIFF)) {
    return _header;
  }
  if ([self allBytes] != nil) {
    io::HeaderInfo header;
    if (io::ReadHeader(static_cast<const uint8_t *>([_bytes bytes]), [_bytes length], &header)) {
      *_header = header;
    }
  }
  _partial = NO;
  return _header;
}

- (NSData *)allBytes {
  if (_bytes == nil && _path != nil) _bytes = [[NSData alloc] initWithContentsOfFile:_path];
  return _bytes;
}

@end

#pragma mark - Private

// The GCC runtime looks a class up by name on every `[X class]`: the ones
// asked on each call are looked up once.
static Class SourceClass(void) {
  static Class cls = Nil;
  if (cls == Nil) cls = [_TVImageSource class];
  return cls;
}

static Class URLClass(void) {
  static Class cls = Nil;
  if (cls == Nil) cls = [NSURL class];
  return cls;
}

static _TVImageSource *Source(CGImageSourceRef ref) {
  id object = (id)ref;
  return [object isKindOfClass:SourceClass()] ? (_TVImageSource *)object : nil;
}

#pragma mark - Functions

CGImageSourceRef CGImageSourceCreateWithURL(CFURLRef url, CFDictionaryRef options) {
  NSURL *u = (NSURL *)url;
  if (![u isKindOfClass:URLClass()] || ![u isFileURL]) return NULL;
  NSString *path = [u path];
  if ([path length] == 0) return NULL;
  // Non-blocking, so that a FIFO named like an image cannot hang the
  // caller. The header is read before any fstat, with reads stopping where
  // the file ends: only a file that is not an image is asked whether it is
  // a regular file at all (a source over a non-image file has no images; a
  // directory or a device has no source).
  int fd = open([path fileSystemRepresentation], O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (fd < 0) return NULL;
  _TVImageSource *source = [[SourceClass() alloc] initWithPath:path file:fd];
  struct stat info;
  if ([source header] == NULL && (fstat(fd, &info) != 0 || !S_ISREG(info.st_mode))) {
    [source release];
    source = nil;
  }
  close(fd);
  return (CGImageSourceRef)source;
}

CGImageSourceRef CGImageSourceCreateWithData(CFDataRef data, CFDictionaryRef options) {
  NSData *d = (NSData *)data;
  if (![d isKindOfClass:[NSData class]] || [d length] == 0) return NULL;
  // An immutable copy: a mutable buffer could change under the source.
  NSData *bytes = [d copy];
  _TVImageSource *source = [[_TVImageSource alloc] initWithBytes:bytes];
  [bytes release];
  return (CGImageSourceRef)source;
}

CFStringRef CGImageSourceGetType(CGImageSourceRef ref) {
  const io::HeaderInfo *header = [Source(ref) header];
  if (header == NULL) return NULL;
  switch (header->format) {
    case io::Format::PNG:
      return (CFStringRef) @"public.png";
    case io::Format::JPEG:
      return (CFStringRef) @"public.jpeg";
    case io::Format::GIF:
      return (CFStringRef) @"com.compuserve.gif";
    case io::Format::BMP:
      return (CFStringRef) @"com.microsoft.bmp";
    case io::Format::TIFF:
      return (CFStringRef) @"public.tiff";
    case io::Format::WebP:
      return (CFStringRef) @"org.webmproject.webp";
    case io::Format::Unknown:
      break;
  }
  return NULL;
}

size_t CGImageSourceGetCount(CGImageSourceRef ref) {
  const io::HeaderInfo *header = [Source(ref) countedHeader];
  return header != NULL ? header->imageCount : 0;
}

CFDictionaryRef CGImageSourceCopyPropertiesAtIndex(CGImageSourceRef ref, size_t index,
                                                   CFDictionaryRef options) {
  _TVImageSource *source = Source(ref);
  const io::HeaderInfo *header = index == 0 ? [source header] : [source countedHeader];
  if (header == NULL || index >= header->imageCount) return NULL;
  // Built in one go from the values: callers such as a size probe ask
  // for this once per file.
  Class number = TVCachedClass(NSNumber);
  id values[6];
  id keys[6];
  NSUInteger count = 0;
  auto add = [&](CFStringRef key, id value) {
    keys[count] = (id)key;
    values[count++] = value;
  };
  add(kCGImagePropertyPixelWidth, [number numberWithUnsignedInt:header->width]);
  add(kCGImagePropertyPixelHeight, [number numberWithUnsignedInt:header->height]);
  add(kCGImagePropertyHasAlpha, [number numberWithBool:header->hasAlpha]);
  if (header->orientation != 0) {
    add(kCGImagePropertyOrientation, [number numberWithInt:header->orientation]);
  }
  if (header->dpiWidth > 0 && header->dpiHeight > 0) {
    add(kCGImagePropertyDPIWidth, [number numberWithDouble:header->dpiWidth]);
    add(kCGImagePropertyDPIHeight, [number numberWithDouble:header->dpiHeight]);
  }
  return (CFDictionaryRef)[TVCachedClass(_TVPropertyDictionary) newWithObjects:values
                                                                       forKeys:keys
                                                                         count:count];
}

CGImageRef CGImageSourceCreateImageAtIndex(CGImageSourceRef ref, size_t index,
                                           CFDictionaryRef options) {
  _TVImageSource *source = Source(ref);
  const io::HeaderInfo *header = [source countedHeader];
  if (header == NULL || index >= header->imageCount) return NULL;
  NSData *bytes = [source allBytes];
  if (bytes == nil) return NULL;
  io::DecodedImage decoded;
  if (!io::DecodeImage(static_cast<const uint8_t *>([bytes bytes]), [bytes length], index,
                       &decoded)) {
    return NULL;
  }
  // CGImageCreate copies the provider's bytes: the buffer can stay ours.
  CGDataProviderRef provider =
      CGDataProviderCreateWithData(NULL, decoded.rgba.data(), decoded.rgba.size(), NULL);
  if (provider == NULL) return NULL;
  CGColorSpaceRef rgb = CGColorSpaceCreateDeviceRGB();
  CGBitmapInfo info = decoded.hasAlpha ? kCGImageAlphaPremultipliedLast : kCGImageAlphaNoneSkipLast;
  CGImageRef image = CGImageCreate(decoded.width, decoded.height, 8, 32, size_t(decoded.width) * 4,
                                   rgb, info, provider, NULL, true, kCGRenderingIntentDefault);
  CGColorSpaceRelease(rgb);
  CGDataProviderRelease(provider);
  return image;
}
