#import <Talvo/NSEvent+Shortcuts.h>

#include "core/bindings/KeyEquivalent.hpp"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

@implementation NSEvent (shortcuts)

+ (id)addLocalMonitorForEventsMatchingKeyEquivalent:(NSString *)keyEquivalent
                                  withModifierFlags:(uint64_t)modifierFlags
                                            handler:(NSEvent * (^)(NSEvent *))handler {
  if (handler == nil) {
    return nil;
  }
  // The monitor's block keeps copies of both for the monitor's lifetime.
  NSString *key = [[keyEquivalent copy] autorelease];
  return [NSEvent addLocalMonitorForEventsMatchingMask:NSEventMaskKeyDown
                                               handler:^NSEvent *(NSEvent *event) {
                                                 if (!talvo::bindings::ModifiersMatch(
                                                         modifierFlags, [event modifierFlags])) {
                                                   return event;
                                                 }
                                                 if (key != nil &&
                                                     ![[event charactersIgnoringModifiers]
                                                         isEqualToString:key]) {
                                                   return event;
                                                 }
                                                 return handler(event);
                                               }];
}

@end
