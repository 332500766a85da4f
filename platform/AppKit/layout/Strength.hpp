// How strongly the solver holds a constraint, in AppKit's priority terms.
//
// Priorities run from 1 to 1000; 1000 is required and is never traded away.
// Every other priority is its own level of a symbolic (lexicographic) weight:
// the solver keeps one objective component per distinct priority and compares
// them from the highest priority down. So any violation at 751, however
// small, outweighs any amount of violation at 750, and 999 is always weaker
// than required. Constraints sharing a priority trade their errors 1:1.
#pragma once

namespace talvo::layout {

struct Strength {
  static constexpr float kRequired = 1000.0f;
  static constexpr float kDefaultHigh = 750.0f;
  static constexpr float kDefaultLow = 250.0f;
  static constexpr float kFittingSizeCompression = 50.0f;

  float priority = kRequired;

  bool isRequired() const { return priority >= kRequired; }
  static Strength Required() { return Strength{kRequired}; }
};

// Clamps into [1, 1000]; NaN becomes 1, the weakest, rather than required,
// so a garbage priority can never make a layout unsatisfiable.
Strength FromPriority(float priority);

inline bool operator==(Strength a, Strength b) { return a.priority == b.priority; }
inline bool operator!=(Strength a, Strength b) { return !(a == b); }

}  // namespace talvo::layout
