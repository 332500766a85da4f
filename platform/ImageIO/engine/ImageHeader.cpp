#include "platform/ImageIO/engine/ImageHeader.hpp"

#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <cstring>

namespace talvo::imageio {

namespace {

// Bounds-checked reads from a window of a byte source: every accessor
// answers false past the end.
class Bytes {
 public:
  Bytes(ByteSource *source, size_t base, size_t size) : source_(source), base_(base), size_(size) {}
  size_t size() const { return size_; }
  bool has(size_t offset, size_t count) const { return offset <= size_ && count <= size_ - offset; }
  bool u8(size_t at, uint32_t *v) const {
    uint8_t p[1];
    if (!get(at, 1, p)) return false;
    *v = p[0];
    return true;
  }
  bool u16(size_t at, bool big, uint32_t *v) const {
    uint8_t p[2];
    if (!get(at, 2, p)) return false;
    *v = big ? (p[0] << 8 | p[1]) : (p[1] << 8 | p[0]);
    return true;
  }
  bool u32(size_t at, bool big, uint32_t *v) const {
    uint8_t p[4];
    if (!get(at, 4, p)) return false;
    *v = big ? (uint32_t(p[0]) << 24 | p[1] << 16 | p[2] << 8 | p[3])
             : (uint32_t(p[3]) << 24 | p[2] << 16 | p[1] << 8 | p[0]);
    return true;
  }
  bool equals(size_t at, const char *text) const {
    uint8_t p[16];
    size_t n = strlen(text);
    return n <= sizeof p && get(at, n, p) && memcmp(p, text, n) == 0;
  }
  // The `count` bytes from `offset` (fewer at the end of the window).
  Bytes range(size_t offset, size_t count) const {
    if (offset > size_) return Bytes(source_, base_, 0);
    return Bytes(source_, base_ + offset, count < size_ - offset ? count : size_ - offset);
  }

