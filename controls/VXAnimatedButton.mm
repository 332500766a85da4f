#import <Talvo/VXAnimatedButton.h>

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

@implementation VXAnimatedButton

#pragma mark - Public

- (void)setHidden:(BOOL)flag {
  BOOL hidden = flag ? YES : NO;
  if (![self _isLayerBacked] || [self window] == nil || [self isHidden] == hidden) {
    [super setHidden:hidden];
    return;
  }
  [self setAlphaValue:hidden ? 1.0 : 0.0];
  if (hidden) {
    [NSAnimationContext beginGrouping];
    // The block keeps the button until the fade has ended.
    [[NSAnimationContext currentContext] setCompletionHandler:^{
      [super setHidden:YES];
      [self setAlphaValue:0.0];
    }];
    [[self animator] setAlphaValue:0.0];
    [NSAnimationContext endGrouping];
  } else {
    [super setHidden:NO];
    [NSAnimationContext beginGrouping];
    [[self animator] setAlphaValue:1.0];
    [NSAnimationContext endGrouping];
  }
}

#pragma mark - Private

// Backed by a layer: the button or one of its ancestors wants one.
- (BOOL)_isLayerBacked {
  for (NSView *view = self; view != nil; view = [view superview]) {
    if ([view wantsLayer]) return [self layer] != nil;
  }
  return NO;
}

@end
