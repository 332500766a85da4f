// Shared helpers for the controls tests: icons and artwork of known
// colours, windows of one colour, pixels of a view as its window shows it.
#pragma once

#import <AppKit/AppKit.h>

#import "platform/GraphicsTestSupport.h"
#import "windows/WindowTestSupport.h"

// A `size` image, clear, with an opaque `color` square inset by `inset`.
NSImage *SquareIcon(NSSize size, CGFloat inset, NSColor *color);

// A gradient of one colour (both stops equal), so that fills are exact.
NSGradient *SolidGradient(NSColor *color);

// A titled window of `size` whose content is a plain view filled with
// `color`, ordered front; autoreleased.
NSWindow *ColoredWindow(NSRect frame, NSColor *color);

// A view filled with one colour.
@interface TVControlsBackdrop : NSView {
  NSColor *_color;
}
- (instancetype)initWithFrame:(NSRect)frame color:(NSColor *)color;
@end

// On the manual clock with a window server; each test's windows closed.
class ControlsTest : public WindowTest {
 protected:
  void TearDown() override;
  // A window with a `color` backdrop, ordered front and made key; it is
  // closed when the test ends.
  NSWindow *Window(NSRect frame, NSColor *color = [NSColor whiteColor]);
  // Pixel (x, y) of `view` in its own coordinates (y from the bottom).
  Pixel ViewPixel(NSView *view, double x, double y);
  // Fresh pixels of `view` (+1).
  NSBitmapImageRep *Snapshot(NSView *view) { return NewViewSnapshot(view); }

  Owned<NSMutableArray> windows_{[NSMutableArray new]};
};

#define EXPECT_PIXEL_AT(view, x, y, ...)                                     \
  EXPECT_TRUE(PixelNear(ViewPixel((view), (x), (y)), Pixel{__VA_ARGS__}, 3)) \
      << "at " << (x) << "," << (y)
