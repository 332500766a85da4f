// Gradients, functions and shadings of the Core Graphics stand-in. A
// gradient is a list of engine colour stops; a shading keeps its function
// and is sampled into stops each time it is drawn.

#include <CoreGraphics/CGTalvoBridge.h>

#import <Foundation/Foundation.h>

#include <algorithm>
#include <cmath>
#include <new>

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

namespace q = talvo::quartz;

namespace {

constexpr size_t kShadingSamples = 256;

CGFloat Clamp01(CGFloat v) { return v >= 0 ? (v <= 1 ? v : 1) : 0; }

// A colour from `count` components of `space` followed by alpha.
q::Color ColorFrom(CGColorSpaceRef space, const CGFloat *c, bool hasAlpha) {
  bool gray = space && space->model == q::ColorModel::Gray;
  if (gray) return q::Color::gray(c[0], hasAlpha ? c[1] : 1);
  return q::Color::rgb(c[0], c[1], c[2], hasAlpha ? c[3] : 1);
}

CGGradientRef NewGradient(std::vector<q::GradientStop> &&stops) {
  CGGradient *gradient = new (std::nothrow) CGGradient;
  if (!gradient) return nullptr;
  gradient->stops = std::move(stops);
  return gradient;
}

double LocationAt(const CGFloat *locations, size_t i, size_t count) {
  if (locations) return locations[i];
  return count > 1 ? double(i) / double(count - 1) : 0;
}

}  // namespace

// --- Gradients ---------------------------------------------------------------

CGGradientRef CGGradientCreateWithColorComponents(CGColorSpaceRef space, const CGFloat *components,
                                                  const CGFloat *locations, size_t count) {
  if (!space || !components || count == 0 || count > (size_t(1) << 20)) return nullptr;
  size_t per = CGColorSpaceGetNumberOfComponents(space) + 1;
  try {
    std::vector<q::GradientStop> stops(count);
    for (size_t i = 0; i < count; ++i) {
      stops[i].location = LocationAt(locations, i, count);
      stops[i].color = ColorFrom(space, components + i * per, true);
    }
    return NewGradient(std::move(stops));
  } catch (...) {
    return nullptr;
  }
}

CGGradientRef CGGradientCreateWithColors(CGColorSpaceRef, CFArrayRef colors,
                                         const CGFloat *locations) {
  if (!colors) return nullptr;
  std::vector<q::GradientStop> stops;
  @try {
    NSArray *array = (NSArray *)colors;
    size_t count = size_t([array count]);
    for (size_t i = 0; i < count; ++i) {
      q::GradientStop stop;
      stop.location = LocationAt(locations, i, count);
      // CGColorRef is no object here: the array holds NSValues of
      // CGColorRefs, or objects answering -CGColor (NSColor).
      id item = [array objectAtIndex:NSUInteger(i)];
      CGColorRef color = nullptr;
      if ([item isKindOfClass:[NSValue class]]) {
        color = static_cast<CGColorRef>([(NSValue *)item pointerValue]);
      } else if ([item respondsToSelector:@selector(CGColor)]) {
        color = reinterpret_cast<CGColorRef>([item performSelector:@selector(CGColor)]);
      }
      if (!color) return nullptr;
      stop.color = TVCGColorToQuartz(color);
      stops.push_back(stop);
    }
  } @catch (NSException *e) {
    return nullptr;
  }
  if (stops.empty()) return nullptr;
  return NewGradient(std::move(stops));
}

CGGradientRef CGGradientRetain(CGGradientRef gradient) {
  if (gradient) gradient->refs.fetch_add(1);
  return gradient;
}

void CGGradientRelease(CGGradientRef gradient) {
  if (!gradient || gradient->refs.fetch_sub(1) != 1) return;
  delete gradient;
}

// --- Functions ---------------------------------------------------------------

