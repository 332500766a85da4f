// NSAnimationContext groups and animator proxies on GNUstep, checked at
// exact moments of the manual animation clock.

#import "AnimationTestSupport.h"

// A view with an animatable property of its own.
@interface TVProgressView : NSView {
  double _progress;
  double _other;
}
@property(nonatomic, assign) double progress;
@property(nonatomic, assign) double other;
@end

@implementation TVProgressView
@synthesize progress = _progress;
@synthesize other = _other;
+ (id)defaultAnimationForKey:(NSString *)key {
  if ([key isEqualToString:@"progress"]) {
    return [CABasicAnimation animation];
  }
  return [super defaultAnimationForKey:key];
}
@end

namespace {

CAMediaTimingFunction *Linear() {
  return [CAMediaTimingFunction functionWithName:kCAMediaTimingFunctionLinear];
}

// Runs `changes` in a group of `duration` seconds with linear timing.
void Group(double duration, void (^changes)(void), void (^completion)(void) = nil) {
  [NSAnimationContext
      runAnimationGroup:^(NSAnimationContext *context) {
        [context setDuration:duration];
        [context setTimingFunction:Linear()];
        changes();
      }
      completionHandler:completion];
}

class AnimationAppKit : public AnimationTest {
 protected:
  void SetUp() override {
    AnimationTest::SetUp();
    view_.reset([[NSView alloc] initWithFrame:NSMakeRect(0, 0, 100, 100)]);
  }
  NSView *view() { return view_.get(); }
  Owned<NSView> view_;
};

using AnimationContext = AnimationAppKit;
using AnimationViewAnimator = AnimationAppKit;
using AnimationWindowAnimator = AnimationAppKit;
using AnimationConstraintAnimator = AnimationAppKit;
using AnimationViewLayer = AnimationAppKit;

}  // namespace

// --- Contexts --------------------------------------------------------------------

TEST_F(AnimationContext, ImplicitContextAndNestedGroups) {
  NSAnimationContext *outer = [NSAnimationContext currentContext];
  ASSERT_NE(outer, nil);
  EXPECT_TRUE([outer isKindOfClass:[NSAnimationContext class]]);
  EXPECT_DOUBLE_EQ([outer duration], 0.25);
  EXPECT_EQ([outer timingFunction], nil);
  EXPECT_FALSE([outer allowsImplicitAnimation]);
  EXPECT_EQ([NSAnimationContext currentContext], outer);

  [NSAnimationContext beginGrouping];
  NSAnimationContext *group = [NSAnimationContext currentContext];
  EXPECT_NE(group, outer);
  EXPECT_DOUBLE_EQ([group duration], 0.25);
  [group setDuration:1];
  [group setAllowsImplicitAnimation:YES];
  EXPECT_DOUBLE_EQ([CATransaction animationDuration], 1) << "a group is a transaction";
  [NSAnimationContext beginGrouping];
  EXPECT_DOUBLE_EQ([[NSAnimationContext currentContext] duration], 1) << "inherited";
  EXPECT_TRUE([[NSAnimationContext currentContext] allowsImplicitAnimation]);
  [[NSAnimationContext currentContext] setDuration:0.5];
  [NSAnimationContext endGrouping];
  EXPECT_DOUBLE_EQ([[NSAnimationContext currentContext] duration], 1) << "no leak outwards";
  [NSAnimationContext endGrouping];
  EXPECT_EQ([NSAnimationContext currentContext], outer);
  EXPECT_DOUBLE_EQ([outer duration], 0.25);
  EXPECT_FALSE([outer allowsImplicitAnimation]);
}

TEST_F(AnimationContext, RunAnimationGroupPassesTheCurrentContext) {
  NSAnimationContext *outer = [NSAnimationContext currentContext];
  __block NSAnimationContext *seen = nil;
  __block double duration = 0;
  [NSAnimationContext runAnimationGroup:^(NSAnimationContext *context) {
    seen = context;
    duration = [context duration];
    EXPECT_EQ(context, [NSAnimationContext currentContext]);
  }];
  EXPECT_NE(seen, nil);
  EXPECT_NE(seen, outer);
  EXPECT_EQ([NSAnimationContext currentContext], outer);
  EXPECT_DOUBLE_EQ(duration, 0.25);
  RunLoopTurn();
}

