// Core Animation stand-in: timing functions, animations on layers checked at
// exact moments of the manual clock, actions and transactions.

#import "AnimationTestSupport.h"

namespace {

CABasicAnimation *Basic(NSString *keyPath, id from, id to, double duration) {
  CABasicAnimation *animation = [CABasicAnimation animationWithKeyPath:keyPath];
  [animation setFromValue:from];
  [animation setToValue:to];
  [animation setDuration:duration];
  return animation;
}

float PresentedOpacity(CALayer *layer) {
  return [[layer presentationLayer] opacity];
}

using AnimationTimingFunction = PooledTest;
using AnimationLayer = AnimationTest;
using AnimationKeyframe = AnimationTest;
using AnimationActions = AnimationTest;
using AnimationTransaction = AnimationTest;

}  // namespace

// --- Timing functions ---------------------------------------------------------

TEST_F(AnimationTimingFunction, NamedFunctionsHaveApplesControlPoints) {
  struct {
    NSString *name;
    float c1x, c1y, c2x, c2y;
  } expected[] = {
      {kCAMediaTimingFunctionLinear, 0, 0, 1, 1},
      {kCAMediaTimingFunctionEaseIn, 0.42f, 0, 1, 1},
      {kCAMediaTimingFunctionEaseOut, 0, 0, 0.58f, 1},
      {kCAMediaTimingFunctionEaseInEaseOut, 0.42f, 0, 0.58f, 1},
      {kCAMediaTimingFunctionDefault, 0.25f, 0.1f, 0.25f, 1},
  };
  for (const auto &e : expected) {
    CAMediaTimingFunction *function = [CAMediaTimingFunction functionWithName:e.name];
    ASSERT_NE(function, nil) << [e.name UTF8String];
    float p[2] = {-1, -1};
    [function getControlPointAtIndex:0 values:p];
    EXPECT_EQ(p[0], 0.0f);
    EXPECT_EQ(p[1], 0.0f);
    [function getControlPointAtIndex:1 values:p];
    EXPECT_EQ(p[0], e.c1x) << [e.name UTF8String];
    EXPECT_EQ(p[1], e.c1y) << [e.name UTF8String];
    [function getControlPointAtIndex:2 values:p];
    EXPECT_EQ(p[0], e.c2x) << [e.name UTF8String];
    EXPECT_EQ(p[1], e.c2y) << [e.name UTF8String];
    [function getControlPointAtIndex:3 values:p];
    EXPECT_EQ(p[0], 1.0f);
    EXPECT_EQ(p[1], 1.0f);
    p[0] = p[1] = -7;
    [function getControlPointAtIndex:4 values:p];
    EXPECT_EQ(p[0], -7.0f);
  }
  EXPECT_EQ([CAMediaTimingFunction functionWithName:@"bouncy"], nil);
}

TEST_F(AnimationTimingFunction, SolvesTheCurveExactlyAtTheEnds) {
  CAMediaTimingFunction *ease = [CAMediaTimingFunction functionWithName:kCAMediaTimingFunctionDefault];
  EXPECT_EQ([ease _solveForInput:0], 0.0f);
  EXPECT_EQ([ease _solveForInput:1], 1.0f);
  EXPECT_NEAR([ease _solveForInput:0.5f], 0.8024034f, 1e-5);
  CAMediaTimingFunction *in = [CAMediaTimingFunction functionWithName:kCAMediaTimingFunctionEaseIn];
  EXPECT_NEAR([in _solveForInput:0.5f], 0.3153568f, 1e-5);
  CAMediaTimingFunction *custom = [CAMediaTimingFunction functionWithControlPoints:0 :0 :1 :1];
  EXPECT_NEAR([custom _solveForInput:0.3f], 0.3f, 1e-6);
  EXPECT_TRUE([custom isEqual:[CAMediaTimingFunction functionWithName:kCAMediaTimingFunctionLinear]]);
}

// --- Animation objects --------------------------------------------------------

