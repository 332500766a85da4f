// An incremental Cassowary solver (Badros, Borning & Stuckey): a simplex
// tableau kept optimal as constraints come and go, with edit variables that
// re-solve through the dual simplex instead of rebuilding.
//
// Nothing here throws: every call reports a Status, and a failed call leaves
// the solver as it was.
#pragma once

#include <memory>
#include <vector>

#include "platform/AppKit/layout/Constraint.hpp"
#include "platform/AppKit/layout/Strength.hpp"
#include "platform/AppKit/layout/Variable.hpp"

namespace talvo::layout {

enum class Status {
  Ok,
  Unsatisfiable,         // a required constraint conflicts with the others
  Duplicate,             // the constraint or edit variable is already there
  UnknownConstraint,     // removing a constraint the solver does not hold
  UnknownEditVariable,   // editing a variable that is not an edit variable
  RequiredEditStrength,  // edit variables must be weaker than required
  InvalidValue,          // null constraint, or a number out of range (see Solver)
  IterationLimit,        // pivot cap hit; should never happen, but never hangs
  InternalError,         // allocation failure or a broken tableau
};

const char* StatusName(Status status);

// Not thread-safe. A moved-from solver may only be destroyed or assigned to.
//
// Numbers: a coefficient (a variable's repeated terms summed) is at most
// kMaxCoefficient in magnitude, and a constant, a suggested value or a new
// constant at most kMaxConstant. Within that, points keep sub-nanopoint
// precision through the tableau's arithmetic, and rows never overflow.
// Anything else (NaN and infinities too) answers InvalidValue before the
// solver touches anything. Coefficients below 1e-8 in magnitude count as 0.
// An edit variable whose value() is out of range starts at 0.
class Solver {
 public:
  static constexpr double kMaxCoefficient = 1.0e6;
  static constexpr double kMaxConstant = 1.0e7;

  Solver();
  ~Solver();
  Solver(Solver&&) noexcept;
  Solver& operator=(Solver&&) noexcept;
  Solver(const Solver&) = delete;
  Solver& operator=(const Solver&) = delete;

  Status addConstraint(const Constraint& constraint) noexcept;
  Status removeConstraint(const Constraint& constraint) noexcept;
  bool hasConstraint(const Constraint& constraint) const noexcept;

  // The edit starts out holding the variable's current value(), so adding
  // one never moves anything until a value is suggested.
  Status addEditVariable(const Variable& variable, Strength strength) noexcept;
  Status removeEditVariable(const Variable& variable) noexcept;
  bool hasEditVariable(const Variable& variable) const noexcept;
  Status suggestValue(const Variable& variable, double value) noexcept;

  // Changes the constant of a constraint the solver holds, in place: the
  // same dual-simplex step suggestValue takes, so a divider drag re-solves
  // from the current basis instead of removing and re-adding.
  //
  // `newConstant` is the constant of the constraint's stored expression
  // (`lhs - rhs`), so `x == 40` made by Constraint::Make(x, Equal, 40) has
  // constant -40. Constraint handles are immutable: the solver keeps the
  // current constant in its own record (read it with constantOf); the handle's
  // expression() keeps the one it was made with, and removing then re-adding
  // the handle starts from that one again.
  //
  // A change that leaves the required constraints without a solution answers
  // Unsatisfiable, keeps the old constant and solves the system as it was
  // before the call again: the earlier solution comes back (among equally
  // good solutions the solver may settle on another one).
  Status updateConstant(const Constraint& constraint, double newConstant) noexcept;
  // The constant the solver holds for `constraint`: false if it holds none.
  bool constantOf(const Constraint& constraint, double& constant) const noexcept;

  // Writes the solved values into the variables the solver knows. Only the
  // values that moved since the last update are written (a variable new to
  // the solver is always written once), so a call costs what changed, not
  // the size of the system; a value set on a variable by hand in between is
  // left as it is unless the solver moves that variable.
  void updateVariables() noexcept;
  // The same, and appends to `changed` each variable whose value it wrote.
  void updateVariables(std::vector<Variable>* changed) noexcept;
  // Drops every constraint and edit variable.
  void reset() noexcept;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace talvo::layout
