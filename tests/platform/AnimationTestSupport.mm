#import "AnimationTestSupport.h"

@implementation TVAnimationEventRecorder

@synthesize events = _events;

- (instancetype)init {
  self = [super init];
  if (self != nil) {
    _events = [NSMutableArray new];
  }
  return self;
}

- (void)dealloc {
  [_events release];
  [super dealloc];
}

- (void)animationDidStart:(CAAnimation *)animation {
  [_events addObject:@"start"];
}

- (void)animationDidStop:(CAAnimation *)animation finished:(BOOL)finished {
  [_events addObject:finished ? @"stop" : @"cancel"];
}

@end

void AnimationTest::SetUp() {
  PooledTest::SetUp();
  TVAnimationClockSetManual(YES);
}

void AnimationTest::TearDown() {
  EXPECT_EQ(TVAnimationClockActiveCount(), 0u) << "an animation is still running";
  RunLoopTurn();
  TVAnimationClockSetManual(NO);
  PooledTest::TearDown();
}

void AnimationTest::RunLoopTurn() {
  NSDate *limit = [NSDate dateWithTimeIntervalSinceNow:0.02];
  [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode beforeDate:limit];
}

NSValue *PointValue(double x, double y) {
  return [NSValue valueWithPoint:NSMakePoint(x, y)];
}

NSPoint PointOf(id value) {
  return [value pointValue];
}
