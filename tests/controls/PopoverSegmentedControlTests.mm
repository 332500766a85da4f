// VXPopoverViewsSegmentedControl: accessory views by segment, the popup
// hanging under the selected segment, and each way it is dismissed.
#import <Talvo/VXBottomPopupWindow.h>
#import <Talvo/VXPopoverViewsSegmentedControl.h>

#import "controls/ControlsTestSupport.h"
#import "controls/VXPopoverViewsSegmentedControl+Private.h"
#import "platform/CellTestSupport.h"

namespace {

class PopoverSegmentedControlTest : public ControlsTest {
 protected:
  void SetUp() override {
    ControlsTest::SetUp();
    if (IsSkipped()) return;
    window_ = Window(NSMakeRect(200, 300, 300, 120));
    control_ = [[[VXPopoverViewsSegmentedControl alloc] initWithFrame:NSMakeRect(20, 60, 240, 24)]
        autorelease];
    [control_ setSegmentCount:3];
    const CGFloat widths[] = {60, 70, 80};
    for (NSInteger i = 0; i < 3; ++i) {
      [control_ setWidth:widths[i] forSegment:i];
      [control_ setLabel:[NSString stringWithFormat:@"S%ld", (long)i] forSegment:i];
    }
    [[window_ contentView] addSubview:control_];
    [control_ awakeFromNib];
    for (NSInteger i = 0; i < 2; ++i) {
      NSView *view = [[[TVControlsBackdrop alloc] initWithFrame:NSMakeRect(0, 0, 100 + 20 * i, 50)
                                                          color:[NSColor blueColor]] autorelease];
      // Constraints give the popup its size, as an accessory view's own would.
      [view setTranslatesAutoresizingMaskIntoConstraints:NO];
      [view addConstraint:[NSLayoutConstraint constraintWithItem:view
                                                       attribute:NSLayoutAttributeWidth
                                                       relatedBy:NSLayoutRelationEqual
                                                          toItem:nil
                                                       attribute:NSLayoutAttributeNotAnAttribute
                                                      multiplier:1
                                                        constant:100 + 20 * i]];
      [view addConstraint:[NSLayoutConstraint constraintWithItem:view
                                                       attribute:NSLayoutAttributeHeight
                                                       relatedBy:NSLayoutRelationEqual
                                                          toItem:nil
                                                       attribute:NSLayoutAttributeNotAnAttribute
                                                      multiplier:1
                                                        constant:50]];
      [control_ setAccessoryView:view forSegment:i];
    }
    // The window server's answers to the new window (moves, resizes) arrive
    // now, not while a popup is up.
    Pump(0.3);
  }
  void TearDown() override {
    if (control_ != nil) [control_ dismissPopoverView];
    ControlsTest::TearDown();
  }
  bool Shown() { return [[control_ _popoverWindow] isVisible]; }
  void Show(NSInteger segment) {
    [control_ setSelectedSegment:segment];
    [control_ showPopoverView];
    Advance(1.0);
    Pump(0.3);
  }
  void Click(NSWindow *window, NSPoint point) {
    NSEvent *down = [NSEvent mouseEventWithType:NSLeftMouseDown
                                       location:point
                                  modifierFlags:0
                                      timestamp:0
                                   windowNumber:[window windowNumber]
                                        context:nil
                                    eventNumber:0
                                     clickCount:1
                                       pressure:1];
    [NSApp sendEvent:down];
  }

  NSWindow *window_ = nil;
  VXPopoverViewsSegmentedControl *control_ = nil;
};

}  // namespace

