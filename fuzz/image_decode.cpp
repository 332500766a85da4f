// Image I/O's decoders (libpng, libjpeg-turbo, giflib, libtiff, libwebp
// and the BMP reader) and its palette scan on arbitrary bytes, under a
// pixel limit that keeps declared sizes from exhausting memory. Beyond the
// sanitizers it checks that a decoded image's buffer matches its size and
// that the header reader agrees on the size of single-image formats.
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "platform/ImageIO/engine/ImageDecoder.hpp"
#include "platform/ImageIO/engine/ImageHeader.hpp"

namespace io = talvo::imageio;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  if (size < 1) return 0;
  // The first byte picks a frame for GIF and TIFF.
  size_t index = data[0] % 4;
  std::vector<uint8_t> bytes(data + 1, data + size);
  io::DecodeLimits limits;
  limits.maxPixels = 1u << 22;
  // The palette scan reads the same files the loader hands it.
  io::HasPaletteHazards(bytes.data(), bytes.size(), limits);
  io::DecodedImage image;
  if (!io::DecodeImage(bytes.data(), bytes.size(), index, &image, limits)) {
    if (!image.rgba.empty() || image.width != 0) abort();
    return 0;
  }
  if (image.width == 0 || image.height == 0) abort();
  if (image.rgba.size() != size_t(image.width) * image.height * 4) abort();
  // Premultiplied: no colour above its alpha.
  for (size_t i = 0; i < image.rgba.size(); i += 4) {
    uint8_t a = image.rgba[i + 3];
    if (image.rgba[i] > a || image.rgba[i + 1] > a || image.rgba[i + 2] > a) abort();
  }
  io::HeaderInfo header;
  if (io::ReadHeader(bytes.data(), bytes.size(), &header) && header.format != io::Format::GIF &&
      header.format != io::Format::TIFF && header.format != io::Format::JPEG &&
      (header.width != image.width || header.height != image.height)) {
    abort();
  }
  return 0;
}
