#import <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

/** The block a VXObservationCenter calls with the KVO change dictionary. */
typedef void (^VXObservationChangeHandler)(NSDictionary *change);

/**
 * A registry through which code observes a key path of an object with a
 * block instead of implementing the KVO callback itself.
 *
 * At most one handler is registered per (object, key path) pair. The center
 * does not retain the objects it observes, and keep handlers from retaining
 * the object they observe. Registrations end by themselves when either side
 * goes: an observed object that is deallocated while still observed is
 * dropped with its handlers (once its -dealloc reaches NSObject's), and a
 * center that is deallocated takes back its KVO registrations. Objects are
 * told apart by identity, never by -isEqual:.
 * Meant for one thread, the main thread as a rule; handlers run on the
 * thread that changed the property.
 */
@interface VXObservationCenter : NSObject {
  NSMapTable *_observedObjects;
}

/** The shared center, made on first use. */
+ (instancetype)sharedObservationCenter;

/** Registers `handler` (copied) for changes of `keyPath` of `object`, with
 * the KVO `options` passed on unchanged.
 * @return YES when the pair is newly registered; NO when a handler for the
 * pair exists already (the earlier handler stays) or an argument is nil. */
- (BOOL)observeKeyPath:(NSString *)keyPath
              ofObject:(id)object
               options:(NSKeyValueObservingOptions)options
         changeHandler:(VXObservationChangeHandler)handler;

/** Removes the handler of `keyPath` of `object`, or with a nil key path every
 * handler of `object`. Pairs that are not registered are ignored. */
- (void)unObserveKeyPath:(nullable NSString *)keyPath ofObject:(id)object;

/** The KVO callback: calls the registered handler with `change`, or passes
 * the call to NSObject when there is none. */
- (void)observeValueForKeyPath:(nullable NSString *)keyPath
                      ofObject:(nullable id)object
                        change:(nullable NSDictionary *)change
                       context:(nullable void *)context;

@end

NS_ASSUME_NONNULL_END
