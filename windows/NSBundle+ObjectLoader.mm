#import <Talvo/NSBundle+ObjectLoader.h>

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

@implementation NSBundle (ObjectLoader)

#pragma mark - Public

+ (id)loadObjectOfKind:(Class)kind fromNibFile:(NSString *)nibName {
  NSNib *nib = nil;
  NSArray *topLevelObjects = nil;
  BOOL loaded = NO;
  @try {
    if ([nibName isKindOfClass:[NSString class]]) {
      nib = [[NSNib alloc] initWithNibNamed:nibName bundle:nil];
      loaded = [nib instantiateNibWithOwner:nil topLevelObjects:&topLevelObjects];
    }
  } @catch (NSException *exception) {
    loaded = NO;
  }
  [nib release];
  if (!loaded) {
    NSLog(@"Warning! Could not load nib file.\n");
    return nil;
  }
  id found = nil;
  for (id object in topLevelObjects) {
    if (found == nil && kind != Nil && [object isKindOfClass:kind]) {
      found = [[object retain] autorelease];
    }
  }
  // GNUstep hands each top-level object over with a reference of its own,
  // as AppKit's older loader did; the caller keeps only what it is given.
  for (id object in topLevelObjects) {
    [object release];
  }
  return found;
}

@end
