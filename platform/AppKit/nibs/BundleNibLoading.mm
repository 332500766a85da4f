// Loading a nib from a bundle instance, through GNUstep's NSNib.

#import <AppKit/AppKit.h>

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

// The file's owner when the caller gives none: GNUstep's loader refuses
// nil. Whatever the nib connects to it is dropped.
@interface _TVNibAbsentOwner : NSObject
@end

@implementation _TVNibAbsentOwner
- (void)setValue:(id)value forUndefinedKey:(NSString *)key {
}
- (id)valueForUndefinedKey:(NSString *)key {
  return nil;
}
@end

@implementation NSBundle (TalvoNibLoading)

- (BOOL)loadNibNamed:(NSString *)nibName owner:(id)owner topLevelObjects:(NSArray **)topLevelObjects {
  if (topLevelObjects != NULL) {
    *topLevelObjects = nil;
  }
  if (![nibName isKindOfClass:[NSString class]] || [nibName length] == 0) {
    return NO;
  }
  NSNib *nib = nil;
  BOOL loaded = NO;
  @try {
    nib = [[NSNib alloc] initWithNibNamed:nibName bundle:self];
    if (nib != nil) {
      id connected = owner != nil ? owner : [[[_TVNibAbsentOwner alloc] init] autorelease];
      NSArray *objects = nil;
      loaded = [nib instantiateWithOwner:connected topLevelObjects:&objects];
      if (loaded && topLevelObjects != NULL) {
        *topLevelObjects = objects;
      }
    }
  } @catch (NSException *exception) {
    loaded = NO;
  }
  [nib release];
  return loaded;
}

@end
