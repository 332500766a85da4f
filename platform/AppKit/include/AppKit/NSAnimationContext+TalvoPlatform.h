/*
 * NSAnimationContext and animator proxies on GNUstep.
 *
 * GNUstep's NSAnimationContext is all stubs; the platform layer replaces
 * them. Each thread has a stack of contexts, with an implicit outermost one
 * outside any group; +beginGrouping pushes a copy of the current context
 * (duration 0.25 s by default) and +endGrouping pops it, restoring the
 * enclosing settings. A context is a Core Animation transaction: the same
 * duration and timing function apply to layer actions inside the group.
 *
 * A group's completion handler runs once, on the main thread, after every
 * animation started inside the group (nested groups included) has ended,
 * finished or interrupted by a newer animation of the same key; when the
 * group started none, at the end of the run-loop turn in which the group
 * ended (never inside +endGrouping itself).
 *
 * Values set through an `animator` proxy animate only inside a group
 * (+beginGrouping or +runAnimationGroup:...) whose duration is above 0, and
 * only for keys with an animation (-animationForKey:); otherwise they are
 * set at once. macOS also animates outside any group, with the implicit
 * context's duration; Talvo sets at once there. An animation that has no
 * timing function of its own uses the context's, else
 * kCAMediaTimingFunctionDefault. A new animation of a key replaces the
 * running one and starts from the value showing at that moment. On every
 * frame the proxy calls the object's real setter (views move and resize,
 * windows are set with -setFrame:display:, constraints get -setConstant:
 * and so ask for a layout pass); when the animation ends the value that was
 * set through the proxy is applied exactly.
 *
 * Not covered: allowsImplicitAnimation affects layer actions only (setting
 * a view's frame directly does not animate), NSAnimatablePropertyContainer
 * for other classes, the async variants, animations of views' layers on
 * screen (layers do not composite here).
 */
#ifndef TALVO_PLATFORM_NSANIMATIONCONTEXT_H
#define TALVO_PLATFORM_NSANIMATIONCONTEXT_H

#import <AppKit/NSAnimationContext.h>
#import <QuartzCore/QuartzCore.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSAnimationContext (TalvoPlatform)

+ (void)runAnimationGroup:(void (^)(NSAnimationContext *context))changes;

/** nil unless set. */
- (nullable CAMediaTimingFunction *)timingFunction;
- (void)setTimingFunction:(nullable CAMediaTimingFunction *)timingFunction;
/** GNUstep declares the getter only. */
- (void)setCompletionHandler:(nullable void (^)(void))completionHandler;
/** NO by default: a view's backing layer then has no actions. */
- (BOOL)allowsImplicitAnimation;
- (void)setAllowsImplicitAnimation:(BOOL)flag;

@end

@protocol NSAnimatablePropertyContainer

/** A proxy: setters called on it inside an animation group animate. */
- (instancetype)animator;
/** Per-object animations by key, looked up before the class default. */
- (NSDictionary<NSString *, id> *)animations;
- (void)setAnimations:(nullable NSDictionary<NSString *, id> *)animations;
/** The object's `animations` entry, else the class's default. */
- (nullable id)animationForKey:(NSString *)key;
+ (nullable id)defaultAnimationForKey:(NSString *)key;

@end

NS_ASSUME_NONNULL_END

#endif
