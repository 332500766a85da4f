#import <Talvo/NSColor+Transform.h>

#include "core/colors/ColorMath.hpp"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

using talvo::colors::Hsb;

// The receiver in device RGB as hue, saturation, brightness and alpha; NO
// when it has no RGB form (a pattern colour, say).
static BOOL ReadDeviceHSB(NSColor *color, Hsb *hsb, double *alpha) {
  NSColor *rgb = nil;
  @try {
    rgb = [color colorUsingColorSpaceName:NSDeviceRGBColorSpace];
  } @catch (NSException *exception) {
    rgb = nil;
  }
  if (rgb == nil) {
    return NO;
  }
  *hsb = talvo::colors::HsbFromRgb({[rgb redComponent], [rgb greenComponent], [rgb blueComponent]});
  *alpha = [rgb alphaComponent];
  return YES;
}

static NSColor *CalibratedHSB(const Hsb &hsb, double alpha) {
  return [NSColor colorWithCalibratedHue:hsb.h saturation:hsb.s brightness:hsb.b alpha:alpha];
}

@implementation NSColor (transform)

- (BOOL)isDarkerThan:(double)level {
  NSColor *white = nil;
  @try {
    white = [self colorUsingColorSpaceName:NSCalibratedWhiteColorSpace];
  } @catch (NSException *exception) {
    white = nil;
  }
  if (white == nil) {
    return NO;
  }
  return talvo::colors::IsDarkerThan([white whiteComponent], level) ? YES : NO;
}

- (NSColor *)darkerColor {
  Hsb hsb;
  double alpha;
  if (!ReadDeviceHSB(self, &hsb, &alpha)) {
    return self;
  }
  return CalibratedHSB(talvo::colors::Darker(hsb), alpha);
}

- (NSColor *)lighterColor {
  Hsb hsb;
  double alpha;
  if (!ReadDeviceHSB(self, &hsb, &alpha)) {
    return self;
  }
  return CalibratedHSB(talvo::colors::Lighter(hsb), alpha);
}

- (NSColor *)lighterColor:(double)factor {
  Hsb hsb;
  double alpha;
  if (!ReadDeviceHSB(self, &hsb, &alpha)) {
    return self;
  }
  return CalibratedHSB(talvo::colors::LighterBy(hsb, factor), alpha);
}

@end
