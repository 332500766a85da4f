// A screen's backing scale. GNUstep 0.29 answers 1.0 even under
// -GSScaleFactor 2; the screen's own scale is its userSpaceScaleFactor.
// Tests can set an override that every screen answers.

#import <AppKit/AppKit.h>

#include <cmath>

#import "platform/objc/TVRuntime.h"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

static CGFloat scaleOverride = 0;
static CGFloat (*originalBackingScaleFactor)(id, SEL) = NULL;

static CGFloat TVBackingScaleFactor(id screen, SEL selector) {
  if (scaleOverride > 0) {
    return scaleOverride;
  }
  CGFloat scale = [(NSScreen *)screen userSpaceScaleFactor];
  if (std::isfinite(scale) && scale > 0) {
    return scale;
  }
  return originalBackingScaleFactor ? originalBackingScaleFactor(screen, selector) : 1.0;
}

@implementation NSScreen (TalvoPlatformScale)

+ (void)load {
  originalBackingScaleFactor = (CGFloat(*)(id, SEL))TVReplaceInstanceMethod(
      self, @selector(backingScaleFactor), (IMP)TVBackingScaleFactor);
}

+ (void)talvo_setBackingScaleFactorOverride:(CGFloat)scale {
  scaleOverride = scale > 0 ? scale : 0;
}

+ (CGFloat)talvo_backingScaleFactorOverride {
  return scaleOverride;
}

@end
