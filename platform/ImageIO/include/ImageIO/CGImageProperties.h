/*
 * The image property keys an image source answers. The values are the
 * keys' names, as on macOS ("PixelWidth", ...).
 * Covered: pixel width and height (integers), orientation (EXIF 1...8,
 * present only when the file states one), horizontal and vertical
 * resolution in dots per inch (doubles, present only when the file states
 * them), whether there is an alpha channel (a boolean number).
 * Not covered: the format dictionaries (kCGImagePropertyExifDictionary and
 * its kin), colour model, depth, profile name, GPS and IPTC data.
 */
#ifndef TALVO_CGIMAGEPROPERTIES_H
#define TALVO_CGIMAGEPROPERTIES_H

#include <CoreGraphics/CoreGraphics.h>

CG_EXTERN const CFStringRef kCGImagePropertyPixelWidth;
CG_EXTERN const CFStringRef kCGImagePropertyPixelHeight;
CG_EXTERN const CFStringRef kCGImagePropertyOrientation;
CG_EXTERN const CFStringRef kCGImagePropertyDPIWidth;
CG_EXTERN const CFStringRef kCGImagePropertyDPIHeight;
CG_EXTERN const CFStringRef kCGImagePropertyHasAlpha;

#endif
