#include "platform/AppKit/layout/Solver.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace talvo::layout {

namespace {

constexpr double kEpsilon = 1.0e-8;

bool NearZero(double value) { return std::fabs(value) < kEpsilon; }

// --- Symbols ---------------------------------------------------------------

enum class SymbolKind { Invalid, External, Slack, Error, Dummy };

// Ordered by creation, so every map walk (and so every pivot choice) is the
// same for the same sequence of calls.
struct Symbol {
  std::uint64_t id = 0;
  SymbolKind kind = SymbolKind::Invalid;

  bool valid() const { return kind != SymbolKind::Invalid; }
  bool pivotable() const { return kind == SymbolKind::Slack || kind == SymbolKind::Error; }
  friend bool operator<(Symbol a, Symbol b) { return a.id < b.id; }
};

// --- Rows ------------------------------------------------------------------

// A tableau row: basic = constant + sum(coefficient * parametric symbol).
// Before it has a basic symbol, it reads 0 = constant + sum(...).
// Cells are a vector sorted by symbol: substitution is a linear merge, which
// matters because rows grow long on chains of views.
struct Row {
  using Cell = std::pair<Symbol, double>;
  std::vector<Cell> cells;
  double constant = 0.0;

  static bool Before(const Cell& cell, Symbol symbol) { return cell.first < symbol; }

  std::vector<Cell>::iterator find(Symbol symbol) {
    auto it = std::lower_bound(cells.begin(), cells.end(), symbol, Before);
    return it != cells.end() && it->first.id == symbol.id ? it : cells.end();
  }
  std::vector<Cell>::const_iterator find(Symbol symbol) const {
    auto it = std::lower_bound(cells.begin(), cells.end(), symbol, Before);
    return it != cells.end() && it->first.id == symbol.id ? it : cells.end();
  }

  double add(double value) { return constant += value; }

  void insert(Symbol symbol, double coefficient) {
    auto it = std::lower_bound(cells.begin(), cells.end(), symbol, Before);
    if (it != cells.end() && it->first.id == symbol.id) {
      it->second += coefficient;
      if (NearZero(it->second)) cells.erase(it);
    } else if (!NearZero(coefficient)) {
      cells.insert(it, {symbol, coefficient});
    }
  }

  void insert(const Row& other, double coefficient) {
    constant += other.constant * coefficient;
    std::vector<Cell> merged;
    merged.reserve(cells.size() + other.cells.size());
    auto mine = cells.begin();
    auto theirs = other.cells.begin();
    while (mine != cells.end() || theirs != other.cells.end()) {
      if (theirs == other.cells.end() || (mine != cells.end() && mine->first < theirs->first)) {
        merged.push_back(*mine++);
        continue;
      }
      double value = theirs->second * coefficient;
      if (mine != cells.end() && mine->first.id == theirs->first.id) value += (mine++)->second;
      if (!NearZero(value)) merged.push_back({theirs->first, value});
      ++theirs;
    }
    cells = std::move(merged);
  }

  void remove(Symbol symbol) {
    auto it = find(symbol);
    if (it != cells.end()) cells.erase(it);
  }

  void reverseSign() {
    constant = -constant;
    for (auto& cell : cells) cell.second = -cell.second;
  }

  double coefficientFor(Symbol symbol) const {
    auto it = find(symbol);
    return it == cells.end() ? 0.0 : it->second;
  }

  // Rewrites `0 = ... + c * symbol + ...` as `symbol = ...`.
  void solveFor(Symbol symbol) {
    auto it = find(symbol);
    double factor = -1.0 / it->second;
    cells.erase(it);
    constant *= factor;
    for (auto& cell : cells) cell.second *= factor;
  }

  // Rewrites `lhs = ... + c * rhs + ...` as `rhs = ...`.
  void solveFor(Symbol lhs, Symbol rhs) {
    insert(lhs, -1.0);
    solveFor(rhs);
  }

