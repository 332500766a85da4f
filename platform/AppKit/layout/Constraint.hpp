// A linear constraint `expression (<=, ==, >=) 0` held at a strength.
// A shared handle: the solver knows a constraint by identity, so copies of
// one handle add, remove and compare as the same constraint.
#pragma once

#include <cstdint>
#include <memory>

#include "platform/AppKit/layout/Attributes.hpp"
#include "platform/AppKit/layout/Expression.hpp"
#include "platform/AppKit/layout/Strength.hpp"

namespace talvo::layout {

class Constraint {
 public:
  // A null constraint; the solver refuses it.
  Constraint() = default;
  Constraint(Expression expression, Relation relation, Strength strength = Strength::Required());
  // `lhs relation rhs`, kept as `lhs - rhs relation 0`.
  static Constraint Make(const Expression& lhs, Relation relation, const Expression& rhs,
                         Strength strength = Strength::Required());

  bool isNull() const { return data_ == nullptr; }
  // False for null constraints and for NaN or infinite numbers.
  bool isValid() const;
  const Expression& expression() const { return data_->expression; }
  Relation relation() const { return data_->relation; }
  Strength strength() const { return data_->strength; }
  std::uint64_t id() const { return data_ ? data_->id : 0; }

  friend bool operator==(const Constraint& a, const Constraint& b) { return a.data_ == b.data_; }
  friend bool operator!=(const Constraint& a, const Constraint& b) { return a.data_ != b.data_; }

 private:
  struct Data {
    Expression expression;
    Relation relation = Relation::Equal;
    Strength strength;
    std::uint64_t id = 0;
  };
  std::shared_ptr<const Data> data_;
};

}  // namespace talvo::layout
