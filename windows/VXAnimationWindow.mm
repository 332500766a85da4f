#import "windows/VXAnimationWindow+Private.h"

#import "support/TalvoLook.h"
#import "support/TalvoMRC.h"
#import "windows/TVWindowPlatform+Private.h"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

@implementation _VXAnimationWindow

@synthesize animationResizeTime = _animationResizeTime;
@synthesize imageView = _imageView;

#pragma mark - Lifecycle

- (instancetype)initForWindow:(NSWindow *)window {
  if (![window isKindOfClass:[NSWindow class]]) {
    [self release];
    return nil;
  }
  NSScreen *screen = [window screen];
  NSRect screenFrame = screen != nil ? [screen frame] : NSZeroRect;
  NSRect contentRect = NSMakeRect(0, 0, screenFrame.size.width, screenFrame.size.height);
  self = [super initWithContentRect:contentRect
                          styleMask:NSBorderlessWindowMask
                            backing:NSBackingStoreBuffered
                              defer:YES
                             screen:screen];
  if (self == nil) {
    return nil;
  }
  _animationResizeTime = 0.2;
  [self setLevel:NSFloatingWindowLevel];
  [self setHasShadow:NO];
  [self setBackgroundColor:[NSColor clearColor]];
  [self setOpaque:NO];
  // GNUstep's window releases itself when closed unless told otherwise;
  // the effect that made it owns it.
  [self setReleasedWhenClosed:NO];
  NSView *contentView = [self contentView];
  [contentView setWantsLayer:YES];

  NSRect viewFrame = contentView != nil ? [contentView bounds] : NSZeroRect;
  _imageView = [[_VXAnimationImageView alloc] initWithFrame:viewFrame];
  [_imageView setAutoresizingMask:NSViewWidthSizable | NSViewHeightSizable];
  [_imageView setWantsLayer:YES];
  [_imageView setTranslatesAutoresizingMaskIntoConstraints:NO];
  [contentView addSubview:_imageView];

  if (TalvoUsesNewerLook()) {
    TVSetTitlebarTransparent(self);
    TVHideTitle(self);
    TVAddStyleMask(self, 1 << 15);
  }
  TVSetAnimationBehavior(self, 2);
  [self setLevel:[window level] + 1];
  return self;
}

- (void)dealloc {
  TalvoDestroy(_imageView);
  [super dealloc];
}

#pragma mark - Public

- (NSTimeInterval)animationResizeTime:(NSRect)newFrame {
  return _animationResizeTime;
}

- (id)image {
  return [[[self imageView] layer] contents];
}

- (void)setImage:(id)image {
  NSView *imageView = [self imageView];
  [[imageView layer] setContents:image];
  [imageView setNeedsDisplay:YES];
}

- (BOOL)canBecomeKeyWindow {
  return YES;
}

- (BOOL)canBecomeMainWindow {
  return NO;
}

@end

@implementation _VXAnimationImageView
@end
