#import "gallery/GalleryPage.h"

/** Multi-resolution images: icon.png, icon@2x.png and icon@3x.png in one
 * directory assembled into one image, the representation chosen for
 * several side lengths, and a Lanczos downscale beside its source. */
@interface ImageLoadingPage : NSObject <GalleryPage>
@end