CGFunctionRef CGFunctionCreate(void *info, size_t domainDimension, const CGFloat *domain,
                               size_t rangeDimension, const CGFloat *range,
                               const CGFunctionCallbacks *callbacks) {
  if (!callbacks || !callbacks->evaluate || domainDimension == 0 || rangeDimension == 0 ||
      rangeDimension > 16) {
    return nullptr;
  }
  CGFunction *function = new (std::nothrow) CGFunction;
  if (!function) return nullptr;
  function->info = info;
  function->callbacks = *callbacks;
  function->outputs = rangeDimension;
  if (domain && std::isfinite(domain[0]) && std::isfinite(domain[1])) {
    function->domain[0] = domain[0];
    function->domain[1] = domain[1];
  }
  try {
    if (range) function->range.assign(range, range + 2 * rangeDimension);
  } catch (...) {
    delete function;
    return nullptr;
  }
  return function;
}

CGFunctionRef CGFunctionRetain(CGFunctionRef function) {
  if (function) function->refs.fetch_add(1);
  return function;
}

void CGFunctionRelease(CGFunctionRef function) {
  if (!function || function->refs.fetch_sub(1) != 1) return;
  if (function->callbacks.releaseInfo) function->callbacks.releaseInfo(function->info);
  delete function;
}

// --- Shadings ----------------------------------------------------------------

namespace {

CGShadingRef NewShading(CGColorSpaceRef space, CGFunctionRef function) {
  if (!space || !function) return nullptr;
  CGShading *shading = new (std::nothrow) CGShading;
  if (!shading) return nullptr;
  shading->space = CGColorSpaceRetain(space);
  shading->function = CGFunctionRetain(function);
  return shading;
}

}  // namespace

CGShadingRef CGShadingCreateAxial(CGColorSpaceRef space, CGPoint start, CGPoint end,
                                  CGFunctionRef function, bool extendStart, bool extendEnd) {
  CGShadingRef shading = NewShading(space, function);
  if (!shading) return nullptr;
  shading->start = start;
  shading->end = end;
  shading->extendStart = extendStart;
  shading->extendEnd = extendEnd;
  return shading;
}

CGShadingRef CGShadingCreateRadial(CGColorSpaceRef space, CGPoint start, CGFloat startRadius,
                                   CGPoint end, CGFloat endRadius, CGFunctionRef function,
                                   bool extendStart, bool extendEnd) {
  CGShadingRef shading = CGShadingCreateAxial(space, start, end, function, extendStart, extendEnd);
  if (!shading) return nullptr;
  shading->radial = true;
  shading->startRadius = startRadius;
  shading->endRadius = endRadius;
  return shading;
}

CGShadingRef CGShadingRetain(CGShadingRef shading) {
  if (shading) shading->refs.fetch_add(1);
  return shading;
}

void CGShadingRelease(CGShadingRef shading) {
  if (!shading || shading->refs.fetch_sub(1) != 1) return;
  CGFunctionRelease(shading->function);
  CGColorSpaceRelease(shading->space);
  delete shading;
}

std::vector<q::GradientStop> TVCGShadingSample(CGShadingRef shading) {
  std::vector<q::GradientStop> stops;
  if (!shading || !shading->function) return stops;
  CGFunctionRef f = shading->function;
  size_t colors = CGColorSpaceGetNumberOfComponents(shading->space);
  bool hasAlpha = f->outputs > colors;
  if (f->outputs < colors) return stops;
  std::vector<CGFloat> out(f->outputs + 1, 0);
  stops.resize(kShadingSamples);
  for (size_t i = 0; i < kShadingSamples; ++i) {
    double t = double(i) / double(kShadingSamples - 1);
    CGFloat in = f->domain[0] + t * (f->domain[1] - f->domain[0]);
    std::fill(out.begin(), out.end(), 0);
    f->callbacks.evaluate(f->info, &in, out.data());
    for (size_t k = 0; k < f->outputs; ++k) {
      if (f->range.size() >= 2 * (k + 1)) {
        out[k] = std::min(std::max(out[k], f->range[2 * k]), f->range[2 * k + 1]);
      }
      out[k] = Clamp01(out[k]);
    }
    stops[i].location = t;
    stops[i].color = ColorFrom(shading->space, out.data(), hasAlpha);
  }
  return stops;
}