TEST_F(AnimationTimingFunction, AnimationDefaultsAndCopies) {
  CAKeyframeAnimation *animation = [CAKeyframeAnimation animationWithKeyPath:@"opacity"];
  EXPECT_EQ([animation duration], 0);
  EXPECT_EQ([animation speed], 1.0f);
  EXPECT_TRUE([animation isRemovedOnCompletion]);
  EXPECT_NSEQ([animation fillMode], kCAFillModeRemoved);
  EXPECT_EQ([animation timingFunction], nil);
  EXPECT_NSEQ([animation calculationMode], kCAAnimationLinear);

  int deaths = 0;
  TVDeathWatch *delegate = [TVDeathWatch new];
  [delegate setDeaths:&deaths];
  [animation setDelegate:(id)delegate];
  [delegate release];
  EXPECT_EQ(deaths, 0) << "an animation retains its delegate";
  [animation setValues:@[ @0, @1 ]];
  [animation setKeyTimes:@[ @0, @1 ]];
  [animation setAutoreverses:YES];
  [animation setRepeatCount:2.5f];
  CAKeyframeAnimation *copy = [[animation copy] autorelease];
  EXPECT_NSEQ([copy keyPath], @"opacity");
  EXPECT_NSEQ([copy values], [animation values]);
  EXPECT_TRUE([copy autoreverses]);
  EXPECT_EQ([copy repeatCount], 2.5f);
  EXPECT_EQ((id)[copy delegate], (id)[animation delegate]);
  [animation setDelegate:nil];
  EXPECT_EQ(deaths, 0);
  [copy setDelegate:nil];
  EXPECT_EQ(deaths, 1);
}

// --- Layers --------------------------------------------------------------------

TEST_F(AnimationLayer, FrameDerivesFromPositionBoundsAndAnchor) {
  CALayer *layer = [CALayer layer];
  EXPECT_POINT_NEAR([layer anchorPoint], 0.5, 0.5);
  EXPECT_EQ([layer opacity], 1.0f);
  [CATransaction begin];
  [CATransaction setDisableActions:YES];
  [layer setFrame:NSMakeRect(10, 20, 100, 50)];
  EXPECT_POINT_NEAR([layer position], 60, 45);
  EXPECT_RECT_NEAR([layer bounds], 0, 0, 100, 50);
  [layer setAnchorPoint:NSMakePoint(0, 0)];
  EXPECT_RECT_NEAR([layer frame], 60, 45, 100, 50);
  [CATransaction commit];
}

TEST_F(AnimationLayer, BasicAnimationShowsTheValueAtEachMoment) {
  CALayer *layer = [CALayer layer];
  Owned<TVAnimationEventRecorder> recorder([TVAnimationEventRecorder new]);
  CABasicAnimation *fade = Basic(@"opacity", @0.0, @1.0, 2);
  [fade setDelegate:recorder.get()];
  [layer addAnimation:fade forKey:@"fade"];
  EXPECT_NE([layer animationForKey:@"fade"], fade) << "the layer keeps a copy";
  EXPECT_NSEQ([layer animationKeys], @[ @"fade" ]);

  EXPECT_NEAR(PresentedOpacity(layer), 0, 1e-6);
  Advance(0.5);
  EXPECT_NSEQ([recorder.get() events], @[ @"start" ]);
  EXPECT_NEAR(PresentedOpacity(layer), 0.25, 1e-6);
  EXPECT_EQ([layer opacity], 1.0f) << "the model value does not move";
  Advance(1.0);
  EXPECT_NEAR(PresentedOpacity(layer), 0.75, 1e-6);
  Advance(0.4999);
  EXPECT_NE([layer animationForKey:@"fade"], nil);
  EXPECT_NSEQ([recorder.get() events], @[ @"start" ]);
  Advance(0.0001);
  EXPECT_EQ([layer animationForKey:@"fade"], nil) << "removed on completion";
  EXPECT_NSEQ([recorder.get() events], (@[ @"start", @"stop" ]));
  EXPECT_NEAR(PresentedOpacity(layer), 1, 1e-6);
  Advance(1);
  EXPECT_EQ([[recorder.get() events] count], 2u);
}

