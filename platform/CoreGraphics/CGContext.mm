// Drawing contexts of the Core Graphics stand-in. A context's state lives
// in its own engine (bitmap contexts) or, while an AppKit graphics context
// owns it, in GNUstep's graphics state through a Bridge; every call picks
// one of the two.

#include <CoreGraphics/CGTalvoBridge.h>

#include <mutex>
#include <new>
#include <unordered_set>

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

namespace q = talvo::quartz;
using talvo::cg::FromQuartz;
using talvo::cg::ToQuartz;

namespace {

std::mutex &LiveLock() {
  static std::mutex *lock = new std::mutex;
  return *lock;
}

std::unordered_set<const void *> &Live() {
  static auto *set = new std::unordered_set<const void *>;
  return *set;
}

CGContextRef Register(CGContext *c) {
  if (!c) return nullptr;
  std::lock_guard<std::mutex> hold(LiveLock());
  Live().insert(c);
  return c;
}

// The engine that holds the current path (and, without a bridge, the state).
q::Context *PathEngine(CGContextRef c) {
  if (!c) return nullptr;
  return c->bridge ? c->bridge->pathEngine() : c->engine.get();
}

// Runs one drawing call with the whole current state.
template <typename F>
void Draw(CGContextRef c, F &&draw) {
  if (!c) return;
  if (!c->bridge) {
    draw(*c->engine);
    return;
  }
  q::Context *engine = c->bridge->beginDrawing();
  if (!engine) {
    // Nothing to draw into: the path is still consumed, as in Quartz.
    if (q::Context *path = c->bridge->pathEngine()) path->beginPath();
    return;
  }
  draw(*engine);
  c->bridge->endDrawing();
}

// Applies a change to the Quartz-only part of the state.
template <typename Bridged, typename Own>
void Change(CGContextRef c, Bridged &&bridged, Own &&own) {
  if (!c) return;
  if (c->bridge) {
    if (talvo::cg::Extras *x = c->bridge->extras()) bridged(*x);
  } else {
    own(*c->engine);
  }
}

void SetFill(CGContextRef c, const q::Color &color) {
  if (!c) return;
  if (c->bridge) {
    c->bridge->setFillColor(color);
  } else {
    c->engine->setFillColor(color);
  }
}

void SetStroke(CGContextRef c, const q::Color &color) {
  if (!c) return;
  if (c->bridge) {
    c->bridge->setStrokeColor(color);
  } else {
    c->engine->setStrokeColor(color);
  }
}

void ClipCurrentPath(CGContextRef c, q::FillRule rule) {
  if (!c) return;
  if (!c->bridge) {
    c->engine->clip(rule);
    return;
  }
  q::Context *engine = c->bridge->pathEngine();
  if (!engine) return;
  q::Path path = engine->copyPath();
  engine->beginPath();
  c->bridge->clip(path, rule);
}

}  // namespace

// --- Life --------------------------------------------------------------------

CGContextRef TVCGContextCreateBridged(std::unique_ptr<talvo::cg::Bridge> bridge) {
  CGContext *c = new (std::nothrow) CGContext;
  if (!c) return nullptr;
  auto nowhere = std::make_shared<q::FunctionCairoProvider>(nullptr);
  c->engine.reset(new (std::nothrow) q::Context(nowhere, q::AffineTransform::identity()));
  if (!c->engine) {
    delete c;
    return nullptr;
  }
  c->bridge = std::move(bridge);
  return Register(c);
}

bool TVCGContextIsLive(const void *pointer) {
  if (!pointer) return false;
  std::lock_guard<std::mutex> hold(LiveLock());
  return Live().count(pointer) > 0;
}

void TVCGContextSetBridge(CGContextRef c, std::unique_ptr<talvo::cg::Bridge> bridge) {
  if (!c) return;
  bool hadBridge = c->bridge != nullptr;
  c->bridge = std::move(bridge);
  // AppKit drew through the bitmap's foreign surface (taken when the
  // bridge was made): the memory is brought up to date as it lets go.
  if (c->bitmap && hadBridge) c->bitmap->endForeignDrawing();
}

CGContextRef CGContextRetain(CGContextRef c) {
  if (c) c->refs.fetch_add(1);
  return c;
}

