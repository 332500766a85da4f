#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSImage (fileSize)

/** The pixel size of the image file at `url` (not points), read from the
 * file's header without decoding pixels; the stored size, before any EXIF
 * orientation. NSZeroSize for nil, a URL that is not a file, or a file
 * whose header cannot be read. */
+ (NSSize)sizeForFileAtURL:(NSURL *)url;

@end

NS_ASSUME_NONNULL_END
