// A small immutable dictionary for an image's properties.
//
// An image source answers a handful of properties per image, and a size
// probe asks for them once per file: GNUstep's general dictionary hashes
// every key into a table allocated for it, which cost more than reading the
// header. This one keeps up to kTVPropertyDictionaryCapacity pairs in place
// and finds a key by identity first (callers pass the exported constants),
// then by -isEqual:.
#import <Foundation/Foundation.h>

enum { kTVPropertyDictionaryCapacity = 8 };

@interface _TVPropertyDictionary : NSDictionary {
  NSUInteger _count;
  id _keys[kTVPropertyDictionaryCapacity];
  id _values[kTVPropertyDictionaryCapacity];
}
// Keys are copied, values retained; pairs past the capacity and nil keys or
// values are left out. Answers a retained dictionary.
+ (instancetype)newWithObjects:(const id *)values forKeys:(const id *)keys count:(NSUInteger)count;
@end
