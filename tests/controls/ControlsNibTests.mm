// Every control and cell loaded from an interface file: the cells get their
// drawer, the well its rects, the segmented control its popup window, the
// mask view starts without a colour.
#import <Talvo/Talvo.h>

#import "controls/ControlsTestSupport.h"
#import "controls/VXGradientCells+Private.h"
#import "controls/VXMatteColorWell+Private.h"
#import "controls/VXPopoverViewsSegmentedControl+Private.h"

namespace {

class ControlsNibTest : public ControlsTest {
 protected:
  void SetUp() override {
    ControlsTest::SetUp();
    if (IsSkipped()) return;
    NSBundle *bundle = [NSBundle bundleWithPath:@TALVO_TEST_RESOURCES "/controls"];
    nib_.reset([[NSNib alloc] initWithNibNamed:@"ControlsObjects" bundle:bundle]);
    ASSERT_NE(nib_.get(), nil);
    NSArray *objects = nil;
    BOOL loaded = NO;
    @try {
      loaded = [nib_.get() instantiateWithOwner:owner_.get() topLevelObjects:&objects];
    } @catch (NSException *exception) {
      ADD_FAILURE() << [[exception description] UTF8String];
    }
    ASSERT_TRUE(loaded);
    for (id object in objects) {
      if ([object isKindOfClass:[NSWindow class]]) window_ = object;
    }
    ASSERT_NE(window_, nil);
    // The window comes back with one extra reference: the test owns it.
    [windows_.get() addObject:window_];
    [window_ release];
  }
  template <typename T>
  T *Find(Class cls) {
    for (NSView *view in [[window_ contentView] subviews]) {
      if ([view isKindOfClass:cls]) return (T *)view;
    }
    return nil;
  }

  Owned<NSNib> nib_;
  Owned<NSObject> owner_{[NSObject new]};
  NSWindow *window_ = nil;
};

}  // namespace

TEST_F(ControlsNibTest, DecodedControlsFinishTheirSetUp) {
  VXButton *button = Find<VXButton>([VXButton class]);
  ASSERT_NE(button, nil);
  ASSERT_TRUE([[button cell] isKindOfClass:[VXGradientButtonCell class]]);
  EXPECT_NE([(VXGradientButtonCell *)[button cell] _drawer], nil);

  NSPopUpButton *popUp = Find<NSPopUpButton>([NSPopUpButton class]);
  ASSERT_NE(popUp, nil);
  ASSERT_TRUE([[popUp cell] isKindOfClass:[VXGradientPopUpButtonCell class]]);
  EXPECT_NE([(VXGradientPopUpButtonCell *)[popUp cell] _drawer], nil);

  NSSlider *slider = Find<NSSlider>([NSSlider class]);
  ASSERT_NE(slider, nil);
  EXPECT_TRUE([[slider cell] isKindOfClass:[VXFlatSliderCell class]]);

  VXMatteColorWell *well = Find<VXMatteColorWell>([VXMatteColorWell class]);
  ASSERT_NE(well, nil);
  CGFloat inset = [well isBordered] ? 5 : 3;
  EXPECT_TRUE(NSEqualRects([well _colorRect], NSInsetRect([well bounds], inset, inset)));

  VXPopoverViewsSegmentedControl *segmented =
      Find<VXPopoverViewsSegmentedControl>([VXPopoverViewsSegmentedControl class]);
  ASSERT_NE(segmented, nil);
  ASSERT_NE([segmented _popoverWindow], nil);
  EXPECT_EQ((id)[[segmented _popoverWindow] delegate], (id)segmented);

  VXMaskImageView *mask = Find<VXMaskImageView>([VXMaskImageView class]);
  ASSERT_NE(mask, nil);
  // A custom view in an interface file is made with initWithFrame:.
  EXPECT_NSEQ([mask fillColor], [NSColor blackColor]);

  NSTextField *field = Find<NSTextField>([NSTextField class]);
  ASSERT_NE(field, nil);
  EXPECT_TRUE([[field cell] isKindOfClass:[VXVerticallyCenteredTextFieldCell class]]);

  // The whole window draws.
  [window_ orderFront:nil];
  [window_ display];
  Pump(0.02);
}

TEST_F(ControlsNibTest, MaskImageViewDecodedFromAnArchiveStartsWithoutAColour) {
  Owned<VXMaskImageView> view([[VXMaskImageView alloc] initWithFrame:NSMakeRect(0, 0, 20, 20)]);
  NSData *data = [NSKeyedArchiver archivedDataWithRootObject:view.get()];
  VXMaskImageView *decoded = [NSKeyedUnarchiver unarchiveObjectWithData:data];
  ASSERT_TRUE([decoded isKindOfClass:[VXMaskImageView class]]);
  EXPECT_EQ([decoded fillColor], nil);
  EXPECT_EQ([decoded maskImage], nil);
}

TEST_F(ControlsNibTest, GradientCellsDecodedFromAnArchiveGetADrawer) {
  Owned<VXGradientButtonCell> cell([[VXGradientButtonCell alloc] initTextCell:@"x"]);
  NSData *data = [NSKeyedArchiver archivedDataWithRootObject:cell.get()];
  VXGradientButtonCell *decoded = [NSKeyedUnarchiver unarchiveObjectWithData:data];
  ASSERT_TRUE([decoded isKindOfClass:[VXGradientButtonCell class]]);
  EXPECT_NE([decoded _drawer], nil);
  EXPECT_NE([decoded _drawer], [cell.get() _drawer]);
  Owned<VXTabBarButtonCell> tab([[VXTabBarButtonCell alloc] init]);
  VXTabBarButtonCell *decodedTab = [NSKeyedUnarchiver
      unarchiveObjectWithData:[NSKeyedArchiver archivedDataWithRootObject:tab.get()]];
  ASSERT_TRUE([decodedTab isKindOfClass:[VXTabBarButtonCell class]]);
  EXPECT_NE([decodedTab _drawer], nil);
  EXPECT_EQ([decodedTab nextState], NSOnState);
}
