#import <Talvo/CAKeyframeAnimation+Shake.h>

#import "windows/TVWindowGeometry+Private.h"
#import "windows/TVWindowPlatform+Private.h"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

@implementation CAKeyframeAnimation (shake)

#pragma mark - Public

+ (CAKeyframeAnimation *)shakeAnimationInFrame:(NSRect)frame
                                    withVigour:(double)vigour
                              andNumberOfShake:(double)numberOfShakes {
  // Reduced motion: the same keyframes, all at the frame's origin.
  std::vector<talvo::windows::Point> points = talvo::windows::ShakePoints(
      TVCoreRect(frame), TVReduceMotion() ? 0.0 : vigour, numberOfShakes);
  CGMutablePathRef path = CGPathCreateMutable();
  CGPathMoveToPoint(path, NULL, points[0].x, points[0].y);
  for (size_t i = 1; i < points.size(); ++i) {
    CGPathAddLineToPoint(path, NULL, points[i].x, points[i].y);
  }
  CGPathCloseSubpath(path);
  CAKeyframeAnimation *animation = [CAKeyframeAnimation animation];
  [animation setPath:path];
  CGPathRelease(path);
  return animation;
}

@end
