// Conversions between AppKit's rects and the window geometry core.
#pragma once

#import <AppKit/AppKit.h>

#include "core/windows/WindowGeometry.hpp"

static inline talvo::windows::Rect TVCoreRect(NSRect r) {
  return {r.origin.x, r.origin.y, r.size.width, r.size.height};
}

static inline NSRect TVNSRect(const talvo::windows::Rect &r) {
  return NSMakeRect(r.x, r.y, r.width, r.height);
}

static inline BOOL TVRectIsFinite(NSRect r) {
  return isfinite(r.origin.x) && isfinite(r.origin.y) && isfinite(r.size.width) &&
         isfinite(r.size.height);
}
