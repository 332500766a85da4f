// Slider cells: geometry before the first draw, the bar and knob rects that
// drawing and tracking share, tick marks, and tracking with real events.

#import "platform/CellTestSupport.h"

// Draws its bar in a rect of its own and logs where the bar was drawn.
@interface TVBarSliderCell : NSSliderCell {
 @public
  NSRect _drawnBar;
  BOOL _customBar;
}
@end

@implementation TVBarSliderCell
- (NSRect)barRectFlipped:(BOOL)flipped {
  if (_customBar) {
    NSRect track = [self trackRect];
    return NSMakeRect(NSMinX(track) + 10, NSMinY(track), NSWidth(track) - 20, 4);
  }
  return [super barRectFlipped:flipped];
}
- (void)drawBarInside:(NSRect)rect flipped:(BOOL)flipped {
  _drawnBar = rect;
  [super drawBarInside:rect flipped:flipped];
}
@end

class Slider : public ControlWindowTest {
 protected:
  NSSlider *AddSlider(NSRect frame, NSSliderCell *cell = nil) {
    NSSlider *slider = Add([[NSSlider alloc] initWithFrame:frame]);
    if (cell != nil) {
      [slider setCell:cell];
      [cell release];
      [slider setTarget:recorder()];
      [slider setAction:@selector(act:)];
    }
    [slider setMinValue:0];
    [slider setMaxValue:100];
    [slider setDoubleValue:0];
    return slider;
  }
  // Where the knob's centre is when the slider shows `value`.
  NSPoint KnobCentreFor(NSSlider *slider, double value) {
    [slider setDoubleValue:value];
    NSRect knob = [[slider cell] knobRectFlipped:[slider isFlipped]];
    return NSMakePoint(NSMidX(knob), NSMidY(knob));
  }
};

TEST_F(Slider, GeometryIsKnownBeforeTheFirstDraw) {
  NSSlider *horizontal = AddSlider(NSMakeRect(20, 200, 200, 24));
  NSSlider *vertical = AddSlider(NSMakeRect(300, 60, 24, 150));
  NSSliderCell *cell = [horizontal cell];
  EXPECT_FALSE(NSIsEmptyRect([cell trackRect]));
  EXPECT_EQ([cell isVertical], 0);
  EXPECT_EQ([(NSSliderCell *)[vertical cell] isVertical], 1);
  EXPECT_GT([cell knobThickness], 0);
  EXPECT_LT([cell knobThickness], 24.5);
  // And the same once drawn.
  NSRect before = [cell trackRect];
  CGFloat thickness = [cell knobThickness];
  [horizontal display];
  EXPECT_TRUE(NSEqualRects([cell trackRect], before));
  EXPECT_EQ([cell knobThickness], thickness);
  EXPECT_TRUE(NSEqualRects([cell barRectFlipped:YES], [cell trackRect]));
}

TEST_F(Slider, AnOverriddenBarRectIsWhereTheBarIsDrawn) {
  TVBarSliderCell *cell = [TVBarSliderCell new];
  cell->_customBar = YES;
  NSSlider *slider = AddSlider(NSMakeRect(20, 200, 200, 24), cell);
  [slider display];
  EXPECT_TRUE(NSEqualRects(cell->_drawnBar, [cell barRectFlipped:YES]));
  EXPECT_EQ(NSHeight(cell->_drawnBar), 4);
}

TEST_F(Slider, SetVerticalOverridesTheFrame) {
  NSSlider *slider = AddSlider(NSMakeRect(20, 200, 200, 24));
  [(NSSliderCell *)[slider cell] setVertical:YES];
  [slider display];
  EXPECT_EQ([(NSSliderCell *)[slider cell] isVertical], 1);
  [slider setVertical:NO];
  EXPECT_EQ([(NSSliderCell *)[slider cell] isVertical], 0);
  [slider display];
  EXPECT_EQ([(NSSliderCell *)[slider cell] isVertical], 0);
}

TEST_F(Slider, TickMarksSitUnderTheKnobCentreForTheirValues) {
  NSSlider *slider = AddSlider(NSMakeRect(20, 200, 200, 24));
  NSSliderCell *cell = [slider cell];
  [cell setNumberOfTickMarks:5];
  for (NSInteger i = 0; i < 5; i++) {
    double value = [cell tickMarkValueAtIndex:i];
    EXPECT_DOUBLE_EQ(value, i * 25.0);
    NSRect tick = [cell rectOfTickMarkAtIndex:i];
    EXPECT_NEAR(NSMidX(tick), KnobCentreFor(slider, value).x, 1.0) << "tick " << i;
  }
  // Below (the default) is the bottom edge: larger y in the flipped slider.
  EXPECT_GT(NSMidY([cell rectOfTickMarkAtIndex:0]), NSMidY([cell trackRect]));
  [cell setTickMarkPosition:NSTickMarkAbove];
  EXPECT_LT(NSMidY([cell rectOfTickMarkAtIndex:0]), NSMidY([cell trackRect]));
  EXPECT_TRUE(NSEqualRects([cell rectOfTickMarkAtIndex:5], NSZeroRect));
  EXPECT_TRUE(NSEqualRects([cell rectOfTickMarkAtIndex:-1], NSZeroRect));
  EXPECT_EQ([cell tickMarkValueAtIndex:-1], 0);
  EXPECT_DOUBLE_EQ([cell closestTickMarkValueToValue:60], 50);
  EXPECT_DOUBLE_EQ([cell closestTickMarkValueToValue:NAN], 0);
  [cell setNumberOfTickMarks:-3];
  EXPECT_EQ([cell numberOfTickMarks], 0);
}

