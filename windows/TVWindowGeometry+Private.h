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

// Window frames are in points on AppKit; GNUstep at a scale factor above 1
// keeps them in device pixels (its userSpaceScaleFactor per point, 1 on
// AppKit). Shadow insets and view geometry are in points.
static inline double TVFrameUnitsPerPoint(NSWindow *window) {
  double scale = window != nil ? [window userSpaceScaleFactor] : 1.0;
  return (isfinite(scale) && scale > 0.0) ? scale : 1.0;
}

static inline NSRect TVRectInPoints(NSWindow *window, NSRect rect) {
  double scale = TVFrameUnitsPerPoint(window);
  return NSMakeRect(rect.origin.x / scale, rect.origin.y / scale, rect.size.width / scale,
                    rect.size.height / scale);
}
