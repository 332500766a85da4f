#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

/** How far a window's shadow reaches, and pictures of a window.
 *
 * The reach is fixed per kind of window: titled windows (top -34, left -42,
 * bottom -50, right -42 points) and all others (-13, -17, -21, -17);
 * negative values lie outside the frame. */
@interface NSWindow (image)

/** The shadow's reach for the receiver's style mask. */
@property(nonatomic, readonly) NSEdgeInsets shadowEdgeInsets;

/** `frame` grown by shadowEdgeInsets. `flipped` names where the origin
 * lies: YES for AppKit screen rects (bottom-left, the bottom inset applies
 * there), NO for window-server rects (top-left, the top inset). */
- (NSRect)shadowedFrame:(NSRect)frame flipped:(BOOL)flipped;

/** As -shadowedFrame:flipped: for a window shown at `frame` whose shadow
 * holds at `scaledFrame`: the insets are scaled by frame's size over
 * scaledFrame's (a half-size window has half the reach). */
- (NSRect)shadowedFrame:(NSRect)frame fromScaledFrame:(NSRect)scaledFrame flipped:(BOOL)flipped;

/** The window's current picture from the window server (autoreleased),
 * sized in points: with the area of its shadow around it when
 * `captureShadow` is YES, the frame alone when NO. nil for a window that
 * is not on screen or when the window server gives no picture at least 2
 * pixels wide. Points are pixels over the window's backing scale. */
- (nullable NSImage *)screenshotByCapturingShadow:(BOOL)captureShadow;

@end

NS_ASSUME_NONNULL_END
