// Layer-backed views drawn by the window's own display: the layer's
// contents under the view's drawing, its sublayers above, and its opacity
// applied to the whole view tree as one group.
//
// The group: every lockFocus in the view's subtree makes its gstate from
// the window's stored gstate, so for the length of the view's display
// that gstate's cairo_t is swapped for one on a scratch surface; the
// scratch is then composited onto the window's buffer with the opacity.
// A cairo group on the current cairo_t would hold one lockFocus only.
// Views under a translucent layer redraw through the group: their
// opaqueAncestor is above it.

#import <AppKit/AppKit.h>
#import <AppKit/NSView+TalvoLayerDrawing.h>

#include <cairo.h>

#include <cmath>

#import "platform/QuartzCore/TVLayerRendering.h"
#import "platform/objc/TVRuntime.h"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

extern "C" CALayer *TVViewExistingLayer(NSView *view);

namespace {

// --- Private GNUstep details ------------------------------------------------------

struct GroupSupport {
  bool checked = false;
  bool usable = false;
  Class gstateTable = Nil;  // GSContext: windows' stored gstates by number
  SEL lookup = NULL;
};

GroupSupport &G() {
  static GroupSupport support;
  if (!support.checked && NSClassFromString(@"CairoGState")) {
    support.checked = true;
    support.gstateTable = NSClassFromString(@"GSContext");
    support.lookup = sel_registerName("getObjectForKey:");
    Ivar ct = class_getInstanceVariable(NSClassFromString(@"CairoGState"), "_ct");
    const char *type = ct ? ivar_getTypeEncoding(ct) : NULL;
    support.usable = support.gstateTable && [support.gstateTable respondsToSelector:support.lookup] &&
                     type && strncmp(type, "^{_cairo", 8) == 0;
    if (!support.usable) {
      NSLog(@"Talvo: layer opacity groups off, GNUstep differs (GSContext, CairoGState _ct)");
    }
  }
  return support;
}

// The slot of the window's stored gstate that holds its cairo_t, or NULL.
cairo_t **StoredCairoSlot(NSWindow *window) {
  GroupSupport &g = G();
  if (!g.usable || [window gState] <= 0) return NULL;
  id gstate = ((id(*)(id, SEL, int))[g.gstateTable methodForSelector:g.lookup])(
      g.gstateTable, g.lookup, (int)[window gState]);
  if (!gstate) return NULL;
  Ivar ivar = class_getInstanceVariable(object_getClass(gstate), "_ct");
  if (!ivar) return NULL;
  cairo_t **slot = reinterpret_cast<cairo_t **>(reinterpret_cast<char *>(gstate) +
                                                ivar_getOffset(ivar));
  return *slot ? slot : NULL;
}

// The layer a view shows: only with wantsLayer (made on first use, as
// AppKit makes it), its geometry brought up to date with the view (a layer
// hidden by hand stays hidden).
int syncingLayer = 0;  // bringing a layer up to date marks nothing for display

CALayer *ShownLayer(NSView *view) {
  if (![view wantsLayer]) return nil;
  BOOL hidden = [TVViewExistingLayer(view) isHidden];
  syncingLayer++;
  CALayer *layer = [view layer];
  syncingLayer--;
  if (hidden) [layer setHidden:YES];
  return layer;
}

// Whether what lies below shows through the layer.
bool IsTranslucent(CALayer *layer) {
  return layer != nil && ([layer isHidden] || !([layer opacity] >= 1));
}

// --- An opacity group over the window's buffer ---------------------------------------

struct Group {
  cairo_t **slot = NULL;
  cairo_t *saved = NULL;
  cairo_surface_t *scratch = NULL;
  int x = 0, y = 0;  // the scratch's place in device space

