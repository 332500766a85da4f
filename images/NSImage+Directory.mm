#import <Talvo/NSImage+Directory.h>

#import <Talvo/NSImage+URLDefinition.h>

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

@implementation NSImage (directory)

- (instancetype)initWithContentsOfDirectoryAtURL:(NSURL *)url {
  if ((self = [self init]) == nil) return nil;
  NSMutableArray *reps = [NSMutableArray array];
  @try {
    NSArray *urls = nil;
    if ([url isKindOfClass:[NSURL class]]) {
      urls = [[NSFileManager defaultManager] contentsOfDirectoryAtURL:url
                                           includingPropertiesForKeys:@[ (NSString *)kCFURLTypeIdentifierKey ]
                                                              options:1
                                                                error:NULL];
    }
    for (NSURL *file in urls) {
      NSImage *image = [[[self class] alloc] initWithDefinitionContentsOfURL:file];
      if (image != nil) [reps addObjectsFromArray:[image representations]];
      [image release];
    }
    [self addRepresentations:reps];
  } @catch (NSException *exception) {
    [reps removeAllObjects];
  }
  if ([reps count] == 0) {
    [self release];
    return nil;
  }
  return self;
}

+ (NSArray *)imagesWithContentsOfDirectoriesAtURL:(NSURL *)url {
  NSMutableArray *entries = [NSMutableArray array];
  if (![url isKindOfClass:[NSURL class]]) return entries;
  @try {
    NSDirectoryEnumerator *walk =
        [[NSFileManager defaultManager] enumeratorAtURL:url
                             includingPropertiesForKeys:@[ NSURLIsDirectoryKey ]
                                                options:0
                                           errorHandler:^BOOL(NSURL *failed, NSError *error) {
                                             return YES;
                                           }];
    for (NSURL *found in walk) {
      NSNumber *isDirectory = nil;
      if (![found getResourceValue:&isDirectory forKey:NSURLIsDirectoryKey error:NULL] ||
          ![isDirectory boolValue]) {
        continue;
      }
      NSImage *image = [[[self alloc] initWithContentsOfDirectoryAtURL:found] autorelease];
      NSString *name = [[[found path] lastPathComponent] stringByDeletingPathExtension];
      if (image != nil && [name length] > 0) {
        [entries addObject:@{@"name" : name, @"image" : image}];
      }
    }
  } @catch (NSException *exception) {
    // What was collected before the failure stands.
  }
  return entries;
}

@end
