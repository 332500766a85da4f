#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

/** A picture of a layer-backed view. */
@interface NSView (image)

/** The view's layer as it shows now (its presentation layer, so running
 * animations are included) rendered into an RGBA bitmap of bounds width x
 * height pixels (points taken as pixels, truncated). The caller owns the
 * result (CGImageRelease). NULL for an empty view, one without a layer, or
 * where layers cannot render. */
- (nullable CGImageRef)CGImageWithSubviews __attribute__((cf_returns_retained));

@end

NS_ASSUME_NONNULL_END
