#import <Talvo/VXGradientButtonCell.h>

NS_ASSUME_NONNULL_BEGIN

/**
 * A tab-bar button cell: textured-rounded, it only ever switches on (a
 * click on an on cell leaves it on; code turns it off). When on, the older
 * look draws a pressed-tab bezel: a band darkest along the middle (in the
 * main window) with soft dark edges 1 point in from each side; the newer
 * look draws no bezel.
 */
@interface VXTabBarButtonCell : VXGradientButtonCell

/** The inherited init, then the textured-rounded bezel style (11). */
- (instancetype)init;
/** Always 1 (on). */
- (NSInteger)nextState;
/** The pressed-tab bezel when on; nothing when off. */
- (void)drawBezelWithFrame:(NSRect)frame inView:(nullable NSView *)controlView;

@end

NS_ASSUME_NONNULL_END
