// CFData on NSData.
#include <CoreFoundation/CoreFoundation.h>

#include <cstdlib>
#import "platform/objc/TVRuntime.h"

namespace {

NSData *AsData(CFTypeRef data) {
  id object = (id)data;
  return [object isKindOfClass:TVCachedClass(NSData)] ? object : nil;
}

NSMutableData *AsMutableData(CFTypeRef data) {
  id object = (id)data;
  return [object isKindOfClass:TVCachedClass(NSMutableData)] ? object : nil;
}

}  // namespace

CFDataRef CFDataCreate(CFAllocatorRef, const uint8_t *bytes, CFIndex length) {
  if (length < 0 || (length > 0 && !bytes)) return NULL;
  return (CFDataRef)[[NSData alloc] initWithBytes:bytes length:(NSUInteger)length];
}

CFDataRef CFDataCreateWithBytesNoCopy(CFAllocatorRef, const uint8_t *bytes, CFIndex length,
                                      CFAllocatorRef bytesDeallocator) {
  if (length < 0 || (length > 0 && !bytes)) return NULL;
  return (CFDataRef)[[NSData alloc] initWithBytesNoCopy:(void *)bytes
                                                 length:(NSUInteger)length
                                           freeWhenDone:bytesDeallocator != kCFAllocatorNull];
}

CFDataRef CFDataCreateCopy(CFAllocatorRef, CFDataRef data) {
  NSData *source = AsData(data);
  return source ? (CFDataRef)[[NSData alloc] initWithData:source] : NULL;
}

CFMutableDataRef CFDataCreateMutable(CFAllocatorRef, CFIndex capacity) {
  return (CFMutableDataRef)[[NSMutableData alloc] initWithCapacity:capacity > 0 ? (NSUInteger)capacity : 0];
}

CFMutableDataRef CFDataCreateMutableCopy(CFAllocatorRef, CFIndex, CFDataRef data) {
  NSData *source = AsData(data);
  return source ? (CFMutableDataRef)[[NSMutableData alloc] initWithData:source] : NULL;
}

CFIndex CFDataGetLength(CFDataRef data) { return (CFIndex)[AsData(data) length]; }

const uint8_t *CFDataGetBytePtr(CFDataRef data) { return (const uint8_t *)[AsData(data) bytes]; }

uint8_t *CFDataGetMutableBytePtr(CFMutableDataRef data) { return (uint8_t *)[AsMutableData(data) mutableBytes]; }

void CFDataGetBytes(CFDataRef data, CFRange range, uint8_t *buffer) {
  NSData *source = AsData(data);
  NSUInteger length = [source length];
  if (!buffer || range.location < 0 || range.length < 0 || (NSUInteger)range.location > length ||
      (NSUInteger)range.length > length - (NSUInteger)range.location)
    return;
  [source getBytes:buffer range:NSMakeRange((NSUInteger)range.location, (NSUInteger)range.length)];
}

void CFDataSetLength(CFMutableDataRef data, CFIndex length) {
  if (length >= 0) [AsMutableData(data) setLength:(NSUInteger)length];
}

void CFDataAppendBytes(CFMutableDataRef data, const uint8_t *bytes, CFIndex length) {
  if (!bytes || length <= 0) return;
  [AsMutableData(data) appendBytes:bytes length:(NSUInteger)length];
}
