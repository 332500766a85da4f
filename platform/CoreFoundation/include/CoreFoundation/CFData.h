// CFData as NSData (see CFBase.h for what is not covered).
#ifndef TALVO_CFDATA_H
#define TALVO_CFDATA_H

#include <CoreFoundation/CFBase.h>

typedef const struct __CFData *CFDataRef;   // NSData *
typedef struct __CFData *CFMutableDataRef;  // NSMutableData *

CF_EXPORT CFTypeID CFDataGetTypeID(void);
CF_EXPORT CFDataRef CFDataCreate(CFAllocatorRef allocator, const uint8_t *bytes, CFIndex length);
// The bytes are not copied; with kCFAllocatorNull as the deallocator they
// are not freed either, otherwise they are freed with free().
CF_EXPORT CFDataRef CFDataCreateWithBytesNoCopy(CFAllocatorRef allocator, const uint8_t *bytes,
                                                CFIndex length, CFAllocatorRef bytesDeallocator);
CF_EXPORT CFDataRef CFDataCreateCopy(CFAllocatorRef allocator, CFDataRef data);
CF_EXPORT CFMutableDataRef CFDataCreateMutable(CFAllocatorRef allocator, CFIndex capacity);
CF_EXPORT CFMutableDataRef CFDataCreateMutableCopy(CFAllocatorRef allocator, CFIndex capacity,
                                                   CFDataRef data);
CF_EXPORT CFIndex CFDataGetLength(CFDataRef data);
CF_EXPORT const uint8_t *CFDataGetBytePtr(CFDataRef data);
CF_EXPORT uint8_t *CFDataGetMutableBytePtr(CFMutableDataRef data);
CF_EXPORT void CFDataGetBytes(CFDataRef data, CFRange range, uint8_t *buffer);
CF_EXPORT void CFDataSetLength(CFMutableDataRef data, CFIndex length);
CF_EXPORT void CFDataAppendBytes(CFMutableDataRef data, const uint8_t *bytes, CFIndex length);

#endif
