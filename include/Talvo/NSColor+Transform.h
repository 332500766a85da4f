#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

/** Colours derived from the receiver in hue, saturation and brightness.
 * Components are read in device RGB; results are calibrated colours. A
 * colour with no RGB or white form (a pattern) is returned as it is, and is
 * never darker than any level. */
@interface NSColor (transform)

/** YES exactly when `level` is above the receiver's calibrated white
 * component (equal answers NO). */
- (BOOL)isDarkerThan:(double)level;

/** Three quarters of the receiver's brightness. */
- (NSColor *)darkerColor;

/** Three quarters of the receiver's saturation: paler, not brighter. */
- (NSColor *)lighterColor;

/** Lighter by `factor`: a grey that is not black gains (1 - factor) of its
 * brightness (at most 1); a coloured colour keeps `factor` of its
 * saturation; black gets brightness 1 - factor (at least 0). */
- (NSColor *)lighterColor:(double)factor;

@end

NS_ASSUME_NONNULL_END
