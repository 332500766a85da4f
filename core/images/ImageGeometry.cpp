#include "core/images/ImageGeometry.hpp"

#include <cmath>

namespace talvo::images {

Size ScaledSizeForSize(Size image, Size target) {
  if (!(image.width > 0) || !std::isfinite(image.height)) {
    return Size{};
  }
  // The ratio is rounded to a float on purpose: results match to the last bit.
  const double ratio = static_cast<double>(static_cast<float>(image.height / image.width));
  if (!std::isfinite(ratio)) {
    return Size{};
  }
  if (target.height < ratio * target.width) {
    return Size{target.height / ratio, target.height};
  }
  return Size{target.width, ratio * target.width};
}

Size ScaledSizeThatFits(Size image, Size target) {
  if (image.width > target.width || image.height > target.height) {
    return ScaledSizeForSize(image, target);
  }
  return image;
}

CapSlices CapSlicesFor(double imageWidth, double leftCap, double middleWidth, double rightCap) {
  CapSlices slices;
  slices.left = Span{0, leftCap};
  slices.middle = Span{leftCap, imageWidth - leftCap - rightCap};
  slices.right = Span{imageWidth - rightCap, rightCap};
  slices.resultWidth = leftCap + middleWidth + rightCap;
  return slices;
}

uint64_t PixelExtent(double points, double scale) {
  const double pixels = points * scale;
  // Beyond this no bitmap could be made anyway; it also keeps the cast defined.
  constexpr double kLimit = 1 << 30;
  if (!(pixels > 0) || !(pixels < kLimit)) {
    return 0;
  }
  return static_cast<uint64_t>(pixels);
}

}  // namespace talvo::images
