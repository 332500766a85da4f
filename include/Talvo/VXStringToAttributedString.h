#import <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

/** A string to an attributed string without attributes; back, an attributed string to a copy of its plain string. nil stays nil both ways. */
@interface VXStringToAttributedString : NSValueTransformer
@end

NS_ASSUME_NONNULL_END
