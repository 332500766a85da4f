/*
 * The uniform type identifiers of the image formats NSImage can load on
 * this platform, derived from GNUstep's file extensions ("png" gives
 * "public.png"); extensions with no known identifier, and formats that
 * are not pictures (GNUstep lists what its filter services convert, text
 * included), are left out. PDF counts as an image type, as on macOS.
 */
#import <AppKit/NSImage.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSImage (TalvoImageTypes)

/** The identifiers of every format GNUstep's image representations read,
 * filter services included. */
+ (NSArray<NSString *> *)imageTypes;
/** The identifiers of the formats read without a filter service. */
+ (NSArray<NSString *> *)imageUnfilteredTypes;

@end

NS_ASSUME_NONNULL_END
