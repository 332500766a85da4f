/*
 * Bitmap contexts: drawing into memory. Layouts: 8 bits per component,
 * RGB 32 bpp with premultiplied or skipped alpha first or last (byte order
 * default/32Big or 32Little), gray 8 bpp without alpha, alpha-only 8 bpp.
 * Other layouts (16-bit, float, non-premultiplied alpha) answer NULL. The
 * pixels are in the buffer when a drawing call returns (after AppKit
 * drawing into a wrapping NSGraphicsContext: after its -flushGraphics,
 * CGBitmapContextGetData or CGBitmapContextCreateImage).
 */
#ifndef TALVO_CGBITMAPCONTEXT_H
#define TALVO_CGBITMAPCONTEXT_H

#include <CoreGraphics/CGContext.h>

typedef void (*CGBitmapContextReleaseDataCallback)(void *releaseInfo, void *data);

// `data` NULL: the context allocates zeroed memory it owns. bytesPerRow 0
// picks one. `space` NULL is allowed only for kCGImageAlphaOnly.
CG_EXTERN CGContextRef CGBitmapContextCreate(void *data, size_t width, size_t height,
                                             size_t bitsPerComponent, size_t bytesPerRow,
                                             CGColorSpaceRef space, uint32_t bitmapInfo);
CG_EXTERN CGContextRef CGBitmapContextCreateWithData(
    void *data, size_t width, size_t height, size_t bitsPerComponent, size_t bytesPerRow,
    CGColorSpaceRef space, uint32_t bitmapInfo, CGBitmapContextReleaseDataCallback releaseCallback,
    void *releaseInfo);
// A snapshot of the pixels (+1); NULL for a context that is not a bitmap.
CG_EXTERN CGImageRef CGBitmapContextCreateImage(CGContextRef c);
CG_EXTERN void *CGBitmapContextGetData(CGContextRef c);
CG_EXTERN size_t CGBitmapContextGetWidth(CGContextRef c);
CG_EXTERN size_t CGBitmapContextGetHeight(CGContextRef c);
CG_EXTERN size_t CGBitmapContextGetBytesPerRow(CGContextRef c);
CG_EXTERN size_t CGBitmapContextGetBitsPerComponent(CGContextRef c);
CG_EXTERN size_t CGBitmapContextGetBitsPerPixel(CGContextRef c);
CG_EXTERN CGBitmapInfo CGBitmapContextGetBitmapInfo(CGContextRef c);
CG_EXTERN CGImageAlphaInfo CGBitmapContextGetAlphaInfo(CGContextRef c);
// Not owned by the caller.
CG_EXTERN CGColorSpaceRef CGBitmapContextGetColorSpace(CGContextRef c);

#endif
