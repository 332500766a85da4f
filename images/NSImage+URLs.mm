#import <Talvo/NSImage+URLs.h>

#import <Talvo/NSImage+URLDefinition.h>

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

@implementation NSImage (urls)

- (instancetype)initWithContentsOfURLs:(NSArray *)urls {
  if ((self = [self init]) == nil) return nil;
  @try {
    if ([urls isKindOfClass:[NSArray class]]) {
      for (id url in urls) {
        NSImage *image = [[[self class] alloc] initWithDefinitionContentsOfURL:url];
        if ([[image representations] count] > 0) [self addRepresentations:[image representations]];
        [image release];
      }
    }
  } @catch (NSException *exception) {
    // Keep what was added before the failure.
  }
  if ([[self representations] count] == 0) {
    [self release];
    return nil;
  }
  return self;
}

+ (NSArray *)imagesWithContentsOfURLs:(NSArray *)urls {
  NSMutableArray *entries = [NSMutableArray array];
  if (![urls isKindOfClass:[NSArray class]]) return entries;
  @try {
    for (id url in urls) {
      NSImage *image = [[[self alloc] initWithDefinitionContentsOfURL:url] autorelease];
      if (image == nil) continue;
      NSString *name = [[[url path] lastPathComponent] stringByDeletingPathExtension];
      if ([name length] > 0) [entries addObject:@{@"name" : name, @"image" : image}];
    }
  } @catch (NSException *exception) {
    // What was collected before the failure stands.
  }
  return entries;
}

@end
