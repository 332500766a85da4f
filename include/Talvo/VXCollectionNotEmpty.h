#import <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

/** The number 1 when the value's count is not 0, else 0 (nil and objects without a count give 0). One-way. */
@interface VXCollectionNotEmpty : NSValueTransformer
@end

NS_ASSUME_NONNULL_END
