#include "images/ImageTestSupport.h"

namespace imagetest {

std::ostream &operator<<(std::ostream &out, const RGBA &p) {
  return out << "{" << p.r << ", " << p.g << ", " << p.b << ", " << p.a << "}";
}

CGImageRef NewImage(const std::vector<uint8_t> &bytes, size_t width, size_t height,
                    size_t bitsPerComponent, size_t bitsPerPixel, size_t bytesPerRow,
                    CGBitmapInfo info, bool gray) {
  NSData *data = [NSData dataWithBytes:bytes.data() length:bytes.size()];
  CGDataProviderRef provider = CGDataProviderCreateWithCFData((CFDataRef)data);
  CGColorSpaceRef space = nullptr;
  if ((info & kCGBitmapAlphaInfoMask) != kCGImageAlphaOnly) {
    space = gray ? CGColorSpaceCreateDeviceGray() : CGColorSpaceCreateDeviceRGB();
  }
  CGImageRef image = CGImageCreate(width, height, bitsPerComponent, bitsPerPixel, bytesPerRow,
                                   space, info, provider, nullptr, false,
                                   kCGRenderingIntentDefault);
  CGColorSpaceRelease(space);
  CGDataProviderRelease(provider);
  return image;
}

CGImageRef NewRGBAImage(size_t width, size_t height, const std::vector<Dot> &dots) {
  std::vector<Block> blocks;
  for (const Dot &dot : dots) blocks.push_back({dot.x, dot.y, 1, 1, dot.color});
  return NewRGBAImageWithBlocks(width, height, blocks);
}

CGImageRef NewRGBAImageWithBlocks(size_t width, size_t height, const std::vector<Block> &blocks) {
  std::vector<uint8_t> bytes(width * height * 4, 0);
  for (const Block &block : blocks) {
    for (size_t y = block.y; y < block.y + block.height; ++y) {
      for (size_t x = block.x; x < block.x + block.width; ++x) {
        uint8_t *p = &bytes[(y * width + x) * 4];
        p[0] = uint8_t(block.color.r);
        p[1] = uint8_t(block.color.g);
        p[2] = uint8_t(block.color.b);
        p[3] = uint8_t(block.color.a);
      }
    }
  }
  return NewImage(bytes, width, height, 8, 32, width * 4, kCGImageAlphaPremultipliedLast);
}

RGBA ImagePixel(CGImageRef image, size_t x, size_t y) {
  EXPECT_EQ(CGImageGetBitsPerPixel(image), 32u);
  NSData *data = (NSData *)CGDataProviderCopyData(CGImageGetDataProvider(image));
  const uint8_t *p = static_cast<const uint8_t *>([data bytes]) +
                     y * CGImageGetBytesPerRow(image) + x * 4;
  RGBA pixel{p[0], p[1], p[2], p[3]};
  [data release];
  return pixel;
}

NSBitmapImageRep *NewRep(NSInteger width, NSInteger height) {
  NSBitmapImageRep *rep = [[NSBitmapImageRep alloc] initWithBitmapDataPlanes:NULL
                                                                  pixelsWide:width
                                                                  pixelsHigh:height
                                                               bitsPerSample:8
                                                             samplesPerPixel:4
                                                                    hasAlpha:YES
                                                                    isPlanar:NO
                                                              colorSpaceName:NSDeviceRGBColorSpace
                                                                bitmapFormat:NSBitmapFormat(0)
                                                                 bytesPerRow:width * 4
                                                                bitsPerPixel:32];
  memset([rep bitmapData], 0, size_t(width * height * 4));
  return rep;
}

void DrawIntoRep(NSBitmapImageRep *rep, void (^draw)(void)) {
  NSGraphicsContext *context = [NSGraphicsContext graphicsContextWithBitmapImageRep:rep];
  ASSERT_NE(context, nil);
  [NSGraphicsContext saveGraphicsState];
  [NSGraphicsContext setCurrentContext:context];
  draw();
  [context flushGraphics];
  [NSGraphicsContext restoreGraphicsState];
}

NSBitmapImageRep *NewRepOfImage(NSImage *image, NSInteger width, NSInteger height) {
  NSBitmapImageRep *rep = NewRep(width, height);
  DrawIntoRep(rep, ^{
    [image drawInRect:NSMakeRect(0, 0, width, height)
             fromRect:NSZeroRect
            operation:NSCompositeSourceOver
             fraction:1.0];
  });
  return rep;
}

RGBA RepPixel(NSBitmapImageRep *rep, NSInteger x, NSInteger y) {
  const uint8_t *p = [rep bitmapData] + y * [rep bytesPerRow] + x * 4;
  return RGBA{p[0], p[1], p[2], p[3]};
}

}  // namespace imagetest
