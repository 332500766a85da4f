// A backing scale for screens that tests can set: GNUstep hard-codes 1.0.

#import <AppKit/AppKit.h>

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
