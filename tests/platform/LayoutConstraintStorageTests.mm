// NSLayoutConstraint storage and the view constraint API on GNUstep.

#import <AppKit/AppKit.h>

#import "support/TestSupport.h"

namespace {

class LayoutConstraintStorage : public PooledTest {
 protected:
  void SetUp() override {
    PooledTest::SetUp();
    root_.reset([[NSView alloc] initWithFrame:NSMakeRect(0, 0, 300, 200)]);
    a_ = [[[NSView alloc] initWithFrame:NSMakeRect(0, 0, 50, 50)] autorelease];
    b_ = [[[NSView alloc] initWithFrame:NSMakeRect(0, 0, 50, 50)] autorelease];
    inner_ = [[[NSView alloc] initWithFrame:NSMakeRect(0, 0, 10, 10)] autorelease];
    [root_.get() addSubview:a_];
    [root_.get() addSubview:b_];
    [a_ addSubview:inner_];
  }
  NSLayoutConstraint *Spacing(id first, id second, CGFloat constant) {
    return [NSLayoutConstraint constraintWithItem:first
                                        attribute:NSLayoutAttributeLeading
                                        relatedBy:NSLayoutRelationEqual
                                           toItem:second
                                        attribute:NSLayoutAttributeTrailing
                                       multiplier:1
                                         constant:constant];
  }
  Owned<NSView> root_;
  NSView *a_ = nil;
  NSView *b_ = nil;
  NSView *inner_ = nil;
};

TEST_F(LayoutConstraintStorage, ConstantPriorityAndIdentifierAreMutable) {
  NSLayoutConstraint *constraint = Spacing(b_, a_, 8);
  [constraint setConstant:12.5];
  EXPECT_EQ([constraint constant], 12.5);
  [constraint setPriority:490];
  EXPECT_EQ([constraint priority], 490.0f);
  [constraint setPriority:5000];
  EXPECT_EQ([constraint priority], 1000.0f);
  [constraint setPriority:0];
  EXPECT_EQ([constraint priority], 1.0f);
  [constraint setIdentifier:@"gap"];
  EXPECT_NSEQ([constraint identifier], @"gap");
  NSLayoutConstraint *copy = [[constraint copy] autorelease];
  EXPECT_EQ([copy constant], 12.5);
  [copy setConstant:3];  // a copy is a constraint of its own
  EXPECT_EQ([constraint constant], 12.5);
}

TEST_F(LayoutConstraintStorage, EqualFieldsAreStillTwoConstraints) {
  NSLayoutConstraint *one = Spacing(b_, a_, 8);
  NSLayoutConstraint *two = Spacing(b_, a_, 8);
  EXPECT_FALSE([one isEqual:two]);
  NSMutableArray *list = [NSMutableArray arrayWithObjects:one, two, nil];
  [list removeObject:one];
  ASSERT_EQ([list count], 1u);
  EXPECT_EQ([list objectAtIndex:0], two);
}

TEST_F(LayoutConstraintStorage, ActivationInstallsOnTheClosestCommonAncestor) {
  NSLayoutConstraint *siblings = Spacing(b_, a_, 8);
  NSLayoutConstraint *nested = Spacing(inner_, a_, 2);
  NSLayoutConstraint *cousins = Spacing(inner_, b_, 0);
  NSLayoutConstraint *width = [NSLayoutConstraint constraintWithItem:inner_
                                                           attribute:NSLayoutAttributeWidth
                                                           relatedBy:NSLayoutRelationEqual
                                                              toItem:nil
                                                           attribute:NSLayoutAttributeNotAnAttribute
                                                          multiplier:1
                                                            constant:20];
  EXPECT_FALSE([siblings isActive]);
  [NSLayoutConstraint activateConstraints:@[ siblings, nested, cousins, width ]];
  EXPECT_TRUE([siblings isActive]);
  EXPECT_NSEQ([root_.get() constraints], (@[ siblings, cousins ]));
  EXPECT_NSEQ([a_ constraints], (@[ nested ]));
  EXPECT_NSEQ([inner_ constraints], (@[ width ]));

  [siblings setActive:NO];
  EXPECT_FALSE([siblings isActive]);
  EXPECT_NSEQ([root_.get() constraints], (@[ cousins ]));
}

TEST_F(LayoutConstraintStorage, AddingToAnotherViewMovesTheConstraint) {
  NSLayoutConstraint *constraint = Spacing(b_, a_, 8);
  [root_.get() addConstraint:constraint];
  [root_.get() addConstraint:constraint];  // once only
  EXPECT_EQ([[root_.get() constraints] count], 1u);
  [a_ addConstraint:constraint];
  EXPECT_EQ([[root_.get() constraints] count], 0u);
  EXPECT_EQ([[a_ constraints] count], 1u);
  [root_.get() removeConstraint:constraint];  // not held there: ignored
  EXPECT_TRUE([constraint isActive]);
  [a_ removeConstraints:[a_ constraints]];
  EXPECT_FALSE([constraint isActive]);
}

TEST_F(LayoutConstraintStorage, ViewsRetainTheirConstraintsAndReleaseThemWithThemselves) {
  NSLayoutConstraint *constraint = [Spacing(b_, a_, 8) retain];
  NSView *holder = [[NSView alloc] initWithFrame:NSZeroRect];
  [holder addConstraint:constraint];
  NSUInteger held = [constraint retainCount];
  [holder release];
  EXPECT_EQ([constraint retainCount], held - 1);
  EXPECT_FALSE([constraint isActive]);
  [constraint release];
}

TEST_F(LayoutConstraintStorage, ItemsWithoutACommonAncestorCannotBeActivated) {
  NSView *stranger = [[[NSView alloc] initWithFrame:NSZeroRect] autorelease];
  NSLayoutConstraint *constraint = Spacing(stranger, a_, 0);
  [constraint setActive:YES];
  EXPECT_FALSE([constraint isActive]);
}

TEST_F(LayoutConstraintStorage, DescriptionNamesItemsAttributesAndPriority) {
  NSLayoutConstraint *constraint = Spacing(b_, a_, 8);
  [constraint setPriority:490];
  NSString *text = [constraint description];
  EXPECT_NE([text rangeOfString:@".leading == "].location, (NSUInteger)NSNotFound) << [text UTF8String];
  EXPECT_NE([text rangeOfString:@".trailing + 8 @490"].location, (NSUInteger)NSNotFound)
      << [text UTF8String];
}

}  // namespace
