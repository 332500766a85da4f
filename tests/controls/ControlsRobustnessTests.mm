// Bad input to the controls headers: nil, NaN, infinities, wrong classes,
// negative and zero sizes, out-of-range segments, drawing outside any view.
#import <Talvo/Talvo.h>

#import "controls/ControlsTestSupport.h"
#import "robustness/RobustnessSupport.h"

namespace {

using ControlsRobustness = ControlsTest;

}  // namespace

TEST_F(ControlsRobustness, DrawerAndGradientCells) {
  NSWindow *window = Window(NSMakeRect(100, 100, 80, 60));
  Owned<VXGradientCellDrawer> drawer([VXGradientCellDrawer new]);
  NSImage *icon = SquareIcon(NSMakeSize(16, 16), 0, [NSColor blackColor]);
  __block VXGradientCellDrawer *d = drawer;
  TVDrawingView *view =
      [[[TVDrawingView alloc] initWithFrame:NSMakeRect(0, 0, 80, 60)
                                    flipped:NO
                                    drawing:^(NSView *v, NSRect dirty) {
                                      for (double x : bad::kValues) {
                                        [d setInnerShadowRadius:x];
                                        [d setInnerShadowOpacity:x];
                                        [d setLightShadowOpacity:x];
                                        [d setMainWindowDrawing:YES];
                                        [d setEnabledDrawing:YES];
                                        [d drawImage:icon inFrame:NSMakeRect(x, x, 40, 40)];
                                        [d drawImage:icon inFrame:NSMakeRect(0, 0, x, x)];
                                      }
                                      [d setGradient:(NSGradient *)bad::WrongObject()];
                                      [d setDrawingState:1];
                                      [d setOnGradient:nil];
                                    }] autorelease];
  [[window contentView] addSubview:view];
  EXPECT_CALM([window display]);

  for (id control : {(id)nil, bad::WrongObject(), (id)view}) {
    Owned<VXGradientButtonCell> cell([[VXGradientButtonCell alloc] initTextCell:@""]);
    EXPECT_CALM([cell.get() drawImage:icon withFrame:NSZeroRect inView:control]);
    EXPECT_CALM([cell.get() drawImage:(NSImage *)bad::WrongObject()
                            withFrame:NSZeroRect
                               inView:control]);
    Owned<VXGradientPopUpButtonCell> popUp([[VXGradientPopUpButtonCell alloc] initTextCell:@""
                                                                                 pullsDown:YES]);
    EXPECT_CALM([popUp.get() drawImageWithFrame:NSMakeRect(bad::kNaN, 0, -1, bad::kInf)
                                         inView:control]);
    EXPECT_CALM([popUp.get() drawBezelWithFrame:NSZeroRect inView:control]);
    Owned<VXTabBarButtonCell> tab([VXTabBarButtonCell new]);
    [tab.get() setState:NSOnState];
    EXPECT_CALM([tab.get() drawBezelWithFrame:NSMakeRect(0, 0, bad::kNaN, -4) inView:control]);
  }
  Owned<VXGradientButtonCell> cell([[VXGradientButtonCell alloc] initTextCell:@""]);
  [cell.get() setGradientType:-7];
  EXPECT_EQ([cell.get() gradientType], -7);
}

TEST_F(ControlsRobustness, FlatSlider) {
  NSWindow *window = Window(NSMakeRect(100, 100, 120, 30));
  NSSlider *slider = [[[NSSlider alloc] initWithFrame:NSMakeRect(0, 0, 100, 20)] autorelease];
  [slider setCell:[[[VXFlatSliderCell alloc] init] autorelease]];
  [[window contentView] addSubview:slider];
  VXFlatSliderCell *cell = [slider cell];
  for (double v : bad::kValues) {
    EXPECT_CALM([cell setMaxValue:v]) << v;
    EXPECT_CALM([cell setDoubleValue:v]) << v;
    EXPECT_CALM([window display]) << v;
    EXPECT_CALM([cell drawKnob:NSMakeRect(v, v, v, v)]) << v;
  }
  EXPECT_CALM([cell drawWithFrame:NSZeroRect inView:nil]);
  EXPECT_CALM([cell drawBarInside:NSMakeRect(0, 0, -10, -10) flipped:NO]);
  EXPECT_CALM([cell startTrackingAt:NSMakePoint(bad::kNaN, 0) inView:nil]);
  EXPECT_CALM([cell stopTracking:NSZeroPoint at:NSZeroPoint inView:nil mouseIsUp:YES]);
}

