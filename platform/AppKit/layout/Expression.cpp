#include "platform/AppKit/layout/Expression.hpp"

namespace talvo::layout {

double Expression::value() const {
  double result = constant_;
  for (const Term& term : terms_) result += term.coefficient * term.variable.value();
  return result;
}

Expression& Expression::operator+=(const Expression& other) {
  terms_.insert(terms_.end(), other.terms_.begin(), other.terms_.end());
  constant_ += other.constant_;
  return *this;
}

Expression& Expression::operator*=(double factor) {
  for (Term& term : terms_) term.coefficient *= factor;
  constant_ *= factor;
  return *this;
}

Expression operator+(Expression a, const Expression& b) { return a += b; }
Expression operator-(Expression a) { return a *= -1.0; }
Expression operator-(Expression a, const Expression& b) { return a += -b; }
Expression operator*(Expression a, double factor) { return a *= factor; }
Expression operator*(double factor, Expression a) { return a *= factor; }

}  // namespace talvo::layout
