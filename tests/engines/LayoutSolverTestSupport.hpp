// Shorthands the layout solver's tests write constraints with.
#pragma once

#include "platform/AppKit/layout/Solver.hpp"

namespace talvo::layout {

inline Constraint Eq(const Expression& lhs, const Expression& rhs, float priority = 1000) {
  return Constraint::Make(lhs, Relation::Equal, rhs, FromPriority(priority));
}
inline Constraint Le(const Expression& lhs, const Expression& rhs, float priority = 1000) {
  return Constraint::Make(lhs, Relation::LessThanOrEqual, rhs, FromPriority(priority));
}
inline Constraint Ge(const Expression& lhs, const Expression& rhs, float priority = 1000) {
  return Constraint::Make(lhs, Relation::GreaterThanOrEqual, rhs, FromPriority(priority));
}

}  // namespace talvo::layout
