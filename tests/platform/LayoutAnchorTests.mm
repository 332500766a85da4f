// Layout anchors on GNUstep, and the view geometry Auto Layout reads:
// layout direction, baselines and alignment rects.

#import <AppKit/AppKit.h>

#import "support/TestSupport.h"

@interface TVAnchorTestInsetView : NSView
@end
@implementation TVAnchorTestInsetView
- (NSEdgeInsets)alignmentRectInsets {
  return NSEdgeInsetsMake(1, 2, 3, 4);  // top, left, bottom, right
}
@end

namespace {

void ExpectFrameOf(NSView *view, double x, double y, double w, double h) {
  NSRect frame = [view frame];
  EXPECT_NEAR(NSMinX(frame), x, 1e-6) << [NSStringFromRect(frame) UTF8String];
  EXPECT_NEAR(NSMinY(frame), y, 1e-6) << [NSStringFromRect(frame) UTF8String];
  EXPECT_NEAR(NSWidth(frame), w, 1e-6) << [NSStringFromRect(frame) UTF8String];
  EXPECT_NEAR(NSHeight(frame), h, 1e-6) << [NSStringFromRect(frame) UTF8String];
}

class LayoutAnchor : public PooledTest {
 protected:
  void SetUp() override {
    PooledTest::SetUp();
    root_.reset([[NSView alloc] initWithFrame:NSMakeRect(0, 0, 300, 200)]);
    a_ = Child(root_);
    b_ = Child(root_);
  }
  static NSView *Child(NSView *parent) {
    NSView *view = [[[NSView alloc] initWithFrame:NSMakeRect(1, 2, 3, 4)] autorelease];
    [view setTranslatesAutoresizingMaskIntoConstraints:NO];
    [parent addSubview:view];
    return view;
  }
  Owned<NSView> root_;
  NSView *a_ = nil;
  NSView *b_ = nil;
};

void ExpectConstraint(NSLayoutConstraint *c, id first, NSLayoutAttribute firstAttribute,
                      NSLayoutRelation relation, id second, NSLayoutAttribute secondAttribute,
                      double multiplier, double constant) {
  ASSERT_TRUE(c != nil);
  EXPECT_EQ([c firstItem], first);
  EXPECT_EQ([c firstAttribute], firstAttribute);
  EXPECT_EQ([c relation], relation);
  EXPECT_EQ([c secondItem], second);
  EXPECT_EQ([c secondAttribute], secondAttribute);
  EXPECT_DOUBLE_EQ([c multiplier], multiplier);
  EXPECT_DOUBLE_EQ([c constant], constant);
  EXPECT_EQ([c priority], NSLayoutPriorityRequired);
  EXPECT_FALSE([c isActive]);
}

TEST_F(LayoutAnchor, ViewAnchorsAreOfAppleClassesNamedAndKeptPerView) {
  struct Case {
    NSLayoutAnchor *anchor;
    Class cls;
    NSString *name;
  } cases[] = {
      {[a_ leadingAnchor], [NSLayoutXAxisAnchor class], @"leading"},
      {[a_ trailingAnchor], [NSLayoutXAxisAnchor class], @"trailing"},
      {[a_ leftAnchor], [NSLayoutXAxisAnchor class], @"left"},
      {[a_ rightAnchor], [NSLayoutXAxisAnchor class], @"right"},
      {[a_ centerXAnchor], [NSLayoutXAxisAnchor class], @"centerX"},
      {[a_ topAnchor], [NSLayoutYAxisAnchor class], @"top"},
      {[a_ bottomAnchor], [NSLayoutYAxisAnchor class], @"bottom"},
      {[a_ centerYAnchor], [NSLayoutYAxisAnchor class], @"centerY"},
      {[a_ firstBaselineAnchor], [NSLayoutYAxisAnchor class], @"firstBaseline"},
      {[a_ lastBaselineAnchor], [NSLayoutYAxisAnchor class], @"lastBaseline"},
      {[a_ widthAnchor], [NSLayoutDimension class], @"width"},
      {[a_ heightAnchor], [NSLayoutDimension class], @"height"},
  };
  for (const Case &c : cases) {
    EXPECT_TRUE([c.anchor isKindOfClass:c.cls]) << [c.name UTF8String];
    EXPECT_EQ([c.anchor item], a_) << [c.name UTF8String];
    EXPECT_NSEQ([c.anchor name], c.name);
  }
  EXPECT_EQ([a_ widthAnchor], [a_ widthAnchor]);
  EXPECT_NE((id)[a_ widthAnchor], (id)[b_ widthAnchor]);
  EXPECT_EQ([[[a_ topAnchor] copy] autorelease], [a_ topAnchor]);
}

TEST_F(LayoutAnchor, FactoriesMakeTheConstraintsAppKitMakes) {
  ExpectConstraint([[b_ leadingAnchor] constraintEqualToAnchor:[a_ trailingAnchor] constant:8], b_,
                   NSLayoutAttributeLeading, NSLayoutRelationEqual, a_, NSLayoutAttributeTrailing,
                   1, 8);
  ExpectConstraint([[b_ leadingAnchor] constraintEqualToAnchor:[a_ trailingAnchor]], b_,
                   NSLayoutAttributeLeading, NSLayoutRelationEqual, a_, NSLayoutAttributeTrailing,
                   1, 0);
  ExpectConstraint([[a_ topAnchor] constraintGreaterThanOrEqualToAnchor:[b_ bottomAnchor]
                                                               constant:-3],
                   a_, NSLayoutAttributeTop, NSLayoutRelationGreaterThanOrEqual, b_,
                   NSLayoutAttributeBottom, 1, -3);
  ExpectConstraint([[a_ topAnchor] constraintLessThanOrEqualToAnchor:[b_ firstBaselineAnchor]], a_,
                   NSLayoutAttributeTop, NSLayoutRelationLessThanOrEqual, b_,
                   NSLayoutAttributeFirstBaseline, 1, 0);
  ExpectConstraint([[a_ widthAnchor] constraintEqualToAnchor:[b_ heightAnchor] multiplier:0.5], a_,
                   NSLayoutAttributeWidth, NSLayoutRelationEqual, b_, NSLayoutAttributeHeight, 0.5,
                   0);
  ExpectConstraint([[a_ widthAnchor] constraintLessThanOrEqualToAnchor:[b_ widthAnchor]
                                                            multiplier:2
                                                              constant:7],
                   a_, NSLayoutAttributeWidth, NSLayoutRelationLessThanOrEqual, b_,
                   NSLayoutAttributeWidth, 2, 7);
  ExpectConstraint([[a_ heightAnchor] constraintGreaterThanOrEqualToAnchor:[b_ heightAnchor]
                                                                multiplier:3],
                   a_, NSLayoutAttributeHeight, NSLayoutRelationGreaterThanOrEqual, b_,
                   NSLayoutAttributeHeight, 3, 0);
  ExpectConstraint([[a_ heightAnchor] constraintEqualToConstant:44], a_, NSLayoutAttributeHeight,
                   NSLayoutRelationEqual, nil, NSLayoutAttributeNotAnAttribute, 1, 44);
  ExpectConstraint([[a_ widthAnchor] constraintGreaterThanOrEqualToConstant:10], a_,
                   NSLayoutAttributeWidth, NSLayoutRelationGreaterThanOrEqual, nil,
                   NSLayoutAttributeNotAnAttribute, 1, 10);
  ExpectConstraint([[a_ widthAnchor] constraintLessThanOrEqualToConstant:90], a_,
                   NSLayoutAttributeWidth, NSLayoutRelationLessThanOrEqual, nil,
                   NSLayoutAttributeNotAnAttribute, 1, 90);
  // Each call is a new constraint.
  EXPECT_NE([[a_ leftAnchor] constraintEqualToAnchor:[b_ leftAnchor]],
            [[a_ leftAnchor] constraintEqualToAnchor:[b_ leftAnchor]]);
  NSLayoutConstraint *c = [[b_ leadingAnchor] constraintEqualToAnchor:[a_ trailingAnchor]];
  EXPECT_EQ([c firstAnchor], [b_ leadingAnchor]);
  EXPECT_EQ([c secondAnchor], [a_ trailingAnchor]);
}

TEST_F(LayoutAnchor, MismatchedAnchorsAnswerNilWithoutRaising) {
  @try {
    // Axis against axis, axis against dimension.
    EXPECT_TRUE([[a_ leadingAnchor] constraintEqualToAnchor:(id)[b_ topAnchor]] == nil);
    EXPECT_TRUE([[a_ topAnchor] constraintEqualToAnchor:(id)[b_ centerXAnchor] constant:4] == nil);
    EXPECT_TRUE([[a_ centerXAnchor] constraintLessThanOrEqualToAnchor:(id)[b_ widthAnchor]] ==
                nil);
    EXPECT_TRUE([[a_ widthAnchor] constraintEqualToAnchor:(id)[b_ leftAnchor] multiplier:2] == nil);
    EXPECT_TRUE([[a_ heightAnchor] constraintGreaterThanOrEqualToAnchor:(id)[b_ bottomAnchor]] ==
                nil);
    // Leading/trailing never meets left/right.
    EXPECT_TRUE([[a_ leadingAnchor] constraintEqualToAnchor:[b_ leftAnchor]] == nil);
    EXPECT_TRUE([[a_ rightAnchor] constraintEqualToAnchor:[b_ trailingAnchor] constant:1] == nil);
    // Nil, foreign and item-less arguments.
    EXPECT_TRUE([[a_ leadingAnchor] constraintEqualToAnchor:NullOf<NSLayoutXAxisAnchor *>()] ==
                nil);
    EXPECT_TRUE([[a_ widthAnchor] constraintEqualToAnchor:NullOf<NSLayoutDimension *>()
                                               multiplier:1
                                                 constant:2] == nil);
    EXPECT_TRUE([[a_ leadingAnchor] constraintEqualToAnchor:(id)@"leading"] == nil);
    NSLayoutXAxisAnchor *loose = [[[NSLayoutXAxisAnchor alloc] init] autorelease];
    EXPECT_TRUE([loose constraintEqualToAnchor:[a_ leadingAnchor]] == nil);
    EXPECT_TRUE([[a_ leadingAnchor] constraintEqualToAnchor:loose] == nil);
    EXPECT_TRUE([[a_ widthAnchor] constraintEqualToAnchor:[b_ widthAnchor]
                                               multiplier:NAN] == nil);
    // What does match still works after the mistakes.
    EXPECT_TRUE([[a_ leadingAnchor] constraintEqualToAnchor:[b_ trailingAnchor]] != nil);
    EXPECT_TRUE([[a_ firstBaselineAnchor] constraintEqualToAnchor:[b_ lastBaselineAnchor]] != nil);
    EXPECT_TRUE([[a_ widthAnchor] constraintEqualToAnchor:[b_ heightAnchor]] != nil);
  } @catch (id exception) {
    ADD_FAILURE() << "raised " << [[exception description] UTF8String];
  }
}

TEST_F(LayoutAnchor, AnAnchorDoesNotKeepItsViewAndOutlivesItEmpty) {
  NSView *view = [[NSView alloc] initWithFrame:NSMakeRect(0, 0, 10, 10)];
  NSUInteger before = [view retainCount];
  NSLayoutXAxisAnchor *anchor = [[view leadingAnchor] retain];
  NSLayoutDimension *width = [[view widthAnchor] retain];
  EXPECT_EQ([view retainCount], before);
  [view release];
  EXPECT_TRUE([anchor item] == nil);
  EXPECT_TRUE([anchor constraintEqualToAnchor:[a_ leadingAnchor]] == nil);
  EXPECT_TRUE([[a_ leadingAnchor] constraintEqualToAnchor:anchor] == nil);
  EXPECT_TRUE([width constraintEqualToConstant:5] == nil);
  [anchor release];
  [width release];
}

// The same layout twice, in the visual format and with anchors.
TEST_F(LayoutAnchor, AnchorsAndTheVisualFormatBuildTheSameFrames) {
  NSDictionary *views = @{@"a" : a_, @"b" : b_};
  for (NSString *format in @[ @"H:|-10-[a(80)]-8-[b]-12-|", @"V:|-20-[a(40)]", @"V:[b(==a)]-30-|" ]) {
    [root_.get() addConstraints:[NSLayoutConstraint constraintsWithVisualFormat:format
                                                                       options:0
                                                                       metrics:nil
                                                                         views:views]];
  }
  [root_.get() layoutSubtreeIfNeeded];

  Owned<NSView> root([[NSView alloc] initWithFrame:NSMakeRect(0, 0, 300, 200)]);
  NSView *a = Child(root);
  NSView *b = Child(root);
  [NSLayoutConstraint activateConstraints:@[
    [[a leadingAnchor] constraintEqualToAnchor:[root.get() leadingAnchor] constant:10],
    [[a widthAnchor] constraintEqualToConstant:80],
    [[b leadingAnchor] constraintEqualToAnchor:[a trailingAnchor] constant:8],
    [[root.get() trailingAnchor] constraintEqualToAnchor:[b trailingAnchor] constant:12],
    [[a topAnchor] constraintEqualToAnchor:[root.get() topAnchor] constant:20],
    [[a heightAnchor] constraintEqualToConstant:40],
    [[b heightAnchor] constraintEqualToAnchor:[a heightAnchor]],
    [[root.get() bottomAnchor] constraintEqualToAnchor:[b bottomAnchor] constant:30],
  ]];
  EXPECT_EQ([[root.get() constraints] count], 6u);  // two are on a itself
  [root.get() layoutSubtreeIfNeeded];

  // Unflipped root 200 high: a's top at 20 from the top is y = 140.
  ExpectFrameOf(a_, 10, 140, 80, 40);
  ExpectFrameOf(b_, 98, 30, 190, 40);
  ExpectFrameOf(a, 10, 140, 80, 40);
  ExpectFrameOf(b, 98, 30, 190, 40);
}

TEST_F(LayoutAnchor, DimensionMultipliersAndConstantsSolve) {
  [NSLayoutConstraint activateConstraints:@[
    [[a_ leftAnchor] constraintEqualToAnchor:[root_.get() leftAnchor]],
    [[a_ topAnchor] constraintEqualToAnchor:[root_.get() topAnchor]],
    [[a_ widthAnchor] constraintEqualToAnchor:[root_.get() widthAnchor] multiplier:0.5],
    [[a_ heightAnchor] constraintEqualToAnchor:[root_.get() heightAnchor]
                                    multiplier:0.25
                                      constant:10],
    [[b_ rightAnchor] constraintEqualToAnchor:[root_.get() rightAnchor]],
    [[b_ bottomAnchor] constraintEqualToAnchor:[root_.get() bottomAnchor]],
    [[b_ widthAnchor] constraintEqualToAnchor:[a_ heightAnchor] multiplier:2 constant:-5],
    [[b_ heightAnchor] constraintGreaterThanOrEqualToConstant:33],
    [[b_ heightAnchor] constraintLessThanOrEqualToConstant:33],
  ]];
  [root_.get() layoutSubtreeIfNeeded];
  ExpectFrameOf(a_, 0, 140, 150, 60);  // 200 / 4 + 10
  ExpectFrameOf(b_, 185, 0, 115, 33);  // 60 * 2 - 5
  // An optional wish loses against the required multiplier, which follows
  // the root's new width.
  NSLayoutConstraint *wide = [[a_ widthAnchor] constraintEqualToConstant:1];
  [wide setPriority:NSLayoutPriorityDefaultHigh];
  [wide setActive:YES];
  [root_.get() setFrameSize:NSMakeSize(400, 200)];
  [root_.get() layoutSubtreeIfNeeded];
  ExpectFrameOf(a_, 0, 140, 200, 60);
  ExpectFrameOf(b_, 285, 0, 115, 33);
}

TEST_F(LayoutAnchor, CenterAnchorsCenter) {
  [NSLayoutConstraint activateConstraints:@[
    [[a_ centerXAnchor] constraintEqualToAnchor:[root_.get() centerXAnchor]],
    [[a_ centerYAnchor] constraintEqualToAnchor:[root_.get() centerYAnchor] constant:10],
    [[a_ widthAnchor] constraintEqualToConstant:100],
    [[a_ heightAnchor] constraintEqualToConstant:50],
  ]];
  [root_.get() layoutSubtreeIfNeeded];
  // Centre y 10 below the middle (y down in the engine): unflipped y = 65.
  ExpectFrameOf(a_, 100, 65, 100, 50);
}

#pragma mark - Layout direction

TEST_F(LayoutAnchor, LayoutDirectionIsTheApplicationsUntilSet) {
  NSApplication *app = [NSApplication sharedApplication];
  EXPECT_EQ([app userInterfaceLayoutDirection], NSUserInterfaceLayoutDirectionLeftToRight);
  EXPECT_EQ([a_ userInterfaceLayoutDirection], NSUserInterfaceLayoutDirectionLeftToRight);
  [root_.get() setUserInterfaceLayoutDirection:NSUserInterfaceLayoutDirectionRightToLeft];
  EXPECT_EQ([root_.get() userInterfaceLayoutDirection],
            NSUserInterfaceLayoutDirectionRightToLeft);
  EXPECT_EQ([a_ userInterfaceLayoutDirection], NSUserInterfaceLayoutDirectionLeftToRight);
  EXPECT_TRUE([root_.get() needsLayout]);
  [root_.get() setUserInterfaceLayoutDirection:(NSUserInterfaceLayoutDirection)7];
  EXPECT_EQ([root_.get() userInterfaceLayoutDirection],
            NSUserInterfaceLayoutDirectionRightToLeft);
  [root_.get() setUserInterfaceLayoutDirection:NSUserInterfaceLayoutDirectionLeftToRight];
  EXPECT_EQ([root_.get() userInterfaceLayoutDirection],
            NSUserInterfaceLayoutDirectionLeftToRight);
}

// Leading is the right edge in a right-to-left view.
TEST_F(LayoutAnchor, LeadingAndTrailingFollowTheLayoutDirection) {
  [NSLayoutConstraint activateConstraints:@[
    [[a_ leadingAnchor] constraintEqualToAnchor:[root_.get() leadingAnchor] constant:10],
    [[a_ widthAnchor] constraintEqualToConstant:50],
    [[a_ topAnchor] constraintEqualToAnchor:[root_.get() topAnchor]],
    [[a_ heightAnchor] constraintEqualToConstant:20],
    [[b_ leftAnchor] constraintEqualToAnchor:[root_.get() leftAnchor] constant:10],
    [[b_ widthAnchor] constraintEqualToConstant:50],
    [[b_ topAnchor] constraintEqualToAnchor:[root_.get() topAnchor]],
    [[b_ heightAnchor] constraintEqualToConstant:20],
  ]];
  [root_.get() layoutSubtreeIfNeeded];
  ExpectFrameOf(a_, 10, 180, 50, 20);
  [root_.get() setUserInterfaceLayoutDirection:NSUserInterfaceLayoutDirectionRightToLeft];
  [a_ setUserInterfaceLayoutDirection:NSUserInterfaceLayoutDirectionRightToLeft];
  [root_.get() layoutSubtreeIfNeeded];
  ExpectFrameOf(a_, 240, 180, 50, 20);
  ExpectFrameOf(b_, 10, 180, 50, 20);  // left stays left
}

#pragma mark - Baselines and alignment rects

TEST_F(LayoutAnchor, PlainViewsHaveNoBaselineOffsets) {
  EXPECT_EQ([a_ firstBaselineOffsetFromTop], 0);
  EXPECT_EQ([a_ lastBaselineOffsetFromBottom], 0);
  EXPECT_EQ([a_ baselineOffsetFromBottom], 0);
}

TEST_F(LayoutAnchor, TextFieldBaselinesSitAnAscenderBelowTheCentredLine) {
  Owned<NSTextField> small([[NSTextField alloc] initWithFrame:NSMakeRect(0, 0, 120, 22)]);
  Owned<NSTextField> tall([[NSTextField alloc] initWithFrame:NSMakeRect(0, 0, 120, 40)]);
  [small.get() setStringValue:@"Name"];
  [tall.get() setStringValue:@"Name"];
  NSFont *font = [small.get() font];
  ASSERT_TRUE(font != nil);
  CGFloat first = [small.get() firstBaselineOffsetFromTop];
  CGFloat last = [small.get() lastBaselineOffsetFromBottom];
  EXPECT_GT(first, [font ascender] - 0.01);
  EXPECT_LT(first, 22);
  EXPECT_GT(last, 0);
  // One line: both offsets name the same baseline.
  EXPECT_NEAR(first + last, 22, 1e-6);
  EXPECT_EQ([small.get() baselineOffsetFromBottom], last);
  // A taller field keeps the line centred: 9 points lower from the top and
  // 9 points higher from the bottom.
  EXPECT_NEAR([tall.get() firstBaselineOffsetFromTop] - first, 9, 1e-6);
  EXPECT_NEAR([tall.get() lastBaselineOffsetFromBottom] - last, 9, 1e-6);
  // A bigger font sets the baseline lower.
  [tall.get() setFont:[NSFont systemFontOfSize:24]];
  EXPECT_GT([tall.get() firstBaselineOffsetFromTop],
            [small.get() firstBaselineOffsetFromTop] + 9);
}

TEST_F(LayoutAnchor, AlignmentRectsApplyTheInsetsBothWays) {
  EXPECT_TRUE(NSEqualRects([a_ alignmentRectForFrame:NSMakeRect(10, 20, 100, 50)],
                           NSMakeRect(10, 20, 100, 50)));
  NSEdgeInsets none = [a_ alignmentRectInsets];
  EXPECT_EQ(none.top + none.left + none.bottom + none.right, 0);
  Owned<NSView> inset([[TVAnchorTestInsetView alloc] initWithFrame:NSZeroRect]);
  NSRect frame = NSMakeRect(10, 20, 100, 50);
  NSRect alignment = [inset.get() alignmentRectForFrame:frame];
  // Frames grow upward: the bottom inset moves the origin.
  EXPECT_TRUE(NSEqualRects(alignment, NSMakeRect(12, 23, 94, 46)))
      << [NSStringFromRect(alignment) UTF8String];
  EXPECT_TRUE(NSEqualRects([inset.get() frameForAlignmentRect:alignment], frame));
}

}  // namespace
