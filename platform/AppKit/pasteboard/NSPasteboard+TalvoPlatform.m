#import <AppKit/AppKit.h>

#import "platform/Foundation/TVTypeIdentifiers.h"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

NSString *const NSPasteboardTypeURL = @"public.url";
NSString *const NSPasteboardTypeFileURL = @"public.file-url";
NSString *const NSPasteboardURLReadingFileURLsOnlyKey = @"NSPasteboardURLReadingFileURLsOnlyKey";
NSString *const NSPasteboardURLReadingContentsConformToTypesKey =
    @"NSPasteboardURLReadingContentsConformToTypesKey";

// A property list stored under `type`, if it is an array.
static NSArray *ListForType(NSPasteboard *pasteboard, NSString *type) {
  if (![[pasteboard types] containsObject:type]) return nil;
  id list = [pasteboard propertyListForType:type];
  return [list isKindOfClass:[NSArray class]] ? list : nil;
}

static NSArray *URLsOnPasteboard(NSPasteboard *pasteboard) {
  NSMutableArray *urls = [NSMutableArray array];
  NSArray *strings = ListForType(pasteboard, NSPasteboardTypeURL);
  if (strings != nil) {
    for (id string in strings) {
      NSURL *url = [string isKindOfClass:[NSString class]] ? [NSURL URLWithString:string] : nil;
      if (url != nil) [urls addObject:url];
    }
    return urls;
  }
  NSArray *paths = ListForType(pasteboard, NSFilenamesPboardType);
  if (paths != nil) {
    for (id path in paths) {
      if ([path isKindOfClass:[NSString class]] && [path length] > 0) {
        [urls addObject:[NSURL fileURLWithPath:path]];
      }
    }
    return urls;
  }
  if ([[pasteboard types] containsObject:NSURLPboardType]) {
    NSURL *url = [NSURL URLFromPasteboard:pasteboard];
    if (url != nil) [urls addObject:url];
  }
  return urls;
}

// Whether a file URL's type conforms to one of `types`.
static BOOL ConformsToAny(NSURL *url, NSArray *types) {
  if (![url isFileURL]) return NO;
  NSString *type = nil;
  if (![url getResourceValue:&type forKey:NSURLTypeIdentifierKey error:NULL] || type == nil) {
    return NO;
  }
  for (id wanted in types) {
    if (TVTypeConformsTo(type, wanted)) return YES;
  }
  return NO;
}

static NSArray *FilteredURLs(NSArray *urls, NSDictionary *options) {
  if (![options isKindOfClass:[NSDictionary class]]) return urls;
  id fileOnly = [options objectForKey:NSPasteboardURLReadingFileURLsOnlyKey];
  id types = [options objectForKey:NSPasteboardURLReadingContentsConformToTypesKey];
  BOOL onlyFiles = [fileOnly respondsToSelector:@selector(boolValue)] && [fileOnly boolValue];
  if (types != nil && ![types isKindOfClass:[NSArray class]]) types = @[];
  NSMutableArray *kept = [NSMutableArray array];
  for (NSURL *url in urls) {
    if (onlyFiles && ![url isFileURL]) continue;
    if (types != nil && !ConformsToAny(url, types)) continue;
    [kept addObject:url];
  }
  return kept;
}

@implementation NSPasteboard (TalvoPlatform)

- (NSInteger)clearContents {
  [self declareTypes:@[] owner:nil];
  return [self changeCount];
}

- (BOOL)writeObjects:(NSArray *)objects {
  if (![objects isKindOfClass:[NSArray class]]) return NO;
  NSMutableArray *urls = [NSMutableArray array];
  NSMutableArray *paths = [NSMutableArray array];
  NSString *string = nil;
  for (id object in objects) {
    if ([object isKindOfClass:[NSURL class]]) {
      [urls addObject:[object absoluteString]];
      if ([object isFileURL] && [[object path] length] > 0) [paths addObject:[object path]];
    } else if ([object isKindOfClass:[NSString class]]) {
      string = object;
    } else {
      return NO;
    }
  }
  @try {
    // Earlier writes since the last clear are kept: objects accumulate.
    if ([urls count] > 0) {
      NSArray *before = ListForType(self, NSPasteboardTypeURL);
      NSArray *pathsBefore = ListForType(self, NSFilenamesPboardType);
      // GNUstep's own URL type holds one URL: the first on the pasteboard.
      id firstString = [before count] > 0 ? [before objectAtIndex:0] : [urls objectAtIndex:0];
      NSURL *first =
          [firstString isKindOfClass:[NSString class]] ? [NSURL URLWithString:firstString] : nil;
      if (before != nil)
        [urls insertObjects:before
                  atIndexes:[NSIndexSet indexSetWithIndexesInRange:NSMakeRange(0, [before count])]];
      if (pathsBefore != nil) {
        [paths insertObjects:pathsBefore
                   atIndexes:[NSIndexSet
                                 indexSetWithIndexesInRange:NSMakeRange(0, [pathsBefore count])]];
      }
      NSMutableArray *types =
          [NSMutableArray arrayWithObjects:NSPasteboardTypeURL, NSURLPboardType, nil];
      if ([paths count] > 0) [types addObject:NSFilenamesPboardType];
      [self addTypes:types owner:nil];
      [self setPropertyList:urls forType:NSPasteboardTypeURL];
      if ([paths count] > 0) [self setPropertyList:paths forType:NSFilenamesPboardType];
      if (first != nil) [first writeToPasteboard:self];
    }
    if (string != nil) {
      [self addTypes:@[ NSStringPboardType ] owner:nil];
      [self setString:string forType:NSStringPboardType];
    }
  } @catch (NSException *exception) {
    return NO;
  }
  return YES;
}

- (NSArray *)readObjectsForClasses:(NSArray *)classArray options:(NSDictionary *)options {
  if (![classArray isKindOfClass:[NSArray class]]) return nil;
  @try {
    for (id cls in classArray) {
      if (!class_isMetaClass(object_getClass(cls))) continue;
      NSArray *found = nil;
      if ([cls isSubclassOfClass:[NSURL class]]) {
        found = FilteredURLs(URLsOnPasteboard(self), options);
      } else if ([cls isSubclassOfClass:[NSString class]]) {
        NSString *string = [[self types] containsObject:NSStringPboardType]
                               ? [self stringForType:NSStringPboardType]
                               : nil;
        found = string != nil ? @[ string ] : @[];
      }
      if ([found count] > 0) return found;
    }
  } @catch (NSException *exception) {
    return @[];
  }
  return @[];
}

@end
