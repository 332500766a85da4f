// Small image files of every format Image I/O reads, made in memory for
// the engine tests and written to disk by the loading tests. PNG, JPEG,
// GIF and WebP come from their libraries' encoders; BMP and TIFF are laid
// out by hand so that every header field is the test's choice.
#pragma once

#include <gif_lib.h>
#include <png.h>
#include <webp/encode.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>
// clang-format off
#include <jpeglib.h>
// clang-format on

namespace imagefixtures {

using Bytes = std::vector<uint8_t>;

// Straight (not premultiplied) RGBA, rows top-down.
struct Picture {
  uint32_t width = 0, height = 0;
  std::vector<uint8_t> rgba;
  uint8_t *at(uint32_t x, uint32_t y) { return &rgba[(size_t(y) * width + x) * 4]; }
};

// Left half opaque red, right half blue at alpha 128.
inline Picture SplitPicture(uint32_t width, uint32_t height) {
  Picture p{width, height, std::vector<uint8_t>(size_t(width) * height * 4)};
  for (uint32_t y = 0; y < height; y++) {
    for (uint32_t x = 0; x < width; x++) {
      uint8_t *px = p.at(x, y);
      bool left = x < width / 2;
      px[0] = left ? 255 : 0;
      px[1] = 0;
      px[2] = left ? 0 : 255;
      px[3] = left ? 255 : 128;
    }
  }
  return p;
}

inline Picture SolidPicture(uint32_t width, uint32_t height, uint8_t r, uint8_t g, uint8_t b) {
  Picture p{width, height, std::vector<uint8_t>(size_t(width) * height * 4)};
  for (size_t i = 0; i < p.rgba.size(); i += 4) {
    p.rgba[i] = r;
    p.rgba[i + 1] = g;
    p.rgba[i + 2] = b;
    p.rgba[i + 3] = 255;
  }
  return p;
}

inline uint32_t Crc32(const uint8_t *data, size_t size) {
  uint32_t crc = 0xFFFFFFFFu;
  for (size_t i = 0; i < size; i++) {
    crc ^= data[i];
    for (int k = 0; k < 8; k++) crc = (crc >> 1) ^ (0xEDB88320u & (0u - (crc & 1)));
  }
  return ~crc;
}

inline void PutBE32(Bytes &b, uint32_t v) {
  for (int s = 24; s >= 0; s -= 8) b.push_back(uint8_t(v >> s));
}

// A PNG of `picture` (RGBA, or RGB when `alpha` is false); with `ppm` a
// pHYs chunk of that many pixels per metre follows IHDR.
inline Bytes PNG(const Picture &picture, bool alpha = true, uint32_t ppm = 0) {
  png_image image;
  memset(&image, 0, sizeof image);
  image.version = PNG_IMAGE_VERSION;
  image.width = picture.width;
  image.height = picture.height;
  image.format = PNG_FORMAT_RGBA;
  std::vector<uint8_t> rows = picture.rgba;
  if (!alpha) {
    // Drop the alpha channel into RGB rows.
    image.format = PNG_FORMAT_RGB;
    rows.clear();
    for (size_t i = 0; i < picture.rgba.size(); i += 4) {
      rows.insert(rows.end(), picture.rgba.begin() + long(i), picture.rgba.begin() + long(i) + 3);
    }
  }
  png_alloc_size_t size = 0;
  png_image_write_to_memory(&image, nullptr, &size, 0, rows.data(), 0, nullptr);
  Bytes out(size);
  if (!png_image_write_to_memory(&image, out.data(), &size, 0, rows.data(), 0, nullptr)) {
    return Bytes();
  }
  out.resize(size);
  if (ppm != 0) {
    Bytes chunk;
    PutBE32(chunk, 9);
    const char *type = "pHYs";
    chunk.insert(chunk.end(), type, type + 4);
    PutBE32(chunk, ppm);
    PutBE32(chunk, ppm);
    chunk.push_back(1);
    PutBE32(chunk, Crc32(chunk.data() + 4, 13));
    out.insert(out.begin() + 33, chunk.begin(), chunk.end());  // after signature + IHDR
  }
  return out;
}

// A baseline (or progressive) JPEG; `orientation` > 0 adds an EXIF block
// stating it, `dpi` > 0 a JFIF density, `padding` an APP2 segment of that
// many bytes before the frame header.
inline Bytes JPEG(const Picture &picture, int orientation = 0, int dpi = 0,
                  bool progressive = false, size_t padding = 0) {
  jpeg_compress_struct info;
  jpeg_error_mgr errors;
  info.err = jpeg_std_error(&errors);
  jpeg_create_compress(&info);
  unsigned char *memory = nullptr;
  unsigned long size = 0;
  jpeg_mem_dest(&info, &memory, &size);
  info.image_width = picture.width;
  info.image_height = picture.height;
  info.input_components = 3;
  info.in_color_space = JCS_RGB;
  jpeg_set_defaults(&info);
  jpeg_set_quality(&info, 95, TRUE);
  if (progressive) jpeg_simple_progression(&info);
  if (dpi > 0) {
    info.density_unit = 1;
    info.X_density = uint16_t(dpi);
    info.Y_density = uint16_t(dpi);
  }
  jpeg_start_compress(&info, TRUE);
  if (orientation > 0) {
    // "Exif\0\0", then a little-endian TIFF header and one IFD entry.
    const uint8_t exif[] = {'E', 'x',  'i',  'f', 0,
                            0,   'I',  'I',  42,  0,
                            8,   0,    0,    0,   1,
                            0,   0x12, 0x01, 3,   0,
                            1,   0,    0,    0,   uint8_t(orientation),
                            0,   0,    0,    0,   0,
                            0,   0};
    jpeg_write_marker(&info, JPEG_APP0 + 1, exif, sizeof exif);
  }
  if (padding > 0) {
    std::vector<uint8_t> filler(padding, 0x5A);
    jpeg_write_marker(&info, JPEG_APP0 + 2, filler.data(), unsigned(filler.size()));
  }
  std::vector<uint8_t> row(size_t(picture.width) * 3);
  while (info.next_scanline < info.image_height) {
    const uint8_t *src = &picture.rgba[size_t(info.next_scanline) * picture.width * 4];
    for (uint32_t x = 0; x < picture.width; x++) memcpy(&row[x * 3], src + x * 4, 3);
    JSAMPROW rows[] = {row.data()};
    jpeg_write_scanlines(&info, rows, 1);
  }
  jpeg_finish_compress(&info);
  jpeg_destroy_compress(&info);
  Bytes out(memory, memory + size);
  free(memory);
  return out;
}

inline int GIFWrite(GifFileType *gif, const GifByteType *data, int length) {
  auto *out = static_cast<Bytes *>(gif->UserData);
  out->insert(out->end(), data, data + length);
  return length;
}

// One frame of a GIF: a rectangle of palette indices.
struct GIFFrame {
  int left = 0, top = 0, width = 0, height = 0;
  std::vector<uint8_t> indices;  // width * height
  int transparent = -1;
  int disposal = DISPOSAL_UNSPECIFIED;
  bool interlaced = false;
};

// A GIF with a 4-colour global palette: 0 red, 1 green, 2 blue, 3 white.
inline Bytes GIF(int width, int height, const std::vector<GIFFrame> &frames) {
  Bytes out;
  int error = 0;
  GifFileType *gif = EGifOpen(&out, GIFWrite, &error);
  if (gif == nullptr) return Bytes();
  GifColorType colors[4] = {{255, 0, 0}, {0, 255, 0}, {0, 0, 255}, {255, 255, 255}};
  ColorMapObject *map = GifMakeMapObject(4, colors);
  EGifSetGifVersion(gif, true);
  EGifPutScreenDesc(gif, width, height, 2, 0, map);
  for (const GIFFrame &frame : frames) {
    GraphicsControlBlock control = {frame.disposal, false, 0, frame.transparent};
    GifByteType extension[4];
    size_t length = EGifGCBToExtension(&control, extension);
    EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, int(length), extension);
    EGifPutImageDesc(gif, frame.left, frame.top, frame.width, frame.height, frame.interlaced,
                     nullptr);
    std::vector<int> order;
    if (frame.interlaced) {
      const int start[] = {0, 4, 2, 1}, step[] = {8, 8, 4, 2};
      for (int pass = 0; pass < 4; pass++) {
        for (int y = start[pass]; y < frame.height; y += step[pass]) order.push_back(y);
      }
    } else {
      for (int y = 0; y < frame.height; y++) order.push_back(y);
    }
    for (int y : order) {
      std::vector<GifPixelType> line(frame.indices.begin() + long(y) * frame.width,
                                     frame.indices.begin() + long(y + 1) * frame.width);
      EGifPutLine(gif, line.data(), frame.width);
    }
  }
  EGifCloseFile(gif, &error);
  GifFreeMapObject(map);
  return out;
}

