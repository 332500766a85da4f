// Blocking frame animations of real windows, the shake path and the
// layer's centre offset.

#import <Talvo/Talvo.h>

#import "WindowTestSupport.h"

namespace {

using FrameAnimation = WindowTest;
using ShakeAnimation = PooledTest;
using LayerCenterPoint = PooledTest;

NSRect RectAt(NSArray *frames, NSUInteger index) { return [[frames objectAtIndex:index] rectValue]; }

void CollectPoint(void *info, const CGPathElement *element) {
  auto *points = static_cast<std::vector<std::pair<int, NSPoint>> *>(info);
  NSPoint p = element->type == kCGPathElementCloseSubpath
                  ? NSZeroPoint
                  : NSMakePoint(element->points[0].x, element->points[0].y);
  points->push_back({int(element->type), p});
}

}  // namespace

TEST_F(FrameAnimation, BlocksUntilTheTargetIsReached) {
  Owned<TVWindowFrameRecorder> window([TVWindowFrameRecorder newBorderlessWithContentRect:NSMakeRect(50, 50, 100, 80)]);
  [window.get() orderFront:nil];
  NSDate *start = [NSDate date];
  [window.get() setWithAnimationFrame:NSMakeRect(70, 60, 160, 120) duration:0.25 curve:3];
  double elapsed = -[start timeIntervalSinceNow];
  EXPECT_GE(elapsed, 0.2);
  EXPECT_LT(elapsed, 2.0);
  EXPECT_RECT_NEAR([window.get() frame], 70, 60, 160, 120);
  EXPECT_GT([[window.get() frames] count], 2u) << "went through frames in between";

  // Zero, negative and non-finite durations end at the target at once.
  [window.get() setWithAnimationFrame:NSMakeRect(40, 40, 90, 90) duration:0 curve:0];
  EXPECT_RECT_NEAR([window.get() frame], 40, 40, 90, 90);
  [window.get() setWithAnimationFrame:NSMakeRect(41, 40, 90, 90) duration:-1 curve:0];
  EXPECT_RECT_NEAR([window.get() frame], 41, 40, 90, 90);
  [window.get() setWithAnimationFrame:NSMakeRect(42, 40, 90, 90) duration:INFINITY curve:99];
  EXPECT_RECT_NEAR([window.get() frame], 42, 40, 90, 90);
  // A non-finite frame is not applied.
  [window.get() setWithAnimationFrame:NSMakeRect(NAN, 0, 10, 10) duration:0.1 curve:0];
  [window.get() setWithBounceAnimationFrame:NSMakeRect(0, INFINITY, 10, 10) duration:0.1 curve:0];
  EXPECT_RECT_NEAR([window.get() frame], 42, 40, 90, 90);
  [window.get() orderOut:nil];
}

TEST_F(FrameAnimation, BouncePassesThroughTheOvershootAtHalfTime) {
  Owned<TVWindowFrameRecorder> window([TVWindowFrameRecorder newBorderlessWithContentRect:NSMakeRect(20, 20, 60, 30)]);
  [window.get() orderFront:nil];
  NSDate *start = [NSDate date];
  [window.get() setWithBounceAnimationFrame:NSMakeRect(0, 0, 100, 50) duration:0.4 curve:0];
  EXPECT_GE(-[start timeIntervalSinceNow], 0.35);
  NSArray *frames = [window.get() frames];
  // The largest frame is the overshoot, reached exactly, and the last one
  // is the target.
  NSUInteger widest = 0;
  for (NSUInteger i = 0; i < [frames count]; ++i) {
    if (NSWidth(RectAt(frames, i)) > NSWidth(RectAt(frames, widest))) widest = i;
  }
  EXPECT_RECT_NEAR(RectAt(frames, widest), -4, -2, 108, 54);
  EXPECT_GT(widest, 0u);
  EXPECT_LT(widest, [frames count] - 1);
  EXPECT_RECT_NEAR(RectAt(frames, [frames count] - 1), 0, 0, 100, 50);
  EXPECT_RECT_NEAR([window.get() frame], 0, 0, 100, 50);
  [window.get() orderOut:nil];
}

