// VXFlatSliderCell with artwork of known colours: the track's split for
// values, the disabled track, the knob's place and the pressed knob.
#import <Talvo/VXFlatSliderCell.h>

#import "controls/ControlsTestSupport.h"
#import "controls/VXFlatSliderCell+Private.h"

namespace {

NSImage *Solid(NSSize size, NSColor *color) { return SquareIcon(size, 0, color); }

class FlatSliderCellTest : public ControlsTest {
 protected:
  void SetUp() override {
    ControlsTest::SetUp();
    if (IsSkipped()) return;
    NSColor *on = [NSColor colorWithDeviceRed:0 green:0 blue:1 alpha:1];
    NSColor *off = [NSColor colorWithDeviceRed:0 green:1 blue:0 alpha:1];
    [VXFlatSliderCell _setArtworkForTesting:@{
      @"trackCapLeft" : Solid(NSMakeSize(2, 4), on),
      @"trackFill" : Solid(NSMakeSize(1, 4), on),
      @"trackCapLeftOff" : Solid(NSMakeSize(2, 4), off),
      @"trackFillOff" : Solid(NSMakeSize(1, 4), off),
      @"trackCapRightOff" : Solid(NSMakeSize(2, 4), off),
      @"knobHover" : Solid(NSMakeSize(10, 10), [NSColor colorWithDeviceRed:1 green:1 blue:0 alpha:1]),
      @"knobNormal" : Solid(NSMakeSize(10, 10), [NSColor colorWithDeviceRed:1 green:0 blue:0 alpha:1]),
    }];
  }
  void TearDown() override {
    [VXFlatSliderCell _setArtworkForTesting:nil];
    ControlsTest::TearDown();
  }
  NSSlider *Slider(NSWindow *window, double value) {
    NSSlider *slider = [[[NSSlider alloc] initWithFrame:NSMakeRect(0, 0, 104, 20)] autorelease];
    VXFlatSliderCell *cell = [[[VXFlatSliderCell alloc] init] autorelease];
    [slider setCell:cell];
    [slider setMinValue:0];
    [slider setMaxValue:100];
    [slider setDoubleValue:value];
    [[window contentView] addSubview:slider];
    return slider;
  }
};

}  // namespace

TEST_F(FlatSliderCellTest, TrackSplitsAtTheKnobCentreForEachValue) {
  NSWindow *window = Window(NSMakeRect(100, 100, 104, 20));
  // Track: x 2 ... 102 (100 wide), split = round(5 + 90 * v / 100).
  const struct {
    double value;
    int split;
  } cases[] = {{0, 5}, {50, 50}, {100, 95}, {25, 28}};
  for (auto c : cases) {
    NSSlider *slider = Slider(window, c.value);
    Owned<NSBitmapImageRep> rep(NewViewSnapshot(slider));
    // Rows 9..12 hold the 4-point track: (20 - 4) / 2 = 8, 1 up = 9.
    EXPECT_PIXEL(RepPixel(rep, 3, 10), 0, 0, 255, 255) << c.value;
    EXPECT_PIXEL(RepPixel(rep, 101, 10), 0, 255, 0, 255) << c.value;
    EXPECT_PIXEL(RepPixel(rep, 1, 10), 255, 255, 255, 255) << c.value;
    EXPECT_PIXEL(RepPixel(rep, 102, 10), 255, 255, 255, 255) << c.value;
    EXPECT_PIXEL(RepPixel(rep, 50, 8), 255, 255, 255, 255) << c.value;
    EXPECT_PIXEL(RepPixel(rep, 50, 13), 255, 255, 255, 255) << c.value;
    // Under the knob the track is covered; test just off the knob's sides.
    int knobLeft = -1;
    for (int x = 0; x < 104; ++x) {
      Pixel p = RepPixel(rep, x, 3);
      if (p.r > 200 && p.g < 50) {
        knobLeft = x;
        break;
      }
    }
    ASSERT_GE(knobLeft, 0) << c.value;
    // The knob's centre sits on the split.
    EXPECT_NEAR(knobLeft + 5, 2 + c.split, 1) << c.value;
    [slider removeFromSuperview];
  }
}

