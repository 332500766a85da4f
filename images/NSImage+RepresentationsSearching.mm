#import <Talvo/NSImage+RepresentationsSearching.h>

#include <vector>

#include "core/images/RepresentationSearch.hpp"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

static_assert(
    VXRepresentationAllowLarger == talvo::images::kRepresentationAllowLarger &&
        VXRepresentationAllowSmaller == talvo::images::kRepresentationAllowSmaller &&
        VXRepresentationStandardResolution == talvo::images::kRepresentationStandardResolution &&
        VXRepresentationDoubleResolution == talvo::images::kRepresentationDoubleResolution &&
        VXRepresentationTripleResolution == talvo::images::kRepresentationTripleResolution,
    "the public mask bits are the core's");

@implementation NSImage (representationsSearching)

- (NSImageRep *)bestRepresentationForSideSize:(int32_t)side selector:(int32_t)mask {
  NSArray *reps = nil;
  std::vector<talvo::images::RepresentationInfo> infos;
  @try {
    reps = [self representations];
    if ([reps count] == 0) return nil;
    infos.reserve([reps count]);
    for (NSImageRep *rep in reps) {
      talvo::images::RepresentationInfo info;
      info.bitmap = [rep isKindOfClass:[NSBitmapImageRep class]];
      info.pixelsWide = double([rep pixelsWide]);
      info.pixelsHigh = double([rep pixelsHigh]);
      NSSize size = [rep size];
      info.width = size.width;
      info.height = size.height;
      infos.push_back(info);
    }
  } @catch (NSException *e) {
    return nil;
  }
  int index = talvo::images::BestRepresentationIndex(infos, side, mask);
  return index < 0 ? nil : [reps objectAtIndex:NSUInteger(index)];
}

@end
