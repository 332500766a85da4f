#import "gallery/GalleryPage.h"

/** Checkerboards, lighter and darker ladders, the selection colour, the
 * preset gradients in both looks and reflected gradients. */
@interface ColorsPage : NSObject <GalleryPage>
@end
