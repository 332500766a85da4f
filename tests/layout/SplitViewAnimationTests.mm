// Sliding panels in and out, with the animation clock driven by hand.

#import <Talvo/Talvo.h>

#import "layout/VXSplitView+Private.h"
#import "platform/QuartzCore/TVAnimationClock.h"
#import "support/TestSupport.h"

namespace {

class SplitViewAnimation : public PooledTest {
 protected:
  void SetUp() override {
    PooledTest::SetUp();
    TVAnimationClockSetManual(YES);
    split_.reset([[VXSplitView alloc] initWithFrame:NSMakeRect(0, 0, 600, 300)]);
    NSView *main = [[[NSView alloc] initWithFrame:NSMakeRect(0, 0, 600, 300)] autorelease];
    [split_.get() pushSubView:main atPosition:VXSplitViewPushPositionBeginning autosaveName:nil];
    [split_.get() layoutSubtreeIfNeeded];
    [split_.get() setAnimated:YES];
    names_.reset([NSMutableArray new]);
    for (NSString *name in @[ VXSplitViewDidDragDividerNotification,
                              VXSplitViewWillPushSubviewNotification,
                              VXSplitViewDidPushSubviewNotification,
                              VXSplitViewWillCollapseSubviewNotification,
                              VXSplitViewDidCollapseSubviewNotification ]) {
      NSMutableArray *names = names_.get();
      id token = [[NSNotificationCenter defaultCenter]
          addObserverForName:name
                      object:split_.get()
                       queue:nil
                  usingBlock:^(NSNotification *note) {
                    [names addObject:[[note name] stringByReplacingOccurrencesOfString:
                                                      @"VXSplitView" withString:@""]];
                  }];
      [tokens_ addObject:token];
    }
  }
  void TearDown() override {
    TVAnimationClockAdvance(10);
    for (id token in tokens_.get()) {
      [[NSNotificationCenter defaultCenter] removeObserver:token];
    }
    TVAnimationClockSetManual(NO);
    split_.reset();
    PooledTest::TearDown();
  }
  NSView *Panel(double width) {
    return [[[NSView alloc] initWithFrame:NSMakeRect(0, 0, width, 300)] autorelease];
  }
  double SideConstant() { return [[[split_.get() viewStackConstraints] lastObject] constant]; }
  double DividerConstant() { return [[[split_.get() positionConstraints] lastObject] constant]; }

  Owned<VXSplitView> split_;
  Owned<NSMutableArray> names_;
  Owned<NSMutableArray> tokens_{[NSMutableArray new]};
};

TEST_F(SplitViewAnimation, PushAtEndSlidesInFromBeyondTheTrailingEdge) {
  [split_.get() pushSubView:Panel(200) atPosition:VXSplitViewPushPositionEnd autosaveName:nil];
  EXPECT_NSEQ(names_.get(), (@[ @"WillPushSubviewNotification" ]));
  EXPECT_EQ(SideConstant(), -200);
  EXPECT_EQ(DividerConstant(), 600);

  TVAnimationClockAdvance(0.125);
  EXPECT_GT(SideConstant(), -200);
  EXPECT_LT(SideConstant(), 0);
  EXPECT_LT(DividerConstant(), 600);
  EXPECT_GT(DividerConstant(), 400);
  // Ease-out: past the middle of the distance at the middle of the time.
  EXPECT_GT(SideConstant(), -100);
  EXPECT_EQ([names_.get() count], 1u);

  TVAnimationClockAdvance(0.2);
  EXPECT_EQ(SideConstant(), 0);
  EXPECT_EQ(DividerConstant(), 400);
  EXPECT_NSEQ(names_.get(), (@[ @"WillPushSubviewNotification", @"DidPushSubviewNotification" ]));
  [split_.get() layoutSubtreeIfNeeded];
  NSView *panel = [[split_.get() viewsInLayout] lastObject];
  EXPECT_EQ(NSMinX([panel frame]), 400);
  EXPECT_EQ(NSWidth([panel frame]), 200);
}

TEST_F(SplitViewAnimation, PushDuringASlideIsPlacedAtOnceAndReportsFirst) {
  [split_.get() pushSubView:Panel(200) atPosition:VXSplitViewPushPositionEnd autosaveName:nil];
  TVAnimationClockAdvance(0.1);
  [split_.get() pushSubView:Panel(120) atPosition:VXSplitViewPushPositionBeginning autosaveName:nil];
  EXPECT_NSEQ(names_.get(), (@[ @"WillPushSubviewNotification", @"WillPushSubviewNotification",
                                @"DidPushSubviewNotification" ]));
  TVAnimationClockAdvance(0.3);
  EXPECT_EQ([names_.get() count], 4u);
  EXPECT_NSEQ([names_.get() lastObject], @"DidPushSubviewNotification");
}

TEST_F(SplitViewAnimation, PopSlidesOutThenRemovesTheView) {
  NSView *panel = Panel(200);
  [split_.get() pushSubView:panel atPosition:VXSplitViewPushPositionBeginning autosaveName:@"nav"];
  TVAnimationClockAdvance(0.3);
  [split_.get() layoutSubtreeIfNeeded];
  [names_.get() removeAllObjects];

  [split_.get() popSubViewAtPosition:VXSplitViewPushPositionBeginning];
  EXPECT_NSEQ(names_.get(), (@[ @"WillCollapseSubviewNotification" ]));
  EXPECT_NSEQ([[split_.get() autosavedSizes] objectForKey:@"nav"], @200.0);
  TVAnimationClockAdvance(0.125);
  EXPECT_EQ([panel superview], split_.get());  // still sliding
  double side = [[[split_.get() viewStackConstraints] objectAtIndex:0] constant];
  EXPECT_LT(side, 0);
  EXPECT_GT(side, -200);
  TVAnimationClockAdvance(0.2);
  EXPECT_EQ([panel superview], nil);
  EXPECT_NSEQ(names_.get(), (@[ @"WillCollapseSubviewNotification",
                                @"DidCollapseSubviewNotification" ]));
  [split_.get() layoutSubtreeIfNeeded];
  EXPECT_EQ([[split_.get() viewsInLayout] count], 1u);
  EXPECT_EQ(NSWidth([[[split_.get() viewsInLayout] objectAtIndex:0] frame]), 600);
}

}  // namespace