  // Points the window's drawing at a scratch covering `windowRect`.
  bool begin(NSWindow *window, NSRect windowRect) {
    slot = StoredCairoSlot(window);
    if (!slot) return false;
    saved = *slot;
    double x0 = NSMinX(windowRect), y0 = NSMinY(windowRect);
    double x1 = NSMaxX(windowRect), y1 = NSMaxY(windowRect);
    double xs[4] = {x0, x1, x0, x1}, ys[4] = {y0, y0, y1, y1};
    double minX = INFINITY, minY = INFINITY, maxX = -INFINITY, maxY = -INFINITY;
    for (int i = 0; i < 4; i++) {
      cairo_user_to_device(saved, &xs[i], &ys[i]);
      minX = std::min(minX, xs[i]);
      maxX = std::max(maxX, xs[i]);
      minY = std::min(minY, ys[i]);
      maxY = std::max(maxY, ys[i]);
    }
    if (!(maxX > minX && maxY > minY) || !std::isfinite(maxX - minX) || !std::isfinite(maxY - minY)) {
      return false;
    }
    x = int(std::floor(minX));
    y = int(std::floor(minY));
    int width = int(std::ceil(maxX)) - x, height = int(std::ceil(maxY)) - y;
    if (width > 16384 || height > 16384) return false;
    scratch = cairo_surface_create_similar(cairo_get_target(saved), CAIRO_CONTENT_COLOR_ALPHA,
                                           width, height);
    if (cairo_surface_status(scratch) != CAIRO_STATUS_SUCCESS) {
      cairo_surface_destroy(scratch);
      scratch = NULL;
      return false;
    }
    cairo_surface_set_device_offset(scratch, -x, -y);
    cairo_t *drawing = cairo_create(scratch);
    cairo_matrix_t m;
    cairo_get_matrix(saved, &m);
    cairo_set_matrix(drawing, &m);
    *slot = drawing;
    [window disableFlushWindow];
    return true;
  }

