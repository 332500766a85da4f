// updateConstant, checked against a fresh solver built with the new
// constants; and the subject choices addConstraint makes, checked the same
// way on chains of views.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "platform/AppKit/layout/Solver.hpp"

namespace talvo::layout {
namespace {

// A small split view: n views in a container, dividers of width 1, each
// view's width between a required minimum and a preferred maximum, each
// divider held where it was put. Every constant of the system is a
// parameter. Each preference gets a priority of its own (positions 490 - k,
// maximum widths 300 - k): with shared ones, conflicting dividers have a
// whole segment of optimal layouts, and two solvers may rightly settle on
// different ones.
struct SplitParams {
  double containerWidth = 600;
  std::vector<double> position;  // divider k: V(k+1).left == position[k]
  std::vector<double> minWidth;  // V(k).right - V(k).left >= minWidth[k]
  std::vector<double> maxWidth;  // V(k).right - V(k).left <= maxWidth[k] at 300
};

struct Split {
  Solver solver;
  Variable width{"width"};
  std::vector<Variable> left, right;
  Constraint container;
  std::vector<Constraint> position, minWidth, maxWidth;

  explicit Split(const SplitParams& p) {
    int n = static_cast<int>(p.minWidth.size());
    container = Constraint::Make(width, Relation::Equal, p.containerWidth);
    EXPECT_EQ(solver.addConstraint(container), Status::Ok);
    for (int k = 0; k < n; ++k) {
      left.emplace_back("left");
      right.emplace_back("right");
      Expression start = k == 0 ? Expression(0.0) : right[k - 1] + 1.0;
      EXPECT_EQ(solver.addConstraint(Constraint::Make(left[k], Relation::Equal, start)), Status::Ok);
      Expression span = right[k] - left[k];
      minWidth.push_back(Constraint::Make(span, Relation::GreaterThanOrEqual, p.minWidth[k]));
      maxWidth.push_back(
          Constraint::Make(span, Relation::LessThanOrEqual, p.maxWidth[k], Strength{300.0f - k}));
      EXPECT_EQ(solver.addConstraint(minWidth.back()), Status::Ok);
      EXPECT_EQ(solver.addConstraint(maxWidth.back()), Status::Ok);
      if (k > 0) {
        position.push_back(
            Constraint::Make(left[k], Relation::Equal, p.position[k - 1], Strength{490.0f - k}));
        EXPECT_EQ(solver.addConstraint(position.back()), Status::Ok);
      }
    }
    EXPECT_EQ(solver.addConstraint(Constraint::Make(right.back(), Relation::Equal, width)),
              Status::Ok);
  }

