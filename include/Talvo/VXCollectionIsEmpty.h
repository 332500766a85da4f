#import <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

/** The number 1 when the value's count is 0 (nil and objects without a count count as empty), else 0. One-way. */
@interface VXCollectionIsEmpty : NSValueTransformer
@end

NS_ASSUME_NONNULL_END