TEST_F(AnimationContext, CompletionRunsOnceWhenTheAnimationsEnd) {
  __block int completions = 0;
  Group(
      1, ^{ [[view() animator] setFrame:NSMakeRect(100, 0, 100, 100)]; },
      ^{
        EXPECT_TRUE([NSThread isMainThread]);
        completions++;
      });
  EXPECT_RECT_NEAR([view() frame], 0, 0, 100, 100);  // not set at once
  RunLoopTurn();
  Advance(0.5);
  EXPECT_RECT_NEAR([view() frame], 50, 0, 100, 100);
  Advance(0.499);
  RunLoopTurn();
  EXPECT_EQ(completions, 0);
  Advance(0.001);
  EXPECT_EQ(completions, 1);
  EXPECT_RECT_NEAR([view() frame], 100, 0, 100, 100);
  Advance(1);
  RunLoopTurn();
  EXPECT_EQ(completions, 1);
}

TEST_F(AnimationContext, CompletionWithoutAnimationsRunsAfterTheGroup) {
  __block int completions = 0;
  Group(
      1, ^{ [view() setFrame:NSMakeRect(5, 5, 5, 5)]; }, ^{ completions++; });
  EXPECT_EQ(completions, 0) << "not inside the group's end";
  RunLoopTurn();
  EXPECT_EQ(completions, 1);
}

TEST_F(AnimationContext, NestedGroupsKeepTheirOwnDurations) {
  __block int outerDone = 0;
  __block int innerDone = 0;
  Group(
      1,
      ^{
        Group(
            0.5, ^{ [[view() animator] setAlphaValue:0]; }, ^{ innerDone++; });
        [[view() animator] setFrameOrigin:NSMakePoint(100, 0)];
      },
      ^{ outerDone++; });
  Advance(0.25);
  EXPECT_NEAR([view() alphaValue], 0.5, 1e-6);
  EXPECT_NEAR([view() frame].origin.x, 25, 1e-6) << "the outer duration is back";
  Advance(0.25);
  EXPECT_EQ(innerDone, 1);
  EXPECT_EQ(outerDone, 0) << "the outer group waits for its own animation";
  EXPECT_NEAR([view() alphaValue], 0, 1e-6);
  Advance(0.5);
  EXPECT_EQ(outerDone, 1);
}

TEST_F(AnimationContext, DefaultTimingIsTheSystemCurve) {
  [NSAnimationContext runAnimationGroup:^(NSAnimationContext *context) {
    [context setDuration:1];
    [[view() animator] setAlphaValue:0];
  }];
  Advance(0.5);
  EXPECT_NEAR([view() alphaValue], 1 - 0.8024034, 1e-5);
  Advance(0.5);
}

// --- View animator ----------------------------------------------------------------

TEST_F(AnimationViewAnimator, OutsideAGroupOrWithoutDurationValuesSetAtOnce) {
  [[view() animator] setFrame:NSMakeRect(1, 2, 3, 4)];
  EXPECT_RECT_NEAR([view() frame], 1, 2, 3, 4);
  EXPECT_EQ(TVAnimationClockActiveCount(), 0u);
  Group(0, ^{ [[view() animator] setAlphaValue:0.5]; });
  EXPECT_NEAR([view() alphaValue], 0.5, 1e-9);
  EXPECT_EQ(TVAnimationClockActiveCount(), 0u);
  // Getters and other methods reach the view.
  EXPECT_RECT_NEAR([[view() animator] frame], 1, 2, 3, 4);
  [[view() animator] setNeedsDisplay:YES];
  RunLoopTurn();
}

