#import <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

/** Set-like operations that answer in indexes. Membership is asked of the
 * argument with containsObject:; a nil argument contains nothing. */
@interface NSOrderedSet (indexes)

/** Positions whose element `objects` (any collection answering
 * containsObject:) contains. */
- (NSIndexSet *)indexesOfObjects:(nullable id)objects;

/** Positions whose element `orderedSet` contains. */
- (NSIndexSet *)indexesOfObjectsInOrderedSet:(nullable NSOrderedSet *)orderedSet;

/** Positions whose element `orderedSet` does not contain. */
- (NSIndexSet *)indexesOfObjectsNotInOrderedSet:(nullable NSOrderedSet *)orderedSet;

/** An array (not an ordered set) of the receiver's elements that
 * `orderedSet` does not contain, in order. */
- (NSArray *)arrayByRemovingObjectsFromOrderedSet:(nullable NSOrderedSet *)orderedSet;

@end

NS_ASSUME_NONNULL_END
