// VXFlatSliderCell with artwork of known colours: the track's split for
// values, the disabled track, the knob's place and the pressed knob.
#import <Talvo/VXFlatSliderCell.h>

#import "controls/ControlsTestSupport.h"
#import "controls/VXFlatSliderCell+Private.h"
#import "platform/CellTestSupport.h"

#include <cmath>

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
      @"knobHover" : Solid(NSMakeSize(10, 10), [NSColor colorWithDeviceRed:1
                                                                     green:1
                                                                      blue:0
                                                                     alpha:1]),
      @"knobNormal" : Solid(NSMakeSize(10, 10), [NSColor colorWithDeviceRed:1
                                                                      green:0
                                                                       blue:0
                                                                      alpha:1]),
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

// The slider is flipped: the 4-point track lies 9 ... 12 points from the
// top ((20 - 4) / 2 + 1), rows 7 ... 10 from the bottom; the 10-point knob
// 6 ... 15 from the top, rows 4 ... 13 from the bottom.
static const int kTrackRow = 8;
static const int kKnobRow = 5;

TEST_F(FlatSliderCellTest, TrackSplitsAtTheKnobCentreForEachValue) {
  NSWindow *window = Window(NSMakeRect(100, 100, 104, 20));
  // The bar alone (no knob over the split), in a flipped view like a slider.
  // Track: x 2 ... 102 (100 wide), split = round(5 + 90 * v / 100).
  const struct {
    double value;
    int split;
  } cases[] = {{0, 5}, {50, 50}, {100, 95}, {25, 28}};
  for (auto c : cases) {
    __block VXFlatSliderCell *cell = [[[VXFlatSliderCell alloc] init] autorelease];
    [cell setMinValue:0];
    [cell setMaxValue:100];
    [cell setDoubleValue:c.value];
    TVDrawingView *view = [[[TVDrawingView alloc] initWithFrame:NSMakeRect(0, 0, 104, 20)
                                                        flipped:YES
                                                        drawing:^(NSView *v, NSRect dirty) {
                                                          [cell drawBarInside:[v bounds]
                                                                      flipped:YES];
                                                        }] autorelease];
    [[window contentView] addSubview:view];
    Owned<NSBitmapImageRep> rep(NewViewSnapshot(view));
    EXPECT_PIXEL(RepPixel(rep, 1, kTrackRow), 255, 255, 255, 255) << c.value;
    EXPECT_PIXEL(RepPixel(rep, 102, kTrackRow), 255, 255, 255, 255) << c.value;
    EXPECT_PIXEL(RepPixel(rep, 50, 6), 255, 255, 255, 255) << c.value;
    EXPECT_PIXEL(RepPixel(rep, 50, 11), 255, 255, 255, 255) << c.value;
    EXPECT_PIXEL(RepPixel(rep, 2, kTrackRow), 0, 0, 255, 255) << c.value;  // the on cap
    if (c.split > 12)
      EXPECT_PIXEL(RepPixel(rep, 2 + c.split - 5, kTrackRow), 0, 0, 255, 255) << c.value;
    if (c.split < 90)
      EXPECT_PIXEL(RepPixel(rep, 2 + c.split + 5, kTrackRow), 0, 255, 0, 255) << c.value;
    // The on artwork ends and the off artwork begins at the split (the
    // three-part drawing may leave a missing cap's width empty).
    int lastOn = -1, firstOff = -1;
    for (int x = 0; x < 104; ++x) {
      Pixel p = RepPixel(rep, x, kTrackRow);
      if (p.b > 200 && p.r < 50 && p.g < 50) lastOn = x;
      if (firstOff < 0 && p.g > 200 && p.r < 50 && p.b < 50) firstOff = x;
    }
    EXPECT_NEAR(lastOn + 1, 2 + c.split, 2) << c.value;
    EXPECT_NEAR(firstOff, 2 + c.split, 2) << c.value;
    [view removeFromSuperview];
  }
}

