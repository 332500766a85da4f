#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSEvent (shortcuts)

/**
 * Installs a local monitor for key-down events that calls `handler` only for
 * one key equivalent: every flag of `modifierFlags` (device-independent
 * flags only; 0 matches any modifiers) must be held, and the event's
 * charactersIgnoringModifiers must equal `keyEquivalent` exactly (nil
 * matches any key). Other events pass unchanged. The handler's result
 * replaces the event; nil swallows it.
 * @return the monitor, to be passed to +[NSEvent removeMonitor:]; nil for a
 * nil handler.
 */
+ (nullable id)addLocalMonitorForEventsMatchingKeyEquivalent:(nullable NSString *)keyEquivalent
                                           withModifierFlags:(uint64_t)modifierFlags
                                                     handler:(NSEvent *_Nullable (^)(NSEvent *event))handler;

@end

NS_ASSUME_NONNULL_END
