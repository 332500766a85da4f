#import <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSSet (indexes)

/** The receiver's members that `orderedSet` contains. */
- (NSSet *)objectsInOrderedSet:(nullable NSOrderedSet *)orderedSet;

/** The receiver's members that `orderedSet` does not contain (all of them
 * for nil). */
- (NSSet *)objectsNotInOrderedSet:(nullable NSOrderedSet *)orderedSet;

@end

NS_ASSUME_NONNULL_END
