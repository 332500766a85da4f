// A window's true backing scale. GNUstep 0.29 answers 1.0 from
// -backingScaleFactor even under -GSScaleFactor 2, where the window's
// back buffer has two pixels per point; its own scale is the window's
// userSpaceScaleFactor.

#import <AppKit/AppKit.h>

#include <cmath>

#import "platform/objc/TVRuntime.h"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

namespace {

CGFloat TVWindowBackingScaleFactor(NSWindow *window, SEL selector) {
  CGFloat scale = [window userSpaceScaleFactor];
  return (std::isfinite(scale) && scale > 0) ? scale : 1.0;
}

}  // namespace

@interface NSWindow (TalvoPlatformBacking)
@end

@implementation NSWindow (TalvoPlatformBacking)

+ (void)load {
  TVReplaceInstanceMethod(self, @selector(backingScaleFactor), (IMP)TVWindowBackingScaleFactor);
}

@end
