#import <Talvo/NSWindow+Animation.h>

#import "windows/TVWindowGeometry+Private.h"
#import "windows/TVWindowPlatform+Private.h"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

@implementation NSWindow (animation)

#pragma mark - Public

- (void)setWithAnimationFrame:(NSRect)frame duration:(double)duration curve:(NSUInteger)curve {
  if (!TVRectIsFinite(frame)) {
    return;
  }
  // GNUstep's NSAnimation refuses a zero duration (it raises); ending at
  // once is what a zero-length animation does anyway.
  if (!(duration > 0.0) || !isfinite(duration)) {
    [self setFrame:frame display:YES];
    return;
  }
  NSDictionary *target = [NSDictionary
      dictionaryWithObjectsAndKeys:self, NSViewAnimationTargetKey, [NSValue valueWithRect:frame],
                                   NSViewAnimationEndFrameKey, nil];
  NSViewAnimation *animation =
      [[NSViewAnimation alloc] initWithViewAnimations:[NSArray arrayWithObject:target]];
  @try {
    [animation setAnimationBlockingMode:NSAnimationBlocking];
    [animation setAnimationCurve:(NSAnimationCurve)(curve <= 3 ? curve : NSAnimationEaseInOut)];
    [animation setDuration:duration];
    [animation setFrameRate:0.0];
    [animation startAnimation];
  } @catch (NSException *exception) {
    [self setFrame:frame display:YES];
  }
  [animation release];
}

- (void)setWithBounceAnimationFrame:(NSRect)frame duration:(double)duration curve:(NSUInteger)curve {
  if (!TVRectIsFinite(frame)) {
    return;
  }
  if (TVReduceMotion()) {
    [self setFrame:frame display:YES];
    return;
  }
  NSRect overshoot = TVNSRect(talvo::windows::BounceOvershoot(TVCoreRect(frame)));
  [self setWithAnimationFrame:overshoot duration:duration * 0.5 curve:curve];
  [self setWithAnimationFrame:frame duration:duration * 0.5 curve:curve];
}

@end
