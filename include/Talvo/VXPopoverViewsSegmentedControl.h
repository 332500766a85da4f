#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

@class VXBottomPopupWindow;

/**
 * A segmented control whose segments may each carry an accessory view. A
 * click on a segment with one shows the view in a borderless popup that
 * grows out of the point under the segment's centre and hangs below the
 * control, as a child of the control's window. The popup goes away on a
 * click anywhere else in the application (not in the popup, not in a
 * colour panel), when the control's window resigns key (unless the key
 * window is the colour panel), is resized or is miniaturised, and when
 * another segment is clicked (which shows that segment's view instead).
 *
 * The popup window is made in awakeFromNib (or at the first showing for a
 * control made in code) and reused; the control is its delegate. While a
 * popup is shown an event monitor and a window observer hold the control.
 */
@interface VXPopoverViewsSegmentedControl : NSSegmentedControl <NSWindowDelegate> {
  NSMutableDictionary *accessoryViews;
  VXBottomPopupWindow *popoverWindow;
  id localMouseDownEventMonitor;
  id lostFocusObserver;
}

/** Makes the popup window, the control its delegate. The inherited
 * awakeFromNib is not called. */
- (void)awakeFromNib;
/** Stores `view` for `segment` (any number); nil removes it. */
- (void)setAccessoryView:(nullable NSView *)view forSegment:(NSInteger)segment;
/** The view stored for `segment`, or nil. */
- (nullable NSView *)accessoryViewForSegment:(NSInteger)segment;
/** The inherited click handling, then showPopoverView. */
- (void)mouseDown:(NSEvent *)event;
/** Dismisses any popup, then shows the selected segment's view, if any, in
 * a popup of the view's frame size. Other segments' views that earlier shows
 * left inside the popup are removed from it first. */
- (void)showPopoverView;
/** Hides the popup and stops watching clicks and the window; harmless when
 * nothing is shown. */
- (void)dismissPopoverView;

@end

NS_ASSUME_NONNULL_END