TEST_F(FlatSliderCellTest, KnobIsCentredOnTheSplitAndSpansTheCellHeight) {
  NSWindow *window = Window(NSMakeRect(100, 100, 104, 20));
  for (double value : {0.0, 50.0, 100.0}) {
    NSSlider *slider = Slider(window, value);
    // The knob's thickness is the artwork's from the second draw on.
    Owned<NSBitmapImageRep> first(NewViewSnapshot(slider));
    Owned<NSBitmapImageRep> rep(NewViewSnapshot(slider));
    if (NSIsEmptyRect([[slider cell] trackRect])) {
      GTEST_SKIP() << "this AppKit places no knob before it has drawn its own track";
    }
    int knobLeft = -1;
    for (int x = 0; x < 104 && knobLeft < 0; ++x) {
      Pixel p = RepPixel(rep, x, kKnobRow);
      if (p.r > 200 && p.g < 50 && p.b < 50) knobLeft = x;
    }
    ASSERT_GE(knobLeft, 0) << value;
    int split = (int)std::lround(5 + 90 * value / 100);
    // AppKit places the knob in its own track rect: within a point or two.
    EXPECT_NEAR(knobLeft + 5, 2 + split, 2) << value;
    int rows = 0;
    for (int y = 0; y < 20; ++y) {
      Pixel p = RepPixel(rep, knobLeft + 1, y);
      if (p.r > 200 && p.g < 50 && p.b < 50) ++rows;
    }
    EXPECT_EQ(rows, 10) << value;
    [slider removeFromSuperview];
  }
}

// The knob's colour in row kKnobRow: the first knob-coloured pixel.
static Pixel KnobPixel(NSBitmapImageRep *rep) {
  for (int x = 0; x < 104; ++x) {
    Pixel p = RepPixel(rep, x, kKnobRow);
    if (p.r > 200 && p.b < 50) return p;
  }
  return Pixel{};
}

TEST_F(FlatSliderCellTest, PressedKnobUsesTheHoverArtworkUntilTrackingStops) {
  NSWindow *window = Window(NSMakeRect(100, 100, 104, 20));
  NSSlider *slider = Slider(window, 50);
  VXFlatSliderCell *cell = [slider cell];
  Owned<NSBitmapImageRep> first(NewViewSnapshot(slider));
  if (NSIsEmptyRect([cell trackRect])) {
    GTEST_SKIP() << "this AppKit places no knob before it has drawn its own track";
  }
  EXPECT_FALSE([cell _isPressed]);
  [cell startTrackingAt:NSMakePoint(50, 10) inView:slider];
  EXPECT_TRUE([cell _isPressed]);
  [slider setNeedsDisplay:YES];
  Owned<NSBitmapImageRep> pressed(NewViewSnapshot(slider));
  EXPECT_PIXEL(KnobPixel(pressed), 255, 255, 0, 255);
  [cell stopTracking:NSMakePoint(50, 10) at:NSMakePoint(50, 10) inView:slider mouseIsUp:YES];
  EXPECT_FALSE([cell _isPressed]);
  [slider setNeedsDisplay:YES];
  Owned<NSBitmapImageRep> released(NewViewSnapshot(slider));
  EXPECT_PIXEL(KnobPixel(released), 255, 0, 0, 255);
}

TEST_F(FlatSliderCellTest, PressedWhileTheMouseIsDownOnTheKnob) {
  NSWindow *window = Window(NSMakeRect(100, 100, 104, 20));
  NSSlider *slider = Slider(window, 0);
  VXFlatSliderCell *cell = [slider cell];
  Owned<NSBitmapImageRep> first(NewViewSnapshot(slider));
  if (NSIsEmptyRect([cell trackRect])) {
    GTEST_SKIP() << "this AppKit places no knob before it has drawn its own track";
  }
  // A real click: the press lasts for the tracking loop, then ends.
  ::Click(slider, NSMakePoint(60, 10));
  EXPECT_FALSE([cell _isPressed]);
  EXPECT_GT([slider doubleValue], 0.0);
}

TEST_F(FlatSliderCellTest, DisabledTrackIsAllOffArtworkAtAlphaPointEight) {
  NSWindow *window = Window(NSMakeRect(100, 100, 104, 20));
  NSSlider *slider = Slider(window, 100);
  [slider setEnabled:NO];
  // The knob's thickness is the artwork's from the second draw on.
  Owned<NSBitmapImageRep> first(NewViewSnapshot(slider));
  Owned<NSBitmapImageRep> rep(NewViewSnapshot(slider));
  // Green at 0.8 over white: 51, 255, 51, whatever the value.
  EXPECT_PIXEL(RepPixel(rep, 20, kTrackRow), 51, 255, 51, 255);
  EXPECT_PIXEL(RepPixel(rep, 60, kTrackRow), 51, 255, 51, 255);
  EXPECT_PIXEL(RepPixel(rep, 90, kTrackRow), 51, 255, 51, 255);
  // The knob keeps full opacity.
  EXPECT_PIXEL(KnobPixel(rep), 255, 0, 0, 255);
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
