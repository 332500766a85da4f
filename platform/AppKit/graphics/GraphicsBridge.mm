// One graphics state for AppKit and Quartz on GNUstep's cairo backend.
//
// A CGContext handed out by an NSGraphicsContext keeps no state of its own:
// its Bridge reads and writes GNUstep's current gstate (CTM, colours,
// save/restore, the cairo_t's clip) and a per-gstate table of what GNUstep
// lacks (alpha, shadow, blend mode, mask clips, Quartz line settings). The
// table follows GNUstep's gstate copies, and hooks on CairoGState's drawing
// primitives composite AppKit drawing with those effects. Bitmap-backed
// contexts point a CairoContext at a cairo image surface through a run-time
// subclass of the backend's CairoSurface.
//
// Everything here leans on private details of gnustep-back 0.29; the
// self-check lists any that are missing, and the parts that need them stay
// off.

#import <AppKit/AppKit.h>
#import <AppKit/NSGraphicsContext+TalvoPlatform.h>

#include <CoreGraphics/CGTalvoBridge.h>
#include <cairo.h>

#include <cmath>
#include <memory>
#include <new>
#include <unordered_map>
#include <vector>

#import "platform/objc/TVRuntime.h"
#include "platform/CoreGraphics/engine/CairoSupport.hpp"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

namespace q = talvo::quartz;
using talvo::cg::Extras;

@interface NSObject (TVGNUstepBackend)
- (id)currentGState;
- (void)GSSetSurface:(id)surface :(int)x :(int)y;
- (void)_setPath;
@end

