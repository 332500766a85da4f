#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSBitmapImageRep (trim)

/** A new representation of the receiver's pixels inside its filled
 * rectangle (VXGetFilledRect); its pixel size is that rectangle's size. The
 * receiver is not changed.
 * @return nil when no pixel is filled. */
- (nullable NSBitmapImageRep *)bitmapImageRepByTrimmingTransparentPixels;

@end

NS_ASSUME_NONNULL_END