TEST_F(AnimationLayer, ZeroDurationUsesTheTransactionDuration) {
  CALayer *layer = [CALayer layer];
  [layer addAnimation:Basic(@"opacity", @0.0, @1.0, 0) forKey:@"fade"];
  EXPECT_DOUBLE_EQ([[layer animationForKey:@"fade"] duration], 0.25);
  Advance(0.125);
  EXPECT_NEAR(PresentedOpacity(layer), 0.5, 1e-6);
  Advance(0.125);
  EXPECT_EQ([layer animationForKey:@"fade"], nil);

  [CATransaction begin];
  [CATransaction setAnimationDuration:1];
  [layer addAnimation:Basic(@"opacity", @0.0, @1.0, 0) forKey:@"fade"];
  [CATransaction commit];
  EXPECT_DOUBLE_EQ([[layer animationForKey:@"fade"] duration], 1);
  [layer removeAllAnimations];
}

TEST_F(AnimationLayer, TimingFunctionEasesProgress) {
  CALayer *layer = [CALayer layer];
  CABasicAnimation *move = Basic(@"position.x", @0.0, @100.0, 1);
  [move setTimingFunction:[CAMediaTimingFunction functionWithName:kCAMediaTimingFunctionEaseIn]];
  [layer addAnimation:move forKey:nil];
  EXPECT_EQ([layer animationKeys], nil) << "keyless animations are not listed";
  Advance(0.5);
  EXPECT_NEAR([[layer presentationLayer] position].x, 31.535681, 1e-3);
  EXPECT_NEAR([[layer presentationLayer] position].y, 0, 1e-9) << "only the field animates";
  Advance(0.5);
  EXPECT_EQ(TVAnimationClockActiveCount(), 0u);
}

TEST_F(AnimationLayer, MissingEndValuesComeFromThePresentedAndModelValues) {
  CALayer *layer = [CALayer layer];
  [CATransaction setDisableActions:YES];
  [layer setOpacity:0.5f];
  [CATransaction setDisableActions:NO];

  CABasicAnimation *by = [CABasicAnimation animationWithKeyPath:@"opacity"];
  [by setByValue:@0.25];
  [by setDuration:1];
  [layer addAnimation:by forKey:@"by"];
  Advance(0.5);
  EXPECT_NEAR(PresentedOpacity(layer), 0.625, 1e-6);  // 0.5 -> 0.75
  [layer removeAnimationForKey:@"by"];

  CABasicAnimation *from = [CABasicAnimation animationWithKeyPath:@"opacity"];
  [from setFromValue:@0.0];
  [from setDuration:1];
  [layer addAnimation:from forKey:@"from"];
  Advance(0.25);
  EXPECT_NEAR(PresentedOpacity(layer), 0.125, 1e-6);  // 0 -> model 0.5
  [layer removeAnimationForKey:@"from"];

  CABasicAnimation *fromBy = Basic(@"opacity", @0.2, nil, 1);
  [fromBy setByValue:@0.4];
  [layer addAnimation:fromBy forKey:@"fromBy"];
  Advance(0.5);
  EXPECT_NEAR(PresentedOpacity(layer), 0.4, 1e-6);  // 0.2 -> 0.6
  [layer removeAllAnimations];
}

TEST_F(AnimationLayer, ReplacingAKeyCancelsTheOldAndStartsWhereItShowed) {
  CALayer *layer = [CALayer layer];
  Owned<TVAnimationEventRecorder> first([TVAnimationEventRecorder new]);
  CABasicAnimation *out = Basic(@"opacity", @1.0, @0.0, 1);
  [out setDelegate:first.get()];
  [layer addAnimation:out forKey:@"fade"];
  Advance(0.25);
  EXPECT_NEAR(PresentedOpacity(layer), 0.75, 1e-6);

  CABasicAnimation *back = Basic(@"opacity", nil, @1.0, 1);
  [layer addAnimation:back forKey:@"fade"];
  EXPECT_NSEQ([first.get() events], (@[ @"start", @"cancel" ]));
  EXPECT_NEAR(PresentedOpacity(layer), 0.75, 1e-6);
  Advance(0.5);
  EXPECT_NEAR(PresentedOpacity(layer), 0.875, 1e-6);
  Advance(0.5);
  EXPECT_EQ([layer animationForKey:@"fade"], nil);
  EXPECT_EQ([[first.get() events] count], 2u);
}

