#import <Talvo/NSGradient+GradientCell.h>

#import <Talvo/NSColor+Talvo.h>
#import <Talvo/NSColor+Transform.h>

#include "core/colors/ColorMath.hpp"
#import "support/TalvoLook.h"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

using talvo::colors::ColorValue;
using talvo::colors::Look;
using talvo::colors::Preset;
using talvo::colors::PresetColors;
using talvo::colors::PresetEnd;
using talvo::colors::Space;

static NSColor *ColorFromValue(const ColorValue &value) {
  switch (value.space) {
    case Space::DeviceWhite:
      return [NSColor colorWithDeviceWhite:value.c0 alpha:value.alpha];
    case Space::CalibratedWhite:
      return [NSColor colorWithCalibratedWhite:value.c0 alpha:value.alpha];
    case Space::DeviceRGB:
      return [NSColor colorWithDeviceRed:value.c0 green:value.c1 blue:value.c2 alpha:value.alpha];
    case Space::CalibratedRGB:
    default:
      return [NSColor colorWithCalibratedRed:value.c0
                                       green:value.c1
                                        blue:value.c2
                                       alpha:value.alpha];
  }
}

static NSColor *ColorFromEnd(const PresetEnd &end) {
  if (!end.fromSelection) {
    return ColorFromValue(end.color);
  }
  // Through the platform colour, so the lighter rule reads it as drawing does.
  NSColor *selected = [NSColor selectedColor];
  return end.lighterFactor > 0.0 ? [selected lighterColor:end.lighterFactor] : selected;
}

// A new gradient, +1.
static NSGradient *NewPresetGradient(Preset preset, BOOL newerLook) {
  PresetColors colors =
      talvo::colors::PresetGradientColors(preset, newerLook ? Look::Newer : Look::Older);
  return [[NSGradient alloc] initWithStartingColor:ColorFromEnd(colors.start)
                                       endingColor:ColorFromEnd(colors.end)];
}

@implementation NSGradient (gradientCell)

// Plain nil tests: the first calls belong to the main thread, as drawing
// does. Each gradient keeps the look it was made in.
+ (NSGradient *)grayGradient {
  static NSGradient *gray = nil;
  if (gray == nil) {
    gray = NewPresetGradient(Preset::Gray, TalvoUsesNewerLook());
  }
  return gray;
}

+ (NSGradient *)lightGrayGradient {
  static NSGradient *lightGray = nil;
  if (lightGray == nil) {
    lightGray = NewPresetGradient(Preset::LightGray, TalvoUsesNewerLook());
  }
  return lightGray;
}

+ (NSGradient *)blueGradient {
  static NSGradient *blue = nil;
  if (blue == nil) {
    blue = NewPresetGradient(Preset::Blue, TalvoUsesNewerLook());
  }
  return blue;
}

+ (NSGradient *)grayGradientForNewerLook:(BOOL)newerLook {
  return [NewPresetGradient(Preset::Gray, newerLook) autorelease];
}

+ (NSGradient *)lightGrayGradientForNewerLook:(BOOL)newerLook {
  return [NewPresetGradient(Preset::LightGray, newerLook) autorelease];
}

+ (NSGradient *)blueGradientForNewerLook:(BOOL)newerLook {
  return [NewPresetGradient(Preset::Blue, newerLook) autorelease];
}

@end