namespace {

// --- Private GNUstep details -------------------------------------------------------

struct DeviceColor {
  unsigned space;
  float field[6];
};

struct Backend {
  bool checked = false;
  bool usable = false;   // gstate access works: ports can be handed out
  bool hooked = false;   // drawing primitives carry the effects
  Class gstateClass = Nil;
  Class surfaceClass = Nil;
  Class imageSurfaceClass = Nil;
  ptrdiff_t ct = -1, surface = -1, ctm = -1, fill = -1, stroke = -1, surfaceHandle = -1;
  ptrdiff_t graphicsPort = -1;
  NSMutableArray *problems = nil;
};

Backend &B() {
  static Backend *backend = new Backend;
  return *backend;
}

template <typename T>
T &IvarAt(id object, ptrdiff_t offset) {
  return *reinterpret_cast<T *>(reinterpret_cast<char *>(object) + offset);
}

ptrdiff_t FindIvar(Class cls, const char *name, const char *typePrefix) {
  Ivar ivar = cls ? class_getInstanceVariable(cls, name) : nullptr;
  if (!ivar) {
    [B().problems addObject:[NSString stringWithFormat:@"ivar %s missing", name]];
    return -1;
  }
  const char *type = ivar_getTypeEncoding(ivar);
  if (typePrefix && (!type || strncmp(type, typePrefix, strlen(typePrefix)) != 0)) {
    [B().problems addObject:[NSString stringWithFormat:@"ivar %s has type %s", name, type]];
    return -1;
  }
  return ivar_getOffset(ivar);
}

// Called for every Quartz call on an AppKit context: the class checks are
// answered from the last class seen.
id GStateOf(NSGraphicsContext *context) {
  if (!context || !B().usable) return nil;
  static Class answering = Nil;  // a context class known to have -currentGState
  Class contextClass = object_getClass(context);
  if (contextClass != answering) {
    if (![context respondsToSelector:@selector(currentGState)]) return nil;
    answering = contextClass;
  }
  id gstate = [context currentGState];
  if (!gstate) return nil;
  return object_getClass(gstate) == B().gstateClass || [gstate isKindOfClass:B().gstateClass] ? gstate
                                                                                              : nil;
}

cairo_t *CairoOf(id gstate) {
  if (!gstate) return nullptr;
  cairo_t *ct = IvarAt<cairo_t *>(gstate, B().ct);
  return ct && cairo_status(ct) == CAIRO_STATUS_SUCCESS ? ct : nullptr;
}

q::AffineTransform CTMOf(id gstate) {
  NSAffineTransform *t = gstate ? IvarAt<NSAffineTransform *>(gstate, B().ctm) : nil;
  if (!t) return q::AffineTransform::identity();
  NSAffineTransformStruct s = [t transformStruct];
  return q::AffineTransform::make(s.m11, s.m12, s.m21, s.m22, s.tX, s.tY);
}

q::AffineTransform CairoMatrix(cairo_t *ct) {
  cairo_matrix_t m;
  cairo_get_matrix(ct, &m);
  return q::AffineTransform::make(m.xx, m.yx, m.xy, m.yy, m.x0, m.y0);
}

q::Color ToRGB(const DeviceColor &c) {
  const float *f = c.field;
  double a = f[5];
  switch (c.space) {
    case 0:  // gray
      return q::Color::gray(f[0], a);
    case 2: {  // hsb
      double h = f[0] * 6, s = f[1], v = f[2];
      int i = int(std::floor(h)) % 6;
      double fr = h - std::floor(h), p = v * (1 - s), qq = v * (1 - s * fr), t = v * (1 - s * (1 - fr));
      double rgb[6][3] = {{v, t, p}, {qq, v, p}, {p, v, t}, {p, qq, v}, {t, p, v}, {v, p, qq}};
      return q::Color::rgb(rgb[i][0], rgb[i][1], rgb[i][2], a);
    }
    case 3:  // cmyk
      return q::Color::rgb(1 - std::min(1.0f, f[0] + f[3]), 1 - std::min(1.0f, f[1] + f[3]),
                           1 - std::min(1.0f, f[2] + f[3]), a);
    default:
      return q::Color::rgb(f[0], f[1], f[2], a);
  }
}

// --- The per-gstate table -------------------------------------------------------------

std::unordered_map<const void *, Extras> &Table() {
  static auto *table = new std::unordered_map<const void *, Extras>;
  return *table;
}

Extras *ExtrasOf(id gstate, bool create) {
  if (!gstate) return nullptr;
  auto &table = Table();
  auto it = table.find(gstate);
  if (it != table.end()) return &it->second;
  if (!create) return nullptr;
  return &table[gstate];
}

// The cairo_t's current path, in device space.
q::Path DevicePathOf(cairo_t *ct) {
  q::Path path;
  cairo_matrix_t saved;
  cairo_get_matrix(ct, &saved);
  cairo_identity_matrix(ct);
  cairo_path_t *cp = cairo_copy_path(ct);
  cairo_set_matrix(ct, &saved);
  if (!cp) return path;
  if (cp->status == CAIRO_STATUS_SUCCESS) {
    for (int i = 0; i < cp->num_data; i += cp->data[i].header.length) {
      const cairo_path_data_t *d = &cp->data[i];
      switch (d->header.type) {
        case CAIRO_PATH_MOVE_TO:
          path.moveTo({d[1].point.x, d[1].point.y});
          break;
        case CAIRO_PATH_LINE_TO:
          path.lineTo({d[1].point.x, d[1].point.y});
          break;
        case CAIRO_PATH_CURVE_TO:
          path.curveTo({d[1].point.x, d[1].point.y}, {d[2].point.x, d[2].point.y},
                       {d[3].point.x, d[3].point.y});
          break;
        case CAIRO_PATH_CLOSE_PATH:
          path.closeSubpath();
          break;
      }
    }
  }
  cairo_path_destroy(cp);
  return path;
}

// Intersects the cairo_t's clip with a device-space path.
void ClipDevice(cairo_t *ct, const q::Path &path, q::FillRule rule) {
  cairo_matrix_t saved;
  cairo_get_matrix(ct, &saved);
  cairo_path_t *pending = cairo_copy_path(ct);
  cairo_identity_matrix(ct);
  cairo_new_path(ct);
  talvo::quartz::appendPathToCairo(ct, path);
  cairo_set_fill_rule(ct, rule == q::FillRule::EvenOdd ? CAIRO_FILL_RULE_EVEN_ODD
                                                       : CAIRO_FILL_RULE_WINDING);
  cairo_clip(ct);
  cairo_set_fill_rule(ct, CAIRO_FILL_RULE_WINDING);
  cairo_set_matrix(ct, &saved);
  if (pending) {
    if (pending->status == CAIRO_STATUS_SUCCESS && pending->num_data > 0) {
      cairo_append_path(ct, pending);
    }
    cairo_path_destroy(pending);
  }
}

// Loads the Quartz-only state into an engine (not the CTM or colours).
void LoadExtras(q::Context &e, const Extras &x) {
  e.setAlpha(x.alpha);
  e.setBlendMode(x.blend);
  q::Color shadow = x.shadowColor;
  e.setShadowWithColor(x.shadowOffset, x.shadowBlur, x.shadowOn ? &shadow : nullptr);
  e.setInterpolationQuality(x.interpolation);
  e.setShouldAntialias(x.antialias);
  e.setLineWidth(x.lineWidth);
  e.setLineCap(x.cap);
  e.setLineJoin(x.join);
  e.setMiterLimit(x.miterLimit);
  e.setLineDash(x.dashPhase, x.dashes.data(), x.dashes.size());
  q::AffineTransform ctm = e.getCTM();
  for (const talvo::cg::MaskClip &m : x.masks) {
    e.setCTM(m.ctm);
    e.clipToMask(m.rect, m.image.get());
  }
  e.setCTM(ctm);
}

// --- Effects on AppKit drawing ------------------------------------------------------------

int effectsDepth = 0;

// Device-space bounds of `r` in the gstate's user space.
q::Rect DeviceBoundsOfUserRect(id gstate, cairo_t *ct, NSRect r) {
  q::AffineTransform toDevice = q::AffineTransform::concat(CTMOf(gstate), CairoMatrix(ct));
  return toDevice.apply(q::Rect::make(r.origin.x, r.origin.y, r.size.width, r.size.height));
}

// Device-space bounds of the gstate's current path when filled; an empty
// rect (unknown) when the gstate has no effects to apply. Strokes are left
// unknown: GNUstep applies its pen inside DPSstroke.
q::Rect DeviceBoundsOfPath(id gstate) {
  cairo_t *ct = CairoOf(gstate);
  if (!ct) return q::Rect{};
  Extras *x = ExtrasOf(gstate, false);
  if (!x || !x->hasEffects()) return q::Rect{};
  [gstate _setPath];
  cairo_matrix_t saved;
  cairo_get_matrix(ct, &saved);
  double x0 = 0, y0 = 0, x1 = 0, y1 = 0;
  cairo_identity_matrix(ct);
  cairo_fill_extents(ct, &x0, &y0, &x1, &y1);
  cairo_set_matrix(ct, &saved);
  cairo_new_path(ct);
  return q::Rect::make(x0, y0, x1 - x0, y1 - y0).insetBy(-1, -1);
}

// Runs GNUstep's own drawing into a group and composites the group with
// the gstate's alpha, shadow, blend mode and mask clips. The group covers
// only what can show: the drawing's own bounds when known (else the clip),
// within every mask's rectangle.
void WithEffects(id gstate, q::Rect known, void (^draw)(void)) {
  cairo_t *ct = effectsDepth == 0 ? CairoOf(gstate) : nullptr;
  Extras *found = ct ? ExtrasOf(gstate, false) : nullptr;
  if (!found || !found->hasEffects()) {
    draw();
    return;
  }
  Extras x = *found;
  cairo_matrix_t saved;
  cairo_get_matrix(ct, &saved);
  cairo_identity_matrix(ct);
  double cx0, cy0, cx1, cy1;
  cairo_clip_extents(ct, &cx0, &cy0, &cx1, &cy1);
  q::Rect region = q::Rect::make(cx0, cy0, cx1 - cx0, cy1 - cy0);
  if (!known.isEmpty()) region = region.intersection(known);
  q::AffineTransform base =
      q::AffineTransform::make(saved.xx, saved.yx, saved.xy, saved.yy, saved.x0, saved.y0);
  for (const talvo::cg::MaskClip &m : x.masks) {
    region = region.intersection(
        q::AffineTransform::concat(m.ctm, base).apply(m.rect).insetBy(-1, -1));
  }
  region = region.integral();
  if (region.isEmpty() || !(std::fabs(region.minX()) < 1e7) || !(std::fabs(region.minY()) < 1e7) ||
      !(region.width() < 1e5) || !(region.height() < 1e5)) {
    cairo_set_matrix(ct, &saved);
    return;  // nothing of it can show
  }
  // The group is clipped in device space; GNUstep draws with its matrix.
  cairo_set_matrix(ct, &saved);
  cairo_save(ct);
  cairo_identity_matrix(ct);
  cairo_rectangle(ct, region.minX(), region.minY(), region.width(), region.height());
  cairo_clip(ct);
  cairo_set_matrix(ct, &saved);
  ++effectsDepth;
  cairo_push_group(ct);
  @try {
    draw();
  } @finally {
    cairo_pattern_t *group = cairo_pop_group(ct);
    --effectsDepth;
    cairo_restore(ct);
    // cairo gives the group GNUstep's user matrix; the engine composites it
    // in device space.
    cairo_matrix_t identity;
    cairo_matrix_init_identity(&identity);
    cairo_pattern_set_matrix(group, &identity);
    if (cairo_pattern_status(group) == CAIRO_STATUS_SUCCESS) {
      auto provider = std::make_shared<q::FunctionCairoProvider>([ct] { return ct; });
      q::Context engine(provider, base);
      LoadExtras(engine, x);
      engine.drawDevicePattern(group, region);
    }
    cairo_pattern_destroy(group);
  }
}

// Originals of the hooked primitives.
IMP oFill, oEOFill, oStroke, oCompositeRect, oImage, oCompositeGState, oDrawGState, oGradientLinear,
    oGradientRadial, oGlyphs, oShow, oShowText, oClip, oEOClip, oInitClip, oInitGraphics, oCopy,
    oDealloc;

void HFill(id self, SEL s) {
  WithEffects(self, DeviceBoundsOfPath(self), ^{ ((void (*)(id, SEL))oFill)(self, s); });
}
void HEOFill(id self, SEL s) {
  WithEffects(self, DeviceBoundsOfPath(self), ^{ ((void (*)(id, SEL))oEOFill)(self, s); });
}
void HStroke(id self, SEL s) {
  WithEffects(self, q::Rect{}, ^{ ((void (*)(id, SEL))oStroke)(self, s); });
}
void HCompositeRect(id self, SEL s, NSRect r, NSUInteger op) {
  cairo_t *ct = CairoOf(self);
  q::Rect known = ct ? DeviceBoundsOfUserRect(self, ct, r).insetBy(-1, -1) : q::Rect{};
  WithEffects(self, known, ^{
    ((void (*)(id, SEL, NSRect, NSUInteger))oCompositeRect)(self, s, r, op);
  });
}
typedef void (*ImageIMP)(id, SEL, id, NSInteger, NSInteger, NSInteger, NSInteger, NSInteger,
                         NSInteger, BOOL, BOOL, id, const unsigned char *const *);
void HImage(id self, SEL s, id matrix, NSInteger w, NSInteger h, NSInteger bps, NSInteger spp,
            NSInteger bpp, NSInteger bpr, BOOL planar, BOOL alpha, id space,
            const unsigned char *const *data) {
  WithEffects(self, q::Rect{}, ^{
    ((ImageIMP)oImage)(self, s, matrix, w, h, bps, spp, bpp, bpr, planar, alpha, space, data);
  });
}
typedef void (*CompositeIMP)(id, SEL, id, NSRect, NSPoint, NSUInteger, CGFloat);
void HCompositeGState(id self, SEL s, id source, NSRect r, NSPoint p, NSUInteger op, CGFloat f) {
  WithEffects(self, q::Rect{}, ^{ ((CompositeIMP)oCompositeGState)(self, s, source, r, p, op, f); });
}
void HDrawGState(id self, SEL s, id source, NSRect r, NSPoint p, NSUInteger op, CGFloat f) {
  WithEffects(self, q::Rect{}, ^{ ((CompositeIMP)oDrawGState)(self, s, source, r, p, op, f); });
}
void HGradientLinear(id self, SEL s, id g, NSPoint a, NSPoint b, NSUInteger o) {
  WithEffects(self, q::Rect{}, ^{
    ((void (*)(id, SEL, id, NSPoint, NSPoint, NSUInteger))oGradientLinear)(self, s, g, a, b, o);
  });
}
void HGradientRadial(id self, SEL s, id g, NSPoint a, CGFloat ra, NSPoint b, CGFloat rb,
                     NSUInteger o) {
  WithEffects(self, q::Rect{}, ^{
    ((void (*)(id, SEL, id, NSPoint, CGFloat, NSPoint, CGFloat, NSUInteger))oGradientRadial)(
        self, s, g, a, ra, b, rb, o);
  });
}
void HGlyphs(id self, SEL s, const NSGlyph *g, const NSSize *adv, size_t n) {
  WithEffects(self, q::Rect{}, ^{
    ((void (*)(id, SEL, const NSGlyph *, const NSSize *, size_t))oGlyphs)(self, s, g, adv, n);
  });
}
void HShow(id self, SEL s, const char *text) {
  WithEffects(self, q::Rect{}, ^{ ((void (*)(id, SEL, const char *))oShow)(self, s, text); });
}
void HShowText(id self, SEL s, const char *text, size_t n) {
  WithEffects(self, q::Rect{}, ^{ ((void (*)(id, SEL, const char *, size_t))oShowText)(self, s, text, n); });
}

// GNUstep widens a non-rectangular clip to its bounding box when it copies
// a gstate: clips are recorded here and replayed on the copy.
void RecordClip(id self, q::FillRule rule) {
  cairo_t *ct = CairoOf(self);
  if (!ct) return;
  [self _setPath];
  q::Path path = DevicePathOf(ct);
  if (path.isEmpty()) return;
  ExtrasOf(self, true)->clips.push_back({path, rule});
}
void HClip(id self, SEL s) {
  RecordClip(self, q::FillRule::Winding);
  ((void (*)(id, SEL))oClip)(self, s);
}
void HEOClip(id self, SEL s) {
  RecordClip(self, q::FillRule::EvenOdd);
  ((void (*)(id, SEL))oEOClip)(self, s);
}
void HInitClip(id self, SEL s) {
  if (Extras *x = ExtrasOf(self, false)) {
    x->clips.clear();
    x->masks.clear();
  }
  ((void (*)(id, SEL))oInitClip)(self, s);
}
void HInitGraphics(id self, SEL s) {
  Table().erase(self);
  ((void (*)(id, SEL))oInitGraphics)(self, s);
}
id HCopy(id self, SEL s, NSZone *zone) {
  id copy = ((id (*)(id, SEL, NSZone *))oCopy)(self, s, zone);
  auto &table = Table();
  auto it = table.find(self);
  if (copy && it != table.end()) {
    Extras extras = it->second;
    if (cairo_t *ct = CairoOf(copy)) {
      for (const talvo::cg::DeviceClip &clip : extras.clips) ClipDevice(ct, clip.path, clip.rule);
    }
    table[copy] = std::move(extras);
  }
  return copy;
}
void HDealloc(id self, SEL s) {
  Table().erase(self);
  ((void (*)(id, SEL))oDealloc)(self, s);
}

struct Hook {
  const char *selector;
  IMP replacement;
  IMP *original;
  const char *types;  // the encoding the replacement expects
  bool required;
};

void InstallHooks() {
  Backend &b = B();
  Hook hooks[] = {
      {"DPSfill", (IMP)HFill, &oFill, "v16@0:8", true},
      {"DPSeofill", (IMP)HEOFill, &oEOFill, "v16@0:8", true},
      {"DPSstroke", (IMP)HStroke, &oStroke, "v16@0:8", true},
      {"compositerect:op:", (IMP)HCompositeRect, &oCompositeRect,
       "v56@0:8{_NSRect={_NSPoint=dd}{_NSSize=dd}}16Q48", true},
      {"DPSimage:::::::::::", (IMP)HImage, &oImage, "v96@0:8@16q24q32q40q48q56q64C72C76@80[5rr*]88",
       false},
      {"compositeGState:fromRect:toPoint:op:fraction:", (IMP)HCompositeGState, &oCompositeGState,
       "v88@0:8@16{_NSRect={_NSPoint=dd}{_NSSize=dd}}24{_NSPoint=dd}56Q72d80", false},
      {"drawGState:fromRect:toPoint:op:fraction:", (IMP)HDrawGState, &oDrawGState,
       "v88@0:8@16{_NSRect={_NSPoint=dd}{_NSSize=dd}}24{_NSPoint=dd}56Q72d80", false},
      {"drawGradient:fromPoint:toPoint:options:", (IMP)HGradientLinear, &oGradientLinear,
       "v64@0:8@16{_NSPoint=dd}24{_NSPoint=dd}40Q56", false},
      {"drawGradient:fromCenter:radius:toCenter:radius:options:", (IMP)HGradientRadial,
       &oGradientRadial, "v80@0:8@16{_NSPoint=dd}24d40{_NSPoint=dd}48d64Q72", false},
      {"GSShowGlyphsWithAdvances:::", (IMP)HGlyphs, &oGlyphs, "v40@0:8^rI16^r{_NSSize}24Q32", false},
      {"DPSshow:", (IMP)HShow, &oShow, "v24@0:8r*16", false},
      {"GSShowText::", (IMP)HShowText, &oShowText, "v32@0:8r*16Q24", false},
      {"DPSclip", (IMP)HClip, &oClip, "v16@0:8", true},
      {"DPSeoclip", (IMP)HEOClip, &oEOClip, "v16@0:8", true},
      {"DPSinitclip", (IMP)HInitClip, &oInitClip, "v16@0:8", true},
      {"DPSinitgraphics", (IMP)HInitGraphics, &oInitGraphics, "v16@0:8", true},
      {"copyWithZone:", (IMP)HCopy, &oCopy, nullptr, true},
      {"dealloc", (IMP)HDealloc, &oDealloc, "v16@0:8", true},
  };
  // Check everything first: a partial set of hooks would be worse than none.
  bool complete = true;
  for (const Hook &h : hooks) {
    Method m = class_getInstanceMethod(b.gstateClass, sel_registerName(h.selector));
    const char *types = m ? method_getTypeEncoding(m) : nullptr;
    bool ok = m && (!h.types || (types && strcmp(types, h.types) == 0));
    if (!ok) {
      [b.problems addObject:[NSString stringWithFormat:@"CairoGState -%s %s", h.selector,
                                                       m ? "has another signature" : "missing"]];
      if (h.required) complete = false;
    }
  }
  if (![b.gstateClass instancesRespondToSelector:@selector(_setPath)]) {
    [b.problems addObject:@"CairoGState -_setPath missing"];
    complete = false;
  }
  if (!complete) return;
  for (const Hook &h : hooks) {
    SEL sel = sel_registerName(h.selector);
    Method m = class_getInstanceMethod(b.gstateClass, sel);
    if (!m || (h.types && strcmp(method_getTypeEncoding(m), h.types) != 0)) continue;
    *h.original = TVReplaceInstanceMethod(b.gstateClass, sel, h.replacement);
  }
  b.hooked = true;
}

// --- Image surfaces for bitmap-backed contexts -----------------------------------------------

NSSize SurfaceSize(id self, SEL) {
  cairo_surface_t *s = IvarAt<cairo_surface_t *>(self, B().surfaceHandle);
  if (!s || cairo_surface_get_type(s) != CAIRO_SURFACE_TYPE_IMAGE) return NSZeroSize;
  return NSMakeSize(cairo_image_surface_get_width(s), cairo_image_surface_get_height(s));
}
void SurfaceSetSize(id, SEL, NSSize) {}
// GNUstep's CairoSurface leaves its cairo surface to subclasses to free.
void SurfaceDealloc(id self, SEL s) {
  cairo_surface_t *&surface = IvarAt<cairo_surface_t *>(self, B().surfaceHandle);
  if (surface) cairo_surface_destroy(surface);
  surface = nullptr;
  IMP inherited = class_getMethodImplementation(B().surfaceClass, s);
  ((void (*)(id, SEL))inherited)(self, s);
}
BOOL SurfaceIsDrawingToScreen(id, SEL) { return NO; }

Class ImageSurfaceClass() {
  Backend &b = B();
  if (b.imageSurfaceClass || !b.surfaceClass || b.surfaceHandle < 0) return b.imageSurfaceClass;
  Class cls = objc_allocateClassPair(b.surfaceClass, "TVImageCairoSurface", 0);
  if (!cls) return Nil;
  class_addMethod(cls, @selector(size), (IMP)SurfaceSize, "{_NSSize=dd}16@0:8");
  class_addMethod(cls, @selector(setSize:), (IMP)SurfaceSetSize, "v32@0:8{_NSSize=dd}16");
  class_addMethod(cls, @selector(isDrawingToScreen), (IMP)SurfaceIsDrawingToScreen, "C16@0:8");
  class_addMethod(cls, @selector(dealloc), (IMP)SurfaceDealloc, "v16@0:8");
  objc_registerClassPair(cls);
  b.imageSurfaceClass = cls;
  return cls;
}

// --- Check and install ------------------------------------------------------------------

IMP oGraphicsPort, oWithPort, oWithRep, oSetCurrent, oContextDealloc, oFlush, oShadowSet;

void *HGraphicsPort(NSGraphicsContext *self, SEL s);
id HWithPort(id self, SEL s, void *port, BOOL flipped);
id HWithRep(id self, SEL s, NSBitmapImageRep *rep);
void HSetCurrent(id self, SEL s, NSGraphicsContext *context);
void HContextDealloc(NSGraphicsContext *self, SEL s);
void HFlush(NSGraphicsContext *self, SEL s);
void HShadowSet(NSShadow *self, SEL s);

void Check() {
  Backend &b = B();
  if (b.checked) return;
  // The backend bundle loads with the application's first graphics
  // context; until then there is nothing to check (try again later).
  if (!NSClassFromString(@"CairoGState") || !NSClassFromString(@"CairoContext")) return;
  b.checked = true;
  b.problems = [NSMutableArray new];
  b.gstateClass = NSClassFromString(@"CairoGState");
  b.surfaceClass = NSClassFromString(@"CairoSurface");
  if (!b.gstateClass) [b.problems addObject:@"class CairoGState missing"];
  if (!b.surfaceClass) [b.problems addObject:@"class CairoSurface missing"];
  b.ct = FindIvar(b.gstateClass, "_ct", "^{_cairo");
  b.surface = FindIvar(b.gstateClass, "_surface", "@");
  b.ctm = FindIvar(b.gstateClass, "ctm", "@");
  b.fill = FindIvar(b.gstateClass, "fillColor", "{_device_color=\"space\"I\"field\"[6f]}");
  b.stroke = FindIvar(b.gstateClass, "strokeColor", "{_device_color=\"space\"I\"field\"[6f]}");
  b.surfaceHandle = FindIvar(b.surfaceClass, "_surface", "^{_cairo_surface");
  b.graphicsPort = FindIvar([NSGraphicsContext class], "_graphicsPort", "^v");
  Class contextClass = NSClassFromString(@"CairoContext");
  const char *contextSelectors[] = {"currentGState", "GSCurrentCTM", "GSConcatCTM:",
                                    "GSSetFillColor:", "GSSetFillColorspace:", "GSSetStrokeColor:",
                                    "GSSetStrokeColorspace:", "DPSgsave", "DPSgrestore"};
  bool contextOK = contextClass != Nil;
  if (!contextClass) [b.problems addObject:@"class CairoContext missing"];
  for (const char *name : contextSelectors) {
    if (contextClass && ![contextClass instancesRespondToSelector:sel_registerName(name)]) {
      [b.problems addObject:[NSString stringWithFormat:@"CairoContext -%s missing", name]];
      contextOK = false;
    }
  }
  if (b.gstateClass && ![b.gstateClass instancesRespondToSelector:@selector(GSSetSurface:::)]) {
    [b.problems addObject:@"CairoGState -GSSetSurface::: missing"];
    contextOK = false;
  }
  b.usable = contextOK && b.gstateClass && b.ct >= 0 && b.ctm >= 0 && b.fill >= 0 &&
             b.stroke >= 0 && b.graphicsPort >= 0 && b.surfaceHandle >= 0;
  if (!b.usable) {
    NSLog(@"Talvo: Core Graphics bridge off, GNUstep differs: %@", b.problems);
    return;
  }
  InstallHooks();
  if (class_getInstanceMethod(contextClass, @selector(graphicsPort)) !=
      class_getInstanceMethod([NSGraphicsContext class], @selector(graphicsPort))) {
    TVReplaceInstanceMethod(contextClass, @selector(graphicsPort), (IMP)HGraphicsPort);
  }
  oFlush = TVReplaceInstanceMethod(contextClass, @selector(flushGraphics), (IMP)HFlush);
}

// The AppKit side is there from the start; each hook checks the backend
// on first use.
void InstallAppKitHooks() {
  Class ns = [NSGraphicsContext class];
  Class meta = object_getClass(ns);
  oGraphicsPort = TVReplaceInstanceMethod(ns, @selector(graphicsPort), (IMP)HGraphicsPort);
  oWithPort = TVReplaceInstanceMethod(meta, @selector(graphicsContextWithGraphicsPort:flipped:),
                                      (IMP)HWithPort);
  oWithRep =
      TVReplaceInstanceMethod(meta, @selector(graphicsContextWithBitmapImageRep:), (IMP)HWithRep);
  oSetCurrent = TVReplaceInstanceMethod(meta, @selector(setCurrentContext:), (IMP)HSetCurrent);
  oContextDealloc = TVReplaceInstanceMethod(ns, @selector(dealloc), (IMP)HContextDealloc);
  oShadowSet = TVReplaceInstanceMethod([NSShadow class], @selector(set), (IMP)HShadowSet);
}

// --- The bridge for one NSGraphicsContext -----------------------------------------------------

class GStateBridge final : public talvo::cg::Bridge {
 public:
  explicit GStateBridge(NSGraphicsContext *context) : context_(context) {
    auto provider = std::make_shared<q::FunctionCairoProvider>(
        [context] { return CairoOf(GStateOf(context)); });
    engine_.reset(new q::Context(provider, q::AffineTransform::identity()));
  }

