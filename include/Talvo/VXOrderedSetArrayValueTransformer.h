#import <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

/** An ordered set to its array; back, an array to a new mutable ordered set (nil gives an empty one). */
@interface VXOrderedSetArrayValueTransformer : NSValueTransformer
@end

NS_ASSUME_NONNULL_END
