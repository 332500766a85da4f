#import <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSDictionary (httpString)

/** "key=value" pairs joined by "&" in key-enumeration order, each side the
 * object's description. Nothing is percent-escaped. */
- (NSMutableString *)httpString;

@end

NS_ASSUME_NONNULL_END
