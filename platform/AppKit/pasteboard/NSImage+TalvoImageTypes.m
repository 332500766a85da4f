#import <AppKit/AppKit.h>

#import "platform/Foundation/TVTypeIdentifiers.h"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

static NSArray *TypesForExtensions(NSArray *extensions) {
  NSMutableArray *types = [NSMutableArray array];
  for (id extension in extensions) {
    if (![extension isKindOfClass:[NSString class]]) continue;
    NSString *type = TVTypeIdentifierForPath([@"x" stringByAppendingPathExtension:extension], NO);
    // GNUstep's lists hold what filter services convert too (text, for
    // one): only picture formats are image types.
    BOOL picture = TVTypeConformsTo(type, @"public.image") || [type isEqualToString:@"com.adobe.pdf"];
    if (picture && ![types containsObject:type]) {
      [types addObject:type];
    }
  }
  return types;
}

@implementation NSImage (TalvoImageTypes)

+ (NSArray *)imageTypes {
  return TypesForExtensions([NSImage imageFileTypes]);
}

+ (NSArray *)imageUnfilteredTypes {
  return TypesForExtensions([NSImage imageUnfilteredFileTypes]);
}

@end
