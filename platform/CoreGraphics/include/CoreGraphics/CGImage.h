/*
 * Immutable images and image masks.
 *
 * Sample layouts: RGB with 8 or 16 bits per component (24/32/48/64 bpp,
 * any alpha placement, premultiplied or not), gray with 1, 2, 4, 8 or 16
 * bits (8/16 with an alpha slot), alpha-only 8 bit; byte orders default,
 * 16/32 big and little. Image masks take 1, 2, 4 or 8 bits per sample, or
 * 8-bit samples in 16, 24 or 32-bit pixels (grey + alpha, RGB, RGBA/RGBX as
 * bitmap contexts store them), where each pixel's grey level is its sample;
 * a sample of 1 keeps paint out. Unsupported layouts make the create
 * functions answer NULL.
 * Not covered: float components, packed 5-5-5 and 10-bit formats, indexed,
 * CMYK and Lab images, decode arrays, rendering intents, masking colours,
 * CGImageCreateWithMask.
 */
#ifndef TALVO_CGIMAGE_H
#define TALVO_CGIMAGE_H

#include <CoreGraphics/CGColorSpace.h>
#include <CoreGraphics/CGDataProvider.h>
#include <CoreGraphics/CGGeometry.h>

// GNUstep's <AppKit/NSImageRep.h> declares the same type.
typedef struct CGImage *CGImageRef;

typedef enum CGImageAlphaInfo {
  kCGImageAlphaNone = 0,
  kCGImageAlphaPremultipliedLast = 1,
  kCGImageAlphaPremultipliedFirst = 2,
  kCGImageAlphaLast = 3,
  kCGImageAlphaFirst = 4,
  kCGImageAlphaNoneSkipLast = 5,
  kCGImageAlphaNoneSkipFirst = 6,
  kCGImageAlphaOnly = 7
} CGImageAlphaInfo;

typedef uint32_t CGBitmapInfo;
enum {
  kCGBitmapAlphaInfoMask = 0x1F,
  kCGBitmapFloatInfoMask = 0xF00,
  kCGBitmapFloatComponents = (1 << 8),
  kCGBitmapByteOrderMask = 0x7000,
  kCGBitmapByteOrderDefault = (0 << 12),
  kCGBitmapByteOrder16Little = (1 << 12),
  kCGBitmapByteOrder32Little = (2 << 12),
  kCGBitmapByteOrder16Big = (3 << 12),
  kCGBitmapByteOrder32Big = (4 << 12)
};

#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
#define kCGBitmapByteOrder16Host kCGBitmapByteOrder16Little
#define kCGBitmapByteOrder32Host kCGBitmapByteOrder32Little
#else
#define kCGBitmapByteOrder16Host kCGBitmapByteOrder16Big
#define kCGBitmapByteOrder32Host kCGBitmapByteOrder32Big
#endif

typedef enum CGColorRenderingIntent {
  kCGRenderingIntentDefault,
  kCGRenderingIntentAbsoluteColorimetric,
  kCGRenderingIntentRelativeColorimetric,
  kCGRenderingIntentPerceptual,
  kCGRenderingIntentSaturation
} CGColorRenderingIntent;

// `decode` must be NULL; `intent` is ignored. The provider's bytes are
// copied.
CG_EXTERN CGImageRef CGImageCreate(size_t width, size_t height, size_t bitsPerComponent,
                                   size_t bitsPerPixel, size_t bytesPerRow,
                                   CGColorSpaceRef space, CGBitmapInfo bitmapInfo,
                                   CGDataProviderRef provider, const CGFloat *decode,
                                   bool shouldInterpolate, CGColorRenderingIntent intent);
CG_EXTERN CGImageRef CGImageMaskCreate(size_t width, size_t height, size_t bitsPerComponent,
                                       size_t bitsPerPixel, size_t bytesPerRow,
                                       CGDataProviderRef provider, const CGFloat *decode,
                                       bool shouldInterpolate);
// `rect` in pixels from the top-left, rounded out and clipped to the image.
CG_EXTERN CGImageRef CGImageCreateWithImageInRect(CGImageRef image, CGRect rect);
CG_EXTERN CGImageRef CGImageCreateCopy(CGImageRef image);
CG_EXTERN CGImageRef CGImageRetain(CGImageRef image);
CG_EXTERN void CGImageRelease(CGImageRef image);

CG_EXTERN bool CGImageIsMask(CGImageRef image);
CG_EXTERN size_t CGImageGetWidth(CGImageRef image);
CG_EXTERN size_t CGImageGetHeight(CGImageRef image);
CG_EXTERN size_t CGImageGetBitsPerComponent(CGImageRef image);
CG_EXTERN size_t CGImageGetBitsPerPixel(CGImageRef image);
CG_EXTERN size_t CGImageGetBytesPerRow(CGImageRef image);
CG_EXTERN CGImageAlphaInfo CGImageGetAlphaInfo(CGImageRef image);
CG_EXTERN CGBitmapInfo CGImageGetBitmapInfo(CGImageRef image);
CG_EXTERN bool CGImageGetShouldInterpolate(CGImageRef image);
// Not owned by the caller. NULL for an image mask.
CG_EXTERN CGColorSpaceRef CGImageGetColorSpace(CGImageRef image);
// Not owned by the caller; holds the image's bytes.
CG_EXTERN CGDataProviderRef CGImageGetDataProvider(CGImageRef image);

#endif
