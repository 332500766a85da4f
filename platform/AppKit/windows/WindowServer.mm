// The X server's view of this process's windows: stacking order from the
// root window's children (no window manager reparents them), restacking
// through GNUstep's server, and the back buffer behind each window's stored
// graphics state.

#import "platform/AppKit/windows/TVWindowServer.h"

#import <GNUstepGUI/GSDisplayServer.h>

#define BOOL XWINDOWSBOOL
#include <X11/Xlib.h>
#undef BOOL
#include <cairo-xlib.h>

#include <unordered_map>

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

@interface NSObject (TalvoWindowServerOrdering)
- (void)orderwindow:(int)op :(int)otherWin :(int)win;
+ (id)getObjectForKey:(int)key;
@end

namespace {

// GNUstep's windows that are not the application's own.
bool IsBackendWindow(NSWindow *window) {
  static Class iconWindow = NSClassFromString(@"NSIconWindow");
  static Class cacheWindow = NSClassFromString(@"GSCacheW");
  return (iconWindow != Nil && [window isKindOfClass:iconWindow]) ||
         (cacheWindow != Nil && [window isKindOfClass:cacheWindow]);
}

}  // namespace

NSArray *TVWindowsInStackingOrder(void) {
  NSMutableArray *ordered = [NSMutableArray array];
  GSDisplayServer *server = GSCurrentServer();
  Display *display = server != nil ? (Display *)[server serverDevice] : NULL;
  if (display == NULL) {
    return ordered;
  }
  std::unordered_map<Window, NSWindow *> byX;
  for (NSWindow *window in [NSApp windows]) {
    if ([window isVisible] && [window windowNumber] > 0 && !IsBackendWindow(window)) {
      byX[(Window)(uintptr_t)[window windowRef]] = window;
    }
  }
  if (byX.empty()) {
    return ordered;
  }
  Window root = 0, parent = 0, *children = NULL;
  unsigned int count = 0;
  if (XQueryTree(display, DefaultRootWindow(display), &root, &parent, &children, &count) == 0) {
    return ordered;
  }
  for (unsigned int i = 0; i < count; i++) {
    auto found = byX.find(children[i]);
    if (found != byX.end()) {
      [ordered addObject:found->second];
    }
  }
  if (children != NULL) {
    XFree(children);
  }
  return ordered;
}

void TVOrderWindowAbove(NSWindow *window, NSWindow *lower) {
  GSDisplayServer *server = GSServerForWindow(window);
  if (server == nil || [window windowNumber] <= 0 || [lower windowNumber] <= 0) {
    return;
  }
  // An explicit sibling keeps the server from its "below the focus window"
  // placement.
  [(id)server orderwindow:NSWindowAbove :(int)[lower windowNumber] :(int)[window windowNumber]];
}

cairo_surface_t *TVWindowBackBuffer(NSWindow *window, int *width, int *height) {
  if (width != NULL) *width = 0;
  if (height != NULL) *height = 0;
  if (window == nil || [window windowNumber] <= 0 || [window gState] <= 0) {
    return NULL;
  }
  static Class contextClass = NSClassFromString(@"GSContext");
  id gstate = [contextClass getObjectForKey:(int)[window gState]];
  if (gstate == nil) {
    return NULL;
  }
  static ptrdiff_t ctOffset = -2;
  if (ctOffset == -2) {
    Ivar ivar = class_getInstanceVariable([gstate class], "_ct");
    const char *type = ivar != NULL ? ivar_getTypeEncoding(ivar) : NULL;
    ctOffset = (type != NULL && strncmp(type, "^{_cairo", 8) == 0) ? ivar_getOffset(ivar) : -1;
  }
  if (ctOffset < 0) {
    return NULL;
  }
  cairo_t *ct = *(cairo_t **)((char *)gstate + ctOffset);
  if (ct == NULL) {
    return NULL;
  }
  cairo_surface_t *target = cairo_get_target(ct);
  if (target == NULL || cairo_surface_status(target) != CAIRO_STATUS_SUCCESS) {
    return NULL;
  }
  int w = 0, h = 0;
  switch (cairo_surface_get_type(target)) {
    case CAIRO_SURFACE_TYPE_XLIB:
      w = cairo_xlib_surface_get_width(target);
      h = cairo_xlib_surface_get_height(target);
      break;
    case CAIRO_SURFACE_TYPE_IMAGE:
      w = cairo_image_surface_get_width(target);
      h = cairo_image_surface_get_height(target);
      break;
    default:
      return NULL;
  }
  if (w <= 0 || h <= 0) {
    return NULL;
  }
  if (width != NULL) *width = w;
  if (height != NULL) *height = h;
  return target;
}

NSRect TVWindowServerBounds(NSWindow *window) {
  NSRect frame = [window frame];
  NSArray *screens = [NSScreen screens];
  CGFloat top = [screens count] > 0 ? NSMaxY([[screens objectAtIndex:0] frame]) : 0;
  return NSMakeRect(frame.origin.x, top - NSMaxY(frame), frame.size.width, frame.size.height);
}
