#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSImage (trim)

/** A new image of the receiver's size whose representations are the
 * receiver's, in order, each trimmed to its own filled rectangle
 * (representations that are not bitmaps are rendered first). A
 * representation with no filled pixel is left out. The receiver is not
 * changed. */
- (NSImage *)imageByTrimmingTransparentPixels;

@end

NS_ASSUME_NONNULL_END
