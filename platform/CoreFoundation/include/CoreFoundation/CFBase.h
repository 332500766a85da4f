/*
 * Core Foundation basics for GNUstep, toll-free with Foundation.
 *
 * GNUstep has no Core Foundation (gnustep-corebase is not part of the
 * platform). Talvo's stand-in makes every CF object a Foundation object: a
 * CFArrayRef is an NSArray *, a CFDictionaryRef an NSDictionary *, a
 * CFNumberRef an NSNumber *, a CFDataRef an NSData *, a CFStringRef an
 * NSString *, a CFURLRef an NSURL *. Casting between the two is free in both
 * directions, and CFRetain/CFRelease are -retain/-release, so the Create and
 * Copy rules of Core Foundation map onto manual reference counting.
 *
 * Not covered: allocators other than the default (they are accepted and
 * ignored), custom callbacks for collections (every value and key must be an
 * object; it is retained, and dictionary keys are copied as Foundation copies
 * them), CFRunLoop, CFBundle, CFPreferences, CFSocket, CFAttributedString and
 * the rest of the framework. These headers are for Objective-C and
 * Objective-C++ files only.
 */
#ifndef TALVO_CFBASE_H
#define TALVO_CFBASE_H

#import <Foundation/Foundation.h>

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
#define CF_EXTERN_C extern "C"
#else
#define CF_EXTERN_C extern
#endif
#define CF_EXPORT CF_EXTERN_C __attribute__((visibility("default")))

typedef const void *CFTypeRef;
typedef unsigned long CFTypeID;
typedef unsigned long CFHashCode;
typedef long CFIndex;
typedef unsigned long CFOptionFlags;
typedef unsigned char Boolean;

typedef const struct __CFString *CFStringRef;  // NSString *
typedef struct __CFString *CFMutableStringRef;  // NSMutableString *
typedef const struct __CFAllocator *CFAllocatorRef;

typedef struct {
  CFIndex location;
  CFIndex length;
} CFRange;

static inline CFRange CFRangeMake(CFIndex location, CFIndex length) {
  CFRange range = {location, length};
  return range;
}

typedef enum : CFIndex {
  kCFCompareLessThan = -1,
  kCFCompareEqualTo = 0,
  kCFCompareGreaterThan = 1
} CFComparisonResult;

// Allocators are accepted everywhere and ignored: memory comes from
// Foundation's default zone. kCFAllocatorNull is told apart only where it
// means "do not free" (CFDataCreateWithBytesNoCopy).
#define kCFAllocatorDefault ((CFAllocatorRef)NULL)
#define kCFAllocatorSystemDefault ((CFAllocatorRef)NULL)
CF_EXPORT const CFAllocatorRef kCFAllocatorNull;

// The type ID of no type: what CFGetTypeID answers for NULL and for objects
// that are none of the types below.
enum { _kCFRuntimeNotATypeID = 0 };

// Retain and release are -retain and -release (NULL is ignored here, where
// Core Foundation would crash).
CF_EXPORT CFTypeRef CFRetain(CFTypeRef object);
CF_EXPORT void CFRelease(CFTypeRef object);
CF_EXPORT CFTypeRef CFAutorelease(CFTypeRef object);
CF_EXPORT CFIndex CFGetRetainCount(CFTypeRef object);

CF_EXPORT Boolean CFEqual(CFTypeRef a, CFTypeRef b);
CF_EXPORT CFHashCode CFHash(CFTypeRef object);
CF_EXPORT CFStringRef CFCopyDescription(CFTypeRef object);  // +1

// The Core Foundation type of a toll-free object, compared with the
// XGetTypeID() functions of each header.
CF_EXPORT CFTypeID CFGetTypeID(CFTypeRef object);

#endif