void CGContextRelease(CGContextRef c) {
  if (!c || c->refs.fetch_sub(1) != 1) return;
  {
    std::lock_guard<std::mutex> hold(LiveLock());
    Live().erase(c);
  }
  c->bridge.reset();
  void *data = nullptr;
  if (c->bitmap) {
    c->bitmap->flush();  // the memory handed back is complete
    data = c->bitmap->data();
  }
  c->engine.reset();
  c->bitmap.reset();
  CGColorSpaceRelease(c->space);
  if (c->releaseCallback) c->releaseCallback(c->releaseInfo, data);
  delete c;
}

void CGContextFlush(CGContextRef c) {
  if (!c || !c->bitmap) return;
  c->bitmap->flush();
  c->bitmap->exposeMemory();
}

void CGContextSynchronize(CGContextRef c) { CGContextFlush(c); }

// --- State -------------------------------------------------------------------

void CGContextSaveGState(CGContextRef c) {
  if (!c) return;
  if (c->bridge) {
    c->bridge->saveGState();
  } else {
    c->engine->saveGState();
  }
}

void CGContextRestoreGState(CGContextRef c) {
  if (!c) return;
  if (c->bridge) {
    c->bridge->restoreGState();
  } else {
    c->engine->restoreGState();
  }
}

void CGContextConcatCTM(CGContextRef c, CGAffineTransform t) {
  if (!c) return;
  if (c->bridge) {
    c->bridge->concatCTM(ToQuartz(t));
  } else {
    c->engine->concatCTM(ToQuartz(t));
  }
}

void CGContextScaleCTM(CGContextRef c, CGFloat sx, CGFloat sy) {
  CGContextConcatCTM(c, CGAffineTransformMakeScale(sx, sy));
}

void CGContextTranslateCTM(CGContextRef c, CGFloat tx, CGFloat ty) {
  CGContextConcatCTM(c, CGAffineTransformMakeTranslation(tx, ty));
}

void CGContextRotateCTM(CGContextRef c, CGFloat angle) {
  CGContextConcatCTM(c, CGAffineTransformMakeRotation(angle));
}

CGAffineTransform CGContextGetCTM(CGContextRef c) {
  if (!c) return CGAffineTransformIdentity;
  return FromQuartz(c->bridge ? c->bridge->ctm() : c->engine->getCTM());
}

void CGContextSetFillColorWithColor(CGContextRef c, CGColorRef color) {
  if (color) SetFill(c, TVCGColorToQuartz(color));
}

void CGContextSetStrokeColorWithColor(CGContextRef c, CGColorRef color) {
  if (color) SetStroke(c, TVCGColorToQuartz(color));
}

void CGContextSetRGBFillColor(CGContextRef c, CGFloat r, CGFloat g, CGFloat b, CGFloat a) {
  SetFill(c, q::Color::rgb(r, g, b, a));
}

void CGContextSetRGBStrokeColor(CGContextRef c, CGFloat r, CGFloat g, CGFloat b, CGFloat a) {
  SetStroke(c, q::Color::rgb(r, g, b, a));
}

void CGContextSetGrayFillColor(CGContextRef c, CGFloat gray, CGFloat a) {
  SetFill(c, q::Color::gray(gray, a));
}

void CGContextSetGrayStrokeColor(CGContextRef c, CGFloat gray, CGFloat a) {
  SetStroke(c, q::Color::gray(gray, a));
}

void CGContextSetLineWidth(CGContextRef c, CGFloat width) {
  if (width < 0) return;
  Change(
      c, [&](talvo::cg::Extras &x) { x.lineWidth = width; },
      [&](q::Context &e) { e.setLineWidth(width); });
}

void CGContextSetLineCap(CGContextRef c, CGLineCap cap) {
  Change(
      c, [&](talvo::cg::Extras &x) { x.cap = q::LineCap(cap); },
      [&](q::Context &e) { e.setLineCap(q::LineCap(cap)); });
}

void CGContextSetLineJoin(CGContextRef c, CGLineJoin join) {
  Change(
      c, [&](talvo::cg::Extras &x) { x.join = q::LineJoin(join); },
      [&](q::Context &e) { e.setLineJoin(q::LineJoin(join)); });
}

void CGContextSetMiterLimit(CGContextRef c, CGFloat limit) {
  Change(
      c, [&](talvo::cg::Extras &x) { x.miterLimit = limit; },
      [&](q::Context &e) { e.setMiterLimit(limit); });
}

