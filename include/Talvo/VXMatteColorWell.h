#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

/**
 * A colour well with a flat matte look: a light gray gradient (upside down
 * while active), the colour swatch inset 5 points (3 when borderless) with
 * a 1-point light line below it, the swatch and the well outlined in mid
 * gray. The dirty rect is not used: the whole well draws.
 */
@interface VXMatteColorWell : NSColorWell {
  CGRect colorRect;
  CGRect borderRect;
}

/** Computes the swatch rects for a well loaded from an archive. */
- (void)awakeFromNib;
/** The inherited frame change, then the swatch rects follow the bounds. */
- (void)setFrame:(NSRect)frame;
/** The matte drawing. */
- (void)drawRect:(NSRect)dirtyRect;

@end

NS_ASSUME_NONNULL_END
