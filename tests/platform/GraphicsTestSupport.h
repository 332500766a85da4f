// Helpers for the graphics tests: pixels of bitmap contexts, bitmap reps
// and windows, compared with a tolerance.
#pragma once

#import <AppKit/AppKit.h>
#include <CoreGraphics/CoreGraphics.h>

#include <gtest/gtest.h>

#include "support/TestSupport.h"

#include <functional>
#include <ostream>

// A pixel, 0...255 per channel, premultiplied as stored.
struct Pixel {
  int r = 0, g = 0, b = 0, a = 0;
};

inline bool operator==(const Pixel &x, const Pixel &y) {
  return x.r == y.r && x.g == y.g && x.b == y.b && x.a == y.a;
}
std::ostream &operator<<(std::ostream &out, const Pixel &p);

// Within `tolerance` per channel.
testing::AssertionResult PixelNear(const Pixel &actual, const Pixel &expected, int tolerance = 2);
#define EXPECT_PIXEL(actual, ...) EXPECT_TRUE(PixelNear((actual), Pixel{__VA_ARGS__}))
#define EXPECT_PIXEL_NEAR(actual, tolerance, ...) \
  EXPECT_TRUE(PixelNear((actual), Pixel{__VA_ARGS__}, (tolerance)))

// An RGBA (premultiplied, alpha last, memory order R G B A) bitmap context
// with its own zeroed memory; +1.
CGContextRef NewRGBAContext(size_t width, size_t height);
// Pixel (x, y) of an RGBA context, y measured from the bottom (Quartz).
Pixel RGBAPixel(CGContextRef context, int x, int y);

// Pixel (x, y) of a bitmap rep, y measured from the bottom, premultiplied.
Pixel RepPixel(NSBitmapImageRep *rep, int x, int y);

// A view that runs a block in drawRect:.
@interface TVDrawingView : NSView {
  void (^_drawing)(NSView *view, NSRect dirty);
  BOOL _flipped;
}
- (instancetype)initWithFrame:(NSRect)frame
                      flipped:(BOOL)flipped
                      drawing:(void (^)(NSView *view, NSRect dirty))drawing;
@end

// Runs `drawing` in the drawRect: of a `size` view (flipped or not) in a
// borderless window, displays it and answers the view's pixels (+1 rep,
// rows from the top as NSBitmapImageRep stores them). Nil without a window
// server.
NSBitmapImageRep *NewWindowSnapshot(NSSize size, BOOL flipped,
                                    void (^drawing)(NSView *view, NSRect dirty));

// Draws into an NSImage of `size` with lockFocus and answers its pixels (+1).
NSBitmapImageRep *NewLockFocusSnapshot(NSSize size, void (^drawing)(void));

// A fixture whose tests need a window server (skipped without one).
class WindowGraphicsTest : public PooledTest {
 protected:
  void SetUp() override {
    PooledTest::SetUp();
    if (!HasWindowServer()) GTEST_SKIP() << "needs a window server";
  }
};
