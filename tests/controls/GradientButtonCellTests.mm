// The gradient cells: the state each copies into its drawer before a draw,
// the looks, the pop-up's and tab-bar cell's own drawing, and cells made in
// code and from an archive.
#import <Talvo/NSGradient+GradientCell.h>
#import <Talvo/VXGradientButtonCell.h>
#import <Talvo/VXGradientPopUpButtonCell.h>
#import <Talvo/VXTabBarButtonCell.h>

#include <cmath>

#import "controls/ControlsTestSupport.h"
#import "controls/VXGradientCells+Private.h"
#import "support/TalvoLook.h"

namespace {

class GradientButtonCellTest : public ControlsTest {
 protected:
  void TearDown() override {
    TalvoSetAppKitVersionForTesting(NAN);
    ControlsTest::TearDown();
  }
  // A button in a key and main window holding `cell`.
  NSButton *Button(NSButtonCell *cell, NSWindow *window) {
    NSButton *button = [[[NSButton alloc] initWithFrame:NSMakeRect(10, 10, 40, 30)] autorelease];
    [button setCell:cell];
    [[window contentView] addSubview:button];
    return button;
  }
  // Runs the cell's image drawing inside the button's focus.
  void DrawImage(NSButtonCell *cell, NSButton *button) {
    [button lockFocus];
    [cell drawImage:SquareIcon(NSMakeSize(16, 16), 0, [NSColor blackColor])
          withFrame:[button bounds]
             inView:button];
    [button unlockFocus];
  }
};

}  // namespace

TEST_F(GradientButtonCellTest, CopiesItsStateAndItsWindowsIntoTheDrawer) {
  TalvoSetAppKitVersionForTesting(1300);
  NSWindow *window = Window(NSMakeRect(100, 100, 80, 60));
  Owned<VXGradientButtonCell> cell([[VXGradientButtonCell alloc] initTextCell:@""]);
  NSButton *button = Button(cell, window);
  VXGradientCellDrawer *drawer = [cell.get() _drawer];
  ASSERT_NE(drawer, nil);

  [cell.get() setMouseAbove:YES];
  [cell.get() setState:NSOnState];
  [cell.get() setHighlighted:YES];
  DrawImage(cell, button);
  EXPECT_TRUE([drawer enabledDrawing]);
  EXPECT_TRUE([drawer mouseOverDrawing]);
  EXPECT_TRUE([drawer highlightedDrawing]);
  EXPECT_EQ([drawer mainWindowDrawing], [window isMainWindow]);
  EXPECT_EQ([drawer drawingState], 1);
  EXPECT_EQ([drawer gradient], [NSGradient grayGradient]);
  EXPECT_EQ([drawer lightShadowOpacity], 0.0);  // the newer look keeps its default

  [cell.get() setEnabled:NO];
  [cell.get() setMouseAbove:NO];
  [cell.get() setHighlighted:NO];
  [cell.get() setAllowsMixedState:YES];
  [cell.get() setState:NSMixedState];
  [cell.get() setGradientType:3];
  DrawImage(cell, button);
  EXPECT_FALSE([drawer enabledDrawing]);
  EXPECT_FALSE([drawer mouseOverDrawing]);
  EXPECT_FALSE([drawer highlightedDrawing]);
  EXPECT_EQ([drawer drawingState], -1);
  EXPECT_EQ([drawer gradient], [NSGradient lightGrayGradient]);
}

TEST_F(GradientButtonCellTest, OnGradientOnlyForACellShowingItsStateByContentsAlone) {
  NSWindow *window = Window(NSMakeRect(100, 100, 80, 60));
  Owned<VXGradientButtonCell> cell([[VXGradientButtonCell alloc] initTextCell:@""]);
  NSButton *button = Button(cell, window);
  [cell.get() setShowsStateBy:NSContentsCellMask];
  DrawImage(cell, button);
  EXPECT_EQ([[cell.get() _drawer] onGradient], [NSGradient blueGradient]);
  [cell.get() setShowsStateBy:NSContentsCellMask | NSChangeBackgroundCellMask];
  DrawImage(cell, button);
  EXPECT_EQ([[cell.get() _drawer] onGradient], nil);
}

