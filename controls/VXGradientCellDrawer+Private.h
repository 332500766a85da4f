// The gradient cell drawer's route switch, for tests that compare the two.
#import <Talvo/VXGradientCellDrawer.h>

NS_ASSUME_NONNULL_BEGIN

@interface VXGradientCellDrawer (Private)
/** YES (the default): icons are painted in an offscreen bitmap and laid in
 * with one image where the context allows it; NO: every step is drawn
 * straight into the context. */
+ (void)_setPaintsOffscreenForTesting:(BOOL)offscreen;
@end

NS_ASSUME_NONNULL_END