TEST_F(AnimationViewAnimator, FrameOriginAndSizeAnimateAtExactMoments) {
  Group(2, ^{
    [[view() animator] setFrameOrigin:NSMakePoint(40, 80)];
    [[view() animator] setFrameSize:NSMakeSize(300, 200)];
  });
  Advance(0.5);
  EXPECT_RECT_NEAR([view() frame], 10, 20, 150, 125);
  Advance(1.5);
  EXPECT_RECT_NEAR([view() frame], 40, 80, 300, 200);
}

TEST_F(AnimationViewAnimator, ANewAnimationReplacesTheRunningOneFromWhereItIs) {
  __block int first = 0;
  __block int second = 0;
  Group(
      1, ^{ [[view() animator] setFrameOrigin:NSMakePoint(100, 0)]; }, ^{ first++; });
  Advance(0.5);
  EXPECT_NEAR([view() frame].origin.x, 50, 1e-6);
  Group(
      1, ^{ [[view() animator] setFrameOrigin:NSMakePoint(0, 0)]; }, ^{ second++; });
  EXPECT_EQ(first, 1) << "the interrupted group completes";
  EXPECT_NEAR([view() frame].origin.x, 50, 1e-6) << "no jump to either end";
  Advance(0.5);
  EXPECT_NEAR([view() frame].origin.x, 25, 1e-6);
  EXPECT_EQ(second, 0);
  Advance(0.5);
  EXPECT_NEAR([view() frame].origin.x, 0, 1e-6);
  EXPECT_EQ(second, 1);
  EXPECT_EQ(first, 1);
}

TEST_F(AnimationViewAnimator, HiddenAppliesAtTheEndAndShowingAtOnce) {
  Group(1, ^{
    [[view() animator] setAlphaValue:0];
    [[view() animator] setHidden:YES];
  });
  Advance(0.99);
  EXPECT_FALSE([view() isHidden]);
  Advance(0.01);
  EXPECT_TRUE([view() isHidden]);
  Group(1, ^{ [[view() animator] setHidden:NO]; });
  EXPECT_FALSE([view() isHidden]);
  EXPECT_EQ(TVAnimationClockActiveCount(), 0u);
  RunLoopTurn();
}

TEST_F(AnimationViewAnimator, DefaultAnimationsAnswerForFrameAndAlphaOnly) {
  for (NSString *key in @[ @"frame", @"frameOrigin", @"frameSize", @"alphaValue" ]) {
    id animation = [NSView defaultAnimationForKey:key];
    EXPECT_TRUE([animation isKindOfClass:[CABasicAnimation class]]) << [key UTF8String];
  }
  EXPECT_EQ([NSView defaultAnimationForKey:@"bounds"], nil);
  EXPECT_EQ([NSView defaultAnimationForKey:@"tag"], nil);
  EXPECT_NSEQ([view() animations], @{});
  EXPECT_TRUE([[view() animationForKey:@"frame"] isKindOfClass:[CABasicAnimation class]]);
}

TEST_F(AnimationViewAnimator, AKeyframeAnimationInAnimationsDrivesItsKey) {
  CAKeyframeAnimation *flicker = [CAKeyframeAnimation animation];
  [flicker setValues:@[ @0.0, @1.0, @0.5 ]];
  [flicker setKeyTimes:@[ @0.0, @0.25, @1.0 ]];
  [flicker setTimingFunction:Linear()];
  [view() setAnimations:@{@"alphaValue" : flicker}];
  EXPECT_EQ([view() animationForKey:@"alphaValue"], flicker);
  [NSAnimationContext runAnimationGroup:^(NSAnimationContext *context) {
    [context setDuration:2];
    [[view() animator] setAlphaValue:0.3];
  }];
  Advance(0.25);
  EXPECT_NEAR([view() alphaValue], 0.5, 1e-6);
  Advance(0.25);
  EXPECT_NEAR([view() alphaValue], 1, 1e-6);
  Advance(0.75);  // halfway from key time 0.25 to 1
  EXPECT_NEAR([view() alphaValue], 0.75, 1e-6);
  Advance(0.75);
  EXPECT_NEAR([view() alphaValue], 0.3, 1e-6) << "the value set stays at the end";
  [view() setAnimations:nil];
}

