#import <Talvo/CALayer+CenterPoint.h>

#import "windows/TVWindowGeometry+Private.h"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

@implementation CALayer (centerPoint)

#pragma mark - Public

- (NSSize)centerPointOffset {
  CGPoint anchor = [self anchorPoint];
  CGRect frame = [self frame];
  talvo::windows::Point offset = talvo::windows::CenterPointOffset(
      anchor.x, anchor.y, frame.size.width, frame.size.height, [self isGeometryFlipped]);
  return NSMakeSize(offset.x, offset.y);
}

@end
