// Segmented controls: hit-testing by segment widths whatever the drawing,
// the three tracking modes, per-segment menus and out-of-range indexes.

#import "platform/CellTestSupport.h"

// Draws its segments itself, never calling super.
@interface TVOwnDrawingSegmentedCell : NSSegmentedCell
@end

@implementation TVOwnDrawingSegmentedCell
- (void)drawSegment:(NSInteger)segment inFrame:(NSRect)frame withView:(NSView *)view {
  [[NSColor grayColor] set];
  NSFrameRect(frame);
}
@end

// Counts its showings as a transient (pop-up) menu.
@interface TVCountingMenu : NSMenu {
 @public
  int _opened;
}
@end

@implementation TVCountingMenu
- (void)displayTransient {
  _opened++;
  [super displayTransient];
}
@end

class SegmentedControl : public ControlWindowTest {
 protected:
  // Three segments over 300 points; widths 0 share the rest equally.
  NSSegmentedControl *AddControl(NSSegmentedCell *cell = nil) {
    NSSegmentedControl *control =
        Add([[NSSegmentedControl alloc] initWithFrame:NSMakeRect(20, 200, 300, 26)]);
    if (cell != nil) {
      [control setCell:cell];
      [cell release];
      [control setTarget:recorder()];
      [control setAction:@selector(act:)];
    }
    [control setSegmentCount:3];
    for (NSInteger i = 0; i < 3; i++) {
      [control setLabel:[NSString stringWithFormat:@"%ld", (long)i] forSegment:i];
    }
    [control display];
    return control;
  }
  void ClickSegmentAt(NSSegmentedControl *control, CGFloat x) {
    Click(control, NSMakePoint(x, 13));
  }
  NSString *Selection(NSSegmentedControl *control) {
    NSMutableString *flags = [NSMutableString string];
    for (NSInteger i = 0; i < [control segmentCount]; i++) {
      [flags appendString:[control isSelectedForSegment:i] ? @"1" : @"0"];
    }
    return flags;
  }
};

TEST_F(SegmentedControl, ACellThatDrawsOnItsOwnStillHitTests) {
  NSSegmentedControl *control = AddControl([TVOwnDrawingSegmentedCell new]);
  ClickSegmentAt(control, 150);
  EXPECT_EQ([control selectedSegment], 1);
  EXPECT_EQ(recorder()->_count, 1);
  EXPECT_EQ(recorder()->_selectedSegment, 1);
  ClickSegmentAt(control, 299);
  EXPECT_EQ([control selectedSegment], 2);
}

TEST_F(SegmentedControl, FixedWidthsMoveTheBoundaries) {
  NSSegmentedControl *control = AddControl([TVOwnDrawingSegmentedCell new]);
  // 0 and 2 automatic, 1 fixed at 50: frames 0-125, 125-175, 175-300.
  [control display];
  [control setWidth:50 forSegment:1];
  EXPECT_EQ([control widthForSegment:1], 50);
  EXPECT_EQ([control widthForSegment:0], 0);
  ClickSegmentAt(control, 124);
  EXPECT_EQ([control selectedSegment], 0);
  ClickSegmentAt(control, 126);
  EXPECT_EQ([control selectedSegment], 1);
  ClickSegmentAt(control, 176);
  EXPECT_EQ([control selectedSegment], 2);
}

TEST_F(SegmentedControl, SelectOneKeepsExactlyOneSegment) {
  NSSegmentedControl *control = AddControl();
  ClickSegmentAt(control, 250);
  ClickSegmentAt(control, 50);
  EXPECT_NSEQ(Selection(control), @"100");
  ClickSegmentAt(control, 50);  // again: stays selected
  EXPECT_NSEQ(Selection(control), @"100");
  EXPECT_EQ([control selectedSegment], 0);
  EXPECT_EQ(recorder()->_count, 3);
}

TEST_F(SegmentedControl, SelectAnyTogglesEachSegment) {
  NSSegmentedControl *control = AddControl();
  [control setTrackingMode:NSSegmentSwitchTrackingSelectAny];
  EXPECT_EQ([control trackingMode], NSSegmentSwitchTrackingSelectAny);
  ClickSegmentAt(control, 50);
  ClickSegmentAt(control, 250);
  EXPECT_NSEQ(Selection(control), @"101");
  EXPECT_EQ([control selectedSegment], 2);
  ClickSegmentAt(control, 250);
  EXPECT_NSEQ(Selection(control), @"100");
  EXPECT_EQ([control selectedSegment], 0);
  ClickSegmentAt(control, 50);
  EXPECT_NSEQ(Selection(control), @"000");
  EXPECT_EQ([control selectedSegment], -1);
  EXPECT_EQ(recorder()->_count, 4);
}

