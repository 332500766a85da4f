#import <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

/** Set-like operations that answer in indexes. Membership is asked of the
 * argument with containsObject:; a nil argument contains nothing. */
@interface NSArray (indexes)

/** Positions whose element `objects` (any collection answering
 * containsObject:) contains. */
- (NSIndexSet *)indexesOfObjects:(nullable id)objects;

/** Positions whose element `array` does not contain. */
- (NSIndexSet *)indexesOfObjectsNotInArray:(nullable NSArray *)array;

/** The receiver's elements that `array` does not contain, in order, with
 * the receiver's duplicates. */
- (NSArray *)arrayByRemovingObjectsFromArray:(nullable NSArray *)array;

@end

NS_ASSUME_NONNULL_END