  void substitute(Symbol symbol, const Row& row) {
    auto it = find(symbol);
    if (it == cells.end()) return;
    double coefficient = it->second;
    cells.erase(it);
    insert(row, coefficient);
  }
};

// --- Symbolic weights ------------------------------------------------------

// One component per priority, highest first; compared lexicographically so a
// higher priority dominates any amount of error at lower ones.
class Weight {
 public:
  static Weight At(float level, double value) {
    Weight weight;
    weight.add(level, value);
    return weight;
  }

  void add(float level, double value) {
    auto it = parts_.begin();
    while (it != parts_.end() && it->first > level) ++it;
    if (it != parts_.end() && it->first == level) {
      it->second += value;
      if (NearZero(it->second)) parts_.erase(it);
    } else if (!NearZero(value)) {
      parts_.insert(it, {level, value});
    }
  }

  void addScaled(const Weight& other, double factor) {
    for (const auto& [level, value] : other.parts_) add(level, value * factor);
  }

  bool empty() const { return parts_.empty(); }
  // Components are never near zero, so the first one decides the sign.
  int sign() const { return parts_.empty() ? 0 : (parts_.front().second > 0 ? 1 : -1); }

  friend bool operator<(const Weight& a, const Weight& b) {
    Weight difference = a;
    difference.addScaled(b, -1.0);
    return difference.sign() < 0;
  }

 private:
  std::vector<std::pair<float, double>> parts_;
};

// The objective: value = constant + sum(weight * parametric symbol).
struct Objective {
  std::map<Symbol, Weight> cells;
  Weight constant;

  void insert(Symbol symbol, const Weight& weight, double factor) {
    Weight& cell = cells[symbol];
    cell.addScaled(weight, factor);
    if (cell.empty()) cells.erase(symbol);
  }

  void insert(const Row& row, const Weight& weight) {
    constant.addScaled(weight, row.constant);
    for (const auto& [symbol, value] : row.cells) insert(symbol, weight, value);
  }

  Weight coefficientFor(Symbol symbol) const {
    auto it = cells.find(symbol);
    return it == cells.end() ? Weight() : it->second;
  }

  void substitute(Symbol symbol, const Row& row) {
    auto it = cells.find(symbol);
    if (it == cells.end()) return;
    Weight weight = std::move(it->second);
    cells.erase(it);
    insert(row, weight);
  }
};

// The artificial objective gets a level above every priority.
constexpr float kArtificialLevel = std::numeric_limits<float>::max();

Weight ErrorWeight(Strength strength) { return Weight::At(strength.priority, 1.0); }

}  // namespace

// --- The solver --------------------------------------------------------------

struct Solver::Impl {
  // A constraint's marker identifies its row; `other` is its second error
  // (equalities) or error (inequalities) when it is not required.
  struct Tag {
    Symbol marker;
    Symbol other;
  };
  struct ConstraintInfo {
    Constraint constraint;
    Tag tag;
    Strength strength;
  };
  struct VariableInfo {
    Variable variable;
    Symbol symbol;
  };
  struct EditInfo {
    Constraint constraint;
    Tag tag;
    double constant;
  };

  std::map<std::uint64_t, ConstraintInfo> constraints;
  std::map<std::uint64_t, VariableInfo> variables;
  std::map<std::uint64_t, EditInfo> edits;
  std::map<Symbol, Row> rows;
  std::vector<Symbol> infeasible;
  Objective objective;
  std::optional<Objective> artificial;
  std::uint64_t nextSymbolId = 1;

  Symbol makeSymbol(SymbolKind kind) { return Symbol{nextSymbolId++, kind}; }

  // Bland's rule (lowest id first) rules out cycling; the cap is only a
  // guard against numerical trouble, so a bad layout reports, never hangs.
  std::size_t pivotLimit() const { return 10000 + 50 * rows.size(); }

  Symbol symbolFor(const Variable& variable, std::vector<std::uint64_t>& created) {
    auto it = variables.find(variable.id());
    if (it != variables.end()) return it->second.symbol;
    Symbol symbol = makeSymbol(SymbolKind::External);
    variables.emplace(variable.id(), VariableInfo{variable, symbol});
    created.push_back(variable.id());
    return symbol;
  }

