#import <AppKit/AppKit.h>
#import <CoreGraphics/CoreGraphics.h>

#import <Talvo/TalvoExport.h>

NS_ASSUME_NONNULL_BEGIN

/**
 * The smallest rectangle of `image` that holds every pixel whose alpha is
 * nonzero, in pixels, with row 0 the top row of the image (the coordinates
 * CGImageCreateWithImageInRect takes).
 *
 * Images whose alpha info is none or none-skip-first are whole. Images of
 * four 8-bit components are scanned on their fourth byte (the padding byte
 * of none-skip-last images too); other layouts are first drawn into an
 * 8-bit RGBA bitmap, so an alpha under half a step of 8 bits counts as
 * transparent there.
 * @return CGRectZero when no pixel is filled, the image has no area or is
 * NULL.
 */
TALVO_EXTERN CGRect VXGetFilledRect(CGImageRef _Nullable image);

/**
 * The part of `image` inside VXGetFilledRect.
 * @return A new image the caller releases with CGImageRelease; NULL when no
 * pixel is filled or `image` is NULL.
 */
TALVO_EXTERN CGImageRef _Nullable VXCreateImageByTrimmingImage(CGImageRef _Nullable image);

NS_ASSUME_NONNULL_END
