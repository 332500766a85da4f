// Decodes an image file held in memory into 8-bit RGBA pixels.
//
// PNG through libpng's simplified API, JPEG through libjpeg(-turbo), GIF
// through giflib (frames composed on the logical screen with their
// disposal methods), TIFF through libtiff's RGBA interface, WebP through
// libwebp, BMP by hand (uncompressed 1/4/8-bit indexed, 16/24/32-bit,
// bit-field masks). The pixels are premultiplied, rows top-down, as stored
// (no EXIF rotation). A truncated JPEG gives the rows libjpeg could read,
// as other decoders do; every other format gives false when the data is cut
// short or corrupt.
// Not covered: colour management (ICC profiles are ignored), 16-bit
// output, animated WebP, BMP RLE and JPEG/PNG inside BMP, CMYK TIFF
// beyond what libtiff converts.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace talvo::imageio {

struct DecodedImage {
  uint32_t width = 0;
  uint32_t height = 0;
  bool hasAlpha = false;
  std::vector<uint8_t> rgba;  // width * height * 4, premultiplied
};

struct DecodeLimits {
  // Images with more pixels are refused before any memory is taken.
  uint64_t maxPixels = uint64_t(1) << 28;
};

// Decodes image `index` (a GIF frame, a TIFF directory; 0 otherwise).
bool DecodeImage(const uint8_t *data, size_t size, size_t index, DecodedImage *out,
                 const DecodeLimits &limits = DecodeLimits());

// Palettes that GNUstep 0.29's own readers mishandle: a GIF image with no
// colour table (read through a null table) or with pixel values past its
// table (read past it), and a TIFF palette image of fewer than 8 bits per
// sample (expanded past its pixel buffer). True when `data` holds any.
// DecodeImage reads the last two (a value past the table stays
// transparent) and refuses the first.
bool HasPaletteHazards(const uint8_t *data, size_t size,
                       const DecodeLimits &limits = DecodeLimits());

}  // namespace talvo::imageio