  Row createRow(const Constraint& constraint, Strength strength, Tag& tag,
                std::vector<std::uint64_t>& created) {
    const Expression& expression = constraint.expression();
    Row row;
    row.constant = expression.constant();
    for (const Term& term : expression.terms()) {
      if (NearZero(term.coefficient)) continue;
      Symbol symbol = symbolFor(term.variable, created);
      auto basic = rows.find(symbol);
      if (basic != rows.end()) {
        row.insert(basic->second, term.coefficient);
      } else {
        row.insert(symbol, term.coefficient);
      }
    }

    bool required = strength.isRequired();
    if (constraint.relation() == Relation::Equal) {
      if (required) {
        tag.marker = makeSymbol(SymbolKind::Dummy);
        row.insert(tag.marker, 1.0);
      } else {
        // expression = plus - minus, both errors minimised at the priority.
        tag.marker = makeSymbol(SymbolKind::Error);
        tag.other = makeSymbol(SymbolKind::Error);
        row.insert(tag.marker, -1.0);
        row.insert(tag.other, 1.0);
        objective.insert(tag.marker, ErrorWeight(strength), 1.0);
        objective.insert(tag.other, ErrorWeight(strength), 1.0);
      }
    } else {
      // expression <= 0 becomes expression + slack = 0 with slack >= 0.
      double sign = constraint.relation() == Relation::LessThanOrEqual ? 1.0 : -1.0;
      tag.marker = makeSymbol(SymbolKind::Slack);
      row.insert(tag.marker, sign);
      if (!required) {
        tag.other = makeSymbol(SymbolKind::Error);
        row.insert(tag.other, -sign);
        objective.insert(tag.other, ErrorWeight(strength), 1.0);
      }
    }

    // A non-negative constant lets a restricted subject keep the row feasible.
    if (row.constant < 0.0) row.reverseSign();
    return row;
  }

  // An unrestricted variable first; otherwise a restricted marker or error
  // whose negative coefficient keeps the row feasible when solved for.
  static Symbol chooseSubject(const Row& row, const Tag& tag) {
    for (const auto& cell : row.cells) {
      if (cell.first.kind == SymbolKind::External) return cell.first;
    }
    if (tag.marker.pivotable() && row.coefficientFor(tag.marker) < 0.0) return tag.marker;
    if (tag.other.pivotable() && row.coefficientFor(tag.other) < 0.0) return tag.other;
    return Symbol();
  }

  static bool allDummies(const Row& row) {
    for (const auto& cell : row.cells) {
      if (cell.first.kind != SymbolKind::Dummy) return false;
    }
    return true;
  }

  void substitute(Symbol symbol, const Row& row) {
    for (auto& [basic, basicRow] : rows) {
      basicRow.substitute(symbol, row);
      if (basic.kind != SymbolKind::External && basicRow.constant < 0.0) {
        infeasible.push_back(basic);
      }
    }
    objective.substitute(symbol, row);
    if (artificial) artificial->substitute(symbol, row);
  }

  void pivot(Symbol leaving, Symbol entering) {
    auto it = rows.find(leaving);
    Row row = std::move(it->second);
    rows.erase(it);
    row.solveFor(leaving, entering);
    substitute(entering, row);
    rows.emplace(entering, std::move(row));
  }

  static Symbol enteringSymbol(const Objective& target) {
    for (const auto& [symbol, weight] : target.cells) {
      if (symbol.kind != SymbolKind::Dummy && weight.sign() < 0) return symbol;
    }
    return Symbol();
  }

  // The ratio test: the restricted row that first hits zero as `entering` grows.
  Symbol leavingSymbol(Symbol entering) const {
    double best = std::numeric_limits<double>::max();
    Symbol found;
    for (const auto& [basic, row] : rows) {
      if (basic.kind == SymbolKind::External) continue;
      double coefficient = row.coefficientFor(entering);
      if (coefficient >= 0.0) continue;
      double ratio = -row.constant / coefficient;
      if (ratio < best) {
        best = ratio;
        found = basic;
      }
    }
    return found;
  }