TEST_F(PopoverSegmentedControlTest, AccessoryViewsAreKeptBySegmentNumber) {
  Owned<VXPopoverViewsSegmentedControl> control(
      [[VXPopoverViewsSegmentedControl alloc] initWithFrame:NSMakeRect(0, 0, 100, 24)]);
  VXPopoverViewsSegmentedControl *c = control;
  EXPECT_EQ([c accessoryViewForSegment:0], nil);
  NSView *view = [[[NSView alloc] initWithFrame:NSMakeRect(0, 0, 10, 10)] autorelease];
  [c setAccessoryView:view forSegment:-1];
  [c setAccessoryView:view forSegment:12];
  EXPECT_EQ([c accessoryViewForSegment:-1], view);
  EXPECT_EQ([c accessoryViewForSegment:12], view);
  EXPECT_EQ([c accessoryViewForSegment:1], nil);
  [c setAccessoryView:nil forSegment:12];
  EXPECT_EQ([c accessoryViewForSegment:12], nil);
  [c setAccessoryView:(NSView *)[NSColor redColor] forSegment:3];
  EXPECT_EQ([c accessoryViewForSegment:3], nil);
  [c setAccessoryView:nil forSegment:NSIntegerMax];
  // Not in a window, never awoken: nothing to show, nothing raised.
  [c setSegmentCount:2];
  [c setSelectedSegment:1];
  [c showPopoverView];
  [c dismissPopoverView];
  EXPECT_FALSE([c _isWatching]);
}

TEST_F(PopoverSegmentedControlTest, PopupHangsUnderTheSelectedSegmentsCentre) {
  NSRect control = [window_ convertRectToScreen:[control_ convertRect:[control_ bounds]
                                                               toView:nil]];
  const struct {
    NSInteger segment;
    double centre;
    double width;
  } cases[] = {{0, 30 + 2, 100}, {1, 60 + 35 + 4, 120}};
  // Frames are in device pixels on GNUstep at 2x (the test also runs in the
  // 2x child process); the popup must still be as many points wide as its view.
  double k = [window_ userSpaceScaleFactor];
  for (auto c : cases) {
    Show(c.segment);
    ASSERT_TRUE(Shown()) << c.segment;
    NSRect frame = [[control_ _popoverWindow] frame];
    EXPECT_NEAR(frame.size.width, c.width * k, 0.5) << c.segment;
    EXPECT_NEAR(frame.size.height, (50 + 5) * k, 0.5) << "the view and the 5-point margin";
    EXPECT_NEAR(NSMidX(frame), control.origin.x + c.centre * k, 0.5) << c.segment;
    EXPECT_NEAR(NSMaxY(frame), control.origin.y, 0.5) << c.segment;
    EXPECT_EQ([[control_ _popoverWindow] parentWindow], window_);
    EXPECT_TRUE([control_ _isWatching]);
  }
  // The last segment's pad is 6.
  [control_ setSelectedSegment:2];
  EXPECT_NEAR(NSMidX([control_ _popupFrameForSize:NSMakeSize(40, 10)]) - 0,
              control.origin.x + (130 + 40 + 6) * k, 0.5);
}

TEST_F(PopoverSegmentedControlTest, SegmentWithoutAViewDismissesAndShowsNothing) {
  Show(0);
  ASSERT_TRUE(Shown());
  Show(2);
  EXPECT_FALSE(Shown());
  EXPECT_FALSE([control_ _isWatching]);
  Show(0);
  ASSERT_TRUE(Shown());
  [control_ setSelected:NO forSegment:0];
  ASSERT_EQ([control_ selectedSegment], -1);
  [control_ showPopoverView];
  EXPECT_FALSE(Shown());
}

TEST_F(PopoverSegmentedControlTest, ClicksElsewhereDismissButNotInThePopupOrAColourPanel) {
  Show(0);
  ASSERT_TRUE(Shown());
  Click([control_ _popoverWindow], NSMakePoint(10, 10));
  EXPECT_TRUE(Shown());
  NSColorPanel *panel = [NSColorPanel sharedColorPanel];
  Click(panel, NSMakePoint(5, 5));
  EXPECT_TRUE(Shown());
  [panel orderOut:nil];
  Click(window_, NSMakePoint(290, 5));
  EXPECT_FALSE(Shown());
  EXPECT_FALSE([control_ _isWatching]);
  EXPECT_EQ([[control_ _popoverWindow] parentWindow], nil);

  Show(1);
  NSWindow *other = Window(NSMakeRect(600, 300, 50, 50));
  [window_ makeKeyAndOrderFront:nil];
  Click(other, NSMakePoint(5, 5));
  EXPECT_FALSE(Shown());
}

