#include "platform/ImageIO/engine/ImageDecoder.hpp"

#include <gif_lib.h>
// jpeglib.h needs FILE declared first.
#include <stdio.h>
// clang-format off
#include <jpeglib.h>
// clang-format on
#include <png.h>
#include <tiffio.h>
#include <webp/decode.h>

#include <algorithm>
#include <csetjmp>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "platform/ImageIO/engine/ImageHeader.hpp"

namespace talvo::imageio {

namespace {

bool Allocate(uint32_t width, uint32_t height, const DecodeLimits &limits, DecodedImage *out) {
  if (width == 0 || height == 0) return false;
  uint64_t pixels = uint64_t(width) * height;
  if (pixels > limits.maxPixels) return false;
  out->width = width;
  out->height = height;
  out->rgba.assign(size_t(pixels) * 4, 0);
  return true;
}

void Premultiply(DecodedImage *image) {
  uint8_t *p = image->rgba.data();
  for (size_t i = 0, n = image->rgba.size(); i < n; i += 4) {
    unsigned a = p[i + 3];
    if (a == 255) continue;
    for (int c = 0; c < 3; c++) p[i + c] = uint8_t((p[i + c] * a + 127) / 255);
  }
}

// --- PNG --------------------------------------------------------------------

bool DecodePNG(const uint8_t *data, size_t size, const DecodeLimits &limits, DecodedImage *out) {
  png_image image;
  memset(&image, 0, sizeof image);
  image.version = PNG_IMAGE_VERSION;
  if (!png_image_begin_read_from_memory(&image, data, size)) return false;
  out->hasAlpha = (image.format & PNG_FORMAT_FLAG_ALPHA) != 0;
  if (!Allocate(image.width, image.height, limits, out)) {
    png_image_free(&image);
    return false;
  }
  image.format = PNG_FORMAT_RGBA;
  if (!png_image_finish_read(&image, nullptr, out->rgba.data(), int32_t(image.width * 4),
                             nullptr)) {
    png_image_free(&image);
    return false;
  }
  Premultiply(out);
  return true;
}

// --- JPEG -------------------------------------------------------------------

struct JPEGErrors {
  jpeg_error_mgr manager;
  jmp_buf jump;
};

void JPEGFail(j_common_ptr info) { longjmp(reinterpret_cast<JPEGErrors *>(info->err)->jump, 1); }
void JPEGQuiet(j_common_ptr, int) {}
void JPEGQuietOutput(j_common_ptr) {}

// No C++ objects live in this frame: it is left by longjmp.
bool DecodeJPEG(const uint8_t *data, size_t size, const DecodeLimits &limits, DecodedImage *out) {
  jpeg_decompress_struct info;
  JPEGErrors errors;
  info.err = jpeg_std_error(&errors.manager);
  errors.manager.error_exit = JPEGFail;
  errors.manager.emit_message = JPEGQuiet;
  errors.manager.output_message = JPEGQuietOutput;
  if (setjmp(errors.jump)) {
    jpeg_destroy_decompress(&info);
    return false;
  }
  jpeg_create_decompress(&info);
  jpeg_mem_src(&info, data, (unsigned long)size);
  if (jpeg_read_header(&info, TRUE) != JPEG_HEADER_OK) {
    jpeg_destroy_decompress(&info);
    return false;
  }
  if (uint64_t(info.image_width) * info.image_height > limits.maxPixels) {
    jpeg_destroy_decompress(&info);
    return false;
  }
  bool cmyk = info.jpeg_color_space == JCS_CMYK || info.jpeg_color_space == JCS_YCCK;
  info.out_color_space = cmyk ? JCS_CMYK : JCS_EXT_RGBA;
  jpeg_start_decompress(&info);
  if (info.output_components != 4 ||
      !Allocate(info.output_width, info.output_height, limits, out)) {
    jpeg_destroy_decompress(&info);
    return false;
  }
  size_t stride = size_t(info.output_width) * 4;
  while (info.output_scanline < info.output_height) {
    JSAMPROW row = out->rgba.data() + size_t(info.output_scanline) * stride;
    if (jpeg_read_scanlines(&info, &row, 1) != 1) break;
  }
  if (cmyk) {
    // Adobe's files store the inks inverted.
    bool inverted = info.saw_Adobe_marker;
    uint8_t *p = out->rgba.data();
    for (size_t i = 0, n = out->rgba.size(); i < n; i += 4) {
      unsigned k = inverted ? p[i + 3] : 255 - p[i + 3];
      for (int c = 0; c < 3; c++) {
        unsigned ink = inverted ? p[i + c] : 255 - p[i + c];
        p[i + c] = uint8_t((ink * k + 127) / 255);
      }
      p[i + 3] = 255;
    }
  }
  jpeg_finish_decompress(&info);
  jpeg_destroy_decompress(&info);
  out->hasAlpha = false;
  return true;
}

// --- GIF --------------------------------------------------------------------

struct MemoryReader {
  const uint8_t *data;
  size_t size;
  size_t position;
};

int GIFRead(GifFileType *gif, GifByteType *buffer, int length) {
  auto *reader = static_cast<MemoryReader *>(gif->UserData);
  if (length <= 0) return 0;
  size_t n = reader->size - reader->position;
  if (size_t(length) < n) n = size_t(length);
  memcpy(buffer, reader->data + reader->position, n);
  reader->position += n;
  return int(n);
}

// Frames are composed onto the logical screen as a browser would: each
// frame's disposal applies before the next one is drawn.
bool ComposeGIF(GifFileType *gif, size_t index, const DecodeLimits &limits, DecodedImage *out) {
  if (!Allocate(uint32_t(gif->SWidth), uint32_t(gif->SHeight), limits, out)) return false;
  GraphicsControlBlock control = {DISPOSAL_UNSPECIFIED, false, 0, NO_TRANSPARENT_COLOR};
  std::vector<uint8_t> lines;
  std::vector<uint8_t> saved;
  size_t frame = 0;
  bool reached = false;
  GifRecordType record;
  do {
    if (DGifGetRecordType(gif, &record) == GIF_ERROR) return false;
    if (record == EXTENSION_RECORD_TYPE) {
      int code = 0;
      GifByteType *extension = nullptr;
      if (DGifGetExtension(gif, &code, &extension) == GIF_ERROR) return false;
      if (code == GRAPHICS_EXT_FUNC_CODE && extension != nullptr && extension[0] >= 4) {
        DGifExtensionToGCB(extension[0], extension + 1, &control);
      }
      while (extension != nullptr) {
        if (DGifGetExtensionNext(gif, &extension) == GIF_ERROR) return false;
      }
    } else if (record == IMAGE_DESC_RECORD_TYPE) {
      if (DGifGetImageDesc(gif) == GIF_ERROR) return false;
      const GifImageDesc &desc = gif->Image;
      if (desc.Width <= 0 || desc.Height <= 0) return false;
      uint64_t pixels = uint64_t(desc.Width) * uint64_t(desc.Height);
      if (pixels > limits.maxPixels) return false;
      lines.assign(size_t(pixels), 0);
      if (desc.Interlace) {
        static const int kStart[] = {0, 4, 2, 1}, kStep[] = {8, 8, 4, 2};
        for (int pass = 0; pass < 4; pass++) {
          for (int y = kStart[pass]; y < desc.Height; y += kStep[pass]) {
            if (DGifGetLine(gif, &lines[size_t(y) * desc.Width], desc.Width) == GIF_ERROR) {
              return false;
            }
          }
        }
      } else {
        for (int y = 0; y < desc.Height; y++) {
          if (DGifGetLine(gif, &lines[size_t(y) * desc.Width], desc.Width) == GIF_ERROR) {
            return false;
          }
        }
      }
      const ColorMapObject *map = desc.ColorMap != nullptr ? desc.ColorMap : gif->SColorMap;
      if (map == nullptr) return false;
      if (control.DisposalMode == DISPOSE_PREVIOUS) saved = out->rgba;
      int64_t right = int64_t(desc.Left) + desc.Width, bottom = int64_t(desc.Top) + desc.Height;
      for (int64_t y = desc.Top; y < bottom && y < int64_t(out->height); y++) {
        for (int64_t x = desc.Left; x < right && x < int64_t(out->width); x++) {
          int entry = lines[size_t(y - desc.Top) * desc.Width + size_t(x - desc.Left)];
          if (entry == control.TransparentColor || entry >= map->ColorCount) continue;
          uint8_t *p = &out->rgba[(size_t(y) * out->width + size_t(x)) * 4];
          p[0] = map->Colors[entry].Red;
          p[1] = map->Colors[entry].Green;
          p[2] = map->Colors[entry].Blue;
          p[3] = 255;
        }
      }
      if (frame == index) {
        reached = true;
        break;
      }
      if (control.DisposalMode == DISPOSE_BACKGROUND) {
        for (int64_t y = desc.Top; y < bottom && y < int64_t(out->height); y++) {
          for (int64_t x = desc.Left; x < right && x < int64_t(out->width); x++) {
            memset(&out->rgba[(size_t(y) * out->width + size_t(x)) * 4], 0, 4);
          }
        }
      } else if (control.DisposalMode == DISPOSE_PREVIOUS && !saved.empty()) {
        out->rgba.swap(saved);
      }
      control = {DISPOSAL_UNSPECIFIED, false, 0, NO_TRANSPARENT_COLOR};
      frame++;
    }
  } while (record != TERMINATE_RECORD_TYPE);
  if (!reached) return false;
  // Transparency is a property of the file's frames, as the header reader says.
  uint8_t *p = out->rgba.data();
  for (size_t i = 3, n = out->rgba.size(); i < n; i += 4) {
    if (p[i] != 255) {
      out->hasAlpha = true;
      break;
    }
  }
  return true;
}

bool DecodeGIF(const uint8_t *data, size_t size, size_t index, const DecodeLimits &limits,
               DecodedImage *out) {
  MemoryReader reader = {data, size, 0};
  int error = 0;
  GifFileType *gif = DGifOpen(&reader, GIFRead, &error);
  if (gif == nullptr) return false;
  bool ok = ComposeGIF(gif, index, limits, out);
  DGifCloseFile(gif, &error);
  return ok;
}

// --- TIFF -------------------------------------------------------------------

tmsize_t TIFFReadMemory(thandle_t handle, void *buffer, tmsize_t length) {
  auto *reader = static_cast<MemoryReader *>(handle);
  if (length <= 0) return 0;
  size_t n = reader->position < reader->size ? reader->size - reader->position : 0;
  if (size_t(length) < n) n = size_t(length);
  memcpy(buffer, reader->data + reader->position, n);
  reader->position += n;
  return tmsize_t(n);
}
tmsize_t TIFFWriteNothing(thandle_t, void *, tmsize_t) { return 0; }
toff_t TIFFSeekMemory(thandle_t handle, toff_t offset, int whence) {
  auto *reader = static_cast<MemoryReader *>(handle);
  uint64_t base = whence == SEEK_CUR ? reader->position : whence == SEEK_END ? reader->size : 0;
  uint64_t target = base + offset;
  if (target > reader->size) return toff_t(-1);
  reader->position = size_t(target);
  return target;
}
int TIFFCloseNothing(thandle_t) { return 0; }
toff_t TIFFSizeMemory(thandle_t handle) { return static_cast<MemoryReader *>(handle)->size; }
int TIFFMapNothing(thandle_t, void **, toff_t *) { return 0; }
void TIFFUnmapNothing(thandle_t, void *, toff_t) {}
int TIFFQuiet(TIFF *, void *, const char *, const char *, va_list) { return 1; }

// A TIFF over `reader`, quiet: messages stay with this handle, as
// libtiff's global handlers belong to whoever else uses the library in the
// process.
TIFF *OpenTIFF(MemoryReader *reader, const DecodeLimits &limits) {
  TIFFOpenOptions *options = TIFFOpenOptionsAlloc();
  if (options == nullptr) return nullptr;
  TIFFOpenOptionsSetErrorHandlerExtR(options, TIFFQuiet, nullptr);
  TIFFOpenOptionsSetWarningHandlerExtR(options, TIFFQuiet, nullptr);
  TIFFOpenOptionsSetMaxSingleMemAlloc(options, tmsize_t(limits.maxPixels * 4 + 4096));
  TIFF *tiff = TIFFClientOpenExt("memory", "rm", reader, TIFFReadMemory, TIFFWriteNothing,
                                 TIFFSeekMemory, TIFFCloseNothing, TIFFSizeMemory, TIFFMapNothing,
                                 TIFFUnmapNothing, options);
  TIFFOpenOptionsFree(options);
  return tiff;
}

bool DecodeTIFF(const uint8_t *data, size_t size, size_t index, const DecodeLimits &limits,
                DecodedImage *out) {
  MemoryReader reader = {data, size, 0};
  TIFF *tiff = OpenTIFF(&reader, limits);
  if (tiff == nullptr) return false;
  bool ok = index <= 0xFFFF && TIFFSetDirectory(tiff, tdir_t(index));
  uint32_t width = 0, height = 0;
  char message[1024];
  if (ok) {
    ok = TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &width) &&
         TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &height) && TIFFRGBAImageOK(tiff, message) &&
         Allocate(width, height, limits, out);
  }
  if (ok) {
    uint16_t extraCount = 0;
    uint16_t *extraTypes = nullptr;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_EXTRASAMPLES, &extraCount, &extraTypes);
    out->hasAlpha = extraCount > 0;
    // The RGBA interface hands back one packed, premultiplied word a pixel.
    auto *raster = reinterpret_cast<uint32_t *>(out->rgba.data());
    ok = TIFFReadRGBAImageOriented(tiff, width, height, raster, ORIENTATION_TOPLEFT, 1) != 0;
    if (ok) {
      for (size_t i = 0, n = size_t(width) * height; i < n; i++) {
        uint32_t word = raster[i];
        uint8_t *p = &out->rgba[i * 4];
        uint8_t a = uint8_t(TIFFGetA(word));
        // A file that claims associated alpha is taken at its word, so its
        // colours can exceed their alpha: clamped, as premultiplied
        // pixels must be.
        p[0] = std::min(uint8_t(TIFFGetR(word)), a);
        p[1] = std::min(uint8_t(TIFFGetG(word)), a);
        p[2] = std::min(uint8_t(TIFFGetB(word)), a);
        p[3] = a;
      }
    }
  }
  TIFFClose(tiff);
  return ok;
}