TEST_F(AnimationLayer, FillForwardsHoldsTheEndUntilRemoved) {
  CALayer *layer = [CALayer layer];
  CABasicAnimation *fade = Basic(@"opacity", @1.0, @0.2, 1);
  [fade setRemovedOnCompletion:NO];
  [fade setFillMode:kCAFillModeForwards];
  [layer addAnimation:fade forKey:@"fade"];
  Advance(2);
  EXPECT_NE([layer animationForKey:@"fade"], nil);
  EXPECT_NEAR(PresentedOpacity(layer), 0.2, 1e-6);
  EXPECT_EQ(TVAnimationClockActiveCount(), 0u) << "a held animation needs no frames";
  [layer removeAnimationForKey:@"fade"];
  EXPECT_NEAR(PresentedOpacity(layer), 1, 1e-6);

  // Kept without a fill mode, it no longer shows.
  CABasicAnimation *kept = Basic(@"opacity", @1.0, @0.2, 1);
  [kept setRemovedOnCompletion:NO];
  [layer addAnimation:kept forKey:@"kept"];
  Advance(1);
  EXPECT_NE([layer animationForKey:@"kept"], nil);
  EXPECT_NEAR(PresentedOpacity(layer), 1, 1e-6);
  [layer removeAllAnimations];
  EXPECT_EQ([layer animationKeys], nil);
}

TEST_F(AnimationLayer, BeginTimeDelaysAndFillBackwardsShowsTheStart) {
  CALayer *layer = [CALayer layer];
  Owned<TVAnimationEventRecorder> recorder([TVAnimationEventRecorder new]);
  CABasicAnimation *late = Basic(@"opacity", @0.0, @0.5, 1);
  [late setBeginTime:CACurrentMediaTime() + 1];
  [late setDelegate:recorder.get()];
  [layer addAnimation:late forKey:@"late"];
  Advance(0.5);
  EXPECT_NEAR(PresentedOpacity(layer), 1, 1e-6);
  EXPECT_EQ([[recorder.get() events] count], 0u);
  Advance(1);
  EXPECT_NEAR(PresentedOpacity(layer), 0.25, 1e-6);
  EXPECT_NSEQ([recorder.get() events], @[ @"start" ]);
  [layer removeAllAnimations];

  CABasicAnimation *backwards = Basic(@"opacity", @0.0, @0.5, 1);
  [backwards setBeginTime:CACurrentMediaTime() + 1];
  [backwards setFillMode:kCAFillModeBackwards];
  [layer addAnimation:backwards forKey:@"backwards"];
  EXPECT_NEAR(PresentedOpacity(layer), 0, 1e-6);
  [layer removeAllAnimations];
}

TEST_F(AnimationLayer, AutoreverseAndRepeatsAtExactMoments) {
  CALayer *layer = [CALayer layer];
  CABasicAnimation *pulse = Basic(@"opacity", @0.0, @1.0, 1);
  [pulse setAutoreverses:YES];
  [pulse setRepeatCount:2];
  [layer addAnimation:pulse forKey:@"pulse"];
  Advance(0.25);
  EXPECT_NEAR(PresentedOpacity(layer), 0.25, 1e-6);
  Advance(1);  // 1.25: on the way back
  EXPECT_NEAR(PresentedOpacity(layer), 0.75, 1e-6);
  Advance(1);  // 2.25: second pass, forward
  EXPECT_NEAR(PresentedOpacity(layer), 0.25, 1e-6);
  EXPECT_NE([layer animationForKey:@"pulse"], nil);
  Advance(1.75);  // 4.0: done
  EXPECT_EQ([layer animationForKey:@"pulse"], nil);
}

TEST_F(AnimationLayer, CumulativeAndAdditiveValues) {
  CALayer *layer = [CALayer layer];
  [CATransaction setDisableActions:YES];
  [layer setPosition:NSMakePoint(100, 0)];
  [CATransaction setDisableActions:NO];

  CABasicAnimation *step = Basic(@"position.x", @0.0, @10.0, 1);
  [step setCumulative:YES];
  [step setRepeatCount:3];
  [layer addAnimation:step forKey:@"step"];
  Advance(2.5);  // third pass, halfway: 2 * 10 + 5
  EXPECT_NEAR([[layer presentationLayer] position].x, 25, 1e-6);
  [layer removeAllAnimations];

  CABasicAnimation *nudge = Basic(@"position.x", @0.0, @10.0, 1);
  [nudge setAdditive:YES];
  [layer addAnimation:nudge forKey:@"nudge"];
  Advance(0.5);
  EXPECT_NEAR([[layer presentationLayer] position].x, 105, 1e-6);
  [layer removeAllAnimations];
}

