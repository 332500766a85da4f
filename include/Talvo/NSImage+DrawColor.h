#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSImage (drawColor)

/**
 * Fills `rect` of the current graphics context with `color` where the
 * receiver, stretched over `rect` and used as a mask, is opaque (by its
 * alpha): a tint of a template-like image. With `flipped` YES the mask is
 * mirrored vertically within `rect`, for flipped views. The graphics state
 * is left as it was found; without a current context, a colour or pixels,
 * nothing is drawn.
 */
- (void)drawColor:(NSColor *)color inRect:(NSRect)rect flipped:(BOOL)flipped;

@end

NS_ASSUME_NONNULL_END
