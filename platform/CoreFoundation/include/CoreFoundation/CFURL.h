// CFURL basics as NSURL (see CFBase.h for what is not covered).
#ifndef TALVO_CFURL_H
#define TALVO_CFURL_H

#include <CoreFoundation/CFBase.h>

typedef const struct __CFURL *CFURLRef;  // NSURL *

typedef enum : CFIndex {
  kCFURLPOSIXPathStyle = 0,
  kCFURLWindowsPathStyle = 2
} CFURLPathStyle;

CF_EXPORT CFTypeID CFURLGetTypeID(void);
// Only POSIX paths; any other style gives NULL.
CF_EXPORT CFURLRef CFURLCreateWithFileSystemPath(CFAllocatorRef allocator, CFStringRef path,
                                                 CFURLPathStyle style, Boolean isDirectory);
CF_EXPORT CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef allocator,
                                                           const uint8_t *buffer, CFIndex length,
                                                           Boolean isDirectory);
CF_EXPORT CFURLRef CFURLCreateWithString(CFAllocatorRef allocator, CFStringRef string, CFURLRef base);
CF_EXPORT CFStringRef CFURLGetString(CFURLRef url);
CF_EXPORT CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle style);
CF_EXPORT Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean resolveAgainstBase,
                                                   uint8_t *buffer, CFIndex maxLength);
CF_EXPORT CFStringRef CFURLCopyLastPathComponent(CFURLRef url);
CF_EXPORT CFStringRef CFURLCopyPathExtension(CFURLRef url);

#endif
