// The Auto Layout solver on the shapes windows give it: a row of views
// chained edge to edge, built from nothing and re-solved as the window's
// width is dragged; and a split view, built from nothing and re-solved as one
// divider is dragged. bench/compare-kiwi.py builds the same split view with
// kiwisolver and reads these figures (--benchmark_format=json).
#include <benchmark/benchmark.h>

#include <random>
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
BENCHMARK(BM_BuildRow)->Arg(10)->Arg(25)->Arg(50)->Arg(100)->Arg(200)->Unit(benchmark::kMicrosecond);

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

// --- Split view ----------------------------------------------------------------
//
// n views V0..Vn-1 side by side in a container 100 * n wide and 400 tall, a
// 1-point divider between neighbours (Vk.left == Vk-1.right + 1), V0 pinned
// to the leading edge and Vn-1 to the trailing edge, every view at least 0
// wide, top and bottom pinned to the container's (both axes are built), and
// each divider held where the user left it at priority 490:
// Vk.left == 100 * k. compare-kiwi.py builds exactly this system.
constexpr double kPitch = 100.0;
constexpr double kHeight = 400.0;
constexpr double kDivider = 1.0;

struct Split {
  Variable width{"container.width"}, height{"container.height"};
  std::vector<Variable> left, right, top, bottom;
  std::vector<Constraint> position;  // position[k] holds divider k (Vk+1.left)
};

void BuildSplit(Solver &solver, Split &split, int n) {
  auto required = [&](const Expression &lhs, Relation relation, const Expression &rhs) {
    solver.addConstraint(Constraint::Make(lhs, relation, rhs));
  };
  required(split.width, Relation::Equal, kPitch * n);
  required(split.height, Relation::Equal, kHeight);
  for (int k = 0; k < n; k++) {
    split.left.emplace_back("left");
    split.right.emplace_back("right");
    split.top.emplace_back("top");
    split.bottom.emplace_back("bottom");
    required(split.left[k], Relation::Equal,
             k == 0 ? Expression(0.0) : Expression(split.right[k - 1]) + kDivider);
    required(split.right[k], Relation::GreaterThanOrEqual, split.left[k]);
    required(split.top[k], Relation::Equal, 0.0);
    required(split.bottom[k], Relation::Equal, split.height);
    if (k > 0) {
      split.position.push_back(
          Constraint::Make(split.left[k], Relation::Equal, kPitch * k, Strength{490}));
      solver.addConstraint(split.position.back());
    }
  }
  required(split.right[n - 1], Relation::Equal, split.width);
}

void BM_BuildSplit(benchmark::State &state) {
  int n = static_cast<int>(state.range(0));
  for (auto _ : state) {
    Solver solver;
    Split split;
    BuildSplit(solver, split, n);
    solver.updateVariables();
    benchmark::DoNotOptimize(split.right[n / 2].value());
  }
  state.SetComplexityN(n);
}
BENCHMARK(BM_BuildSplit)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);

// The middle divider dragged back and forth over 50 points, one step per
// iteration: its position constant changed in place, then the frames read.
void BM_DragSplit(benchmark::State &state) {
  int n = static_cast<int>(state.range(0));
  Solver solver;
  Split split;
  BuildSplit(solver, split, n);
  int divider = n / 2;  // Vdivider.left
  const Constraint &dragged = split.position[divider - 1];
  int step = 0;
  for (auto _ : state) {
    step = (step + 1) % 100;
    double offset = step < 50 ? step : 100 - step;
    solver.updateConstant(dragged, -(kPitch * divider + offset));
    solver.updateVariables();
    benchmark::DoNotOptimize(split.left[divider].value());
  }
}
BENCHMARK(BM_DragSplit)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);

// --- Conflict storm ------------------------------------------------------------
//
// 12 views' edges (48 variables) under random constraints between them:
// equalities, mostly required and over four edges, and inequalities at
// random priorities, with random constants, so many required ones conflict
// and are refused. BM_StormBuild adds 1000 of them; BM_StormChurn then
// removes 10 installed ones and adds them back per iteration, and
// BM_StormReaddRefused removes one and re-adds every refused constraint, as
// the layout pass does after a removal.
struct Storm {
  std::vector<Variable> edges;
  std::vector<Constraint> constraints;
  std::mt19937 random{1234};

  Storm() {
    for (int i = 0; i < 48; i++) edges.emplace_back("edge");
    std::uniform_int_distribution<int> edge(0, 47), kind(0, 2), level(0, 3), constant(-300, 300);
    static const float kPriorities[] = {1000, 750, 490, 250};
    for (int i = 0; i < 1000; i++) {
      Expression lhs = Expression(edges[edge(random)]) - Expression(edges[edge(random)]);
      int relation = kind(random);
      Relation r = relation == 0 ? Relation::Equal
                                 : relation == 1 ? Relation::LessThanOrEqual
                                                 : Relation::GreaterThanOrEqual;
      Expression rhs = double(constant(random));
      float priority = kPriorities[level(random)];
      if (r == Relation::Equal) {
        priority = kind(random) == 0 ? priority : 1000;
        rhs = Expression(edges[edge(random)]) - Expression(edges[edge(random)]) + double(constant(random));
      }
      constraints.push_back(Constraint::Make(lhs, r, rhs, Strength{priority}));
    }
  }

  int build(Solver &solver) const {
    int held = 0;
    for (const Constraint &c : constraints) held += solver.addConstraint(c) == Status::Ok;
    return held;
  }
};

void BM_StormBuild(benchmark::State &state) {
  Storm storm;
  int held = 0;
  for (auto _ : state) {
    Solver solver;
    held = storm.build(solver);
    solver.updateVariables();
  }
  state.counters["held"] = held;
}
BENCHMARK(BM_StormBuild)->Unit(benchmark::kMillisecond);

void BM_StormChurn(benchmark::State &state) {
  Storm storm;
  Solver solver;
  storm.build(solver);
  std::mt19937 random(99);
  std::uniform_int_distribution<std::size_t> pick(0, storm.constraints.size() - 1);
  for (auto _ : state) {
    std::size_t picked[10];
    for (std::size_t &k : picked) k = pick(random);
    for (std::size_t k : picked) solver.removeConstraint(storm.constraints[k]);
    for (std::size_t k : picked) solver.addConstraint(storm.constraints[k]);
    solver.updateVariables();
  }
}
BENCHMARK(BM_StormChurn)->Unit(benchmark::kMicrosecond);

void BM_StormReaddRefused(benchmark::State &state) {
  Storm storm;
  Solver solver;
  storm.build(solver);
  std::mt19937 random(7);
  std::uniform_int_distribution<std::size_t> pick(0, storm.constraints.size() - 1);
  for (auto _ : state) {
    const Constraint &removed = storm.constraints[pick(random)];
    solver.removeConstraint(removed);
    for (const Constraint &c : storm.constraints) {
      if (!solver.hasConstraint(c)) solver.addConstraint(c);
    }
    solver.updateVariables();
  }
}
BENCHMARK(BM_StormReaddRefused)->Unit(benchmark::kMillisecond);

}  // namespace
