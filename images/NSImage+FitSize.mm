#import <Talvo/NSImage+FitSize.h>

#include "core/images/ImageGeometry.hpp"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

namespace ti = talvo::images;

@implementation NSImage (fitSize)

- (NSSize)scaledSizeThatFitInSize:(NSSize)size {
  NSSize own = [self size];
  ti::Size fitted = ti::ScaledSizeThatFits({own.width, own.height}, {size.width, size.height});
  return NSMakeSize(fitted.width, fitted.height);
}

- (NSSize)scaledSizeForSize:(NSSize)size {
  NSSize own = [self size];
  ti::Size scaled = ti::ScaledSizeForSize({own.width, own.height}, {size.width, size.height});
  return NSMakeSize(scaled.width, scaled.height);
}

@end
