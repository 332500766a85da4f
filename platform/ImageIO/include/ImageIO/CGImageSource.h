/*
 * Image sources: PNG, JPEG, GIF, BMP, TIFF and WebP files or data.
 *
 * An image source is an Objective-C object: CFRetain/CFRelease (or
 * -retain/-release) manage it. A source made from a URL reads only the
 * blocks of the file its header needs until pixels (or a GIF's or TIFF's
 * image count) are asked for; properties come from the header alone. Images are decoded on request into 8-bit premultiplied RGB
 * images with alpha (kCGImageAlphaPremultipliedLast, or NoneSkipLast for
 * opaque formats), rows as stored: EXIF orientation is reported, not
 * applied. GIF frames are composed on the logical screen; TIFF
 * directories are separate images.
 * Options dictionaries are accepted and ignored. Not covered: incremental
 * loading, status queries, thumbnails, type hints, container properties,
 * animated WebP pixels (the first frame's canvas size is still reported),
 * HEIC and the other formats macOS reads.
 */
#ifndef TALVO_CGIMAGESOURCE_H
#define TALVO_CGIMAGESOURCE_H

#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CoreGraphics.h>

typedef struct CGImageSource *CGImageSourceRef;

/** A source reading a file URL (other schemes, a missing or unreadable
 * file, or a directory give NULL). The caller releases it. */
CG_EXTERN CGImageSourceRef CGImageSourceCreateWithURL(CFURLRef url, CFDictionaryRef options);
/** A source over `data` (retained, not copied); NULL for nil or empty data.
 * Data that is no image gives a source with no images. */
CG_EXTERN CGImageSourceRef CGImageSourceCreateWithData(CFDataRef data, CFDictionaryRef options);
/** The uniform type identifier of the source's format ("public.png"), or
 * NULL when the data is not an image of a known format. Not owned by the
 * caller. */
CG_EXTERN CFStringRef CGImageSourceGetType(CGImageSourceRef source);
/** The number of images: GIF frames and TIFF directories, 1 for other
 * formats, 0 when the header cannot be read. */
CG_EXTERN size_t CGImageSourceGetCount(CGImageSourceRef source);
/** A new dictionary (+1) of the image's properties (CGImageProperties.h),
 * read from the header without decoding; NULL past the last image. */
CG_EXTERN CFDictionaryRef CGImageSourceCopyPropertiesAtIndex(CGImageSourceRef source,
                                                             size_t index,
                                                             CFDictionaryRef options);
/** The decoded image at `index` (+1), or NULL when it cannot be decoded. */
CG_EXTERN CGImageRef CGImageSourceCreateImageAtIndex(CGImageSourceRef source, size_t index,
                                                     CFDictionaryRef options);

#endif