TEST_F(AnimationLayer, DeallocatingALayerEndsItsAnimations) {
  Owned<TVAnimationEventRecorder> recorder([TVAnimationEventRecorder new]);
  __block int completions = 0;
  [CATransaction begin];
  [CATransaction setCompletionBlock:^{ completions++; }];
  {
    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    CALayer *layer = [[CALayer alloc] init];
    CABasicAnimation *fade = Basic(@"opacity", @0.0, @1.0, 1);
    [fade setDelegate:recorder.get()];
    [layer addAnimation:fade forKey:@"fade"];
    [layer release];
    [pool drain];
  }
  [CATransaction commit];
  EXPECT_EQ(TVAnimationClockActiveCount(), 0u);
  RunLoopTurn();
  EXPECT_EQ(completions, 1);
  Advance(2);
  EXPECT_EQ([[recorder.get() events] count], 0u);
}

// --- Keyframes -----------------------------------------------------------------

TEST_F(AnimationKeyframe, ValuesAtKeyTimesWithSegmentTimingFunctions) {
  CALayer *layer = [CALayer layer];
  CAKeyframeAnimation *steps = [CAKeyframeAnimation animationWithKeyPath:@"opacity"];
  [steps setValues:@[ @0.0, @0.8, @1.0 ]];
  [steps setKeyTimes:@[ @0.0, @0.5, @1.0 ]];
  [steps setTimingFunctions:@[
    [CAMediaTimingFunction functionWithName:kCAMediaTimingFunctionLinear],
    [CAMediaTimingFunction functionWithName:kCAMediaTimingFunctionEaseIn]
  ]];
  [steps setDuration:2];
  [layer addAnimation:steps forKey:@"steps"];
  Advance(0.5);
  EXPECT_NEAR(PresentedOpacity(layer), 0.4, 1e-6);
  Advance(1.0);  // halfway through the eased second segment
  EXPECT_NEAR(PresentedOpacity(layer), 0.8 + 0.2 * 0.3153568, 1e-5);
  Advance(0.5);
  EXPECT_EQ([layer animationForKey:@"steps"], nil);
}

TEST_F(AnimationKeyframe, DiscreteHoldsEachValue) {
  CALayer *layer = [CALayer layer];
  CAKeyframeAnimation *blink = [CAKeyframeAnimation animationWithKeyPath:@"opacity"];
  [blink setValues:@[ @0.0, @0.5, @1.0 ]];
  [blink setCalculationMode:kCAAnimationDiscrete];
  [blink setDuration:3];
  [layer addAnimation:blink forKey:@"blink"];
  Advance(0.9);
  EXPECT_NEAR(PresentedOpacity(layer), 0, 1e-6);
  Advance(0.2);
  EXPECT_NEAR(PresentedOpacity(layer), 0.5, 1e-6);
  Advance(1.0);
  EXPECT_NEAR(PresentedOpacity(layer), 1, 1e-6);
  [layer removeAllAnimations];
}

TEST_F(AnimationKeyframe, PacedPointsMoveAtConstantSpeed) {
  CALayer *layer = [CALayer layer];
  CAKeyframeAnimation *walk = [CAKeyframeAnimation animationWithKeyPath:@"position"];
  [walk setValues:@[ PointValue(0, 0), PointValue(10, 0), PointValue(10, 30) ]];
  [walk setKeyTimes:@[ @0.0, @0.9, @1.0 ]];  // ignored when paced
  [walk setCalculationMode:kCAAnimationPaced];
  [walk setDuration:4];
  [layer addAnimation:walk forKey:@"walk"];
  Advance(0.5);
  EXPECT_POINT_NEAR([[layer presentationLayer] position], 5, 0);
  Advance(1.5);
  EXPECT_POINT_NEAR([[layer presentationLayer] position], 10, 10);
  [layer removeAllAnimations];
}

