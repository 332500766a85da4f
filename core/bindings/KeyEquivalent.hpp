// Matching of key-down events against a key equivalent's modifier flags.
#pragma once

#include <cstdint>

namespace talvo::bindings {

// The device-independent modifier bits of an event's flags.
constexpr uint32_t kDeviceIndependentModifierMask = 0xFFFF0000u;

// Whether an event holding `eventFlags` satisfies the `requiredFlags` of a
// key equivalent: every required flag must be held, other modifiers may be
// held too, and zero requires nothing. The comparison is made on the low 32
// bits of the event's device-independent flags, so a required flag outside
// them (below bit 16 or above bit 31) can never be satisfied.
bool ModifiersMatch(uint64_t requiredFlags, uint64_t eventFlags);

}  // namespace talvo::bindings
