#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSImage (urlDefinition)

/** The image in the file at `url`, its bitmap representations sized by the
 * file's scale suffix: a base name (the last path component without its
 * extension) ending in "@<digit>x", in either case, gives each bitmap
 * representation a point size of its pixel size divided by the digit
 * (icon@2x.png of 64 x 64 pixels is 32 x 32 points). Other representations
 * and files without the suffix keep the sizes the platform gives them.
 * A suffix of "@0x" (or any digit whose value is not a positive number)
 * is treated as no suffix: the sizes are left alone rather than made
 * infinite.
 * Only file URLs are read (no network access). Returns nil, without
 * raising, for nil, a URL of another scheme, a missing, empty, unreadable,
 * truncated or corrupt file, a directory, or a file that is no image; and
 * for a file whose header declares more than 2^28 pixels (a GiB of RGBA),
 * which is not decoded at all. */
- (nullable instancetype)initWithDefinitionContentsOfURL:(NSURL *)url;

@end

NS_ASSUME_NONNULL_END