void CGContextSetLineDash(CGContextRef c, CGFloat phase, const CGFloat *lengths, size_t count) {
  Change(
      c,
      [&](talvo::cg::Extras &x) {
        x.dashPhase = phase;
        x.dashes.clear();
        if (lengths) x.dashes.assign(lengths, lengths + count);
      },
      [&](q::Context &e) { e.setLineDash(phase, lengths, count); });
}

void CGContextSetAlpha(CGContextRef c, CGFloat alpha) {
  alpha = alpha < 0 ? 0 : alpha > 1 ? 1 : alpha;
  Change(
      c, [&](talvo::cg::Extras &x) { x.alpha = alpha; },
      [&](q::Context &e) { e.setAlpha(alpha); });
}

void CGContextSetBlendMode(CGContextRef c, CGBlendMode mode) {
  if (int(mode) < 0 || int(mode) > int(kCGBlendModePlusLighter)) return;
  Change(
      c, [&](talvo::cg::Extras &x) { x.blend = q::BlendMode(mode); },
      [&](q::Context &e) { e.setBlendMode(q::BlendMode(mode)); });
}

void CGContextSetShadowWithColor(CGContextRef c, CGSize offset, CGFloat blur, CGColorRef color) {
  q::Color shadow = TVCGColorToQuartz(color);
  Change(
      c,
      [&](talvo::cg::Extras &x) {
        x.shadowOn = color && shadow.a > 0;
        x.shadowOffset = q::Size{offset.width, offset.height};
        x.shadowBlur = blur < 0 ? 0 : blur;
        if (color) x.shadowColor = shadow;
      },
      [&](q::Context &e) {
        e.setShadowWithColor(q::Size{offset.width, offset.height}, blur, color ? &shadow : nullptr);
      });
}

void CGContextSetShadow(CGContextRef c, CGSize offset, CGFloat blur) {
  CGColorRef color = CGColorCreateGenericGray(0, 1.0 / 3.0);
  CGContextSetShadowWithColor(c, offset, blur, color);
  CGColorRelease(color);
}

void CGContextSetInterpolationQuality(CGContextRef c, CGInterpolationQuality quality) {
  Change(
      c, [&](talvo::cg::Extras &x) { x.interpolation = q::InterpolationQuality(quality); },
      [&](q::Context &e) { e.setInterpolationQuality(q::InterpolationQuality(quality)); });
}

CGInterpolationQuality CGContextGetInterpolationQuality(CGContextRef c) {
  if (!c) return kCGInterpolationDefault;
  if (c->bridge) {
    talvo::cg::Extras *x = c->bridge->extras();
    return x ? CGInterpolationQuality(x->interpolation) : kCGInterpolationDefault;
  }
  return CGInterpolationQuality(c->engine->interpolationQuality());
}

void CGContextSetShouldAntialias(CGContextRef c, bool on) {
  Change(
      c, [&](talvo::cg::Extras &x) { x.antialias = on; },
      [&](q::Context &e) { e.setShouldAntialias(on); });
}

void CGContextSetAllowsAntialiasing(CGContextRef c, bool allows) {
  CGContextSetShouldAntialias(c, allows);
}

// --- Path --------------------------------------------------------------------

void CGContextBeginPath(CGContextRef c) {
  if (q::Context *e = PathEngine(c)) e->beginPath();
}

void CGContextMoveToPoint(CGContextRef c, CGFloat x, CGFloat y) {
  if (q::Context *e = PathEngine(c)) e->moveTo(x, y);
}

void CGContextAddLineToPoint(CGContextRef c, CGFloat x, CGFloat y) {
  if (q::Context *e = PathEngine(c)) e->lineTo(x, y);
}

void CGContextAddCurveToPoint(CGContextRef c, CGFloat cp1x, CGFloat cp1y, CGFloat cp2x,
                              CGFloat cp2y, CGFloat x, CGFloat y) {
  if (q::Context *e = PathEngine(c)) e->curveTo(cp1x, cp1y, cp2x, cp2y, x, y);
}

void CGContextAddQuadCurveToPoint(CGContextRef c, CGFloat cpx, CGFloat cpy, CGFloat x, CGFloat y) {
  if (q::Context *e = PathEngine(c)) e->quadCurveTo(cpx, cpy, x, y);
}

