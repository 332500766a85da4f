#import "layout/VXConstraintSet.h"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

void VXReplaceConstraintSet(NSView *container, NSArray **slot, NSArray *constraints) {
  NSArray *old = *slot;
  if (old != nil) {
    [container removeConstraints:old];
  }
  *slot = [constraints retain];
  [old release];
  if (constraints != nil) {
    [container addConstraints:constraints];
  } else {
    [container setNeedsUpdateConstraints:YES];
  }
}
