#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

/** Blocking frame animations of a window. Both return once the window has
 * reached its final frame; the run loop keeps turning meanwhile (events,
 * timers, redraws). `curve` is an NSAnimationCurve value (0 ease in and
 * out, 1 ease in, 2 ease out, 3 linear), passed through unchanged. */
@interface NSWindow (animation)

/** Animates the frame to `frame` over `duration` seconds. A duration of 0
 * (or a negative or non-finite one) sets the frame at once. A frame with a
 * non-finite component is ignored. */
- (void)setWithAnimationFrame:(NSRect)frame duration:(double)duration curve:(NSUInteger)curve;

/** Animates to a frame 8 % larger about the same centre in half the
 * duration, then to `frame` in the other half, with the same curve. */
- (void)setWithBounceAnimationFrame:(NSRect)frame duration:(double)duration curve:(NSUInteger)curve;

@end

NS_ASSUME_NONNULL_END