TEST_F(PopoverSegmentedControlTest, ResignKeyResizeAndMiniaturiseDismiss) {
  Show(0);
  ASSERT_TRUE(Shown());
  NSWindow *other = Window(NSMakeRect(600, 300, 50, 50));
  [other makeKeyAndOrderFront:nil];
  Pump(0.05);
  EXPECT_FALSE(Shown());

  [window_ makeKeyAndOrderFront:nil];
  Show(0);
  ASSERT_TRUE(Shown());
  [window_ setFrame:NSMakeRect(200, 300, 320, 130) display:YES];
  EXPECT_FALSE(Shown());

  Show(1);
  ASSERT_TRUE(Shown());
  [[NSNotificationCenter defaultCenter] postNotificationName:NSWindowDidMiniaturizeNotification
                                                      object:window_];
  EXPECT_FALSE(Shown());

  Show(1);
  [[NSNotificationCenter defaultCenter] postNotificationName:NSWindowDidMoveNotification
                                                      object:window_];
  EXPECT_TRUE(Shown());  // other notifications are ignored
}

TEST_F(PopoverSegmentedControlTest, ResignKeyToTheColourPanelKeepsThePopup) {
  Show(0);
  ASSERT_TRUE(Shown());
  NSColorPanel *panel = [NSColorPanel sharedColorPanel];
  [panel makeKeyAndOrderFront:nil];
  Pump(0.05);
  RunLoopTurn();
  if ([NSApp keyWindow] != panel) {
    [panel orderOut:nil];
    GTEST_SKIP() << "the colour panel did not become key";
  }
  EXPECT_TRUE(Shown());
  [panel orderOut:nil];
}

TEST_F(PopoverSegmentedControlTest, ClickingAnotherSegmentShowsItsView) {
  Show(0);
  ASSERT_TRUE(Shown());
  NSView *first = [control_ accessoryViewForSegment:0];
  EXPECT_EQ([first window], [control_ _popoverWindow]);
  // The second segment's centre in the control: 60 + 35.
  ::Click(control_, NSMakePoint(95, 12));
  Advance(1.0);
  Pump(0.3);
  EXPECT_EQ([control_ selectedSegment], 1);
  ASSERT_TRUE(Shown());
  EXPECT_EQ([[control_ accessoryViewForSegment:1] window], [control_ _popoverWindow]);
  EXPECT_NEAR([[control_ _popoverWindow] frame].size.width, 120, 0.5);
  // Back to the first: the popup is on screen above its parent again, at
  // the first view's own size, the second view taken out of it.
  ::Click(control_, NSMakePoint(30, 12));
  Advance(1.0);
  Pump(0.3);
  ASSERT_TRUE(Shown());
  EXPECT_NEAR([[control_ _popoverWindow] frame].size.width, 100, 0.5);
  EXPECT_NEAR(NSWidth([first frame]), 100, 0.5);
  EXPECT_EQ([[control_ accessoryViewForSegment:1] superview], nil);
  EXPECT_EQ([first window], [control_ _popoverWindow]);
  // The window list runs front to back.
  NSArray *list =
      [(NSArray *)CGWindowListCopyWindowInfo(kCGWindowListOptionOnScreenOnly, kCGNullWindowID) autorelease];
  NSMutableArray *numbers = [NSMutableArray array];
  for (NSDictionary *entry in list) [numbers addObject:[entry objectForKey:(NSString *)kCGWindowNumber]];
  NSUInteger popup = [numbers indexOfObject:@([[control_ _popoverWindow] windowNumber])];
  ASSERT_NE(popup, (NSUInteger)NSNotFound);
  EXPECT_LT(popup, [numbers indexOfObject:@([window_ windowNumber])]);
}
