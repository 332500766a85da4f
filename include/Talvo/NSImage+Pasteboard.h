#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSImage (pasteboard)

/** -initWithContentsOfURLs: of the file URLs on `pasteboard` whose type
 * conforms to one of +[NSImage imageTypes]; nil when there is none. */
- (nullable instancetype)initWithAllURLsOfPasteboard:(NSPasteboard *)pasteboard;

@end

NS_ASSUME_NONNULL_END
