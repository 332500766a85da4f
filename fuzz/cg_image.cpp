// Quartz engine images with arbitrary layouts and bytes: created, cropped,
// drawn into bitmap contexts of arbitrary layouts under arbitrary state
// (transform, alpha, blend mode, shadow, clips), read back, and scanned
// for their filled rectangle by the core's trimming code.
//
// Beyond the sanitizers it checks that a filled rectangle lies inside its
// image.
#include <fuzzer/FuzzedDataProvider.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <memory>
#include <optional>
#include <vector>

#include "core/images/FilledRect.hpp"
#include "platform/CoreGraphics/engine/BitmapTarget.hpp"
#include "platform/CoreGraphics/engine/Context.hpp"
#include "platform/CoreGraphics/engine/Image.hpp"

namespace {

namespace quartz = talvo::quartz;
namespace images = talvo::images;

// Sizes are mostly small, sometimes absurd.
size_t Dimension(FuzzedDataProvider &in) {
  static const size_t kAbsurd[] = {0, 1, 1u << 16, SIZE_MAX / 4, SIZE_MAX};
  if (in.ConsumeIntegralInRange<int>(0, 15) == 0) return in.PickValueInArray(kAbsurd);
  return in.ConsumeIntegralInRange<size_t>(0, 48);
}

double Number(FuzzedDataProvider &in) {
  static const double kExtremes[] = {0.0, 1.0, -1.0, 0.5, 1e-300, 1e300, -1e300,
                                     std::numeric_limits<double>::infinity(),
                                     -std::numeric_limits<double>::infinity(),
                                     std::numeric_limits<double>::quiet_NaN()};
  if (in.ConsumeBool()) return in.PickValueInArray(kExtremes);
  return in.ConsumeFloatingPointInRange<double>(-100.0, 100.0);
}

uint32_t BitmapInfo(FuzzedDataProvider &in) {
  if (in.ConsumeIntegralInRange<int>(0, 7) == 0) return in.ConsumeIntegral<uint32_t>();
  uint32_t alpha = in.ConsumeIntegralInRange<uint32_t>(0, 7);
  uint32_t order = in.ConsumeIntegralInRange<uint32_t>(0, 4) << 12;
  return alpha | order;
}

quartz::PixelFormat Format(FuzzedDataProvider &in) {
  static const size_t kBitsPerComponent[] = {1, 2, 4, 5, 8, 16, 32, 3, 0};
  static const size_t kBitsPerPixel[] = {8, 16, 24, 32, 48, 64, 128, 1, 0, 7};
  quartz::PixelFormat f;
  f.width = Dimension(in);
  f.height = Dimension(in);
  f.bitsPerComponent = in.PickValueInArray(kBitsPerComponent);
  f.bitsPerPixel = in.PickValueInArray(kBitsPerPixel);
  f.bytesPerRow = in.ConsumeBool() ? f.width * ((f.bitsPerPixel + 7) / 8)
                                   : in.ConsumeIntegralInRange<size_t>(0, 512);
  if (in.ConsumeIntegralInRange<int>(0, 31) == 0) f.bytesPerRow = SIZE_MAX;
  f.model = in.ConsumeBool() ? quartz::ColorModel::RGB : quartz::ColorModel::Gray;
  f.bitmapInfo = BitmapInfo(in);
  return f;
}

quartz::Rect AnyRect(FuzzedDataProvider &in) {
  return quartz::Rect::make(Number(in), Number(in), Number(in), Number(in));
}

void Check(bool condition, const char *what) {
  if (!condition) {
    std::fprintf(stderr, "cg image: %s\n", what);
    std::abort();
  }
}

// The core's scan over an engine image's bytes, as VXGetFilledRect does it.
void Scan(const quartz::Image *image) {
  if (image == nullptr) return;
  images::PixelBuffer buffer;
  buffer.width = image->width();
  buffer.height = image->height();
  buffer.bytesPerRow = image->bytesPerRow();
  buffer.bitsPerPixel = image->bitsPerPixel();
  buffer.bitsPerComponent = image->bitsPerComponent();
  buffer.alphaInfo = static_cast<images::AlphaInfo>(static_cast<uint32_t>(image->alphaInfo()));
  buffer.byteOrder = static_cast<images::ByteOrder>(image->bitmapInfo() & quartz::kByteOrderMask);
  buffer.bytes = image->data();
  buffer.length = image->dataLength();
  std::optional<images::PixelRect> filled = images::FindFilledRect(buffer);
  if (filled) {
    Check(filled->x + filled->width <= buffer.width, "filled rect wider than the image");
    Check(filled->y + filled->height <= buffer.height, "filled rect taller than the image");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  FuzzedDataProvider in(data, size);
  quartz::PixelFormat format = Format(in);
  bool interpolate = in.ConsumeBool();
  size_t declared = in.ConsumeBool() ? format.minimumLength()
                                     : in.ConsumeIntegralInRange<size_t>(0, 1 << 16);
  std::vector<uint8_t> bytes = in.ConsumeBytes<uint8_t>(in.ConsumeIntegralInRange<size_t>(0, 1 << 14));
  // The length handed over never exceeds what is there.
  size_t length = std::min(declared, bytes.size());
  quartz::ImageRef image = quartz::ImageRef::adopt(
      in.ConsumeBool() ? quartz::Image::create(format, bytes.data(), length, interpolate)
                       : quartz::Image::createMask(format.width, format.height,
                                                   format.bitsPerComponent, format.bitsPerPixel,
                                                   format.bytesPerRow, bytes.data(), length,
                                                   interpolate));
  Scan(image.get());
  if (image && in.ConsumeBool()) {
    quartz::ImageRef cropped = quartz::ImageRef::adopt(image->createWithImageInRect(AnyRect(in)));
    Scan(cropped.get());
  }

  // A bitmap context of its own layout, drawing the image under odd state.
  size_t width = in.ConsumeIntegralInRange<size_t>(0, 40);
  size_t height = in.ConsumeIntegralInRange<size_t>(0, 40);
  static const size_t kTargetBits[] = {8, 16, 5, 32, 1};
  std::shared_ptr<quartz::BitmapTarget> target = quartz::BitmapTarget::create(
      nullptr, width, height, in.PickValueInArray(kTargetBits),
      in.ConsumeBool() ? 0 : in.ConsumeIntegralInRange<size_t>(0, 256),
      in.ConsumeBool() ? quartz::ColorModel::RGB : quartz::ColorModel::Gray, BitmapInfo(in));
  if (!target) return 0;
  std::unique_ptr<quartz::Context> context = quartz::makeBitmapContext(target);
  if (!context) return 0;
  for (int step = 0; step < 16 && in.remaining_bytes() > 0; ++step) {
    switch (in.ConsumeIntegralInRange<int>(0, 11)) {
      case 0: context->scaleCTM(Number(in), Number(in)); break;
      case 1: context->translateCTM(Number(in), Number(in)); break;
      case 2: context->rotateCTM(Number(in)); break;
      case 3: context->setAlpha(Number(in)); break;
      case 4: context->setBlendMode(static_cast<quartz::BlendMode>(in.ConsumeIntegralInRange<int>(-1, 29))); break;
      case 5: context->setShadow(quartz::Size{Number(in), Number(in)}, Number(in)); break;
      case 6: context->clipToRect(AnyRect(in)); break;
      case 7: if (image) context->clipToMask(AnyRect(in), image.get()); break;
      case 8: if (image) context->drawImage(AnyRect(in), image.get()); break;
      case 9:
        context->setFillColor(quartz::Color::rgb(Number(in), Number(in), Number(in), Number(in)));
        context->fillRect(AnyRect(in));
        break;
      case 10: context->saveGState(); break;
      case 11: context->restoreGState(); break;
    }
  }
  target->flush();
  quartz::ImageRef snapshot = quartz::ImageRef::adopt(target->createImage());
  Scan(snapshot.get());
  return 0;
}
