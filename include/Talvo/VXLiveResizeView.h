#import <AppKit/AppKit.h>

#import <Talvo/TalvoExport.h>

NS_ASSUME_NONNULL_BEGIN

/** Posted on the default center by a VXLiveResizeView when a live resize
 * ends, with the view as object and no user information. Its value is
 * @"VXViewDidEndLiveResize". */
TALVO_EXTERN NSString *const VXLiveResizeViewDidEndLiveResize;

/** A plain view that announces the end of each live resize. */
@interface VXLiveResizeView : NSView

/** Lets NSView finish the live resize, then posts
 * VXLiveResizeViewDidEndLiveResize once. */
- (void)viewDidEndLiveResize;

@end

NS_ASSUME_NONNULL_END
