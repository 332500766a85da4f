/*
 * Between AppKit bitmaps and Core Image images (declared by AppKit's
 * NSCIImageRep.h on Apple's systems).
 *
 * Not covered: NSCIImageRep itself.
 */
#ifndef TALVO_NSCIIMAGEREP_H
#define TALVO_NSCIIMAGEREP_H

#import <AppKit/AppKit.h>
#import <CoreImage/CIImage.h>

NS_ASSUME_NONNULL_BEGIN

@interface CIImage (NSAppKitAdditions)
/** The bitmap's pixels, with extent (0, 0, pixelsWide, pixelsHigh). A
 * premultiplied 8-bit RGBA bitmap is retained and its pixels are read where
 * they are when the image is rendered (change them only after); any other
 * depth, layout or alpha is converted to premultiplied 8-bit RGBA at once.
 * nil for nil, for an object that is not an NSBitmapImageRep and for a
 * bitmap without pixels. */
- (nullable instancetype)initWithBitmapImageRep:(NSBitmapImageRep *)bitmapImageRep;
@end

@interface NSBitmapImageRep (NSAppKitAdditions)
/** Renders the image's extent (made integral) into a new 8-bit RGBA
 * bitmap, premultiplied, of that many pixels, whose point size equals its
 * pixel size. nil for nil, for an infinite or empty extent, or one too large
 * (more than 32768 pixels on a side or 2^28 pixels). */
- (nullable instancetype)initWithCIImage:(CIImage *)ciImage;
@end

NS_ASSUME_NONNULL_END

#endif
