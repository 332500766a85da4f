#import "windows/TVWindowServer+Private.h"

#include <CoreGraphics/CoreGraphics.h>

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

static NSArray *TVWindowArray(NSInteger windowNumber) {
  return [NSArray arrayWithObject:[NSNumber numberWithUnsignedInt:(CGWindowID)windowNumber]];
}

BOOL TVWindowServerBounds(NSInteger windowNumber, NSRect *bounds) {
  if (windowNumber <= 0 || bounds == NULL) {
    return NO;
  }
  NSArray *descriptions = (NSArray *)CGWindowListCreateDescriptionFromArray(
      (CFArrayRef)TVWindowArray(windowNumber));
  BOOL found = NO;
  if ([descriptions count] > 0) {
    id value = [[descriptions objectAtIndex:0] objectForKey:(NSString *)kCGWindowBounds];
    CGRect rect;
    if (value != nil && CGRectMakeWithDictionaryRepresentation((CFDictionaryRef)value, &rect)) {
      *bounds = rect;  // CGRect is NSRect here and on 64-bit AppKit
      found = YES;
    }
  }
  [descriptions release];
  return found;
}

CGImageRef TVWindowServerCreateImage(NSInteger windowNumber, NSRect bounds, BOOL withShadow) {
  if (windowNumber <= 0) {
    return NULL;
  }
  return CGWindowListCreateImageFromArray(
      bounds, (CFArrayRef)TVWindowArray(windowNumber),
      withShadow ? kCGWindowImageDefault : kCGWindowImageBoundsIgnoreFraming);
}
