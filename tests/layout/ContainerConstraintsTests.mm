// Constraints that pin an item inside its container: items, attributes,
// constants and order, and where the layout pass puts the item.

#import <Talvo/NSLayoutConstraint+Container.h>

#import "support/TestSupport.h"

namespace {

class ContainerConstraints : public PooledTest {
 protected:
  void SetUp() override {
    PooledTest::SetUp();
    container_.reset([[NSView alloc] initWithFrame:NSMakeRect(0, 0, 300, 200)]);
    item_ = [[[NSView alloc] initWithFrame:NSMakeRect(1, 2, 3, 4)] autorelease];
    [item_ setTranslatesAutoresizingMaskIntoConstraints:NO];
    [container_.get() addSubview:item_];
  }
  void ExpectPins(NSArray *pins, double top, double bottom, double left, double right) {
    ASSERT_EQ([pins count], 4u);
    ExpectPin([pins objectAtIndex:0], NSLayoutAttributeTop, top);
    ExpectPin([pins objectAtIndex:1], NSLayoutAttributeBottom, bottom);
    ExpectPin([pins objectAtIndex:2], NSLayoutAttributeLeft, left);
    ExpectPin([pins objectAtIndex:3], NSLayoutAttributeRight, right);
  }
  void ExpectPin(NSLayoutConstraint *c, NSLayoutAttribute attribute, double constant) {
    ASSERT_NE(c, nil);
    EXPECT_EQ([c firstItem], item_);
    EXPECT_EQ([c firstAttribute], attribute);
    EXPECT_EQ([c secondItem], container_.get());
    EXPECT_EQ([c secondAttribute], attribute);
    EXPECT_EQ([c relation], NSLayoutRelationEqual);
    EXPECT_EQ([c multiplier], 1.0);
    EXPECT_EQ([c constant], constant);
    EXPECT_EQ([c priority], NSLayoutPriorityRequired);
  }
  void ExpectItemFrame(NSRect expected) {
    [container_.get() layoutSubtreeIfNeeded];
    EXPECT_TRUE(NSEqualRects([item_ frame], expected))
        << [NSStringFromRect([item_ frame]) UTF8String];
  }
  NSLayoutConstraint *Pin(NSLayoutAttribute attribute, double constant) {
    return [NSLayoutConstraint constraintWithItem:item_
                                      inContainer:container_
                                        attribute:attribute
                                         constant:constant];
  }

  Owned<NSView> container_;
  NSView *item_ = nil;
};

TEST_F(ContainerConstraints, MadeConstraintsRelateLikeAttributesAndAreNotInstalled) {
  ExpectPin(Pin(NSLayoutAttributeCenterX, 12.5), NSLayoutAttributeCenterX, 12.5);
  ExpectPins([NSLayoutConstraint constraintsWithItem:item_
                                         inContainer:container_
                                          edgeInsets:NSEdgeInsetsMake(10, 20, 30, 40)],
             10, -30, 20, -40);
  ExpectPins([NSLayoutConstraint constraintsWithItem:item_ fittedInContainer:container_], 0, 0, 0,
             0);
  EXPECT_EQ([[container_.get() constraints] count], 0u);
  EXPECT_EQ([[item_ constraints] count], 0u);
}

TEST_F(ContainerConstraints, InstalledConstraintsPlaceTheItemInsideTheContainer) {
  NSArray *inset = [NSLayoutConstraint constraintsWithItem:item_
                                               inContainer:container_
                                                edgeInsets:NSEdgeInsetsMake(10, 20, 30, 40)];
  [container_.get() addConstraints:inset];
  ExpectItemFrame(NSMakeRect(20, 30, 240, 160));  // unflipped: y is the bottom inset
  [container_.get() setFrameSize:NSMakeSize(400, 100)];
  ExpectItemFrame(NSMakeRect(20, 30, 340, 60));

  [container_.get() removeConstraints:inset];
  [container_.get() addConstraints:[NSLayoutConstraint constraintsWithItem:item_
                                                         fittedInContainer:container_]];
  ExpectItemFrame(NSMakeRect(0, 0, 400, 100));

  [container_.get() removeConstraints:[container_.get() constraints]];
  [container_.get() addConstraints:@[
    Pin(NSLayoutAttributeCenterX, 15), Pin(NSLayoutAttributeWidth, -100),
    Pin(NSLayoutAttributeTop, 5), Pin(NSLayoutAttributeHeight, -50)
  ]];
  // 300 wide centred 15 right of 200; 50 high, 5 below the top of 100.
  ExpectItemFrame(NSMakeRect(65, 45, 300, 50));
}

TEST_F(ContainerConstraints, NilItemsAndBadAttributesGiveNothing) {
  id none = NullOf<id>();
  EXPECT_EQ([NSLayoutConstraint constraintWithItem:none
                                       inContainer:container_
                                         attribute:NSLayoutAttributeTop
                                          constant:0],
            nil);
  EXPECT_EQ([NSLayoutConstraint constraintWithItem:item_
                                       inContainer:none
                                         attribute:NSLayoutAttributeTop
                                          constant:0],
            nil);
  EXPECT_EQ(Pin(NSLayoutAttributeNotAnAttribute, 0), nil);
  EXPECT_EQ(Pin(99, 0), nil);
  NSArray *unpinned = [NSLayoutConstraint constraintsWithItem:none
                                                  inContainer:container_
                                                   edgeInsets:NSEdgeInsetsMake(1, 2, 3, 4)];
  EXPECT_NSEQ(unpinned, @[]);
  EXPECT_NSEQ([NSLayoutConstraint constraintsWithItem:item_ fittedInContainer:none], @[]);
}

}  // namespace
