#import <Talvo/NSBundle+ObjectLoader.h>

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

// The file's owner when there is none: GNUstep refuses a nil owner (it
// raises), AppKit takes nil and connects nothing to it. Connections made to
// this one go nowhere.
@interface _VXNibNullOwner : NSObject
@end

@implementation _VXNibNullOwner
- (void)setValue:(id)value forUndefinedKey:(NSString *)key {
}
- (id)valueForUndefinedKey:(NSString *)key {
  return nil;
}
@end

@implementation NSBundle (ObjectLoader)

#pragma mark - Public

+ (id)loadObjectOfKind:(Class)kind fromNibFile:(NSString *)nibName {
  NSNib *nib = nil;
  NSArray *topLevelObjects = nil;
  BOOL loaded = NO;
  @try {
    if ([nibName isKindOfClass:[NSString class]]) {
      nib = [[NSNib alloc] initWithNibNamed:nibName bundle:nil];
      _VXNibNullOwner *owner = [[[_VXNibNullOwner alloc] init] autorelease];
      loaded = [nib instantiateNibWithOwner:owner topLevelObjects:&topLevelObjects];
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
