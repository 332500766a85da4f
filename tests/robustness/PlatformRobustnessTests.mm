// Bad input to the platform layer's Apple API: libdispatch's nil arguments,
// a layer's actions that are not actions, the visual format's dictionaries.

#import <AppKit/AppKit.h>
#import <QuartzCore/QuartzCore.h>
#include <dispatch/dispatch.h>

#import "platform/QuartzCore/TVAnimationClock.h"
#import "robustness/RobustnessSupport.h"
#import "support/TestSupport.h"

// Answers something that is not an action for opacity.
@interface TVJunkActionDelegate : NSObject
@end
@implementation TVJunkActionDelegate
- (id)actionForLayer:(CALayer *)layer forKey:(NSString *)event {
  return [event isEqualToString:@"opacity"] ? @"not an action" : nil;
}
@end

namespace {

class PlatformRobustness : public PooledTest {};

// A nil predicate, block or queue does nothing in every dispatch function.
TEST_F(PlatformRobustness, DispatchTakesNilAlike) {
  dispatch_once_t predicate = 0;
  EXPECT_CALM(dispatch_once(&predicate, NullOf<dispatch_block_t>()));
  EXPECT_EQ(predicate, 0) << "a nil block leaves the predicate for a later call";
  int count = 0;
  int *runs = &count;
  EXPECT_CALM(dispatch_once(NullOf<dispatch_once_t *>(), ^{
    (*runs)++;
  }));
  EXPECT_EQ(count, 0);
  dispatch_once(&predicate, ^{
    (*runs)++;
  });
  EXPECT_EQ(count, 1);

  EXPECT_CALM(dispatch_async(dispatch_get_main_queue(), NullOf<dispatch_block_t>()));
  EXPECT_CALM(dispatch_async(NullOf<dispatch_queue_t>(), ^{
    *runs += 10;
  }));
  EXPECT_CALM(dispatch_after(dispatch_time(DISPATCH_TIME_NOW, 0), NullOf<dispatch_queue_t>(), ^{
    *runs += 100;
  }));
  EXPECT_CALM(dispatch_after(DISPATCH_TIME_NOW, dispatch_get_main_queue(), NullOf<dispatch_block_t>()));
  bool ran = false;
  bool *marker = &ran;
  dispatch_async(dispatch_get_main_queue(), ^{
    *marker = true;
  });
  ASSERT_TRUE(RunMainLoopUntil([&] { return ran; }));
  RunMainLoopUntil([] { return false; }, 0.05);
  EXPECT_EQ(count, 1);
}

TEST_F(PlatformRobustness, DispatchTimeSaturatesAtTheExtremes) {
  EXPECT_EQ(dispatch_time(DISPATCH_TIME_FOREVER, -1), DISPATCH_TIME_FOREVER);
  EXPECT_EQ(dispatch_time(1, INT64_MIN), 1u);
  EXPECT_EQ(dispatch_time(DISPATCH_TIME_FOREVER - 2, INT64_MAX), DISPATCH_TIME_FOREVER - 1);
}

// A value in the actions dictionary (or from the delegate) that is not an
// action is no action: the change is made, nothing raises, nothing leaks.
TEST_F(PlatformRobustness, LayerActionsThatAreNotActionsAreIgnored) {
  TVAnimationClockSetManual(YES);
  CALayer *layer = [CALayer layer];
  [layer setActions:[NSDictionary dictionaryWithObjectsAndKeys:@"not an action", @"bounds", @42,
                                                               @"position", nil]];
  EXPECT_CALM([layer setBounds:NSMakeRect(0, 0, 30, 40)]);
  EXPECT_CALM([layer setPosition:NSMakePoint(3, 4)]);
  EXPECT_EQ([layer bounds].size.width, 30);
  EXPECT_EQ([layer position].y, 4);
  EXPECT_EQ([layer animationForKey:@"bounds"], nil);
  EXPECT_EQ([layer actionForKey:@"bounds"], nil);

  Owned<TVJunkActionDelegate> junk([TVJunkActionDelegate new]);
  [layer setDelegate:(id)junk.get()];
  EXPECT_CALM([layer setOpacity:0.25f]);
  EXPECT_EQ([layer opacity], 0.25f);
  EXPECT_EQ([layer animationForKey:@"opacity"], nil);
  [layer setDelegate:nil];

  [layer setActions:(id)@"not a dictionary"];
  EXPECT_CALM([layer setPosition:NSMakePoint(9, 9)]);
  EXPECT_EQ([layer position].x, 9);
  [layer removeAllAnimations];
  TVAnimationClockSetManual(NO);
}

// The dictionaries of the visual format, or their entries, of the wrong
// class: logged, no constraints, never an exception.
TEST_F(PlatformRobustness, VisualFormatDictionariesOfTheWrongClass) {
  NSView *a = [[[NSView alloc] initWithFrame:NSZeroRect] autorelease];
  NSDictionary *views = @{@"a" : a};
  NSString *format = @"H:[a(w)]";
  NSArray *result = nil;
  for (id metrics : {(id)@[ @1 ], (id)@"w", (id)@{@"w" : @"8"}, (id)@{@"w" : [NSNull null]},
                     (id)@{@1 : @8}}) {
    EXPECT_CALM(result = [NSLayoutConstraint constraintsWithVisualFormat:format
                                                                 options:0
                                                                 metrics:metrics
                                                                   views:views]);
    EXPECT_EQ([result count], 0u) << [[metrics description] UTF8String];
  }
  for (id badViews : {(id)@"a", (id)@1, (id)@[ a ], (id)@{@"a" : @"view"}, (id)@{@"a" : @3},
                      (id)@{@1 : a}}) {
    EXPECT_CALM(result = [NSLayoutConstraint constraintsWithVisualFormat:format
                                                                 options:0
                                                                 metrics:@{@"w" : @8}
                                                                   views:badViews]);
    EXPECT_EQ([result count], 0u) << [[badViews description] UTF8String];
  }
  EXPECT_CALM(result = [NSLayoutConstraint constraintsWithVisualFormat:(id)@5
                                                               options:0
                                                               metrics:nil
                                                                 views:views]);
  EXPECT_EQ([result count], 0u);
  // The same call with good dictionaries works.
  result = [NSLayoutConstraint constraintsWithVisualFormat:format
                                                   options:0
                                                   metrics:@{@"w" : @8}
                                                     views:views];
  ASSERT_EQ([result count], 1u);
  EXPECT_EQ([[result objectAtIndex:0] constant], 8);
}

// Numbers the format cannot hold, and priorities below AppKit's lowest.
TEST_F(PlatformRobustness, VisualFormatExtremeNumbers) {
  NSView *a = [[[NSView alloc] initWithFrame:NSZeroRect] autorelease];
  NSDictionary *views = @{@"a" : a};
  NSString *nines = [@"" stringByPaddingToLength:400 withString:@"9" startingAtIndex:0];
  NSArray *result = nil;
  EXPECT_CALM(result = [NSLayoutConstraint
                  constraintsWithVisualFormat:[NSString stringWithFormat:@"H:[a(==%@)]", nines]
                                      options:0
                                      metrics:nil
                                        views:views]);
  EXPECT_EQ([result count], 0u);
  for (id metric : {(id)@(INFINITY), (id)@(-INFINITY), (id)@(NAN)}) {
    EXPECT_CALM(result = [NSLayoutConstraint constraintsWithVisualFormat:@"H:[a(w)]"
                                                                 options:0
                                                                 metrics:@{@"w" : metric}
                                                                   views:views]);
    EXPECT_EQ([result count], 0u);
  }
  result = [NSLayoutConstraint constraintsWithVisualFormat:@"H:[a(20@p)]"
                                                   options:0
                                                   metrics:@{@"p" : @(1e-50)}
                                                     views:views];
  ASSERT_EQ([result count], 1u);
  EXPECT_EQ([[result objectAtIndex:0] priority], 1.0f);
  result = [NSLayoutConstraint
      constraintsWithVisualFormat:@"H:[a(20@0.00000000000000000000000000000000000000000000000001)]"
                          options:0
                          metrics:nil
                            views:views];
  ASSERT_EQ([result count], 1u);
  EXPECT_EQ([[result objectAtIndex:0] priority], 1.0f);
}

}  // namespace