TEST_F(AnimationKeyframe, PathDrivesPosition) {
  CALayer *layer = [CALayer layer];
  CGMutablePathRef path = CGPathCreateMutable();
  CGPathMoveToPoint(path, NULL, 0, 0);
  CGPathAddLineToPoint(path, NULL, 100, 0);
  CGPathAddCurveToPoint(path, NULL, 100, 50, 150, 50, 150, 0);
  CAKeyframeAnimation *follow = [CAKeyframeAnimation animationWithKeyPath:@"position"];
  [follow setPath:path];
  CGPathRelease(path);
  [follow setValues:@[ PointValue(-1, -1), PointValue(-2, -2) ]];  // the path wins
  [follow setDuration:2];
  [layer addAnimation:follow forKey:@"follow"];
  Advance(0.5);
  EXPECT_POINT_NEAR([[layer presentationLayer] position], 50, 0);
  Advance(1.0);  // the middle of the curve
  EXPECT_POINT_NEAR([[layer presentationLayer] position], 125, 37.5);
  Advance(0.5);
  EXPECT_EQ([layer animationForKey:@"follow"], nil);
  EXPECT_POINT_NEAR([[layer presentationLayer] position], 0, 0);
}

// --- Actions ---------------------------------------------------------------------

@interface TVNoActionsDelegate : NSObject <CALayerDelegate>
@end
@implementation TVNoActionsDelegate
- (id<CAAction>)actionForLayer:(CALayer *)layer forKey:(NSString *)event {
  return (id<CAAction>)[NSNull null];
}
@end

TEST_F(AnimationActions, ChangingAPropertyAnimatesFromWhatShowed) {
  CALayer *layer = [CALayer layer];
  [layer setOpacity:0];
  CAAnimation *implicit = [layer animationForKey:@"opacity"];
  ASSERT_NE(implicit, nil);
  EXPECT_DOUBLE_EQ([implicit duration], 0.25);
  EXPECT_TRUE([[implicit timingFunction]
      isEqual:[CAMediaTimingFunction functionWithName:kCAMediaTimingFunctionDefault]]);
  EXPECT_EQ([layer opacity], 0.0f);
  EXPECT_NEAR(PresentedOpacity(layer), 1, 1e-6);
  Advance(0.125);
  EXPECT_NEAR(PresentedOpacity(layer), 1 - 0.8024034, 1e-5);
  Advance(0.125);
  EXPECT_EQ([layer animationForKey:@"opacity"], nil);
  EXPECT_NEAR(PresentedOpacity(layer), 0, 1e-6);
}

TEST_F(AnimationActions, ActionsCanBeTurnedOffOrReplaced) {
  CALayer *layer = [CALayer layer];
  [CATransaction begin];
  [CATransaction setDisableActions:YES];
  [layer setPosition:NSMakePoint(5, 5)];
  [CATransaction commit];
  EXPECT_EQ([layer animationForKey:@"position"], nil);

  Owned<TVNoActionsDelegate> quiet([TVNoActionsDelegate new]);
  [layer setDelegate:quiet.get()];
  [layer setOpacity:0.5f];
  EXPECT_EQ([layer animationForKey:@"opacity"], nil);
  [layer setDelegate:nil];

  CABasicAnimation *slow = [CABasicAnimation animation];
  [slow setDuration:3];
  [layer setActions:@{@"bounds" : slow}];
  [layer setBounds:NSMakeRect(0, 0, 30, 30)];
  CAAnimation *running = [layer animationForKey:@"bounds"];
  EXPECT_DOUBLE_EQ([running duration], 3);
  Advance(1.5);
  EXPECT_GT([[layer presentationLayer] bounds].size.width, 0);
  EXPECT_LT([[layer presentationLayer] bounds].size.width, 30);
  [layer removeAllAnimations];

  EXPECT_EQ([CALayer defaultActionForKey:@"contents"], nil);
  [layer setActions:nil];
  [layer setContents:@"image"];
  EXPECT_EQ([layer animationKeys], nil);
}

