#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

@class VXGradientCellDrawer;

/**
 * A pop-up button cell with no bezel, border or background of its own: its
 * title, its image drawn by a VXGradientCellDrawer in the control view's
 * bounds and the "arrows" artwork in an 8-point strip at the right edge.
 */
@interface VXGradientPopUpButtonCell : NSPopUpButtonCell {
  VXGradientCellDrawer *_drawer;
}

/** The inherited decoding, then a new drawer (nil stays nil). */
- (nullable instancetype)initWithCoder:(NSCoder *)coder;

/** The item's image and the arrows, through the drawer. */
- (void)drawImageWithFrame:(NSRect)cellFrame inView:(nullable NSView *)controlView;
/** Nothing. */
- (void)drawImage:(nullable NSImage *)image
        withFrame:(NSRect)frame
           inView:(nullable NSView *)controlView;
/** Nothing. */
- (void)drawBezelWithFrame:(NSRect)frame inView:(nullable NSView *)controlView;
/** Nothing. */
- (void)drawBorderAndBackgroundWithFrame:(NSRect)cellFrame inView:(nullable NSView *)controlView;

@end

NS_ASSUME_NONNULL_END
