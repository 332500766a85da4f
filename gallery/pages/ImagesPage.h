#import "gallery/GalleryPage.h"

/** Trimming of transparent borders, offscreen drawing at scale 2, three-part
 * cap images, aspect-fitted sizes and a colour through an image mask. */
@interface ImagesPage : NSObject <GalleryPage>
@end