  Status optimize(Objective& target) {
    for (std::size_t i = 0, limit = pivotLimit(); i < limit; ++i) {
      Symbol entering = enteringSymbol(target);
      if (!entering.valid()) return Status::Ok;
      Symbol leaving = leavingSymbol(entering);
      // Errors are bounded below by zero, so an unbounded objective means a
      // broken tableau.
      if (!leaving.valid()) return Status::InternalError;
      pivot(leaving, entering);
    }
    return Status::IterationLimit;
  }

  Symbol dualEnteringSymbol(const Row& row) const {
    Symbol found;
    Weight best;
    for (const auto& [symbol, coefficient] : row.cells) {
      if (coefficient <= 0.0 || symbol.kind == SymbolKind::Dummy) continue;
      Weight ratio;
      ratio.addScaled(objective.coefficientFor(symbol), 1.0 / coefficient);
      if (!found.valid() || ratio < best) {
        best = std::move(ratio);
        found = symbol;
      }
    }
    return found;
  }

  Status dualOptimize() {
    std::size_t pivots = 0;
    std::size_t limit = pivotLimit();
    while (!infeasible.empty()) {
      Symbol leaving = infeasible.back();
      infeasible.pop_back();
      auto it = rows.find(leaving);
      if (it == rows.end() || it->second.constant >= 0.0 || NearZero(it->second.constant)) continue;
      Symbol entering = dualEnteringSymbol(it->second);
      if (!entering.valid()) return Status::InternalError;
      pivot(leaving, entering);
      if (++pivots > limit) return Status::IterationLimit;
    }
    return Status::Ok;
  }

  // Phase one for a row with no usable subject: minimise an artificial
  // variable equal to the row; the constraint is satisfiable iff it reaches 0.
  Status addWithArtificialVariable(const Row& row) {
    Symbol art = makeSymbol(SymbolKind::Slack);
    rows.emplace(art, row);
    artificial.emplace();
    artificial->insert(row, Weight::At(kArtificialLevel, 1.0));
    Status status = optimize(*artificial);
    bool satisfied = artificial->constant.empty();
    artificial.reset();
    if (status != Status::Ok) return status;
    if (!satisfied) return Status::Unsatisfiable;

    auto it = rows.find(art);
    if (it != rows.end()) {
      Row artRow = std::move(it->second);
      rows.erase(it);
      if (!artRow.cells.empty()) {
        Symbol entering = anyPivotable(artRow);
        // Only dummies left: the constraint repeats required equalities, so
        // one of those markers can stand for it at zero.
        if (!entering.valid()) entering = artRow.cells.begin()->first;
        artRow.solveFor(art, entering);
        substitute(entering, artRow);
        rows.emplace(entering, std::move(artRow));
      }
    }
    for (auto& entry : rows) entry.second.remove(art);
    objective.cells.erase(art);
    return Status::Ok;
  }

  static Symbol anyPivotable(const Row& row) {
    for (const auto& cell : row.cells) {
      if (cell.first.pivotable()) return cell.first;
    }
    return Symbol();
  }

  void removeErrorEffect(Symbol error, Strength strength) {
    auto it = rows.find(error);
    if (it != rows.end()) {
      objective.insert(it->second, Weight::At(strength.priority, -1.0));
    } else {
      objective.insert(error, ErrorWeight(strength), -1.0);
    }
  }