inline void PutLE16(Bytes &b, uint32_t v) {
  b.push_back(uint8_t(v));
  b.push_back(uint8_t(v >> 8));
}
inline void PutLE32(Bytes &b, uint32_t v) {
  PutLE16(b, v & 0xFFFF);
  PutLE16(b, v >> 16);
}

// An uncompressed BMP: 24-bit with a 40-byte header, or 32-bit with a
// 108-byte (V4) header and an alpha mask. Rows bottom-up unless `topDown`
// (a negative height). `ppm` pixels per metre.
inline Bytes BMP(const Picture &picture, int bits, bool topDown = false, uint32_t ppm = 0) {
  uint32_t headerSize = bits == 32 ? 108 : 40;
  uint32_t stride = (picture.width * uint32_t(bits) + 31) / 32 * 4;
  uint32_t offset = 14 + headerSize;
  Bytes b;
  b.push_back('B');
  b.push_back('M');
  PutLE32(b, offset + stride * picture.height);
  PutLE32(b, 0);
  PutLE32(b, offset);
  PutLE32(b, headerSize);
  PutLE32(b, picture.width);
  PutLE32(b, topDown ? uint32_t(-int32_t(picture.height)) : picture.height);
  PutLE16(b, 1);
  PutLE16(b, uint32_t(bits));
  PutLE32(b, bits == 32 ? 3 : 0);  // BI_BITFIELDS for 32 bits
  PutLE32(b, stride * picture.height);
  PutLE32(b, ppm);
  PutLE32(b, ppm);
  PutLE32(b, 0);
  PutLE32(b, 0);
  if (bits == 32) {
    PutLE32(b, 0x00FF0000);
    PutLE32(b, 0x0000FF00);
    PutLE32(b, 0x000000FF);
    PutLE32(b, 0xFF000000);
    b.resize(14 + headerSize, 0);
  }
  for (uint32_t r = 0; r < picture.height; r++) {
    uint32_t y = topDown ? r : picture.height - 1 - r;
    size_t start = b.size();
    for (uint32_t x = 0; x < picture.width; x++) {
      const uint8_t *px = &picture.rgba[(size_t(y) * picture.width + x) * 4];
      b.push_back(px[2]);
      b.push_back(px[1]);
      b.push_back(px[0]);
      if (bits == 32) b.push_back(px[3]);
    }
    b.resize(start + stride, 0);
  }
  return b;
}

