#import <AppKit/AppKit.h>
#import <Talvo/TalvoExport.h>

NS_ASSUME_NONNULL_BEGIN

/** A new sRGB gradient of four stops: `targetColor` transparent at 0,
 * opaque at 0.5 - size and 0.5 + size, transparent at 1. `size` is the
 * half-width of the opaque band, passed on unchecked.
 * @return nil for a nil colour. */
TALVO_EXTERN NSGradient *_Nullable reflectedSizedGradientWithTargetColor(NSColor *targetColor,
                                                                         double size);

/** reflectedSizedGradientWithTargetColor with a size of 0.15: stops at 0,
 * 0.35, 0.65 and 1. */
TALVO_EXTERN NSGradient *_Nullable reflectedGradientWithTargetColor(NSColor *targetColor);

NS_ASSUME_NONNULL_END