// --- WebP -------------------------------------------------------------------

bool DecodeWebP(const uint8_t *data, size_t size, const DecodeLimits &limits, DecodedImage *out) {
  WebPDecoderConfig config;
  if (!WebPInitDecoderConfig(&config)) return false;
  if (WebPGetFeatures(data, size, &config.input) != VP8_STATUS_OK) return false;
  if (config.input.has_animation) return false;
  if (!Allocate(uint32_t(config.input.width), uint32_t(config.input.height), limits, out)) {
    return false;
  }
  out->hasAlpha = config.input.has_alpha != 0;
  config.output.colorspace = MODE_rgbA;
  config.output.is_external_memory = 1;
  config.output.u.RGBA.rgba = out->rgba.data();
  config.output.u.RGBA.stride = int(out->width * 4);
  config.output.u.RGBA.size = out->rgba.size();
  bool ok = WebPDecode(data, size, &config) == VP8_STATUS_OK;
  WebPFreeDecBuffer(&config.output);
  return ok;
}

// --- BMP --------------------------------------------------------------------

struct Channel {
  uint32_t mask = 0;
  int shift = 0;
  uint32_t max = 0;
  void set(uint32_t m) {
    mask = m;
    shift = 0;
    while (m != 0 && (m & 1) == 0) {
      m >>= 1;
      shift++;
    }
    max = m;
  }
  uint8_t read(uint32_t pixel) const {
    if (max == 0) return 0;
    return uint8_t(uint64_t((pixel & mask) >> shift) * 255 / max);
  }
};

