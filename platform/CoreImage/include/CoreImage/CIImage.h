/*
 * An image as a recipe: a bitmap (its pixels copied in, premultiplied
 * 8-bit RGBA), or a clamp, Lanczos scale or crop of another image. Nothing
 * is computed until a bitmap is made from it (NSCIImageRep.h).
 *
 * Coordinates are Core Image's: origin at the bottom-left, y up, one unit
 * per pixel. A bitmap's extent is (0, 0, pixels wide, pixels high); a
 * clamped image's extent is infinite (CGRectInfinite).
 *
 * Not covered: images from data, URLs, colours, textures, surfaces or
 * pixel buffers; properties and metadata; colour spaces (samples are taken
 * as device RGB); imageByApplyingTransform: and the other image operations
 * beyond cropping and clamping; sampling outside a bitmap's extent gives
 * transparent pixels, as on Apple's.
 */
#ifndef TALVO_CIIMAGE_H
#define TALVO_CIIMAGE_H

#import <CoreImage/CIBase.h>

NS_ASSUME_NONNULL_BEGIN

@interface CIImage : NSObject <NSCopying> {
  int _kind;
  CIImage *_input;
  NSData *_pixels;
  id _owner;
  size_t _pixelsWide;
  size_t _pixelsHigh;
  size_t _bytesPerRow;
  CGRect _extent;
  CGFloat _scaleX;
  CGFloat _scaleY;
}

/** nil for a NULL image or one too large to hold. */
+ (nullable instancetype)imageWithCGImage:(CGImageRef)image;
- (nullable instancetype)initWithCGImage:(CGImageRef)image;

/** The image's bounds; CGRectInfinite after a clamp, CGRectNull when a crop
 * leaves nothing. */
@property(nonatomic, readonly) CGRect extent;

/** The part of the receiver inside `rect` (a CICrop). */
- (CIImage *)imageByCroppingToRect:(CGRect)rect;

/** The receiver's edge pixels repeated outward without end (a CIAffineClamp
 * with the identity transform). The receiver's extent must be finite;
 * clamping an infinite image gives it back unchanged. */
- (CIImage *)imageByClampingToExtent;

@end

NS_ASSUME_NONNULL_END

#endif
