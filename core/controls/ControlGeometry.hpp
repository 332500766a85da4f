// Placement arithmetic of Talvo's controls: where a gradient cell's icon
// goes, where the flat slider splits its track and puts its knob, where a
// segment's popup hangs and how a text cell centres its text. Plain values,
// y grows upward unless a function says otherwise.
#pragma once

#include <cstddef>
#include <vector>

#include "core/controls/PopoverOutline.hpp"

namespace talvo::controls {

struct Size {
  double width, height;
};

// The icon rect of a gradient cell: `fitted` (the image's size, already
// fitted into the frame) taken down to whole points and centred in
// `frame`, its origin on whole points.
Rect CenteredIconRect(Rect frame, Size fitted);

// The icon rect grown by `margin` on every side.
Rect OutsetRect(Rect rect, double margin);

// The flat slider's track inside the bar rect: 2 points in from each side,
// `fillHeight` tall, centred (rounded half away from zero) and 1 point up.
Rect SliderTrackRect(Rect bar, double fillHeight);

// Where the filled part of the track ends, from the track's left edge: the
// knob's centre for `value` in 0...`maxValue`. A zero, negative or
// non-finite maximum counts as a value of 0.
double SliderSplit(double trackWidth, double knobWidth, double value, double maxValue);

// The knob image's origin for knob rect `knob`: centred across (rounded in
// single precision, half away from zero) and centred in the height of a
// frame starting at 0, 1 point up.
Point SliderKnobOrigin(Rect knob, Size image);

// The pad a popover segment adds for the control's bezel: 2 for the first
// segment, 6 for the last (when not also the first), 4 otherwise.
double SegmentPad(long selected, long count);

// The popup's origin x for segment `selected` of a control whose screen
// rect starts at `controlX`: the popup's centre over the segment's centre.
double SegmentPopupX(double controlX, double popupWidth, const std::vector<double> &widths,
                     long selected);

// A text rect shrunk to `textHeight` and moved by half the difference
// towards larger y; unchanged when the text is as tall or taller. The
// difference and its half are taken in single precision.
Rect VerticallyCenteredRect(Rect rect, double textHeight);

}  // namespace talvo::controls
