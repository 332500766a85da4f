#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

/** A button cell whose title and image fade to 30 % opacity while its
 * window is not the key window (the bezel keeps full opacity). It keeps a
 * mouse-over flag for subclasses and whoever draws it; its own drawing does
 * not read it. */
@interface VXButtonCell : NSButtonCell {
  BOOL _mouseAbove;
}

/** The pointer is over the control; no redisplay of its own. */
@property(nonatomic, getter=isMouseAbove) BOOL mouseAbove;

/** The inherited interior at alpha 1.0 in the key window, else 0.3. */
- (void)drawInteriorWithFrame:(NSRect)cellFrame inView:(NSView *)controlView;

@end

NS_ASSUME_NONNULL_END
