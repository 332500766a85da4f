// Running animations, animation groups and the transaction stack: private
// to the platform layer (Core Animation and AppKit's animator proxies).
#ifndef TALVO_PLATFORM_ANIMATION_TRACK_H
#define TALVO_PLATFORM_ANIMATION_TRACK_H

#import <QuartzCore/QuartzCore.h>

#import "platform/QuartzCore/TVAnimationClock.h"

NS_ASSUME_NONNULL_BEGIN

@class _TVAnimationTrack;

// What an animation runs on: a layer, or an AppKit object's key.
@protocol _TVAnimationHost <NSObject>
/** The current (model) value the animation reads for missing end values. */
- (nullable id)_tv_baseValueForTrack:(_TVAnimationTrack *)track;
/** Called each frame for hosts that apply values themselves. */
- (void)_tv_animationTrack:(_TVAnimationTrack *)track showsValue:(nullable id)value;
/** The track stopped: ran to its end (`finished`) or was removed. */
- (void)_tv_animationTrackDidEnd:(_TVAnimationTrack *)track finished:(BOOL)finished;
@end

// Counts the animations started while a transaction (or animation
// context) was open, and runs its completion blocks once all have ended
// and the transaction has committed.
@interface _TVAnimationGroup : NSObject {
 @public
  NSUInteger _pending;
  BOOL _committed;
  BOOL _fired;
  NSMutableArray *_completions;
}
- (void)addCompletion:(void (^)(void))block;
- (void)trackStarted;
- (void)trackEnded;
/** No more animations join; completes now if they have all ended (at the
 * end of the run-loop turn if none ever started). */
- (void)commit;
@end

// Told when its transaction ends (an NSAnimationContext keeps its values).
@protocol _TVTransactionClient <NSObject>
- (void)_tv_transactionDidEnd;
@end

// One level of the per-thread transaction stack.
@interface _TVTransactionFrame : NSObject {
 @public
  CFTimeInterval _duration;
  CAMediaTimingFunction *_timingFunction;
  BOOL _disableActions;
  BOOL _allowsImplicitAnimation;
  BOOL _implicit;  // the bottom frame, committed at the end of a run-loop turn
  BOOL _implicitCommitScheduled;
  id _completionBlock;  // CATransaction's
  id _contextCompletionHandler;  // NSAnimationContext's
  _TVAnimationGroup *_group;
  id<_TVTransactionClient> _client;  // the NSAnimationContext, retained
}
@end

#ifdef __cplusplus
extern "C" {
#endif

#define TV_ANIMATION_HIDDEN __attribute__((visibility("hidden")))

/** The innermost transaction of this thread (the implicit one outside any
 * +begin). */
TV_ANIMATION_HIDDEN _TVTransactionFrame *TVCurrentTransaction(void);
/** Explicit transactions open on this thread. */
TV_ANIMATION_HIDDEN NSUInteger TVExplicitTransactionDepth(void);
/** Every open transaction of this thread, the implicit one first. */
TV_ANIMATION_HIDDEN NSArray *TVOpenTransactions(void);
TV_ANIMATION_HIDDEN void TVBeginTransaction(void);
/** NO when no explicit transaction was open. */
TV_ANIMATION_HIDDEN BOOL TVCommitTransaction(void);
/** Marks the implicit transaction as used, so it commits at the end of the
 * run-loop turn. */
TV_ANIMATION_HIDDEN void TVTouchImplicitTransaction(void);

/** The timing function implicit and animator animations use when neither
 * they nor their transaction set one. */
TV_ANIMATION_HIDDEN CAMediaTimingFunction *TVImplicitTimingFunction(void);

/** Values that animate as components; NO for any other value. */
TV_ANIMATION_HIDDEN BOOL TVValueIsInterpolable(id _Nullable value);

TV_ANIMATION_HIDDEN void TVAnimationClockAddTrack(_TVAnimationTrack *track);
TV_ANIMATION_HIDDEN void TVAnimationClockRemoveTrack(_TVAnimationTrack *track);
TV_ANIMATION_HIDDEN CFTimeInterval TVAnimationClockNow(void);

#ifdef __cplusplus
}
#endif

// One animation running on a host.
@interface _TVAnimationTrack : NSObject {
 @public
  CAPropertyAnimation *_animation;  // the host's own copy
  NSString *_key;
  NSString *_keyPath;
  id<_TVAnimationHost> _host;  // not retained: the host ends its tracks before it goes
  BOOL _appliesValues;  // the host wants -showsValue: every frame
  CFTimeInterval _beginTime;
  CFTimeInterval _duration;
  id _presentedAtStart;
  NSMutableArray *_groups;
  BOOL _started;
  BOOL _ended;
}

/** Copies `animation`; begins at its beginTime, or now when that is 0; a
 * duration of 0 becomes the current transaction's. */
- (instancetype)initWithAnimation:(CAPropertyAnimation *)animation
                              key:(nullable NSString *)key
                             host:(id<_TVAnimationHost>)host
                 presentedAtStart:(nullable id)presented;

/** Joins every open transaction's group and the clock. */
- (void)start;

/** The animation's value at `time` over `base` (the value beneath it);
 * *contributes says whether it shows at all (active or filling). */
- (nullable id)valueAtTime:(CFTimeInterval)time
                      base:(nullable id)base
               contributes:(BOOL *)contributes;

/** The parent time at which the animation ends (infinite if never). */
- (CFTimeInterval)endTime;

/** Runs one clock frame: start notification, values, end. */
- (void)advanceToTime:(CFTimeInterval)time;

/** Stops the track once: leaves the clock, tells the host, the delegate
 * (when `notify`) and the groups. */
- (void)endFinished:(BOOL)finished notifyDelegate:(BOOL)notify;

@end

NS_ASSUME_NONNULL_END

#endif
