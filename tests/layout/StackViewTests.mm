// The stack view: the exact constraint set it builds for its visible
// subviews, the frames the layout pass gives them, and when the set is
// rebuilt.

#import <Talvo/VXStackView.h>

#import "support/TestSupport.h"

namespace {

class StackView : public PooledTest {
 protected:
  void SetUp() override {
    PooledTest::SetUp();
    stack_.reset([[VXStackView alloc] initWithFrame:NSMakeRect(0, 0, 300, 200)]);
  }
  NSView *Child(BOOL hidden = NO) {
    NSView *view = [[[NSView alloc] initWithFrame:NSMakeRect(1, 2, 3, 4)] autorelease];
    [view setHidden:hidden];
    [stack_.get() addSubview:view];
    return view;
  }
  // A sizing constraint beside the stack's own set.
  void Size(NSString *format, NSView *view) {
    [stack_.get() addConstraints:[NSLayoutConstraint constraintsWithVisualFormat:format
                                                                         options:0
                                                                         metrics:nil
                                                                           views:@{@"v" : view}]];
  }
  void Layout() { [stack_.get() layoutSubtreeIfNeeded]; }
  NSArray *Set() { return [stack_.get() viewStackConstraints]; }
  NSLayoutConstraint *At(NSUInteger index) { return [Set() objectAtIndex:index]; }
  bool Mentions(NSView *view) {
    for (NSLayoutConstraint *constraint in Set()) {
      if ([constraint firstItem] == view || [constraint secondItem] == view) return true;
    }
    return false;
  }
  // Required, Equal, multiplier 1.
  void Expect(NSLayoutConstraint *c, id first, NSLayoutAttribute firstAttribute, id second,
              NSLayoutAttribute secondAttribute, double constant) {
    ASSERT_NE(c, nil);
    EXPECT_EQ([c firstItem], first);
    EXPECT_EQ([c firstAttribute], firstAttribute);
    EXPECT_EQ([c secondItem], second);
    EXPECT_EQ([c secondAttribute], secondAttribute);
    EXPECT_EQ([c relation], NSLayoutRelationEqual);
    EXPECT_EQ([c multiplier], 1.0);
    EXPECT_EQ([c constant], constant);
    EXPECT_EQ([c priority], NSLayoutPriorityRequired);
  }
  // The pair of "V:|-0-[currentView]-0-|" (or "H:…"): view to stack, then
  // stack to view.
  void ExpectCrossPins(NSUInteger index, NSView *view, BOOL vertical) {
    NSLayoutAttribute start = vertical ? NSLayoutAttributeLeading : NSLayoutAttributeTop;
    NSLayoutAttribute end = vertical ? NSLayoutAttributeTrailing : NSLayoutAttributeBottom;
    Expect(At(index), view, start, stack_.get(), start, 0);
    Expect(At(index + 1), stack_.get(), end, view, end, 0);
  }
  void ExpectFrame(NSView *view, NSRect expected) {
    EXPECT_TRUE(NSEqualRects([view frame], expected))
        << [NSStringFromRect([view frame]) UTF8String];
  }

