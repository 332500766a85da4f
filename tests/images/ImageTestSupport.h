// Helpers for the image tests: images made from bytes, drawing into bitmap
// reps, and pixels read back.
#pragma once

#import <AppKit/AppKit.h>
#include <CoreGraphics/CoreGraphics.h>

#include <cstdint>
#include <ostream>
#include <vector>

#include "support/TestSupport.h"

namespace imagetest {

struct RGBA {
  int r = 0, g = 0, b = 0, a = 0;
};
inline bool operator==(const RGBA &x, const RGBA &y) {
  return x.r == y.r && x.g == y.g && x.b == y.b && x.a == y.a;
}
std::ostream &operator<<(std::ostream &out, const RGBA &p);

constexpr RGBA kClear{0, 0, 0, 0};
constexpr RGBA kRed{255, 0, 0, 255};
constexpr RGBA kGreen{0, 255, 0, 255};
constexpr RGBA kBlue{0, 0, 255, 255};

// An image over a copy of `bytes` (+1); `space` defaults to device RGB.
CGImageRef NewImage(const std::vector<uint8_t> &bytes, size_t width, size_t height,
                    size_t bitsPerComponent, size_t bitsPerPixel, size_t bytesPerRow,
                    CGBitmapInfo info, bool gray = false);

// A `width` x `height` RGBA image (premultiplied last), transparent except
// for the given pixels, counted from the top row.
struct Dot {
  size_t x, y;
  RGBA color;
};
CGImageRef NewRGBAImage(size_t width, size_t height, const std::vector<Dot> &dots);

// An RGBA image in which `rects` (pixels, rows from the top) are filled.
struct Block {
  size_t x, y, width, height;
  RGBA color;
};
CGImageRef NewRGBAImageWithBlocks(size_t width, size_t height, const std::vector<Block> &blocks);

// Pixel (x, y), rows from the top, of an 8-bit RGBA image.
RGBA ImagePixel(CGImageRef image, size_t x, size_t y);

// A zeroed RGBA bitmap rep, +1.
NSBitmapImageRep *NewRep(NSInteger width, NSInteger height);

// Runs `draw` with a context on `rep` current; the pixels are in the rep
// when it returns.
void DrawIntoRep(NSBitmapImageRep *rep, void (^draw)(void));

// The image drawn over a new `width` x `height` rep (+1).
NSBitmapImageRep *NewRepOfImage(NSImage *image, NSInteger width, NSInteger height);

// Pixel (x, y), rows from the top, premultiplied as stored.
RGBA RepPixel(NSBitmapImageRep *rep, NSInteger x, NSInteger y);

}  // namespace imagetest

// A pooled fixture for tests that need a window server.
class ImageTest : public PooledTest {
 protected:
  void SetUp() override {
    PooledTest::SetUp();
    if (!HasWindowServer()) {
      GTEST_SKIP() << "needs a window server";
    }
  }
};

#define EXPECT_CGRECT_EQ(actual, ex, ey, ew, eh) \
  do {                                             \
    CGRect r_ = (actual);                          \
    EXPECT_EQ(r_.origin.x, (ex));                  \
    EXPECT_EQ(r_.origin.y, (ey));                  \
    EXPECT_EQ(r_.size.width, (ew));                \
    EXPECT_EQ(r_.size.height, (eh));               \
  } while (0)
