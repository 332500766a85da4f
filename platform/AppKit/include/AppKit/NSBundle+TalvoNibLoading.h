/*
 * -[NSBundle loadNibNamed:owner:topLevelObjects:], which GNUstep 0.29 lacks
 * (it has the older class methods and NSNib).
 *
 * Loads the nib, xib or gorm file of that name from the bundle through
 * GNUstep's NSNib, connecting it to `owner`. A nil owner is allowed, as on
 * AppKit: connections to the file's owner then go nowhere (GNUstep's loader
 * raises on nil). NO for a name that is not a string, a missing file or a
 * loader that fails or raises; nothing raises.
 *
 * Ownership is GNUstep's loader's, as with AppKit's older loader, not the
 * autoreleased objects of AppKit 10.8: each top-level object comes with a
 * reference the caller releases when done with it. Without
 * `topLevelObjects` they stay loaded, as the older loader left them (the
 * owner reaches them through its outlets).
 *
 * Not covered: AppKit's releasing of the top-level objects.
 */
#ifndef TALVO_PLATFORM_NSBUNDLE_NIB_LOADING_H
#define TALVO_PLATFORM_NSBUNDLE_NIB_LOADING_H

#import <AppKit/NSNibLoading.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSBundle (TalvoNibLoading)
- (BOOL)loadNibNamed:(NSString *)nibName
               owner:(nullable id)owner
     topLevelObjects:(NSArray *_Nullable *_Nullable)topLevelObjects;
@end

NS_ASSUME_NONNULL_END

#endif
