#import "gallery/GalleryPage.h"

/** Stacks along both axes, a hidden arranged view skipped, inset pinning. */
@interface StackViewPage : NSObject <GalleryPage>
@end
