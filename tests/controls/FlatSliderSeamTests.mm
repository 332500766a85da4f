// The flat slider's track is drawn in two halves, filled up to the split
// and unfilled after it: in a real slider in a real window the two must
// meet with no gap and no overlap, for every value and at either bitmap
// scale, with the knob's artwork see-through so the split shows.
#import <Talvo/VXFlatSliderCell.h>

#include <cmath>
#include <string>

#import "controls/ControlsTestSupport.h"
#import "controls/VXFlatSliderCell+Private.h"

namespace {

NSImage *Solid(NSSize size, NSColor *color) { return SquareIcon(size, 0, color); }

NSColor *Rgb(double r, double g, double b) {
  return [NSColor colorWithDeviceRed:r green:g blue:b alpha:1];
}

class FlatSliderSeamTest : public ControlsTest {
 protected:
  void SetUp() override {
    ControlsTest::SetUp();
    if (IsSkipped()) return;
    // Caps in colours of their own, so that each part shows where it lies.
    NSImage *clear = [[[NSImage alloc] initWithSize:NSMakeSize(10, 10)] autorelease];
    [VXFlatSliderCell _setArtworkForTesting:@{
      @"trackCapLeft" : Solid(NSMakeSize(2, 4), Rgb(0, 0, 0.5)),
      @"trackFill" : Solid(NSMakeSize(1, 4), Rgb(0, 0, 1)),
      @"trackCapLeftOff" : Solid(NSMakeSize(2, 4), Rgb(0, 0.5, 0)),
      @"trackFillOff" : Solid(NSMakeSize(1, 4), Rgb(0, 1, 0)),
      @"trackCapRightOff" : Solid(NSMakeSize(2, 4), Rgb(0.5, 0.5, 0)),
      @"knobHover" : clear,
      @"knobNormal" : clear,
    }];
  }
  void TearDown() override {
    [VXFlatSliderCell _setArtworkForTesting:nil];
    [NSScreen talvo_setBackingScaleFactorOverride:0];
    ControlsTest::TearDown();
  }

  // The track's row of a 104 x 20 slider at `value`, as the window shows
  // it: 'F' filled, 'U' unfilled, 'L' left cap, 'R' right cap, '.' none.
  std::string TrackRow(double value) {
    NSWindow *window = Window(NSMakeRect(100, 100, 104, 20));
    NSSlider *slider = [[[NSSlider alloc] initWithFrame:NSMakeRect(0, 0, 104, 20)] autorelease];
    VXFlatSliderCell *cell = [[[VXFlatSliderCell alloc] init] autorelease];
    [slider setCell:cell];
    [slider setMinValue:0];
    [slider setMaxValue:100];
    [slider setDoubleValue:value];
    [[window contentView] addSubview:slider];
    Owned<NSBitmapImageRep> first(NewViewSnapshot(slider));
    Owned<NSBitmapImageRep> rep(NewViewSnapshot(slider));
    std::string row;
    for (int x = 0; x < 104; ++x) {
      Pixel p = RepPixel(rep, x, 8);
      char c = '?';
      if (p.r > 240 && p.g > 240 && p.b > 240)
        c = '.';
      else if (p.r < 20 && p.g < 20 && p.b > 240)
        c = 'F';
      else if (p.r < 20 && p.g < 20 && std::abs(p.b - 128) < 8)
        c = 'L';
      else if (p.r < 20 && p.g > 240 && p.b < 20)
        c = 'U';
      else if (std::abs(p.r - 128) < 8 && std::abs(p.g - 128) < 8 && p.b < 20)
        c = 'R';
      row += c;
    }
    [slider removeFromSuperview];
    return row;
  }
};

// Track: x 2 ... 102 (100 wide); split = round(knob / 2 + (100 - knob) * v / 100)
// with the 10-point knob: the on cap at 2 ... 3, the fill to 2 + split, the
// unfilled part from there to 100, the right cap at 100 ... 101.
std::string Expected(int split) {
  std::string row(104, '.');
  for (int x = 2; x < 102; ++x) row[x] = x < 2 + split ? 'F' : 'U';
  row[2] = row[3] = 'L';
  row[100] = row[101] = 'R';
  return row;
}

}  // namespace

TEST_F(FlatSliderSeamTest, HalvesMeetAtTheSplitForEveryValue) {
  for (double scale : {1.0, 2.0}) {
    [NSScreen talvo_setBackingScaleFactorOverride:scale];
    for (double value : {0.0, 13.0, 25.0, 50.0, 77.0, 100.0}) {
      int split = (int)std::lround(5 + 90 * value / 100);
      EXPECT_EQ(TrackRow(value), Expected(split)) << "value " << value << " at " << scale << "x";
    }
  }
}
