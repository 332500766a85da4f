#import "gallery/GalleryPage.h"

/** The controls and cells: the gradient drawer's states in both looks, the
 * gradient, tab-bar and pop-up cells, the flat slider at several values,
 * the small views, hover buttons and the popover segmented control with its
 * popup open. */
@interface ControlsPage : NSObject <GalleryPage>
@end