 private:
  bool get(size_t at, size_t count, uint8_t *out) const {
    return has(at, count) && source_->read(base_ + at, count, out);
  }
  ByteSource *source_;
  size_t base_;
  size_t size_;
};

constexpr double kInchesPerMetre = 0.0254;

// Pixels per metre are whole numbers, so 72 dpi is stored as 2835 (72.009):
// a resolution from metres is rounded to whole dots per inch.
double DPIFromPixelsPerMetre(uint32_t ppm) { return std::round(ppm * kInchesPerMetre); }

bool ReadPNG(const Bytes &b, HeaderInfo *info) {
  uint32_t length = 0, width = 0, height = 0, colorType = 0;
  if (!b.u32(8, true, &length) || !b.equals(12, "IHDR") || length < 13) return false;
  if (!b.u32(16, true, &width) || !b.u32(20, true, &height) || !b.u8(25, &colorType)) return false;
  // The format limits both sides to 2^31 - 1.
  if (width == 0 || height == 0 || width > 0x7FFFFFFFu || height > 0x7FFFFFFFu) return false;
  info->width = width;
  info->height = height;
  info->hasAlpha = colorType == 4 || colorType == 6;
  // The chunks before the image data: transparency and physical size.
  size_t at = 8;
  for (int chunks = 0; chunks < 4096; chunks++) {
    uint32_t chunkLength = 0;
    if (!b.u32(at, true, &chunkLength) || !b.has(at + 4, 4)) break;
    size_t body = at + 8;
    if (b.equals(at + 4, "IDAT") || b.equals(at + 4, "IEND")) break;
    if (b.equals(at + 4, "tRNS")) info->hasAlpha = true;
    if (b.equals(at + 4, "pHYs") && chunkLength >= 9) {
      uint32_t x = 0, y = 0, unit = 0;
      if (b.u32(body, true, &x) && b.u32(body + 4, true, &y) && b.u8(body + 8, &unit) &&
          unit == 1) {
        info->dpiWidth = DPIFromPixelsPerMetre(x);
        info->dpiHeight = DPIFromPixelsPerMetre(y);
      }
    }
    if (chunkLength > b.size()) break;
    at = body + size_t(chunkLength) + 4;
  }
  return true;
}

double Rational(const Bytes &tiff, uint32_t offset, bool big) {
  uint32_t n = 0, d = 0;
  if (!tiff.u32(offset, big, &n) || !tiff.u32(offset + 4, big, &d) || d == 0) return 0;
  return double(n) / double(d);
}

struct TIFFFields {
  uint32_t width = 0, height = 0;
  int orientation = 0;
  double xRes = 0, yRes = 0;
  uint32_t unit = 2;  // inches unless the file says otherwise
  bool extraSamples = false;
  uint32_t next = 0;
};

// One IFD of a TIFF structure (a TIFF file or an EXIF block).
bool ReadIFD(const Bytes &tiff, bool big, uint32_t offset, TIFFFields *f) {
  uint32_t count = 0;
  if (!tiff.u16(offset, big, &count)) return false;
  for (uint32_t i = 0; i < count; i++) {
    size_t entry = size_t(offset) + 2 + size_t(i) * 12;
    uint32_t tag = 0, type = 0, n = 0, value = 0;
    if (!tiff.u16(entry, big, &tag) || !tiff.u16(entry + 2, big, &type) ||
        !tiff.u32(entry + 4, big, &n)) {
      return false;
    }
    // SHORT values sit in the first two bytes of the value field.
    bool ok = type == 3 ? tiff.u16(entry + 8, big, &value) : tiff.u32(entry + 8, big, &value);
    if (!ok) return false;
    switch (tag) {
      case 256:
        f->width = value;
        break;
      case 257:
        f->height = value;
        break;
      case 274:
        f->orientation = (value >= 1 && value <= 8) ? int(value) : 0;
        break;
      case 282:
        if (type == 5) f->xRes = Rational(tiff, value, big);
        break;
      case 283:
        if (type == 5) f->yRes = Rational(tiff, value, big);
        break;
      case 296:
        f->unit = value;
        break;
      case 338:
        f->extraSamples = n > 0 && (value == 1 || value == 2 || type != 3 || n > 1);
        break;
      default:
        break;
    }
  }
  uint32_t next = 0;
  tiff.u32(size_t(offset) + 2 + size_t(count) * 12, big, &next);
  f->next = next;
  return true;
}

double ToDPI(double resolution, uint32_t unit) {
  if (unit == 3) return resolution * 2.54;
  if (unit == 2) return resolution;
  return 0;
}

bool TIFFByteOrder(const Bytes &b, bool *big) {
  if (b.equals(0, "II*")) {
    *big = false;
  } else if (b.equals(0, "MM")) {
    *big = true;
  } else {
    return false;
  }
  uint32_t magic = 0;
  return b.u16(2, *big, &magic) && magic == 42;
}

bool ReadTIFF(const Bytes &b, HeaderInfo *info, bool countImages) {
  bool big = false;
  uint32_t offset = 0;
  if (!TIFFByteOrder(b, &big) || !b.u32(4, big, &offset)) return false;
  TIFFFields f;
  if (!ReadIFD(b, big, offset, &f) || f.width == 0 || f.height == 0) return false;
  info->width = f.width;
  info->height = f.height;
  info->orientation = f.orientation;
  info->dpiWidth = ToDPI(f.xRes, f.unit);
  info->dpiHeight = ToDPI(f.yRes, f.unit);
  info->hasAlpha = f.extraSamples;
  // Count the directories; a chain that loops back stops at the cap.
  size_t images = 1;
  uint32_t next = f.next;
  while (countImages && next != 0 && images < 1024) {
    TIFFFields more;
    if (next <= offset || !ReadIFD(b, big, next, &more)) break;
    offset = next;
    next = more.next;
    images++;
  }
  info->imageCount = images;
  return true;
}

// An APP1 "Exif" block: a TIFF structure whose IFD0 has orientation and
// resolution.
void ReadExif(const Bytes &exif, HeaderInfo *info) {
  bool big = false;
  uint32_t offset = 0;
  if (!TIFFByteOrder(exif, &big) || !exif.u32(4, big, &offset)) return;
  TIFFFields f;
  if (!ReadIFD(exif, big, offset, &f)) return;
  info->orientation = f.orientation;
  if (f.xRes > 0 && f.yRes > 0 && info->dpiWidth == 0) {
    info->dpiWidth = ToDPI(f.xRes, f.unit);
    info->dpiHeight = ToDPI(f.yRes, f.unit);
  }
}

bool IsSOF(uint32_t marker) {
  return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

bool ReadJPEG(const Bytes &b, HeaderInfo *info) {
  size_t at = 2;
  for (int segments = 0; segments < 65536; segments++) {
    uint32_t byte = 0, marker = 0;
    if (!b.u8(at, &byte) || byte != 0xFF) return false;
    // Any number of fill bytes may precede a marker.
    do {
      at++;
      if (!b.u8(at, &marker)) return false;
    } while (marker == 0xFF);
    at++;
    if (marker == 0xD8 || marker == 0x01 || (marker >= 0xD0 && marker <= 0xD7)) continue;
    if (marker == 0xD9 || marker == 0xDA) return false;  // image data before any frame header
    uint32_t length = 0;
    if (!b.u16(at, true, &length) || length < 2 || !b.has(at, length)) return false;
    size_t body = at + 2;
    if (IsSOF(marker)) {
      uint32_t height = 0, width = 0;
      if (length < 8 || !b.u16(body + 1, true, &height) || !b.u16(body + 3, true, &width)) {
        return false;
      }
      if (width == 0 || height == 0) return false;
      info->width = width;
      info->height = height;
      return true;
    }
    if (marker == 0xE0 && b.equals(body, "JFIF") && length >= 16) {
      uint32_t units = 0, x = 0, y = 0;
      b.u8(body + 7, &units);
      b.u16(body + 8, true, &x);
      b.u16(body + 10, true, &y);
      double scale = units == 1 ? 1 : units == 2 ? 2.54 : 0;
      if (scale > 0 && x > 0 && y > 0) {
        info->dpiWidth = x * scale;
        info->dpiHeight = y * scale;
      }
    }
    if (marker == 0xE1 && b.equals(body, "Exif") && length >= 8 + 6) {
      ReadExif(b.range(body + 6, length - 8), info);
    }
    at += length;
  }
  return false;
}

bool ReadGIF(const Bytes &b, HeaderInfo *info, bool countImages) {
  uint32_t width = 0, height = 0, flags = 0;
  if (!b.u16(6, false, &width) || !b.u16(8, false, &height) || !b.u8(10, &flags)) return false;
  if (width == 0 || height == 0) return false;
  info->width = width;
  info->height = height;
  size_t at = 13;
  if (flags & 0x80) at += 3u << ((flags & 7) + 1);
  // Walk the blocks to count frames and find a transparent colour.
  size_t frames = 0;
  for (int blocks = 0; blocks < (1 << 20); blocks++) {
    uint32_t kind = 0;
    if (!b.u8(at, &kind) || kind == 0x3B) break;
    size_t subBlocks = 0;
    if (kind == 0x21) {
      uint32_t label = 0, packed = 0;
      if (!b.u8(at + 1, &label)) break;
      if (label == 0xF9 && b.u8(at + 3, &packed) && (packed & 1)) info->hasAlpha = true;
      subBlocks = at + 2;
    } else if (kind == 0x2C) {
      uint32_t local = 0;
      if (!b.u8(at + 9, &local)) break;
      // Without counting, the first frame (and its control block) is enough.
      if (!countImages) break;
      frames++;
      subBlocks = at + 10;
      if (local & 0x80) subBlocks += 3u << ((local & 7) + 1);
      subBlocks += 1;  // LZW minimum code size
    } else {
      break;
    }
    // Data sub-blocks end with a zero-length block.
    uint32_t length = 0;
    while (b.u8(subBlocks, &length) && length != 0) subBlocks += length + 1;
    if (!b.has(subBlocks, 1)) break;
    at = subBlocks + 1;
  }
  info->imageCount = frames > 0 ? frames : 1;
  return true;
}

bool ReadBMP(const Bytes &b, HeaderInfo *info) {
  uint32_t headerSize = 0;
  if (!b.u32(14, false, &headerSize)) return false;
  uint32_t width = 0, height = 0;
  if (headerSize == 12) {
    if (!b.u16(18, false, &width) || !b.u16(20, false, &height)) return false;
  } else if (headerSize >= 40) {
    uint32_t w = 0, h = 0, bits = 0, compression = 0, xppm = 0, yppm = 0;
    if (!b.u32(18, false, &w) || !b.u32(22, false, &h) || !b.u16(28, false, &bits) ||
        !b.u32(30, false, &compression) || !b.u32(38, false, &xppm) || !b.u32(42, false, &yppm)) {
      return false;
    }
    int64_t sw = int32_t(w), sh = int32_t(h);
    if (sw <= 0) return false;
    // A negative height marks rows stored top-down; the size is its magnitude.
    int64_t magnitude = sh < 0 ? -sh : sh;
    if (magnitude > 0xFFFFFFFFll) return false;
    width = uint32_t(sw);
    height = uint32_t(magnitude);
    if (xppm > 0 && yppm > 0) {
      info->dpiWidth = DPIFromPixelsPerMetre(xppm);
      info->dpiHeight = DPIFromPixelsPerMetre(yppm);
    }
    uint32_t alphaMask = 0;
    if (bits == 32 && headerSize >= 56 && b.u32(14 + 52, false, &alphaMask) && alphaMask != 0) {
      info->hasAlpha = true;
    }
  } else {
    return false;
  }
  if (width == 0 || height == 0) return false;
  info->width = width;
  info->height = height;
  return true;
}

bool ReadWebP(const Bytes &b, HeaderInfo *info) {
  const size_t chunk = 12;
  uint32_t bits = 0;
  if (b.equals(chunk, "VP8X")) {
    uint32_t flags = 0, w0 = 0, w1 = 0, w2 = 0, h0 = 0, h1 = 0, h2 = 0;
    size_t d = chunk + 8;
    if (!b.u8(d, &flags) || !b.u8(d + 4, &w0) || !b.u8(d + 5, &w1) || !b.u8(d + 6, &w2) ||
        !b.u8(d + 7, &h0) || !b.u8(d + 8, &h1) || !b.u8(d + 9, &h2)) {
      return false;
    }
    info->width = (w0 | w1 << 8 | w2 << 16) + 1;
    info->height = (h0 | h1 << 8 | h2 << 16) + 1;
    info->hasAlpha = (flags & 0x10) != 0;
    return true;
  }
  if (b.equals(chunk, "VP8L")) {
    uint32_t signature = 0;
    if (!b.u8(chunk + 8, &signature) || signature != 0x2F || !b.u32(chunk + 9, false, &bits)) {
      return false;
    }
    info->width = (bits & 0x3FFF) + 1;
    info->height = ((bits >> 14) & 0x3FFF) + 1;
    info->hasAlpha = (bits >> 28) & 1;
    return true;
  }
  if (b.equals(chunk, "VP8 ")) {
    size_t d = chunk + 8;
    uint32_t s0 = 0, s1 = 0, s2 = 0, w = 0, h = 0;
    if (!b.u8(d + 3, &s0) || !b.u8(d + 4, &s1) || !b.u8(d + 5, &s2) || s0 != 0x9D || s1 != 0x01 ||
        s2 != 0x2A || !b.u16(d + 6, false, &w) || !b.u16(d + 8, false, &h)) {
      return false;
    }
    info->width = w & 0x3FFF;
    info->height = h & 0x3FFF;
    return info->width > 0 && info->height > 0;
  }
  return false;
}

}  // namespace

namespace {

Format Sniff(const Bytes &b) {
  uint8_t head[8] = {0};
  for (size_t i = 0; i < 8; i++) {
    uint32_t v = 0;
    if (!b.u8(i, &v)) break;
    head[i] = uint8_t(v);
  }
  static const uint8_t kPNG[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
  if (b.has(0, 8) && memcmp(head, kPNG, 8) == 0) return Format::PNG;
  if (b.has(0, 3) && head[0] == 0xFF && head[1] == 0xD8 && head[2] == 0xFF) return Format::JPEG;
  if (b.equals(0, "GIF87a") || b.equals(0, "GIF89a")) return Format::GIF;
  if (b.equals(0, "BM")) return Format::BMP;
  if (b.has(0, 4) && (memcmp(head, "II*\0", 4) == 0 || memcmp(head, "MM\0*", 4) == 0)) {
    return Format::TIFF;
  }
  if (b.equals(0, "RIFF") && b.equals(8, "WEBP")) return Format::WebP;
  return Format::Unknown;
}

}  // namespace

bool MemorySource::read(size_t offset, size_t count, uint8_t *out) {
  if (offset > size_ || count > size_ - offset) return false;
  memcpy(out, data_ + offset, count);
  return true;
}

bool FileSource::read(size_t offset, size_t count, uint8_t *out) {
  if (fd_ < 0 || offset > size_ || count > size_ - offset) return false;
  while (count > 0) {
    size_t block = offset / kBlockSize;
    Block *hit = nullptr;
    for (Block &b : blocks_) {
      if (b.length > 0 && b.index == block) hit = &b;
    }
    if (hit == nullptr) {
      hit = &blocks_[next_];
      next_ = (next_ + 1) % kBlocks;
      size_t start = block * kBlockSize;
      size_t wanted = size_ - start < kBlockSize ? size_ - start : kBlockSize;
      size_t got = 0;
      while (got < wanted) {
        ssize_t n = pread(fd_, hit->data + got, wanted - got, off_t(start + got));
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;
        got += size_t(n);
      }
      hit->index = block;
      hit->length = got;
    }
    size_t within = offset - block * kBlockSize;
    if (within >= hit->length) return false;
    size_t n = hit->length - within < count ? hit->length - within : count;
    memcpy(out, hit->data + within, n);
    out += n;
    offset += n;
    count -= n;
  }
  return true;
}

Format SniffFormat(const uint8_t *data, size_t size) {
  if (data == nullptr) return Format::Unknown;
  MemorySource source(data, size);
  return Sniff(Bytes(&source, 0, size));
}

bool ReadHeader(ByteSource &source, HeaderInfo *info, bool countImages) {
  *info = HeaderInfo();
  Bytes b(&source, 0, source.size());
  HeaderInfo read;
  read.format = Sniff(b);
  bool ok = false;
  switch (read.format) {
    case Format::PNG:
      ok = ReadPNG(b, &read);
      break;
    case Format::JPEG:
      ok = ReadJPEG(b, &read);
      break;
    case Format::GIF:
      ok = ReadGIF(b, &read, countImages);
      break;
    case Format::BMP:
      ok = ReadBMP(b, &read);
      break;
    case Format::TIFF:
      ok = ReadTIFF(b, &read, countImages);
      break;
    case Format::WebP:
      ok = ReadWebP(b, &read);
      break;
    case Format::Unknown:
      break;
  }
  if (ok) *info = read;
  return ok;
}

bool ReadHeader(const uint8_t *data, size_t size, HeaderInfo *info) {
  if (data == nullptr) {
    *info = HeaderInfo();
    return false;
  }
  MemorySource source(data, size);
  return ReadHeader(source, info, true);
}

bool LooksComplete(ByteSource &source, const HeaderInfo &info) {
  Bytes b(&source, 0, source.size());
  size_t size = b.size();
  switch (info.format) {
    case Format::PNG:
      return size >= 8 && b.equals(size - 8, "IEND");
    case Format::GIF: {
      uint32_t last = 0;
      return size > 0 && b.u8(size - 1, &last) && last == 0x3B;
    }
    case Format::JPEG: {
      // Some writers pad after the end marker.
      size_t from = size > 64 ? size - 64 : 0;
      for (size_t at = size >= 2 ? size - 2 : 0; at + 2 <= size && at >= from; at--) {
        uint32_t marker = 0;
        if (b.u16(at, true, &marker) && marker == 0xFFD9) return true;
        if (at == 0) break;
      }
      return false;
    }
    case Format::BMP: {
      uint32_t offset = 0, headerSize = 0, bits = 0;
      if (!b.u32(10, false, &offset) || !b.u32(14, false, &headerSize) ||
          !b.u16(headerSize == 12 ? 24 : 28, false, &bits)) {
        return false;
      }
      uint64_t stride = (uint64_t(info.width) * bits + 31) / 32 * 4;
      uint32_t compression = 0;
      // Compressed pixel arrays have no fixed length.
      if (headerSize >= 40 && b.u32(30, false, &compression) && compression != 0 &&
          compression != 3 && compression != 6) {
        return true;
      }
      return offset <= size && stride * info.height <= size - offset;
    }
    case Format::WebP: {
      uint32_t riff = 0;
      return b.u32(4, false, &riff) && uint64_t(riff) + 8 <= size;
    }
    case Format::TIFF:
      return true;
    case Format::Unknown:
      break;
  }
  return false;
}

const char *TypeIdentifier(Format format) {
  switch (format) {
    case Format::PNG:
      return "public.png";
    case Format::JPEG:
      return "public.jpeg";
    case Format::GIF:
      return "com.compuserve.gif";
    case Format::BMP:
      return "com.microsoft.bmp";
    case Format::TIFF:
      return "public.tiff";
    case Format::WebP:
      return "org.webmproject.webp";
    case Format::Unknown:
      break;
  }
  return nullptr;
}

}  // namespace talvo::imageio
