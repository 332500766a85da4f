#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

/** A transparent window (clear background, not opaque) with its title and
 * standard buttons hidden: the base of windows that draw their own frame.
 *
 * On GNUstep nothing sends -drawRect: to a window. Talvo's frame views
 * reach it instead: the frame view that VXVisualEffectWindow installs for
 * the older look forwards its -drawRect: to its window's -drawRect:, so a
 * window subclass draws its frame the way it would on AppKit's own hosts.
 * Frame views that draw for themselves (the bottom pop-up's) do not
 * forward. */
@interface VXCustomWindow : NSWindow {
  NSView *_childContentView;
  NSView *_containerView;
}

/** The platform's own frame of the window: the superview of the current
 * content view (nil when there is none). */
@property(nonatomic, readonly, nullable) NSView *frameView;
/** Not assigned by the toolkit; nil. */
@property(atomic, retain, readonly, nullable) NSView *childContentView;
/** Not assigned by the toolkit; nil. */
@property(atomic, retain, readonly, nullable) NSView *containerView;

/** The receiver itself, so that view-style drawing code can ask a window. */
- (NSWindow *)window;
/** The bounds of frameView; the zero rect without one. */
- (NSRect)bounds;

@end

NS_ASSUME_NONNULL_END