void CGContextAddRect(CGContextRef c, CGRect rect) {
  if (q::Context *e = PathEngine(c)) e->addRect(ToQuartz(rect));
}

void CGContextAddRects(CGContextRef c, const CGRect *rects, size_t count) {
  for (size_t i = 0; rects && i < count; ++i) CGContextAddRect(c, rects[i]);
}

void CGContextAddLines(CGContextRef c, const CGPoint *points, size_t count) {
  q::Context *e = PathEngine(c);
  if (!e || !points) return;
  for (size_t i = 0; i < count; ++i) {
    if (i == 0) {
      e->moveTo(points[i].x, points[i].y);
    } else {
      e->lineTo(points[i].x, points[i].y);
    }
  }
}

void CGContextAddEllipseInRect(CGContextRef c, CGRect rect) {
  if (q::Context *e = PathEngine(c)) e->addEllipseInRect(ToQuartz(rect));
}

void CGContextAddArc(CGContextRef c, CGFloat x, CGFloat y, CGFloat radius, CGFloat startAngle,
                     CGFloat endAngle, int clockwise) {
  if (q::Context *e = PathEngine(c)) e->addArc(x, y, radius, startAngle, endAngle, clockwise != 0);
}

void CGContextAddArcToPoint(CGContextRef c, CGFloat x1, CGFloat y1, CGFloat x2, CGFloat y2,
                            CGFloat radius) {
  if (q::Context *e = PathEngine(c)) e->addArcToPoint(x1, y1, x2, y2, radius);
}

void CGContextClosePath(CGContextRef c) {
  if (q::Context *e = PathEngine(c)) e->closePath();
}

void CGContextAddPath(CGContextRef c, CGPathRef path) {
  q::Context *e = PathEngine(c);
  if (e && path) e->addPath(path->path);
}

bool CGContextIsPathEmpty(CGContextRef c) {
  q::Context *e = PathEngine(c);
  return !e || e->isPathEmpty();
}

CGPoint CGContextGetPathCurrentPoint(CGContextRef c) {
  q::Context *e = PathEngine(c);
  q::Point p;
  if (!e || !e->pathCurrentPoint(&p)) return CGPointZero;
  return CGPointMake(p.x, p.y);
}

CGRect CGContextGetPathBoundingBox(CGContextRef c) {
  q::Context *e = PathEngine(c);
  if (!e || e->isPathEmpty()) return CGRectNull;
  return FromQuartz(e->pathBoundingBox());
}

CGPathRef CGContextCopyPath(CGContextRef c) {
  q::Context *e = PathEngine(c);
  if (!e) return nullptr;
  CGMutablePathRef path = CGPathCreateMutable();
  if (path) path->path = e->copyPath();
  return path;
}

// --- Painting ------------------------------------------------------------------

void CGContextFillPath(CGContextRef c) {
  Draw(c, [](q::Context &e) { e.fillPath(q::FillRule::Winding); });
}

void CGContextEOFillPath(CGContextRef c) {
  Draw(c, [](q::Context &e) { e.fillPath(q::FillRule::EvenOdd); });
}

void CGContextStrokePath(CGContextRef c) {
  Draw(c, [](q::Context &e) { e.strokePath(); });
}

void CGContextDrawPath(CGContextRef c, CGPathDrawingMode mode) {
  if (int(mode) < 0 || int(mode) > int(kCGPathEOFillStroke)) return;
  Draw(c, [mode](q::Context &e) { e.drawPath(q::PathDrawingMode(mode)); });
}

void CGContextFillRect(CGContextRef c, CGRect rect) { CGContextFillRects(c, &rect, 1); }

void CGContextFillRects(CGContextRef c, const CGRect *rects, size_t count) {
  if (!rects) return;
  Draw(c, [&](q::Context &e) {
    e.beginPath();
    for (size_t i = 0; i < count; ++i) e.addRect(ToQuartz(rects[i]));
    e.fillPath(q::FillRule::Winding);
  });
}

void CGContextStrokeRect(CGContextRef c, CGRect rect) {
  Draw(c, [&](q::Context &e) { e.strokeRect(ToQuartz(rect)); });
}

void CGContextStrokeRectWithWidth(CGContextRef c, CGRect rect, CGFloat width) {
  Draw(c, [&](q::Context &e) { e.strokeRectWithWidth(ToQuartz(rect), width); });
}

