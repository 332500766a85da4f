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

// Finite and no larger than `limit` in magnitude (NaN fails too).
bool InRange(double value, double limit) { return std::fabs(value) <= limit; }

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
// higher priority dominates any amount of error at lower ones. A level with
// nothing in it has no component. Most weights have one or two components,
// kept inline so that the objective's cells allocate nothing; more spill to
// the heap.
class Weight {
 public:
  using Part = std::pair<float, double>;

  static Weight At(float level, double value) {
    Weight weight;
    weight.add(level, value);
    return weight;
  }

  Weight() = default;
  Weight(const Weight& other) { *this = other; }
  Weight(Weight&& other) noexcept { *this = std::move(other); }
  Weight& operator=(const Weight& other) {
    if (this == &other) return *this;
    size_ = other.size_;
    if (size_ > kInline) {
      spill_ = other.spill_;
    } else {
      spill_.clear();
      std::copy(other.inline_, other.inline_ + size_, inline_);
    }
    return *this;
  }
  Weight& operator=(Weight&& other) noexcept {
    if (this == &other) return *this;
    size_ = other.size_;
    if (size_ > kInline) {
      spill_ = std::move(other.spill_);
    } else {
      spill_.clear();
      std::copy(other.inline_, other.inline_ + size_, inline_);
    }
    other.clear();
    return *this;
  }

  void add(float level, double value) {
    Part* parts = data();
    std::uint32_t i = 0;
    while (i < size_ && parts[i].first > level) ++i;
    if (i < size_ && parts[i].first == level) {
      parts[i].second += value;
      if (NearZero(parts[i].second)) eraseAt(i);
    } else if (!NearZero(value)) {
      insertAt(i, {level, value});
    }
  }

  void addScaled(const Weight& other, double factor) {
    if (other.size_ == 1) {
      add(other.inline_[0].first, other.inline_[0].second * factor);
      return;
    }
    if (other.size_ == 0) return;
    // Both lists run highest level first: one merge, where a scan per part
    // grew with the square of the levels (hundreds of distinct priorities in
    // a conflict storm).
    std::vector<Part> merged;
    merged.reserve(size_ + other.size_);
    const Part *i = data(), *iEnd = i + size_;
    const Part *j = other.data(), *jEnd = j + other.size_;
    while (i != iEnd || j != jEnd) {
      Part part;
      if (j == jEnd || (i != iEnd && i->first > j->first)) {
        part = *i++;
      } else if (i == iEnd || j->first > i->first) {
        part = {j->first, j->second * factor};
        ++j;
      } else {
        part = {i->first, i->second + j->second * factor};
        ++i;
        ++j;
      }
      if (!NearZero(part.second)) merged.push_back(part);
    }
    size_ = static_cast<std::uint32_t>(merged.size());
    if (size_ > kInline) {
      spill_ = std::move(merged);
    } else {
      std::copy(merged.begin(), merged.end(), inline_);
      spill_.clear();
    }
  }

  void clear() {
    size_ = 0;
    spill_.clear();
  }
  bool empty() const { return size_ == 0; }
  // Components are never near zero, so the first one decides the sign.
  int sign() const { return size_ == 0 ? 0 : (data()[0].second > 0 ? 1 : -1); }

