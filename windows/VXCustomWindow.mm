#import <Talvo/VXCustomWindow.h>

#import "windows/TVWindowPlatform+Private.h"
#import "windows/VXCustomWindow+Private.h"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

@implementation VXCustomWindow

@synthesize childContentView = _childContentView;
@synthesize containerView = _containerView;

#pragma mark - Lifecycle

- (instancetype)initWithContentRect:(NSRect)contentRect
                          styleMask:(NSUInteger)styleMask
                            backing:(NSBackingStoreType)backing
                              defer:(BOOL)defer {
  self = [super initWithContentRect:contentRect styleMask:styleMask backing:backing defer:defer];
  if (self == nil) {
    return nil;
  }
  [self setBackgroundColor:[NSColor clearColor]];
  [self setOpaque:NO];
  TVSetTitlebarTransparent(self);
  TVHideTitle(self);
  for (NSInteger button = 0; button <= 2; ++button) {
    [[self standardWindowButton:(NSWindowButton)button] setHidden:YES];
  }
  // Again after the buttons: hiding them may rebuild the title bar.
  TVSetTitlebarTransparent(self);
  return self;
}

- (void)dealloc {
  [[NSNotificationCenter defaultCenter] removeObserver:self];
  [_containerView release];
  [_childContentView release];
  [super dealloc];
}

#pragma mark - Public

- (NSView *)frameView {
  return [[self contentView] superview];
}

- (NSWindow *)window {
  return self;
}

- (NSRect)bounds {
  NSView *frameView = [self frameView];
  return frameView != nil ? [frameView bounds] : NSZeroRect;
}

- (BOOL)canBecomeKeyWindow {
  return YES;
}

- (void)orderFront:(id)sender {
  [[self frameView] setWantsLayer:NO];
  [super orderFront:sender];
}

- (void)makeKeyAndOrderFront:(id)sender {
  [[self frameView] setWantsLayer:NO];
  [super makeKeyAndOrderFront:sender];
}

@end

@implementation _VXWindowDrawingFrameView

- (void)drawRect:(NSRect)dirtyRect {
  NSWindow *window = [self window];
  if (![window isKindOfClass:[VXCustomWindow class]]) {
    return;
  }
  // As a frame host, the view owns every pixel of the window: GNUstep has
  // already filled it with the background colour, which would square off
  // whatever shape the window draws.
  [[NSColor clearColor] set];
  NSRectFillUsingOperation(dirtyRect, NSCompositeCopy);
  [(id)window drawRect:dirtyRect];
}

@end