  std::vector<double> values() {
    solver.updateVariables();
    std::vector<double> out{width.value()};
    for (std::size_t k = 0; k < left.size(); ++k) {
      out.push_back(left[k].value());
      out.push_back(right[k].value());
    }
    return out;
  }
};

void ExpectSameLayout(const std::vector<double>& got, const std::vector<double>& want,
                      int step) {
  ASSERT_EQ(got.size(), want.size());
  for (std::size_t i = 0; i < got.size(); ++i) {
    EXPECT_NEAR(got[i], want[i], 1e-7) << "value " << i << " after update " << step;
  }
}

// A fixed pseudo-random walk, so failures reproduce.
struct Walk {
  std::uint32_t state = 12345;
  int next(int bound) {
    state = state * 1664525u + 1013904223u;
    return static_cast<int>((state >> 8) % static_cast<std::uint32_t>(bound));
  }
};

SplitParams SixViews() {
  SplitParams p;
  p.position = {100, 200, 300, 400, 500};
  p.minWidth = {20, 20, 20, 20, 20, 20};
  p.maxWidth = {300, 300, 300, 300, 300, 300};
  return p;
}

TEST(LayoutSolverUpdateConstant, ManyUpdates_MatchAFreshSolver) {
  // Non-required equalities (positions), required inequalities (minimum
  // widths), non-required inequalities (maximum widths) and the required
  // container width, changed in place over and over.
  SplitParams p = SixViews();
  Split live(p);
  Walk walk;
  for (int step = 0; step < 400; ++step) {
    int which = walk.next(4);
    Status status = Status::Ok;
    if (which == 0) {
      int k = walk.next(5);
      p.position[k] = walk.next(700) - 50;
      status = live.solver.updateConstant(live.position[k], -p.position[k]);
    } else if (which == 1) {
      int k = walk.next(6);
      p.minWidth[k] = walk.next(60);
      status = live.solver.updateConstant(live.minWidth[k], -p.minWidth[k]);
    } else if (which == 2) {
      int k = walk.next(6);
      p.maxWidth[k] = 40 + walk.next(300);
      status = live.solver.updateConstant(live.maxWidth[k], -p.maxWidth[k]);
    } else {
      p.containerWidth = 400 + walk.next(800);
      status = live.solver.updateConstant(live.container, -p.containerWidth);
    }
    ASSERT_EQ(status, Status::Ok) << "update " << step;  // minimums stay below 1/6 of 400
    Split fresh(p);
    ExpectSameLayout(live.values(), fresh.values(), step);
  }
}

TEST(LayoutSolverUpdateConstant, DraggingOneDivider_MatchesAFreshSolver) {
  SplitParams p = SixViews();
  Split live(p);
  for (int step = 0; step < 120; ++step) {
    p.position[2] = 300 + ((step * 37) % 400) - 200;  // past its neighbours too
    ASSERT_EQ(live.solver.updateConstant(live.position[2], -p.position[2]), Status::Ok);
    Split fresh(p);
    ExpectSameLayout(live.values(), fresh.values(), step);
  }
}

TEST(LayoutSolverUpdateConstant, RequiredEquality_MovesWhatDependsOnIt) {
  Solver solver;
  Variable x("x"), y("y");
  Constraint pin = Constraint::Make(x, Relation::Equal, 10.0);
  ASSERT_EQ(solver.addConstraint(pin), Status::Ok);
  ASSERT_EQ(solver.addConstraint(Constraint::Make(y, Relation::Equal, x + 5.0)), Status::Ok);
  for (double value : {30.0, -4.0, 10.0, 1e6}) {
    ASSERT_EQ(solver.updateConstant(pin, -value), Status::Ok);
    solver.updateVariables();
    EXPECT_DOUBLE_EQ(x.value(), value);
    EXPECT_DOUBLE_EQ(y.value(), value + 5);
  }
}

TEST(LayoutSolverUpdateConstant, ConstantIsKeptByTheSolver) {
  Solver solver;
  Variable x("x");
  Constraint pin = Constraint::Make(x, Relation::Equal, 10.0, Strength{750});
  double constant = 0;
  EXPECT_FALSE(solver.constantOf(pin, constant));
  ASSERT_EQ(solver.addConstraint(pin), Status::Ok);
  ASSERT_TRUE(solver.constantOf(pin, constant));
  EXPECT_DOUBLE_EQ(constant, -10);
  ASSERT_EQ(solver.updateConstant(pin, -25), Status::Ok);
  ASSERT_TRUE(solver.constantOf(pin, constant));
  EXPECT_DOUBLE_EQ(constant, -25);
  EXPECT_DOUBLE_EQ(pin.expression().constant(), -10);  // the handle is immutable

  // Removal takes out the updated constraint; re-adding starts from the
  // handle's own constant.
  ASSERT_EQ(solver.addConstraint(Constraint::Make(x, Relation::Equal, 0.0, Strength{250})),
            Status::Ok);
  ASSERT_EQ(solver.removeConstraint(pin), Status::Ok);
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(x.value(), 0);
  ASSERT_EQ(solver.addConstraint(pin), Status::Ok);
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(x.value(), 10);
}

TEST(LayoutSolverUpdateConstant, Errors) {
  Solver solver;
  Variable x("x");
  Constraint pin = Constraint::Make(x, Relation::Equal, 10.0);
  EXPECT_EQ(solver.updateConstant(pin, 3), Status::UnknownConstraint);
  EXPECT_EQ(solver.updateConstant(Constraint(), 3), Status::UnknownConstraint);
  ASSERT_EQ(solver.addConstraint(pin), Status::Ok);
  EXPECT_EQ(solver.updateConstant(pin, std::nan("")), Status::InvalidValue);
  EXPECT_EQ(solver.updateConstant(pin, std::numeric_limits<double>::infinity()),
            Status::InvalidValue);
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(x.value(), 10);
}

TEST(LayoutSolverUpdateConstant, UnsatisfiableEquality_KeepsTheOldSystem) {
  Solver solver;
  Variable x("x"), y("y");
  ASSERT_EQ(solver.addConstraint(Constraint::Make(x, Relation::GreaterThanOrEqual, 0.0)),
            Status::Ok);
  Constraint pin = Constraint::Make(x, Relation::Equal, 10.0);
  ASSERT_EQ(solver.addConstraint(pin), Status::Ok);
  ASSERT_EQ(solver.addConstraint(Constraint::Make(y, Relation::Equal, x * 2.0)), Status::Ok);

  EXPECT_EQ(solver.updateConstant(pin, 5), Status::Unsatisfiable);  // x == -5
  double constant = 0;
  ASSERT_TRUE(solver.constantOf(pin, constant));
  EXPECT_DOUBLE_EQ(constant, -10);
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(x.value(), 10);
  EXPECT_DOUBLE_EQ(y.value(), 20);

  // Still consistent: further updates and additions work.
  ASSERT_EQ(solver.updateConstant(pin, -7), Status::Ok);
  Variable z("z");
  ASSERT_EQ(solver.addConstraint(Constraint::Make(z, Relation::Equal, y + 1.0)), Status::Ok);
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(x.value(), 7);
  EXPECT_DOUBLE_EQ(z.value(), 15);
}

TEST(LayoutSolverUpdateConstant, UnsatisfiableInequality_KeepsTheOldSolution) {
  Solver solver;
  Variable x("x");
  ASSERT_EQ(solver.addConstraint(Constraint::Make(x, Relation::LessThanOrEqual, 100.0)),
            Status::Ok);
  Constraint floor = Constraint::Make(x, Relation::GreaterThanOrEqual, 20.0);
  ASSERT_EQ(solver.addConstraint(floor), Status::Ok);
  ASSERT_EQ(solver.addConstraint(Constraint::Make(x, Relation::Equal, 0.0, Strength{250})),
            Status::Ok);
  solver.updateVariables();
  ASSERT_DOUBLE_EQ(x.value(), 20);

  EXPECT_EQ(solver.updateConstant(floor, -150), Status::Unsatisfiable);
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(x.value(), 20);
  ASSERT_EQ(solver.updateConstant(floor, -50), Status::Ok);
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(x.value(), 50);
  ASSERT_EQ(solver.updateConstant(floor, -100), Status::Ok);  // exactly at the ceiling
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(x.value(), 100);
}

TEST(LayoutSolverUpdateConstant, RepeatedRequiredEquality_CannotDrift) {
  // The second pin only repeats the first; moving either alone breaks the
  // pair, moving both in turn is refused each time.
  Solver solver;
  Variable x("x");
  Constraint first = Constraint::Make(x, Relation::Equal, 10.0);
  Constraint again = Constraint::Make(x, Relation::Equal, 10.0);
  ASSERT_EQ(solver.addConstraint(first), Status::Ok);
  ASSERT_EQ(solver.addConstraint(again), Status::Ok);
  EXPECT_EQ(solver.updateConstant(again, -20), Status::Unsatisfiable);
  EXPECT_EQ(solver.updateConstant(first, -20), Status::Unsatisfiable);
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(x.value(), 10);
  ASSERT_EQ(solver.removeConstraint(again), Status::Ok);
  ASSERT_EQ(solver.updateConstant(first, -20), Status::Ok);
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(x.value(), 20);
}

TEST(LayoutSolverUpdateConstant, EditVariableAndConstantUpdates_Together) {
  Solver solver;
  Variable x("x"), y("y");
  Constraint gap = Constraint::Make(y, Relation::Equal, x + 10.0);
  ASSERT_EQ(solver.addConstraint(gap), Status::Ok);
  ASSERT_EQ(solver.addEditVariable(x, Strength{500}), Status::Ok);
  for (int i = 0; i < 20; ++i) {
    ASSERT_EQ(solver.suggestValue(x, i * 3.0), Status::Ok);
    ASSERT_EQ(solver.updateConstant(gap, -(i + 1.0)), Status::Ok);  // y == x + i + 1
    solver.updateVariables();
    EXPECT_DOUBLE_EQ(x.value(), i * 3.0);
    EXPECT_DOUBLE_EQ(y.value(), i * 3.0 + i + 1);
  }
}

// --- Subjects on chains of views ------------------------------------------------

// |-8-[v0]-8-...-8-| with equal widths at 750 and a window at least 100 wide:
// the widths between views already placed are where degenerate pivots used
// to pile up. Removing any constraint must leave what a fresh build without
// it gives. Each width also leans weakly towards 30, at a priority of its
// own, so that every system here has a single best layout.
struct Chain {
  Solver solver;
  Variable window{"window"};
  std::vector<Variable> left, right;
  std::vector<Constraint> all;

