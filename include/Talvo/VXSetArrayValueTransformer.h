#import <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

/** A set to its allObjects, in the set's own order; back, an array to a set of its elements (nil gives an empty set). */
@interface VXSetArrayValueTransformer : NSValueTransformer
@end

NS_ASSUME_NONNULL_END