void CGContextClearRect(CGContextRef c, CGRect rect) {
  Draw(c, [&](q::Context &e) { e.clearRect(ToQuartz(rect)); });
}

void CGContextFillEllipseInRect(CGContextRef c, CGRect rect) {
  Draw(c, [&](q::Context &e) { e.fillEllipseInRect(ToQuartz(rect)); });
}

void CGContextStrokeEllipseInRect(CGContextRef c, CGRect rect) {
  Draw(c, [&](q::Context &e) { e.strokeEllipseInRect(ToQuartz(rect)); });
}

void CGContextStrokeLineSegments(CGContextRef c, const CGPoint *points, size_t count) {
  if (!points) return;
  Draw(c, [&](q::Context &e) {
    e.beginPath();
    for (size_t i = 0; i + 1 < count; i += 2) {
      e.moveTo(points[i].x, points[i].y);
      e.lineTo(points[i + 1].x, points[i + 1].y);
    }
    e.strokePath();
  });
}

void CGContextDrawImage(CGContextRef c, CGRect rect, CGImageRef image) {
  if (!image) return;
  Draw(c, [&](q::Context &e) { e.drawImage(ToQuartz(rect), image->image.get()); });
}

void CGContextDrawLinearGradient(CGContextRef c, CGGradientRef gradient, CGPoint startPoint,
                                 CGPoint endPoint, CGGradientDrawingOptions options) {
  if (!gradient || gradient->stops.empty()) return;
  Draw(c, [&](q::Context &e) {
    e.drawLinearGradient(gradient->stops.data(), gradient->stops.size(),
                         q::Point{startPoint.x, startPoint.y}, q::Point{endPoint.x, endPoint.y},
                         options & kCGGradientDrawsBeforeStartLocation,
                         options & kCGGradientDrawsAfterEndLocation);
  });
}

void CGContextDrawRadialGradient(CGContextRef c, CGGradientRef gradient, CGPoint startCenter,
                                 CGFloat startRadius, CGPoint endCenter, CGFloat endRadius,
                                 CGGradientDrawingOptions options) {
  if (!gradient || gradient->stops.empty()) return;
  Draw(c, [&](q::Context &e) {
    e.drawRadialGradient(gradient->stops.data(), gradient->stops.size(),
                         q::Point{startCenter.x, startCenter.y}, startRadius,
                         q::Point{endCenter.x, endCenter.y}, endRadius,
                         options & kCGGradientDrawsBeforeStartLocation,
                         options & kCGGradientDrawsAfterEndLocation);
  });
}

void CGContextDrawShading(CGContextRef c, CGShadingRef shading) {
  if (!c || !shading) return;
  std::vector<q::GradientStop> stops;
  try {
    stops = TVCGShadingSample(shading);
  } catch (...) {
    return;
  }
  if (stops.empty()) return;
  q::Point start{shading->start.x, shading->start.y}, end{shading->end.x, shading->end.y};
  Draw(c, [&](q::Context &e) {
    if (shading->radial) {
      e.drawRadialGradient(stops.data(), stops.size(), start, shading->startRadius, end,
                           shading->endRadius, shading->extendStart, shading->extendEnd);
    } else {
      e.drawLinearGradient(stops.data(), stops.size(), start, end, shading->extendStart,
                           shading->extendEnd);
    }
  });
}

// --- Clipping ------------------------------------------------------------------

void CGContextClip(CGContextRef c) { ClipCurrentPath(c, q::FillRule::Winding); }

void CGContextEOClip(CGContextRef c) { ClipCurrentPath(c, q::FillRule::EvenOdd); }

void CGContextClipToRect(CGContextRef c, CGRect rect) { CGContextClipToRects(c, &rect, 1); }

void CGContextClipToRects(CGContextRef c, const CGRect *rects, size_t count) {
  if (!c || !rects) return;
  if (!c->bridge) {
    std::vector<q::Rect> list;
    for (size_t i = 0; i < count; ++i) list.push_back(ToQuartz(rects[i]));
    c->engine->clipToRects(list.data(), list.size());
    return;
  }
  q::Path path;
  for (size_t i = 0; i < count; ++i) path.addRect(ToQuartz(rects[i]));
  c->bridge->clip(path, q::FillRule::Winding);
}

