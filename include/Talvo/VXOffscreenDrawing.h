#import <AppKit/AppKit.h>
#import <CoreGraphics/CoreGraphics.h>

#import <Talvo/TalvoExport.h>

NS_ASSUME_NONNULL_BEGIN

/**
 * Renders `drawingBlock` into a new RGBA bitmap (8 bits per component,
 * premultiplied alpha last) at the main screen's backing scale.
 *
 * Only the size of `rect` (points) is used: the bitmap is its width and
 * height times the scale, truncated to whole pixels. The block gets the
 * bitmap context, scaled so that it draws in points with the origin at the
 * bottom-left corner; while it runs, an NSGraphicsContext wrapping that
 * context (flipped YES, with no flip applied) is the current context, so
 * AppKit drawing lands there too. The previous current context is restored.
 * @return A new image the caller releases with CGImageRelease; NULL when
 * the size gives no pixels, the block is nil or raises.
 */
TALVO_EXTERN CGImageRef _Nullable CGCreateImageWithDrawingBlock(
    void (^_Nullable drawingBlock)(CGContextRef context), CGRect rect);

NS_ASSUME_NONNULL_END
