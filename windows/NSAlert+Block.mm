#import <Talvo/NSAlert+Block.h>

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

@implementation NSAlert (block)

#pragma mark - Public

- (void)VXBeginSheetModalForWindow:(NSWindow *)window
                        completion:(void (^)(NSInteger returnCode))completion {
  if (![window isKindOfClass:[NSWindow class]]) {
    return;
  }
  // The copy rides along as the context; the end handler releases it.
  void *context = completion != nil ? (void *)[completion copy] : NULL;
  @try {
    [self beginSheetModalForWindow:window
                     modalDelegate:[NSAlert class]
                    didEndSelector:@selector(VXalertDidEnd:returnCode:contextInfo:)
                       contextInfo:context];
  } @catch (NSException *exception) {
    [(id)context release];
  }
}

+ (void)VXalertDidEnd:(NSAlert *)alert returnCode:(NSInteger)returnCode contextInfo:(void *)contextInfo {
  if (contextInfo == NULL) {
    return;
  }
  void (^completion)(NSInteger) = (void (^)(NSInteger))contextInfo;
  completion(returnCode);
  [completion release];
}

@end
