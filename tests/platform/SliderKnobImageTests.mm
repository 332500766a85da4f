// Sliders of different thicknesses in one window: each knob keeps the
// thickness of its own track. The stock knob image is shared by name, so a
// knob sized for one slider must not resize another's.

#import "platform/CellTestSupport.h"

class SliderKnobImage : public ControlWindowTest {};

TEST_F(SliderKnobImage, EachSliderKeepsAKnobOfItsOwnTrackThickness) {
  NSSlider *thin = Add([[NSSlider alloc] initWithFrame:NSMakeRect(20, 200, 200, 16)]);
  NSSlider *thick = Add([[NSSlider alloc] initWithFrame:NSMakeRect(20, 100, 200, 30)]);
  NSSlider *tall = Add([[NSSlider alloc] initWithFrame:NSMakeRect(300, 40, 22, 200)]);
  NSImage *named = [NSImage imageNamed:@"common_SliderHoriz"];
  NSSize namedSize = [named size];
  Grab(thin);
  Grab(thick);
  Grab(tall);
  for (NSSlider *slider : {thin, thick}) {
    NSSliderCell *cell = [slider cell];
    NSRect knob = [cell knobRectFlipped:[slider isFlipped]];
    // The knob spans its own track, whatever the other slider asked for.
    EXPECT_NEAR(NSHeight(knob), NSHeight([cell trackRect]), 1.0) << NSHeight([slider frame]);
  }
  NSSliderCell *vertical = [tall cell];
  EXPECT_NEAR(NSWidth([vertical knobRectFlipped:[tall isFlipped]]), NSWidth([vertical trackRect]),
              1.0);
  // The shared image itself is left as it was.
  EXPECT_TRUE(NSEqualSizes([named size], namedSize));
}
