// CFDictionary as NSDictionary (see CFBase.h for what is not covered).
#ifndef TALVO_CFDICTIONARY_H
#define TALVO_CFDICTIONARY_H

#include <CoreFoundation/CFBase.h>

typedef const struct __CFDictionary *CFDictionaryRef;   // NSDictionary *
typedef struct __CFDictionary *CFMutableDictionaryRef;  // NSMutableDictionary *

// Only the object callbacks exist: keys are copied and values retained, as
// Foundation does, whatever callbacks are passed.
typedef struct {
  CFIndex version;
  const void *retain;
  const void *release;
  const void *copyDescription;
  const void *equal;
  const void *hash;
} CFDictionaryKeyCallBacks;
typedef struct {
  CFIndex version;
  const void *retain;
  const void *release;
  const void *copyDescription;
  const void *equal;
} CFDictionaryValueCallBacks;
CF_EXPORT const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks;
CF_EXPORT const CFDictionaryKeyCallBacks kCFCopyStringDictionaryKeyCallBacks;
CF_EXPORT const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks;

CF_EXPORT CFTypeID CFDictionaryGetTypeID(void);
// A key or value that is NULL makes the create fail (NULL), where Core
// Foundation with NULL callbacks would store the pointer.
CF_EXPORT CFDictionaryRef CFDictionaryCreate(CFAllocatorRef allocator, const void **keys,
                                             const void **values, CFIndex count,
                                             const CFDictionaryKeyCallBacks *keyCallBacks,
                                             const CFDictionaryValueCallBacks *valueCallBacks);
CF_EXPORT CFDictionaryRef CFDictionaryCreateCopy(CFAllocatorRef allocator, CFDictionaryRef dictionary);
CF_EXPORT CFMutableDictionaryRef CFDictionaryCreateMutable(
    CFAllocatorRef allocator, CFIndex capacity, const CFDictionaryKeyCallBacks *keyCallBacks,
    const CFDictionaryValueCallBacks *valueCallBacks);
CF_EXPORT CFMutableDictionaryRef CFDictionaryCreateMutableCopy(CFAllocatorRef allocator,
                                                               CFIndex capacity,
                                                               CFDictionaryRef dictionary);
CF_EXPORT CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary);
CF_EXPORT const void *CFDictionaryGetValue(CFDictionaryRef dictionary, const void *key);
CF_EXPORT Boolean CFDictionaryGetValueIfPresent(CFDictionaryRef dictionary, const void *key,
                                                const void **value);
CF_EXPORT Boolean CFDictionaryContainsKey(CFDictionaryRef dictionary, const void *key);
// Keys and values in the same (unspecified) order; either may be NULL.
CF_EXPORT void CFDictionaryGetKeysAndValues(CFDictionaryRef dictionary, const void **keys,
                                            const void **values);
CF_EXPORT void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void *key, const void *value);
CF_EXPORT void CFDictionaryAddValue(CFMutableDictionaryRef dictionary, const void *key, const void *value);
CF_EXPORT void CFDictionaryRemoveValue(CFMutableDictionaryRef dictionary, const void *key);
CF_EXPORT void CFDictionaryRemoveAllValues(CFMutableDictionaryRef dictionary);

#endif