TEST_F(SegmentedControl, MomentarySelectsOnlyWhilePressed) {
  NSSegmentedControl *control = AddControl();
  [control setTrackingMode:NSSegmentSwitchTrackingMomentary];
  ClickSegmentAt(control, 250);
  EXPECT_NSEQ(Selection(control), @"000");
  EXPECT_EQ(recorder()->_count, 1);
  EXPECT_EQ(recorder()->_selectedSegment, 2);
  // Released outside the pressed segment's control: nothing, no action.
  Drag(control, NSMakePoint(250, 13), {NSMakePoint(250, 100)});
  EXPECT_NSEQ(Selection(control), @"000");
  EXPECT_EQ(recorder()->_count, 1);
}

TEST_F(SegmentedControl, DisabledSegmentsAreNotSelected) {
  NSSegmentedControl *control = AddControl();
  [control setEnabled:NO forSegment:1];
  ClickSegmentAt(control, 150);
  EXPECT_NSEQ(Selection(control), @"000");
}

TEST_F(SegmentedControl, ASegmentsMenuOpensWhenItIsPressed) {
  NSSegmentedControl *control = AddControl();
  Owned<TVCountingMenu> menu([[TVCountingMenu alloc] initWithTitle:@"m"]);
  [menu.get() addItemWithTitle:@"one" action:NULL keyEquivalent:@""];
  [control setMenu:menu.get() forSegment:0];
  EXPECT_EQ([control menuForSegment:0], menu.get());
  // The release far away closes the menu again.
  PostMouse(control, NSLeftMouseDown, NSMakePoint(20, 13));
  PostMouse(control, NSLeftMouseUp, NSMakePoint(380, -150));
  DrainEvents();
  EXPECT_EQ(menu.get()->_opened, 1);
  EXPECT_FALSE([[menu.get() window] isVisible]);
  EXPECT_EQ(recorder()->_count, 0);
  // Segments without a menu still select.
  ClickSegmentAt(control, 150);
  EXPECT_EQ([control selectedSegment], 1);
}

TEST_F(SegmentedControl, IndexesOutOfRangeAreIgnored) {
  NSSegmentedControl *control = AddControl();
  [control setSelectedSegment:1];
  [control setLabel:@"x" forSegment:3];
  [control setWidth:10 forSegment:-1];
  [control setImage:nil forSegment:99];
  [control setMenu:nil forSegment:NSIntegerMax];
  [control setSelected:YES forSegment:7];
  [control setEnabled:NO forSegment:-4];
  EXPECT_EQ([control widthForSegment:5], 0);
  EXPECT_EQ([control labelForSegment:-1], nil);
  EXPECT_EQ([control imageForSegment:3], nil);
  EXPECT_FALSE([control isSelectedForSegment:3]);
  EXPECT_FALSE([control isEnabledForSegment:-1]);
  EXPECT_EQ([[control cell] tagForSegment:8], 0);
  [control setWidth:NAN forSegment:0];
  [control setWidth:-3 forSegment:0];
  EXPECT_EQ([control widthForSegment:0], 0);
  [control setSelectedSegment:9];
  EXPECT_EQ([control selectedSegment], 1);
  [control setSelectedSegment:-1];
  EXPECT_EQ([control selectedSegment], -1);
  EXPECT_NSEQ(Selection(control), @"000");
  [control setSegmentCount:-2];
  EXPECT_EQ([control segmentCount], 3);
  [control setSelectedSegment:2];
  [control setSegmentCount:2];
  EXPECT_EQ([control selectedSegment], -1);
  [control display];
}

TEST_F(SegmentedControl, LabelsAreDrawnCentredInTheirSegments) {
  NSSegmentedControl *control = AddControl();
  [control setLabel:@"MMM" forSegment:1];
  [control setLabel:@"" forSegment:0];
  [control setLabel:@"" forSegment:2];
  NSBitmapImageRep *rep = Grab(control);
  int dark[3] = {0, 0, 0};
  double sumX = 0;
  for (int y = 0; y < 26; y++) {
    for (int x = 0; x < 300; x++) {
      RGB p = PixelAt(rep, x, y);
      if (p.r + p.g + p.b < 150 && x > 2 && x < 297 && y > 3 && y < 22) {
        dark[x / 100]++;
        if (x / 100 == 1) {
          sumX += x;
        }
      }
    }
  }
  EXPECT_GT(dark[1], 10);
  EXPECT_EQ(dark[0], 0);
  EXPECT_EQ(dark[2], 0);
  EXPECT_NEAR(sumX / dark[1], 150, 4);
  EXPECT_NSEQ([control labelForSegment:1], @"MMM");
}
