#import "WindowTestSupport.h"

#import <Talvo/Talvo.h>

#import "windows/VXAnimationWindow+Private.h"

@implementation TVWindowNotificationLog

@synthesize names = _names;

- (instancetype)init {
  self = [super init];
  if (self != nil) {
    _names = [NSMutableArray new];
  }
  return self;
}

- (void)dealloc {
  [[NSNotificationCenter defaultCenter] removeObserver:self];
  [_names release];
  [super dealloc];
}

- (void)observe:(NSString *)name object:(id)object {
  [[NSNotificationCenter defaultCenter] addObserver:self
                                           selector:@selector(record:)
                                               name:name
                                             object:object];
}

- (void)observeZoomEffectOf:(NSWindow *)window {
  [self observe:VXWindowWillStartZoomEffect object:window];
  [self observe:VXWindowDidEndZoomEffect object:window];
  [self observe:NSWindowDidResizeNotification object:window];
  [self observe:NSWindowDidMoveNotification object:window];
}

- (void)record:(NSNotification *)notification {
  [_names addObject:[notification name]];
}

@end

@implementation TVWindowFrameRecorder

@synthesize frames = _frames;

+ (instancetype)newBorderlessWithContentRect:(NSRect)rect {
  TVWindowFrameRecorder *window = [[self alloc] initWithContentRect:rect
                                                          styleMask:NSBorderlessWindowMask
                                                            backing:NSBackingStoreBuffered
                                                              defer:NO];
  [window setReleasedWhenClosed:NO];
  return window;
}

- (void)dealloc {
  [_frames release];
  [super dealloc];
}

- (void)setFrame:(NSRect)frame display:(BOOL)flag {
  if (_frames == nil) {
    _frames = [NSMutableArray new];
  }
  [_frames addObject:[NSValue valueWithRect:frame]];
  [super setFrame:frame display:flag];
}

@end

@implementation TVWindowFilledView

- (instancetype)initWithFrame:(NSRect)frame color:(NSColor *)color {
  self = [super initWithFrame:frame];
  if (self != nil) {
    _color = [color retain];
  }
  return self;
}

- (void)dealloc {
  [_color release];
  [super dealloc];
}

- (void)drawRect:(NSRect)dirtyRect {
  [_color setFill];
  NSRectFill([self bounds]);
}

@end

void WindowTest::SetUp() {
  AnimationTest::SetUp();
  if (!HasWindowServer()) {
    GTEST_SKIP() << "needs a window server";
  }
  static bool launched = false;
  if (!launched) {
    launched = true;
    [NSApp finishLaunching];
  }
}

void WindowTest::TearDown() {
  Pump(0.02);
  AnimationTest::TearDown();
}

void WindowTest::Pump(double seconds) { PumpEvents(seconds); }

bool WindowTest::AnimationWindowOnScreen() {
  for (NSWindow *window in [NSApp windows]) {
    if ([window isKindOfClass:[_VXAnimationWindow class]] && [window isVisible]) {
      return true;
    }
  }
  return false;
}

NSBitmapImageRep *NewViewSnapshot(NSView *view) {
  [[view window] display];
  [view lockFocus];
  NSBitmapImageRep *rep = [[NSBitmapImageRep alloc] initWithFocusedViewRect:[view bounds]];
  [view unlockFocus];
  return rep;
}

Pixel SnapshotPixel(NSBitmapImageRep *rep, double x, double y, double scale) {
  return RepPixel(rep, (int)(x * scale), (int)(y * scale));
}

NSWindow *NewFilledWindow(NSRect frame, NSUInteger styleMask, NSColor *color) {
  NSWindow *window = [[NSWindow alloc] initWithContentRect:frame
                                                 styleMask:styleMask
                                                   backing:NSBackingStoreBuffered
                                                     defer:NO];
  [window setReleasedWhenClosed:NO];
  NSView *view = [[TVWindowFilledView alloc] initWithFrame:NSMakeRect(0, 0, frame.size.width,
                                                                frame.size.height)
                                               color:color];
  [window setContentView:view];
  [view release];
  return window;
}
