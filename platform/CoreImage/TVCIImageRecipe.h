// The recipe behind a CIImage and its renderer, shared by the image, the
// filters and the AppKit bridge. Private to the Core Image stand-in.
#ifndef TALVO_TVCIIMAGERECIPE_H
#define TALVO_TVCIIMAGERECIPE_H

#import <CoreImage/CoreImage.h>

#include <cstddef>
#include <cstdint>

NS_ASSUME_NONNULL_BEGIN

// Whole pixels in Core Image coordinates (y up).
struct TVCIRegion {
  int64_t x, y, width, height;
};

// The largest bitmap a recipe renders into, on a side and in pixels.
constexpr int64_t kTVCIMaxSide = 32768;
constexpr int64_t kTVCIMaxPixels = int64_t(1) << 28;

@interface CIImage (TalvoRecipe)
/** The receiver clamped (identity transform), scaled or cropped. */
- (CIImage *)_clampedImage;
/** nil for scales that are not positive finite numbers. */
- (nullable CIImage *)_imageScaledByX:(CGFloat)scaleX y:(CGFloat)scaleY;
/** Renders `region` as premultiplied RGBA rows, the top row first, into
 * `pixels` (`bytesPerRow` apart). NO when memory runs out or a region is
 * beyond the limits. */
- (BOOL)_renderRegion:(TVCIRegion)region into:(uint8_t *)pixels bytesPerRow:(ptrdiff_t)bytesPerRow;
@end

// The whole-pixel hull of a finite rectangle; NO for an infinite, null or
// empty one, or one beyond +-2^40.
BOOL TVCIRegionForRect(CGRect rect, TVCIRegion *region) __attribute__((visibility("hidden")));

NS_ASSUME_NONNULL_END

#endif
