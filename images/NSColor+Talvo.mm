#import <Talvo/NSColor+Talvo.h>

#include <dispatch/dispatch.h>

#include "core/colors/ColorMath.hpp"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

@implementation NSColor (talvo)

+ (NSColor *)selectedColor {
  static NSColor *selected = nil;
  static dispatch_once_t once;
  dispatch_once(&once, ^{
    const talvo::colors::ColorValue &value = talvo::colors::kSelectionColor;
    selected = [[NSColor colorWithCalibratedRed:value.c0
                                          green:value.c1
                                           blue:value.c2
                                          alpha:value.alpha] retain];
  });
  return selected;
}

@end
