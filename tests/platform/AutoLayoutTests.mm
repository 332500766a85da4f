// Auto Layout on GNUstep: the visual format, the update and layout passes,
// and frames that end up where the constraints say.

#import <AppKit/AppKit.h>

#import "support/TestSupport.h"

// Records the order in which the update pass reaches views.
@interface TVUpdateRecorderView : NSView {
  NSMutableArray *_log;
}
@property(nonatomic, assign) NSMutableArray *log;
@end

@implementation TVUpdateRecorderView
@synthesize log = _log;
+ (BOOL)requiresConstraintBasedLayout {
  return YES;
}
- (void)updateConstraints {
  [_log addObject:[NSNumber numberWithInteger:[self tag]]];
  [super updateConstraints];
}
- (NSInteger)tag {
  return (NSInteger)NSWidth([self frame]);
}
@end

@interface TVFlippedView : NSView
@end
@implementation TVFlippedView
- (BOOL)isFlipped {
  return YES;
}
@end

@interface TVIntrinsicView : NSView
@end
@implementation TVIntrinsicView
- (NSSize)intrinsicContentSize {
  return NSMakeSize(64, 24);
}
@end

namespace {

// Installs on `holder` the constraints of a visual format.
void AddFormat(NSView *holder, NSString *format, NSDictionary *views,
               NSLayoutFormatOptions options = 0) {
  [holder addConstraints:[NSLayoutConstraint constraintsWithVisualFormat:format
                                                                 options:options
                                                                 metrics:nil
                                                                   views:views]];
}

class AutoLayout : public PooledTest {
 protected:
  void SetUp() override {
    PooledTest::SetUp();
    content_.reset([[NSView alloc] initWithFrame:NSMakeRect(0, 0, 400, 300)]);
    a_ = Child(content_);
    b_ = Child(content_);
  }
  NSView *Child(NSView *parent, Class cls = [NSView class]) {
    NSView *view = [[[cls alloc] initWithFrame:NSMakeRect(1, 2, 3, 4)] autorelease];
    [view setTranslatesAutoresizingMaskIntoConstraints:NO];
    [parent addSubview:view];
    return view;
  }
  void Add(NSString *format) { AddFormat(content_, format, @{@"a" : a_, @"b" : b_}); }
  Owned<NSView> content_;
  NSView *a_ = nil;
  NSView *b_ = nil;
};

void ExpectFrame(NSView *view, double x, double y, double w, double h) {
  NSRect frame = [view frame];
  EXPECT_NEAR(NSMinX(frame), x, 1e-6);
  EXPECT_NEAR(NSMinY(frame), y, 1e-6);
  EXPECT_NEAR(NSWidth(frame), w, 1e-6);
  EXPECT_NEAR(NSHeight(frame), h, 1e-6);
}

TEST_F(AutoLayout, VisualFormatItemsAndAttributesMatchAppKit) {
  NSDictionary *views = @{@"a" : a_, @"b" : b_};
  NSArray *trailing = [NSLayoutConstraint constraintsWithVisualFormat:@"H:[a]|"
                                                              options:0
                                                              metrics:nil
                                                                views:views];
  ASSERT_EQ([trailing count], 1u);
  NSLayoutConstraint *pin = [trailing objectAtIndex:0];
  EXPECT_EQ([pin firstItem], content_.get());
  EXPECT_EQ([pin firstAttribute], NSLayoutAttributeTrailing);
  EXPECT_EQ([pin secondItem], a_);
  EXPECT_EQ([pin secondAttribute], NSLayoutAttributeTrailing);

  NSArray *leading = [NSLayoutConstraint constraintsWithVisualFormat:@"H:|[a]"
                                                             options:0
                                                             metrics:nil
                                                               views:views];
  ASSERT_EQ([leading count], 1u);
  EXPECT_EQ([[leading objectAtIndex:0] firstItem], a_);
  EXPECT_EQ([[leading objectAtIndex:0] secondItem], content_.get());

  NSView *c = Child(content_);
  NSArray *chain =
      [NSLayoutConstraint constraintsWithVisualFormat:@"H:[a]-0-[b(w)]-0-[c]"
                                              options:0
                                              metrics:@{
                                                @"w" : @40
                                              }
                                                views:@{@"a" : a_, @"b" : b_, @"c" : c}];
  EXPECT_EQ([chain count], 3u);

  NSArray *predicate = [NSLayoutConstraint constraintsWithVisualFormat:@"H:[a]-(>=20@750)-[b]"
                                                               options:0
                                                               metrics:nil
                                                                 views:views];
  ASSERT_EQ([predicate count], 1u);
  EXPECT_EQ([[predicate objectAtIndex:0] relation], NSLayoutRelationGreaterThanOrEqual);
  EXPECT_EQ([[predicate objectAtIndex:0] priority], 750.0f);
  EXPECT_EQ([[predicate objectAtIndex:0] constant], 20.0);
}

TEST_F(AutoLayout, MalformedFormatsGiveNothing) {
  NSDictionary *views = @{@"a" : a_};
  for (NSString *format in @[ @"H:[a(>=20]", @"H:[zz]", @"H:[a(missing)]", @"H:[a]-" ]) {
    EXPECT_EQ([[NSLayoutConstraint constraintsWithVisualFormat:format
                                                       options:0
                                                       metrics:nil
                                                         views:views] count],
              0u)
        << [format UTF8String];
  }
  NSView *orphan = [[[NSView alloc] initWithFrame:NSZeroRect] autorelease];
  EXPECT_EQ([[NSLayoutConstraint constraintsWithVisualFormat:@"H:|[o]|"
                                                     options:0
                                                     metrics:nil
                                                       views:@{@"o" : orphan}] count],
            0u);
}

TEST_F(AutoLayout, FramesFollowTheConstraintsInAnUnflippedView) {
  Add(@"H:|-10-[a(100)]-8-[b]-10-|");
  Add(@"V:|-20-[a(50)]");
  Add(@"V:|-20-[b(==a)]");
  [content_.get() layoutSubtreeIfNeeded];
  // The engine's y grows downward: 20 below the top of a 300-high view.
  ExpectFrame(a_, 10, 230, 100, 50);
  ExpectFrame(b_, 118, 230, 272, 50);
}

TEST_F(AutoLayout, VerticalSpacingPutsTheSecondViewBelowInFlippedViewsToo) {
  Owned<NSView> flipped([[TVFlippedView alloc] initWithFrame:NSMakeRect(0, 0, 200, 200)]);
  NSView *top = Child(flipped);
  NSView *below = Child(flipped);
  AddFormat(flipped.get(), @"V:|-5-[top(30)]-8-[below(40)]", @{@"top" : top, @"below" : below});
  [flipped.get() layoutSubtreeIfNeeded];
  EXPECT_NEAR(NSMinY([top frame]), 5, 1e-6);
  EXPECT_NEAR(NSMinY([below frame]), 43, 1e-6);
}

TEST_F(AutoLayout, ChangingAConstantMovesTheViewAtTheNextPass) {
  Add(@"H:|-10-[a(100)]");
  Add(@"V:|[a(10)]");
  NSLayoutConstraint *leading = nil;
  for (NSLayoutConstraint *constraint in [content_.get() constraints]) {
    if ([constraint firstAttribute] == NSLayoutAttributeLeading) {
      leading = constraint;
    }
  }
  ASSERT_NE(leading, nil);
  [content_.get() layoutSubtreeIfNeeded];
  EXPECT_NEAR(NSMinX([a_ frame]), 10, 1e-6);
  [leading setConstant:42];
  EXPECT_TRUE([content_.get() needsLayout]);
  [content_.get() layoutSubtreeIfNeeded];
  EXPECT_NEAR(NSMinX([a_ frame]), 42, 1e-6);
}

TEST_F(AutoLayout, PrioritiesDecideBetweenConflictingWishes) {
  Add(@"H:|[a(>=50@1000)]");
  Add(@"H:[a(==20@750)]");
  Add(@"H:[a(==300@250)]");
  Add(@"V:|[a(10)]");
  [content_.get() layoutSubtreeIfNeeded];
  EXPECT_NEAR(NSWidth([a_ frame]), 50, 1e-6);
}

TEST_F(AutoLayout, UnsatisfiableRequiredConstraintsAreBrokenNotFatal) {
  Add(@"H:|[a(100)]");
  Add(@"H:[a(200)]");
  Add(@"V:|[a(10)]");
  [content_.get() layoutSubtreeIfNeeded];
  double width = NSWidth([a_ frame]);
  EXPECT_TRUE(width == 100 || width == 200) << width;
}

TEST_F(AutoLayout, ViewsThatTranslateTheirMaskKeepTheirFrames) {
  NSView *fixed = [[[NSView alloc] initWithFrame:NSMakeRect(30, 40, 50, 60)] autorelease];
  [content_.get() addSubview:fixed];
  AddFormat(content_.get(), @"H:[fixed]-5-[a(10)]", @{@"fixed" : fixed, @"a" : a_},
            NSLayoutFormatAlignAllTop);
  Add(@"V:[a(10)]");
  [content_.get() layoutSubtreeIfNeeded];
  ExpectFrame(fixed, 30, 40, 50, 60);
  ExpectFrame(a_, 85, 90, 10, 10);  // tops aligned: y = 40 + 60 - 10
}

TEST_F(AutoLayout, IntrinsicSizeHoldsUnlessStrongerConstraintsSayOtherwise) {
  NSView *label = Child(content_, [TVIntrinsicView class]);
  AddFormat(content_.get(), @"H:|[label]", @{@"label" : label});
  AddFormat(content_.get(), @"V:|[label]", @{@"label" : label});
  [content_.get() layoutSubtreeIfNeeded];
  EXPECT_NEAR(NSWidth([label frame]), 64, 1e-6);
  EXPECT_NEAR(NSHeight([label frame]), 24, 1e-6);
}

TEST_F(AutoLayout, AViewLeavingItsSuperviewTakesItsConstraints) {
  NSView *inner = Child(a_);
  Add(@"H:|[a]-[b]|");
  AddFormat(content_.get(), @"H:[inner]-[b]", @{@"inner" : inner, @"b" : b_});
  NSUInteger before = [[content_.get() constraints] count];
  EXPECT_EQ(before, 4u);
  [a_ removeFromSuperview];
  // Only "b.trailing" to the superview stays: the others named a or inner.
  ASSERT_EQ([[content_.get() constraints] count], 1u);
  EXPECT_EQ([[[content_.get() constraints] objectAtIndex:0] secondItem], b_);
}

TEST_F(AutoLayout, UpdatePassRunsLeavesFirstAndOnlyWhereNeeded) {
  NSMutableArray *log = [NSMutableArray array];
  Owned<TVUpdateRecorderView> parent(
      [[TVUpdateRecorderView alloc] initWithFrame:NSMakeRect(0, 0, 2, 2)]);
  TVUpdateRecorderView *child =
      [[[TVUpdateRecorderView alloc] initWithFrame:NSMakeRect(0, 0, 1, 1)] autorelease];
  [parent.get() setLog:log];
  [child setLog:log];
  [parent.get() addSubview:child];
  [parent.get() layoutSubtreeIfNeeded];
  EXPECT_NSEQ(log, (@[ @1, @2 ]));
  [log removeAllObjects];
  [parent.get() layoutSubtreeIfNeeded];
  EXPECT_EQ([log count], 0u);
  [parent.get() setNeedsUpdateConstraints:YES];
  [parent.get() layoutSubtreeIfNeeded];
  EXPECT_NSEQ(log, (@[ @2 ]));
  EXPECT_FALSE([parent.get() needsUpdateConstraints]);
}

class AutoLayoutInWindow : public PooledTest {
 protected:
  void SetUp() override {
    PooledTest::SetUp();
    if (!HasWindowServer()) {
      GTEST_SKIP() << "needs a window server";
    }
    window_.reset([[NSWindow alloc] initWithContentRect:NSMakeRect(50, 50, 300, 200)
                                              styleMask:NSTitledWindowMask | NSResizableWindowMask
                                                backing:NSBackingStoreBuffered
                                                  defer:NO]);
    [window_.get() setReleasedWhenClosed:NO];
  }
  void TearDown() override {
    [window_.get() close];
    window_.reset();
    PooledTest::TearDown();
  }
  Owned<NSWindow> window_;
};

TEST_F(AutoLayoutInWindow, WindowsLayOutBeforeTheyDisplayAndAfterResizing) {
  NSView *content = [window_.get() contentView];
  NSView *panel = [[[NSView alloc] initWithFrame:NSZeroRect] autorelease];
  [panel setTranslatesAutoresizingMaskIntoConstraints:NO];
  [content addSubview:panel];
  AddFormat(content, @"H:|-10-[panel]-10-|", @{@"panel" : panel});
  AddFormat(content, @"V:|-10-[panel]-10-|", @{@"panel" : panel});
  [window_.get() orderFront:nil];
  ExpectFrame(panel, 10, 10, 280, 180);

  [window_.get() setContentSize:NSMakeSize(400, 250)];
  [window_.get() display];
  ExpectFrame(panel, 10, 10, 380, 230);
}

}  // namespace

