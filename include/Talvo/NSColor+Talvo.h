#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

/** The toolkit's own colours. */
@interface NSColor (talvo)

/** The selection blue, calibrated RGB (0.039, 0.373, 0.996), opaque; one
 * shared object, made on first use. */
+ (NSColor *)selectedColor;

@end

NS_ASSUME_NONNULL_END
