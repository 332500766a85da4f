#import <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

/** The number 1 when the value's count is greater than 1, else 0. One-way. */
@interface VXCollectionContainsMutipleElements : NSValueTransformer
@end

NS_ASSUME_NONNULL_END