TEST_F(AnimationViewAnimator, CustomKeysAnimateThroughForwarding) {
  Owned<TVProgressView> custom([[TVProgressView alloc] initWithFrame:NSZeroRect]);
  TVProgressView *target = custom.get();
  Group(1, ^{
    [[target animator] setProgress:10];
    [[target animator] setOther:7];
  });
  EXPECT_DOUBLE_EQ([custom.get() other], 7) << "no animation for the key: set at once";
  EXPECT_DOUBLE_EQ([custom.get() progress], 0);
  Advance(0.3);
  EXPECT_NEAR([custom.get() progress], 3, 1e-6);
  Advance(0.7);
  EXPECT_DOUBLE_EQ([custom.get() progress], 10);
}

TEST_F(AnimationViewAnimator, AnimatingKeepsTheViewUntilItEnds) {
  Owned<TVAnimationEventRecorder> recorder([TVAnimationEventRecorder new]);
  CABasicAnimation *fade = [CABasicAnimation animation];
  [fade setDelegate:recorder.get()];
  {
    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    NSView *doomed = [[NSView alloc] initWithFrame:NSZeroRect];
    [doomed setAnimations:@{@"alphaValue" : fade}];
    Group(1, ^{ [[doomed animator] setAlphaValue:0]; });
    [doomed release];
    [pool drain];
  }
  Advance(1);
  EXPECT_NSEQ([recorder.get() events], (@[ @"start", @"stop" ]));
  RunLoopTurn();
}

// --- Window animator ---------------------------------------------------------------

TEST_F(AnimationWindowAnimator, FrameAndAlphaAnimate) {
  if (!HasWindowServer()) {
    GTEST_SKIP() << "needs a window server";
  }
  Owned<NSWindow> window([[NSWindow alloc] initWithContentRect:NSMakeRect(100, 100, 200, 100)
                                                     styleMask:NSBorderlessWindowMask
                                                       backing:NSBackingStoreBuffered
                                                         defer:YES]);
  [window.get() setReleasedWhenClosed:NO];
  EXPECT_TRUE([[NSWindow defaultAnimationForKey:@"frame"] isKindOfClass:[CABasicAnimation class]]);
  EXPECT_EQ([NSWindow defaultAnimationForKey:@"title"], nil);
  NSRect start = [window.get() frame];
  NSWindow *target = window.get();
  Group(1, ^{
    [[target animator] setFrame:NSOffsetRect(start, 100, 0) display:NO];
    [[target animator] setAlphaValue:0.5];
  });
  Advance(0.5);
  EXPECT_NEAR([window.get() frame].origin.x, start.origin.x + 50, 1e-6);
  EXPECT_NEAR([window.get() alphaValue], 0.75, 1e-6);
  Advance(0.5);
  EXPECT_NEAR([window.get() frame].origin.x, start.origin.x + 100, 1e-6);
  EXPECT_NEAR([window.get() alphaValue], 0.5, 1e-6);
  [window.get() close];
}

// --- Constraint animator -------------------------------------------------------------

