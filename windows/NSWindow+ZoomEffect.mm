#import <Talvo/NSWindow+ZoomEffect.h>

#import <Talvo/NSWindow+Animation.h>
#import <Talvo/NSWindow+Image.h>
#include <dispatch/dispatch.h>

#import "windows/TVWindowGeometry+Private.h"
#import "windows/TVWindowPlatform+Private.h"
#import "windows/VXAnimationWindow+Private.h"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

NSString *const VXWindowWillStartZoomEffect = @"VXWindowWillStartZoomEffect";
NSString *const VXWindowDidEndZoomEffect = @"VXWindowDidEndZoomEffect";

static const NSInteger kNoAnimationBehavior = 2;

static CAKeyframeAnimation *TVAlphaKeyframes(double middleTime, double first, double middle,
                                             double last) {
  CAKeyframeAnimation *animation = [CAKeyframeAnimation animation];
  [animation setKeyTimes:[NSArray arrayWithObjects:[NSNumber numberWithDouble:0.0],
                                                   [NSNumber numberWithDouble:middleTime],
                                                   [NSNumber numberWithDouble:1.0], nil]];
  [animation setValues:[NSArray arrayWithObjects:[NSNumber numberWithDouble:first],
                                                 [NSNumber numberWithDouble:middle],
                                                 [NSNumber numberWithDouble:last], nil]];
  return animation;
}

static void TVShow(NSWindow *window, BOOL makeKey) {
  if (makeKey) {
    [window makeKeyAndOrderFront:nil];
  } else {
    [window orderFront:nil];
  }
}

static void TVPost(NSString *name, NSWindow *window) {
  [[NSNotificationCenter defaultCenter] postNotificationName:name object:window];
}

// A picture of a window that is not on screen (the window server has
// none of an ordered-out window here): its content drawn offscreen, inside
// a transparent margin as wide as the shadow's reach when asked.
static NSImage *TVOffscreenPicture(NSWindow *window, BOOL withShadow) {
  NSView *view = [window contentView];
  NSRect bounds = [view bounds];
  if (view == nil || !(bounds.size.width >= 1.0) || !(bounds.size.height >= 1.0)) {
    return nil;
  }
  NSBitmapImageRep *rep = [view bitmapImageRepForCachingDisplayInRect:bounds];
  if (rep == nil) {
    return nil;
  }
  [view cacheDisplayInRect:bounds toBitmapImageRep:rep];
  NSImage *content = [[[NSImage alloc] initWithSize:bounds.size] autorelease];
  [content addRepresentation:rep];
  if (!withShadow) {
    return content;
  }
  NSEdgeInsets insets = [window shadowEdgeInsets];
  NSSize size = NSMakeSize(bounds.size.width - insets.left - insets.right,
                           bounds.size.height - insets.top - insets.bottom);
  NSImage *framed = [[[NSImage alloc] initWithSize:size] autorelease];
  [framed lockFocus];
  [content drawInRect:NSMakeRect(-insets.left, -insets.bottom, bounds.size.width,
                                 bounds.size.height)
             fromRect:NSZeroRect
            operation:NSCompositeSourceOver
             fraction:1.0];
  [framed unlockFocus];
  return framed;
}

// The window server's picture, else the offscreen one.
static NSImage *TVEffectPicture(NSWindow *window, BOOL withShadow) {
  NSImage *picture = [window screenshotByCapturingShadow:withShadow];
  return picture != nil ? picture : TVOffscreenPicture(window, withShadow);
}

// Without motion the effect ends at once; the end is still posted on the
// main queue's next turn, as after the animation, so an observer added
// after the call hears it.
static void TVPostEndLater(NSWindow *window) {
  [window retain];
  dispatch_async(dispatch_get_main_queue(), ^{
    TVPost(VXWindowDidEndZoomEffect, window);
    [window release];
  });
}

@implementation NSWindow (ZoomEffect)

#pragma mark - Public

