#import "gallery/GalleryPage.h"

/** Three panels with autosaved widths, a drawn divider, push and pop at both
 * edges. */
@interface SplitViewPage : NSObject <GalleryPage>
@end
