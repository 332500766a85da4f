// Private to the platform layer: what the X server and GNUstep's backend
// know about this process's windows, for the window ordering hooks and the
// Core Graphics window list. There is no window manager: the root window's
// children are the stacking order.
#ifndef TALVO_PLATFORM_WINDOW_SERVER_H
#define TALVO_PLATFORM_WINDOW_SERVER_H

#import <AppKit/AppKit.h>

#include <cairo.h>

#define TV_WINDOWS_HIDDEN __attribute__((visibility("hidden")))

#ifdef __cplusplus
extern "C" {
#endif

/** This process's windows that are on screen, bottom to top; GNUstep's
 * own icon and cache windows are left out. */
TV_WINDOWS_HIDDEN NSArray *TVWindowsInStackingOrder(void);

/** Puts `window` directly above `lower` on the server. */
TV_WINDOWS_HIDDEN void TVOrderWindowAbove(NSWindow *window, NSWindow *lower);

/** The window's back buffer (what it drew, with alpha, whether covered or
 * not) and its size in pixels; NULL for a window with no buffer yet. The
 * surface belongs to the backend. */
TV_WINDOWS_HIDDEN cairo_surface_t *TVWindowBackBuffer(NSWindow *window, int *width, int *height);

/** The window's frame in window-server coordinates: origin at the top-left
 * of the main screen, y down, in the units of -frame. */
TV_WINDOWS_HIDDEN NSRect TVWindowServerBounds(NSWindow *window);

#ifdef __cplusplus
}
#endif

#endif
