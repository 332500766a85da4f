/*
 * A window-server stand-in for GNUstep under X11 without a window manager:
 * the window list and pictures of windows, for this process's own windows.
 *
 * A CGWindowID is the window's windowNumber. Window arrays passed in may
 * hold CFNumbers (NSNumbers) or raw CGWindowID values stored as pointers
 * (an NSArray subclass that does not retain them; this platform's
 * CFArrayCreate retains its values, so raw ids must not go through it);
 * arrays given back hold CFNumbers. Descriptions are NSDictionaries with these keys:
 * kCGWindowNumber, kCGWindowBounds (a rect dictionary, in window-server
 * coordinates: origin at the top-left of the main screen, y down, in the
 * units of -[NSWindow frame]), kCGWindowLayer (the window level),
 * kCGWindowAlpha, kCGWindowIsOnscreen (always present, true or false),
 * kCGWindowStoreType, kCGWindowSharingState, kCGWindowOwnerPID,
 * kCGWindowName (when titled) and kCGWindowOwnerName. Lists run front to
 * back in the X stacking order.
 *
 * Pictures come from the window's own back buffer, so a covered window is
 * captured whole. kCGWindowImageBoundsIgnoreFraming gives the bare window
 * (the part of it inside the bounds); kCGWindowImageDefault gives it
 * inside a transparent margin as wide as the screen bounds reach beyond
 * the window, with a drawn soft shadow there when the window hasShadow
 * (there is no system shadow to copy): for a titled window it spreads 42
 * points and falls 8 points down, for any other 17 and 4 (the reach of
 * macOS's document-window and plain shadows); 45% black at its densest,
 * shaped like the frame for an opaque window and like its drawn pixels
 * otherwise. CGRectNull bounds take the windows with that shadow's reach. The pixel size is the backing's plus
 * whole pixels of margin, never bounds times a scale; under GNUstep's
 * -GSScaleFactor 2 window frames are already in device pixels, so a unit
 * of the bounds is one pixel there.
 * Images are premultiplied BGRA (32-bit little-endian, alpha first) in
 * device RGB. An ordered-out, deferred or unknown window gives NULL.
 *
 * Not covered: other processes' windows and the desktop, the screen
 * bounds as a crop of the composed screen (only the windows asked for are
 * drawn, the first of them uppermost), kCGWindowImageOnlyShadows,
 * kCGWindowImageShouldBeOpaque, kCGWindowMemoryUsage, the
 * kCGWindowListOptionOnScreenAboveWindow/BelowWindow options of
 * CGWindowListCreateImage (it takes the window alone).
 */
#ifndef TALVO_CGWINDOW_H
#define TALVO_CGWINDOW_H

#include <CoreGraphics/CGBase.h>
#include <CoreGraphics/CGGeometry.h>
#include <CoreGraphics/CGImage.h>

typedef uint32_t CGWindowID;
#define kCGNullWindowID ((CGWindowID)0)

typedef uint32_t CGWindowListOption;
enum {
  kCGWindowListOptionAll = 0,
  kCGWindowListOptionOnScreenOnly = (1 << 0),
  kCGWindowListOptionOnScreenAboveWindow = (1 << 1),
  kCGWindowListOptionOnScreenBelowWindow = (1 << 2),
  kCGWindowListOptionIncludingWindow = (1 << 3),
  kCGWindowListExcludeDesktopElements = (1 << 4)
};

typedef uint32_t CGWindowImageOption;
enum {
  kCGWindowImageDefault = 0,
  kCGWindowImageBoundsIgnoreFraming = (1 << 0),
  kCGWindowImageShouldBeOpaque = (1 << 1),
  kCGWindowImageOnlyShadows = (1 << 2),
  kCGWindowImageBestResolution = (1 << 3),
  kCGWindowImageNominalResolution = (1 << 4)
};

enum { kCGWindowSharingNone = 0, kCGWindowSharingReadOnly = 1, kCGWindowSharingReadWrite = 2 };
enum { kCGBackingStoreRetained = 0, kCGBackingStoreNonretained = 1, kCGBackingStoreBuffered = 2 };

CG_EXTERN const CFStringRef kCGWindowNumber;
CG_EXTERN const CFStringRef kCGWindowStoreType;
CG_EXTERN const CFStringRef kCGWindowLayer;
CG_EXTERN const CFStringRef kCGWindowBounds;
CG_EXTERN const CFStringRef kCGWindowSharingState;
CG_EXTERN const CFStringRef kCGWindowAlpha;
CG_EXTERN const CFStringRef kCGWindowOwnerPID;
CG_EXTERN const CFStringRef kCGWindowMemoryUsage;
CG_EXTERN const CFStringRef kCGWindowOwnerName;
CG_EXTERN const CFStringRef kCGWindowName;
CG_EXTERN const CFStringRef kCGWindowIsOnscreen;

/** The numbers of this process's windows that `option` selects, front to
 * back; `relativeToWindow` anchors the above/below options. */
CG_EXTERN CFArrayRef CGWindowListCreate(CGWindowListOption option, CGWindowID relativeToWindow);
/** Descriptions of the windows that `option` selects, front to back. */
CG_EXTERN CFArrayRef CGWindowListCopyWindowInfo(CGWindowListOption option,
                                                CGWindowID relativeToWindow);
/** One description per known window of `windowArray`, in its order;
 * unknown numbers are left out. NULL for a NULL or non-array argument. */
CG_EXTERN CFArrayRef CGWindowListCreateDescriptionFromArray(CFArrayRef windowArray);
/** A picture of the windows of `windowArray` (see above). NULL for a null,
 * empty or non-finite rect, no known on-screen window, or a bad array. */
CG_EXTERN CGImageRef CGWindowListCreateImageFromArray(CGRect screenBounds, CFArrayRef windowArray,
                                                      CGWindowImageOption imageOption);
/** The same for one window; only kCGWindowListOptionIncludingWindow is
 * honoured. */
CG_EXTERN CGImageRef CGWindowListCreateImage(CGRect screenBounds, CGWindowListOption listOption,
                                             CGWindowID windowID, CGWindowImageOption imageOption);

// Dictionary representations of geometry (keys "X", "Y", "Width",
// "Height"), as Quartz writes them. Create returns a +1 NSDictionary; the
// readers answer false and leave the output alone for a malformed one.
CG_EXTERN CFDictionaryRef CGRectCreateDictionaryRepresentation(CGRect rect);
CG_EXTERN bool CGRectMakeWithDictionaryRepresentation(CFDictionaryRef dict, CGRect *rect);
CG_EXTERN CFDictionaryRef CGPointCreateDictionaryRepresentation(CGPoint point);
CG_EXTERN bool CGPointMakeWithDictionaryRepresentation(CFDictionaryRef dict, CGPoint *point);
CG_EXTERN CFDictionaryRef CGSizeCreateDictionaryRepresentation(CGSize size);
CG_EXTERN bool CGSizeMakeWithDictionaryRepresentation(CFDictionaryRef dict, CGSize *size);

#endif
