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
    if (type != nil && ![type isEqualToString:@"public.data"] && ![types containsObject:type]) {
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