uint32_t LE32(const uint8_t *p) {
  return uint32_t(p[0]) | p[1] << 8 | p[2] << 16 | uint32_t(p[3]) << 24;
}
uint32_t LE16(const uint8_t *p) { return uint32_t(p[0]) | p[1] << 8; }

bool DecodeBMP(const uint8_t *data, size_t size, const DecodeLimits &limits, DecodedImage *out) {
  HeaderInfo header;
  if (!ReadHeader(data, size, &header) || size < 14 + 12) return false;
  uint32_t pixelOffset = LE32(data + 10);
  uint32_t headerSize = LE32(data + 14);
  bool core = headerSize == 12;
  uint32_t bits = LE16(data + (core ? 24 : 28));
  uint32_t compression = core ? 0 : LE32(data + 30);
  bool topDown = !core && int32_t(LE32(data + 22)) < 0;
  if (compression != 0 && compression != 3 && compression != 6) return false;
  Channel red, green, blue, alpha;
  if (bits == 16) {
    red.set(0x7C00);
    green.set(0x03E0);
    blue.set(0x001F);
  } else {
    red.set(0xFF0000);
    green.set(0xFF00);
    blue.set(0xFF);
  }
  if (compression == 3 || compression == 6) {
    // The masks follow a 40-byte header, or sit inside a longer one.
    size_t at = 14 + 40;
    if (size < at + 12 || (bits != 16 && bits != 32)) return false;
    red.set(LE32(data + at));
    green.set(LE32(data + at + 4));
    blue.set(LE32(data + at + 8));
    if ((compression == 6 || headerSize >= 56) && size >= at + 16) alpha.set(LE32(data + at + 12));
  } else if (bits == 32 && headerSize >= 56 && size >= 14 + 56) {
    alpha.set(LE32(data + 14 + 52));
  }
  if (bits != 1 && bits != 4 && bits != 8 && bits != 16 && bits != 24 && bits != 32) return false;
  // The colour table of an indexed file.
  const uint8_t *palette = nullptr;
  size_t paletteEntries = 0, entrySize = core ? 3 : 4;
  if (bits <= 8) {
    size_t at = 14 + size_t(headerSize) + (compression == 3 && headerSize == 40 ? 12 : 0);
    uint32_t used = core || size < 50 ? 0 : LE32(data + 46);
    paletteEntries = used != 0 && used < (1u << bits) ? used : (1u << bits);
    if (at > size || (size - at) / entrySize < paletteEntries) return false;
    palette = data + at;
  }
  if (!Allocate(header.width, header.height, limits, out)) return false;
  uint64_t stride = (uint64_t(header.width) * bits + 31) / 32 * 4;
  if (pixelOffset > size || (size - pixelOffset) / stride < header.height) return false;
  out->hasAlpha = alpha.mask != 0;
  for (uint32_t y = 0; y < header.height; y++) {
    const uint8_t *row = data + pixelOffset + stride * (topDown ? y : header.height - 1 - y);
    uint8_t *p = &out->rgba[size_t(y) * header.width * 4];
    for (uint32_t x = 0; x < header.width; x++, p += 4) {
      if (bits <= 8) {
        size_t bit = size_t(x) * bits;
        size_t entry = (row[bit / 8] >> (8 - bits - bit % 8)) & ((1u << bits) - 1);
        if (entry >= paletteEntries) entry = 0;
        const uint8_t *color = palette + entry * entrySize;
        p[0] = color[2];
        p[1] = color[1];
        p[2] = color[0];
        p[3] = 255;
      } else if (bits == 24) {
        p[0] = row[x * 3 + 2];
        p[1] = row[x * 3 + 1];
        p[2] = row[x * 3];
        p[3] = 255;
      } else {
        uint32_t pixel = bits == 16 ? LE16(row + x * 2) : LE32(row + x * 4);
        p[0] = red.read(pixel);
        p[1] = green.read(pixel);
        p[2] = blue.read(pixel);
        p[3] = alpha.mask != 0 ? alpha.read(pixel) : 255;
      }
    }
  }
  if (out->hasAlpha) Premultiply(out);
  return true;
}

