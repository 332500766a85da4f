#include "core/images/RepresentationSearch.hpp"

#include <algorithm>
#include <cmath>

namespace talvo::images {

uint32_t RepresentationSide(double length) {
  if (std::isnan(length)) return 0;
  double truncated = std::trunc(length);
  // Out of range for 64 bits: saturate, then keep the low 32 bits.
  if (truncated >= 9223372036854775807.0) return 0xFFFFFFFFu;
  if (truncated <= -9223372036854775808.0) return 0;
  return static_cast<uint32_t>(static_cast<int64_t>(truncated));
}

int BestRepresentationIndex(const std::vector<RepresentationInfo> &reps, int32_t side,
                            int32_t mask) {
  const uint32_t wanted = static_cast<uint32_t>(side);
  const bool allowLarger = (mask & kRepresentationAllowLarger) != 0;
  const bool standard = (mask & kRepresentationStandardResolution) != 0;
  const bool doubled = (mask & kRepresentationDoubleResolution) != 0;
  const bool tripled = (mask & kRepresentationTripleResolution) != 0;
  bool allowSmaller = (mask & kRepresentationAllowSmaller) != 0;
  const bool filtering = !(standard && doubled);
  int best = -1;
  uint32_t bestLarger = 0xFFFFFFFFu;
  uint32_t bestSmaller = 0;
  for (size_t i = 0; i < reps.size(); ++i) {
    const RepresentationInfo &rep = reps[i];
    const double pixelSide = std::max(rep.pixelsHigh, rep.pixelsWide);
    const double pointSide = std::max(rep.width, rep.height);
    if (filtering && rep.bitmap) {
      bool eligible = (standard && 2 * rep.height > pixelSide) ||
                      (doubled && 2 * pointSide == pixelSide) ||
                      (tripled && 3 * pointSide == pixelSide);
      if (!eligible) continue;
    }
    const uint32_t repSide = RepresentationSide(rep.bitmap ? pixelSide : pointSide);
    if (repSide == wanted) return static_cast<int>(i);
    if (repSide > wanted) {
      if (allowLarger && repSide < bestLarger) {
        best = static_cast<int>(i);
        bestLarger = repSide;
        allowSmaller = false;
      }
    } else if (allowSmaller && repSide > bestSmaller) {
      best = static_cast<int>(i);
      bestSmaller = repSide;
    }
  }
  return best;
}

}  // namespace talvo::images
