#import <Talvo/NSImage+Pasteboard.h>

#import <Talvo/NSImage+URLs.h>

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

@implementation NSImage (pasteboard)

- (instancetype)initWithAllURLsOfPasteboard:(NSPasteboard *)pasteboard {
  NSArray *urls = nil;
  @try {
    if ([pasteboard isKindOfClass:[NSPasteboard class]]) {
      NSDictionary *options = @{NSPasteboardURLReadingContentsConformToTypesKey : [NSImage imageTypes]};
      urls = [pasteboard readObjectsForClasses:@[ [NSURL class] ] options:options];
    }
  } @catch (NSException *exception) {
    urls = nil;
  }
  return [self initWithContentsOfURLs:urls != nil ? urls : @[]];
}

@end