// --- Palette hazards ---------------------------------------------------------

// Whether some image of the GIF has no colour table or a pixel value past
// its table. Frames are read a row at a time, nothing composed; a GIF that
// does not read through is no hazard here (the decoders refuse it).
bool GIFHasPaletteHazards(const uint8_t *data, size_t size, const DecodeLimits &limits) {
  MemoryReader reader = {data, size, 0};
  int error = 0;
  GifFileType *gif = DGifOpen(&reader, GIFRead, &error);
  if (gif == nullptr) return false;
  bool hazard = false;
  std::vector<uint8_t> row;
  GifRecordType record = UNDEFINED_RECORD_TYPE;
  while (!hazard && DGifGetRecordType(gif, &record) != GIF_ERROR &&
         record != TERMINATE_RECORD_TYPE) {
    if (record == EXTENSION_RECORD_TYPE) {
      int code = 0;
      GifByteType *extension = nullptr;
      if (DGifGetExtension(gif, &code, &extension) == GIF_ERROR) break;
      while (extension != nullptr) {
        if (DGifGetExtensionNext(gif, &extension) == GIF_ERROR) break;
      }
      if (extension != nullptr) break;
    } else if (record == IMAGE_DESC_RECORD_TYPE) {
      if (DGifGetImageDesc(gif) == GIF_ERROR) break;
      const GifImageDesc &desc = gif->Image;
      if (desc.Width <= 0 || desc.Height <= 0 ||
          uint64_t(desc.Width) * uint64_t(desc.Height) > limits.maxPixels) {
        break;
      }
      const ColorMapObject *map = desc.ColorMap != nullptr ? desc.ColorMap : gif->SColorMap;
      if (map == nullptr) {
        hazard = true;
        break;
      }
      row.assign(size_t(desc.Width), 0);
      for (int y = 0; y < desc.Height && !hazard; y++) {
        if (DGifGetLine(gif, row.data(), desc.Width) == GIF_ERROR) break;
        for (uint8_t entry : row) {
          if (entry >= map->ColorCount) hazard = true;
        }
      }
    }
  }
  DGifCloseFile(gif, &error);
  return hazard;
}

