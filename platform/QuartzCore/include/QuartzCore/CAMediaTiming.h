/*
 * The timing model shared by animations.
 *
 * speed scales local time and timeOffset shifts it, without the wrap-around
 * Core Animation applies to an offset animation. Layers do not adopt this
 * protocol here: a layer's own timing is always the clock's.
 */
#ifndef TALVO_CAMEDIATIMING_H
#define TALVO_CAMEDIATIMING_H

#import <QuartzCore/CABase.h>

NS_ASSUME_NONNULL_BEGIN

@protocol CAMediaTiming

/** When the animation starts, in CACurrentMediaTime() seconds; 0 (the
 * default) starts it when it is added to a layer. */
@property(nonatomic, assign) CFTimeInterval beginTime;
/** One forward pass; 0 (the default) uses the transaction's duration,
 * 0.25 s unless changed, when the animation is added. */
@property(nonatomic, assign) CFTimeInterval duration;
@property(nonatomic, assign) float speed;
@property(nonatomic, assign) CFTimeInterval timeOffset;
/** Passes to play, may be fractional; HUGE_VALF repeats forever. */
@property(nonatomic, assign) float repeatCount;
@property(nonatomic, assign) CFTimeInterval repeatDuration;
@property(nonatomic, assign) BOOL autoreverses;
/** kCAFillModeRemoved (default), Forwards, Backwards or Both. */
@property(nonatomic, copy) NSString *fillMode;

@end

CA_EXTERN NSString *const kCAFillModeForwards;
CA_EXTERN NSString *const kCAFillModeBackwards;
CA_EXTERN NSString *const kCAFillModeBoth;
CA_EXTERN NSString *const kCAFillModeRemoved;

NS_ASSUME_NONNULL_END

#endif
