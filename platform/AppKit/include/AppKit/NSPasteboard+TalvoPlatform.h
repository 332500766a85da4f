/*
 * The object-based pasteboard API GNUstep 0.29 lacks, for URLs and strings.
 * GNUstep has no pasteboard items: objects are kept as lists under
 * pasteboard types. URLs are written under NSPasteboardTypeURL (a property
 * list of absolute strings), their file paths also under
 * NSFilenamesPboardType and the first URL under NSURLPboardType, so that
 * GNUstep's own readers see them; strings under NSStringPboardType (the
 * last one written wins there).
 * Reading NSURL (or a subclass) takes the URL list, else the file names,
 * else GNUstep's URL type; reading NSString the string type. The result
 * holds the objects of the first class in the array that finds any, and is
 * empty when none does. Options: NSPasteboardURLReadingFileURLsOnlyKey and
 * NSPasteboardURLReadingContentsConformToTypesKey (file URLs whose type
 * identifier, from the file name, conforms to one of the listed types).
 * Not covered: other classes (NSImage, NSColor, NSAttributedString),
 * NSPasteboardItem, custom NSPasteboardWriting/Reading classes.
 */
#import <AppKit/NSPasteboard.h>

NS_ASSUME_NONNULL_BEGIN

/** "public.url" and "public.file-url". */
APPKIT_EXPORT NSString *const NSPasteboardTypeURL;
APPKIT_EXPORT NSString *const NSPasteboardTypeFileURL;

/** Option keys of -readObjectsForClasses:options:. */
APPKIT_EXPORT NSString *const NSPasteboardURLReadingFileURLsOnlyKey;
APPKIT_EXPORT NSString *const NSPasteboardURLReadingContentsConformToTypesKey;

@interface NSPasteboard (TalvoPlatform)

/** Empties the pasteboard; returns the new change count. */
- (NSInteger)clearContents;
/** Adds the URLs and strings in `objects` to the pasteboard; NO (and
 * nothing written) when an object is of another class. */
- (BOOL)writeObjects:(NSArray *)objects;
/** The URLs or strings on the pasteboard (see above); nil only for a
 * `classArray` that is not an array. */
- (nullable NSArray *)readObjectsForClasses:(NSArray<Class> *)classArray
                                    options:(nullable NSDictionary *)options;

@end

NS_ASSUME_NONNULL_END
