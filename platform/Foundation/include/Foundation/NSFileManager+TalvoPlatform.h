/*
 * Foundation API spelled as Apple spells it where GNUstep's spelling
 * differs. -skipDescendants is GNUstep's -skipDescendents; the URL
 * enumerators of NSFileManager+TVURLListing.m answer both.
 */
#import <Foundation/NSFileManager.h>

@interface NSDirectoryEnumerator (TalvoPlatform)
/** Does not enter the directory returned last. */
- (void)skipDescendants;
@end