  void saveGState() override {
    @try {
      [context_ saveGraphicsState];
      ++saves_;
    } @catch (NSException *e) {
    }
  }

  void restoreGState() override {
    if (saves_ == 0) return;  // never below what Quartz saved
    --saves_;
    @try {
      [context_ restoreGraphicsState];
    } @catch (NSException *e) {
    }
  }

  q::AffineTransform ctm() override { return CTMOf(GStateOf(context_)); }

  void concatCTM(const q::AffineTransform &t) override {
    // Non-finite transforms are refused here as in the engine.
    for (double v : {t.a, t.b, t.c, t.d, t.tx, t.ty}) {
      if (!std::isfinite(v)) return;
    }
    NSAffineTransform *transform = [NSAffineTransform transform];
    NSAffineTransformStruct s = {t.a, t.b, t.c, t.d, t.tx, t.ty};
    [transform setTransformStruct:s];
    [(id)context_ GSConcatCTM:transform];
  }

  q::Color fillColor() override {
    id gstate = GStateOf(context_);
    return gstate ? ToRGB(IvarAt<DeviceColor>(gstate, B().fill)) : q::Color{};
  }

  q::Color strokeColor() override {
    id gstate = GStateOf(context_);
    return gstate ? ToRGB(IvarAt<DeviceColor>(gstate, B().stroke)) : q::Color{};
  }

