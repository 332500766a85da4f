// Sizes and slices of image composition: aspect fitting, the three pieces
// of a cap image, and the pixel extent of offscreen drawing.
#pragma once

#include <cstdint>

namespace talvo::images {

struct Size {
  double width = 0;
  double height = 0;
};

// The size with the image's aspect ratio (height / width, taken in single
// precision) that touches `target` on one side and lies inside it on the
// other; larger than the image when the target is. {0, 0} for an image
// without width.
Size ScaledSizeForSize(Size image, Size target);

// ScaledSizeForSize when the image exceeds the target on either side, the
// image's own size otherwise: images shrink to fit, never grow.
Size ScaledSizeThatFits(Size image, Size target);

// A horizontal span of the source image, in points.
struct Span {
  double x = 0;
  double width = 0;
};

// Where the left cap, the middle piece and the right cap are cut from an
// image `imageWidth` wide. The middle is the source's own middle; the
// result's width is left + middle + right.
struct CapSlices {
  Span left;
  Span middle;
  Span right;
  double resultWidth = 0;
};

CapSlices CapSlicesFor(double imageWidth, double leftCap, double middleWidth, double rightCap);

// Pixels for `points` at `scale`, truncated toward zero; 0 for negative,
// non-finite or absurdly large products.
uint64_t PixelExtent(double points, double scale);

}  // namespace talvo::images
