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

// Random access to the bytes of a buffer or a file.
class ByteSource {
 public:
  virtual ~ByteSource() = default;
  virtual size_t size() const = 0;
  // Copies `count` bytes from `offset`; false unless all of them are there.
  virtual bool read(size_t offset, size_t count, uint8_t *out) = 0;
};

class MemorySource : public ByteSource {
 public:
  MemorySource(const uint8_t *data, size_t size) : data_(data), size_(size) {}
  size_t size() const override { return size_; }
  bool read(size_t offset, size_t count, uint8_t *out) override;

 private:
  const uint8_t *data_;
  size_t size_;
};

// An open file of `size` bytes read with pread in 4 KB blocks, the last
// few kept: a header read costs a block or two whatever the file's size
// (a TIFF directory at the end of the file, JPEG metadata segments before
// the frame header are skipped over, not read). The descriptor stays the
// caller's. A size of kUnknownSize spares the caller an fstat: reads then
// fail where the file ends, as they fail past a known size.
class FileSource : public ByteSource {
 public:
  static constexpr size_t kUnknownSize = SIZE_MAX;
  FileSource(int fd, size_t size) : fd_(fd), size_(size) {}
  size_t size() const override { return size_; }
  bool read(size_t offset, size_t count, uint8_t *out) override;

 private:
  static constexpr size_t kBlockSize = 4096;
  static constexpr size_t kBlocks = 4;
  struct Block {
    size_t index = 0;
    size_t length = 0;  // 0: empty
    uint8_t data[kBlockSize];
  };
  int fd_;
  size_t size_;
  size_t next_ = 0;
  Block blocks_[kBlocks];
};

// The format the leading bytes announce (signature only).
Format SniffFormat(const uint8_t *data, size_t size);

// Fills `info` from the header. False (and `info` reset) when the format is
// unknown or the header is cut short or inconsistent (a zero width or
// height included).
bool ReadHeader(const uint8_t *data, size_t size, HeaderInfo *info);
// The same from any source. Without `countImages` the image count stays 1
// and a GIF's alpha is its first frame's: nothing past the first image is
// read.
bool ReadHeader(ByteSource &source, HeaderInfo *info, bool countImages);

// Whether a file whose header reads as `info` also has its end: the IEND
// chunk of a PNG, the trailer of a GIF, an end-of-image marker in the last
// bytes of a JPEG, a BMP's whole pixel array, a WebP's whole RIFF body.
// TIFF answers true (its directories say where data is, not where the file
// ends). A cheap test for a file cut short; it does not find corruption
// inside a file.
bool LooksComplete(ByteSource &source, const HeaderInfo &info);

// The uniform type identifier of a format ("public.png"), or nullptr.
const char *TypeIdentifier(Format format);

}  // namespace talvo::imageio
