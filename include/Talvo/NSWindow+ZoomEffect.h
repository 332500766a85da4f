#import <AppKit/AppKit.h>

#import <Talvo/TalvoExport.h>

NS_ASSUME_NONNULL_BEGIN

/** Posted on the default center, with the window as object and no user
 * information, first thing in every zoom-in and zoom-out call. */
TALVO_EXTERN NSString *const VXWindowWillStartZoomEffect;
/** Posted when a zoom's animation has completed (for a titled window's
 * zoom-in, as its 0.1 s fade-in starts). */
TALVO_EXTERN NSString *const VXWindowDidEndZoomEffect;

/** Windows that grow out of a rect, shrink into one, or pop to the front.
 *
 * The effects never animate the window's own frame: a picture of the window
 * (with its shadow's area; the window server's, or its content drawn
 * offscreen where the window server has none, as for a window that is not
 * on screen) is shown in a transparent, screen-sized
 * animation window one level above it, scaled between the window's frame
 * and the rect over 0.2 s, and the window is swapped in or out at the right
 * moment. Rects are global screen rects. The zoom calls return before the
 * animation starts (it begins on a later turn of the main run loop); the
 * pop blocks for its 0.4 s. The window's animation behaviour is left as it
 * was. */
@interface NSWindow (ZoomEffect)

/** The global rect made relative to the origin of the window's screen
 * (unchanged for a window on no screen). */
- (NSRect)_transposedRectInScreen:(NSRect)rect;

/** Grows the window out of `rect`, then makes it key and front. */
- (void)makeKeyAndOrderFrontWithZoomEffectFromRect:(NSRect)rect;
/** Grows the window out of `rect`, then orders it front (not key). */
- (void)orderFrontWithZoomEffectFromRect:(NSRect)rect;
- (void)_orderFrontWithZoomEffectFromRect:(NSRect)rect byMakingKey:(BOOL)makeKey;

/** Shrinks the window into `rect` and orders it out. */
- (void)orderOutWithZoomEffectToRect:(NSRect)rect;
/** The same as -orderOutWithZoomEffectToRect:. */
- (void)orderOutKeyWithZoomEffectToRect:(NSRect)rect;
- (void)_orderOutWithZoomEffectToRect:(NSRect)rect key:(BOOL)key;

/** Shows the window shrinking by 5 x width / height points on each side
 * and springing back (0.2 s each way), then makes it key and front. */
- (void)makeKeyAndOrderFrontWithPopEffect;

@end

NS_ASSUME_NONNULL_END
