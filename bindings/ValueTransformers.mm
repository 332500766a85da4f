// The nine binding value transformers. Each method is one mapping; the
// guards only keep values of the wrong kind from raising.

#import <Talvo/VXCollectionContainsMutipleElements.h>
#import <Talvo/VXCollectionIsEmpty.h>
#import <Talvo/VXCollectionNotEmpty.h>
#import <Talvo/VXIndexSetIndexValueTransformer.h>
#import <Talvo/VXObjectToArrayValueTransformer.h>
#import <Talvo/VXOrderedSetArrayValueTransformer.h>
#import <Talvo/VXSetArrayValueTransformer.h>
#import <Talvo/VXStringToAttributedString.h>
#import <Talvo/VXValidIndexValueTransformer.h>

#include <cstdint>

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

// nil, like an object that has no count, counts as empty.
static NSUInteger TVCount(id value) {
  return [value respondsToSelector:@selector(count)] ? [value count] : 0;
}

#pragma mark - Counts

@implementation VXCollectionIsEmpty

+ (Class)transformedValueClass {
  return [NSNumber class];
}

+ (BOOL)allowsReverseTransformation {
  return NO;
}

// One way only: the reverse of anything is nil (NSValueTransformer's own
// implementation raises, and Talvo's methods never do).
- (id)reverseTransformedValue:(id)value {
  return nil;
}

- (id)transformedValue:(id)value {
  return [NSNumber numberWithInt:TVCount(value) == 0 ? 1 : 0];
}

@end

@implementation VXCollectionNotEmpty

+ (Class)transformedValueClass {
  return [NSNumber class];
}

+ (BOOL)allowsReverseTransformation {
  return NO;
}

// One way only: the reverse of anything is nil (NSValueTransformer's own
// implementation raises, and Talvo's methods never do).
- (id)reverseTransformedValue:(id)value {
  return nil;
}

- (id)transformedValue:(id)value {
  return [NSNumber numberWithInt:TVCount(value) != 0 ? 1 : 0];
}

@end

@implementation VXCollectionContainsMutipleElements

+ (Class)transformedValueClass {
  return [NSNumber class];
}

+ (BOOL)allowsReverseTransformation {
  return NO;
}

// One way only: the reverse of anything is nil (NSValueTransformer's own
// implementation raises, and Talvo's methods never do).
- (id)reverseTransformedValue:(id)value {
  return nil;
}

- (id)transformedValue:(id)value {
  return [NSNumber numberWithInt:TVCount(value) > 1 ? 1 : 0];
}

@end

#pragma mark - Indexes

@implementation VXValidIndexValueTransformer

+ (Class)transformedValueClass {
  return [NSNumber class];
}

+ (BOOL)allowsReverseTransformation {
  return NO;
}

// One way only: the reverse of anything is nil (NSValueTransformer's own
// implementation raises, and Talvo's methods never do).
- (id)reverseTransformedValue:(id)value {
  return nil;
}

- (id)transformedValue:(id)value {
  // Read as 32 bits: NSNotFound's low half is all ones, so it reads as -1.
  int32_t index = [value respondsToSelector:@selector(intValue)] ? [value intValue] : 0;
  return [NSNumber numberWithBool:index >= 0];
}

@end

@implementation VXIndexSetIndexValueTransformer

- (id)transformedValue:(id)value {
  NSInteger index = [value respondsToSelector:@selector(integerValue)] ? [value integerValue] : 0;
  // -1 means no selection; so do the other values that are not indexes.
  if (index < 0 || index == NSNotFound) {
    return nil;
  }
  return [NSIndexSet indexSetWithIndex:(NSUInteger)index];
}

- (id)reverseTransformedValue:(id)value {
  if (![value isKindOfClass:[NSIndexSet class]] || [value count] == 0) {
    return [NSNumber numberWithInt:-1];
  }
  return [NSNumber numberWithUnsignedInteger:[value firstIndex]];
}

@end

#pragma mark - Collections

@implementation VXOrderedSetArrayValueTransformer

+ (Class)transformedValueClass {
  return [NSMutableArray class];
}

+ (BOOL)allowsReverseTransformation {
  return YES;
}

- (id)transformedValue:(id)value {
  return [value isKindOfClass:[NSOrderedSet class]] ? [value array] : nil;
}

- (id)reverseTransformedValue:(id)value {
  if (value != nil && ![value isKindOfClass:[NSArray class]]) {
    return nil;
  }
  return [NSMutableOrderedSet orderedSetWithArray:value != nil ? value : [NSArray array]];
}

@end

@implementation VXObjectToArrayValueTransformer

+ (Class)transformedValueClass {
  return [NSArray class];
}

+ (BOOL)allowsReverseTransformation {
  return YES;
}

- (id)transformedValue:(id)value {
  return value != nil ? [NSArray arrayWithObject:value] : [NSArray array];
}

- (id)reverseTransformedValue:(id)value {
  if (![value isKindOfClass:[NSArray class]] || [value count] == 0) {
    return nil;
  }
  return [value objectAtIndex:0];
}

@end

@implementation VXSetArrayValueTransformer

+ (Class)transformedValueClass {
  return [NSArray class];
}

+ (BOOL)allowsReverseTransformation {
  return YES;
}

- (id)transformedValue:(id)value {
  return [value isKindOfClass:[NSSet class]] ? [value allObjects] : nil;
}

- (id)reverseTransformedValue:(id)value {
  if (value != nil && ![value isKindOfClass:[NSArray class]]) {
    return nil;
  }
  return [NSSet setWithArray:value != nil ? value : [NSArray array]];
}

@end

#pragma mark - Strings

@implementation VXStringToAttributedString

+ (Class)transformedValueClass {
  return [NSAttributedString class];
}

+ (BOOL)allowsReverseTransformation {
  return YES;
}

- (id)transformedValue:(id)value {
  if (![value isKindOfClass:[NSString class]]) {
    return nil;
  }
  return [[[NSAttributedString alloc] initWithString:value] autorelease];
}

- (id)reverseTransformedValue:(id)value {
  if (![value isKindOfClass:[NSAttributedString class]]) {
    return nil;
  }
  return [[[value string] copy] autorelease];
}

@end