namespace {

// The live solver is kept between passes: what changes must be noticed.
TEST_F(AutoLayout, LaterPassesSeeRemovedReaddedAndMovedViews) {
  Add(@"H:|-10-[a(100)]-8-[b(50)]");
  Add(@"V:|[a(10)]");
  Add(@"V:|[b(10)]");
  [content_.get() layoutSubtreeIfNeeded];
  EXPECT_NEAR(NSMinX([b_ frame]), 118, 1e-6);

  // b leaves (taking its constraints) and comes back with new ones.
  [b_ retain];
  [b_ removeFromSuperview];
  [content_.get() layoutSubtreeIfNeeded];
  [content_.get() addSubview:b_];
  [b_ release];
  Add(@"H:|-200-[b(30)]");
  Add(@"V:|-5-[b(10)]");
  [content_.get() layoutSubtreeIfNeeded];
  EXPECT_NEAR(NSMinX([b_ frame]), 200, 1e-6);
  EXPECT_NEAR(NSWidth([b_ frame]), 30, 1e-6);

  // A broken constraint comes back once its rival goes.
  NSLayoutConstraint *rival = [NSLayoutConstraint constraintWithItem:a_
                                                           attribute:NSLayoutAttributeWidth
                                                           relatedBy:NSLayoutRelationEqual
                                                              toItem:nil
                                                           attribute:NSLayoutAttributeNotAnAttribute
                                                          multiplier:1
                                                            constant:70];
  [content_.get() addConstraint:rival];
  [content_.get() layoutSubtreeIfNeeded];
  EXPECT_NEAR(NSWidth([a_ frame]), 100, 1e-6);  // added later: broken
  NSLayoutConstraint *original = nil;
  for (NSLayoutConstraint *constraint in [content_.get() constraints]) {
    if ([constraint firstItem] == a_ && [constraint firstAttribute] == NSLayoutAttributeWidth &&
        constraint != rival) {
      original = constraint;
    }
  }
  [content_.get() removeConstraint:original];
  [content_.get() layoutSubtreeIfNeeded];
  EXPECT_NEAR(NSWidth([a_ frame]), 70, 1e-6);
}

TEST_F(AutoLayout, TranslatingViewsMovedByCodeMoveTheirDependents) {
  NSView *anchor = [[[NSView alloc] initWithFrame:NSMakeRect(20, 100, 40, 40)] autorelease];
  [content_.get() addSubview:anchor];
  AddFormat(content_.get(), @"H:[anchor]-10-[a(5)]", @{@"anchor" : anchor, @"a" : a_},
            NSLayoutFormatAlignAllTop);
  Add(@"V:[a(5)]");
  [content_.get() layoutSubtreeIfNeeded];
  EXPECT_NEAR(NSMinX([a_ frame]), 70, 1e-6);
  [anchor setFrameOrigin:NSMakePoint(50, 100)];
  EXPECT_TRUE([content_.get() needsLayout]);
  [content_.get() layoutSubtreeIfNeeded];
  EXPECT_NEAR(NSMinX([a_ frame]), 100, 1e-6);
}

}  // namespace

namespace {

TEST_F(AutoLayoutInWindow, TreesBuiltOutsideTheWindowAreLaidOutWhenTheyJoinIt) {
  Owned<NSView> page([[NSView alloc] initWithFrame:NSMakeRect(0, 0, 300, 200)]);
  NSView *inner = [[[NSView alloc] initWithFrame:NSZeroRect] autorelease];
  [inner setTranslatesAutoresizingMaskIntoConstraints:NO];
  NSView *container = [[[NSView alloc] initWithFrame:NSMakeRect(10, 10, 100, 100)] autorelease];
  [container addSubview:inner];
  AddFormat(container, @"H:|-5-[inner]-5-|", @{@"inner" : inner});
  AddFormat(container, @"V:|-5-[inner]-5-|", @{@"inner" : inner});
  [page.get() addSubview:container];
  [window_.get() setContentView:page];
  [window_.get() orderFront:nil];
  ExpectFrame(inner, 5, 5, 90, 90);
}

}  // namespace
