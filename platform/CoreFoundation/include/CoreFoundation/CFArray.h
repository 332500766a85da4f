// CFArray as NSArray (see CFBase.h for what is not covered).
#ifndef TALVO_CFARRAY_H
#define TALVO_CFARRAY_H

#include <CoreFoundation/CFBase.h>

typedef const struct __CFArray *CFArrayRef;    // NSArray *
typedef struct __CFArray *CFMutableArrayRef;   // NSMutableArray *

// Only the object callbacks exist: values are retained objects, whatever
// callbacks are passed.
typedef struct {
  CFIndex version;
  const void *retain;
  const void *release;
  const void *copyDescription;
  const void *equal;
} CFArrayCallBacks;
CF_EXPORT const CFArrayCallBacks kCFTypeArrayCallBacks;

CF_EXPORT CFTypeID CFArrayGetTypeID(void);
CF_EXPORT CFArrayRef CFArrayCreate(CFAllocatorRef allocator, const void **values,
                                   CFIndex count, const CFArrayCallBacks *callBacks);
CF_EXPORT CFArrayRef CFArrayCreateCopy(CFAllocatorRef allocator, CFArrayRef array);
CF_EXPORT CFMutableArrayRef CFArrayCreateMutable(CFAllocatorRef allocator, CFIndex capacity,
                                                 const CFArrayCallBacks *callBacks);
CF_EXPORT CFMutableArrayRef CFArrayCreateMutableCopy(CFAllocatorRef allocator, CFIndex capacity,
                                                     CFArrayRef array);
CF_EXPORT CFIndex CFArrayGetCount(CFArrayRef array);
// NULL for an index out of range (Core Foundation's behaviour is undefined).
CF_EXPORT const void *CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index);
CF_EXPORT void CFArrayGetValues(CFArrayRef array, CFRange range, const void **values);
CF_EXPORT Boolean CFArrayContainsValue(CFArrayRef array, CFRange range, const void *value);
CF_EXPORT void CFArrayAppendValue(CFMutableArrayRef array, const void *value);
CF_EXPORT void CFArrayInsertValueAtIndex(CFMutableArrayRef array, CFIndex index, const void *value);
CF_EXPORT void CFArraySetValueAtIndex(CFMutableArrayRef array, CFIndex index, const void *value);
CF_EXPORT void CFArrayRemoveValueAtIndex(CFMutableArrayRef array, CFIndex index);
CF_EXPORT void CFArrayRemoveAllValues(CFMutableArrayRef array);

#endif
