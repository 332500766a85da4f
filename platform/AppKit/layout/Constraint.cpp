#include "platform/AppKit/layout/Constraint.hpp"

#include <atomic>
#include <cmath>
#include <utility>

namespace talvo::layout {

namespace {
std::uint64_t NextConstraintId() {
  static std::atomic<std::uint64_t> next{1};
  return next.fetch_add(1, std::memory_order_relaxed);
}
}  // namespace

Constraint::Constraint(Expression expression, Relation relation, Strength strength)
    : data_(std::make_shared<const Data>(
          Data{std::move(expression), relation, strength, NextConstraintId()})) {}

Constraint Constraint::Make(const Expression& lhs, Relation relation, const Expression& rhs,
                            Strength strength) {
  return Constraint(lhs - rhs, relation, strength);
}

bool Constraint::isValid() const {
  if (!data_) return false;
  if (!std::isfinite(data_->expression.constant())) return false;
  if (std::isnan(data_->strength.priority)) return false;
  for (const Term& term : data_->expression.terms()) {
    if (!std::isfinite(term.coefficient)) return false;
  }
  return true;
}

}  // namespace talvo::layout
