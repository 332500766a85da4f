// The drawer of Talvo's gradient cells, for tests and the gallery.
#import <Talvo/VXGradientButtonCell.h>
#import <Talvo/VXGradientCellDrawer.h>
#import <Talvo/VXGradientPopUpButtonCell.h>

NS_ASSUME_NONNULL_BEGIN

@interface VXGradientButtonCell (Private)
- (nullable VXGradientCellDrawer *)_drawer;
@end

@interface VXGradientPopUpButtonCell (Private)
- (nullable VXGradientCellDrawer *)_drawer;
/** The "arrows" artwork, read afresh; nil when it is missing. */
+ (nullable NSImage *)_newArrowsImage;
@end

NS_ASSUME_NONNULL_END
