#include "platform/AppKit/layout/Solver.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

namespace talvo::layout {

namespace {

constexpr double kEpsilon = 1.0e-8;

bool NearZero(double value) { return std::fabs(value) < kEpsilon; }

// --- Symbols ---------------------------------------------------------------

enum class SymbolKind { Invalid, External, Slack, Error, Dummy };

// Ids grow with creation; every tie in a pivot choice goes to the lowest id,
// so the same sequence of calls always takes the same pivots, whatever order
// the hash tables happen to hold things in.
struct Symbol {
  std::uint64_t id = 0;
  SymbolKind kind = SymbolKind::Invalid;

  bool valid() const { return kind != SymbolKind::Invalid; }
  bool pivotable() const { return kind == SymbolKind::Slack || kind == SymbolKind::Error; }
  bool restricted() const { return kind != SymbolKind::External; }
  friend bool operator<(Symbol a, Symbol b) { return a.id < b.id; }
};

// --- Rows ------------------------------------------------------------------

// A tableau row: basic = constant + sum(coefficient * parametric symbol).
// Before it has a basic symbol, it reads 0 = constant + sum(...).
// Cells are a vector sorted by symbol id: substitution is a linear merge.
// The tableau (Solver::Impl) keeps a column index beside the rows, so the
// operations that add or drop cells of a row in the tableau live there; the
// ones here are for rows not in it yet.
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

  double coefficientFor(Symbol symbol) const {
    auto it = find(symbol);
    return it == cells.end() ? 0.0 : it->second;
  }

  void insert(Symbol symbol, double coefficient) {
    auto it = std::lower_bound(cells.begin(), cells.end(), symbol, Before);
    if (it != cells.end() && it->first.id == symbol.id) {
      it->second += coefficient;
      if (NearZero(it->second)) cells.erase(it);
    } else if (!NearZero(coefficient)) {
      cells.insert(it, {symbol, coefficient});
    }
  }

  // this += other * coefficient, by a linear merge.
  void add(const Row& other, double coefficient) {
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

  void reverseSign() {
    constant = -constant;
    for (auto& cell : cells) cell.second = -cell.second;
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

  // Sign of a * factorA - b * factorB, without building it.
  static int CompareScaled(const Weight& a, double factorA, const Weight& b, double factorB) {
    auto i = a.parts_.begin();
    auto j = b.parts_.begin();
    while (i != a.parts_.end() || j != b.parts_.end()) {
      double difference;
      if (j == b.parts_.end() || (i != a.parts_.end() && i->first > j->first)) {
        difference = (i++)->second * factorA;
      } else if (i == a.parts_.end() || j->first > i->first) {
        difference = -(j++)->second * factorB;
      } else {
        difference = i->second * factorA - j->second * factorB;
        ++i;
        ++j;
      }
      if (!NearZero(difference)) return difference > 0 ? 1 : -1;
    }
    return 0;
  }

 private:
  std::vector<std::pair<float, double>> parts_;
};

// The objective: value = constant + sum(weight * parametric symbol). Beside
// the weights it lists the symbols whose weight went negative, the only
// candidates to enter, so finding none does not walk every error.
struct Objective {
  struct Cell {
    Symbol symbol;
    Weight weight;
    bool listed = false;
  };
  std::unordered_map<std::uint64_t, Cell> cells;
  std::vector<std::uint64_t> negatives;
  Weight constant;

  void insert(Symbol symbol, const Weight& weight, double factor) {
    auto [it, fresh] = cells.try_emplace(symbol.id);
    Cell& cell = it->second;
    if (fresh) cell.symbol = symbol;
    cell.weight.addScaled(weight, factor);
    if (cell.weight.empty()) {
      cells.erase(it);
    } else if (!cell.listed && cell.weight.sign() < 0 && symbol.kind != SymbolKind::Dummy) {
      cell.listed = true;
      negatives.push_back(symbol.id);
    }
  }

  void insert(const Row& row, const Weight& weight) {
    constant.addScaled(weight, row.constant);
    for (const auto& [symbol, value] : row.cells) insert(symbol, weight, value);
  }

  const Weight* coefficientFor(Symbol symbol) const {
    auto it = cells.find(symbol.id);
    return it == cells.end() ? nullptr : &it->second.weight;
  }

  void erase(Symbol symbol) { cells.erase(symbol.id); }

  void substitute(Symbol symbol, const Row& row) {
    auto it = cells.find(symbol.id);
    if (it == cells.end()) return;
    Weight weight = std::move(it->second.weight);
    cells.erase(it);
    insert(row, weight);
  }

  // The entering symbol: the most negative weight (Dantzig's rule), or with
  // `bland` the lowest id, which cannot cycle. Invalid when optimal.
  Symbol entering(bool bland) {
    Symbol best;
    const Weight* bestWeight = nullptr;
    for (std::size_t i = 0; i < negatives.size();) {
      auto it = cells.find(negatives[i]);
      if (it == cells.end() || it->second.weight.sign() >= 0) {
        if (it != cells.end()) it->second.listed = false;
        negatives[i] = negatives.back();
        negatives.pop_back();
        continue;
      }
      const Cell& cell = it->second;
      ++i;
      if (!best.valid()) {
        best = cell.symbol;
        bestWeight = &cell.weight;
        continue;
      }
      int order = bland ? 0 : Weight::CompareScaled(cell.weight, 1.0, *bestWeight, 1.0);
      if (order < 0 || (order == 0 && cell.symbol < best)) {
        best = cell.symbol;
        bestWeight = &cell.weight;
      }
    }
    return best;
  }
};

// The artificial objective gets a level above every priority.
constexpr float kArtificialLevel = std::numeric_limits<float>::max();

Weight ErrorWeight(Strength strength) { return Weight::At(strength.priority, 1.0); }

// Consecutive degenerate pivots under Dantzig's rule before switching to
// Bland's rule until the objective moves again.
constexpr int kDegenerateRun = 20;

}  // namespace

// --- The solver --------------------------------------------------------------

struct Solver::Impl {
  // A constraint's marker identifies its row; `other` is its second error
  // (equalities) or error (inequalities) when it is not required.
  // `markerCoefficient` is the marker's coefficient in `expression + ... = 0`.
  struct Tag {
    Symbol marker;
    Symbol other;
    double markerCoefficient = 1.0;
  };
  struct ConstraintInfo {
    Constraint constraint;
    Tag tag;
    Strength strength;
    double constant;  // the expression's constant now (see updateConstant)
  };
  struct EditInfo {
    Constraint constraint;
    double constant;
  };

