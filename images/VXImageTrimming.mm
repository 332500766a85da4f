#import <Talvo/VXImageTrimming.h>

#include <optional>

#include "core/images/FilledRect.hpp"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

namespace ti = talvo::images;

#pragma mark - Private

static ti::PixelBuffer TVDescribeImage(CGImageRef image) {
  ti::PixelBuffer buffer;
  buffer.width = CGImageGetWidth(image);
  buffer.height = CGImageGetHeight(image);
  buffer.bytesPerRow = CGImageGetBytesPerRow(image);
  buffer.bitsPerPixel = CGImageGetBitsPerPixel(image);
  buffer.bitsPerComponent = CGImageGetBitsPerComponent(image);
  buffer.alphaInfo = ti::AlphaInfo(CGImageGetAlphaInfo(image));
  buffer.byteOrder = ti::ByteOrder(CGImageGetBitmapInfo(image) & kCGBitmapByteOrderMask);
  return buffer;
}

// Scans a copy of the image's own bytes; nullopt when their layout does
// not have the alpha in the fourth byte.
static std::optional<ti::PixelRect> TVScanImageBytes(CGImageRef image, ti::PixelBuffer buffer) {
  if (!ti::AlphaIsFourthByte(buffer)) {
    return std::nullopt;
  }
  CFDataRef data = CGDataProviderCopyData(CGImageGetDataProvider(image));
  if (data == NULL) {
    return std::nullopt;
  }
  buffer.bytes = static_cast<const uint8_t *>([(NSData *)data bytes]);
  buffer.length = [(NSData *)data length];
  std::optional<ti::PixelRect> rect = ti::FindFilledRect(buffer);
  CFRelease(data);
  return rect;
}

// Other layouts (16-bit, alpha first in big-endian order, alpha only, ...)
// are drawn into 8-bit RGBA first, which has the alpha in the fourth byte.
static std::optional<ti::PixelRect> TVScanRedrawnImage(CGImageRef image,
                                                       const ti::PixelBuffer &original) {
  CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
  CGContextRef context =
      CGBitmapContextCreate(NULL, size_t(original.width), size_t(original.height), 8,
                            size_t(original.width) * 4, space, kCGImageAlphaPremultipliedLast);
  CGColorSpaceRelease(space);
  if (context == NULL) {
    return std::nullopt;
  }
  CGContextSetBlendMode(context, kCGBlendModeCopy);
  CGContextDrawImage(context, CGRectMake(0, 0, original.width, original.height), image);
  ti::PixelBuffer buffer;
  buffer.width = original.width;
  buffer.height = original.height;
  buffer.bytesPerRow = CGBitmapContextGetBytesPerRow(context);
  buffer.bitsPerPixel = 32;
  buffer.bitsPerComponent = 8;
  buffer.alphaInfo = ti::AlphaInfo::PremultipliedLast;
  buffer.bytes = static_cast<const uint8_t *>(CGBitmapContextGetData(context));
  buffer.length = buffer.bytesPerRow * buffer.height;
  std::optional<ti::PixelRect> rect = ti::FindFilledRect(buffer);
  CGContextRelease(context);
  return rect;
}

#pragma mark - Public

CGRect VXGetFilledRect(CGImageRef image) {
  if (image == NULL) {
    return CGRectZero;
  }
  ti::PixelBuffer buffer = TVDescribeImage(image);
  std::optional<ti::PixelRect> rect = ti::FindFilledRect(buffer);  // reads no bytes
  if (!rect && ti::AlphaIsFourthByte(buffer)) {
    rect = TVScanImageBytes(image, buffer);
  }
  if (!rect) {
    rect = TVScanRedrawnImage(image, buffer);
  }
  if (!rect) {
    return CGRectZero;
  }
  return CGRectMake(double(rect->x), double(rect->y), double(rect->width), double(rect->height));
}

CGImageRef VXCreateImageByTrimmingImage(CGImageRef image) {
  if (image == NULL) {
    return NULL;
  }
  CGRect filled = VXGetFilledRect(image);
  if (CGRectIsEmpty(filled)) {
    return NULL;
  }
  return CGImageCreateWithImageInRect(image, filled);
}