void CGContextClipToMask(CGContextRef c, CGRect rect, CGImageRef mask) {
  if (!c || !mask) return;
  if (c->bridge) {
    c->bridge->clipToMask(ToQuartz(rect), mask->image.get());
  } else {
    c->engine->clipToMask(ToQuartz(rect), mask->image.get());
  }
}

CGRect CGContextGetClipBoundingBox(CGContextRef c) {
  if (!c) return CGRectNull;
  return FromQuartz(c->bridge ? c->bridge->clipBoundingBox() : c->engine->clipBoundingBox());
}

// --- Bitmap contexts -------------------------------------------------------------

CGContextRef CGBitmapContextCreateWithData(void *data, size_t width, size_t height,
                                           size_t bitsPerComponent, size_t bytesPerRow,
                                           CGColorSpaceRef space, uint32_t bitmapInfo,
                                           CGBitmapContextReleaseDataCallback releaseCallback,
                                           void *releaseInfo) {
  bool alphaOnly = (bitmapInfo & kCGBitmapAlphaInfoMask) == kCGImageAlphaOnly;
  if ((!space && !alphaOnly) || width == 0 || height == 0) return nullptr;
  q::ColorModel model =
      space && space->model == q::ColorModel::Gray ? q::ColorModel::Gray : q::ColorModel::RGB;
  auto target =
      q::BitmapTarget::create(data, width, height, bitsPerComponent, bytesPerRow, model, bitmapInfo);
  if (!target) return nullptr;
  CGContext *c = new (std::nothrow) CGContext;
  if (!c) return nullptr;
  c->engine = q::makeBitmapContext(target);
  if (!c->engine) {
    delete c;
    return nullptr;
  }
  c->bitmap = target;
  c->space = CGColorSpaceRetain(space);
  c->releaseCallback = releaseCallback;
  c->releaseInfo = releaseInfo;
  return Register(c);
}

CGContextRef CGBitmapContextCreate(void *data, size_t width, size_t height, size_t bitsPerComponent,
                                   size_t bytesPerRow, CGColorSpaceRef space, uint32_t bitmapInfo) {
  return CGBitmapContextCreateWithData(data, width, height, bitsPerComponent, bytesPerRow, space,
                                       bitmapInfo, nullptr, nullptr);
}

CGImageRef CGBitmapContextCreateImage(CGContextRef c) {
  if (!c || !c->bitmap) return nullptr;
  q::Image *image = c->bitmap->createImage();
  if (!image) return nullptr;
  CGImage *result = TVCGImageCreateWithImage(image);
  if (result && c->space) {
    CGColorSpaceRelease(result->space);
    result->space = CGColorSpaceRetain(c->space);
  }
  return result;
}

void *CGBitmapContextGetData(CGContextRef c) {
  if (!c || !c->bitmap) return nullptr;
  c->bitmap->flush();
  c->bitmap->exposeMemory();
  return c->bitmap->data();
}

size_t CGBitmapContextGetWidth(CGContextRef c) { return c && c->bitmap ? c->bitmap->width() : 0; }
size_t CGBitmapContextGetHeight(CGContextRef c) { return c && c->bitmap ? c->bitmap->height() : 0; }
size_t CGBitmapContextGetBytesPerRow(CGContextRef c) {
  return c && c->bitmap ? c->bitmap->bytesPerRow() : 0;
}
size_t CGBitmapContextGetBitsPerComponent(CGContextRef c) {
  return c && c->bitmap ? c->bitmap->format().bitsPerComponent : 0;
}
size_t CGBitmapContextGetBitsPerPixel(CGContextRef c) {
  return c && c->bitmap ? c->bitmap->format().bitsPerPixel : 0;
}
CGBitmapInfo CGBitmapContextGetBitmapInfo(CGContextRef c) {
  return c && c->bitmap ? c->bitmap->format().bitmapInfo : 0;
}
CGImageAlphaInfo CGBitmapContextGetAlphaInfo(CGContextRef c) {
  return c && c->bitmap ? CGImageAlphaInfo(c->bitmap->format().alphaInfo()) : kCGImageAlphaNone;
}
CGColorSpaceRef CGBitmapContextGetColorSpace(CGContextRef c) {
  return c && c->bitmap ? c->space : nullptr;
}