// A little-endian palette TIFF of `bits` (4 or 8) per pixel whose pixels
// are all entry 1 of its colour map, pure red; the rest of the map is black.
inline Bytes PaletteTIFF(uint32_t width, uint32_t height, int bits) {
  Bytes b = {'I', 'I'};
  PutLE16(b, 42);
  PutLE32(b, 0);  // the IFD's offset, patched below
  uint32_t stride = (width * uint32_t(bits) + 7) / 8;
  size_t pixels = b.size();
  for (uint32_t y = 0; y < height; y++) {
    for (uint32_t i = 0; i < stride; i++) b.push_back(bits == 4 ? 0x11 : 0x01);
  }
  if (b.size() % 2) b.push_back(0);
  size_t map = b.size();
  uint32_t entries = 1u << bits;
  for (int channel = 0; channel < 3; channel++) {
    for (uint32_t i = 0; i < entries; i++) PutLE16(b, channel == 0 && i == 1 ? 65535 : 0);
  }
  uint32_t ifd = uint32_t(b.size());
  for (int i = 0; i < 4; i++) b[4 + size_t(i)] = uint8_t(ifd >> (8 * i));
  const uint32_t fields[][4] = {{256, 3, 1, width},
                                {257, 3, 1, height},
                                {258, 3, 1, uint32_t(bits)},
                                {259, 3, 1, 1},
                                {262, 3, 1, 3},
                                {273, 4, 1, uint32_t(pixels)},
                                {277, 3, 1, 1},
                                {278, 3, 1, height},
                                {279, 4, 1, stride * height},
                                {320, 3, 3 * entries, uint32_t(map)}};
  PutLE16(b, uint32_t(sizeof fields / sizeof fields[0]));
  for (const auto &f : fields) {
    PutLE16(b, f[0]);
    PutLE16(b, f[1]);
    PutLE32(b, f[2]);
    if (f[1] == 3 && f[2] == 1) {
      PutLE16(b, f[3]);
      PutLE16(b, 0);
    } else {
      PutLE32(b, f[3]);
    }
  }
  PutLE32(b, 0);
  return b;
}

// A GIF with 2-colour table whose pixels use values 0 to 3: the 4-colour
// fixture with its table cut to the first two colours.
inline Bytes GIFWithValuesPastItsTable(int width, int height) {
  std::vector<uint8_t> indices(size_t(width) * size_t(height));
  for (size_t i = 0; i < indices.size(); i++) indices[i] = uint8_t(i % 4);
  Bytes gif = GIF(width, height, {{0, 0, width, height, indices}});
  gif[10] = uint8_t((gif[10] & ~0x07) | 0x00);  // table of 2^(0+1) colours
  gif.erase(gif.begin() + 13 + 6, gif.begin() + 13 + 12);
  return gif;
}

