// Layout guides on GNUstep: ownership by a view, anchors, and the frames the
// layout pass solves for them.

#import <AppKit/AppKit.h>

#import "support/TestSupport.h"

namespace {

class LayoutGuide : public PooledTest {
 protected:
  void SetUp() override {
    PooledTest::SetUp();
    root_.reset([[NSView alloc] initWithFrame:NSMakeRect(0, 0, 300, 200)]);
    a_ = Child();
    b_ = Child();
    guide_.reset([[NSLayoutGuide alloc] init]);
  }
  NSView *Child() {
    NSView *view = [[[NSView alloc] initWithFrame:NSMakeRect(1, 2, 3, 4)] autorelease];
    [view setTranslatesAutoresizingMaskIntoConstraints:NO];
    [root_.get() addSubview:view];
    return view;
  }
  Owned<NSView> root_;
  NSView *a_ = nil;
  NSView *b_ = nil;
  Owned<NSLayoutGuide> guide_;
};

TEST_F(LayoutGuide, AGuideBelongsToOneViewAtATime) {
  NSLayoutGuide *guide = guide_;
  EXPECT_EQ([[root_.get() layoutGuides] count], 0u);
  EXPECT_TRUE([guide owningView] == nil);
  NSUInteger retained = [guide retainCount];
  // Each step runs in its own pool, so that only the owning view's
  // reference is left when the step ends.
  auto step = [](void (^body)(void)) {
    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    body();
    [pool drain];
  };

  step(^{
    [root_.get() addLayoutGuide:guide];
    EXPECT_EQ([guide owningView], root_.get());
    EXPECT_NSEQ([root_.get() layoutGuides], @[ guide ]);
    [root_.get() addLayoutGuide:guide];  // again: nothing changes
    EXPECT_EQ([[root_.get() layoutGuides] count], 1u);
  });
  EXPECT_EQ([guide retainCount], retained + 1);

  // Added elsewhere, it leaves the first view.
  step(^{
    [a_ addLayoutGuide:guide];
    EXPECT_EQ([guide owningView], a_);
    EXPECT_EQ([[root_.get() layoutGuides] count], 0u);
    EXPECT_NSEQ([a_ layoutGuides], @[ guide ]);
  });
  EXPECT_EQ([guide retainCount], retained + 1);

  step(^{
    [root_.get() removeLayoutGuide:guide];  // not root's: nothing happens
    EXPECT_EQ([guide owningView], a_);
    [a_ removeLayoutGuide:guide];
    EXPECT_TRUE([guide owningView] == nil);
    EXPECT_EQ([[a_ layoutGuides] count], 0u);
  });
  EXPECT_EQ([guide retainCount], retained);

  // Setting the owning view is adding to it.
  step(^{
    [guide setOwningView:b_];
    EXPECT_NSEQ([b_ layoutGuides], @[ guide ]);
    [guide setOwningView:NullOf<NSView *>()];
    EXPECT_EQ([[b_ layoutGuides] count], 0u);
  });
  EXPECT_EQ([guide retainCount], retained);

  [root_.get() addLayoutGuide:NullOf<NSLayoutGuide *>()];
  [root_.get() addLayoutGuide:(NSLayoutGuide *)a_];
  EXPECT_EQ([[root_.get() layoutGuides] count], 0u);
}

TEST_F(LayoutGuide, GuidesKeepTheirOrderAndTheirViewIsNotRetained) {
  Owned<NSLayoutGuide> second([[NSLayoutGuide alloc] init]);
  NSView *view = [[NSView alloc] initWithFrame:NSZeroRect];
  NSUInteger viewCount = [view retainCount];
  [view addLayoutGuide:guide_];
  [view addLayoutGuide:second];
  EXPECT_NSEQ([view layoutGuides], (@[ guide_.get(), second.get() ]));
  EXPECT_EQ([view retainCount], viewCount);
  [view release];
  // The view went: its guides have no owner and stay usable.
  EXPECT_TRUE([guide_.get() owningView] == nil);
  EXPECT_TRUE([second.get() owningView] == nil);
  [root_.get() addLayoutGuide:second];
  EXPECT_EQ([second.get() owningView], root_.get());
}

TEST_F(LayoutGuide, AnchorsAndIdentifierBelongToTheGuide) {
  NSLayoutGuide *guide = guide_;
  EXPECT_TRUE([[guide leadingAnchor] isKindOfClass:[NSLayoutXAxisAnchor class]]);
  EXPECT_TRUE([[guide centerXAnchor] isKindOfClass:[NSLayoutXAxisAnchor class]]);
  EXPECT_TRUE([[guide bottomAnchor] isKindOfClass:[NSLayoutYAxisAnchor class]]);
  EXPECT_TRUE([[guide heightAnchor] isKindOfClass:[NSLayoutDimension class]]);
  EXPECT_EQ([[guide trailingAnchor] item], guide);
  EXPECT_EQ([guide widthAnchor], [guide widthAnchor]);
  EXPECT_NSEQ([[guide topAnchor] name], @"top");

  NSLayoutConstraint *c = [[guide leadingAnchor] constraintEqualToAnchor:[a_ trailingAnchor]
                                                                constant:5];
  ASSERT_TRUE(c != nil);
  EXPECT_EQ([c firstItem], guide);
  EXPECT_EQ([c firstAttribute], NSLayoutAttributeLeading);
  EXPECT_EQ([c secondItem], a_);
  EXPECT_EQ([c firstAnchor], [guide leadingAnchor]);
  EXPECT_TRUE([[guide leadingAnchor] constraintEqualToAnchor:(id)[a_ topAnchor]] == nil);
  EXPECT_TRUE([[guide leftAnchor] constraintEqualToAnchor:[a_ leadingAnchor]] == nil);

  NSMutableString *name = [NSMutableString stringWithString:@"spacer"];
  [guide setIdentifier:name];
  [name appendString:@"!"];
  EXPECT_NSEQ([guide identifier], @"spacer");  // copied

  // An anchor kept past its guide has no item.
  NSLayoutAnchor *kept = [[guide topAnchor] retain];
  guide_.reset();
  EXPECT_TRUE([kept item] == nil);
  EXPECT_TRUE([kept constraintEqualToAnchor:[a_ topAnchor]] == nil);
  [kept release];
}

TEST_F(LayoutGuide, ConstraintsToAGuideActivateOnItsOwningView) {
  [root_.get() addLayoutGuide:guide_];
  NSLayoutConstraint *c = [[guide_.get() leadingAnchor] constraintEqualToAnchor:[a_ trailingAnchor]];
  [c setActive:YES];
  EXPECT_TRUE([c isActive]);
  EXPECT_TRUE([[root_.get() constraints] containsObject:c]);
  NSLayoutConstraint *own = [[guide_.get() widthAnchor] constraintEqualToConstant:20];
  [own setActive:YES];
  EXPECT_TRUE([[root_.get() constraints] containsObject:own]);
}

TEST_F(LayoutGuide, RemovingAGuideTakesItsConstraints) {
  [root_.get() addLayoutGuide:guide_];
  NSLayoutConstraint *toGuide =
      [NSLayoutConstraint constraintWithItem:guide_
                                   attribute:NSLayoutAttributeLeading
                                   relatedBy:NSLayoutRelationEqual
                                      toItem:a_
                                   attribute:NSLayoutAttributeTrailing
                                  multiplier:1
                                    constant:0];
  NSLayoutConstraint *other = [[b_ widthAnchor] constraintEqualToAnchor:[a_ widthAnchor]];
  [root_.get() addConstraint:toGuide];
  [root_.get() addConstraint:other];
  [root_.get() removeLayoutGuide:guide_];
  EXPECT_NSEQ([root_.get() constraints], @[ other ]);
}

// The pass solves a guide like a view and writes its frame in the owning
// view's coordinates (unflipped here: y from the bottom).
TEST_F(LayoutGuide, TheLayoutPassPlacesGuidesInTheOwningViewsCoordinates) {
  NSLayoutGuide *guide = guide_;
  [root_.get() addLayoutGuide:guide];
  EXPECT_TRUE(NSEqualRects([guide layoutFrame], NSZeroRect));
  NSView *root = root_;
  // a | guide | b across the root; the guide takes the room between them.
  [root addConstraints:@[
    [[a_ leadingAnchor] constraintEqualToAnchor:[root leadingAnchor] constant:10],
    [[b_ trailingAnchor] constraintEqualToAnchor:[root trailingAnchor] constant:-10],
    [[guide leadingAnchor] constraintEqualToAnchor:[a_ trailingAnchor]],
    [[b_ leadingAnchor] constraintEqualToAnchor:[guide trailingAnchor]],
    [[b_ widthAnchor] constraintEqualToAnchor:[a_ widthAnchor]],
    [[guide widthAnchor] constraintEqualToAnchor:[a_ widthAnchor] multiplier:2],
    [[guide topAnchor] constraintEqualToAnchor:[root topAnchor] constant:20],
    [[guide heightAnchor] constraintEqualToConstant:30],
    [[a_ topAnchor] constraintEqualToAnchor:[guide bottomAnchor]],
    [[b_ topAnchor] constraintEqualToAnchor:[guide bottomAnchor]],
    [[a_ heightAnchor] constraintEqualToConstant:10],
    [[b_ heightAnchor] constraintEqualToConstant:10],
  ]];
  [root layoutSubtreeIfNeeded];
  // 280 = w + 2w + w: w = 70.
  NSRect frame = [guide layoutFrame];
  EXPECT_TRUE(NSEqualRects(frame, NSMakeRect(80, 150, 140, 30))) << [NSStringFromRect(frame) UTF8String];
  EXPECT_TRUE(NSEqualRects([guide frame], frame));
  EXPECT_TRUE(NSEqualRects([a_ frame], NSMakeRect(10, 140, 70, 10)));
  EXPECT_TRUE(NSEqualRects([b_ frame], NSMakeRect(220, 140, 70, 10)));
}

TEST_F(LayoutGuide, AGuideOfASubviewIsInThatSubviewsCoordinates) {
  NSView *root = root_;
  [NSLayoutConstraint activateConstraints:@[
    [[a_ leftAnchor] constraintEqualToAnchor:[root leftAnchor] constant:50],
    [[a_ topAnchor] constraintEqualToAnchor:[root topAnchor] constant:50],
    [[a_ widthAnchor] constraintEqualToConstant:100],
    [[a_ heightAnchor] constraintEqualToConstant:100],
  ]];
  [a_ addLayoutGuide:guide_];
  NSLayoutGuide *guide = guide_;
  [a_ addConstraints:@[
    [[guide leftAnchor] constraintEqualToAnchor:[a_ leftAnchor] constant:5],
    [[guide topAnchor] constraintEqualToAnchor:[a_ topAnchor] constant:5],
    [[guide widthAnchor] constraintEqualToConstant:20],
    [[guide heightAnchor] constraintEqualToConstant:10],
  ]];
  [root layoutSubtreeIfNeeded];
  EXPECT_TRUE(NSEqualRects([guide layoutFrame], NSMakeRect(5, 85, 20, 10)))
      << [NSStringFromRect([guide layoutFrame]) UTF8String];
}

}  // namespace
