/*
 * NSEvent API that GNUstep 0.29 lacks: the modern constant names and local
 * event monitors.
 *
 * Local monitors see exactly the events that pass through
 * -[NSApplication sendEvent:] (as on macOS: events that a tracking loop
 * takes from the queue itself never reach them). Monitors run in the order
 * they were added; each receives what the previous one returned; nil
 * swallows the event. A monitor may be removed at any time, from inside a
 * handler too.
 *
 * Not covered: global monitors (events sent to other applications),
 * addLocalMonitorForEventsMatchingMask: on threads other than the main one.
 */
#ifndef TALVO_PLATFORM_NSEVENT_H
#define TALVO_PLATFORM_NSEVENT_H

#import <AppKit/NSEvent.h>

NS_ASSUME_NONNULL_BEGIN

enum {
  NSEventTypeLeftMouseDown = NSLeftMouseDown,
  NSEventTypeLeftMouseUp = NSLeftMouseUp,
  NSEventTypeRightMouseDown = NSRightMouseDown,
  NSEventTypeRightMouseUp = NSRightMouseUp,
  NSEventTypeMouseMoved = NSMouseMoved,
  NSEventTypeLeftMouseDragged = NSLeftMouseDragged,
  NSEventTypeRightMouseDragged = NSRightMouseDragged,
  NSEventTypeMouseEntered = NSMouseEntered,
  NSEventTypeMouseExited = NSMouseExited,
  NSEventTypeKeyDown = NSKeyDown,
  NSEventTypeKeyUp = NSKeyUp,
  NSEventTypeFlagsChanged = NSFlagsChanged,
  NSEventTypeAppKitDefined = NSAppKitDefined,
  NSEventTypeSystemDefined = NSSystemDefined,
  NSEventTypeApplicationDefined = NSApplicationDefined,
  NSEventTypePeriodic = NSPeriodic,
  NSEventTypeCursorUpdate = NSCursorUpdate,
  NSEventTypeScrollWheel = NSScrollWheel,
  NSEventTypeOtherMouseDown = NSOtherMouseDown,
  NSEventTypeOtherMouseUp = NSOtherMouseUp,
  NSEventTypeOtherMouseDragged = NSOtherMouseDragged,
};

static const NSEventMask NSEventMaskLeftMouseDown = 1ull << NSLeftMouseDown;
static const NSEventMask NSEventMaskLeftMouseUp = 1ull << NSLeftMouseUp;
static const NSEventMask NSEventMaskRightMouseDown = 1ull << NSRightMouseDown;
static const NSEventMask NSEventMaskRightMouseUp = 1ull << NSRightMouseUp;
static const NSEventMask NSEventMaskMouseMoved = 1ull << NSMouseMoved;
static const NSEventMask NSEventMaskLeftMouseDragged = 1ull << NSLeftMouseDragged;
static const NSEventMask NSEventMaskRightMouseDragged = 1ull << NSRightMouseDragged;
static const NSEventMask NSEventMaskMouseEntered = 1ull << NSMouseEntered;
static const NSEventMask NSEventMaskMouseExited = 1ull << NSMouseExited;
static const NSEventMask NSEventMaskKeyDown = 1ull << NSKeyDown;
static const NSEventMask NSEventMaskKeyUp = 1ull << NSKeyUp;
static const NSEventMask NSEventMaskFlagsChanged = 1ull << NSFlagsChanged;
static const NSEventMask NSEventMaskAppKitDefined = 1ull << NSAppKitDefined;
static const NSEventMask NSEventMaskApplicationDefined = 1ull << NSApplicationDefined;
static const NSEventMask NSEventMaskPeriodic = 1ull << NSPeriodic;
static const NSEventMask NSEventMaskScrollWheel = 1ull << NSScrollWheel;
static const NSEventMask NSEventMaskOtherMouseDown = 1ull << NSOtherMouseDown;
static const NSEventMask NSEventMaskOtherMouseUp = 1ull << NSOtherMouseUp;
static const NSEventMask NSEventMaskOtherMouseDragged = 1ull << NSOtherMouseDragged;
static const NSEventMask NSEventMaskAny = ~0ull;

static const NSEventModifierFlags NSEventModifierFlagCapsLock = NSAlphaShiftKeyMask;
static const NSEventModifierFlags NSEventModifierFlagShift = NSShiftKeyMask;
static const NSEventModifierFlags NSEventModifierFlagControl = NSControlKeyMask;
static const NSEventModifierFlags NSEventModifierFlagOption = NSAlternateKeyMask;
static const NSEventModifierFlags NSEventModifierFlagCommand = NSCommandKeyMask;
static const NSEventModifierFlags NSEventModifierFlagNumericPad = NSNumericPadKeyMask;
static const NSEventModifierFlags NSEventModifierFlagHelp = NSHelpKeyMask;
static const NSEventModifierFlags NSEventModifierFlagFunction = NSFunctionKeyMask;
static const NSEventModifierFlags NSEventModifierFlagDeviceIndependentFlagsMask =
    NSDeviceIndependentModifierFlagsMask;

@interface NSEvent (TalvoPlatformMonitors)

/** Installs a handler that sees every event of a type in `mask` before
 * NSApplication dispatches it. Returns the monitor (autoreleased; the
 * application keeps it installed until removeMonitor:), or nil for a nil
 * handler. */
+ (nullable id)addLocalMonitorForEventsMatchingMask:(NSEventMask)mask
                                            handler:(NSEvent *_Nullable (^)(NSEvent *event))block;

/** Removes a monitor returned by addLocalMonitorForEventsMatchingMask:.
 * Anything else, nil included, is ignored. */
+ (void)removeMonitor:(nullable id)eventMonitor;

@end

NS_ASSUME_NONNULL_END

#endif
