// What an image file's header says, read without decoding any pixels.
//
// Formats: PNG (IHDR, pHYs, tRNS), JPEG (the SOF marker found by walking
// the segments, JFIF density, EXIF orientation and resolution), GIF (the
// logical screen, transparency, the frame count), BMP (core and info
// headers; a top-down file's height is given as a positive number), TIFF
// (IFD0's size, orientation, resolution and extra samples; the IFD count)
// and WebP (VP8, VP8L and VP8X chunks; an animation counts as one image).
// Every read is checked against the buffer: truncated or corrupt input
// gives false, never a read out of bounds.
// Not covered: APNG frames, JPEG DNL heights, BigTIFF, HEIC/AVIF, ICO.
#pragma once

#include <cstddef>
#include <cstdint>

namespace talvo::imageio {

enum class Format { Unknown, PNG, JPEG, GIF, BMP, TIFF, WebP };

struct HeaderInfo {
  Format format = Format::Unknown;
  uint32_t width = 0;  // stored pixels, before any orientation
  uint32_t height = 0;
  int orientation = 0;  // EXIF/TIFF 1...8, 0 when the file states none
  double dpiWidth = 0;  // 0 when the file states no resolution
  double dpiHeight = 0;
  bool hasAlpha = false;
  size_t imageCount = 1;  // GIF frames, TIFF directories; 1 otherwise
};

// The format the leading bytes announce (signature only).
Format SniffFormat(const uint8_t *data, size_t size);

// Fills `info` from the header. False (and `info` reset) when the format is
// unknown or the header is cut short or inconsistent (a zero width or
// height included).
bool ReadHeader(const uint8_t *data, size_t size, HeaderInfo *info);

// The uniform type identifier of a format ("public.png"), or nullptr.
const char *TypeIdentifier(Format format);

// How many bytes of a file ReadHeader usually needs; callers reading from
// disk start with this many and retry with the whole file if it fails.
constexpr size_t kHeaderPrefixBytes = 64 * 1024;

}  // namespace talvo::imageio