  void setFillColor(const q::Color &c) override {
    CGFloat values[4] = {c.r, c.g, c.b, c.a};
    [(id)context_ GSSetFillColorspace:[NSColorSpace deviceRGBColorSpace]];
    [(id)context_ GSSetFillColor:values];
  }

  void setStrokeColor(const q::Color &c) override {
    CGFloat values[4] = {c.r, c.g, c.b, c.a};
    [(id)context_ GSSetStrokeColorspace:[NSColorSpace deviceRGBColorSpace]];
    [(id)context_ GSSetStrokeColor:values];
  }

  Extras *extras() override { return ExtrasOf(GStateOf(context_), true); }

  void clip(const q::Path &path, q::FillRule rule) override {
    id gstate = GStateOf(context_);
    cairo_t *ct = CairoOf(gstate);
    if (!ct) return;
    q::Path device = path.transformed(q::AffineTransform::concat(CTMOf(gstate), CairoMatrix(ct)));
    ClipDevice(ct, device, rule);
    ExtrasOf(gstate, true)->clips.push_back({device, rule});
  }

  void clipToMask(const q::Rect &rect, q::Image *image) override {
    id gstate = GStateOf(context_);
    if (!gstate || !image) return;
    ExtrasOf(gstate, true)->masks.push_back({q::ImageRef::retain(image), rect, CTMOf(gstate)});
  }