TEST_F(GradientButtonCellTest, OlderLookSetsTheLightEdgeByGradientType) {
  TalvoSetAppKitVersionForTesting(1000);
  NSWindow *window = Window(NSMakeRect(100, 100, 80, 60));
  Owned<VXGradientButtonCell> cell([[VXGradientButtonCell alloc] initTextCell:@""]);
  NSButton *button = Button(cell, window);
  DrawImage(cell, button);
  EXPECT_EQ([[cell.get() _drawer] lightShadowOpacity], 0.42);
  [cell.get() setGradientType:1];
  DrawImage(cell, button);
  EXPECT_EQ([[cell.get() _drawer] lightShadowOpacity], 0.5);
}

TEST_F(GradientButtonCellTest, ChildWindowCountsAsMainForTheButtonCellOnly) {
  NSWindow *parent = Window(NSMakeRect(100, 100, 80, 60));
  NSWindow *child = Window(NSMakeRect(300, 100, 80, 60));
  [parent makeKeyAndOrderFront:nil];
  [parent addChildWindow:child ordered:NSWindowAbove];
  Pump(0.02);
  ASSERT_FALSE([child isMainWindow]);
  Owned<VXGradientButtonCell> cell([[VXGradientButtonCell alloc] initTextCell:@""]);
  NSButton *button = Button(cell, child);
  DrawImage(cell, button);
  EXPECT_TRUE([[cell.get() _drawer] mainWindowDrawing]);

  Owned<VXGradientPopUpButtonCell> popUp([[VXGradientPopUpButtonCell alloc] initTextCell:@""
                                                                               pullsDown:NO]);
  NSPopUpButton *control =
      [[[NSPopUpButton alloc] initWithFrame:NSMakeRect(10, 10, 60, 30)] autorelease];
  [control setCell:popUp];
  [[child contentView] addSubview:control];
  [control lockFocus];
  [popUp.get() drawImageWithFrame:[control bounds] inView:control];
  [control unlockFocus];
  EXPECT_FALSE([[popUp.get() _drawer] mainWindowDrawing]);
  [parent removeChildWindow:child];
}

TEST_F(GradientButtonCellTest, IconIsDrawnCentredInTheControlBoundsNotTheImageFrame) {
  NSWindow *window = Window(NSMakeRect(100, 100, 80, 60));
  Owned<VXGradientButtonCell> cell([[VXGradientButtonCell alloc] initTextCell:@""]);
  [cell.get() setBordered:NO];
  [cell.get() setImage:SquareIcon(NSMakeSize(10, 10), 0, [NSColor blackColor])];
  [cell.get() setImagePosition:NSImageOnly];
  NSButton *button = Button(cell, window);
  [[cell.get() _drawer] setGradient:SolidGradient([NSColor colorWithDeviceRed:0
                                                                        green:1
                                                                         blue:0
                                                                        alpha:1])];
  [cell.get() setGradientType:0];
  Owned<NSBitmapImageRep> rep(NewViewSnapshot(button));
  // The cell picks its preset before each draw: a gray fill at (15..24, 10..19).
  Pixel centre = RepPixel(rep, 20, 15);
  EXPECT_EQ(centre.r, centre.g) << centre;
  EXPECT_LT(centre.r, 200) << centre;
  EXPECT_PIXEL(RepPixel(rep, 5, 15), 255, 255, 255, 255);
}

TEST_F(GradientButtonCellTest, PopUpCellDrawsNoBezelBorderOrImageOfItsOwn) {
  TalvoSetAppKitVersionForTesting(1000);
  NSWindow *window = Window(NSMakeRect(100, 100, 80, 60));
  Owned<VXGradientPopUpButtonCell> cell([[VXGradientPopUpButtonCell alloc] initTextCell:@""
                                                                              pullsDown:NO]);
  NSPopUpButton *control =
      [[[NSPopUpButton alloc] initWithFrame:NSMakeRect(10, 10, 60, 30)] autorelease];
  [control setCell:cell];
  [[window contentView] addSubview:control];
  __block VXGradientPopUpButtonCell *c = cell;  // not retained by the block
  TVDrawingView *probe = [[[TVDrawingView alloc]
      initWithFrame:NSMakeRect(0, 0, 60, 30)
            flipped:NO
            drawing:^(NSView *v, NSRect dirty) {
              [c drawBezelWithFrame:[v bounds] inView:v];
              [c drawBorderAndBackgroundWithFrame:[v bounds] inView:v];
              [c drawImage:SquareIcon(NSMakeSize(20, 20), 0, [NSColor blackColor])
                  withFrame:[v bounds]
                     inView:v];
            }] autorelease];
  [[window contentView] addSubview:probe];
  Owned<NSBitmapImageRep> rep(NewViewSnapshot(probe));
  for (int x = 0; x < 60; x += 7) {
    EXPECT_PIXEL(RepPixel(rep, x, 15), 255, 255, 255, 255) << x;
  }
  [control lockFocus];
  [cell.get() drawImageWithFrame:[control bounds] inView:control];
  [control unlockFocus];
  EXPECT_EQ([[cell.get() _drawer] innerShadowRadius], 2.0);
  EXPECT_EQ([[cell.get() _drawer] gradient], [NSGradient grayGradient]);
  EXPECT_FALSE([[cell.get() _drawer] mouseOverDrawing]);
}

