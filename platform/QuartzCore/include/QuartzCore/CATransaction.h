/*
 * Transactions group property changes and animations. Each thread has a
 * stack of transactions; outside any explicit +begin/+commit an implicit
 * transaction is open and commits at the end of the run-loop turn.
 * Settings are inherited from the enclosing transaction and restored by
 * +commit. NSAnimationContext groups are transactions of the same stack:
 * a context's duration, timing function and completion are its
 * transaction's.
 *
 * The completion block runs once, on the main thread, when every animation
 * added during the transaction (nested transactions included) has finished
 * or been removed; if none was added, at the end of the run-loop turn in
 * which the transaction commits (Core Animation says "immediately"; running
 * it from the run loop keeps it after the code that committed).
 *
 * Not covered: +flush does nothing (there is no render tree to update),
 * +lock/+unlock, kCATransactionAnimationDuration etc. are accepted by
 * +valueForKey:/+setValue:forKey: but no other keys are stored.
 */
#ifndef TALVO_CATRANSACTION_H
#define TALVO_CATRANSACTION_H

#import <QuartzCore/CABase.h>
#import <QuartzCore/CAMediaTimingFunction.h>

NS_ASSUME_NONNULL_BEGIN

CA_EXTERN NSString *const kCATransactionAnimationDuration;
CA_EXTERN NSString *const kCATransactionDisableActions;
CA_EXTERN NSString *const kCATransactionAnimationTimingFunction;
CA_EXTERN NSString *const kCATransactionCompletionBlock;

@interface CATransaction : NSObject

+ (void)begin;
/** Ends the innermost explicit transaction; ignored (logged) without one. */
+ (void)commit;
+ (void)flush;

/** 0.25 s unless set. */
+ (CFTimeInterval)animationDuration;
+ (void)setAnimationDuration:(CFTimeInterval)duration;
/** nil unless set: implicit animations then use kCAMediaTimingFunctionDefault. */
+ (nullable CAMediaTimingFunction *)animationTimingFunction;
+ (void)setAnimationTimingFunction:(nullable CAMediaTimingFunction *)function;
+ (BOOL)disableActions;
+ (void)setDisableActions:(BOOL)flag;
+ (nullable void (^)(void))completionBlock;
+ (void)setCompletionBlock:(nullable void (^)(void))block;

+ (nullable id)valueForKey:(NSString *)key;
+ (void)setValue:(nullable id)value forKey:(NSString *)key;

@end

NS_ASSUME_NONNULL_END

#endif
