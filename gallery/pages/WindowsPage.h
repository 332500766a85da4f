#import "gallery/GalleryPage.h"

/** The custom window frames, window pictures with and without their
 * shadow, the rects a zoom and a bounce pass through, and the shake path;
 * buttons run each effect on a demo window. */
@interface WindowsPage : NSObject <GalleryPage>
@end
