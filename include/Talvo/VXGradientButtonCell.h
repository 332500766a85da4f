#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

@class VXGradientCellDrawer;

/**
 * A push or toggle button cell whose icon is drawn by a
 * VXGradientCellDrawer, centred in the control view's bounds: gray (or
 * light gray) when off, blue when on for a cell that shows its state by
 * contents alone, washed dark under the pointer and when pressed, faded in
 * a window that is not main or has a sheet.
 */
@interface VXGradientButtonCell : NSButtonCell {
  VXGradientCellDrawer *_drawer;
  BOOL _mouseAbove;
  int _gradientType;
}

/** The pointer is over the control; set from outside (VXButton), no
 * redisplay of its own. */
@property(nonatomic, getter=isMouseAbove) BOOL mouseAbove;
/** 0: the gray preset; any other value: the light gray preset. */
@property(nonatomic) int gradientType;

/** The inherited decoding, then a new drawer (nil stays nil). */
- (nullable instancetype)initWithCoder:(NSCoder *)coder;

/** Draws `image` through the drawer in the control view's bounds; the frame
 * is not used. */
- (void)drawImage:(nullable NSImage *)image
        withFrame:(NSRect)frame
           inView:(nullable NSView *)controlView;

@end

NS_ASSUME_NONNULL_END
