#import <Talvo/NSColor+Checkboard.h>

#include <cmath>

#include "core/colors/ColorMath.hpp"
#import "images/TVOffscreenLimits.h"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

using talvo::colors::CheckerboardTile;
using talvo::colors::Square;

@implementation NSColor (checkboard)

+ (NSColor *)standardCheckerboardColor {
  // Plain nil test: the first call belongs to the main thread, as drawing does.
  static NSColor *standard = nil;
  if (standard == nil) {
    const talvo::colors::ColorValue &first = talvo::colors::kCheckerboardFirst;
    const talvo::colors::ColorValue &second = talvo::colors::kCheckerboardSecond;
    standard =
        [[NSColor checkerboardColorWithFirstColor:[NSColor colorWithCalibratedWhite:first.c0
                                                                              alpha:first.alpha]
                                      secondColor:[NSColor colorWithCalibratedWhite:second.c0
                                                                              alpha:second.alpha]
                                      squareWidth:talvo::colors::kCheckerboardSquareWidth] retain];
  }
  return standard;
}

+ (NSColor *)checkerboardColorWithFirstColor:(NSColor *)firstColor
                                 secondColor:(NSColor *)secondColor
                                 squareWidth:(double)width {
  if (firstColor == nil || secondColor == nil || !(width > 0.0) || !std::isfinite(width)) {
    return nil;
  }
  CheckerboardTile tile = talvo::colors::CheckerboardTileFor(width);
  if (!TVOffscreenSizeAllowed(tile.size, tile.size)) {
    return nil;
  }
  NSImage *image = [[NSImage alloc] initWithSize:NSMakeSize(tile.size, tile.size)];
  NSColor *pattern = nil;
  @try {
    [image lockFocus];
    // The focus is given back whatever the colours do (a -set may raise).
    @try {
      [firstColor set];
      for (const Square &square : tile.first) {
        NSRectFill(NSMakeRect(square.x, square.y, square.width, square.height));
      }
      [secondColor set];
      for (const Square &square : tile.second) {
        NSRectFill(NSMakeRect(square.x, square.y, square.width, square.height));
      }
    } @finally {
      [image unlockFocus];
    }
    pattern = [NSColor colorWithPatternImage:image];
  } @catch (NSException *exception) {
    pattern = nil;
  }
  [image release];
  return pattern;
}

@end
