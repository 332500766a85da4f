// The split view's layout: dividers, subview order, both constraint sets,
// divider geometry and drawing, and invalidation by subview changes.

#import <Talvo/VXSplitView.h>

#import "layout/VXSplitView+Private.h"
#import "support/TestSupport.h"

@interface TVCountingSplitView : VXSplitView {
 @public
  int _displayRequests;
}
@end

@implementation TVCountingSplitView
- (void)setNeedsDisplay:(BOOL)flag {
  _displayRequests++;
  [super setNeedsDisplay:flag];
}
@end

namespace {

class SplitViewLayout : public PooledTest {
 protected:
  void SetUp() override {
    PooledTest::SetUp();
    split_.reset([[TVCountingSplitView alloc] initWithFrame:NSMakeRect(0, 0, 400, 300)]);
    v0_ = Add(0, 100);
    v1_ = Add(101, 200);
    v2_ = Add(302, 98);
  }
  NSView *Add(double x, double width) {
    NSView *view = [[[NSView alloc] initWithFrame:NSMakeRect(x, 0, width, 300)] autorelease];
    [split_.get() addSubview:view];
    return view;
  }
  TVCountingSplitView *split() { return split_.get(); }

  Owned<TVCountingSplitView> split_;
  NSView *v0_ = nil;
  NSView *v1_ = nil;
  NSView *v2_ = nil;
};

TEST_F(SplitViewLayout, UpdatePassMakesDividersInSubviewOrderAndBothSets) {
  [split() layoutSubtreeIfNeeded];
  NSArray *dividers = [split() dividerViews];
  ASSERT_EQ([dividers count], 2u);
  VXSplitViewDivider *d0 = [dividers objectAtIndex:0];
  VXSplitViewDivider *d1 = [dividers objectAtIndex:1];
  EXPECT_EQ([d0 index], 0);
  EXPECT_EQ([d1 index], 1);
  EXPECT_EQ([d0 splitView], split());
  EXPECT_NSEQ([split() subviews], (@[ v0_, v1_, d0, v2_, d1 ]));
  EXPECT_NSEQ([split() viewsInLayout], (@[ v0_, v1_, v2_ ]));

  NSArray *stack = [split() viewStackConstraints];
  ASSERT_EQ([stack count], 18u);
  NSLayoutConstraint *first = [stack objectAtIndex:0];
  EXPECT_EQ([first firstItem], v0_);
  EXPECT_EQ([first firstAttribute], NSLayoutAttributeLeading);
  EXPECT_EQ([first secondItem], split());
  NSLayoutConstraint *last = [stack lastObject];
  EXPECT_EQ([last firstItem], split());
  EXPECT_EQ([last firstAttribute], NSLayoutAttributeTrailing);
  EXPECT_EQ([last secondItem], v2_);
  for (NSLayoutConstraint *constraint in stack) {
    EXPECT_EQ([constraint priority], NSLayoutPriorityRequired);
    EXPECT_TRUE([constraint isActive]);
  }

  NSArray *positions = [split() positionConstraints];
  ASSERT_EQ([positions count], 2u);
  EXPECT_EQ([[positions objectAtIndex:0] firstItem], v1_);
  EXPECT_EQ([[positions objectAtIndex:0] constant], 101.0);
  EXPECT_EQ([[positions objectAtIndex:1] firstItem], v2_);
  EXPECT_EQ([[positions objectAtIndex:1] constant], 302.0);
  for (NSLayoutConstraint *position in positions) {
    EXPECT_EQ([position priority], 490.0f);
    EXPECT_EQ([position firstAttribute], NSLayoutAttributeLeading);
  }
}

TEST_F(SplitViewLayout, FramesFollowThePositionsAndTheChain) {
  [split() layoutSubtreeIfNeeded];
  EXPECT_NSEQ(NSStringFromRect([v0_ frame]), NSStringFromRect(NSMakeRect(0, 0, 100, 300)));
  EXPECT_NSEQ(NSStringFromRect([v1_ frame]), NSStringFromRect(NSMakeRect(101, 0, 200, 300)));
  EXPECT_NSEQ(NSStringFromRect([v2_ frame]), NSStringFromRect(NSMakeRect(302, 0, 98, 300)));
  VXSplitViewDivider *d1 = [[split() dividerViews] objectAtIndex:1];
  EXPECT_NSEQ(NSStringFromRect([d1 frame]), NSStringFromRect(NSMakeRect(301, 0, 1, 300)));

  // Moving a position constant moves the divider and resizes both neighbours.
  [[[split() positionConstraints] objectAtIndex:0] setConstant:151];
  [split() layoutSubtreeIfNeeded];
  EXPECT_EQ(NSWidth([v0_ frame]), 150);
  EXPECT_EQ(NSMinX([v1_ frame]), 151);
  EXPECT_EQ(NSWidth([v1_ frame]), 150);
}

TEST_F(SplitViewLayout, DividerRectanglesFollowTheViewsInLayout) {
  [split() layoutSubtreeIfNeeded];
  NSRect rect = [split() rectForDividerAtIndex:1];
  EXPECT_NSEQ(NSStringFromRect(rect), NSStringFromRect(NSMakeRect(301, 0, 1, 300)));
  EXPECT_EQ(NSMinX([split() rectForDividerAtIndex:7]), 0);
  EXPECT_EQ(NSMinX([split() rectForDividerAtIndex:-1]), 0);
}

TEST_F(SplitViewLayout, OnlyNonDividerSubviewsMakeTheStackStale) {
  [split() layoutSubtreeIfNeeded];
  NSArray *installed = [split() viewStackConstraints];
  VXSplitViewDivider *extra = [[[VXSplitViewDivider alloc] initWithFrame:NSZeroRect] autorelease];
  [split() addSubview:extra];
  EXPECT_EQ([split() viewStackConstraints], installed);
  EXPECT_FALSE([extra translatesAutoresizingMaskIntoConstraints]);
  [extra removeFromSuperview];
  EXPECT_EQ([split() viewStackConstraints], installed);

  NSView *plain = Add(0, 10);
  EXPECT_EQ([split() viewStackConstraints], nil);
  EXPECT_TRUE([split() needsUpdateConstraints]);
  EXPECT_FALSE([plain translatesAutoresizingMaskIntoConstraints]);
  // Until the next pass the dividers still describe the old arrangement.
  EXPECT_EQ([[split() dividerViews] count], 2u);
  [split() layoutSubtreeIfNeeded];
  EXPECT_EQ([[split() dividerViews] count], 3u);
  EXPECT_EQ([[split() viewStackConstraints] count], 25u);
}

TEST_F(SplitViewLayout, SettingTheInstalledSetAgainChangesNothing) {
  [split() layoutSubtreeIfNeeded];
  NSArray *installed = [split() viewStackConstraints];
  int requests = split()->_displayRequests;
  [split() setViewStackConstraints:installed];
  EXPECT_EQ(split()->_displayRequests, requests);
  EXPECT_EQ([[split() constraints] count], 20u);  // 18 + 2 positions

  [split() setPositionConstraints:nil];
  EXPECT_EQ(split()->_displayRequests, requests);  // positions never redisplay
  EXPECT_EQ([[split() constraints] count], 18u);
  [split() setViewStackConstraints:nil];
  EXPECT_EQ(split()->_displayRequests, requests + 1);
  EXPECT_EQ([[split() constraints] count], 0u);
}

TEST_F(SplitViewLayout, ForcedUpdateRebuildsAtOnceFromCurrentFrames) {
  [split() layoutSubtreeIfNeeded];
  NSArray *oldPositions = [split() positionConstraints];
  [v0_ setFrame:NSMakeRect(0, 0, 60, 300)];
  [split() _forceUpdateConstraints];
  EXPECT_NE([split() positionConstraints], oldPositions);
  EXPECT_EQ([[[split() positionConstraints] objectAtIndex:0] constant], 61.0);
  EXPECT_EQ([[split() viewStackConstraints] count], 18u);
}

TEST_F(SplitViewLayout, SmallSplitViews) {
  Owned<VXSplitView> empty([[VXSplitView alloc] initWithFrame:NSMakeRect(0, 0, 100, 100)]);
  [empty.get() layoutSubtreeIfNeeded];
  EXPECT_NE([empty.get() viewStackConstraints], nil);
  EXPECT_EQ([[empty.get() viewStackConstraints] count], 0u);
  EXPECT_EQ([empty.get() positionConstraints], nil);

  NSView *only = [[[NSView alloc] initWithFrame:NSMakeRect(5, 5, 10, 10)] autorelease];
  [empty.get() addSubview:only];
  [empty.get() layoutSubtreeIfNeeded];
  EXPECT_EQ([[empty.get() viewStackConstraints] count], 4u);  // leading, top, bottom, trailing
  EXPECT_EQ([empty.get() positionConstraints], nil);
  EXPECT_NSEQ(NSStringFromRect([only frame]), NSStringFromRect(NSMakeRect(0, 0, 100, 100)));
  EXPECT_TRUE([VXSplitView requiresConstraintBasedLayout]);
  EXPECT_EQ([empty.get() dividerThickness], 1.0);
}

// Renders `view` into a bitmap over an opaque background and answers the
// red component (0…255) of the pixel at (x, y) counted from the top left.
int RedAt(NSView *view, NSColor *background, int x, int y) {
  NSSize size = [view bounds].size;
  Owned<NSImage> image([[NSImage alloc] initWithSize:size]);
  [image.get() lockFocus];
  [background setFill];
  NSRectFill(NSMakeRect(0, 0, size.width, size.height));
  [view drawRect:[view bounds]];
  NSBitmapImageRep *rep = [[[NSBitmapImageRep alloc]
      initWithFocusedViewRect:NSMakeRect(0, 0, size.width, size.height)] autorelease];
  [image.get() unlockFocus];
  return (int)lround([[rep colorAtX:x y:y] redComponent] * 255);
}

TEST_F(SplitViewLayout, DefaultDividerDrawsADarkThenALightStrip) {
  if (!HasWindowServer()) {
    GTEST_SKIP() << "needs a window server";
  }
  VXSplitViewDivider *divider =
      [[[VXSplitViewDivider alloc] initWithFrame:NSMakeRect(0, 0, 4, 10)] autorelease];
  NSColor *grey = [NSColor colorWithCalibratedWhite:0.5 alpha:1];
  EXPECT_NEAR(RedAt(divider, grey, 0, 5), 0.5 * 0.64 * 255, 2);       // black at 0.36
  EXPECT_NEAR(RedAt(divider, grey, 1, 5), (0.5 * 0.9 + 0.1) * 255, 2);  // white at 0.1
  EXPECT_NEAR(RedAt(divider, grey, 2, 5), 0.5 * 255, 2);
}

TEST_F(SplitViewLayout, DividerDrawerGetsTheIndexAndAThicknessWideRectangle) {
  __block NSInteger drawnIndex = -1;
  __block NSRect drawnRect = NSZeroRect;
  [split() setDividerDrawer:^(NSInteger index, NSRect rect) {
    drawnIndex = index;
    drawnRect = rect;
  }];
  [split() layoutSubtreeIfNeeded];
  VXSplitViewDivider *d1 = [[split() dividerViews] objectAtIndex:1];
  [d1 drawRect:NSZeroRect];
  EXPECT_EQ(drawnIndex, 1);
  EXPECT_NSEQ(NSStringFromRect(drawnRect), NSStringFromRect(NSMakeRect(0, 0, 1, 300)));
}

}  // namespace