TEST_F(Slider, TickMarksAreDrawn) {
  NSSlider *slider = AddSlider(NSMakeRect(20, 200, 200, 24));
  NSSliderCell *cell = [slider cell];
  [slider setDoubleValue:0];
  [cell setNumberOfTickMarks:3];
  NSRect last = [cell rectOfTickMarkAtIndex:2];  // away from the knob at 0
  NSBitmapImageRep *rep = Grab(slider);
  RGB onTick = PixelAt(rep, (int)NSMinX(last), (int)NSMidY(last));
  RGB beside = PixelAt(rep, (int)NSMinX(last) - 6, (int)NSMidY(last));
  EXPECT_LT(onTick.r, beside.r - 20) << onTick.r << " vs " << beside.r;
}

TEST_F(Slider, APressMovesTheKnobCentreToTheMouseAndDragsFollow) {
  NSSlider *slider = AddSlider(NSMakeRect(20, 200, 200, 24), [NSSliderCell new]);
  NSPoint at40 = KnobCentreFor(slider, 40);
  NSPoint at70 = KnobCentreFor(slider, 70);
  [slider setDoubleValue:0];
  Click(slider, at40);
  EXPECT_NEAR([slider doubleValue], 40, 0.6);  // events land on whole points
  EXPECT_GE(recorder()->_count, 1);
  Drag(slider, at40, {at70});
  EXPECT_NEAR([slider doubleValue], 70, 0.6);  // events land on whole points
  // Far past the end: clamped.
  Drag(slider, at70, {NSMakePoint(900, at70.y)});
  EXPECT_DOUBLE_EQ([slider doubleValue], 100);
}

TEST_F(Slider, TheKnobDoesNotJumpWhenTakenOffCentre) {
  NSSlider *slider = AddSlider(NSMakeRect(20, 200, 200, 24), [NSSliderCell new]);
  NSPoint centre = KnobCentreFor(slider, 50);
  NSRect knob = [[slider cell] knobRectFlipped:YES];
  NSPoint offCentre = NSMakePoint(NSMinX(knob) + 1, centre.y);
  Drag(slider, offCentre, {NSMakePoint(offCentre.x + 1, centre.y), offCentre});
  EXPECT_NEAR([slider doubleValue], 50, 0.6);  // events land on whole points
}

TEST_F(Slider, TickValuesOnlySnapsWhileTracking) {
  NSSlider *slider = AddSlider(NSMakeRect(20, 200, 200, 24), [NSSliderCell new]);
  [slider setNumberOfTickMarks:5];
  [[slider cell] setAllowsTickMarkValuesOnly:YES];
  NSPoint at60 = KnobCentreFor(slider, 60);
  [slider setDoubleValue:0];
  Click(slider, at60);
  EXPECT_DOUBLE_EQ([slider doubleValue], 50);
}

TEST_F(Slider, AVerticalSliderHasItsMinimumAtTheBottom) {
  NSSlider *slider = AddSlider(NSMakeRect(300, 60, 24, 150), [NSSliderCell new]);
  NSPoint at80 = KnobCentreFor(slider, 80);
  NSPoint at20 = KnobCentreFor(slider, 20);
  EXPECT_LT(at80.y, at20.y);  // flipped: higher on screen is smaller y
  Click(slider, at80);
  EXPECT_NEAR([slider doubleValue], 80, 0.6);  // events land on whole points
  Click(slider, at20);
  EXPECT_NEAR([slider doubleValue], 20, 0.6);  // events land on whole points
}

TEST_F(Slider, BadInputAndCallsOutsideDrawingRaiseNothing) {
  Owned<NSSliderCell> cell([NSSliderCell new]);
  // No control view: nothing is known, nothing raises.
  EXPECT_EQ([cell.get() isVertical], -1);
  EXPECT_TRUE(NSIsEmptyRect([cell.get() trackRect]));
  [cell.get() setNumberOfTickMarks:4];
  EXPECT_TRUE(NSEqualRects([cell.get() rectOfTickMarkAtIndex:NSIntegerMax], NSZeroRect));
  [cell.get() rectOfTickMarkAtIndex:2];
  [cell.get() barRectFlipped:YES];
  [cell.get() drawTickMarks];
  [cell.get() setVertical:YES];
  EXPECT_EQ([cell.get() isVertical], 1);
  [cell.get() closestTickMarkValueToValue:INFINITY];
  [cell.get() closestTickMarkValueToValue:-INFINITY];
  NSSlider *slider = AddSlider(NSMakeRect(20, 200, 0, 0), [NSSliderCell new]);
  [slider display];
  Click(slider, NSMakePoint(0, 0));
  EXPECT_EQ([slider doubleValue], 0);
}