  // Puts the window's cairo_t back and composites the scratch.
  void end(NSWindow *window, NSRect windowRect, double opacity) {
    cairo_t *drawing = *slot;
    *slot = saved;
    cairo_destroy(drawing);
    cairo_t *c = cairo_create(cairo_get_target(saved));
    cairo_matrix_t m;
    cairo_get_matrix(saved, &m);
    cairo_set_matrix(c, &m);
    cairo_rectangle(c, NSMinX(windowRect), NSMinY(windowRect), NSWidth(windowRect),
                    NSHeight(windowRect));
    cairo_clip(c);
    cairo_identity_matrix(c);
    if (opacity > 0) {
      cairo_set_source_surface(c, scratch, 0, 0);
      cairo_paint_with_alpha(c, opacity);
    }
    cairo_destroy(c);
    cairo_surface_destroy(scratch);
    scratch = NULL;
    [window enableFlushWindow];
    [window flushWindowIfNeeded];
  }
};

// Set while a window displays a layer-backed view: the view's own drawing
// is then the window's to do, not the layer renderer's.
int windowDisplayDepth = 0;

// The transform from a view's bounds space into its superview's (or, for
// `inOwnFrame`, into a space where the frame sits at the origin).
NSAffineTransform *BoundsToParent(NSView *view, bool inOwnFrame) {
  NSAffineTransform *m = [NSAffineTransform transform];
  NSRect frame = [view frame], bounds = [view bounds];
  if (!inOwnFrame) [m translateXBy:frame.origin.x yBy:frame.origin.y];
  if ([view isFlipped]) {
    [m translateXBy:0 yBy:frame.size.height];
    [m scaleXBy:1 yBy:-1];
  }
  if (bounds.size.width > 0 && bounds.size.height > 0) {
    [m scaleXBy:frame.size.width / bounds.size.width yBy:frame.size.height / bounds.size.height];
  }
  [m translateXBy:-bounds.origin.x yBy:-bounds.origin.y];
  return m;
}

void DrawSubtree(NSView *view, NSGraphicsContext *context, bool withLayer);

// Draws `view`'s drawRect: and then its subviews into `context`, whose CTM
// maps the view's bounds space.
void DrawViewAndSubviews(NSView *view, NSGraphicsContext *context) {
  NSRect bounds = [view bounds];
  if (NSIsEmptyRect(bounds)) return;
  NSAffineTransform *ctm = [[[context GSCurrentCTM] copy] autorelease];
  [context saveGraphicsState];
  [context lockFocusView:view inRect:bounds];
  [context GSSetCTM:ctm];
  NSRectClip(bounds);
  @try {
    [view drawRect:bounds];
  } @catch (NSException *exception) {
    NSLog(@"Talvo: a view did not draw into its layer: %@", exception);
  }
  for (NSView *subview in [view subviews]) {
    if ([subview isHidden]) continue;
    [context saveGraphicsState];
    NSAffineTransform *m = BoundsToParent(subview, false);
    [m appendTransform:ctm];
    [context GSSetCTM:m];
    DrawSubtree(subview, context, true);
    [context restoreGraphicsState];
  }
  [context unlockFocusView:view needsFlush:NO];
  [context restoreGraphicsState];
}

// A subview in its bounds space: through its layer when it has one.
void DrawSubtree(NSView *view, NSGraphicsContext *context, bool withLayer) {
  CALayer *layer = withLayer ? ShownLayer(view) : nil;
  if (layer == nil) {
    DrawViewAndSubviews(view, context);
    return;
  }
  CGContextRef c = (CGContextRef)[context graphicsPort];
  if (!c) return;
  [[layer presentationLayer] _tv_renderTreeInContext:c inRect:[view bounds]];
}

// Draws part of the layer in the view's own space (bounds = layer bounds).
void DrawLayer(NSView *view, CALayer *layer, NSRect dirty, BOOL content, BOOL sublayers) {
  if (content && [layer backgroundColor] == NULL && [layer contents] == nil) return;
  if (sublayers && [[[layer modelLayer] sublayers] count] == 0) return;
  [view lockFocus];
  @try {
    NSRectClip(dirty);
    CGContextRef c = (CGContextRef)[[NSGraphicsContext currentContext] graphicsPort];
    [layer _tv_renderInContext:c inRect:[view bounds] content:content sublayers:sublayers];
  } @catch (NSException *exception) {
    NSLog(@"Talvo: a layer did not draw: %@", exception);
  }
  [view unlockFocus];
}

// --- Hooks ------------------------------------------------------------------------------------

void (*oDisplayRect)(id, SEL, NSRect, NSGraphicsContext *);
NSView *(*oOpaqueAncestor)(id, SEL);
void (*oSetAlphaValue)(id, SEL, CGFloat);

void HDisplayRect(id self, SEL s, NSRect rect, NSGraphicsContext *context) {
  CALayer *model = ShownLayer(self);
  NSWindow *window = [self window];
  if (!model || !window) {
    oDisplayRect(self, s, rect, context);
    return;
  }
  // What shows now, running animations included.
  CALayer *layer = [model presentationLayer];
  NSRect visible = NSIntersectionRect(rect, [self visibleRect]);
  // Another context (a bitmap, printing): the view's own drawing only,
  // as lockFocus would still draw into the window.
  bool own = context == nil || context == [window graphicsContext];
  if (!own || NSIsEmptyRect(visible)) {
    oDisplayRect(self, s, rect, context);
    return;
  }
  // Hidden or fully transparent: the view still draws (its dirty marks
  // are cleared as usual) but the group is thrown away.
  double opacity = [layer isHidden] || !([layer opacity] > 0) ? 0 : std::min(1.0, double([layer opacity]));
  Group group;
  NSRect windowRect = [self convertRect:visible toView:nil];
  bool grouped = opacity < 1 && group.begin(window, windowRect);
  if (!grouped && opacity <= 0) return;
  windowDisplayDepth++;
  DrawLayer(self, layer, visible, YES, NO);
  oDisplayRect(self, s, rect, context);
  DrawLayer(self, layer, visible, NO, YES);
  windowDisplayDepth--;
  if (grouped) group.end(window, windowRect, opacity);
}

// A view inside a translucent layer redraws from above the layer's view.
NSView *HOpaqueAncestor(NSView *self, SEL s) {
  NSView *top = nil;
  for (NSView *view = self; view != nil; view = [view superview]) {
    if (![view wantsLayer]) continue;
    CALayer *layer = TVViewExistingLayer(view);
    if (layer != nil ? IsTranslucent(layer) : !([view alphaValue] >= 1)) top = view;
  }
  if (top != nil && [top superview] != nil) return [[top superview] opaqueAncestor];
  return oOpaqueAncestor(self, s);
}

// alphaValue and the layer's opacity are one value.
void HSetAlphaValue(NSView *self, SEL s, CGFloat alpha) {
  oSetAlphaValue(self, s, alpha);
  CALayer *layer = TVViewExistingLayer(self);
  if (layer != nil && std::isfinite(alpha)) {
    [CATransaction begin];
    [CATransaction setDisableActions:YES];
    [layer setOpacity:float(alpha)];
    [CATransaction commit];
  }
  if ([self wantsLayer]) [self setNeedsDisplay:YES];
}

}  // namespace

