#import <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSAttributedString (trim)

/** A new attributed string without the leading and trailing characters that
 * are in `set`; the remaining characters keep their attributes. A nil set,
 * or an argument that is not a character set, trims nothing. */
- (NSAttributedString *)attributedStringByTrimmingCharactersInSet:(nullable NSCharacterSet *)set;

/** The same with the whitespace-and-newline set. */
- (NSAttributedString *)attributedStringByTrimmingWhitespace;

@end

NS_ASSUME_NONNULL_END
