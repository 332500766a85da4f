#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

/**
 * A button that tells its cell whether the pointer is over it
 * (`setMouseAbove:`, answered by VXButtonCell and the gradient cells) and
 * redraws when its window becomes or resigns key. Its cell is a
 * VXButtonCell unless an archive says otherwise.
 */
@interface VXButton : NSButton {
  NSTrackingArea *_trackingArea;
  NSTrackingRectTag _trackingTag;
}

/** VXButtonCell. */
+ (Class)cellClass;
/** The cell's mouseAbove becomes YES; the button redraws. */
- (void)mouseEntered:(NSEvent *)event;
/** The cell's mouseAbove becomes NO; the button redraws. */
- (void)mouseExited:(NSEvent *)event;
/** Tracks the pointer over the current bounds (the rectangle tracked
 * before is given up). */
- (void)updateTrackingAreas;
/** Watches the new window's key status. */
- (void)viewDidMoveToWindow;

@end

NS_ASSUME_NONNULL_END
