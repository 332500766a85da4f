/*
 * Animations: what to animate and how, added to a layer (or, through
 * AppKit's animator proxies, to a view, window or constraint).
 *
 * A layer keeps a copy of each animation added to it, as Core Animation
 * does. Values that animate are NSNumbers and NSValues holding an NSPoint,
 * NSSize or NSRect (CGPoint, CGSize, CGRect); other values do not blend:
 * the start value holds until the end.
 *
 * Not covered: CAAnimationGroup, CATransition, CASpringAnimation,
 * valueFunction, rotationMode (stored, not applied), the cubic calculation
 * modes (kCAAnimationCubic runs as linear, kCAAnimationCubicPaced as paced)
 * and tensionValues/continuityValues/biasValues, archiving.
 */
#ifndef TALVO_CAANIMATION_H
#define TALVO_CAANIMATION_H

#import <QuartzCore/CABase.h>
#import <QuartzCore/CAMediaTiming.h>
#import <QuartzCore/CAMediaTimingFunction.h>

NS_ASSUME_NONNULL_BEGIN

@class CAAnimation;

@protocol CAAnimationDelegate <NSObject>
@optional
/** Sent on the first frame at or after the animation's begin time. */
- (void)animationDidStart:(CAAnimation *)animation;
/** Sent once: `finished` is YES when the animation ran to its end, NO when
 * it was removed or replaced first. */
- (void)animationDidStop:(CAAnimation *)animation finished:(BOOL)finished;
@end

@interface CAAnimation : NSObject <NSCopying, CAMediaTiming> {
  CFTimeInterval _beginTime;
  CFTimeInterval _duration;
  float _speed;
  CFTimeInterval _timeOffset;
  float _repeatCount;
  CFTimeInterval _repeatDuration;
  BOOL _autoreverses;
  NSString *_fillMode;
  CAMediaTimingFunction *_timingFunction;
  id<CAAnimationDelegate> _delegate;
  BOOL _removedOnCompletion;
}

+ (instancetype)animation;

/** nil (linear pacing) by default. */
@property(nonatomic, retain, nullable) CAMediaTimingFunction *timingFunction;
/** Retained, as Core Animation does (a known exception to the delegate
 * rule). */
@property(nonatomic, retain, nullable) id<CAAnimationDelegate> delegate;
/** YES by default: a finished animation leaves its layer. */
@property(nonatomic, assign, getter=isRemovedOnCompletion) BOOL removedOnCompletion;

@end

@interface CAPropertyAnimation : CAAnimation {
  NSString *_keyPath;
  BOOL _additive;
  BOOL _cumulative;
}

+ (instancetype)animationWithKeyPath:(nullable NSString *)path;

/** The animated property: a key, or a key and a field ("position.x",
 * "bounds.size.width") of the layer properties that are structures. */
@property(nonatomic, copy, nullable) NSString *keyPath;
/** Adds the animated value to the underlying one. */
@property(nonatomic, assign, getter=isAdditive) BOOL additive;
/** Each repeat starts where the previous one ended. */
@property(nonatomic, assign, getter=isCumulative) BOOL cumulative;

@end

/**
 * A two-value animation. The values used, as in Core Animation: from and
 * to; from and from+by; to-by and to; from and the current value; the
 * presented value and to; the presented value and presented+by; with none,
 * the presented value and the current (model) value. The presented value is
 * read when the animation is added, the current value on every frame.
 */
@interface CABasicAnimation : CAPropertyAnimation {
  id _fromValue;
  id _toValue;
  id _byValue;
}

@property(nonatomic, retain, nullable) id fromValue;
@property(nonatomic, retain, nullable) id toValue;
@property(nonatomic, retain, nullable) id byValue;

@end

CA_EXTERN NSString *const kCAAnimationLinear;
CA_EXTERN NSString *const kCAAnimationDiscrete;
CA_EXTERN NSString *const kCAAnimationPaced;
CA_EXTERN NSString *const kCAAnimationCubic;
CA_EXTERN NSString *const kCAAnimationCubicPaced;

CA_EXTERN NSString *const kCAAnimationRotateAuto;
CA_EXTERN NSString *const kCAAnimationRotateAutoReverse;

/**
 * Keyframes: `values` (or the end points of `path`, which wins when set) at
 * `keyTimes` (fractions of the duration; evenly spaced when missing or when
 * their count does not fit). Linear mode blends neighbours; discrete mode
 * holds each value until the next key time (keyTimes may have one entry
 * per value, or one more); paced mode moves at constant speed and ignores
 * keyTimes and timingFunctions. `timingFunctions` has one entry per segment
 * (values - 1) and eases within it, after the animation's own timing
 * function. A path's curves are followed by their curve parameter (linear)
 * or by length (paced); a move inside the path is a jump.
 */
@interface CAKeyframeAnimation : CAPropertyAnimation {
  NSArray *_values;
  CGPathRef _path;
  NSArray<NSNumber *> *_keyTimes;
  NSArray<CAMediaTimingFunction *> *_timingFunctions;
  NSString *_calculationMode;
  NSString *_rotationMode;
}

@property(nonatomic, copy, nullable) NSArray *values;
/** Retained (CGPathRetain). Animates points: use with "position". */
@property(nonatomic, assign, nullable) CGPathRef path;
@property(nonatomic, copy, nullable) NSArray<NSNumber *> *keyTimes;
@property(nonatomic, copy, nullable) NSArray<CAMediaTimingFunction *> *timingFunctions;
/** kCAAnimationLinear by default. */
@property(nonatomic, copy) NSString *calculationMode;
@property(nonatomic, copy, nullable) NSString *rotationMode;

@end

NS_ASSUME_NONNULL_END

#endif