  // Which row to pivot a non-basic marker into, so that dropping that row
  // removes the constraint and keeps the rest feasible.
  Symbol markerLeavingSymbol(Symbol marker) const {
    double bestNegative = std::numeric_limits<double>::max();
    double bestPositive = std::numeric_limits<double>::max();
    Symbol negative, positive, external;
    for (const auto& [basic, row] : rows) {
      double coefficient = row.coefficientFor(marker);
      if (coefficient == 0.0) continue;
      if (basic.kind == SymbolKind::External) {
        external = basic;
      } else if (coefficient < 0.0) {
        double ratio = -row.constant / coefficient;
        if (ratio < bestNegative) {
          bestNegative = ratio;
          negative = basic;
        }
      } else {
        double ratio = row.constant / coefficient;
        if (ratio < bestPositive) {
          bestPositive = ratio;
          positive = basic;
        }
      }
    }
    if (negative.valid()) return negative;
    if (positive.valid()) return positive;
    return external;
  }

  Status removeTagged(const Tag& tag, Strength strength) {
    if (tag.marker.kind == SymbolKind::Error) removeErrorEffect(tag.marker, strength);
    if (tag.other.kind == SymbolKind::Error) removeErrorEffect(tag.other, strength);
    auto it = rows.find(tag.marker);
    if (it != rows.end()) {
      rows.erase(it);
    } else {
      Symbol leaving = markerLeavingSymbol(tag.marker);
      if (!leaving.valid()) return Status::InternalError;
      auto leavingRow = rows.find(leaving);
      Row row = std::move(leavingRow->second);
      rows.erase(leavingRow);
      row.solveFor(leaving, tag.marker);
      substitute(tag.marker, row);
    }
    return optimize(objective);
  }

  void forgetVariables(const std::vector<std::uint64_t>& created) {
    for (std::uint64_t id : created) variables.erase(id);
  }

  Status add(const Constraint& constraint) {
    if (!constraint.isValid()) return Status::InvalidValue;
    if (constraints.count(constraint.id())) return Status::Duplicate;
    Strength strength = FromPriority(constraint.strength().priority);

    // Only required constraints can fail, and building their row touches
    // nothing but the variable table, so a snapshot is taken only when phase
    // one is needed.
    Tag tag;
    std::vector<std::uint64_t> created;
    Row row = createRow(constraint, strength, tag, created);
    Symbol subject = chooseSubject(row, tag);
    if (!subject.valid() && allDummies(row)) {
      if (!NearZero(row.constant)) {
        forgetVariables(created);
        return Status::Unsatisfiable;
      }
      subject = tag.marker;
    }

    if (subject.valid()) {
      row.solveFor(subject);
      substitute(subject, row);
      rows.emplace(subject, std::move(row));
      constraints.emplace(constraint.id(), ConstraintInfo{constraint, tag, strength});
      Status status = optimize(objective);
      if (status != Status::Ok) {
        constraints.erase(constraint.id());
        removeTagged(tag, strength);
      }
      return status;
    }

    std::map<Symbol, Row> savedRows = rows;
    Objective savedObjective = objective;
    Status status = addWithArtificialVariable(row);
    if (status == Status::Ok) status = optimize(objective);
    if (status != Status::Ok) {
      rows = std::move(savedRows);
      objective = std::move(savedObjective);
      infeasible.clear();
      forgetVariables(created);
      return status;
    }
    constraints.emplace(constraint.id(), ConstraintInfo{constraint, tag, strength});
    return Status::Ok;
  }

  Status remove(const Constraint& constraint) {
    auto it = constraints.find(constraint.id());
    if (constraint.isNull() || it == constraints.end()) return Status::UnknownConstraint;
    ConstraintInfo info = std::move(it->second);
    constraints.erase(it);
    return removeTagged(info.tag, info.strength);
  }

  Status addEdit(const Variable& variable, Strength strength) {
    if (edits.count(variable.id())) return Status::Duplicate;
    strength = FromPriority(strength.priority);
    if (strength.isRequired()) return Status::RequiredEditStrength;
    double current = variable.value();
    if (!std::isfinite(current)) current = 0.0;
    Constraint constraint(Expression(variable) - current, Relation::Equal, strength);
    Status status = add(constraint);
    if (status != Status::Ok) return status;
    edits.emplace(variable.id(),
                  EditInfo{constraint, constraints.at(constraint.id()).tag, current});
    return Status::Ok;
  }

