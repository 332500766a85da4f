/*
 * <CoreImage/CoreImage.h> for Talvo on GNUstep: Talvo's stand-in for
 * Apple's Core Image, as much as resampling a bitmap takes. Images are lazy
 * recipes (a bitmap, clamped, scaled, cropped) in Core Image's coordinates
 * (origin bottom-left, y up, one unit per pixel) that are rendered, on the
 * CPU and in premultiplied 8-bit RGBA, when a bitmap is made from them
 * (-[NSBitmapImageRep initWithCIImage:]).
 *
 * Filters: "CIAffineClamp" (identity transform only), "CILanczosScaleTransform"
 * and "CICrop".
 *
 * Not provided at all: CIContext, CIKernel and kernel languages, CIColor,
 * CISampler, CIDetector, CIImageAccumulator, colour management (samples are
 * taken as device RGB; there is no working colour space), floating-point or
 * 16-bit working formats, the other built-in filters, filter attributes and
 * categories, archiving, GPU rendering.
 */
#ifndef TALVO_COREIMAGE_H
#define TALVO_COREIMAGE_H

#import <CoreImage/CIBase.h>
#import <CoreImage/CIFilter.h>
#import <CoreImage/CIImage.h>
#import <CoreImage/CIVector.h>
#import <CoreImage/NSCIImageRep.h>

#endif