- (NSRect)_transposedRectInScreen:(NSRect)rect {
  NSScreen *screen = [self screen];
  NSRect screenFrame = screen != nil ? [screen frame] : NSZeroRect;
  rect.origin.x -= screenFrame.origin.x;
  rect.origin.y -= screenFrame.origin.y;
  return rect;
}

- (void)makeKeyAndOrderFrontWithZoomEffectFromRect:(NSRect)rect {
  [self _orderFrontWithZoomEffectFromRect:rect byMakingKey:YES];
}

- (void)orderFrontWithZoomEffectFromRect:(NSRect)rect {
  [self _orderFrontWithZoomEffectFromRect:rect byMakingKey:NO];
}

- (void)_orderFrontWithZoomEffectFromRect:(NSRect)rect byMakingKey:(BOOL)makeKey {
  if (!TVRectIsFinite(rect)) {
    return;
  }
  NSWindow *window = self;
  TVPost(VXWindowWillStartZoomEffect, window);
  NSInteger savedBehavior = TVAnimationBehavior(window);
  TVSetAnimationBehavior(window, kNoAnimationBehavior);
  if (TVReduceMotion()) {
    // Where the animation ends: a titled window opaque, shown.
    if (([window styleMask] & NSTitledWindowMask) != 0) {
      [window setAlphaValue:1.0];
    }
    TVShow(window, makeKey);
    TVSetAnimationBehavior(window, savedBehavior);
    TVPostEndLater(window);
    return;
  }
  // Realised once, without the system's animation, and hidden again.
  [window makeKeyAndOrderFront:nil];
  [window orderOut:nil];

  // The picture's rects are in the animation window's view space: points.
  NSRect startRect = TVRectInPoints(window, [window _transposedRectInScreen:rect]);
  NSRect frameInScreen = TVRectInPoints(window, [window _transposedRectInScreen:[window frame]]);
  NSRect end = [window shadowedFrame:frameInScreen flipped:YES];
  NSRect start = [window shadowedFrame:startRect fromScaledFrame:frameInScreen flipped:YES];

  dispatch_async(dispatch_get_main_queue(), ^{
    _VXAnimationWindow *animationWindow =
        [[[_VXAnimationWindow alloc] initForWindow:window] autorelease];
    NSView *imageView = [animationWindow imageView];
    [animationWindow setImage:TVEffectPicture(window, YES)];
    [imageView setFrame:start];
    [imageView setAlphaValue:0.0];
    [animationWindow makeKeyAndOrderFront:nil];
    [imageView setAnimations:[NSDictionary
                                 dictionaryWithObject:TVAlphaKeyframes(0.5, 0.0, 1.0, 1.0)
                                               forKey:@"alphaValue"]];
    [NSAnimationContext
        runAnimationGroup:^(NSAnimationContext *context) {
          [context setDuration:[animationWindow animationResizeTime:end]];
          [[imageView animator] setFrame:end];
          [[imageView animator] setAlphaValue:1.0];
        }
        completionHandler:^{
          if (([window styleMask] & NSTitledWindowMask) == 0) {
            [animationWindow orderOut:nil];
            TVShow(window, makeKey);
            TVPost(VXWindowDidEndZoomEffect, window);
            return;
          }
          // Titled: the picture without its shadow lies over the window,
          // which fades in underneath it.
          [imageView setAlphaValue:1.0];
          [animationWindow setImage:TVEffectPicture(window, NO)];
          [imageView setFrame:TVRectInPoints(window,
                                             [window _transposedRectInScreen:[window frame]])];
          [window setAlphaValue:0.5];
          TVShow(window, makeKey);
          [NSAnimationContext
              runAnimationGroup:^(NSAnimationContext *fade) {
                [fade setDuration:0.1];
                [[window animator] setAlphaValue:1.0];
              }
              completionHandler:^{
                [animationWindow orderOut:nil];
              }];
          TVPost(VXWindowDidEndZoomEffect, window);
        }];
    TVSetAnimationBehavior(window, savedBehavior);
  });
}

