#include "core/bindings/KeyEquivalent.hpp"

namespace talvo::bindings {

bool ModifiersMatch(uint64_t requiredFlags, uint64_t eventFlags) {
  uint32_t held = static_cast<uint32_t>(requiredFlags & eventFlags) & kDeviceIndependentModifierMask;
  return static_cast<uint64_t>(held) == requiredFlags;
}

}  // namespace talvo::bindings