@implementation NSView (TalvoLayerDrawing)

+ (BOOL)talvo_layerGroupsAvailable {
  return G().usable;
}

// Something in the view's layer tree changed how it looks.
- (void)_tv_layerNeedsDisplay:(CALayer *)layer {
  if (syncingLayer > 0) return;
  // The backing layer's opacity set directly is the view's alphaValue too.
  CALayer *own = TVViewExistingLayer(self);
  if (layer == own && std::isfinite([own opacity]) && float([self alphaValue]) != [own opacity]) {
    oSetAlphaValue(self, @selector(setAlphaValue:), CGFloat([own opacity]));
  }
  if ([self wantsLayer]) [self setNeedsDisplay:YES];
}

// The view draws into its backing layer when the layer is rendered
// (renderInContext:), not when its window displays it.
- (BOOL)_tv_drawsIntoLayer:(CALayer *)layer {
  return windowDisplayDepth == 0 && layer != nil && TVViewExistingLayer(self) == layer;
}

// Draws the view and its subviews into `c`, whose user space is the
// layer's bounds with their origin at (0, 0).
- (void)_tv_drawIntoLayer:(CALayer *)layer context:(CGContextRef)c {
  if (![self _tv_drawsIntoLayer:layer] || !c) return;
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  @try {
    NSGraphicsContext *current = [NSGraphicsContext currentContext];
    NSGraphicsContext *context =
        current != nil && (CGContextRef)[current graphicsPort] == c
            ? current
            : [NSGraphicsContext graphicsContextWithGraphicsPort:c flipped:NO];
    if (context != nil) {
      [NSGraphicsContext saveGraphicsState];
      [NSGraphicsContext setCurrentContext:context];
      [context saveGraphicsState];
      NSAffineTransform *m = BoundsToParent(self, true);
      NSSize size = [layer bounds].size;
      NSRect frame = [self frame];
      if (size.width > 0 && size.height > 0 && frame.size.width > 0 && frame.size.height > 0) {
        NSAffineTransform *fit = [NSAffineTransform transform];
        [fit scaleXBy:size.width / frame.size.width yBy:size.height / frame.size.height];
        [m appendTransform:fit];
      }
      [m appendTransform:[context GSCurrentCTM]];
      [context GSSetCTM:m];
      DrawViewAndSubviews(self, context);
      [context restoreGraphicsState];
      [NSGraphicsContext restoreGraphicsState];
    }
  } @catch (NSException *exception) {
    NSLog(@"Talvo: a view did not draw into its layer: %@", exception);
  }
  [pool drain];
}

@end

@interface _TVLayerDrawingHooks : NSObject
@end

@implementation _TVLayerDrawingHooks

+ (void)load {
  Class view = [NSView class];
  oDisplayRect = (void (*)(id, SEL, NSRect, NSGraphicsContext *))TVReplaceInstanceMethod(
      view, @selector(displayRectIgnoringOpacity:inContext:), (IMP)HDisplayRect);
  oOpaqueAncestor =
      (NSView * (*)(id, SEL)) TVReplaceInstanceMethod(view, @selector(opaqueAncestor), (IMP)HOpaqueAncestor);
  oSetAlphaValue = (void (*)(id, SEL, CGFloat))TVReplaceInstanceMethod(
      view, @selector(setAlphaValue:), (IMP)HSetAlphaValue);
}

@end
