#import "GraphicsTestSupport.h"

#include <cstdlib>

#include "support/TestSupport.h"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

std::ostream &operator<<(std::ostream &out, const Pixel &p) {
  return out << "(" << p.r << "," << p.g << "," << p.b << "," << p.a << ")";
}

testing::AssertionResult PixelNear(const Pixel &actual, const Pixel &expected, int tolerance) {
  if (std::abs(actual.r - expected.r) <= tolerance && std::abs(actual.g - expected.g) <= tolerance &&
      std::abs(actual.b - expected.b) <= tolerance && std::abs(actual.a - expected.a) <= tolerance) {
    return testing::AssertionSuccess();
  }
  return testing::AssertionFailure() << "pixel " << actual << ", expected " << expected;
}

CGContextRef NewRGBAContext(size_t width, size_t height) {
  CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
  CGContextRef c =
      CGBitmapContextCreate(NULL, width, height, 8, 0, space, kCGImageAlphaPremultipliedLast);
  CGColorSpaceRelease(space);
  return c;
}

Pixel RGBAPixel(CGContextRef context, int x, int y) {
  const uint8_t *data = static_cast<const uint8_t *>(CGBitmapContextGetData(context));
  size_t height = CGBitmapContextGetHeight(context);
  if (!data || x < 0 || y < 0 || size_t(x) >= CGBitmapContextGetWidth(context) ||
      size_t(y) >= height) {
    return Pixel{-1, -1, -1, -1};
  }
  const uint8_t *p = data + (height - 1 - y) * CGBitmapContextGetBytesPerRow(context) + x * 4;
  return Pixel{p[0], p[1], p[2], p[3]};
}

Pixel RepPixel(NSBitmapImageRep *rep, int x, int y) {
  int row = int([rep pixelsHigh]) - 1 - y;
  NSColor *color = [[rep colorAtX:x y:row] colorUsingColorSpaceName:NSDeviceRGBColorSpace];
  if (!color) return Pixel{-1, -1, -1, -1};
  double a = [color alphaComponent];
  return Pixel{int(lround([color redComponent] * a * 255)), int(lround([color greenComponent] * a * 255)),
               int(lround([color blueComponent] * a * 255)), int(lround(a * 255))};
}

@implementation TVDrawingView

- (instancetype)initWithFrame:(NSRect)frame
                      flipped:(BOOL)flipped
                      drawing:(void (^)(NSView *view, NSRect dirty))drawing {
  if ((self = [super initWithFrame:frame])) {
    _drawing = [drawing copy];
    _flipped = flipped;
  }
  return self;
}

- (void)dealloc {
  [_drawing release];
  [super dealloc];
}

- (BOOL)isFlipped {
  return _flipped;
}

- (void)drawRect:(NSRect)dirty {
  if (_drawing) _drawing(self, dirty);
}

@end

NSBitmapImageRep *NewWindowSnapshot(NSSize size, BOOL flipped,
                                    void (^drawing)(NSView *view, NSRect dirty)) {
  if (!HasWindowServer()) return nil;
  NSRect frame = NSMakeRect(0, 0, size.width, size.height);
  NSWindow *window = [[NSWindow alloc] initWithContentRect:NSMakeRect(40, 40, size.width, size.height)
                                                 styleMask:NSBorderlessWindowMask
                                                   backing:NSBackingStoreBuffered
                                                     defer:NO];
  [window setReleasedWhenClosed:NO];
  TVDrawingView *view = [[TVDrawingView alloc] initWithFrame:frame flipped:flipped drawing:drawing];
  [window setContentView:view];
  [window orderFront:nil];
  [window display];
  [view lockFocus];
  NSBitmapImageRep *rep = [[NSBitmapImageRep alloc] initWithFocusedViewRect:[view bounds]];
  [view unlockFocus];
  [window orderOut:nil];
  [window close];
  [view release];
  [window release];
  return rep;
}

NSBitmapImageRep *NewLockFocusSnapshot(NSSize size, void (^drawing)(void)) {
  NSImage *image = [[NSImage alloc] initWithSize:size];
  [image lockFocus];
  [[NSColor clearColor] set];
  NSRectFillUsingOperation(NSMakeRect(0, 0, size.width, size.height), NSCompositeCopy);
  drawing();
  NSBitmapImageRep *rep =
      [[NSBitmapImageRep alloc] initWithFocusedViewRect:NSMakeRect(0, 0, size.width, size.height)];
  [image unlockFocus];
  [image release];
  return rep;
}
