// Helpers for the window platform tests: real windows under Xvfb, the X
// stacking order read straight from the server, and the pixels of window
// pictures.
#pragma once

#import <AppKit/AppKit.h>
#include <CoreGraphics/CoreGraphics.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "support/TestSupport.h"

// A view that fills its bounds with one colour and a 10 x 10 marker of
// another at its top-left corner.
@interface TVMarkedView : NSView {
  NSColor *_fill;
  NSColor *_marker;
}
- (instancetype)initWithFrame:(NSRect)frame fill:(NSColor *)fill marker:(NSColor *)marker;
@end

// A borderless (or `style`) buffered window at `frame` whose content is a
// TVMarkedView, ordered front and drawn; +1. Not released when closed.
NSWindow *NewMarkedWindow(NSRect frame, NSColor *fill, NSColor *marker,
                          NSUInteger style = NSBorderlessWindowMask);


// X stacking position of each window among the root's children (bottom =
// 0), -1 when it is not there.
std::vector<int> XStackingIndexes(NSArray *windows);

// The pixels of a window picture (read once), each premultiplied as
// 0xAARRGGBB; 0xDEADBEEF outside the image.
class ImagePixels {
 public:
  explicit ImagePixels(CGImageRef image);
  ~ImagePixels();
  ImagePixels(const ImagePixels &) = delete;
  ImagePixels &operator=(const ImagePixels &) = delete;
  uint32_t at(size_t x, size_t y) const;
  size_t width() const { return width_; }
  size_t height() const { return height_; }

 private:
  NSData *data_ = nil;
  size_t width_ = 0, height_ = 0, bytesPerRow_ = 0;
};

// An array that holds raw values it never retains, like a CFArray made
// with NULL callbacks (how Quartz callers pass window ids).
@interface TVRawValueArray : NSArray {
  std::vector<const void *> _values;
}
- (instancetype)initWithValues:(const std::vector<const void *> &)values;
@end

// A CGWindowID array of one window, autoreleased.
NSArray *WindowArray(NSWindow *window);

// A fixture that needs a window server and closes the windows it made.
class WindowServerTest : public PooledTest {
 protected:
  void SetUp() override;
  void TearDown() override;
  // A marked window owned by the fixture.
  NSWindow *MakeWindow(NSRect frame, NSColor *fill, NSColor *marker,
                       NSUInteger style = NSBorderlessWindowMask);

 private:
  NSMutableArray *windows_ = nil;
};
