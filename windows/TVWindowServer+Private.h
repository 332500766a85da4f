// The window server's description and picture of one window, through the
// platform's CGWindowList calls.
#pragma once

#import <AppKit/AppKit.h>

// The window's bounds in window-server space (origin at the top-left);
// NO when the window server does not describe it.
BOOL TVWindowServerBounds(NSInteger windowNumber, NSRect *bounds);

// The picture of the window within `bounds` (window-server space), with
// its shadow area or without its framing. Owned by the caller; NULL when
// there is none.
CGImageRef TVWindowServerCreateImage(NSInteger windowNumber, NSRect bounds, BOOL withShadow);
