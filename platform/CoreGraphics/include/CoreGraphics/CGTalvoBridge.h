/*
 * Private to Talvo's platform layer: the objects behind the Core Graphics
 * references, and the interface through which an AppKit graphics context
 * takes over a CGContext's state. Objective-C++ only; never include it
 * from toolkit code.
 */
#ifndef TALVO_CGTALVOBRIDGE_H
#define TALVO_CGTALVOBRIDGE_H

#ifdef __cplusplus

#include <CoreGraphics/CoreGraphics.h>

#include <atomic>
#include <memory>
#include <vector>

#include "platform/CoreGraphics/engine/BitmapTarget.hpp"
#include "platform/CoreGraphics/engine/Context.hpp"
#include "platform/CoreGraphics/engine/Geometry.hpp"
#include "platform/CoreGraphics/engine/Image.hpp"
#include "platform/CoreGraphics/engine/Path.hpp"

namespace talvo::cg {

namespace q = talvo::quartz;

inline q::AffineTransform ToQuartz(const CGAffineTransform &t) {
  return q::AffineTransform::make(t.a, t.b, t.c, t.d, t.tx, t.ty);
}
inline CGAffineTransform FromQuartz(const q::AffineTransform &t) {
  return CGAffineTransformMake(t.a, t.b, t.c, t.d, t.tx, t.ty);
}
inline q::Rect ToQuartz(const CGRect &r) {
  return q::Rect::make(r.origin.x, r.origin.y, r.size.width, r.size.height);
}
inline CGRect FromQuartz(const q::Rect &r) {
  return CGRectMake(r.origin.x, r.origin.y, r.size.width, r.size.height);
}

// A clip recorded in cairo device space.
struct DeviceClip {
  q::Path path;
  q::FillRule rule = q::FillRule::Winding;
};

// A mask clip: the image, where it went and the CTM at the time.
struct MaskClip {
  q::ImageRef image;
  q::Rect rect;
  q::AffineTransform ctm;
};

// The part of the graphics state GNUstep's gstate has no room for. The
// AppKit bridge keeps one per GNUstep gstate and copies it when GNUstep
// copies the gstate.
struct Extras {
  double alpha = 1;
  q::BlendMode blend = q::BlendMode::Normal;
  bool shadowOn = false;
  q::Size shadowOffset;
  double shadowBlur = 0;
  q::Color shadowColor{0, 0, 0, 1.0 / 3.0};
  q::InterpolationQuality interpolation = q::InterpolationQuality::Default;
  bool antialias = true;
  double lineWidth = 1;
  q::LineCap cap = q::LineCap::Butt;
  q::LineJoin join = q::LineJoin::Miter;
  double miterLimit = 10;
  double dashPhase = 0;
  std::vector<double> dashes;
  std::vector<DeviceClip> clips;
  std::vector<MaskClip> masks;

  // Whether AppKit drawing needs to go through the effects path.
  bool hasEffects() const {
    return alpha < 1 || shadowOn || blend != q::BlendMode::Normal || !masks.empty();
  }
};

// Where a CGContext's state lives while an AppKit context owns it.
class Bridge {
 public:
  virtual ~Bridge() = default;
  virtual void saveGState() = 0;
  virtual void restoreGState() = 0;
  virtual q::AffineTransform ctm() = 0;
  virtual void concatCTM(const q::AffineTransform &t) = 0;
  virtual q::Color fillColor() = 0;
  virtual q::Color strokeColor() = 0;
  virtual void setFillColor(const q::Color &c) = 0;
  virtual void setStrokeColor(const q::Color &c) = 0;
  // The current gstate's extras, made on demand; null without a gstate.
  virtual Extras *extras() = 0;
  // `path` in user space.
  virtual void clip(const q::Path &path, q::FillRule rule) = 0;
  virtual void clipToMask(const q::Rect &rect, q::Image *image) = 0;
  virtual q::Rect clipBoundingBox() = 0;
  // The engine holding the current path, its CTM in step with GNUstep's.
  virtual q::Context *pathEngine() = 0;
  // The engine loaded with the whole current state for one drawing call,
  // or null when there is nothing to draw into; pair with endDrawing().
  virtual q::Context *beginDrawing() = 0;
  virtual void endDrawing() = 0;
};

}  // namespace talvo::cg