  using RowId = std::uint32_t;
  static constexpr std::int64_t kNoRow = -1;

  // The tableau: rows by a stable id (a pivot changes a row's basic symbol,
  // not its id), and per symbol the row it is basic in and the rows it is a
  // parametric cell of, so substitution and ratio tests touch only the rows
  // that hold the symbol.
  struct TableRow {
    Symbol basic;
    Row row;
    bool live = false;
  };
  struct SymbolInfo {
    std::int64_t row = kNoRow;
    std::vector<RowId> column;
  };
  // Variables in creation order, each with its symbol's entry in the
  // tableau (entries of external symbols are never dropped while the
  // variable is known; node addresses survive rehashing), so writing the
  // solution back is a walk down a vector with no lookups.
  struct VariableInfo {
    Variable variable;
    Symbol symbol;
    SymbolInfo* info;
  };
  struct Tableau {
    std::vector<TableRow> rows;
    std::vector<RowId> freeRows;
    std::unordered_map<std::uint64_t, SymbolInfo> symbols;
    std::size_t liveRows = 0;
  };

  std::unordered_map<std::uint64_t, ConstraintInfo> constraints;
  std::unordered_map<std::uint64_t, std::size_t> variables;  // id -> variableList
  std::vector<VariableInfo> variableList;
  std::unordered_map<std::uint64_t, EditInfo> edits;
  Tableau tableau;
  std::vector<Symbol> infeasible;
  Objective objective;
  std::optional<Objective> artificial;
  std::uint64_t nextSymbolId = 1;
  // Set when a substitution leaves a basic dummy (a required equality that
  // only repeats others) away from zero: an update broke a required equality.
  bool brokenEquality = false;

  Symbol makeSymbol(SymbolKind kind) { return Symbol{nextSymbolId++, kind}; }

  // A guard against numerical trouble only, so a bad layout reports, never
  // hangs.
  std::size_t pivotLimit() const { return 10000 + 50 * tableau.liveRows; }

  // --- Tableau primitives ----------------------------------------------------

  SymbolInfo* infoFor(Symbol symbol) {
    auto it = tableau.symbols.find(symbol.id);
    return it == tableau.symbols.end() ? nullptr : &it->second;
  }
  const SymbolInfo* infoFor(Symbol symbol) const {
    auto it = tableau.symbols.find(symbol.id);
    return it == tableau.symbols.end() ? nullptr : &it->second;
  }

