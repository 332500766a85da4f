// Colour spaces and colours of the Core Graphics stand-in: device RGB and
// device gray only; the named spaces are aliases of those.

#include <CoreGraphics/CGTalvoBridge.h>

#include <algorithm>
#include <new>

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

using talvo::quartz::ColorModel;

const CFStringRef kCGColorSpaceGenericGray = (CFStringRef) @"kCGColorSpaceGenericGray";
const CFStringRef kCGColorSpaceGenericRGB = (CFStringRef) @"kCGColorSpaceGenericRGB";
const CFStringRef kCGColorSpaceSRGB = (CFStringRef) @"kCGColorSpaceSRGB";
const CFStringRef kCGColorBlack = (CFStringRef) @"kCGColorBlack";
const CFStringRef kCGColorWhite = (CFStringRef) @"kCGColorWhite";
const CFStringRef kCGColorClear = (CFStringRef) @"kCGColorClear";

namespace {

CGColorSpaceRef NewSpace(ColorModel model, CFStringRef name) {
  CGColorSpace *space = new (std::nothrow) CGColorSpace;
  if (!space) return nullptr;
  space->model = model;
  space->name = name;
  return space;
}

bool SameName(CFStringRef a, CFStringRef b) { return [(NSString *)a isEqualToString:(NSString *)b]; }

}  // namespace

CGColorSpaceRef CGColorSpaceCreateDeviceRGB(void) { return NewSpace(ColorModel::RGB, nullptr); }

CGColorSpaceRef CGColorSpaceCreateDeviceGray(void) { return NewSpace(ColorModel::Gray, nullptr); }

CGColorSpaceRef CGColorSpaceCreateWithName(CFStringRef name) {
  if (!name) return nullptr;
  if (SameName(name, kCGColorSpaceGenericRGB)) return NewSpace(ColorModel::RGB, kCGColorSpaceGenericRGB);
  if (SameName(name, kCGColorSpaceSRGB)) return NewSpace(ColorModel::RGB, kCGColorSpaceSRGB);
  if (SameName(name, kCGColorSpaceGenericGray)) {
    return NewSpace(ColorModel::Gray, kCGColorSpaceGenericGray);
  }
  return nullptr;
}

CGColorSpaceRef CGColorSpaceRetain(CGColorSpaceRef space) {
  if (space) space->refs.fetch_add(1);
  return space;
}

void CGColorSpaceRelease(CGColorSpaceRef space) {
  if (space && space->refs.fetch_sub(1) == 1) delete space;
}

size_t CGColorSpaceGetNumberOfComponents(CGColorSpaceRef space) {
  if (!space) return 0;
  return space->model == ColorModel::RGB ? 3 : 1;
}

CGColorSpaceModel CGColorSpaceGetModel(CGColorSpaceRef space) {
  if (!space) return kCGColorSpaceModelUnknown;
  return space->model == ColorModel::RGB ? kCGColorSpaceModelRGB : kCGColorSpaceModelMonochrome;
}

CFStringRef CGColorSpaceGetName(CGColorSpaceRef space) { return space ? space->name : nullptr; }

// --- Colours ---------------------------------------------------------------

CGColorRef CGColorCreate(CGColorSpaceRef space, const CGFloat *components) {
  if (!space || !components) return nullptr;
  CGColor *color = new (std::nothrow) CGColor;
  if (!color) return nullptr;
  color->space = CGColorSpaceRetain(space);
  color->count = CGColorSpaceGetNumberOfComponents(space) + 1;
  std::copy(components, components + color->count, color->components);
  return color;
}

CGColorRef CGColorCreateGenericGray(CGFloat gray, CGFloat alpha) {
  CGColorSpaceRef space = CGColorSpaceCreateWithName(kCGColorSpaceGenericGray);
  CGFloat c[2] = {gray, alpha};
  CGColorRef color = CGColorCreate(space, c);
  CGColorSpaceRelease(space);
  return color;
}

CGColorRef CGColorCreateGenericRGB(CGFloat red, CGFloat green, CGFloat blue, CGFloat alpha) {
  CGColorSpaceRef space = CGColorSpaceCreateWithName(kCGColorSpaceGenericRGB);
  CGFloat c[4] = {red, green, blue, alpha};
  CGColorRef color = CGColorCreate(space, c);
  CGColorSpaceRelease(space);
  return color;
}

CGColorRef CGColorCreateCopyWithAlpha(CGColorRef color, CGFloat alpha) {
  if (!color) return nullptr;
  CGFloat c[5];
  std::copy(color->components, color->components + color->count, c);
  c[color->count - 1] = alpha;
  return CGColorCreate(color->space, c);
}

CGColorRef CGColorGetConstantColor(CFStringRef name) {
  // Made once, kept for the life of the process.
  static CGColorRef black = CGColorCreateGenericGray(0, 1);
  static CGColorRef white = CGColorCreateGenericGray(1, 1);
  static CGColorRef clear = CGColorCreateGenericGray(0, 0);
  if (!name) return nullptr;
  if (SameName(name, kCGColorBlack)) return black;
  if (SameName(name, kCGColorWhite)) return white;
  if (SameName(name, kCGColorClear)) return clear;
  return nullptr;
}

CGColorRef CGColorRetain(CGColorRef color) {
  if (color) color->refs.fetch_add(1);
  return color;
}

void CGColorRelease(CGColorRef color) {
  if (color && color->refs.fetch_sub(1) == 1) {
    CGColorSpaceRelease(color->space);
    delete color;
  }
}

bool CGColorEqualToColor(CGColorRef a, CGColorRef b) {
  if (a == b) return true;
  if (!a || !b || a->count != b->count || a->space->model != b->space->model) return false;
  return std::equal(a->components, a->components + a->count, b->components);
}

size_t CGColorGetNumberOfComponents(CGColorRef color) { return color ? color->count : 0; }

const CGFloat *CGColorGetComponents(CGColorRef color) {
  return color ? color->components : nullptr;
}

CGFloat CGColorGetAlpha(CGColorRef color) {
  return color ? color->components[color->count - 1] : 0;
}

CGColorSpaceRef CGColorGetColorSpace(CGColorRef color) { return color ? color->space : nullptr; }

talvo::quartz::Color TVCGColorToQuartz(CGColorRef color) {
  if (!color) return talvo::quartz::Color::clear();
  const CGFloat *c = color->components;
  if (color->space->model == ColorModel::Gray) return talvo::quartz::Color::gray(c[0], c[1]);
  return talvo::quartz::Color::rgb(c[0], c[1], c[2], c[3]);
}
