#include "core/controls/ControlGeometry.hpp"

#include <cmath>

namespace talvo::controls {

namespace {

bool Finite(Rect r) {
  return std::isfinite(r.x) && std::isfinite(r.y) && std::isfinite(r.width) &&
         std::isfinite(r.height);
}

}  // namespace

Rect CenteredIconRect(Rect frame, Size fitted) {
  double width = std::floor(fitted.width);
  double height = std::floor(fitted.height);
  return {frame.x + std::floor((frame.width - width) * 0.5),
          frame.y + std::floor((frame.height - height) * 0.5), width, height};
}

Rect OutsetRect(Rect rect, double margin) {
  return {rect.x - margin, rect.y - margin, rect.width + 2.0 * margin, rect.height + 2.0 * margin};
}

Rect SliderTrackRect(Rect bar, double fillHeight) {
  return {bar.x + 2.0, bar.y + std::round((bar.height - fillHeight) * 0.5) + 1.0, bar.width - 4.0,
          fillHeight};
}

double SliderSplit(double trackWidth, double knobWidth, double value, double maxValue) {
  double fraction = 0.0;
  if (std::isfinite(maxValue) && maxValue > 0.0 && std::isfinite(value)) {
    fraction = value / maxValue;
  }
  return std::round(knobWidth * 0.5 + (trackWidth - knobWidth) * fraction);
}

Point SliderKnobOrigin(Rect knob, Size image) {
  float x = static_cast<float>(knob.x + (knob.width - image.width) * 0.5);
  float y = static_cast<float>((knob.height - image.height) * 0.5);
  return {std::roundf(x), std::roundf(y) + 1.0};
}

double SegmentPad(long selected, long count) {
  if (selected == 0) return 2.0;
  if (selected == count - 1) return 6.0;
  return 4.0;
}

double SegmentPopupX(double controlX, double popupWidth, const std::vector<double> &widths,
                     long selected) {
  double x = controlX - popupWidth * 0.5;
  long count = static_cast<long>(widths.size());
  for (long i = 0; i < selected && i < count; ++i) x += widths[static_cast<size_t>(i)];
  x += SegmentPad(selected, count);
  if (selected >= 0 && selected < count) x += widths[static_cast<size_t>(selected)] * 0.5;
  return x;
}

Rect VerticallyCenteredRect(Rect rect, double textHeight) {
  if (!Finite(rect) || !std::isfinite(textHeight)) return rect;
  float diff = static_cast<float>(rect.height - textHeight);
  if (diff > 0.0f) {
    rect.height -= diff;
    rect.y += static_cast<double>(diff * 0.5f);
  }
  return rect;
}

}  // namespace talvo::controls