// A GIF with no colour table at all: the fixture's table flag cleared and
// its 12 bytes taken out.
inline Bytes GIFWithoutPalette(int width, int height) {
  std::vector<uint8_t> indices(size_t(width) * size_t(height), 1);
  Bytes gif = GIF(width, height, {{0, 0, width, height, indices}});
  gif[10] &= 0x7F;
  gif.erase(gif.begin() + 13, gif.begin() + 13 + 12);
  return gif;
}

// An uncompressed RGBA TIFF (unassociated alpha unless asked), in either byte order,
// with `pages` identical directories; `orientation` and `dpi` > 0 add
// those tags.
inline Bytes TIFF(const Picture &picture, bool bigEndian = false, int pages = 1,
                  int orientation = 0, int dpi = 0, bool associatedAlpha = false) {
  Bytes b;
  auto u16 = [&](uint32_t v) {
    if (bigEndian) {
      b.push_back(uint8_t(v >> 8));
      b.push_back(uint8_t(v));
    } else {
      PutLE16(b, v);
    }
  };
  auto u32 = [&](uint32_t v) {
    if (bigEndian) {
      PutBE32(b, v);
    } else {
      PutLE32(b, v);
    }
  };
  auto patch32 = [&](size_t at, uint32_t v) {
    for (int i = 0; i < 4; i++) {
      b[at + size_t(i)] = uint8_t(bigEndian ? v >> (24 - 8 * i) : v >> (8 * i));
    }
  };
  b.push_back(bigEndian ? 'M' : 'I');
  b.push_back(bigEndian ? 'M' : 'I');
  u16(42);
  size_t firstLink = b.size();
  u32(0);
  size_t link = firstLink;
  for (int page = 0; page < pages; page++) {
    // The pixels, then the values too long for an entry, then the IFD.
    size_t pixels = b.size();
    b.insert(b.end(), picture.rgba.begin(), picture.rgba.end());
    if (b.size() % 2) b.push_back(0);
    size_t bitsAt = b.size();
    for (int i = 0; i < 4; i++) u16(8);
    size_t resolutionAt = b.size();
    u32(uint32_t(dpi));
    u32(1);
    struct Entry {
      uint32_t tag, type, count, value;
    };
    std::vector<Entry> entries = {{256, 3, 1, picture.width},
                                  {257, 3, 1, picture.height},
                                  {258, 3, 4, uint32_t(bitsAt)},
                                  {259, 3, 1, 1},
                                  {262, 3, 1, 2},
                                  {273, 4, 1, uint32_t(pixels)},
                                  {277, 3, 1, 4},
                                  {278, 3, 1, picture.height},
                                  {279, 4, 1, uint32_t(picture.rgba.size())}};
    if (orientation > 0) entries.push_back({274, 3, 1, uint32_t(orientation)});
    if (dpi > 0) {
      entries.push_back({282, 5, 1, uint32_t(resolutionAt)});
      entries.push_back({283, 5, 1, uint32_t(resolutionAt)});
      entries.push_back({296, 3, 1, 2});
    }
    entries.push_back({338, 3, 1, associatedAlpha ? 1u : 2u});
    std::sort(entries.begin(), entries.end(),
              [](const Entry &x, const Entry &y) { return x.tag < y.tag; });
    patch32(link, uint32_t(b.size()));
    u16(uint32_t(entries.size()));
    for (const Entry &e : entries) {
      u16(e.tag);
      u16(e.type);
      u32(e.count);
      if (e.type == 3 && e.count == 1) {
        u16(e.value);
        u16(0);
      } else {
        u32(e.value);
      }
    }
    link = b.size();
    u32(0);
  }
  return b;
}

inline Bytes WebPLossless(const Picture &picture) {
  uint8_t *memory = nullptr;
  size_t size = WebPEncodeLosslessRGBA(picture.rgba.data(), int(picture.width), int(picture.height),
                                       int(picture.width * 4), &memory);
  Bytes out(memory, memory + size);
  WebPFree(memory);
  return out;
}

// Lossy; with `alpha` the file gets a VP8X header and an ALPH chunk.
inline Bytes WebPLossy(const Picture &picture, bool alpha) {
  uint8_t *memory = nullptr;
  size_t size = 0;
  if (alpha) {
    size = WebPEncodeRGBA(picture.rgba.data(), int(picture.width), int(picture.height),
                          int(picture.width * 4), 90, &memory);
  } else {
    std::vector<uint8_t> rgb;
    for (size_t i = 0; i < picture.rgba.size(); i += 4) {
      rgb.insert(rgb.end(), picture.rgba.begin() + long(i), picture.rgba.begin() + long(i) + 3);
    }
    size = WebPEncodeRGB(rgb.data(), int(picture.width), int(picture.height),
                         int(picture.width * 3), 90, &memory);
  }
  Bytes out(memory, memory + size);
  WebPFree(memory);
  return out;
}

}  // namespace imagefixtures