TEST_F(ControlsRobustness, SegmentedControl) {
  NSWindow *window = Window(NSMakeRect(100, 100, 200, 60));
  VXPopoverViewsSegmentedControl *control = [[[VXPopoverViewsSegmentedControl alloc]
      initWithFrame:NSMakeRect(0, 30, 150, 24)] autorelease];
  [[window contentView] addSubview:control];
  NSView *view = [[[NSView alloc] initWithFrame:NSZeroRect] autorelease];
  for (NSInteger segment :
       {(NSInteger)-1, (NSInteger)0, (NSInteger)99, NSIntegerMax, NSIntegerMin}) {
    EXPECT_CALM([control setAccessoryView:view forSegment:segment]) << segment;
    EXPECT_CALM([control setAccessoryView:(NSView *)bad::WrongObject() forSegment:segment])
        << segment;
    EXPECT_CALM([control accessoryViewForSegment:segment]) << segment;
    EXPECT_CALM([control showPopoverView]) << segment;  // no segments: nothing selected
    EXPECT_CALM([control dismissPopoverView]) << segment;
  }
  // A zero-size view shows a zero-size popup, which is then dismissed.
  [control setSegmentCount:1];
  [control setSelectedSegment:0];
  EXPECT_CALM([control showPopoverView]);
  EXPECT_CALM([control dismissPopoverView]);
  EXPECT_CALM([control dismissPopoverView]);
  EXPECT_CALM([control mouseDown:NullOf<NSEvent *>()]);
  [control dismissPopoverView];
}

TEST_F(ControlsRobustness, SmallViewsAndButtons) {
  Owned<VXMatteColorWell> well([[VXMatteColorWell alloc] initWithFrame:NSMakeRect(0, 0, 40, 20)]);
  for (double v : bad::kValues) {
    EXPECT_CALM([well.get() setFrame:NSMakeRect(v, v, v, v)]) << v;
  }
  EXPECT_CALM([well.get() awakeFromNib]);

  Owned<VXVerticallyCenteredTextFieldCell> text(
      [[VXVerticallyCenteredTextFieldCell alloc] initTextCell:@"x"]);
  NSRect result = NSZeroRect;
  for (double v : bad::kValues) {
    EXPECT_CALM(result = [text.get() drawingRectForBounds:NSMakeRect(v, v, v, v)]) << v;
  }
  [text.get() setStringValue:@""];
  EXPECT_CALM(result = [text.get() drawingRectForBounds:NSMakeRect(0, 0, 10, 0)]);

  Owned<VXMaskImageView> mask([[VXMaskImageView alloc] initWithFrame:NSMakeRect(0, 0, 0, 0)]);
  EXPECT_CALM([mask.get() setMaskImage:(NSImage *)bad::WrongObject()]);
  EXPECT_CALM([mask.get() setFillColor:(NSColor *)bad::WrongString()]);
  NSWindow *window = Window(NSMakeRect(100, 100, 40, 40));
  [[window contentView] addSubview:mask];
  EXPECT_CALM([window display]);
  [mask.get() removeFromSuperview];

  Owned<VXTransparentScroller> scroller([[VXTransparentScroller alloc] initWithFrame:NSZeroRect]);
  EXPECT_CALM([scroller.get() setKnobStyle:NSScrollerKnobStyleDark]);
  EXPECT_EQ([scroller.get() knobStyle], NSScrollerKnobStyleLight);
  EXPECT_CALM([scroller.get() drawKnobSlotInRect:NSMakeRect(bad::kNaN, 0, 0, 0) highlight:YES]);

  Owned<VXAnimatedSelectionTableRowView> row(
      [[VXAnimatedSelectionTableRowView alloc] initWithFrame:NSZeroRect]);
  for (double v : bad::kValues) {
    EXPECT_CALM([row.get() setBackgroundAlpha:v]) << v;
  }
  EXPECT_CALM([VXAnimatedSelectionTableRowView defaultAnimationForKey:NullOf<NSString *>()]);

  Owned<VXAnimatedButton> button([[VXAnimatedButton alloc] initWithFrame:NSZeroRect]);
  EXPECT_CALM([button.get() mouseEntered:NullOf<NSEvent *>()]);
  EXPECT_CALM([button.get() mouseExited:NullOf<NSEvent *>()]);
  EXPECT_CALM([button.get() updateTrackingAreas]);
  EXPECT_CALM([button.get() setHidden:YES]);
  EXPECT_CALM([button.get() setHidden:NO]);
  Owned<VXButtonCell> buttonCell([[VXButtonCell alloc] initTextCell:@"x"]);
  EXPECT_CALM([buttonCell.get() drawInteriorWithFrame:NSZeroRect inView:NullOf<NSView *>()]);
}
