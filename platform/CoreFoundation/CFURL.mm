// CFURL basics on NSURL.
#include <CoreFoundation/CoreFoundation.h>

#include <cstring>
#import "platform/objc/TVRuntime.h"

namespace {

NSURL *AsURL(CFTypeRef url) {
  id object = (id)url;
  return [object isKindOfClass:TVCachedClass(NSURL)] ? object : nil;
}

}  // namespace

CFURLRef CFURLCreateWithFileSystemPath(CFAllocatorRef, CFStringRef path, CFURLPathStyle style, Boolean isDirectory) {
  id string = (id)path;
  if (style != kCFURLPOSIXPathStyle || ![string isKindOfClass:TVCachedClass(NSString)] || [string length] == 0)
    return NULL;
  return (CFURLRef)[[NSURL alloc] initFileURLWithPath:string isDirectory:isDirectory ? YES : NO];
}

CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef, const uint8_t *buffer, CFIndex length,
                                                 Boolean isDirectory) {
  if (!buffer || length <= 0) return NULL;
  NSString *path = [[NSString alloc] initWithBytes:buffer length:(NSUInteger)length encoding:NSUTF8StringEncoding];
  if (!path) return NULL;
  NSURL *url = [[NSURL alloc] initFileURLWithPath:path isDirectory:isDirectory ? YES : NO];
  [path release];
  return (CFURLRef)url;
}

CFURLRef CFURLCreateWithString(CFAllocatorRef, CFStringRef string, CFURLRef base) {
  id text = (id)string;
  if (![text isKindOfClass:TVCachedClass(NSString)]) return NULL;
  return (CFURLRef)[[NSURL alloc] initWithString:text relativeToURL:AsURL(base)];
}

CFStringRef CFURLGetString(CFURLRef url) { return (CFStringRef)[AsURL(url) relativeString]; }

CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle style) {
  NSURL *source = AsURL(url);
  if (!source || style != kCFURLPOSIXPathStyle) return NULL;
  return (CFStringRef)[[source path] copy];
}

Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean, uint8_t *buffer, CFIndex maxLength) {
  NSURL *source = AsURL(url);
  if (!buffer || maxLength <= 0) return false;
  const char *path = [source isFileURL] ? [[source path] UTF8String] : NULL;
  if (!path || (CFIndex)std::strlen(path) + 1 > maxLength) return false;
  std::memcpy(buffer, path, std::strlen(path) + 1);
  return true;
}

CFStringRef CFURLCopyLastPathComponent(CFURLRef url) {
  NSURL *source = AsURL(url);
  return source ? (CFStringRef)[[[source path] lastPathComponent] copy] : NULL;
}

CFStringRef CFURLCopyPathExtension(CFURLRef url) {
  NSURL *source = AsURL(url);
  return source ? (CFStringRef)[[[source path] pathExtension] copy] : NULL;
}
