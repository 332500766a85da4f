#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSImage (directory)

/** An image holding the representations of every image file directly in
 * the directory at `url` (hidden files included, subdirectories and other
 * files passed over), each loaded with -initWithDefinitionContentsOfURL:,
 * in the file system's listing order. nil when there is none, or when the
 * directory cannot be listed. */
- (nullable instancetype)initWithContentsOfDirectoryAtURL:(NSURL *)url;

/** One entry {"name": directory name without extension, "image": image}
 * for every directory anywhere below `url` (not `url` itself) that holds
 * image files directly, in the order the directories are visited.
 * Unreadable directories are passed over. Never nil; empty when nothing
 * qualifies. */
+ (NSArray<NSDictionary<NSString *, id> *> *)imagesWithContentsOfDirectoriesAtURL:(NSURL *)url;

@end

NS_ASSUME_NONNULL_END
