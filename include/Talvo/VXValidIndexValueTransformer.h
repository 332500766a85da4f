#import <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

/** A boolean number: YES when the value's intValue (read as 32 bits, so NSNotFound reads as -1) is 0 or more. nil and objects without intValue read as 0. One-way. */
@interface VXValidIndexValueTransformer : NSValueTransformer
@end

NS_ASSUME_NONNULL_END
