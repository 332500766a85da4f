/*
 * Tracking areas for GNUstep 0.29, whose NSTrackingArea is a data object
 * that no view ever consults.
 *
 * A view's tracking areas are checked against every motion event its
 * window dispatches (mouse moved and the three drag types, also while the
 * window does not accept mouse-moved events), and again after a view of the
 * window moves or is resized under a still mouse (checked when the window
 * next displays). Owners receive, as on macOS:
 * - mouseEntered: / mouseExited: for NSTrackingMouseEnteredAndExited, the
 *   event's trackingArea and userData naming the area;
 * - mouseMoved: for NSTrackingMouseMoved while the mouse is inside;
 * - cursorUpdate: for NSTrackingCursorUpdate when the mouse enters.
 * The activity options decide when an area counts: ActiveAlways always,
 * ActiveInKeyWindow only while its window is key, ActiveInActiveApp and
 * ActiveWhenFirstResponder while the application is active (and, for the
 * latter, the view is first responder); an area with none of them never
 * counts, and one that stops counting while the mouse is inside sends
 * mouseExited: at the next check. An area covers its rect within the
 * view's visible rect (nothing while the view is hidden);
 * NSTrackingInVisibleRect follows the visible rect instead of the area's
 * rect; NSTrackingAssumeInside makes the first event outside send
 * mouseExited:. Exits are sent before entries, and both before the
 * mouseMoved: the window itself dispatches. Motion during a mouse drag
 * counts only with NSTrackingEnabledDuringMouseDrag, and never sends
 * mouseMoved:. Option values are AppKit's (see NSTrackingArea.h here).
 *
 * updateTrackingAreas is sent, once per run-loop turn, to each view that
 * overrides it or has areas when it arrives in a window or its visible
 * rect moves within the window (its own frame, an ancestor's, scrolling,
 * hiding), before the areas are checked again.
 *
 * NSTrackingArea keeps its userInfo (GNUstep's initialiser dropped it).
 * Owners are not retained (as on macOS): remove an area before its owner
 * goes away. Not covered: areas of views in tracking loops that take
 * events from the queue themselves (as on macOS, they see only what the
 * loop dispatches), and mouse-entered/exited events for the window itself.
 */
#ifndef TALVO_PLATFORM_NSVIEW_TRACKING_H
#define TALVO_PLATFORM_NSVIEW_TRACKING_H

#import <AppKit/NSEvent.h>
#import <AppKit/NSTrackingArea.h>
#import <AppKit/NSView.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSView (TalvoTracking)

/** Adds `trackingArea` to the view (retained until removed or the view
 * goes). nil, or an area already added, is ignored. */
- (void)addTrackingArea:(nullable NSTrackingArea *)trackingArea;

/** Removes `trackingArea`; anything the view does not hold is ignored. */
- (void)removeTrackingArea:(nullable NSTrackingArea *)trackingArea;

/** The view's tracking areas, in the order they were added. */
- (NSArray<NSTrackingArea *> *)trackingAreas;

/** Sent when the view's geometry or window changed; subclasses rebuild
 * their areas here and call super. The default does nothing. */
- (void)updateTrackingAreas;

@end

@interface NSEvent (TalvoTracking)

/** The tracking area of a mouse-entered, mouse-exited or cursor-update
 * event sent for an area; nil for any other event. */
- (nullable NSTrackingArea *)trackingArea;

@end

NS_ASSUME_NONNULL_END

#endif
