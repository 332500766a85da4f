// CFArray and CFDictionary on NSArray and NSDictionary.
#include <CoreFoundation/CoreFoundation.h>

#include <cstdlib>
#include <cstring>
#import "platform/objc/TVRuntime.h"

const CFArrayCallBacks kCFTypeArrayCallBacks = {0, NULL, NULL, NULL, NULL};
const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks = {0, NULL, NULL, NULL, NULL, NULL};
const CFDictionaryKeyCallBacks kCFCopyStringDictionaryKeyCallBacks = {0, NULL, NULL, NULL, NULL, NULL};
const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks = {0, NULL, NULL, NULL, NULL};

namespace {

NSArray *AsArray(CFArrayRef array) {
  id object = (id)array;
  return [object isKindOfClass:TVCachedClass(NSArray)] ? object : nil;
}

NSMutableArray *AsMutableArray(CFMutableArrayRef array) {
  id object = (id)array;
  return [object isKindOfClass:TVCachedClass(NSMutableArray)] ? object : nil;
}

NSDictionary *AsDictionary(CFDictionaryRef dictionary) {
  id object = (id)dictionary;
  return [object isKindOfClass:TVCachedClass(NSDictionary)] ? object : nil;
}

NSMutableDictionary *AsMutableDictionary(CFMutableDictionaryRef dictionary) {
  id object = (id)dictionary;
  return [object isKindOfClass:TVCachedClass(NSMutableDictionary)] ? object : nil;
}

// Dictionary keys must be copyable objects in Foundation.
bool UsableKey(const void *key) { return key && [(id)key respondsToSelector:@selector(copyWithZone:)]; }

bool InRange(NSUInteger count, CFRange range) {
  return range.location >= 0 && range.length >= 0 && (NSUInteger)range.location <= count &&
         (NSUInteger)range.length <= count - (NSUInteger)range.location;
}

}  // namespace

// --- CFArray ---------------------------------------------------------------

// An array made with NULL callbacks holds plain pointers (window numbers
// passed to the window list, for instance): never retained, never messaged
// by the array itself.
@interface TVCFPointerArray : NSArray {
  const void **_values;
  NSUInteger _count;
}
- (instancetype)initWithPointers:(const void **)values count:(NSUInteger)count;
@end

@implementation TVCFPointerArray
- (instancetype)initWithPointers:(const void **)values count:(NSUInteger)count {
  if ((self = [super init])) {
    _values = (const void **)calloc(count > 0 ? count : 1, sizeof(void *));
    if (!_values) {
      [self release];
      return nil;
    }
    if (count > 0) memcpy(_values, values, count * sizeof(void *));
    _count = count;
  }
  return self;
}
- (void)dealloc {
  free(_values);
  [super dealloc];
}
- (NSUInteger)count {
  return _count;
}
- (id)objectAtIndex:(NSUInteger)index {
  return index < _count ? (id)_values[index] : nil;
}
@end

CFArrayRef CFArrayCreate(CFAllocatorRef, const void **values, CFIndex count, const CFArrayCallBacks *callBacks) {
  if (count < 0 || (count > 0 && !values)) return NULL;
  if (callBacks == NULL) return (CFArrayRef)[[TVCFPointerArray alloc] initWithPointers:values count:(NSUInteger)count];
  for (CFIndex i = 0; i < count; i++)
    if (!values[i]) return NULL;
  return (CFArrayRef)[[NSArray alloc] initWithObjects:(id *)values count:(NSUInteger)count];
}

CFArrayRef CFArrayCreateCopy(CFAllocatorRef, CFArrayRef array) {
  NSArray *source = AsArray(array);
  return source ? (CFArrayRef)[[NSArray alloc] initWithArray:source] : NULL;
}

CFMutableArrayRef CFArrayCreateMutable(CFAllocatorRef, CFIndex capacity, const CFArrayCallBacks *) {
  return (CFMutableArrayRef)[[NSMutableArray alloc] initWithCapacity:capacity > 0 ? (NSUInteger)capacity : 0];
}

CFMutableArrayRef CFArrayCreateMutableCopy(CFAllocatorRef, CFIndex, CFArrayRef array) {
  NSArray *source = AsArray(array);
  return source ? (CFMutableArrayRef)[[NSMutableArray alloc] initWithArray:source] : NULL;
}

CFIndex CFArrayGetCount(CFArrayRef array) { return (CFIndex)[AsArray(array) count]; }

const void *CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index) {
  NSArray *source = AsArray(array);
  if (index < 0 || (NSUInteger)index >= [source count]) return NULL;
  return [source objectAtIndex:(NSUInteger)index];
}

void CFArrayGetValues(CFArrayRef array, CFRange range, const void **values) {
  NSArray *source = AsArray(array);
  if (!values || !InRange([source count], range)) return;
  for (CFIndex i = 0; i < range.length; i++) values[i] = [source objectAtIndex:(NSUInteger)(range.location + i)];
}

