#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSImage (fitSize)

/** The receiver's size when it fits inside `size`; otherwise
 * scaledSizeForSize: of `size`. Images shrink to fit, never grow. */
- (NSSize)scaledSizeThatFitInSize:(NSSize)size;

/** The size with the receiver's aspect ratio (height over width, in single
 * precision) that touches `size` on one side and lies inside it on the
 * other, larger than the receiver when `size` is. NSZeroSize for an image
 * without width. */
- (NSSize)scaledSizeForSize:(NSSize)size;

@end

NS_ASSUME_NONNULL_END
