#import <QuartzCore/QuartzCore.h>

NS_ASSUME_NONNULL_BEGIN

/** A path that shakes something left and right. */
@interface CAKeyframeAnimation (shake)

/** A new keyframe animation (autoreleased) whose `path` starts at the
 * frame's origin, goes ceil(`numberOfShakes`) times to origin.x - o and
 * origin.x + o (o = `vigour` x frame width, y unchanged), and closes back
 * to the origin. With `numberOfShakes` <= 0 the path is the origin alone.
 * Duration, key path and timing are the caller's to set. */
+ (CAKeyframeAnimation *)shakeAnimationInFrame:(NSRect)frame
                                    withVigour:(double)vigour
                              andNumberOfShake:(double)numberOfShakes;

@end

NS_ASSUME_NONNULL_END