  q::Rect clipBoundingBox() override {
    q::Context *e = beginDrawing();
    if (!e) return q::Rect{};
    q::Rect box = e->clipBoundingBox();
    endDrawing();
    return box;
  }

  q::Context *pathEngine() override {
    engine_->setCTM(ctm());
    return engine_.get();
  }

  q::Context *beginDrawing() override {
    id gstate = GStateOf(context_);
    cairo_t *ct = CairoOf(gstate);
    if (!ct) return nullptr;
    // The engine's own stack stays at depth 0: every field it draws with is
    // loaded here from GNUstep's gstate and the side table, clips included.
    engine_->setBaseTransform(CairoMatrix(ct));
    engine_->resetClip();
    engine_->setCTM(CTMOf(gstate));
    engine_->setFillColor(ToRGB(IvarAt<DeviceColor>(gstate, B().fill)));
    engine_->setStrokeColor(ToRGB(IvarAt<DeviceColor>(gstate, B().stroke)));
    Extras *x = ExtrasOf(gstate, false);
    LoadExtras(*engine_, x ? *x : Extras());
    return engine_.get();
  }

  void endDrawing() override { engine_->resetClip(); }

 private:
  NSGraphicsContext *context_;  // not retained: it owns or outlives the bridge's use
  std::unique_ptr<q::Context> engine_;
  int saves_ = 0;
};

// --- What each NSGraphicsContext holds -------------------------------------------------------

struct RepTarget {
  NSBitmapImageRep *rep = nil;  // retained
  cairo_surface_t *surface = nullptr;
};

struct ContextRecord {
  CGContextRef port = nullptr;   // retained: made here or wrapped
  talvo::cg::Bridge *bridge = nullptr;  // the port's bridge to this context
  bool wrapped = false;          // a bitmap CGContext whose state we took over
  RepTarget target;
};

std::unordered_map<const void *, ContextRecord> &Records() {
  static auto *records = new std::unordered_map<const void *, ContextRecord>;
  return *records;
}

void SetPortIvar(NSGraphicsContext *context, void *port) {
  IvarAt<void *>(context, B().graphicsPort) = port;
}

// Points a fresh context's gstate at an image surface.
bool AttachSurface(NSGraphicsContext *context, cairo_surface_t *surface) {
  Class cls = ImageSurfaceClass();
  id gstate = GStateOf(context);
  if (!cls || !gstate || !surface) return false;
  // Through NSObject: GNUstep keeps an object's retain count in a header
  // before it that the runtime's class_createInstance does not allocate.
  id object = [cls alloc];
  IvarAt<cairo_surface_t *>(object, B().surfaceHandle) = cairo_surface_reference(surface);
  @try {
    [gstate GSSetSurface:object :0 :cairo_image_surface_get_height(surface)];
  } @catch (NSException *e) {
    [object release];
    return false;
  }
  [object release];
  return CairoOf(gstate) != nullptr;
}

// rep <-> premultiplied native ARGB32.
bool RepIsSupported(NSBitmapImageRep *rep) {
  NSInteger spp = [rep samplesPerPixel];
  return [rep bitsPerSample] == 8 && ![rep isPlanar] && spp >= 1 && spp <= 4 &&
         ([rep bitmapFormat] & NSFloatingPointSamplesBitmapFormat) == 0 &&
         [rep bitsPerPixel] == 8 * spp && [rep bitmapData] != NULL;
}

void TransferRepPixels(NSBitmapImageRep *rep, cairo_surface_t *surface, bool toSurface) {
  cairo_surface_flush(surface);
  uint8_t *pixels = cairo_image_surface_get_data(surface);
  int stride = cairo_image_surface_get_stride(surface);
  NSInteger w = [rep pixelsWide], h = [rep pixelsHigh], spp = [rep samplesPerPixel];
  NSInteger rowBytes = [rep bytesPerRow];
  bool alpha = [rep hasAlpha];
  NSBitmapFormat format = [rep bitmapFormat];
  bool alphaFirst = (format & NSAlphaFirstBitmapFormat) != 0;
  bool premultiplied = (format & NSAlphaNonpremultipliedBitmapFormat) == 0;
  int colors = int(alpha ? spp - 1 : spp);
  int aIndex = alphaFirst ? 0 : colors, c0 = alpha && alphaFirst ? 1 : 0;
  uint8_t *data = [rep bitmapData];
  for (NSInteger y = 0; y < h; ++y) {
    uint8_t *row = data + y * rowBytes;
    uint32_t *dst = reinterpret_cast<uint32_t *>(pixels + y * stride);
    for (NSInteger x = 0; x < w; ++x) {
      uint8_t *p = row + x * spp;
      if (toSurface) {
        unsigned a = alpha ? p[aIndex] : 255;
        unsigned r = p[c0], g = colors >= 3 ? p[c0 + 1] : r, b = colors >= 3 ? p[c0 + 2] : r;
        if (!premultiplied) r = (r * a + 127) / 255, g = (g * a + 127) / 255, b = (b * a + 127) / 255;
        dst[x] = (a << 24) | (r << 16) | (g << 8) | b;
      } else {
        uint32_t v = dst[x];
        unsigned a = v >> 24, r = (v >> 16) & 255, g = (v >> 8) & 255, b = v & 255;
        if (!premultiplied && a > 0 && a < 255) {
          r = (r * 255 + a / 2) / a, g = (g * 255 + a / 2) / a, b = (b * 255 + a / 2) / a;
        }
        if (colors >= 3) {
          p[c0] = uint8_t(r), p[c0 + 1] = uint8_t(g), p[c0 + 2] = uint8_t(b);
        } else {
          p[c0] = uint8_t((r * 77 + g * 150 + b * 29) >> 8);
        }
        if (alpha) p[aIndex] = uint8_t(a);
      }
    }
  }
  if (toSurface) cairo_surface_mark_dirty(surface);
}

// Brings the AppKit drawing of `context` to the memory behind it.
void SyncContext(const void *context) {
  auto it = Records().find(context);
  if (it == Records().end()) return;
  ContextRecord &record = it->second;
  if (record.target.rep) TransferRepPixels(record.target.rep, record.target.surface, false);
  if (record.wrapped && record.port && record.port->bitmap) record.port->bitmap->flush();
}

// --- The hooks on NSGraphicsContext and NSShadow ------------------------------------------------

void *HGraphicsPort(NSGraphicsContext *self, SEL s) {
  Check();
  void *port = ((void *(*)(id, SEL))oGraphicsPort)(self, s);
  if (port || !GStateOf(self)) return port;
  CGContextRef c = TVCGContextCreateBridged(std::unique_ptr<talvo::cg::Bridge>(
      new (std::nothrow) GStateBridge(self)));
  if (!c) return nullptr;
  ContextRecord &record = Records()[self];
  record.port = c;
  record.bridge = c->bridge.get();
  SetPortIvar(self, c);
  return c;
}

id HWithPort(id self, SEL s, void *port, BOOL flipped) {
  Check();
  NSGraphicsContext *context = ((id (*)(id, SEL, void *, BOOL))oWithPort)(self, s, port, flipped);
  if (!context || !TVCGContextIsLive(port)) return context;
  CGContextRef c = static_cast<CGContextRef>(port);
  if (!c->bitmap || c->bridge) return context;
  if (!AttachSurface(context, c->bitmap->beginForeignDrawing())) {
    c->bitmap->endForeignDrawing();
    return context;
  }
  // Quartz state so far carries over into GNUstep's gstate.
  q::Context &own = *c->engine;
  auto *bridge = new (std::nothrow) GStateBridge(context);
  if (!bridge) {
    c->bitmap->endForeignDrawing();
    return context;
  }
  bridge->concatCTM(own.getCTM());
  bridge->setFillColor(own.fillColor());
  bridge->setStrokeColor(own.strokeColor());
  if (Extras *x = bridge->extras()) {
    x->alpha = own.alpha();
    x->blend = own.blendMode();
    x->lineWidth = own.lineWidth();
    x->interpolation = own.interpolationQuality();
  }
  TVCGContextSetBridge(c, std::unique_ptr<talvo::cg::Bridge>(bridge));
  ContextRecord &record = Records()[context];
  record.bridge = bridge;
  record.port = CGContextRetain(c);
  record.wrapped = true;
  return context;
}

id HWithRep(id self, SEL s, NSBitmapImageRep *rep) {
  Check();
  if (!B().usable) return ((id (*)(id, SEL, id))oWithRep)(self, s, rep);
  if (![rep isKindOfClass:[NSBitmapImageRep class]] || !RepIsSupported(rep)) return nil;
  NSInteger w = [rep pixelsWide], h = [rep pixelsHigh];
  cairo_surface_t *surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, int(w), int(h));
  if (cairo_surface_status(surface) != CAIRO_STATUS_SUCCESS) {
    cairo_surface_destroy(surface);
    return nil;
  }
  TransferRepPixels(rep, surface, true);
  NSGraphicsContext *context = [NSGraphicsContext graphicsContextWithAttributes:nil];
  if (!AttachSurface(context, surface)) {
    cairo_surface_destroy(surface);
    return nil;
  }
  NSSize size = [rep size];
  if (size.width > 0 && size.height > 0 && (size.width != w || size.height != h)) {
    NSAffineTransform *scale = [NSAffineTransform transform];
    [scale scaleXBy:w / size.width yBy:h / size.height];
    [(id)context GSConcatCTM:scale];
  }
  ContextRecord &record = Records()[context];
  record.target.rep = [rep retain];
  record.target.surface = surface;
  return context;
}

