#include "core/colors/ColorMath.hpp"

#include <algorithm>
#include <cmath>

namespace talvo::colors {

Hsb HsbFromRgb(const Rgb &rgb) {
  double maxValue = std::max({rgb.r, rgb.g, rgb.b});
  double minValue = std::min({rgb.r, rgb.g, rgb.b});
  double delta = maxValue - minValue;
  Hsb hsb = {0.0, 0.0, maxValue};
  if (maxValue <= 0.0 || delta <= 0.0) {
    return hsb;
  }
  hsb.s = delta / maxValue;
  double sector;
  if (rgb.r == maxValue) {
    sector = (rgb.g - rgb.b) / delta;
  } else if (rgb.g == maxValue) {
    sector = 2.0 + (rgb.b - rgb.r) / delta;
  } else {
    sector = 4.0 + (rgb.r - rgb.g) / delta;
  }
  double h = sector / 6.0;
  // Reds leaning to blue come out just below zero.
  if (h < 0.0) {
    h += 1.0;
  }
  hsb.h = h >= 1.0 ? 0.0 : h;
  return hsb;
}

Rgb RgbFromHsb(const Hsb &hsb) {
  double h = hsb.h - std::floor(hsb.h);
  double scaled = h * 6.0;
  int sector = static_cast<int>(std::floor(scaled)) % 6;
  double fraction = scaled - std::floor(scaled);
  double v = hsb.b;
  double p = v * (1.0 - hsb.s);
  double q = v * (1.0 - hsb.s * fraction);
  double t = v * (1.0 - hsb.s * (1.0 - fraction));
  switch (sector) {
    case 0:
      return {v, t, p};
    case 1:
      return {q, v, p};
    case 2:
      return {p, v, t};
    case 3:
      return {p, q, v};
    case 4:
      return {t, p, v};
    default:
      return {v, p, q};
  }
}

Hsb Darker(const Hsb &hsb) { return {hsb.h, hsb.s, std::max(0.0, hsb.b + (-0.25 * hsb.b))}; }

Hsb Lighter(const Hsb &hsb) { return {hsb.h, std::max(0.0, hsb.s + (-0.25 * hsb.s)), hsb.b}; }

Hsb LighterBy(const Hsb &hsb, double factor) {
  // NaN != 0 is true and NaN == 0 false, which is the rule for NaNs.
  if (hsb.h == 0.0 && hsb.s == 0.0 && hsb.b != 0.0) {
    return {hsb.h, hsb.s, std::min(1.0, std::max(0.0, hsb.b + (1.0 - factor) * hsb.b))};
  }
  if (hsb.s != 0.0) {
    return {hsb.h, std::max(0.0, hsb.s * factor), hsb.b};
  }
  double b = hsb.b == 0.0 ? 1.0 - factor : hsb.b * factor;
  return {hsb.h, hsb.s, std::max(0.0, b)};
}

CheckerboardTile CheckerboardTileFor(double w) {
  return {
      2.0 * w, {Square{0, 0, w, w}, Square{w, w, w, w}}, {Square{0, w, w, w}, Square{w, 0, w, w}}};
}

namespace {

PresetEnd Fixed(Space space, double c0, double c1 = 0, double c2 = 0) {
  return {false, 0.0, {space, c0, c1, c2, 1.0}};
}

}  // namespace

PresetColors PresetGradientColors(Preset preset, Look look) {
  bool newer = look == Look::Newer;
  switch (preset) {
    case Preset::Gray:
      return newer ? PresetColors{Fixed(Space::DeviceWhite, 0.46), Fixed(Space::DeviceWhite, 0.35)}
                   : PresetColors{Fixed(Space::DeviceWhite, 0.53), Fixed(Space::DeviceWhite, 0.34)};
    case Preset::LightGray:
      // Not mirror images: the newer one darkens toward its end, the older
      // one lightens.
      return newer ? PresetColors{Fixed(Space::DeviceWhite, 0.68), Fixed(Space::DeviceWhite, 0.64)}
                   : PresetColors{Fixed(Space::DeviceWhite, 0.64), Fixed(Space::DeviceWhite, 0.71)};
    case Preset::Blue:
    default:
      if (newer) {
        return {PresetEnd{true, 0.8, kSelectionColor}, PresetEnd{true, 0.0, kSelectionColor}};
      }
      return {Fixed(Space::DeviceRGB, 0.58, 0.72, 1.0), Fixed(Space::DeviceRGB, 0.11, 0.41, 1.0)};
  }
}

std::array<double, 4> ReflectedGradientLocations(double size) {
  return {0.0, 0.5 - size, 0.5 + size, 1.0};
}

}  // namespace talvo::colors