TEST_F(AnimationConstraintAnimator, ConstantMovesTheViewsThroughLayout) {
  NSView *child = [[[NSView alloc] initWithFrame:NSZeroRect] autorelease];
  [child setTranslatesAutoresizingMaskIntoConstraints:NO];
  [view() addSubview:child];
  NSLayoutConstraint *left = [NSLayoutConstraint constraintWithItem:child
                                                          attribute:NSLayoutAttributeLeft
                                                          relatedBy:NSLayoutRelationEqual
                                                             toItem:view()
                                                          attribute:NSLayoutAttributeLeft
                                                         multiplier:1
                                                           constant:0];
  NSArray *size = @[
    [NSLayoutConstraint constraintWithItem:child
                                 attribute:NSLayoutAttributeWidth
                                 relatedBy:NSLayoutRelationEqual
                                    toItem:nil
                                 attribute:NSLayoutAttributeNotAnAttribute
                                multiplier:1
                                  constant:10],
    [NSLayoutConstraint constraintWithItem:child
                                 attribute:NSLayoutAttributeHeight
                                 relatedBy:NSLayoutRelationEqual
                                    toItem:nil
                                 attribute:NSLayoutAttributeNotAnAttribute
                                multiplier:1
                                  constant:10],
    [NSLayoutConstraint constraintWithItem:child
                                 attribute:NSLayoutAttributeTop
                                 relatedBy:NSLayoutRelationEqual
                                    toItem:view()
                                 attribute:NSLayoutAttributeTop
                                multiplier:1
                                  constant:0]
  ];
  [view() addConstraint:left];
  [view() addConstraints:size];
  [view() layoutSubtreeIfNeeded];
  EXPECT_NEAR([child frame].origin.x, 0, 1e-6);

  EXPECT_TRUE([[NSLayoutConstraint defaultAnimationForKey:@"constant"]
      isKindOfClass:[CABasicAnimation class]]);
  Group(1, ^{ [[left animator] setConstant:80]; });
  Advance(0.25);
  EXPECT_NEAR([left constant], 20, 1e-6);
  [view() layoutSubtreeIfNeeded];
  EXPECT_NEAR([child frame].origin.x, 20, 1e-6);
  Advance(0.75);
  [view() layoutSubtreeIfNeeded];
  EXPECT_NEAR([child frame].origin.x, 80, 1e-6);
}

// --- Layers of views ---------------------------------------------------------------------

TEST_F(AnimationViewLayer, LayerIsMadeOnDemandAndFollowsTheView) {
  EXPECT_FALSE([view() wantsLayer]);
  [view() setWantsLayer:YES];
  EXPECT_TRUE([view() wantsLayer]);
  [view() setFrame:NSMakeRect(10, 20, 30, 40)];
  [view() setAlphaValue:0.5];
  CALayer *layer = [view() layer];
  ASSERT_NE(layer, nil);
  EXPECT_EQ([view() layer], layer);
  EXPECT_EQ((id)[layer delegate], (id)view());
  EXPECT_RECT_NEAR([layer frame], 10, 20, 30, 40);
  EXPECT_NEAR([layer opacity], 0.5, 1e-6);
  EXPECT_EQ([layer animationKeys], nil) << "syncing does not animate";
}

TEST_F(AnimationViewLayer, BackingLayerAnimatesOnlyWhenTheContextAllows) {
  CALayer *layer = [view() layer];
  [layer setOpacity:0.2f];
  EXPECT_EQ([layer animationForKey:@"opacity"], nil);
  [NSAnimationContext runAnimationGroup:^(NSAnimationContext *context) {
    [context setDuration:2];
    [context setAllowsImplicitAnimation:YES];
    [layer setOpacity:0.8f];
  }];
  CAAnimation *implicit = [layer animationForKey:@"opacity"];
  ASSERT_NE(implicit, nil);
  EXPECT_DOUBLE_EQ([implicit duration], 2);
  Advance(2);
  EXPECT_EQ([layer animationForKey:@"opacity"], nil);
}

TEST_F(AnimationViewLayer, StateGoesWithTheView) {
  CALayer *layer = nil;
  {
    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    NSView *doomed = [[NSView alloc] initWithFrame:NSZeroRect];
    layer = [[doomed layer] retain];
    [doomed setAnimations:@{@"alphaValue" : [CABasicAnimation animation]}];
    [pool drain];
    EXPECT_EQ([layer retainCount], 2u);
    [doomed release];
  }
  EXPECT_EQ([layer retainCount], 1u) << "the side table let go of the layer";
  EXPECT_EQ((id)[layer delegate], nil);
  [layer release];
}