  // The row `symbol` is basic in, or null.
  TableRow* basicRow(Symbol symbol) {
    SymbolInfo* info = infoFor(symbol);
    return info && info->row != kNoRow ? &tableau.rows[static_cast<RowId>(info->row)] : nullptr;
  }

  void link(Symbol symbol, RowId id) { tableau.symbols[symbol.id].column.push_back(id); }

  void unlink(Symbol symbol, RowId id) {
    SymbolInfo* info = infoFor(symbol);
    if (!info) return;
    auto& column = info->column;
    auto it = std::find(column.begin(), column.end(), id);
    if (it != column.end()) {
      *it = column.back();
      column.pop_back();
    }
  }

  // Forgets a symbol nothing refers to any more.
  void dropIfUnused(Symbol symbol) {
    auto it = tableau.symbols.find(symbol.id);
    if (it != tableau.symbols.end() && it->second.row == kNoRow && it->second.column.empty()) {
      tableau.symbols.erase(it);
    }
  }

  RowId addRow(Symbol basic, Row row) {
    RowId id;
    if (!tableau.freeRows.empty()) {
      id = tableau.freeRows.back();
      tableau.freeRows.pop_back();
    } else {
      id = static_cast<RowId>(tableau.rows.size());
      tableau.rows.emplace_back();
    }
    TableRow& slot = tableau.rows[id];
    slot.basic = basic;
    slot.row = std::move(row);
    slot.live = true;
    for (const auto& cell : slot.row.cells) link(cell.first, id);
    tableau.symbols[basic.id].row = id;
    ++tableau.liveRows;
    return id;
  }

  Row takeRow(RowId id) {
    TableRow& slot = tableau.rows[id];
    for (const auto& cell : slot.row.cells) unlink(cell.first, id);
    if (SymbolInfo* info = infoFor(slot.basic)) info->row = kNoRow;
    Row row = std::move(slot.row);
    slot.row = Row();
    slot.live = false;
    tableau.freeRows.push_back(id);
    --tableau.liveRows;
    return row;
  }

  // row(id) += other * coefficient, keeping the column index.
  void addScaledRow(RowId id, const Row& other, double coefficient) {
    Row& row = tableau.rows[id].row;
    row.constant += other.constant * coefficient;
    std::vector<Row::Cell> merged;
    merged.reserve(row.cells.size() + other.cells.size());
    auto mine = row.cells.begin();
    auto theirs = other.cells.begin();
    while (mine != row.cells.end() || theirs != other.cells.end()) {
      if (theirs == other.cells.end() ||
          (mine != row.cells.end() && mine->first < theirs->first)) {
        merged.push_back(*mine++);
        continue;
      }
      double value = theirs->second * coefficient;
      bool had = mine != row.cells.end() && mine->first.id == theirs->first.id;
      if (had) value += (mine++)->second;
      if (!NearZero(value)) {
        merged.push_back({theirs->first, value});
        if (!had) link(theirs->first, id);
      } else if (had) {
        unlink(theirs->first, id);
      }
      ++theirs;
    }
    row.cells = std::move(merged);
  }

  // Replaces `symbol` by `row` wherever it is a parametric cell.
  void substitute(Symbol symbol, const Row& row) {
    SymbolInfo* info = infoFor(symbol);
    if (info && !info->column.empty()) {
      std::vector<RowId> column = std::move(info->column);
      info->column.clear();
      for (RowId id : column) {
        TableRow& target = tableau.rows[id];
        auto it = target.row.find(symbol);
        if (it == target.row.cells.end()) continue;
        double coefficient = it->second;
        target.row.cells.erase(it);
        addScaledRow(id, row, coefficient);
        noteRow(target);
      }
    }
    objective.substitute(symbol, row);
    if (artificial) artificial->substitute(symbol, row);
  }

  void noteRow(const TableRow& target) {
    if (target.basic.kind == SymbolKind::Dummy) {
      if (!NearZero(target.row.constant)) brokenEquality = true;
    } else if (target.basic.restricted() && target.row.constant < 0.0) {
      infeasible.push_back(target.basic);
    }
  }