  // Sign of a * factorA - b * factorB, without building it.
  static int CompareScaled(const Weight& a, double factorA, const Weight& b, double factorB) {
    const Part *i = a.data(), *iEnd = i + a.size_;
    const Part *j = b.data(), *jEnd = j + b.size_;
    while (i != iEnd || j != jEnd) {
      double difference;
      if (j == jEnd || (i != iEnd && i->first > j->first)) {
        difference = (i++)->second * factorA;
      } else if (i == iEnd || j->first > i->first) {
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
  static constexpr std::uint32_t kInline = 2;

  Part* data() { return size_ > kInline ? spill_.data() : inline_; }
  const Part* data() const { return size_ > kInline ? spill_.data() : inline_; }

  void insertAt(std::uint32_t i, Part part) {
    if (size_ < kInline) {
      std::copy_backward(inline_ + i, inline_ + size_, inline_ + size_ + 1);
      inline_[i] = part;
    } else {
      if (size_ == kInline) spill_.assign(inline_, inline_ + kInline);
      spill_.insert(spill_.begin() + i, part);
    }
    ++size_;
  }

  void eraseAt(std::uint32_t i) {
    if (size_ > kInline) {
      spill_.erase(spill_.begin() + i);
      if (--size_ == kInline) {
        std::copy(spill_.begin(), spill_.end(), inline_);
        spill_.clear();
      }
    } else {
      std::copy(inline_ + i + 1, inline_ + size_, inline_ + i);
      --size_;
    }
  }

  std::uint32_t size_ = 0;
  Part inline_[kInline];
  std::vector<Part> spill_;  // every part, once there are more than kInline
};

// The objective: value = constant + sum(weight * parametric symbol), its
// cells indexed by symbol id. Beside the weights it lists the symbols whose
// weight went negative, the only candidates to enter, so finding none does
// not walk every error.
struct Objective {
  struct Cell {
    Weight weight;
    bool listed = false;
  };
  std::vector<Cell> cells;
  std::vector<Symbol> negatives;
  Weight constant;

  Cell& cellFor(Symbol symbol) {
    if (symbol.id >= cells.size()) cells.resize(std::max<std::size_t>(symbol.id + 1, cells.size() * 2));
    return cells[symbol.id];
  }

  void insert(Symbol symbol, const Weight& weight, double factor) {
    Cell& cell = cellFor(symbol);
    cell.weight.addScaled(weight, factor);
    if (!cell.listed && cell.weight.sign() < 0 && symbol.kind != SymbolKind::Dummy) {
      cell.listed = true;
      negatives.push_back(symbol);
    }
  }

  void insert(const Row& row, const Weight& weight) {
    constant.addScaled(weight, row.constant);
    for (const auto& [symbol, value] : row.cells) insert(symbol, weight, value);
  }

  const Weight* coefficientFor(Symbol symbol) const {
    if (symbol.id >= cells.size() || cells[symbol.id].weight.empty()) return nullptr;
    return &cells[symbol.id].weight;
  }

  void erase(Symbol symbol) {
    if (symbol.id < cells.size()) cells[symbol.id].weight.clear();
  }

  // A weight left over from rounding (see optimize): dropped.
  void forgetResidue(Symbol symbol) { erase(symbol); }

  void substitute(Symbol symbol, const Row& row) {
    if (symbol.id >= cells.size() || cells[symbol.id].weight.empty()) return;
    Weight weight = std::move(cells[symbol.id].weight);
    insert(row, weight);
  }

  // The entering symbol: the most negative weight (Dantzig's rule), or with
  // `bland` the lowest id, which cannot cycle. Invalid when optimal.
  Symbol entering(bool bland) {
    Symbol best;
    const Weight* bestWeight = nullptr;
    for (std::size_t i = 0; i < negatives.size();) {
      Cell& cell = cells[negatives[i].id];
      if (cell.weight.sign() >= 0) {
        cell.listed = false;
        negatives[i] = negatives.back();
        negatives.pop_back();
        continue;
      }
      Symbol symbol = negatives[i];
      ++i;
      if (!best.valid()) {
        best = symbol;
        bestWeight = &cell.weight;
        continue;
      }
      int order = bland ? 0 : Weight::CompareScaled(cell.weight, 1.0, *bestWeight, 1.0);
      if (order < 0 || (order == 0 && symbol < best)) {
        best = symbol;
        bestWeight = &cell.weight;
      }
    }
    return best;
  }
};

// Phase one's objective: the artificial variable alone, one level above
// every priority, so its weights are plain numbers and it is a row.
struct ArtificialObjective {
  Row row;

  void substitute(Symbol symbol, const Row& other) {
    auto it = row.find(symbol);
    if (it == row.cells.end()) return;
    double coefficient = it->second;
    row.cells.erase(it);
    row.add(other, coefficient);
  }

  Symbol entering(bool bland) const {
    Symbol best;
    double bestValue = 0.0;
    for (const auto& [symbol, value] : row.cells) {
      if (symbol.kind == SymbolKind::Dummy || value >= 0.0 || NearZero(value)) continue;
      if (!best.valid() || (!bland && value < bestValue)) {
        best = symbol;
        bestValue = value;
      }
    }
    return best;
  }

  bool satisfied() const { return NearZero(row.constant); }

  void forgetResidue(Symbol symbol) {
    auto it = row.find(symbol);
    if (it != row.cells.end()) row.cells.erase(it);
  }
};

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
  static constexpr std::int32_t kNoRow = -1;

  // The tableau: rows by a stable id (a pivot changes a row's basic symbol,
  // not its id), and per symbol, indexed by its id, the row it is basic in
  // and the rows it is a parametric cell of, so substitution and ratio tests
  // touch only the rows that hold the symbol.
  //
  // A column may keep stale entries (rows that no longer hold the symbol, or
  // the same row twice): dropping a cell only counts it down, and the column
  // is swept when stale entries outnumber live ones, so taking a long row
  // out costs its length, not its length times its columns'. Whoever walks a
  // column checks the row still holds the symbol.
  struct TableRow {
    Symbol basic;
    Row row;
    bool live = false;
  };
  struct SymbolInfo {
    std::int32_t row = kNoRow;
    std::int32_t variable = -1;  // index in variableList, for external symbols
    std::uint32_t uses = 0;      // rows that hold it as a parametric cell
    std::vector<RowId> column;
  };
  // Variables in creation order. `written` is the value updateVariables last
  // wrote; `dirty` marks the ones whose solved value may have moved since.
  struct VariableInfo {
    Variable variable;
    Symbol symbol;
    double written;
    bool dirty;
  };
  struct Tableau {
    std::vector<TableRow> rows;
    std::vector<RowId> freeRows;
    std::vector<SymbolInfo> symbols;  // by symbol id
    std::size_t liveRows = 0;
  };

  std::unordered_map<std::uint64_t, ConstraintInfo> constraints;
  std::unordered_map<std::uint64_t, std::size_t> variables;  // id -> variableList
  std::vector<VariableInfo> variableList;
  std::vector<std::size_t> dirtyVariables;
  std::unordered_map<std::uint64_t, EditInfo> edits;
  Tableau tableau;
  std::vector<Symbol> infeasible;
  Objective objective;
  std::optional<ArtificialObjective> artificial;
  // Pivots taken by phase one, so a refused constraint can take them back.
  std::vector<std::pair<RowId, Symbol>> phaseOnePivots;
  bool journaling = false;
  std::uint64_t nextSymbolId = 1;
  // Set when a substitution leaves a basic dummy (a required equality that
  // only repeats others) away from zero: an update broke a required equality.
  bool brokenEquality = false;
  // Scratch space for row merges, so they allocate only while rows grow.
  std::vector<Row::Cell> merged;

  Symbol makeSymbol(SymbolKind kind) {
    Symbol symbol{nextSymbolId++, kind};
    if (tableau.symbols.size() <= symbol.id) {
      tableau.symbols.resize(std::max<std::size_t>(symbol.id + 1, tableau.symbols.size() * 2));
    }
    return symbol;
  }

  // A guard against numerical trouble only, so a bad layout reports, never
  // hangs.
  std::size_t pivotLimit() const { return 10000 + 50 * tableau.liveRows; }

  // --- Tableau primitives ----------------------------------------------------

  SymbolInfo& infoFor(Symbol symbol) { return tableau.symbols[symbol.id]; }
  const SymbolInfo& infoFor(Symbol symbol) const { return tableau.symbols[symbol.id]; }

  // The row `symbol` is basic in, or null.
  TableRow* basicRow(Symbol symbol) {
    std::int32_t row = infoFor(symbol).row;
    return row != kNoRow ? &tableau.rows[static_cast<RowId>(row)] : nullptr;
  }

  // An external symbol's value may have moved: updateVariables looks at it.
  void touch(Symbol symbol) {
    if (symbol.kind != SymbolKind::External) return;
    std::int32_t index = infoFor(symbol).variable;
    if (index < 0) return;
    VariableInfo& info = variableList[static_cast<std::size_t>(index)];
    if (!info.dirty) {
      info.dirty = true;
      dirtyVariables.push_back(static_cast<std::size_t>(index));
    }
  }

  void link(Symbol symbol, RowId id) {
    SymbolInfo& info = infoFor(symbol);
    ++info.uses;
    info.column.push_back(id);
  }

  void unlink(Symbol symbol, RowId id) {
    (void)id;
    SymbolInfo& info = infoFor(symbol);
    if (info.uses > 0) --info.uses;
    if (info.column.size() > 2 * static_cast<std::size_t>(info.uses) + 16) sweepColumn(symbol);
  }

  // Drops the stale entries of a column and its repeats, in one pass: a
  // stamp per row marks the rows already kept.
  void sweepColumn(Symbol symbol) {
    SymbolInfo& info = infoFor(symbol);
    auto& column = info.column;
    if (rowStamps.size() < tableau.rows.size()) rowStamps.resize(tableau.rows.size(), 0);
    if (++stamp == 0) {
      std::fill(rowStamps.begin(), rowStamps.end(), 0);
      stamp = 1;
    }
    std::size_t kept = 0;
    for (RowId id : column) {
      if (rowStamps[id] == stamp) continue;
      const TableRow& target = tableau.rows[id];
      if (!target.live || target.row.find(symbol) == target.row.cells.end()) continue;
      rowStamps[id] = stamp;
      column[kept++] = id;
    }
    column.resize(kept);
    info.uses = static_cast<std::uint32_t>(kept);
  }
  std::vector<std::uint32_t> rowStamps;
  std::uint32_t stamp = 0;

  // Forgets a symbol nothing refers to any more.
  void dropIfUnused(Symbol symbol) {
    SymbolInfo& info = infoFor(symbol);
    if (info.row == kNoRow && info.uses == 0) {
      info.column.clear();
      info.column.shrink_to_fit();
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
    infoFor(basic).row = static_cast<std::int32_t>(id);
    touch(basic);
    ++tableau.liveRows;
    return id;
  }

  Row takeRow(RowId id) {
    TableRow& slot = tableau.rows[id];
    Row row = std::move(slot.row);
    slot.row = Row();
    slot.live = false;
    for (const auto& cell : row.cells) unlink(cell.first, id);
    infoFor(slot.basic).row = kNoRow;
    touch(slot.basic);
    tableau.freeRows.push_back(id);
    --tableau.liveRows;
    return row;
  }

  // row(id) += other * coefficient, keeping the column index.
  void addScaledRow(RowId id, const Row& other, double coefficient) {
    Row& row = tableau.rows[id].row;
    row.constant += other.constant * coefficient;
    merged.clear();
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
    row.cells.swap(merged);
  }

  // Replaces `symbol` by `row` wherever it is a parametric cell.
  void substitute(Symbol symbol, const Row& row) {
    SymbolInfo& info = infoFor(symbol);
    if (!info.column.empty()) {
      std::vector<RowId> column = std::move(info.column);
      info.column.clear();
      info.uses = 0;
      for (RowId id : column) {
        TableRow& target = tableau.rows[id];
        if (!target.live) continue;
        auto it = target.row.find(symbol);
        if (it == target.row.cells.end()) continue;
        double coefficient = it->second;
        target.row.cells.erase(it);
        addScaledRow(id, row, coefficient);
        touch(target.basic);
        noteRow(target);
      }
      // Keep the column's storage for the next time the symbol is used.
      column.clear();
      if (infoFor(symbol).column.empty()) infoFor(symbol).column = std::move(column);
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
    if (journaling) phaseOnePivots.emplace_back(id, leaving);
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
    infoFor(leaving).row = kNoRow;
    infoFor(entering).row = static_cast<std::int32_t>(id);
    touch(leaving);
    touch(entering);
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
    infoFor(symbol).variable = static_cast<std::int32_t>(variableList.size());
    // Not written yet: the first update writes it whatever its value.
    variableList.push_back(
        VariableInfo{variable, symbol, std::numeric_limits<double>::quiet_NaN(), false});
    created.push_back(variable.id());
    touch(symbol);
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

  std::size_t columnSize(Symbol symbol) const { return infoFor(symbol).uses; }

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
    for (RowId id : infoFor(symbol).column) {
      const TableRow& target = tableau.rows[id];
      if (!target.live || !target.basic.restricted()) continue;
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
  std::int32_t leavingRow(Symbol entering, double& ratio) const {
    double best = std::numeric_limits<double>::max();
    std::int32_t found = kNoRow;
    Symbol foundBasic;
    for (RowId id : infoFor(entering).column) {
      const TableRow& target = tableau.rows[id];
      if (!target.live || !target.basic.restricted()) continue;
      double coefficient = target.row.coefficientFor(entering);
      if (coefficient >= 0.0) continue;
      double step = -target.row.constant / coefficient;
      if (step < best || (step == best && target.basic < foundBasic)) {
        best = step;
        found = static_cast<std::int32_t>(id);
        foundBasic = target.basic;
      }
    }
    ratio = best;
    return found;
  }

  // Primal simplex. Dantzig's rule for the entering symbol; after a run of
  // pivots that leave the objective where it was, Bland's rule until it
  // moves, so degenerate vertices cannot cycle.
  template <typename Goal>
  Status optimize(Goal& target) {
    int degenerate = 0;
    for (std::size_t i = 0, limit = pivotLimit(); i < limit; ++i) {
      Symbol entering = target.entering(degenerate >= kDegenerateRun);
      if (!entering.valid()) return Status::Ok;
      double ratio = 0.0;
      std::int32_t leaving = leavingRow(entering, ratio);
      // Errors are bounded below by zero, so the objective cannot fall
      // forever: a negative weight with no row to limit it is rounding left
      // over from rows with large coefficients cancelling (a few 1e-7 at
      // most), and is dropped. A second such symbol in a row is still
      // treated the same way; the pivot cap guards the loop.
      if (leaving == kNoRow) {
        target.forgetResidue(entering);
        continue;
      }
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
      pivot(static_cast<RowId>(infoFor(leaving).row), entering);
      if (++pivots > limit) return Status::IterationLimit;
    }
    return Status::Ok;
  }

  static bool anyNegativePivotable(const Row& row) {
    for (const auto& cell : row.cells) {
      if (cell.first.kind != SymbolKind::Dummy && cell.second < 0.0) return true;
    }
    return false;
  }

  static Symbol anyPivotable(const Row& row) {
    for (const auto& cell : row.cells) {
      if (cell.first.pivotable()) return cell.first;
    }
    return Symbol();
  }

  // Phase one for a row with no usable subject: minimise an artificial
  // variable equal to the row; the constraint is satisfiable iff it reaches
  // 0. When it cannot, the pivots phase one took are taken back, newest
  // first, and the row dropped: the tableau is the one before the call, at
  // the cost of those pivots rather than of a copy of the tableau.
  Status addWithArtificialVariable(Row row) {
    Symbol art = makeSymbol(SymbolKind::Slack);
    artificial.emplace();
    artificial->row = row;
    addRow(art, std::move(row));
    phaseOnePivots.clear();
    journaling = true;
    Status status = optimize(*artificial);
    journaling = false;
    bool satisfied = artificial->satisfied();
    artificial.reset();
    if (status != Status::Ok || !satisfied) {
      for (auto it = phaseOnePivots.rbegin(); it != phaseOnePivots.rend(); ++it) {
        pivot(it->first, it->second);
      }
      phaseOnePivots.clear();
      if (TableRow* slot = basicRow(art)) {
        takeRow(static_cast<RowId>(infoFor(art).row));
      } else {
        eraseEverywhere(art);
      }
      infeasible.clear();
      return status != Status::Ok ? status : Status::Unsatisfiable;
    }
    phaseOnePivots.clear();

    if (TableRow* slot = basicRow(art)) {
      RowId id = static_cast<RowId>(infoFor(art).row);
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
    eraseEverywhere(art);
    objective.erase(art);
    return Status::Ok;
  }

  // Drops a parametric symbol at zero from every row that holds it.
  void eraseEverywhere(Symbol symbol) {
    SymbolInfo& info = infoFor(symbol);
    std::vector<RowId> column = std::move(info.column);
    info.column.clear();
    info.uses = 0;
    for (RowId id : column) {
      TableRow& target = tableau.rows[id];
      if (!target.live) continue;
      auto it = target.row.find(symbol);
      if (it != target.row.cells.end()) target.row.cells.erase(it);
    }
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
  std::int32_t markerLeavingRow(Symbol marker) const {
    double bestNegative = std::numeric_limits<double>::max();
    double bestPositive = std::numeric_limits<double>::max();
    std::int32_t negative = kNoRow, positive = kNoRow, external = kNoRow;
    Symbol negativeBasic, positiveBasic, externalBasic;
    for (RowId rowId : infoFor(marker).column) {
      const TableRow& target = tableau.rows[rowId];
      if (!target.live) continue;
      std::int32_t id = static_cast<std::int32_t>(rowId);
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
    std::int32_t basic = infoFor(tag.marker).row;
    if (basic != kNoRow) {
      takeRow(static_cast<RowId>(basic));
    } else {
      // A marker in no row at all is one whose cells cancelled out: the
      // constraint no longer shapes the tableau, and nothing is left to take.
      std::int32_t leaving = markerLeavingRow(tag.marker);
      if (leaving != kNoRow) {
        pivot(static_cast<RowId>(leaving), tag.marker);
        takeRow(static_cast<RowId>(leaving));
      }
    }
    objective.erase(tag.marker);
    dropIfUnused(tag.marker);
    if (tag.other.valid()) dropIfUnused(tag.other);
    return optimize(objective);
  }

  void forgetVariables(const std::vector<std::uint64_t>& created) {
    if (created.empty()) return;
    // The variables made by the failed call are the last ones.
    for (std::uint64_t id : created) {
      variables.erase(id);
      Symbol symbol = variableList.back().symbol;
      eraseEverywhere(symbol);
      infoFor(symbol) = SymbolInfo();
      variableList.pop_back();
    }
    std::size_t count = variableList.size();
    dirtyVariables.erase(std::remove_if(dirtyVariables.begin(), dirtyVariables.end(),
                                        [count](std::size_t index) { return index >= count; }),
                         dirtyVariables.end());
  }

  // --- Constraints -------------------------------------------------------------

  // Whether every number of `expression` is in the range Solver.hpp
  // promises, a variable's repeated terms summed as the row will sum them.
  bool inRange(const Expression& expression) {
    if (!InRange(expression.constant(), kMaxConstant)) return false;
    const auto& terms = expression.terms();
    scratchTerms.clear();
    for (const Term& term : terms) {
      if (!InRange(term.coefficient, kMaxCoefficient)) return false;
      scratchTerms.emplace_back(term.variable.id(), term.coefficient);
    }
    if (scratchTerms.size() < 2) return true;
    std::sort(scratchTerms.begin(), scratchTerms.end());
    for (std::size_t i = 0; i < scratchTerms.size();) {
      double sum = 0.0;
      std::size_t j = i;
      for (; j < scratchTerms.size() && scratchTerms[j].first == scratchTerms[i].first; ++j) {
        sum += scratchTerms[j].second;
      }
      if (!InRange(sum, kMaxCoefficient)) return false;
      i = j;
    }
    return true;
  }
  std::vector<std::pair<std::uint64_t, double>> scratchTerms;

  Status add(const Constraint& constraint) {
    if (!constraint.isValid() || !inRange(constraint.expression())) return Status::InvalidValue;
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

    // 0 = c + sum(a * s) with c > 0 and no restricted s that can pull it
    // down (dummies are pinned at zero): no pivot can satisfy it, so it is
    // refused in one pass over the row, the usual fate of a conflicting
    // required constraint.
    if (!NearZero(row.constant) && !anyNegativePivotable(row)) {
      forgetVariables(created);
      return Status::Unsatisfiable;
    }
    // Phase one puts the tableau back itself when it refuses the row.
    Status status = addWithArtificialVariable(std::move(row));
    if (status != Status::Ok) {
      forgetVariables(created);
      return status;
    }
    constraints.emplace(constraint.id(), ConstraintInfo{constraint, tag, strength, constant});
    status = optimize(objective);
    infeasible.clear();
    if (status != Status::Ok) {
      constraints.erase(constraint.id());
      removeTagged(tag, strength);
    }
    return status;
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
      touch(slot->basic);
      noteRow(*slot);
    } else if (TableRow* partner = tag.other.valid() ? basicRow(tag.other) : nullptr) {
      partner->row.constant -= markerShift;
      touch(partner->basic);
      noteRow(*partner);
    } else {
      // marker_old = marker_new - markerShift in every row that holds it;
      // each row once, so the column is swept of repeats first.
      sweepColumn(tag.marker);
      for (RowId id : infoFor(tag.marker).column) {
        TableRow& target = tableau.rows[id];
        double coefficient = target.row.coefficientFor(tag.marker);
        target.row.constant -= coefficient * markerShift;
        touch(target.basic);
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
    if (!InRange(value, kMaxConstant)) return Status::InvalidValue;
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
    if (!InRange(current, kMaxConstant)) current = 0.0;
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
    if (!InRange(value, kMaxConstant)) return Status::InvalidValue;
    auto it = edits.find(variable.id());
    if (it == edits.end()) return Status::UnknownEditVariable;
    ConstraintInfo& info = constraints.at(it->second.constraint.id());
    Status status = changeConstant(info.tag, info.constant, -value);
    if (status == Status::Ok) it->second.constant = value;
    return status;
  }

  // Writes the values that moved since the last call: only the variables
  // whose rows changed are looked at.
  void update(std::vector<Variable>* changed) {
    for (std::size_t index : dirtyVariables) {
      VariableInfo& info = variableList[index];
      info.dirty = false;
      std::int32_t row = infoFor(info.symbol).row;
      double value = row != kNoRow ? tableau.rows[static_cast<RowId>(row)].row.constant : 0.0;
      if (value == 0.0) value = 0.0;  // no -0 in frames
      if (value == info.written) continue;
      info.written = value;
      info.variable.setValue(value);
      if (changed) changed->push_back(info.variable);
    }
    dirtyVariables.clear();
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
    // Only appending to `changed` can throw (bad_alloc); the values are
    // written all the same on the next call.
  }
}

void Solver::reset() noexcept { *impl_ = Impl(); }

}  // namespace talvo::layout
