// Image I/O's header reader and its completeness test on arbitrary bytes. Beyond the sanitizers it
// checks that a header that reads has a size, a count and an orientation
// in range, and that reading is the same whether the buffer is exactly
// sized or followed by more bytes (a read past the end would differ).
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "platform/ImageIO/engine/ImageHeader.hpp"

namespace io = talvo::imageio;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  std::vector<uint8_t> exact(data, data + size);
  io::HeaderInfo info;
  bool ok = io::ReadHeader(exact.data(), exact.size(), &info);
  if (ok) {
    if (info.width == 0 || info.height == 0 || info.imageCount == 0) abort();
    if (info.orientation < 0 || info.orientation > 8) abort();
    if (io::TypeIdentifier(info.format) == nullptr) abort();
    io::MemorySource source(exact.data(), exact.size());
    io::LooksComplete(source, info);
  }
  std::vector<uint8_t> padded(exact);
  padded.resize(size + 64, 0xA5);
  io::HeaderInfo again;
  io::ReadHeader(padded.data(), size, &again);
  if (ok != (again.width != 0) || again.width != info.width || again.height != info.height ||
      again.imageCount != info.imageCount) {
    abort();
  }
  return 0;
}
