#import "gallery/GalleryPage.h"

/** Popover outlines at several sizes and arrow places, each with the shape
 * one offset inside it. */
@interface PopoverPage : NSObject <GalleryPage>
@end
