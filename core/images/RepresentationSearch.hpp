// Choosing the representation of a multi-resolution image that best fits a
// side length, over plain descriptions of the representations.
#pragma once

#include <cstdint>
#include <vector>

namespace talvo::images {

// Bits of the search mask.
constexpr int32_t kRepresentationAllowLarger = 1;
constexpr int32_t kRepresentationAllowSmaller = 2;
constexpr int32_t kRepresentationStandardResolution = 4;
constexpr int32_t kRepresentationDoubleResolution = 8;
constexpr int32_t kRepresentationTripleResolution = 16;

struct RepresentationInfo {
  bool bitmap = false;
  double pixelsWide = 0;
  double pixelsHigh = 0;
  double width = 0;  // points
  double height = 0;
};

// A length truncated toward zero and read as an unsigned 32-bit value
// (negative lengths wrap around, as the C conversion through a 32-bit int
// would); NaN gives 0 and lengths beyond 64 bits saturate first.
uint32_t RepresentationSide(double length);

// The index of the chosen representation, or -1: an eligible
// representation whose side equals `side` at once; otherwise the smallest
// larger one (with AllowLarger) or, when no larger one was chosen, the
// largest smaller one (with AllowSmaller). Ties keep the first met.
// Bitmaps are eligible by their scale as the resolution bits say; with
// both StandardResolution and DoubleResolution every bitmap is, with none
// of the three resolution bits none is. Other representations always are.
int BestRepresentationIndex(const std::vector<RepresentationInfo> &reps, int32_t side,
                            int32_t mask);

}  // namespace talvo::images
