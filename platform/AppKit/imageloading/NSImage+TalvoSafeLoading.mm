/*
 * -[NSImage initWithContentsOfURL:] without GNUstep's failure modes. Its
 * readers raise on empty and truncated files (the receiver, already
 * initialised, and the half-built representation leak), hand truncated
 * JPEGs to ImageMagick (which leaks as well), allocate whatever a header
 * declares, and a failed load can answer an image with no representation.
 * Before GNUstep reads a file URL, files of the formats Image I/O knows
 * are refused when their header does not read, when they declare more
 * than 2^28 pixels, or when they are cut short (ImageHeader.hpp,
 * LooksComplete); empty files and directories are refused outright. A
 * raise that still happens gives nil, and an image without
 * representations is nil, as on macOS. Other schemes and other formats go
 * to GNUstep unchanged. A truncated JPEG, which macOS shows in part, is
 * refused here.
 */
#import <AppKit/AppKit.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/ImageIO/engine/ImageHeader.hpp"
#import "platform/objc/TVRuntime.h"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

namespace io = talvo::imageio;

namespace {

typedef id (*TVInitWithURLIMP)(id, SEL, NSURL *);
TVInitWithURLIMP gOriginalInitWithContentsOfURL = NULL;

constexpr uint64_t kMaxPixels = uint64_t(1) << 28;

// Whether GNUstep's readers may be given the file at `path`.
bool IsSafeToRead(NSString *path) {
  // Non-blocking: opening a FIFO named like an image would wait for a writer.
  int fd = open([path fileSystemRepresentation], O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (fd < 0) return false;
  bool safe = false;
  struct stat info;
  if (fstat(fd, &info) == 0 && S_ISREG(info.st_mode) && info.st_size > 0) {
    io::FileSource file(fd, size_t(info.st_size));
    uint8_t head[12] = {0};
    size_t n = info.st_size < 12 ? size_t(info.st_size) : 12;
    io::Format format = file.read(0, n, head) ? io::SniffFormat(head, n) : io::Format::Unknown;
    if (format == io::Format::Unknown) {
      safe = true;  // GNUstep may know formats Image I/O does not
    } else {
      io::HeaderInfo header;
      safe = io::ReadHeader(file, &header, false) &&
             uint64_t(header.width) * header.height <= kMaxPixels &&
             io::LooksComplete(file, header);
    }
  }
  close(fd);
  return safe;
}

id TVInitWithContentsOfURL(NSImage *image, SEL selector, NSURL *url) {
  if ([url isKindOfClass:[NSURL class]] && [url isFileURL] && !IsSafeToRead([url path])) {
    [image release];
    return nil;
  }
  id loaded = nil;
  @try {
    loaded = gOriginalInitWithContentsOfURL(image, selector, url);
  } @catch (NSException *exception) {
    // GNUstep initialises the receiver before its readers raise and does
    // not release it.
    [image release];
    return nil;
  }
  if (loaded != nil && [[loaded representations] count] == 0) {
    [loaded release];
    return nil;
  }
  return loaded;
}

}  // namespace

@interface _TVSafeImageLoading : NSObject
@end

@implementation _TVSafeImageLoading

+ (void)load {
  // By name: messaging the class here would run its +initialize before
  // any autorelease pool exists.
  gOriginalInitWithContentsOfURL = (TVInitWithURLIMP)TVReplaceInstanceMethod(
      objc_getClass("NSImage"), @selector(initWithContentsOfURL:), (IMP)TVInitWithContentsOfURL);
}

@end