void HSetCurrent(id self, SEL s, NSGraphicsContext *context) {
  NSGraphicsContext *old = [NSGraphicsContext currentContext];
  ((void (*)(id, SEL, id))oSetCurrent)(self, s, context);
  if (old && old != context) SyncContext(old);
}

void HFlush(NSGraphicsContext *self, SEL s) {
  auto it = Records().find(self);
  if (it != Records().end() && (it->second.target.rep || it->second.wrapped)) {
    SyncContext(self);
    return;  // nothing on screen behind these
  }
  ((void (*)(id, SEL))oFlush)(self, s);
}

void HContextDealloc(NSGraphicsContext *self, SEL s) {
  auto it = Records().find(self);
  if (it == Records().end()) {
    ((void (*)(id, SEL))oContextDealloc)(self, s);
    return;
  }
  SyncContext(self);
  ContextRecord record = it->second;
  Records().erase(it);
  // The bridge points at this context: it goes first.
  if (record.port && record.port->bridge.get() == record.bridge) {
    TVCGContextSetBridge(record.port, nullptr);
  }
  SetPortIvar(self, nullptr);
  // GNUstep's teardown still flushes into the surface, whose pixels may live
  // in the wrapped bitmap context: release that only afterwards.
  ((void (*)(id, SEL))oContextDealloc)(self, s);
  if (record.port) CGContextRelease(record.port);
  [record.target.rep release];
  if (record.target.surface) cairo_surface_destroy(record.target.surface);
}

