#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

/** Getting one object out of an interface file. */
@interface NSBundle (ObjectLoader)

/** The first top-level object, in the file's order, of the main bundle's
 * nib `nibName` that is a `kind` (isKindOfClass:), autoreleased; nil when
 * there is none. A nib that cannot be loaded logs "Warning! Could not load
 * nib file.\n" and answers nil. The receiver is not used. */
+ (nullable id)loadObjectOfKind:(nullable Class)kind fromNibFile:(nullable NSString *)nibName;

@end

NS_ASSUME_NONNULL_END
