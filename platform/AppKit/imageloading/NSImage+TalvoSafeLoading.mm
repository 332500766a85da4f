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
 * to GNUstep unchanged. A truncated JPEG is decoded by Image I/O, which
 * gives the rows that arrived (the rest grey, libjpeg's fill), as macOS
 * shows it in part. GIF and TIFF files whose palettes GNUstep's readers
 * mishandle (ImageDecoder.hpp, HasPaletteHazards: a null or overrun colour
 * table, a small-palette TIFF written past its buffer) are decoded by Image
 * I/O instead: one bitmap per TIFF page, a GIF's first frame (GNUstep's own
 * reader would keep the other frames; these do not animate).
 */
#import <AppKit/AppKit.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <ImageIO/ImageIO.h>

#include "platform/ImageIO/engine/ImageDecoder.hpp"
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

// Who reads the file at `path`: nobody, GNUstep's readers, or Image I/O's
// decoder for what GNUstep's readers would mishandle.
enum class Reader { None, GNUstep, ImageIO };

Reader ReaderFor(NSString *path) {
  // Non-blocking: opening a FIFO named like an image would wait for a writer.
  int fd = open([path fileSystemRepresentation], O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (fd < 0) return Reader::None;
  Reader reader = Reader::None;
  struct stat info;
  if (fstat(fd, &info) == 0 && S_ISREG(info.st_mode) && info.st_size > 0) {
    io::FileSource file(fd, size_t(info.st_size));
    uint8_t head[12] = {0};
    size_t n = info.st_size < 12 ? size_t(info.st_size) : 12;
    io::Format format = file.read(0, n, head) ? io::SniffFormat(head, n) : io::Format::Unknown;
    io::HeaderInfo header;
    if (format == io::Format::Unknown) {
      reader = Reader::GNUstep;  // GNUstep may know formats Image I/O does not
    } else if (!io::ReadHeader(file, &header, false) ||
               uint64_t(header.width) * header.height > kMaxPixels) {
      reader = Reader::None;
    } else if (!io::LooksComplete(file, header)) {
      // A JPEG cut short shows the rows that arrived, as on macOS; other
      // formats cut short are refused.
      reader = format == io::Format::JPEG ? Reader::ImageIO : Reader::None;
    } else {
      reader = Reader::GNUstep;
      // Only GIF and TIFF palettes can hurt GNUstep's readers: those files
      // are looked through, mapped rather than copied.
      if (format == io::Format::GIF || format == io::Format::TIFF) {
        NSData *bytes = [NSData dataWithContentsOfMappedFile:path];
        if (bytes == nil) {
          reader = Reader::None;
        } else if (io::HasPaletteHazards(static_cast<const uint8_t *>([bytes bytes]),
                                         [bytes length])) {
          reader = Reader::ImageIO;
        }
      }
    }
  }
  close(fd);
  return reader;
}

// The receiver, initialised with a bitmap per image Image I/O decodes from
// the file (a TIFF's pages; a GIF's first frame, composed), or released
// and nil when there is none.
NSImage *InitWithImageIO(NSImage *image, NSURL *url) {
  CGImageSourceRef source = CGImageSourceCreateWithURL((CFURLRef)url, NULL);
  size_t count = source != NULL ? CGImageSourceGetCount(source) : 0;
  if (source != NULL && [(NSString *)CGImageSourceGetType(source) isEqual:@"com.compuserve.gif"]) {
    count = count > 0 ? 1 : 0;
  }
  NSMutableArray *reps = [NSMutableArray array];
  for (size_t i = 0; i < count; ++i) {
    CGImageRef picture = CGImageSourceCreateImageAtIndex(source, i, NULL);
    if (picture == NULL) continue;
    NSBitmapImageRep *rep = [[NSBitmapImageRep alloc] initWithCGImage:picture];
    CGImageRelease(picture);
    if (rep != nil) [reps addObject:rep];
    [rep release];
  }
  if (source != NULL) CFRelease(source);
  if ([reps count] == 0) {
    [image release];
    return nil;
  }
  image = [image initWithSize:[[reps objectAtIndex:0] size]];
  [image addRepresentations:reps];
  return image;
}

id TVInitWithContentsOfURL(NSImage *image, SEL selector, NSURL *url) {
  if ([url isKindOfClass:[NSURL class]] && [url isFileURL]) {
    switch (ReaderFor([url path])) {
      case Reader::None:
        [image release];
        return nil;
      case Reader::ImageIO:
        return InitWithImageIO(image, url);
      case Reader::GNUstep:
        break;
    }
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