TEST_F(FlatSliderCellTest, KnobSpansTheCellHeightCentredOnePointUp) {
  NSWindow *window = Window(NSMakeRect(100, 100, 104, 20));
  NSSlider *slider = Slider(window, 0);
  Owned<NSBitmapImageRep> rep(NewViewSnapshot(slider));
  // The 10-point knob: y = round((20 - 10) / 2) + 1 = 6 from the bottom of
  // the view's drawing space (the slider is flipped: rows 6..15 from the top).
  int rows = 0;
  for (int y = 0; y < 20; ++y) {
    Pixel p = RepPixel(rep, 7, y);
    if (p.r > 200 && p.g < 50 && p.b < 50) ++rows;
  }
  EXPECT_EQ(rows, 10);
}

TEST_F(FlatSliderCellTest, PressedKnobUsesTheHoverArtworkUntilTrackingStops) {
  NSWindow *window = Window(NSMakeRect(100, 100, 104, 20));
  NSSlider *slider = Slider(window, 50);
  VXFlatSliderCell *cell = [slider cell];
  EXPECT_FALSE([cell _isPressed]);
  [cell startTrackingAt:NSMakePoint(50, 10) inView:slider];
  EXPECT_TRUE([cell _isPressed]);
  [slider setNeedsDisplay:YES];
  Owned<NSBitmapImageRep> pressed(NewViewSnapshot(slider));
  EXPECT_PIXEL(RepPixel(pressed, 52, 10), 255, 255, 0, 255);
  [cell stopTracking:NSMakePoint(50, 10) at:NSMakePoint(50, 10) inView:slider mouseIsUp:YES];
  EXPECT_FALSE([cell _isPressed]);
  [slider setNeedsDisplay:YES];
  Owned<NSBitmapImageRep> released(NewViewSnapshot(slider));
  EXPECT_PIXEL(RepPixel(released, 52, 10), 255, 0, 0, 255);
}

TEST_F(FlatSliderCellTest, DisabledTrackIsAllOffArtworkAtAlphaPointEight) {
  NSWindow *window = Window(NSMakeRect(100, 100, 104, 20));
  NSSlider *slider = Slider(window, 100);
  [slider setEnabled:NO];
  Owned<NSBitmapImageRep> rep(NewViewSnapshot(slider));
  // Green at 0.8 over white: 51, 255, 51.
  EXPECT_PIXEL(RepPixel(rep, 3, 10), 51, 255, 51, 255);
  EXPECT_PIXEL(RepPixel(rep, 40, 10), 51, 255, 51, 255);
  // The knob keeps full opacity.
  EXPECT_PIXEL(RepPixel(rep, 94, 3), 255, 0, 0, 255);
}

TEST_F(FlatSliderCellTest, MissingArtworkDrawsNothingAndNeverRaises) {
  [VXFlatSliderCell _setArtworkForTesting:@{}];
  NSWindow *window = Window(NSMakeRect(100, 100, 104, 20));
  NSSlider *slider = Slider(window, 30);
  Owned<NSBitmapImageRep> rep(NewViewSnapshot(slider));
  EXPECT_PIXEL(RepPixel(rep, 30, 10), 255, 255, 255, 255);
  VXFlatSliderCell *cell = [slider cell];
  [slider lockFocus];
  [cell drawBarInside:NSZeroRect flipped:YES];
  [cell drawKnob:NSMakeRect(NAN, NAN, -1, -1)];
  [cell drawWithFrame:NSMakeRect(0, 0, -5, -5) inView:nil];
  [slider unlockFocus];
  cell->trackHeight = 7;
  EXPECT_EQ(cell->trackHeight, 7);
}
