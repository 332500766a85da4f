#include "platform/AppKit/layout/Strength.hpp"

#include <cmath>

namespace talvo::layout {

Strength FromPriority(float priority) {
  if (std::isnan(priority) || priority < 1.0f) return Strength{1.0f};
  if (priority >= Strength::kRequired) return Strength::Required();
  return Strength{priority};
}

}  // namespace talvo::layout
