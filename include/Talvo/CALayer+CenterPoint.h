#import <AppKit/AppKit.h>
#import <QuartzCore/QuartzCore.h>

NS_ASSUME_NONNULL_BEGIN

/** Where a layer's anchor point lies relative to the centre of its frame. */
@interface CALayer (centerPoint)

/** ((ax - 0.5) x w, (ay - 0.5) x h) for an unflipped layer and
 * ((ax - 0.5) x w, (0.5 - ay) x h) for a geometry-flipped one, with
 * (ax, ay) the anchor point and w x h the frame's size. */
- (NSSize)centerPointOffset;

@end

NS_ASSUME_NONNULL_END