  // Makes `entering` basic in the row of `leaving`.
  void pivot(RowId id, Symbol entering) {
    TableRow& slot = tableau.rows[id];
    Symbol leaving = slot.basic;
    Row& row = slot.row;
    // leaving = c + a * entering + rest  =>  entering = (leaving - c - rest) / a
    auto it = row.find(entering);
    double factor = -1.0 / it->second;
    row.cells.erase(it);
    unlink(entering, id);
    row.constant *= factor;
    for (auto& cell : row.cells) cell.second *= factor;
    auto at = std::lower_bound(row.cells.begin(), row.cells.end(), leaving, Row::Before);
    row.cells.insert(at, {leaving, -factor});
    link(leaving, id);
    slot.basic = entering;
    tableau.symbols[leaving.id].row = kNoRow;
    tableau.symbols[entering.id].row = id;
    // Substitution touches other rows and the columns, never the row table's
    // size, so `row` stays put.
    substitute(entering, row);
  }

  // --- Building rows ---------------------------------------------------------

  Symbol symbolFor(const Variable& variable, std::vector<std::uint64_t>& created) {
    auto it = variables.find(variable.id());
    if (it != variables.end()) return variableList[it->second].symbol;
    Symbol symbol = makeSymbol(SymbolKind::External);
    variables.emplace(variable.id(), variableList.size());
    variableList.push_back(VariableInfo{variable, symbol, &tableau.symbols[symbol.id]});
    created.push_back(variable.id());
    return symbol;
  }

