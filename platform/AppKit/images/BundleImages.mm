// -[NSBundle imageForResource:]: the resource's file, with its @2x sibling
// as a second representation of the same point size.

#import <AppKit/AppKit.h>

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

// GNUstep raises on truncated or empty files and answers an image with no
// representations for others it cannot read: both are nil here. Empty files
// are not handed to it at all (its TIFF reader, tried last, leaks on them).
static NSArray *TVRepsAtPath(NSString *path) {
  NSDictionary *attributes = [[NSFileManager defaultManager] attributesOfItemAtPath:path error:NULL];
  if (attributes == nil || [attributes fileSize] == 0) {
    return nil;
  }
  NSArray *reps = nil;
  @try {
    reps = [NSImageRep imageRepsWithContentsOfFile:path];
  } @catch (NSException *exception) {
    reps = nil;
  }
  return [reps count] > 0 ? reps : nil;
}

@implementation NSBundle (TalvoImages)

- (NSImage *)imageForResource:(NSString *)name {
  if (![name isKindOfClass:[NSString class]] || [name length] == 0) {
    return nil;
  }
  NSString *path = nil;
  @try {
    path = [self pathForImageResource:name];
  } @catch (NSException *exception) {
    path = nil;
  }
  NSArray *reps = path != nil ? TVRepsAtPath(path) : nil;
  if (reps == nil) {
    return nil;
  }
  NSImageRep *first = [reps objectAtIndex:0];
  NSSize size = [first size];
  if (!(size.width > 0 && size.height > 0)) {
    return nil;
  }
  NSImage *image = [[[NSImage alloc] initWithSize:size] autorelease];
  [image addRepresentations:reps];

  NSString *base = [path stringByDeletingPathExtension];
  if (![base hasSuffix:@"@2x"]) {
    NSString *extension = [path pathExtension];
    NSString *doublePath = [base stringByAppendingString:@"@2x"];
    if ([extension length] > 0) {
      doublePath = [doublePath stringByAppendingPathExtension:extension];
    }
    if ([[NSFileManager defaultManager] fileExistsAtPath:doublePath]) {
      for (NSImageRep *rep in TVRepsAtPath(doublePath)) {
        [rep setSize:size];  // twice the pixels in the same points
        [image addRepresentation:rep];
      }
    }
  }
  if ([[name stringByDeletingPathExtension] hasSuffix:@"Template"]) {
    [image setTemplate:YES];
  }
  return image;
}

@end
