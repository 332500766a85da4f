#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

/** Checkerboard pattern colours, for showing transparency. */
@interface NSColor (checkboard)

/** The shared checkerboard of calibrated white 0.74 and 0.97 in 8-point
 * squares, made on first use (main thread). */
+ (NSColor *)standardCheckerboardColor;

/** A new pattern colour whose 2w x 2w tile holds `firstColor` in its
 * bottom-left and top-right squares and `secondColor` in the other two.
 * @param width The side of a square, in points.
 * @return nil when the pattern cannot be made (a nil colour, a width that is
 * not above 0). */
+ (nullable NSColor *)checkerboardColorWithFirstColor:(NSColor *)firstColor
                                          secondColor:(NSColor *)secondColor
                                          squareWidth:(double)width;

@end

NS_ASSUME_NONNULL_END