// Whether some directory of the TIFF is a palette image of fewer than 8
// bits per sample.
bool TIFFHasPaletteHazards(const uint8_t *data, size_t size, const DecodeLimits &limits) {
  MemoryReader reader = {data, size, 0};
  TIFF *tiff = OpenTIFF(&reader, limits);
  if (tiff == nullptr) return false;
  bool hazard = false;
  // A directory chain that loops is cut short by libtiff.
  for (int directories = 0; !hazard && directories < 0xFFFF; directories++) {
    uint16_t photometric = 0, bits = 0;
    if (TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &photometric) &&
        photometric == PHOTOMETRIC_PALETTE) {
      TIFFGetFieldDefaulted(tiff, TIFFTAG_BITSPERSAMPLE, &bits);
      hazard = bits < 8;
    }
    if (!TIFFReadDirectory(tiff)) break;
  }
  TIFFClose(tiff);
  return hazard;
}

}  // namespace

bool HasPaletteHazards(const uint8_t *data, size_t size, const DecodeLimits &limits) {
  if (data == nullptr || size == 0) return false;
  switch (SniffFormat(data, size)) {
    case Format::GIF:
      return GIFHasPaletteHazards(data, size, limits);
    case Format::TIFF:
      return TIFFHasPaletteHazards(data, size, limits);
    default:
      return false;
  }
}

bool DecodeImage(const uint8_t *data, size_t size, size_t index, DecodedImage *out,
                 const DecodeLimits &limits) {
  *out = DecodedImage();
  if (data == nullptr || size == 0) return false;
  Format format = SniffFormat(data, size);
  bool single = format != Format::GIF && format != Format::TIFF;
  if (single && index != 0) return false;
  bool ok = false;
  switch (format) {
    case Format::PNG:
      ok = DecodePNG(data, size, limits, out);
      break;
    case Format::JPEG:
      ok = DecodeJPEG(data, size, limits, out);
      break;
    case Format::GIF:
      ok = DecodeGIF(data, size, index, limits, out);
      break;
    case Format::BMP:
      ok = DecodeBMP(data, size, limits, out);
      break;
    case Format::TIFF:
      ok = DecodeTIFF(data, size, index, limits, out);
      break;
    case Format::WebP:
      ok = DecodeWebP(data, size, limits, out);
      break;
    case Format::Unknown:
      break;
  }
  if (!ok) *out = DecodedImage();
  return ok;
}

}  // namespace talvo::imageio
