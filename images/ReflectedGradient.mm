#import <Talvo/ReflectedGradient.h>

#include "core/colors/ColorMath.hpp"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

// sRGB where the platform has it; GNUstep 0.29 does not, and its gradients
// ignore the space anyway.
static NSColorSpace *SRGBColorSpace(void) {
  SEL selector = @selector(sRGBColorSpace);
  if ([NSColorSpace respondsToSelector:selector]) {
    return [NSColorSpace performSelector:selector];
  }
  return [NSColorSpace genericRGBColorSpace];
}

NSGradient *reflectedSizedGradientWithTargetColor(NSColor *targetColor, double size) {
  if (targetColor == nil) {
    return nil;
  }
  std::array<double, 4> stops = talvo::colors::ReflectedGradientLocations(size);
  NSGradient *gradient = nil;
  @try {
    NSColor *clear = [targetColor colorWithAlphaComponent:0.0];
    NSArray *colors = [NSArray arrayWithObjects:clear, targetColor, targetColor, clear, nil];
    CGFloat locations[4];
    for (size_t i = 0; i < 4; ++i) {
      locations[i] = stops[i];
    }
    if ([colors count] == 4) {
      gradient = [[[NSGradient alloc] initWithColors:colors
                                         atLocations:locations
                                          colorSpace:SRGBColorSpace()] autorelease];
    }
  } @catch (NSException *exception) {
    gradient = nil;
  }
  return gradient;
}

NSGradient *reflectedGradientWithTargetColor(NSColor *targetColor) {
  return reflectedSizedGradientWithTargetColor(targetColor, talvo::colors::kReflectedDefaultSize);
}
