#import <AppKit/AppKit.h>
#import <Talvo/NSObject+TwoWayBinding.h>

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

// The binding's transformer when it can run in reverse: the one named by
// NSValueTransformerNameBindingOption, else NSValueTransformerBindingOption.
// NSNull stands for an unset option, as in AppKit; a binding without a
// transformer (no options, no entry, NSNull) writes the value itself, since
// writing nil to the model would lose the user's value.
static id TVReverseTransformer(id options) {
  if (![options isKindOfClass:[NSDictionary class]]) {
    return nil;
  }
  id transformer = nil;
  id name = [options objectForKey:NSValueTransformerNameBindingOption];
  if ([name isKindOfClass:[NSString class]]) {
    transformer = [NSValueTransformer valueTransformerForName:name];
  }
  if (transformer == nil) {
    transformer = [options objectForKey:NSValueTransformerBindingOption];
  }
  if (![transformer isKindOfClass:[NSValueTransformer class]] ||
      ![[transformer class] allowsReverseTransformation]) {
    return nil;
  }
  return transformer;
}

@implementation NSObject (twoWayBinding)

- (void)notifyBindedObjectChangeForKeyPath:(NSString *)binding {
  if (binding == nil) {
    return;
  }
  @try {
    NSDictionary *info = [self infoForBinding:binding];
    if (info == nil) {
      return;
    }
    id value = [self valueForKeyPath:binding];

    id transformer = TVReverseTransformer([info objectForKey:NSOptionsKey]);
    if (transformer != nil) {
      value = [transformer reverseTransformedValue:value];
    }

    id boundObject = [info objectForKey:NSObservedObjectKey];
    NSString *boundKeyPath = [info objectForKey:NSObservedKeyPathKey];
    if (boundObject == nil || boundKeyPath == nil) {
      return;
    }
    id current = [boundObject valueForKeyPath:boundKeyPath];
    if (current != value) {
      [boundObject setValue:value forKeyPath:boundKeyPath];
    }
  } @catch (NSException *exception) {
    // An unknown key on either side: nothing is written.
  }
}

@end