struct CGColorSpace {
  std::atomic<long> refs{1};
  talvo::quartz::ColorModel model = talvo::quartz::ColorModel::RGB;
  CFStringRef name = nullptr;  // a constant string, never released
};

struct CGColor {
  std::atomic<long> refs{1};
  CGColorSpaceRef space = nullptr;  // owned
  CGFloat components[5] = {0, 0, 0, 0, 0};
  size_t count = 0;  // colour components + alpha
};

struct CGDataProvider {
  std::atomic<long> refs{1};
  const void *bytes = nullptr;
  size_t size = 0;
  void *info = nullptr;
  CGDataProviderReleaseDataCallback releaseData = nullptr;
  id data = nil;  // a retained NSData, when made from one
};

struct CGImage {
  std::atomic<long> refs{1};
  talvo::quartz::ImageRef image;
  CGColorSpaceRef space = nullptr;        // owned; null for masks
  CGDataProviderRef provider = nullptr;   // owned, made on demand
};

struct CGGradient {
  std::atomic<long> refs{1};
  std::vector<talvo::quartz::GradientStop> stops;
};

struct CGFunction {
  std::atomic<long> refs{1};
  void *info = nullptr;
  CGFunctionCallbacks callbacks = {0, nullptr, nullptr};
  CGFloat domain[2] = {0, 1};
  std::vector<CGFloat> range;  // 2 per output, empty: unclamped
  size_t outputs = 0;
};

struct CGShading {
  std::atomic<long> refs{1};
  bool radial = false;
  CGPoint start = {0, 0}, end = {0, 0};
  CGFloat startRadius = 0, endRadius = 0;
  bool extendStart = false, extendEnd = false;
  CGColorSpaceRef space = nullptr;  // owned
  CGFunctionRef function = nullptr;  // owned
};

struct CGPath {
  std::atomic<long> refs{1};
  talvo::quartz::Path path;
};

struct CGContext {
  std::atomic<long> refs{1};
  // The context's own state and drawing (bitmap contexts); AppKit's
  // contexts have one that draws nowhere.
  std::unique_ptr<talvo::quartz::Context> engine;
  std::shared_ptr<talvo::quartz::BitmapTarget> bitmap;
  CGColorSpaceRef space = nullptr;  // owned
  CGBitmapContextReleaseDataCallback releaseCallback = nullptr;
  void *releaseInfo = nullptr;
  // Set while an AppKit context owns the state.
  std::unique_ptr<talvo::cg::Bridge> bridge;
};

// A CGImage around `image` (adopted), with a colour space matching it.
CGImageRef TVCGImageCreateWithImage(talvo::quartz::Image *image);
// A context whose state lives in `bridge` for good (AppKit's own contexts).
CGContextRef TVCGContextCreateBridged(std::unique_ptr<talvo::cg::Bridge> bridge);
// Whether `pointer` is a live CGImage made here.
bool TVCGImageIsLive(const void *pointer);
// Whether `pointer` is a live CGContext made here.
bool TVCGContextIsLive(const void *pointer);
// Hands the state to `bridge` (null: takes it back, bringing the bitmap's
// memory up to date).
void TVCGContextSetBridge(CGContextRef c, std::unique_ptr<talvo::cg::Bridge> bridge);
talvo::quartz::Color TVCGColorToQuartz(CGColorRef color);
// The shading's function sampled into colour stops along its axis.
std::vector<talvo::quartz::GradientStop> TVCGShadingSample(CGShadingRef shading);

#endif  // __cplusplus

#endif
