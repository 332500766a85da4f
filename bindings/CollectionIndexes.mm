// Set-like index operations on arrays, ordered sets and sets. Membership is
// always the argument's containsObject:; one pass over the receiver.

#import <Talvo/NSArray+Indexes.h>
#import <Talvo/NSOrderedSet+Indexes.h>
#import <Talvo/NSSet+Indexes.h>

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

// The membership test for `collection`; a nil argument, or one that cannot
// answer containsObject:, contains nothing.
static BOOL (^TVMembership(id collection, BOOL wantMembers))(id) {
  if (![collection respondsToSelector:@selector(containsObject:)]) {
    return [[^BOOL(id element) {
      return !wantMembers;
    } copy] autorelease];
  }
  return [[^BOOL(id element) {
    return [collection containsObject:element] == wantMembers;
  } copy] autorelease];
}

static NSIndexSet *TVIndexesPassing(id receiver, id collection, BOOL wantMembers) {
  BOOL (^passes)(id) = TVMembership(collection, wantMembers);
  return [receiver indexesOfObjectsPassingTest:^BOOL(id element, NSUInteger index, BOOL *stop) {
    return passes(element);
  }];
}

@implementation NSArray (indexes)

- (NSIndexSet *)indexesOfObjects:(id)objects {
  return TVIndexesPassing(self, objects, YES);
}

- (NSIndexSet *)indexesOfObjectsNotInArray:(NSArray *)array {
  return TVIndexesPassing(self, array, NO);
}

- (NSArray *)arrayByRemovingObjectsFromArray:(NSArray *)array {
  return [self objectsAtIndexes:[self indexesOfObjectsNotInArray:array]];
}

@end

@implementation NSOrderedSet (indexes)

- (NSIndexSet *)indexesOfObjects:(id)objects {
  return TVIndexesPassing(self, objects, YES);
}

- (NSIndexSet *)indexesOfObjectsInOrderedSet:(NSOrderedSet *)orderedSet {
  return TVIndexesPassing(self, orderedSet, YES);
}

- (NSIndexSet *)indexesOfObjectsNotInOrderedSet:(NSOrderedSet *)orderedSet {
  return TVIndexesPassing(self, orderedSet, NO);
}

- (NSArray *)arrayByRemovingObjectsFromOrderedSet:(NSOrderedSet *)orderedSet {
  return [self objectsAtIndexes:[self indexesOfObjectsNotInOrderedSet:orderedSet]];
}

@end

@implementation NSSet (indexes)

- (NSSet *)objectsInOrderedSet:(NSOrderedSet *)orderedSet {
  BOOL (^passes)(id) = TVMembership(orderedSet, YES);
  return [self objectsPassingTest:^BOOL(id element, BOOL *stop) {
    return passes(element);
  }];
}

- (NSSet *)objectsNotInOrderedSet:(NSOrderedSet *)orderedSet {
  BOOL (^passes)(id) = TVMembership(orderedSet, NO);
  return [self objectsPassingTest:^BOOL(id element, BOOL *stop) {
    return passes(element);
  }];
}

@end
