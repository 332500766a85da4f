#import <AppKit/AppKit.h>
#import <Talvo/NSObject+TwoWayBinding.h>

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

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

    // NSNull stands for a binding without a transformer; so do bindings made
    // without options, or whose options have no transformer entry at all:
    // writing nil to the model for them would lose the user's value.
    id transformer = [[info objectForKey:NSOptionsKey] objectForKey:NSValueTransformerBindingOption];
    if (transformer != nil && transformer != [NSNull null] &&
        [transformer respondsToSelector:@selector(reverseTransformedValue:)]) {
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
