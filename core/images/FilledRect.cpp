#include "core/images/FilledRect.hpp"

namespace talvo::images {

bool HasAlpha(AlphaInfo info) {
  return info != AlphaInfo::None && info != AlphaInfo::NoneSkipFirst;
}

bool AlphaIsFourthByte(const PixelBuffer &buffer) {
  if (buffer.bitsPerComponent != 8 || buffer.bitsPerPixel != 32) {
    return false;
  }
  switch (buffer.alphaInfo) {
    case AlphaInfo::PremultipliedLast:
    case AlphaInfo::Last:
    case AlphaInfo::NoneSkipLast:
      return buffer.byteOrder == ByteOrder::Default || buffer.byteOrder == ByteOrder::Big32;
    case AlphaInfo::PremultipliedFirst:
    case AlphaInfo::First:
    case AlphaInfo::NoneSkipFirst:
      return buffer.byteOrder == ByteOrder::Little32;
    default:
      return false;
  }
}

std::optional<PixelRect> FindFilledRect(const PixelBuffer &buffer) {
  const uint64_t width = buffer.width;
  const uint64_t height = buffer.height;
  if (!HasAlpha(buffer.alphaInfo)) {
    return PixelRect{0, 0, width, height};
  }
  if (width == 0 || height == 0) {
    return PixelRect{};
  }
  if (!AlphaIsFourthByte(buffer) || buffer.bytes == nullptr) {
    return std::nullopt;
  }
  const uint64_t stride = buffer.bitsPerPixel / buffer.bitsPerComponent;
  const uint64_t rowBytes = buffer.bytesPerRow;
  // The last byte read is the last pixel's alpha byte; refuse rather than
  // read past the data (checked without overflow).
  if (width > UINT64_MAX / stride) {
    return std::nullopt;
  }
  const uint64_t usedPerRow = width * stride;
  if (rowBytes < usedPerRow || usedPerRow > buffer.length ||
      height - 1 > (buffer.length - usedPerRow) / rowBytes) {
    return std::nullopt;
  }

  uint64_t left = width, right = 0, top = height, bottom = 0;
  const uint8_t *row = buffer.bytes + 3;
  for (uint64_t y = 0; y < height; ++y, row += rowBytes) {
    const uint8_t *alpha = row;
    for (uint64_t x = 0; x < width; ++x, alpha += stride) {
      if (*alpha != 0) {
        if (x < left) left = x;
        if (x > right) right = x;
        if (y < top) top = y;
        if (y > bottom) bottom = y;
      }
    }
  }
  if (left > right) {
    return PixelRect{};
  }
  return PixelRect{left, top, right - left + 1, bottom - top + 1};
}

}  // namespace talvo::images