  Owned<VXStackView> stack_;
};

TEST_F(StackView, HorizontalPairGetsSevenConstraintsInOrderAndSitsSideBySide) {
  EXPECT_FALSE([stack_.get() vertical]);
  EXPECT_EQ([stack_.get() margin], 0.0);
  EXPECT_EQ(Set(), nil);
  NSView *a = Child();
  NSView *b = Child();
  Size(@"H:[v(100)]", a);
  NSArray *sizing = [stack_.get() constraints];
  Layout();
  ASSERT_EQ([Set() count], 7u);
  Expect(At(0), a, NSLayoutAttributeLeft, stack_.get(), NSLayoutAttributeLeft, 0);
  ExpectCrossPins(1, a, NO);
  Expect(At(3), a, NSLayoutAttributeRight, b, NSLayoutAttributeLeft, 0);
  ExpectCrossPins(4, b, NO);
  Expect(At(6), b, NSLayoutAttributeRight, stack_.get(), NSLayoutAttributeRight, 0);
  EXPECT_NSEQ([stack_.get() constraints], [sizing arrayByAddingObjectsFromArray:Set()]);
  ExpectFrame(a, NSMakeRect(0, 0, 100, 200));
  ExpectFrame(b, NSMakeRect(100, 0, 200, 200));
}

TEST_F(StackView, VerticalNegativeMarginLeavesAGapAndPositiveMarginOverlaps) {
  [stack_.get() setVertical:YES];
  [stack_.get() setMargin:-8];
  NSView *a = Child();
  NSView *b = Child();
  Size(@"V:[v(50)]", a);
  Layout();
  Expect(At(0), a, NSLayoutAttributeTop, stack_.get(), NSLayoutAttributeTop, 0);
  ExpectCrossPins(1, a, YES);
  Expect(At(3), a, NSLayoutAttributeBottom, b, NSLayoutAttributeTop, -8);
  Expect(At(6), b, NSLayoutAttributeBottom, stack_.get(), NSLayoutAttributeBottom, 0);
  // Unflipped: a holds the top 50 points and b starts 8 points below it.
  ExpectFrame(a, NSMakeRect(0, 150, 300, 50));
  ExpectFrame(b, NSMakeRect(0, 0, 300, 142));

  [stack_.get() setMargin:8];
  [stack_.get() setViewStackConstraints:nil];
  Layout();
  ExpectFrame(a, NSMakeRect(0, 150, 300, 50));
  ExpectFrame(b, NSMakeRect(0, 0, 300, 158));
}

TEST_F(StackView, HiddenViewsGetNoConstraintsAndTheirNeighboursChain) {
  Layout();
  ASSERT_NE(Set(), nil);  // empty, not stale
  EXPECT_EQ([Set() count], 0u);

  NSView *a = Child();
  NSView *hiddenMiddle = Child(YES);
  NSView *c = Child();
  NSView *hiddenLast = Child(YES);
  [stack_.get() setMargin:2];
  Size(@"H:[v(120)]", a);
  Layout();
  ASSERT_EQ([Set() count], 7u);
  EXPECT_FALSE(Mentions(hiddenMiddle));
  EXPECT_FALSE(Mentions(hiddenLast));
  Expect(At(3), a, NSLayoutAttributeRight, c, NSLayoutAttributeLeft, 2);
  Expect(At(6), c, NSLayoutAttributeRight, stack_.get(), NSLayoutAttributeRight, 0);
  ExpectFrame(c, NSMakeRect(118, 0, 182, 200));

  [a setHidden:YES];
  [c setHidden:YES];
  [stack_.get() setViewStackConstraints:nil];
  Layout();
  ASSERT_NE(Set(), nil);
  EXPECT_EQ([Set() count], 0u);
}

TEST_F(StackView, AddingOrRemovingASubviewStalesTheSetUntilTheNextPass) {
  NSView *a = Child();
  Layout();
  ASSERT_EQ([Set() count], 4u);

  NSView *b = [[[NSView alloc] initWithFrame:NSZeroRect] autorelease];
  [stack_.get() addSubview:b];
  EXPECT_FALSE([b translatesAutoresizingMaskIntoConstraints]);
  EXPECT_EQ(Set(), nil);
  EXPECT_EQ([[stack_.get() constraints] count], 0u);
  EXPECT_TRUE([stack_.get() needsUpdateConstraints]);
  Layout();
  EXPECT_EQ([Set() count], 7u);
  EXPECT_NSEQ([stack_.get() constraints], Set());

  [b removeFromSuperview];
  EXPECT_EQ(Set(), nil);
  EXPECT_EQ([[stack_.get() constraints] count], 0u);
  Layout();
  EXPECT_EQ([Set() count], 4u);
  ExpectFrame(a, NSMakeRect(0, 0, 300, 200));
}

TEST_F(StackView, AxisMarginAndVisibilityChangesWaitForTheNextRebuild) {
  NSView *a = Child();
  NSView *b = Child();
  Size(@"H:[v(100@500)]", a);  // gives way once a spans a vertical stack
  Layout();
  NSArray *installed = Set();
  [stack_.get() setVertical:YES];
  [stack_.get() setMargin:-10];
  [b setHidden:YES];
  Layout();
  EXPECT_EQ(Set(), installed);
  ExpectFrame(b, NSMakeRect(100, 0, 200, 200));

  [stack_.get() setViewStackConstraints:nil];
  Layout();
  ASSERT_EQ([Set() count], 4u);
  Expect(At(0), a, NSLayoutAttributeTop, stack_.get(), NSLayoutAttributeTop, 0);
  Expect(At(3), a, NSLayoutAttributeBottom, stack_.get(), NSLayoutAttributeBottom, 0);
  ExpectFrame(a, NSMakeRect(0, 0, 300, 200));
}

TEST_F(StackView, SettingTheSetSwapsWhatIsInstalledAndTheSameSetChangesNothing) {
  NSView *a = Child();
  Layout();
  NSArray *installed = Set();
  [stack_.get() setViewStackConstraints:installed];
  EXPECT_NSEQ([stack_.get() constraints], installed);
  EXPECT_FALSE([stack_.get() needsUpdateConstraints]);

  NSArray *other = @[ [NSLayoutConstraint constraintWithItem:a
                                                   attribute:NSLayoutAttributeWidth
                                                   relatedBy:NSLayoutRelationEqual
                                                      toItem:nil
                                                   attribute:NSLayoutAttributeNotAnAttribute
                                                  multiplier:1
                                                    constant:40] ];
  [stack_.get() setViewStackConstraints:other];
  EXPECT_EQ(Set(), other);
  EXPECT_NSEQ([stack_.get() constraints], other);
  [stack_.get() _updateViewStackConstraints];  // a set is there: kept
  EXPECT_EQ(Set(), other);
  EXPECT_FALSE([stack_.get() needsUpdateConstraints]);

  [stack_.get() setViewStackConstraints:nil];
  EXPECT_EQ([[stack_.get() constraints] count], 0u);
  EXPECT_TRUE([stack_.get() needsUpdateConstraints]);
}

}  // namespace
