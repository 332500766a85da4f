/*
 * -[NSBundle imageForResource:] for GNUstep 0.29.
 *
 * The name is looked up with pathForImageResource: (any image type GNUstep
 * reads; an extension in the name is honoured). A file "name@2x.ext" beside
 * it joins as a second representation of the same point size, so that
 * drawing at a backing scale of 2 can pick it. A name ending in "Template"
 * gives a template image. Missing or unreadable files give nil; nothing
 * raises. The image is a new one each time (not cached under a name, unlike
 * +[NSImage imageNamed:], which never looks in a framework's bundle here).
 * Not covered: asset catalogs, @3x, localized image variants.
 */
#ifndef TALVO_PLATFORM_NSBUNDLE_IMAGES_H
#define TALVO_PLATFORM_NSBUNDLE_IMAGES_H

#import <AppKit/NSImage.h>
#import <Foundation/NSBundle.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSBundle (TalvoImages)

/** The image resource `name` of the bundle (autoreleased), or nil. */
- (nullable NSImage *)imageForResource:(nullable NSString *)name;

@end

NS_ASSUME_NONNULL_END

#endif