  Chain(int n, std::size_t skip) {
    auto add = [&](const Constraint& c) {
      if (all.size() != skip) EXPECT_EQ(solver.addConstraint(c), Status::Ok);
      all.push_back(c);
    };
    add(Constraint::Make(window, Relation::GreaterThanOrEqual, 100.0));
    add(Constraint::Make(window, Relation::Equal, 500.0, Strength{250}));
    for (int i = 0; i < n; ++i) {
      left.emplace_back("left");
      right.emplace_back("right");
      add(Constraint::Make(left[i], Relation::Equal, i == 0 ? Expression(8.0) : right[i - 1] + 8.0));
      add(Constraint::Make(right[i] - left[i], Relation::GreaterThanOrEqual, 10.0));
      add(Constraint::Make(right[i] - left[i], Relation::Equal, 30.0, Strength{100.0f - i}));
      if (i > 0) {
        add(Constraint::Make(right[i] - left[i], Relation::Equal, right[i - 1] - left[i - 1],
                             Strength{750}));
      }
    }
    add(Constraint::Make(window, Relation::Equal, right[n - 1] + 8.0));
  }

  std::vector<double> values() {
    solver.updateVariables();
    std::vector<double> out{window.value()};
    for (std::size_t i = 0; i < left.size(); ++i) {
      out.push_back(left[i].value());
      out.push_back(right[i].value());
    }
    return out;
  }
};

TEST(LayoutSolverSubject, EqualWidthChain_Solves) {
  Chain chain(20, std::numeric_limits<std::size_t>::max());
  std::vector<double> v = chain.values();
  double each = (500.0 - 8 * 21) / 20;
  EXPECT_NEAR(v[0], 500, 1e-9);
  for (int i = 0; i < 20; ++i) EXPECT_NEAR(v[2 + 2 * i] - v[1 + 2 * i], each, 1e-9) << i;
}

TEST(LayoutSolverSubject, RemovingAnyConstraint_MatchesAFreshBuild) {
  const int n = 8;
  Chain reference(n, std::numeric_limits<std::size_t>::max());
  for (std::size_t skip = 0; skip < reference.all.size(); ++skip) {
    Chain built(n, std::numeric_limits<std::size_t>::max());
    ASSERT_EQ(built.solver.removeConstraint(built.all[skip]), Status::Ok) << skip;
    Chain fresh(n, skip);
    ExpectSameLayout(built.values(), fresh.values(), static_cast<int>(skip));
  }
}

TEST(LayoutSolverSubject, WindowTooNarrowForTheChain_IsRejected) {
  Chain chain(20, std::numeric_limits<std::size_t>::max());
  std::vector<double> before = chain.values();
  // 20 views of at least 10 with 21 gaps of 8 need 368.
  EXPECT_EQ(chain.solver.addConstraint(Constraint::Make(chain.window, Relation::LessThanOrEqual,
                                                        300.0)),
            Status::Unsatisfiable);
  ExpectSameLayout(chain.values(), before, 0);
  EXPECT_EQ(chain.solver.addConstraint(Constraint::Make(chain.window, Relation::LessThanOrEqual,
                                                        368.0)),
            Status::Ok);
  EXPECT_NEAR(chain.values()[0], 368, 1e-9);
}

}  // namespace
}  // namespace talvo::layout
