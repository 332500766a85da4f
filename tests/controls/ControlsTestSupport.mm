#import "controls/ControlsTestSupport.h"

NSImage *SquareIcon(NSSize size, CGFloat inset, NSColor *color) {
  NSImage *image = [[[NSImage alloc] initWithSize:size] autorelease];
  [image lockFocus];
  [[NSColor clearColor] set];
  NSRectFillUsingOperation(NSMakeRect(0, 0, size.width, size.height), NSCompositeCopy);
  [color set];
  NSRectFill(NSInsetRect(NSMakeRect(0, 0, size.width, size.height), inset, inset));
  [image unlockFocus];
  return image;
}

NSGradient *SolidGradient(NSColor *color) {
  return [[[NSGradient alloc] initWithStartingColor:color endingColor:color] autorelease];
}

@implementation TVControlsBackdrop
- (instancetype)initWithFrame:(NSRect)frame color:(NSColor *)color {
  self = [super initWithFrame:frame];
  if (self != nil) _color = [color retain];
  return self;
}
- (void)dealloc {
  [_color release];
  [super dealloc];
}
- (void)drawRect:(NSRect)dirty {
  [_color set];
  NSRectFill(dirty);
}
@end

NSWindow *ColoredWindow(NSRect frame, NSColor *color) {
  NSWindow *window = [[NSWindow alloc] initWithContentRect:frame
                                                 styleMask:NSTitledWindowMask
                                                   backing:NSBackingStoreBuffered
                                                     defer:NO];
  [window setReleasedWhenClosed:NO];
  TVControlsBackdrop *backdrop = [[TVControlsBackdrop alloc]
      initWithFrame:NSMakeRect(0, 0, frame.size.width, frame.size.height)
              color:color];
  [window setContentView:backdrop];
  [backdrop release];
  return [window autorelease];
}

void ControlsTest::TearDown() {
  for (NSWindow *window in windows_.get()) {
    [window orderOut:nil];
    [window close];
  }
  [windows_.get() removeAllObjects];
  WindowTest::TearDown();
}

NSWindow *ControlsTest::Window(NSRect frame, NSColor *color) {
  NSWindow *window = ColoredWindow(frame, color);
  [windows_.get() addObject:window];
  [window makeKeyAndOrderFront:nil];
  Pump(0.02);
  return window;
}

Pixel ControlsTest::ViewPixel(NSView *view, double x, double y) {
  Owned<NSBitmapImageRep> rep(NewViewSnapshot(view));
  return RepPixel(rep, (int)x, (int)y);
}
