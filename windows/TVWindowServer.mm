#import "windows/TVWindowServer+Private.h"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

// Pending the platform's window list: no description, no picture.
BOOL TVWindowServerBounds(NSInteger windowNumber, NSRect *bounds) {
  return NO;
}

CGImageRef TVWindowServerCreateImage(NSInteger windowNumber, NSRect bounds, BOOL withShadow) {
  return NULL;
}
