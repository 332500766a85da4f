// Colour arithmetic behind NSColor(transform), NSColor(checkboard),
// NSColor(talvo) and the preset and reflected gradients: HSB conversion, the
// lighter and darker rules, and the toolkit's colour constants as data.
#pragma once

#include <array>

namespace talvo::colors {

struct Rgb {
  double r, g, b;
};

// Hexcone model; every component from 0 to 1, hue a fraction of the circle.
struct Hsb {
  double h, s, b;
};

// A grey answers hue 0 and saturation 0. Hue lies in [0, 1).
Hsb HsbFromRgb(const Rgb &rgb);
// Hue wraps around the circle (1.25 is 0.25); the others are used as given.
Rgb RgbFromHsb(const Hsb &hsb);

// Brightness down by a quarter; hue and saturation kept.
Hsb Darker(const Hsb &hsb);
// Saturation down by a quarter: lighter by being paler, not brighter.
Hsb Lighter(const Hsb &hsb);
// The factor rule: a grey that is not black gains (1 - f) of its brightness
// (clamped to 0...1); a coloured colour keeps f of its saturation; black
// becomes brightness 1 - f. NaN components count as nonzero.
Hsb LighterBy(const Hsb &hsb, double factor);

// Whether `level` is strictly above a colour's white component.
inline bool IsDarkerThan(double white, double level) { return level > white; }

// The platform colour spaces the toolkit builds its colours in.
enum class Space { DeviceWhite, CalibratedWhite, DeviceRGB, CalibratedRGB };

// A colour as a space and components: a white space uses c0 only.
struct ColorValue {
  Space space;
  double c0, c1, c2;
  double alpha;
};

// The toolkit's selection blue.
constexpr ColorValue kSelectionColor = {Space::CalibratedRGB, 0.039, 0.373, 0.996, 1.0};

// The standard checkerboard: first colour, second colour, square width.
constexpr ColorValue kCheckerboardFirst = {Space::CalibratedWhite, 0.74, 0, 0, 1.0};
constexpr ColorValue kCheckerboardSecond = {Space::CalibratedWhite, 0.97, 0, 0, 1.0};
constexpr double kCheckerboardSquareWidth = 8.0;

struct Square {
  double x, y, width, height;
};

// The pattern tile of a checkerboard with squares `width` wide: 2w x 2w,
// origin bottom-left; the first colour bottom-left and top-right.
struct CheckerboardTile {
  double size;
  std::array<Square, 2> first;
  std::array<Square, 2> second;
};
CheckerboardTile CheckerboardTileFor(double width);

enum class Preset { Gray, LightGray, Blue };
enum class Look { Older, Newer };

// One end of a preset gradient: a fixed colour, or the selection colour,
// made lighter with LighterBy(factor) when `lighterFactor` is above 0.
struct PresetEnd {
  bool fromSelection;
  double lighterFactor;
  ColorValue color;
};

struct PresetColors {
  PresetEnd start;
  PresetEnd end;
};

PresetColors PresetGradientColors(Preset preset, Look look);

// The stop locations of a reflected gradient: its target colour made
// transparent at both ends, the colour itself at 0.5 - size and 0.5 + size.
// `size` is used unchecked.
constexpr double kReflectedDefaultSize = 0.15;
std::array<double, 4> ReflectedGradientLocations(double size);

}  // namespace talvo::colors
