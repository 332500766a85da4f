#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSBitmapImageRep (addons)

/** A new bitmap resampled from the receiver with Lanczos-3 (Core Image's
 * CIAffineClamp, CILanczosScaleTransform and CICrop): scale = max(W, H) /
 * max(pixelsWide, pixelsHigh), so that the aspect ratio stays and the
 * larger side of the result equals the larger side of `size`; the result is
 * floor(pixelsWide × scale) × floor(pixelsHigh × scale) pixels, 8-bit RGBA
 * premultiplied. The edges repeat outward while resampling, so borders do
 * not blend with transparency.
 *
 * @param size The target size; only its larger side counts.
 * @return The new bitmap, or nil for a size that is not positive and finite,
 * a receiver without pixels, or a result with no pixels. */
- (nullable NSBitmapImageRep *)imageRepWithSize:(NSSize)size;

/** The bitmap made by `imageRepWithData:` from the image's
 * `TIFFRepresentation`; nil for nil, for an object that is not an image or
 * an image that has no TIFF representation. */
+ (nullable NSBitmapImageRep *)imageRepWithImage:(NSImage *)image;

/** A new 8-bit RGBA bitmap of the first representation's pixel size on
 * which every representation, the first included, is drawn in order
 * (source over, no interpolation) at its own point size, centred on the
 * first's point size at whole-point offsets: representation R lands at
 * (floor((F.width − R.width) / 2), floor((F.height − R.height) / 2)) with F
 * the first's size. The canvas's points are its pixels.
 *
 * @param imageReps Representations; elements that are not image
 * representations, and representations whose point size is not positive or
 * beyond a million points on a side (with the first's size, all of them),
 * are passed over.
 * @return The canvas, or nil when the array is nil, empty or not an array,
 * when its first element is not an image representation, or when that has
 * no pixel size (pixelsWide or pixelsHigh <= 0). */
+ (nullable NSBitmapImageRep *)imageRepWithImageReps:(NSArray<NSImageRep *> *)imageReps;

@end

NS_ASSUME_NONNULL_END
