// A linear expression: sum of coefficient * variable, plus a constant.
#pragma once

#include <vector>

#include "platform/AppKit/layout/Variable.hpp"

namespace talvo::layout {

struct Term {
  Variable variable;
  double coefficient = 1.0;
};

class Expression {
 public:
  Expression() = default;
  Expression(double constant) : constant_(constant) {}  // NOLINT: implicit on purpose
  Expression(const Variable& variable) : terms_{Term{variable, 1.0}} {}  // NOLINT
  Expression(std::vector<Term> terms, double constant = 0.0)
      : terms_(std::move(terms)), constant_(constant) {}

  const std::vector<Term>& terms() const { return terms_; }
  double constant() const { return constant_; }
  // Evaluated with the variables' current values.
  double value() const;

  Expression& operator+=(const Expression& other);
  Expression& operator*=(double factor);

 private:
  std::vector<Term> terms_;
  double constant_ = 0.0;
};

Expression operator+(Expression a, const Expression& b);
Expression operator-(Expression a, const Expression& b);
Expression operator-(Expression a);
Expression operator*(Expression a, double factor);
Expression operator*(double factor, Expression a);

}  // namespace talvo::layout
