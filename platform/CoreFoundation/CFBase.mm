// Retain, release and type identity for the toll-free CF objects.
#include <CoreFoundation/CoreFoundation.h>
#import "platform/objc/TVRuntime.h"

namespace {

// Fixed identifiers, one per toll-free type; only their distinctness matters.
enum : CFTypeID {
  kStringTypeID = 7,
  kDictionaryTypeID = 18,
  kArrayTypeID = 19,
  kDataTypeID = 20,
  kBooleanTypeID = 21,
  kNumberTypeID = 22,
  kURLTypeID = 29,
};

// Only its address matters.
const char nullAllocatorTag = 0;

}  // namespace

const CFAllocatorRef kCFAllocatorNull = (CFAllocatorRef)&nullAllocatorTag;

CFTypeRef CFRetain(CFTypeRef object) {
  if (object) [(id)object retain];
  return object;
}

void CFRelease(CFTypeRef object) {
  if (object) [(id)object release];
}

CFTypeRef CFAutorelease(CFTypeRef object) {
  if (object) [(id)object autorelease];
  return object;
}

CFIndex CFGetRetainCount(CFTypeRef object) { return object ? (CFIndex)[(id)object retainCount] : 0; }

Boolean CFEqual(CFTypeRef a, CFTypeRef b) {
  if (a == b) return true;
  if (!a || !b) return false;
  return [(id)a isEqual:(id)b] ? true : false;
}

CFHashCode CFHash(CFTypeRef object) { return object ? (CFHashCode)[(id)object hash] : 0; }

CFStringRef CFCopyDescription(CFTypeRef object) {
  if (!object) return NULL;
  return (CFStringRef)[[(id)object description] copy];
}

CFTypeID CFStringGetTypeID(void) { return kStringTypeID; }
CFTypeID CFDictionaryGetTypeID(void) { return kDictionaryTypeID; }
CFTypeID CFArrayGetTypeID(void) { return kArrayTypeID; }
CFTypeID CFDataGetTypeID(void) { return kDataTypeID; }
CFTypeID CFBooleanGetTypeID(void) { return kBooleanTypeID; }
CFTypeID CFNumberGetTypeID(void) { return kNumberTypeID; }
CFTypeID CFURLGetTypeID(void) { return kURLTypeID; }

CFTypeID CFGetTypeID(CFTypeRef object) {
  id value = (id)object;
  if (!value) return _kCFRuntimeNotATypeID;
  // Booleans are NSNumbers of the class kCFBooleanTrue belongs to.
  if ([value isKindOfClass:[(id)kCFBooleanTrue class]]) return kBooleanTypeID;
  if ([value isKindOfClass:TVCachedClass(NSNumber)]) return kNumberTypeID;
  if ([value isKindOfClass:TVCachedClass(NSString)]) return kStringTypeID;
  if ([value isKindOfClass:TVCachedClass(NSArray)]) return kArrayTypeID;
  if ([value isKindOfClass:TVCachedClass(NSDictionary)]) return kDictionaryTypeID;
  if ([value isKindOfClass:TVCachedClass(NSData)]) return kDataTypeID;
  if ([value isKindOfClass:TVCachedClass(NSURL)]) return kURLTypeID;
  return _kCFRuntimeNotATypeID;
}