// --- Transactions ------------------------------------------------------------------

TEST_F(AnimationTransaction, NestedSettingsAreInheritedAndRestored) {
  EXPECT_DOUBLE_EQ([CATransaction animationDuration], 0.25);
  [CATransaction begin];
  [CATransaction setAnimationDuration:2];
  [CATransaction begin];
  EXPECT_DOUBLE_EQ([CATransaction animationDuration], 2);
  [CATransaction setAnimationDuration:0.5];
  [CATransaction setDisableActions:YES];
  EXPECT_NSEQ([CATransaction valueForKey:kCATransactionAnimationDuration], @0.5);
  [CATransaction commit];
  EXPECT_DOUBLE_EQ([CATransaction animationDuration], 2);
  EXPECT_FALSE([CATransaction disableActions]);
  [CATransaction commit];
  EXPECT_DOUBLE_EQ([CATransaction animationDuration], 0.25);
}

TEST_F(AnimationTransaction, CompletionRunsOnceAfterEveryAnimationEnds) {
  CALayer *layer = [CALayer layer];
  __block int completions = 0;
  [CATransaction begin];
  [CATransaction setCompletionBlock:^{ completions++; }];
  [layer addAnimation:Basic(@"opacity", @0.0, @1.0, 1) forKey:@"short"];
  [CATransaction begin];
  [layer addAnimation:Basic(@"position.x", @0.0, @1.0, 2) forKey:@"long"];
  [CATransaction commit];
  [CATransaction commit];
  RunLoopTurn();
  Advance(1);
  EXPECT_EQ(completions, 0) << "the nested transaction's animation still runs";
  Advance(0.999);
  RunLoopTurn();
  EXPECT_EQ(completions, 0);
  Advance(0.001);
  EXPECT_EQ(completions, 1);
  Advance(1);
  RunLoopTurn();
  EXPECT_EQ(completions, 1);
}

TEST_F(AnimationTransaction, RemovalCountsAsCompletion) {
  CALayer *layer = [CALayer layer];
  __block int completions = 0;
  [CATransaction begin];
  [CATransaction setCompletionBlock:^{ completions++; }];
  [layer addAnimation:Basic(@"opacity", @0.0, @1.0, 1) forKey:@"fade"];
  [CATransaction commit];
  [layer removeAnimationForKey:@"fade"];
  EXPECT_EQ(completions, 1);
}

TEST_F(AnimationTransaction, WithoutAnimationsCompletionRunsFromTheRunLoop) {
  __block int completions = 0;
  [CATransaction begin];
  [CATransaction setCompletionBlock:^{ completions++; }];
  [CATransaction commit];
  EXPECT_EQ(completions, 0) << "not inside +commit";
  RunLoopTurn();
  EXPECT_EQ(completions, 1);
  RunLoopTurn();
  EXPECT_EQ(completions, 1);
}

// --- The clock ------------------------------------------------------------------------

TEST(AnimationClock, RunsOnTheRunLoopOnlyWhileAnimationsDo) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  ASSERT_FALSE(TVAnimationClockIsManual());
  EXPECT_FALSE(TVAnimationClockIsRunning());
  CALayer *layer = [CALayer layer];
  Owned<TVAnimationEventRecorder> recorder([TVAnimationEventRecorder new]);
  CABasicAnimation *fade = Basic(@"opacity", @0.0, @1.0, 0.05);
  [fade setDelegate:recorder.get()];
  [layer addAnimation:fade forKey:@"fade"];
  EXPECT_TRUE(TVAnimationClockIsRunning());
  EXPECT_TRUE(RunMainLoopUntil([&] { return [[recorder.get() events] count] == 2; }));
  EXPECT_FALSE(TVAnimationClockIsRunning());

  // Under the manual clock the timer stands still.
  TVAnimationClockSetManual(YES);
  [layer addAnimation:fade forKey:@"fade"];
  EXPECT_FALSE(TVAnimationClockIsRunning());
  TVAnimationClockSetManual(NO);
  EXPECT_TRUE(TVAnimationClockIsRunning());
  [layer removeAllAnimations];
  EXPECT_FALSE(TVAnimationClockIsRunning());
  [pool drain];
}
