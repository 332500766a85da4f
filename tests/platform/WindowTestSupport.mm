#import "platform/WindowTestSupport.h"

#import <GNUstepGUI/GSDisplayServer.h>

#define BOOL XWINDOWSBOOL
#include <X11/Xlib.h>
#undef BOOL

@implementation TVMarkedView

- (instancetype)initWithFrame:(NSRect)frame fill:(NSColor *)fill marker:(NSColor *)marker {
  self = [super initWithFrame:frame];
  if (self != nil) {
    _fill = [fill retain];
    _marker = [marker retain];
  }
  return self;
}

- (void)dealloc {
  [_marker release];
  [_fill release];
  [super dealloc];
}

- (void)drawRect:(NSRect)dirty {
  NSRect bounds = [self bounds];
  [_fill set];
  NSRectFill(bounds);
  [_marker set];
  NSRectFill(NSMakeRect(0, NSMaxY(bounds) - 10, 10, 10));
}

@end

NSWindow *NewMarkedWindow(NSRect frame, NSColor *fill, NSColor *marker, NSUInteger style) {
  NSWindow *window = [[NSWindow alloc] initWithContentRect:frame
                                                 styleMask:style
                                                   backing:NSBackingStoreBuffered
                                                     defer:NO];
  [window setReleasedWhenClosed:NO];
  NSView *view = [[TVMarkedView alloc] initWithFrame:NSMakeRect(0, 0, frame.size.width, frame.size.height)
                                                fill:fill
                                              marker:marker];
  [window setContentView:view];
  [view release];
  [window orderFrontRegardless];
  [window display];
  return window;
}

std::vector<int> XStackingIndexes(NSArray *windows) {
  std::vector<int> indexes([windows count], -1);
  Display *display = (Display *)[GSCurrentServer() serverDevice];
  Window root, parent, *children = NULL;
  unsigned int count = 0;
  if (display == NULL || !XQueryTree(display, DefaultRootWindow(display), &root, &parent, &children, &count)) {
    return indexes;
  }
  for (unsigned int i = 0; i < count; i++) {
    for (NSUInteger k = 0; k < [windows count]; k++) {
      if ((Window)(uintptr_t)[[windows objectAtIndex:k] windowRef] == children[i]) {
        indexes[k] = (int)i;
      }
    }
  }
  if (children != NULL) XFree(children);
  return indexes;
}

ImagePixels::ImagePixels(CGImageRef image) {
  if (image == NULL) return;
  data_ = (NSData *)CGDataProviderCopyData(CGImageGetDataProvider(image));
  width_ = CGImageGetWidth(image);
  height_ = CGImageGetHeight(image);
  bytesPerRow_ = CGImageGetBytesPerRow(image);
}

ImagePixels::~ImagePixels() { [data_ release]; }

uint32_t ImagePixels::at(size_t x, size_t y) const {
  if (data_ == nil || x >= width_ || y >= height_) return 0xDEADBEEF;
  uint32_t pixel = 0;  // BGRA in memory: 0xAARRGGBB read natively
  memcpy(&pixel, (const uint8_t *)[data_ bytes] + y * bytesPerRow_ + x * 4, 4);
  return pixel;
}

@implementation TVRawValueArray

- (instancetype)initWithValues:(const std::vector<const void *> &)values {
  self = [super init];
  if (self != nil) {
    _values = values;
  }
  return self;
}

- (NSUInteger)count {
  return _values.size();
}

- (id)objectAtIndex:(NSUInteger)index {
  return index < _values.size() ? (id)_values[index] : nil;
}

@end

NSArray *WindowArray(NSWindow *window) {
  return [NSArray arrayWithObject:[NSNumber numberWithUnsignedInt:(unsigned)[window windowNumber]]];
}

void WindowServerTest::SetUp() {
  PooledTest::SetUp();
  if (!HasWindowServer()) {
    GTEST_SKIP() << "needs a window server";
  }
  windows_ = [NSMutableArray new];
}

void WindowServerTest::TearDown() {
  for (NSWindow *window in windows_) {
    [window close];
  }
  [windows_ release];
  windows_ = nil;
  PooledTest::TearDown();
}

NSWindow *WindowServerTest::MakeWindow(NSRect frame, NSColor *fill, NSColor *marker, NSUInteger style) {
  NSWindow *window = NewMarkedWindow(frame, fill, marker, style);
  [windows_ addObject:window];
  [window release];
  return window;
}
