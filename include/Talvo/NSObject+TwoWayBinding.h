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
 * bound side already holds that very object. The transformer is the one
 * named by NSValueTransformerNameBindingOption, else the
 * NSValueTransformerBindingOption object; a binding without one that allows
 * reverse transformation (no options at all, no entry, or NSNull, which
 * stands for an unset option) writes the receiver's value itself.
 */
- (void)notifyBindedObjectChangeForKeyPath:(NSString *)binding;

@end

NS_ASSUME_NONNULL_END
