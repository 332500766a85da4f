// Template images: GNUstep's NSImage has no spare field for the mark, so a
// set of marked images is kept beside it, cleared when an image goes and
// carried over by copies.

#import <AppKit/AppKit.h>

#import "platform/objc/TVRuntime.h"

#include <unordered_set>

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

// Marked images (not retained). Main thread only, as NSImage drawing is.
static std::unordered_set<NSImage *> templateImages;

static void (*originalImageDealloc)(id, SEL) = NULL;
static id (*originalImageCopy)(id, SEL, NSZone *) = NULL;
static id (*originalImageNamed)(id, SEL, NSString *) = NULL;

static void TVImageDealloc(id image, SEL selector) {
  templateImages.erase(image);
  originalImageDealloc(image, selector);
}

static id TVImageCopy(id image, SEL selector, NSZone *zone) {
  id copy = originalImageCopy(image, selector, zone);
  if (copy != nil && templateImages.count(image) != 0) {
    templateImages.insert(copy);
  }
  return copy;
}

// As AppKit does, an image found by a name ending in "Template" is one.
// A name that is not a string finds nothing (GNUstep raises).
static id TVImageNamed(id imageClass, SEL selector, NSString *name) {
  if (![name isKindOfClass:[NSString class]]) {
    return nil;
  }
  NSImage *image = originalImageNamed(imageClass, selector, name);
  if (image != nil && [[name stringByDeletingPathExtension] hasSuffix:@"Template"]) {
    templateImages.insert(image);
  }
  return image;
}

@interface _TVTemplateImageInstaller : NSObject
@end

@implementation _TVTemplateImageInstaller
+ (void)load {
  // The class is initialised before its methods change (the runtime shares
  // one dispatch table among classes not yet initialised), inside a pool of
  // its own: none exists yet.
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  Class image = [NSImage class];
  originalImageDealloc = (void (*)(id, SEL))TVReplaceInstanceMethod(
      image, @selector(dealloc), (IMP)TVImageDealloc);
  originalImageCopy = (id(*)(id, SEL, NSZone *))TVReplaceInstanceMethod(
      image, @selector(copyWithZone:), (IMP)TVImageCopy);
  originalImageNamed = (id(*)(id, SEL, NSString *))TVReplaceInstanceMethod(
      object_getClass(image), @selector(imageNamed:), (IMP)TVImageNamed);
  [pool drain];
}
@end

@implementation NSImage (TalvoTemplate)

- (BOOL)isTemplate {
  return templateImages.count(self) != 0;
}

- (void)setTemplate:(BOOL)isTemplate {
  if (isTemplate) {
    templateImages.insert(self);
  } else {
    templateImages.erase(self);
  }
}

@end
