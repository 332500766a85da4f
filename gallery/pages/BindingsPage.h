#import "gallery/GalleryPage.h"

/** A model bound two-way to a slider and a text field through the
 * observation center; the value transformers and the localizer at work. */
@interface BindingsPage : NSObject <GalleryPage>
@end