  Status removeEdit(const Variable& variable) {
    auto it = edits.find(variable.id());
    if (it == edits.end()) return Status::UnknownEditVariable;
    Constraint constraint = it->second.constraint;
    edits.erase(it);
    return remove(constraint);
  }

  // Moving the edit's target by delta is the same as shifting its plus error
  // by delta (or its minus error by -delta), so only constants change and the
  // dual simplex restores feasibility from the current basis.
  Status suggest(const Variable& variable, double value) {
    if (!std::isfinite(value)) return Status::InvalidValue;
    auto it = edits.find(variable.id());
    if (it == edits.end()) return Status::UnknownEditVariable;
    EditInfo& info = it->second;
    double delta = value - info.constant;
    info.constant = value;

    auto plus = rows.find(info.tag.marker);
    auto minus = rows.find(info.tag.other);
    if (plus != rows.end()) {
      if (plus->second.add(-delta) < 0.0) infeasible.push_back(plus->first);
    } else if (minus != rows.end()) {
      if (minus->second.add(delta) < 0.0) infeasible.push_back(minus->first);
    } else {
      for (auto& [basic, row] : rows) {
        double coefficient = row.coefficientFor(info.tag.marker);
        if (coefficient == 0.0) continue;
        if (row.add(delta * coefficient) < 0.0 && basic.kind != SymbolKind::External) {
          infeasible.push_back(basic);
        }
      }
    }
    return dualOptimize();
  }

  void update() {
    for (auto& [id, info] : variables) {
      auto it = rows.find(info.symbol);
      double value = it == rows.end() ? 0.0 : it->second.constant;
      info.variable.setValue(value == 0.0 ? 0.0 : value);  // no -0 in frames
    }
  }
};

const char* StatusName(Status status) {
  switch (status) {
    case Status::Ok: return "Ok";
    case Status::Unsatisfiable: return "Unsatisfiable";
    case Status::Duplicate: return "Duplicate";
    case Status::UnknownConstraint: return "UnknownConstraint";
    case Status::UnknownEditVariable: return "UnknownEditVariable";
    case Status::RequiredEditStrength: return "RequiredEditStrength";
    case Status::InvalidValue: return "InvalidValue";
    case Status::IterationLimit: return "IterationLimit";
    case Status::InternalError: return "InternalError";
  }
  return "?";
}

Solver::Solver() : impl_(std::make_unique<Impl>()) {}
Solver::~Solver() = default;
Solver::Solver(Solver&&) noexcept = default;
Solver& Solver::operator=(Solver&&) noexcept = default;

// The callers are Objective-C++, where a C++ exception cannot be caught, so
// every entry point turns one (in practice bad_alloc) into a status.
template <typename F>
static Status Guarded(F&& body) noexcept {
  try {
    return body();
  } catch (...) {
    return Status::InternalError;
  }
}

Status Solver::addConstraint(const Constraint& constraint) noexcept {
  return Guarded([&] { return impl_->add(constraint); });
}

Status Solver::removeConstraint(const Constraint& constraint) noexcept {
  return Guarded([&] { return impl_->remove(constraint); });
}

bool Solver::hasConstraint(const Constraint& constraint) const noexcept {
  return !constraint.isNull() && impl_->constraints.count(constraint.id()) != 0;
}

Status Solver::addEditVariable(const Variable& variable, Strength strength) noexcept {
  return Guarded([&] { return impl_->addEdit(variable, strength); });
}

Status Solver::removeEditVariable(const Variable& variable) noexcept {
  return Guarded([&] { return impl_->removeEdit(variable); });
}

bool Solver::hasEditVariable(const Variable& variable) const noexcept {
  return impl_->edits.count(variable.id()) != 0;
}

Status Solver::suggestValue(const Variable& variable, double value) noexcept {
  return Guarded([&] { return impl_->suggest(variable, value); });
}

void Solver::updateVariables() noexcept { impl_->update(); }

void Solver::reset() noexcept { *impl_ = Impl(); }

}  // namespace talvo::layout