void HShadowSet(NSShadow *self, SEL s) {
  Check();
  Extras *x = ExtrasOf(GStateOf([NSGraphicsContext currentContext]), true);
  if (!x) return;
  NSColor *color = [[self shadowColor] colorUsingColorSpaceName:NSDeviceRGBColorSpace];
  x->shadowOn = color == nil || [color alphaComponent] > 0;
  x->shadowOffset = q::Size{[self shadowOffset].width, [self shadowOffset].height};
  x->shadowBlur = [self shadowBlurRadius];
  x->shadowColor = color ? q::Color::rgb([color redComponent], [color greenComponent],
                                         [color blueComponent], [color alphaComponent])
                         : q::Color{0, 0, 0, 1.0 / 3.0};
}

}  // namespace

@implementation NSGraphicsContext (TalvoPlatformGraphics)

+ (NSArray *)talvo_graphicsBridgeProblems {
  Check();
  if (!B().checked) return [NSArray arrayWithObject:@"no graphics backend loaded"];
  return [NSArray arrayWithArray:B().problems];
}

+ (BOOL)talvo_graphicsBridgeInstalled {
  Check();
  return B().usable && B().hooked;
}

@end

// Installs the bridge as soon as the backend is there: when the application
// object exists (it loads the backend), or on first use.
@interface _TVGraphicsBridgeStarter : NSObject
@end

static IMP oSharedApplication;

static id HSharedApplication(id self, SEL s) {
  id application = ((id (*)(id, SEL))oSharedApplication)(self, s);
  if (!B().checked && application) Check();
  return application;
}

@implementation _TVGraphicsBridgeStarter

+ (void)load {
  InstallAppKitHooks();
  oSharedApplication = TVReplaceInstanceMethod(object_getClass([NSApplication class]),
                                               @selector(sharedApplication),
                                               (IMP)HSharedApplication);
}

@end

// Entry points for the other platform files.
extern "C" __attribute__((visibility("hidden"))) void TVGraphicsBridgeEnsure(void) { Check(); }
