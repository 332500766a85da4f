/*
 * Filters by name, configured with key-value coding and read through
 * `outputImage`. Three filters are known:
 *
 * - "CIAffineClamp": inputImage (CIImage), inputTransform (an
 *   NSAffineTransform, or an NSValue of a CGAffineTransform; default the
 *   identity). Only the identity transform is covered: with another the
 *   output is nil.
 * - "CILanczosScaleTransform": inputImage, inputScale (NSNumber, default 1),
 *   inputAspectRatio (NSNumber, default 1; scales x only). Scales must be
 *   positive finite numbers, else the output is nil. Samples outside the
 *   input's extent are transparent unless the input is clamped.
 * - "CICrop": inputImage, inputRectangle (CIVector x, y, width, height;
 *   default infinite).
 *
 * Unlike Core Image, a key the filter does not have is ignored (Core Image
 * raises NSUnknownKeyException), and a value of the wrong class makes the
 * output nil rather than raise.
 *
 * Not covered: the other built-in filters, filter attributes, categories
 * and localised names, filter generators and custom filters, archiving.
 */
#ifndef TALVO_CIFILTER_H
#define TALVO_CIFILTER_H

#import <CoreImage/CIBase.h>

@class CIImage;

NS_ASSUME_NONNULL_BEGIN

CI_EXTERN NSString *const kCIOutputImageKey;
CI_EXTERN NSString *const kCIInputImageKey;
CI_EXTERN NSString *const kCIInputScaleKey;
CI_EXTERN NSString *const kCIInputAspectRatioKey;
CI_EXTERN NSString *const kCIInputTransformKey;

@interface CIFilter : NSObject <NSCopying> {
  NSString *_name;
  NSMutableDictionary *_inputs;
}

/** A new filter with its defaults set; nil for a name not listed above. */
+ (nullable CIFilter *)filterWithName:(NSString *)name;

@property(nonatomic, copy, readonly) NSString *name;
@property(nonatomic, copy, readonly) NSArray<NSString *> *inputKeys;
@property(nonatomic, copy, readonly) NSArray<NSString *> *outputKeys;

/** The image the filter makes from its inputs; nil without an input image
 * or with an input it cannot use. A new recipe on every call. */
@property(nonatomic, readonly, nullable) CIImage *outputImage;

/** Sets every input but the image back to its default. */
- (void)setDefaults;

/** Inputs by key (nil removes); other keys are ignored. */
- (void)setValue:(nullable id)value forKey:(NSString *)key;
/** An input, or `outputImage` for kCIOutputImageKey; nil for other keys. */
- (nullable id)valueForKey:(NSString *)key;

@end

NS_ASSUME_NONNULL_END

#endif
