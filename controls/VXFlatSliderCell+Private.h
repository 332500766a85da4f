// The flat slider's artwork and pressed state, for tests and the gallery.
#import <Talvo/VXFlatSliderCell.h>

NS_ASSUME_NONNULL_BEGIN

@interface VXFlatSliderCell (Private)
/** Replaces the class-wide artwork: keys are the resource names
 * ("trackCapLeft", "trackFill", "trackCapLeftOff", "trackFillOff",
 * "trackCapRightOff", "knobHover", "knobNormal"); a missing key leaves
 * that image nil. nil goes back to the bundle's artwork. */
+ (void)_setArtworkForTesting:(nullable NSDictionary<NSString *, NSImage *> *)artwork;
/** The current artwork image for a resource name. */
+ (nullable NSImage *)_artworkNamed:(NSString *)name;
- (BOOL)_isPressed;
@end

NS_ASSUME_NONNULL_END
