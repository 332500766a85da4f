#import <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

/** An index (any object answering integerValue) to an index set of that one index; -1, any other negative value and NSNotFound mean no selection and give nil. Back, an index set to its first index, nil or an empty set to -1. */
@interface VXIndexSetIndexValueTransformer : NSValueTransformer
@end

NS_ASSUME_NONNULL_END
