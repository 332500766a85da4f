#import <Talvo/NSWindow+Image.h>

#import "windows/TVWindowGeometry+Private.h"
#import "windows/TVWindowPlatform+Private.h"
#import "windows/TVWindowServer+Private.h"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

static NSEdgeInsets TVNSInsets(const talvo::windows::EdgeInsets &insets) {
  return NSEdgeInsetsMake(insets.top, insets.left, insets.bottom, insets.right);
}

static talvo::windows::EdgeInsets TVCoreInsets(NSEdgeInsets insets) {
  return {insets.top, insets.left, insets.bottom, insets.right};
}

@implementation NSWindow (image)

#pragma mark - Public

- (NSEdgeInsets)shadowEdgeInsets {
  return TVNSInsets(talvo::windows::ShadowInsets(([self styleMask] & NSTitledWindowMask) != 0));
}

- (NSRect)shadowedFrame:(NSRect)frame flipped:(BOOL)flipped {
  return TVNSRect(
      talvo::windows::ShadowedFrame(TVCoreRect(frame), TVCoreInsets([self shadowEdgeInsets]), flipped));
}

- (NSRect)shadowedFrame:(NSRect)frame fromScaledFrame:(NSRect)scaledFrame flipped:(BOOL)flipped {
  return TVNSRect(talvo::windows::ShadowedFrameFromScaled(
      TVCoreRect(frame), TVCoreRect(scaledFrame), TVCoreInsets([self shadowEdgeInsets]), flipped));
}

- (NSImage *)screenshotByCapturingShadow:(BOOL)captureShadow {
  NSInteger number = [self windowNumber];
  if (number <= 0 || ![self isVisible]) {
    return nil;
  }
  NSRect bounds = [self frame];
  NSRect described;
  if (TVWindowServerBounds(number, &described)) {
    bounds = described;
  }
  if (captureShadow) {
    // The insets are points; where frames are device pixels they grow with
    // the scale (the reference frame is the same rect in points).
    bounds = [self shadowedFrame:bounds fromScaledFrame:TVRectInPoints(self, bounds) flipped:NO];
  }
  CGImageRef picture = TVWindowServerCreateImage(number, bounds, captureShadow);
  if (picture == NULL) {
    return nil;
  }
  size_t width = CGImageGetWidth(picture);
  size_t height = CGImageGetHeight(picture);
  if (width < 2) {
    CGImageRelease(picture);
    return nil;
  }
  NSBitmapImageRep *rep = [[NSBitmapImageRep alloc] initWithCGImage:picture];
  CGImageRelease(picture);
  if (rep == nil) {
    return nil;
  }
  NSImage *image = [[NSImage alloc] initWithSize:NSMakeSize(width, height)];
  [image addRepresentation:rep];
  [rep release];
  // The window's own backing scale: a window between screens has the one
  // its pixels were drawn at.
  CGFloat scale = [self backingScaleFactor];
  if (!(scale > 0.0)) {
    scale = 1.0;
  }
  NSSize points = NSMakeSize(width * (1.0 / scale), height * (1.0 / scale));
  [image setSize:points];
  [rep setSize:points];
  return [image autorelease];
}

@end