Boolean CFArrayContainsValue(CFArrayRef array, CFRange range, const void *value) {
  NSArray *source = AsArray(array);
  if (!value || !InRange([source count], range)) return false;
  NSUInteger found = [source indexOfObject:(id)value
                                   inRange:NSMakeRange((NSUInteger)range.location, (NSUInteger)range.length)];
  return found != NSNotFound;
}

void CFArrayAppendValue(CFMutableArrayRef array, const void *value) {
  if (value) [AsMutableArray(array) addObject:(id)value];
}

void CFArrayInsertValueAtIndex(CFMutableArrayRef array, CFIndex index, const void *value) {
  NSMutableArray *target = AsMutableArray(array);
  if (!value || index < 0 || (NSUInteger)index > [target count]) return;
  [target insertObject:(id)value atIndex:(NSUInteger)index];
}

void CFArraySetValueAtIndex(CFMutableArrayRef array, CFIndex index, const void *value) {
  NSMutableArray *target = AsMutableArray(array);
  if (!value || index < 0 || (NSUInteger)index > [target count]) return;
  if ((NSUInteger)index == [target count])
    [target addObject:(id)value];
  else
    [target replaceObjectAtIndex:(NSUInteger)index withObject:(id)value];
}

void CFArrayRemoveValueAtIndex(CFMutableArrayRef array, CFIndex index) {
  NSMutableArray *target = AsMutableArray(array);
  if (index < 0 || (NSUInteger)index >= [target count]) return;
  [target removeObjectAtIndex:(NSUInteger)index];
}

void CFArrayRemoveAllValues(CFMutableArrayRef array) { [AsMutableArray(array) removeAllObjects]; }

// --- CFDictionary ----------------------------------------------------------

CFDictionaryRef CFDictionaryCreate(CFAllocatorRef, const void **keys, const void **values, CFIndex count,
                                   const CFDictionaryKeyCallBacks *, const CFDictionaryValueCallBacks *) {
  if (count < 0 || (count > 0 && (!keys || !values))) return NULL;
  for (CFIndex i = 0; i < count; i++)
    if (!UsableKey(keys[i]) || !values[i]) return NULL;
  return (CFDictionaryRef)[[NSDictionary alloc] initWithObjects:(id *)values
                                                         forKeys:(id *)keys
                                                           count:(NSUInteger)count];
}

CFDictionaryRef CFDictionaryCreateCopy(CFAllocatorRef, CFDictionaryRef dictionary) {
  NSDictionary *source = AsDictionary(dictionary);
  return source ? (CFDictionaryRef)[[NSDictionary alloc] initWithDictionary:source] : NULL;
}

CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef, CFIndex capacity, const CFDictionaryKeyCallBacks *,
                                                 const CFDictionaryValueCallBacks *) {
  return (CFMutableDictionaryRef)[[NSMutableDictionary alloc]
      initWithCapacity:capacity > 0 ? (NSUInteger)capacity : 0];
}

CFMutableDictionaryRef CFDictionaryCreateMutableCopy(CFAllocatorRef, CFIndex, CFDictionaryRef dictionary) {
  NSDictionary *source = AsDictionary(dictionary);
  return source ? (CFMutableDictionaryRef)[[NSMutableDictionary alloc] initWithDictionary:source] : NULL;
}

CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary) { return (CFIndex)[AsDictionary(dictionary) count]; }

const void *CFDictionaryGetValue(CFDictionaryRef dictionary, const void *key) {
  if (!key) return NULL;
  return [AsDictionary(dictionary) objectForKey:(id)key];
}

Boolean CFDictionaryGetValueIfPresent(CFDictionaryRef dictionary, const void *key, const void **value) {
  const void *found = CFDictionaryGetValue(dictionary, key);
  if (found && value) *value = found;
  return found != NULL;
}

Boolean CFDictionaryContainsKey(CFDictionaryRef dictionary, const void *key) {
  return CFDictionaryGetValue(dictionary, key) != NULL;
}

void CFDictionaryGetKeysAndValues(CFDictionaryRef dictionary, const void **keys, const void **values) {
  NSDictionary *source = AsDictionary(dictionary);
  NSUInteger i = 0;
  for (id key in source) {
    if (keys) keys[i] = key;
    if (values) values[i] = [source objectForKey:key];
    i++;
  }
}

void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void *key, const void *value) {
  if (!UsableKey(key) || !value) return;
  [AsMutableDictionary(dictionary) setObject:(id)value forKey:(id)key];
}

void CFDictionaryAddValue(CFMutableDictionaryRef dictionary, const void *key, const void *value) {
  NSMutableDictionary *target = AsMutableDictionary(dictionary);
  if (!UsableKey(key) || !value || [target objectForKey:(id)key]) return;
  [target setObject:(id)value forKey:(id)key];
}

void CFDictionaryRemoveValue(CFMutableDictionaryRef dictionary, const void *key) {
  if (key) [AsMutableDictionary(dictionary) removeObjectForKey:(id)key];
}

void CFDictionaryRemoveAllValues(CFMutableDictionaryRef dictionary) {
  [AsMutableDictionary(dictionary) removeAllObjects];
}
