#import <Talvo/VXLiveResizeView.h>

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

// The string predates the constant's name and is what observers match on.
NSString *const VXLiveResizeViewDidEndLiveResize = @"VXViewDidEndLiveResize";

@implementation VXLiveResizeView

#pragma mark - Public

- (void)viewDidEndLiveResize {
  [super viewDidEndLiveResize];
  [[NSNotificationCenter defaultCenter] postNotificationName:VXLiveResizeViewDidEndLiveResize
                                                      object:self];
}

@end