TEST_F(GradientButtonCellTest, TabBarCellOnlySwitchesOnAndDrawsItsBezelWhenOn) {
  TalvoSetAppKitVersionForTesting(1000);
  NSWindow *window = Window(NSMakeRect(100, 100, 120, 60));
  Owned<VXTabBarButtonCell> cell([[VXTabBarButtonCell alloc] init]);
  EXPECT_EQ([cell.get() bezelStyle], NSTexturedRoundedBezelStyle);
  EXPECT_EQ([cell.get() nextState], NSOnState);
  [cell.get() setState:NSOnState];
  EXPECT_EQ([cell.get() nextState], NSOnState);

  NSButton *button = Button(cell, window);
  [button setFrame:NSMakeRect(10, 10, 100, 30)];
  [cell.get() setState:NSOffState];
  [button performClick:nil];
  EXPECT_EQ([cell.get() state], NSOnState);
  [button performClick:nil];
  EXPECT_EQ([cell.get() state], NSOnState);

  __block VXTabBarButtonCell *c = cell;  // not retained by the block
  TVDrawingView *probe = [[[TVDrawingView alloc] initWithFrame:NSMakeRect(0, 0, 100, 30)
                                                       flipped:NO
                                                       drawing:^(NSView *v, NSRect dirty) {
                                                         [c drawBezelWithFrame:[v bounds] inView:v];
                                                       }] autorelease];
  [[window contentView] addSubview:probe positioned:NSWindowAbove relativeTo:nil];
  Owned<NSBitmapImageRep> on(NewViewSnapshot(probe));
  // The soft dark edges 1 point in from each side; the middle a faint band.
  EXPECT_LT(RepPixel(on, 0, 15).r, 250) << RepPixel(on, 0, 15);
  EXPECT_LT(RepPixel(on, 99, 15).r, 250) << RepPixel(on, 99, 15);
  EXPECT_EQ(RepPixel(on, 50, 15).r, RepPixel(on, 50, 15).b);  // no red leaks in
  [cell.get() setState:NSOffState];
  [probe setNeedsDisplay:YES];
  Owned<NSBitmapImageRep> off(NewViewSnapshot(probe));
  EXPECT_PIXEL(RepPixel(off, 0, 15), 255, 255, 255, 255);
  EXPECT_PIXEL(RepPixel(off, 50, 15), 255, 255, 255, 255);
}

TEST_F(GradientButtonCellTest, CopiesHaveTheirOwnDrawerAndNilInputIsHarmless) {
  Owned<VXGradientButtonCell> cell([[VXGradientButtonCell alloc] initTextCell:@""]);
  Owned<VXGradientButtonCell> copy([cell.get() copy]);
  EXPECT_NE([copy.get() _drawer], nil);
  EXPECT_NE([copy.get() _drawer], [cell.get() _drawer]);
  [cell.get() drawImage:nil withFrame:NSZeroRect inView:nil];
  [cell.get() drawImage:SquareIcon(NSMakeSize(4, 4), 0, [NSColor blackColor])
              withFrame:NSZeroRect
                 inView:nil];
  Owned<VXGradientPopUpButtonCell> popUp([[VXGradientPopUpButtonCell alloc] initTextCell:@""
                                                                               pullsDown:NO]);
  [popUp.get() drawImageWithFrame:NSMakeRect(0, 0, 10, 10) inView:nil];
  Owned<VXGradientPopUpButtonCell> popUpCopy([popUp.get() copy]);
  EXPECT_NE([popUpCopy.get() _drawer], [popUp.get() _drawer]);
}