TEST_F(ShakeAnimation, PathGoesLeftAndRightThroughTheOrigin) {
  CAKeyframeAnimation *shake =
      [CAKeyframeAnimation shakeAnimationInFrame:NSMakeRect(100, 200, 400, 300)
                                      withVigour:0.05
                                andNumberOfShake:3];
  ASSERT_NE(shake, nil);
  ASSERT_NE([shake path], nullptr);
  EXPECT_EQ([shake keyPath], nil) << "the caller's to choose";
  EXPECT_EQ([shake duration], 0.0);
  std::vector<std::pair<int, NSPoint>> points;
  CGPathApply([shake path], &points, CollectPoint);
  ASSERT_EQ(points.size(), 8u);
  EXPECT_EQ(points[0].first, kCGPathElementMoveToPoint);
  EXPECT_POINT_NEAR(points[0].second, 100, 200);
  const double xs[] = {80, 120, 80, 120, 80, 120};
  for (int i = 0; i < 6; ++i) {
    EXPECT_EQ(points[i + 1].first, kCGPathElementAddLineToPoint);
    EXPECT_POINT_NEAR(points[i + 1].second, xs[i], 200);
  }
  EXPECT_EQ(points[7].first, kCGPathElementCloseSubpath);

  for (double n : {1.0, 0.5}) {
    points.clear();
    CGPathApply([[CAKeyframeAnimation shakeAnimationInFrame:NSMakeRect(10, 5, 100, 1)
                                                 withVigour:0.1
                                           andNumberOfShake:n] path],
                &points, CollectPoint);
    ASSERT_EQ(points.size(), 4u) << n;
    EXPECT_POINT_NEAR(points[1].second, 0, 5);
    EXPECT_POINT_NEAR(points[2].second, 20, 5);
  }
  for (double n : {0.0, -2.0, (double)NAN}) {
    points.clear();
    CGPathApply([[CAKeyframeAnimation shakeAnimationInFrame:NSMakeRect(10, 5, 100, 1)
                                                 withVigour:0.1
                                           andNumberOfShake:n] path],
                &points, CollectPoint);
    ASSERT_EQ(points.size(), 2u) << "the origin alone, closed";
    EXPECT_POINT_NEAR(points[0].second, 10, 5);
  }
}

TEST_F(ShakeAnimation, DrivesAPositionAlongThePath) {
  TVAnimationClockSetManual(YES);
  CALayer *layer = [CALayer layer];
  CAKeyframeAnimation *shake =
      [CAKeyframeAnimation shakeAnimationInFrame:NSMakeRect(100, 200, 400, 300)
                                      withVigour:0.05
                                andNumberOfShake:2];
  [shake setKeyPath:@"position"];
  [shake setDuration:1.0];
  [layer addAnimation:shake forKey:@"shake"];
  TVAnimationClockAdvance(0.0);
  TVAnimationClockAdvance(1.0 / 12);  // inside the first of five segments
  NSPoint p = [[layer presentationLayer] position];
  EXPECT_DOUBLE_EQ(p.y, 200);
  EXPECT_LT(p.x, 100) << "moves left first";
  TVAnimationClockAdvance(1.0);
  EXPECT_EQ(TVAnimationClockActiveCount(), 0u);
  TVAnimationClockSetManual(NO);
}

TEST_F(LayerCenterPoint, OffsetPointsFromTheCentreToTheAnchor) {
  CALayer *layer = [CALayer layer];
  [layer setBounds:CGRectMake(0, 0, 200, 100)];
  EXPECT_EQ([layer centerPointOffset].width, 0);
  EXPECT_EQ([layer centerPointOffset].height, 0);
  [layer setAnchorPoint:CGPointMake(0, 0)];
  EXPECT_EQ([layer centerPointOffset].width, -100);
  EXPECT_EQ([layer centerPointOffset].height, -50);
  [layer setGeometryFlipped:YES];
  EXPECT_EQ([layer centerPointOffset].width, -100);
  EXPECT_EQ([layer centerPointOffset].height, 50);
  [layer setAnchorPoint:CGPointMake(1, 0.75)];
  EXPECT_EQ([layer centerPointOffset].width, 100);
  EXPECT_EQ([layer centerPointOffset].height, -25);
}
