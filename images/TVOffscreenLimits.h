// The largest offscreen bitmap the images subsystem asks for: 32767 pixels
// a side (cairo's limit on GNUstep) and 2^31 bytes of 32-bit pixels. Larger
// requests give nil/NULL instead of an allocation that would raise. Private
// to images/.
#import <Foundation/Foundation.h>

#include <cmath>

static const double kTVMaxOffscreenSide = 32767;
static const double kTVMaxOffscreenBytes = 2147483648.0;

// Whether a bitmap of `width` x `height` pixels (not rounded yet) may be
// made: both finite and positive, within the cap.
static inline BOOL TVOffscreenSizeAllowed(double width, double height) {
  if (!(width > 0) || !(height > 0) || !std::isfinite(width) || !std::isfinite(height)) {
    return NO;
  }
  double w = std::ceil(width), h = std::ceil(height);
  return w <= kTVMaxOffscreenSide && h <= kTVMaxOffscreenSide && w * h * 4 <= kTVMaxOffscreenBytes;
}
