// The scan behind image trimming: the smallest rectangle of a pixel buffer
// that holds every pixel whose alpha byte is nonzero.
#pragma once

#include <cstdint>
#include <optional>

namespace talvo::images {

// Core Graphics' raw alpha-info values.
enum class AlphaInfo : uint32_t {
  None = 0,
  PremultipliedLast = 1,
  PremultipliedFirst = 2,
  Last = 3,
  First = 4,
  NoneSkipLast = 5,
  NoneSkipFirst = 6,
  Only = 7,
};

// Core Graphics' raw byte-order values (the bits under 0x7000).
enum class ByteOrder : uint32_t {
  Default = 0,
  Little16 = 1u << 12,
  Little32 = 2u << 12,
  Big16 = 3u << 12,
  Big32 = 4u << 12,
};

// A pixel buffer as the scan sees it: rows one after another, first row
// (the top of the image) first.
struct PixelBuffer {
  uint64_t width = 0;
  uint64_t height = 0;
  uint64_t bytesPerRow = 0;
  uint64_t bitsPerPixel = 0;
  uint64_t bitsPerComponent = 0;
  AlphaInfo alphaInfo = AlphaInfo::None;
  ByteOrder byteOrder = ByteOrder::Default;
  const uint8_t *bytes = nullptr;  // may stay null when the buffer has no alpha
  uint64_t length = 0;
};

// Pixels; the origin is the column and row of the top-left filled pixel.
struct PixelRect {
  uint64_t x = 0;
  uint64_t y = 0;
  uint64_t width = 0;
  uint64_t height = 0;
};

inline bool operator==(const PixelRect &a, const PixelRect &b) {
  return a.x == b.x && a.y == b.y && a.width == b.width && a.height == b.height;
}

// Everything but "none" and "none skip first" goes to the scan; the skipped
// last byte of "none skip last" is read as if it were alpha.
bool HasAlpha(AlphaInfo info);

// Whether pixels are four 8-bit components with the alpha (or padding)
// slot in the fourth byte: RGBA in memory, or BGRA in 32-bit little-endian.
bool AlphaIsFourthByte(const PixelBuffer &buffer);

// The filled rectangle. The whole buffer when it has no alpha (its bytes are
// not read); {0, 0, 0, 0} when no pixel is filled or the buffer has no
// area. nullopt when the buffer has alpha but not in the fourth byte, or
// its bytes are missing or too short for its rows: the caller converts it.
std::optional<PixelRect> FindFilledRect(const PixelBuffer &buffer);

}  // namespace talvo::images
