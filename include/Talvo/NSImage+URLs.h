#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSImage (urls)

/** An image holding the representations of every file in `urls` that
 * loads with -initWithDefinitionContentsOfURL:, in order; nil when none
 * does. */
- (nullable instancetype)initWithContentsOfURLs:(NSArray<NSURL *> *)urls;

/** One entry {"name": file name without extension, "image": image} for
 * every URL in `urls` whose file loads, in order. The name keeps a scale
 * suffix (icon@2x.png gives "icon@2x"). Never nil. */
+ (NSArray<NSDictionary<NSString *, id> *> *)imagesWithContentsOfURLs:(NSArray<NSURL *> *)urls;

@end

NS_ASSUME_NONNULL_END