  Row createRow(const Constraint& constraint, double constant, Strength strength, Tag& tag,
                std::vector<std::uint64_t>& created) {
    const Expression& expression = constraint.expression();
    Row row;
    row.constant = constant;
    // Terms first as plain cells, then basic ones replaced by their rows.
    for (const Term& term : expression.terms()) {
      if (NearZero(term.coefficient)) continue;
      row.insert(symbolFor(term.variable, created), term.coefficient);
    }
    std::vector<Row::Cell> terms = std::move(row.cells);
    row.cells.clear();
    for (const auto& [symbol, coefficient] : terms) {
      if (TableRow* basic = basicRow(symbol)) {
        row.add(basic->row, coefficient);
      } else {
        row.insert(symbol, coefficient);
      }
    }

    bool required = strength.isRequired();
    if (constraint.relation() == Relation::Equal) {
      if (required) {
        tag.marker = makeSymbol(SymbolKind::Dummy);
        tag.markerCoefficient = 1.0;
        row.insert(tag.marker, 1.0);
      } else {
        // expression = plus - minus, both errors minimised at the priority.
        tag.marker = makeSymbol(SymbolKind::Error);
        tag.other = makeSymbol(SymbolKind::Error);
        tag.markerCoefficient = -1.0;
        row.insert(tag.marker, -1.0);
        row.insert(tag.other, 1.0);
        objective.insert(tag.marker, ErrorWeight(strength), 1.0);
        objective.insert(tag.other, ErrorWeight(strength), 1.0);
      }
    } else {
      // expression <= 0 becomes expression + slack = 0 with slack >= 0.
      double sign = constraint.relation() == Relation::LessThanOrEqual ? 1.0 : -1.0;
      tag.marker = makeSymbol(SymbolKind::Slack);
      tag.markerCoefficient = sign;
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

  std::size_t columnSize(Symbol symbol) const {
    const SymbolInfo* info = infoFor(symbol);
    return info ? info->column.size() : 0;
  }

  // The row's subject, the symbol it is solved for:
  //  - an external variable (none in the row is basic: they were substituted),
  //    the one in fewest rows so the substitution touches least;
  //  - for a row the current solution already satisfies (constant 0), a
  //    slack or error the objective does not weigh: solving for it moves no
  //    value and leaves the objective as it was, so still optimal, with no
  //    pivot at all. This is what keeps `w[i] == w[i-1]` between views
  //    already placed from starting a run of degenerate pivots;
  //  - else the constraint's own slack or error with a negative coefficient;
  //  - else, with constant 0, any slack or error (the objective then needs
  //    optimising);
  //  - else a slack or error with a negative coefficient whose value the row
  //    fixes without driving another row negative (the ratio test).
  // Invalid when none fits: phase one with an artificial variable decides.
  Symbol chooseSubject(Row& row, const Tag& tag) const {
    Symbol best;
    std::size_t bestUses = 0;
    for (const auto& cell : row.cells) {
      if (cell.first.kind != SymbolKind::External) continue;
      std::size_t uses = columnSize(cell.first);
      if (!best.valid() || uses < bestUses) {
        best = cell.first;
        bestUses = uses;
      }
    }
    if (best.valid()) return best;

    bool satisfied = NearZero(row.constant);
    if (satisfied) {
      for (const auto& cell : row.cells) {
        if (!cell.first.pivotable() || objective.coefficientFor(cell.first)) continue;
        std::size_t uses = columnSize(cell.first);
        if (!best.valid() || uses < bestUses) {
          best = cell.first;
          bestUses = uses;
        }
      }
      if (best.valid()) {
        if (row.coefficientFor(best) > 0.0) row.reverseSign();
        return best;
      }
    }

    if (tag.marker.pivotable() && row.coefficientFor(tag.marker) < 0.0) return tag.marker;
    if (tag.other.pivotable() && row.coefficientFor(tag.other) < 0.0) return tag.other;

    if (satisfied) {
      for (const auto& cell : row.cells) {
        if (cell.first.pivotable()) {
          if (cell.second > 0.0) row.reverseSign();
          return cell.first;
        }
      }
      return Symbol();
    }

    Symbol found;
    for (const auto& [symbol, coefficient] : row.cells) {
      if (!symbol.pivotable() || coefficient >= 0.0) continue;
      if (found.valid() && !(symbol.kind == SymbolKind::Slack && found.kind == SymbolKind::Error)) {
        continue;
      }
      double value = row.constant / -coefficient;
      if (keepsRowsFeasible(symbol, value)) {
        found = symbol;
        if (symbol.kind == SymbolKind::Slack) break;
      }
    }
    return found;
  }

  // Whether `symbol` rising to `value` leaves every restricted row >= 0.
  bool keepsRowsFeasible(Symbol symbol, double value) const {
    const SymbolInfo* info = infoFor(symbol);
    if (!info) return true;
    for (RowId id : info->column) {
      const TableRow& target = tableau.rows[id];
      if (!target.basic.restricted()) continue;
      double coefficient = target.row.coefficientFor(symbol);
      if (coefficient < 0.0 && target.row.constant + coefficient * value < -kEpsilon) {
        return false;
      }
    }
    return true;
  }

  static bool allDummies(const Row& row) {
    for (const auto& cell : row.cells) {
      if (cell.first.kind != SymbolKind::Dummy) return false;
    }
    return true;
  }

  // --- Simplex -----------------------------------------------------------------

  // The ratio test: the restricted row that first hits zero as `entering`
  // grows; ties to the lowest basic id. Sets `ratio` to its step.
  std::int64_t leavingRow(Symbol entering, double& ratio) const {
    double best = std::numeric_limits<double>::max();
    std::int64_t found = kNoRow;
    Symbol foundBasic;
    const SymbolInfo* info = infoFor(entering);
    if (!info) return kNoRow;
    for (RowId id : info->column) {
      const TableRow& target = tableau.rows[id];
      if (!target.basic.restricted()) continue;
      double coefficient = target.row.coefficientFor(entering);
      if (coefficient >= 0.0) continue;
      double step = -target.row.constant / coefficient;
      if (step < best || (step == best && target.basic < foundBasic)) {
        best = step;
        found = id;
        foundBasic = target.basic;
      }
    }
    ratio = best;
    return found;
  }

  // Primal simplex. Dantzig's rule for the entering symbol; after a run of
  // pivots that leave the objective where it was, Bland's rule until it
  // moves, so degenerate vertices cannot cycle.
  Status optimize(Objective& target) {
    int degenerate = 0;
    for (std::size_t i = 0, limit = pivotLimit(); i < limit; ++i) {
      Symbol entering = target.entering(degenerate >= kDegenerateRun);
      if (!entering.valid()) return Status::Ok;
      double ratio = 0.0;
      std::int64_t leaving = leavingRow(entering, ratio);
      // Errors are bounded below by zero, so an unbounded objective means a
      // broken tableau.
      if (leaving == kNoRow) return Status::InternalError;
      degenerate = NearZero(ratio) ? degenerate + 1 : 0;
      pivot(static_cast<RowId>(leaving), entering);
    }
    return Status::IterationLimit;
  }

  Symbol dualEnteringSymbol(const Row& row) const {
    Symbol found;
    const Weight* bestWeight = nullptr;
    double bestCoefficient = 1.0;
    static const Weight kZero;
    for (const auto& [symbol, coefficient] : row.cells) {
      if (coefficient <= 0.0 || symbol.kind == SymbolKind::Dummy) continue;
      const Weight* weight = objective.coefficientFor(symbol);
      if (!weight) weight = &kZero;
      // weight / coefficient < best / bestCoefficient
      if (!found.valid() ||
          Weight::CompareScaled(*weight, 1.0 / coefficient, *bestWeight, 1.0 / bestCoefficient) < 0) {
        found = symbol;
        bestWeight = weight;
        bestCoefficient = coefficient;
      }
    }
    return found;
  }

  // Dual simplex: restores feasibility after constants moved, keeping the
  // objective optimal. Unsatisfiable when a row can never become >= 0, which
  // only required constraints can cause.
  Status dualOptimize() {
    std::size_t pivots = 0;
    std::size_t limit = pivotLimit();
    while (!infeasible.empty()) {
      Symbol leaving = infeasible.back();
      infeasible.pop_back();
      TableRow* target = basicRow(leaving);
      if (!target || target->row.constant >= 0.0 || NearZero(target->row.constant)) continue;
      Symbol entering = dualEnteringSymbol(target->row);
      if (!entering.valid()) {
        infeasible.clear();
        return Status::Unsatisfiable;
      }
      pivot(static_cast<RowId>(infoFor(leaving)->row), entering);
      if (++pivots > limit) return Status::IterationLimit;
    }
    return Status::Ok;
  }

  static Symbol anyPivotable(const Row& row) {
    for (const auto& cell : row.cells) {
      if (cell.first.pivotable()) return cell.first;
    }
    return Symbol();
  }

  // Phase one for a row with no usable subject: minimise an artificial
  // variable equal to the row; the constraint is satisfiable iff it reaches 0.
  Status addWithArtificialVariable(const Row& row) {
    Symbol art = makeSymbol(SymbolKind::Slack);
    artificial.emplace();
    artificial->insert(row, Weight::At(kArtificialLevel, 1.0));
    addRow(art, row);
    Status status = optimize(*artificial);
    bool satisfied = artificial->constant.empty();
    artificial.reset();
    if (status != Status::Ok) return status;
    if (!satisfied) return Status::Unsatisfiable;

    if (TableRow* slot = basicRow(art)) {
      RowId id = static_cast<RowId>(infoFor(art)->row);
      if (slot->row.cells.empty()) {
        takeRow(id);
      } else {
        Symbol entering = anyPivotable(slot->row);
        // Only dummies left: the constraint repeats required equalities, so
        // one of those markers can stand for it at zero.
        if (!entering.valid()) entering = slot->row.cells.front().first;
        pivot(id, entering);
      }
    }
    // art is parametric now, at zero: drop it from every row.
    if (SymbolInfo* info = infoFor(art)) {
      std::vector<RowId> column = std::move(info->column);
      for (RowId id : column) {
        Row& target = tableau.rows[id].row;
        auto it = target.find(art);
        if (it != target.cells.end()) target.cells.erase(it);
      }
    }
    tableau.symbols.erase(art.id);
    objective.erase(art);
    return Status::Ok;
  }

  void removeErrorEffect(Symbol error, Strength strength) {
    if (TableRow* slot = basicRow(error)) {
      objective.insert(slot->row, Weight::At(strength.priority, -1.0));
    } else {
      objective.insert(error, ErrorWeight(strength), -1.0);
    }
  }

  // Which row to pivot a non-basic marker into, so that dropping that row
  // removes the constraint and keeps the rest feasible.
  std::int64_t markerLeavingRow(Symbol marker) const {
    double bestNegative = std::numeric_limits<double>::max();
    double bestPositive = std::numeric_limits<double>::max();
    std::int64_t negative = kNoRow, positive = kNoRow, external = kNoRow;
    Symbol negativeBasic, positiveBasic, externalBasic;
    const SymbolInfo* info = infoFor(marker);
    if (!info) return kNoRow;
    for (RowId id : info->column) {
      const TableRow& target = tableau.rows[id];
      double coefficient = target.row.coefficientFor(marker);
      if (coefficient == 0.0) continue;
      if (!target.basic.restricted()) {
        if (external == kNoRow || target.basic < externalBasic) {
          external = id;
          externalBasic = target.basic;
        }
      } else if (coefficient < 0.0) {
        double ratio = -target.row.constant / coefficient;
        if (ratio < bestNegative || (ratio == bestNegative && target.basic < negativeBasic)) {
          bestNegative = ratio;
          negative = id;
          negativeBasic = target.basic;
        }
      } else {
        double ratio = target.row.constant / coefficient;
        if (ratio < bestPositive || (ratio == bestPositive && target.basic < positiveBasic)) {
          bestPositive = ratio;
          positive = id;
          positiveBasic = target.basic;
        }
      }
    }
    if (negative != kNoRow) return negative;
    if (positive != kNoRow) return positive;
    return external;
  }

  Status removeTagged(const Tag& tag, Strength strength) {
    if (tag.marker.kind == SymbolKind::Error) removeErrorEffect(tag.marker, strength);
    if (tag.other.kind == SymbolKind::Error) removeErrorEffect(tag.other, strength);
    SymbolInfo* info = infoFor(tag.marker);
    if (info && info->row != kNoRow) {
      takeRow(static_cast<RowId>(info->row));
    } else {
      std::int64_t leaving = markerLeavingRow(tag.marker);
      if (leaving == kNoRow) return Status::InternalError;
      pivot(static_cast<RowId>(leaving), tag.marker);
      takeRow(static_cast<RowId>(leaving));
    }
    objective.erase(tag.marker);
    dropIfUnused(tag.marker);
    if (tag.other.valid()) dropIfUnused(tag.other);
    return optimize(objective);
  }

  void forgetVariables(const std::vector<std::uint64_t>& created) {
    // The variables made by the failed call are the last ones.
    for (std::uint64_t id : created) {
      variables.erase(id);
      tableau.symbols.erase(variableList.back().symbol.id);
      variableList.pop_back();
    }
  }

  // After the tableau was put back from a snapshot.
  void relinkVariables() {
    for (VariableInfo& info : variableList) info.info = &tableau.symbols[info.symbol.id];
  }

  // --- Constraints -------------------------------------------------------------

  Status add(const Constraint& constraint) {
    if (!constraint.isValid()) return Status::InvalidValue;
    if (constraints.count(constraint.id())) return Status::Duplicate;
    Strength strength = FromPriority(constraint.strength().priority);

    // Only required constraints can fail. Building their row touches nothing
    // but the variable table, and a subject chosen by chooseSubject keeps the
    // tableau feasible, so a snapshot is taken only when phase one is needed.
    Tag tag;
    std::vector<std::uint64_t> created;
    double constant = constraint.expression().constant();
    Row row = createRow(constraint, constant, strength, tag, created);
    Symbol subject = chooseSubject(row, tag);
    if (!subject.valid() && allDummies(row)) {
      if (!NearZero(row.constant)) {
        forgetVariables(created);
        return Status::Unsatisfiable;
      }
      subject = tag.marker;
    }

    if (subject.valid()) {
      // 0 = c + a * subject + rest  =>  subject = -(c + rest) / a
      auto it = row.find(subject);
      double factor = -1.0 / it->second;
      row.cells.erase(it);
      row.constant *= factor;
      for (auto& cell : row.cells) cell.second *= factor;
      substitute(subject, row);
      addRow(subject, std::move(row));
      constraints.emplace(constraint.id(), ConstraintInfo{constraint, tag, strength, constant});
      Status status = optimize(objective);
      infeasible.clear();  // the primal steps keep every row feasible
      if (status != Status::Ok) {
        constraints.erase(constraint.id());
        removeTagged(tag, strength);
      }
      return status;
    }

    Tableau savedTableau = tableau;
    Objective savedObjective = objective;
    Status status = addWithArtificialVariable(row);
    if (status == Status::Ok) status = optimize(objective);
    infeasible.clear();
    if (status != Status::Ok) {
      tableau = std::move(savedTableau);
      objective = std::move(savedObjective);
      relinkVariables();
      infeasible.clear();
      forgetVariables(created);
      return status;
    }
    constraints.emplace(constraint.id(), ConstraintInfo{constraint, tag, strength, constant});
    return Status::Ok;
  }

  Status remove(const Constraint& constraint) {
    auto it = constraints.find(constraint.id());
    if (constraint.isNull() || it == constraints.end()) return Status::UnknownConstraint;
    ConstraintInfo info = std::move(it->second);
    constraints.erase(it);
    return removeTagged(info.tag, info.strength);
  }

  // Moving the constant of `expression + a * marker + ... = 0` by delta is
  // the same as moving the marker by -delta / a (or its partner error, whose
  // coefficient is -a, by delta / a): only constants change, so the dual
  // simplex restores feasibility from the current basis.
  void shiftConstant(const Tag& tag, double delta) {
    double markerShift = -delta / tag.markerCoefficient;
    if (TableRow* slot = basicRow(tag.marker)) {
      slot->row.constant += markerShift;
      noteRow(*slot);
    } else if (TableRow* partner = tag.other.valid() ? basicRow(tag.other) : nullptr) {
      partner->row.constant -= markerShift;
      noteRow(*partner);
    } else if (SymbolInfo* info = infoFor(tag.marker)) {
      // marker_old = marker_new - markerShift in every row that holds it.
      for (RowId id : info->column) {
        TableRow& target = tableau.rows[id];
        double coefficient = target.row.coefficientFor(tag.marker);
        target.row.constant -= coefficient * markerShift;
        noteRow(target);
      }
    }
  }

  Status changeConstant(const Tag& tag, double& current, double value) {
    double delta = value - current;
    if (delta == 0.0) return Status::Ok;
    brokenEquality = false;
    shiftConstant(tag, delta);
    Status status = dualOptimize();
    if (status == Status::Ok && !brokenEquality) {
      current = value;
      return Status::Ok;
    }
    if (status != Status::Unsatisfiable && status != Status::Ok) return status;
    // Back to the old constant: the tableau is still optimal for the
    // objective, so shifting back and restoring feasibility returns to the
    // old system's optimum.
    brokenEquality = false;
    infeasible.clear();
    shiftConstant(tag, -delta);
    for (const TableRow& target : tableau.rows) {
      if (target.live && target.basic.restricted() && target.basic.kind != SymbolKind::Dummy &&
          target.row.constant < 0.0 && !NearZero(target.row.constant)) {
        infeasible.push_back(target.basic);
      }
    }
    std::sort(infeasible.begin(), infeasible.end(),
              [](Symbol a, Symbol b) { return b < a; });
    Status restored = dualOptimize();
    brokenEquality = false;
    return restored == Status::Ok ? Status::Unsatisfiable : Status::InternalError;
  }

  Status updateConstant(const Constraint& constraint, double value) {
    if (!std::isfinite(value)) return Status::InvalidValue;
    auto it = constraints.find(constraint.id());
    if (constraint.isNull() || it == constraints.end()) return Status::UnknownConstraint;
    ConstraintInfo& info = it->second;
    return changeConstant(info.tag, info.constant, value);
  }

  // --- Edit variables ------------------------------------------------------------

  Status addEdit(const Variable& variable, Strength strength) {
    if (edits.count(variable.id())) return Status::Duplicate;
    strength = FromPriority(strength.priority);
    if (strength.isRequired()) return Status::RequiredEditStrength;
    double current = variable.value();
    if (!std::isfinite(current)) current = 0.0;
    Constraint constraint(Expression(variable) - current, Relation::Equal, strength);
    Status status = add(constraint);
    if (status != Status::Ok) return status;
    edits.emplace(variable.id(), EditInfo{constraint, current});
    return Status::Ok;
  }

  Status removeEdit(const Variable& variable) {
    auto it = edits.find(variable.id());
    if (it == edits.end()) return Status::UnknownEditVariable;
    Constraint constraint = it->second.constraint;
    edits.erase(it);
    return remove(constraint);
  }

  // The edit constraint is `variable - value = plus - minus`: suggesting a
  // value is changing its constant to -value.
  Status suggest(const Variable& variable, double value) {
    if (!std::isfinite(value)) return Status::InvalidValue;
    auto it = edits.find(variable.id());
    if (it == edits.end()) return Status::UnknownEditVariable;
    ConstraintInfo& info = constraints.at(it->second.constraint.id());
    Status status = changeConstant(info.tag, info.constant, -value);
    if (status == Status::Ok) it->second.constant = value;
    return status;
  }

  void update(std::vector<Variable>* changed) {
    for (VariableInfo& info : variableList) {
      std::int64_t row = info.info->row;
      double value = row != kNoRow ? tableau.rows[static_cast<RowId>(row)].row.constant : 0.0;
      if (value == 0.0) value = 0.0;  // no -0 in frames
      if (changed != nullptr && value != info.variable.value()) {
        changed->push_back(info.variable);
      }
      info.variable.setValue(value);
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

Status Solver::updateConstant(const Constraint& constraint, double newConstant) noexcept {
  return Guarded([&] { return impl_->updateConstant(constraint, newConstant); });
}

bool Solver::constantOf(const Constraint& constraint, double& constant) const noexcept {
  if (constraint.isNull()) return false;
  auto it = impl_->constraints.find(constraint.id());
  if (it == impl_->constraints.end()) return false;
  constant = it->second.constant;
  return true;
}

void Solver::updateVariables() noexcept { impl_->update(nullptr); }

void Solver::updateVariables(std::vector<Variable>* changed) noexcept {
  try {
    impl_->update(changed);
  } catch (...) {
    // Only the list can fail to grow; the values are written regardless.
    impl_->update(nullptr);
  }
}

void Solver::reset() noexcept { *impl_ = Impl(); }

}  // namespace talvo::layout
