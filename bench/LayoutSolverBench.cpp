// The Auto Layout solver on the shapes windows give it: a row of views
// chained edge to edge, built from nothing, and re-solved as the window's
// width is dragged.
#include <benchmark/benchmark.h>

#include <vector>

#include "platform/AppKit/layout/Solver.hpp"

using namespace talvo::layout;

namespace {

struct Row {
  Variable width{"window.width"};
  std::vector<Variable> left, right;
};

// n views: |-8-[v0]-8-[v1]...-8-|, equal widths, each at least 10 wide.
void BuildRow(Solver &solver, Row &row, int n) {
  solver.addConstraint(Constraint::Make(row.width, Relation::GreaterThanOrEqual, 100.0));
  for (int i = 0; i < n; i++) {
    row.left.emplace_back("left");
    row.right.emplace_back("right");
    Expression start = i == 0 ? Expression(8.0) : Expression(row.right[i - 1]) + 8.0;
    solver.addConstraint(Constraint::Make(row.left[i], Relation::Equal, start));
    solver.addConstraint(
        Constraint::Make(Expression(row.right[i]) - Expression(row.left[i]),
                         Relation::GreaterThanOrEqual, 10.0));
    if (i > 0) {
      solver.addConstraint(Constraint::Make(
          Expression(row.right[i]) - Expression(row.left[i]), Relation::Equal,
          Expression(row.right[i - 1]) - Expression(row.left[i - 1]), Strength{750}));
    }
  }
  solver.addConstraint(
      Constraint::Make(row.width, Relation::Equal, Expression(row.right[n - 1]) + 8.0));
}

void BM_BuildRow(benchmark::State &state) {
  int n = static_cast<int>(state.range(0));
  for (auto _ : state) {
    Solver solver;
    Row row;
    BuildRow(solver, row, n);
    solver.updateVariables();
    benchmark::DoNotOptimize(row.right.back().value());
  }
  state.SetComplexityN(n);
}
BENCHMARK(BM_BuildRow)->Arg(10)->Arg(25)->Arg(50)->Arg(100)->Unit(benchmark::kMicrosecond);

void BM_ResizeRow(benchmark::State &state) {
  int n = static_cast<int>(state.range(0));
  Solver solver;
  Row row;
  BuildRow(solver, row, n);
  solver.addEditVariable(row.width, Strength{999});
  double width = 2000;
  for (auto _ : state) {
    width = width > 3000 ? 2000 : width + 1;
    solver.suggestValue(row.width, width);
    solver.updateVariables();
    benchmark::DoNotOptimize(row.right.back().value());
  }
}
BENCHMARK(BM_ResizeRow)->Arg(10)->Arg(50)->Arg(100)->Unit(benchmark::kMicrosecond);

}  // namespace
