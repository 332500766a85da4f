#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSImage (cap)

/**
 * A new image `leftCapWidth + middleWidth + rightCapWidth` points wide and
 * as high as the receiver: the receiver's first `leftCapWidth` and last
 * `rightCapWidth` points unscaled at the ends, and its own middle between
 * them filled across the rest by NSDrawThreePartImage.
 *
 * A piece of width 0 or less stays empty; a result of width 0 or less is
 * not drawn.
 */
- (NSImage *)imageWithleftCapWidth:(CGFloat)leftCapWidth
                       middleWidth:(CGFloat)middleWidth
                     rightCapWidth:(CGFloat)rightCapWidth;

@end

NS_ASSUME_NONNULL_END
