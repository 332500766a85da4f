#import <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

/** A value to an array of that one value (nil gives an empty array); back, an array to its first element (nil for nil or an empty array). */
@interface VXObjectToArrayValueTransformer : NSValueTransformer
@end

NS_ASSUME_NONNULL_END