- (void)orderOutWithZoomEffectToRect:(NSRect)rect {
  [self _orderOutWithZoomEffectToRect:rect key:[self isKeyWindow]];
}

- (void)orderOutKeyWithZoomEffectToRect:(NSRect)rect {
  [self _orderOutWithZoomEffectToRect:rect key:YES];
}

- (void)_orderOutWithZoomEffectToRect:(NSRect)rect key:(BOOL)key {
  if (!TVRectIsFinite(rect)) {
    return;
  }
  NSWindow *window = self;
  TVPost(VXWindowWillStartZoomEffect, window);
  NSInteger savedBehavior = TVAnimationBehavior(window);
  TVSetAnimationBehavior(window, kNoAnimationBehavior);
  // Pictures of effects still running go: this one takes over.
  for (NSWindow *other in [[[NSApp windows] copy] autorelease]) {
    if ([other isKindOfClass:[_VXAnimationWindow class]]) {
      [other orderOut:nil];
    }
  }
  if (TVReduceMotion()) {
    [window orderOut:nil];
    TVSetAnimationBehavior(window, savedBehavior);
    TVPostEndLater(window);
    return;
  }
  [window orderFront:nil];
  NSRect targetRect = TVRectInPoints(window, [window _transposedRectInScreen:rect]);
  NSRect frameInScreen = TVRectInPoints(window, [window _transposedRectInScreen:[window frame]]);

  dispatch_async(dispatch_get_main_queue(), ^{
    _VXAnimationWindow *animationWindow =
        [[[_VXAnimationWindow alloc] initForWindow:window] autorelease];
    NSView *imageView = [animationWindow imageView];
    NSRect end = [window shadowedFrame:targetRect fromScaledFrame:frameInScreen flipped:YES];
    NSRect start = [window shadowedFrame:frameInScreen flipped:YES];
    [animationWindow setImage:TVEffectPicture(window, YES)];
    [imageView setFrame:start];
    [imageView setAnimations:[NSDictionary
                                 dictionaryWithObject:TVAlphaKeyframes(0.6, 1.0, 1.0, 0.0)
                                               forKey:@"alphaValue"]];
    [animationWindow makeKeyAndOrderFront:nil];
    [window orderOut:nil];
    [NSAnimationContext
        runAnimationGroup:^(NSAnimationContext *context) {
          [context setDuration:[animationWindow animationResizeTime:end]];
          [[imageView animator] setFrame:end];
          [[imageView animator] setAlphaValue:0.0];
        }
        completionHandler:^{
          [animationWindow orderOut:nil];
          TVPost(VXWindowDidEndZoomEffect, window);
        }];
    TVSetAnimationBehavior(window, savedBehavior);
  });
}

- (void)makeKeyAndOrderFrontWithPopEffect {
  NSWindow *window = self;
  if (TVReduceMotion()) {
    [window makeKeyAndOrderFront:nil];
    return;
  }
  NSInteger savedBehavior = TVAnimationBehavior(window);
  TVSetAnimationBehavior(window, kNoAnimationBehavior);
  NSRect frame = [window frame];
  NSRect popped = TVNSRect(talvo::windows::PopInset(TVCoreRect(frame)));

  _VXAnimationWindow *animationWindow = [[_VXAnimationWindow alloc] initForWindow:window];
  // The picture fills the animation window, which follows the frames below.
  [animationWindow setImage:TVEffectPicture(window, NO)];
  [animationWindow setFrame:frame display:YES];
  [animationWindow makeKeyAndOrderFront:nil];
  [animationWindow setWithAnimationFrame:popped duration:0.2 curve:NSAnimationEaseInOut];
  [animationWindow setWithAnimationFrame:frame duration:0.2 curve:NSAnimationEaseInOut];
  // GNUstep has no screen-update batching; the swap happens within one
  // turn of the run loop, before anything is redrawn.
  [animationWindow orderOut:nil];
  [window makeKeyAndOrderFront:nil];
  TVSetAnimationBehavior(window, savedBehavior);
  [animationWindow release];
}

@end
