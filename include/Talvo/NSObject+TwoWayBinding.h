#import <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSObject (twoWayBinding)

/**
 * Pushes the receiver's current value of the property named `binding` back
 * to the object and key path the binding is bound to, through the binding's
 * value transformer in reverse, so that a binding also carries changes made
 * on the receiver's side. The binding and the property share one name.
 *
 * Nothing is written when the receiver has no such binding or when the
 * bound side already holds that very object. A binding whose options have
 * no transformer (no options at all, no entry, or NSNull) writes the
 * receiver's value itself.
 */
- (void)notifyBindedObjectChangeForKeyPath:(NSString *)binding;

@end

NS_ASSUME_NONNULL_END
