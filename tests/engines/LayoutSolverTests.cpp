#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "platform/AppKit/layout/Solver.hpp"
#include "tests/engines/LayoutSolverTestSupport.hpp"

namespace talvo::layout {
namespace {

// --- Strengths -------------------------------------------------------------

TEST(LayoutStrength, FromPriority_MapsAppKitRange) {
  EXPECT_TRUE(FromPriority(1000).isRequired());
  EXPECT_TRUE(FromPriority(5000).isRequired());
  EXPECT_FALSE(FromPriority(999).isRequired());
  EXPECT_FALSE(FromPriority(999.9f).isRequired());
  EXPECT_FLOAT_EQ(FromPriority(750).priority, 750);
  EXPECT_FLOAT_EQ(FromPriority(0).priority, 1);
  EXPECT_FLOAT_EQ(FromPriority(-20).priority, 1);
  EXPECT_FLOAT_EQ(FromPriority(std::nanf("")).priority, 1);
}

// --- Equalities ------------------------------------------------------------

TEST(LayoutSolverEquality, SingleEquality_SetsValue) {
  Solver solver;
  Variable x("x");
  ASSERT_EQ(solver.addConstraint(Eq(x, 10)), Status::Ok);
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(x.value(), 10);
}

TEST(LayoutSolverEquality, TermsKeepTheirSigns) {
  Solver solver;
  Variable x("x"), y("y");
  ASSERT_EQ(solver.addConstraint(Eq(x - y, 30)), Status::Ok);
  ASSERT_EQ(solver.addConstraint(Eq(2.0 * y, 10)), Status::Ok);
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(y.value(), 5);
  EXPECT_DOUBLE_EQ(x.value(), 35);
}

TEST(LayoutSolverEquality, RepeatedVariableInOneExpression_Accumulates) {
  Solver solver;
  Variable x("x");
  // x + x + 2x == 40
  Expression e = x + x + 2.0 * x;
  ASSERT_EQ(solver.addConstraint(Eq(e, 40)), Status::Ok);
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(x.value(), 10);
}

TEST(LayoutSolverEquality, Duplicate_IsReportedAndIgnored) {
  Solver solver;
  Variable x("x");
  Constraint c = Eq(x, 10);
  ASSERT_EQ(solver.addConstraint(c), Status::Ok);
  EXPECT_EQ(solver.addConstraint(c), Status::Duplicate);
  ASSERT_EQ(solver.removeConstraint(c), Status::Ok);
  EXPECT_FALSE(solver.hasConstraint(c));
}

TEST(LayoutSolverEquality, InvalidConstraints_AreRefused) {
  Solver solver;
  Variable x("x");
  EXPECT_EQ(solver.addConstraint(Constraint()), Status::InvalidValue);
  EXPECT_EQ(solver.addConstraint(Eq(x, std::numeric_limits<double>::infinity())),
            Status::InvalidValue);
  EXPECT_EQ(solver.addConstraint(Eq(std::nan("") * Expression(x), 0)), Status::InvalidValue);
  EXPECT_EQ(solver.removeConstraint(Constraint()), Status::UnknownConstraint);
}

// --- Inequalities and strengths ----------------------------------------------

TEST(LayoutSolverStrength, RequiredInequality_Bounds) {
  Solver solver;
  Variable x("x");
  ASSERT_EQ(solver.addConstraint(Ge(x, 100)), Status::Ok);
  ASSERT_EQ(solver.addConstraint(Eq(x, 0, 250)), Status::Ok);
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(x.value(), 100);

  Solver other;
  Variable y("y");
  ASSERT_EQ(other.addConstraint(Le(y, 100)), Status::Ok);
  ASSERT_EQ(other.addConstraint(Eq(y, 500, 250)), Status::Ok);
  other.updateVariables();
  EXPECT_DOUBLE_EQ(y.value(), 100);
}

TEST(LayoutSolverStrength, StrongPreference_OverridesWeakOne) {
  for (bool strongFirst : {false, true}) {
    Solver solver;
    Variable x("x");
    Constraint weak = Eq(x, 50, 250);
    Constraint strong = Eq(x, 100, 750);
    ASSERT_EQ(solver.addConstraint(strongFirst ? strong : weak), Status::Ok);
    ASSERT_EQ(solver.addConstraint(strongFirst ? weak : strong), Status::Ok);
    solver.updateVariables();
    EXPECT_DOUBLE_EQ(x.value(), 100) << "strongFirst=" << strongFirst;
  }
}

TEST(LayoutSolverStrength, Priority999_StaysWeakerThanRequired) {
  Solver solver;
  Variable x("x");
  ASSERT_EQ(solver.addConstraint(Eq(x, 20, 999)), Status::Ok);
  ASSERT_EQ(solver.addConstraint(Eq(x, 10, 1000)), Status::Ok);
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(x.value(), 10);
}

TEST(LayoutSolverStrength, Priority750_Beats250_WithInequalities) {
  // A label that wants to hug its content (250) but must stay >= 120 wide at
  // 750, inside room for only 200.
  Solver solver;
  Variable width("width");
  ASSERT_EQ(solver.addConstraint(Le(width, 200)), Status::Ok);
  ASSERT_EQ(solver.addConstraint(Eq(width, 80, 250)), Status::Ok);
  ASSERT_EQ(solver.addConstraint(Ge(width, 120, 750)), Status::Ok);
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(width.value(), 120);
}

TEST(LayoutSolverStrength, HigherPriority_DominatesAnyNumberOfLowerOnes) {
  Solver solver;
  Variable x("x");
  std::vector<Constraint> crowd;
  for (int i = 0; i < 200; ++i) crowd.push_back(Eq(x, 1000, 250));
  for (const Constraint& c : crowd) ASSERT_EQ(solver.addConstraint(c), Status::Ok);
  ASSERT_EQ(solver.addConstraint(Eq(x, 0, 251)), Status::Ok);
  solver.updateVariables();
  EXPECT_NEAR(x.value(), 0, 1e-9);
}

TEST(LayoutSolverStrength, EqualPriorities_MinimiseTotalError) {
  // Three pulls at the same priority: the sum of errors is smallest at the
  // point two of them agree on.
  Solver solver;
  Variable x("x");
  ASSERT_EQ(solver.addConstraint(Eq(x, 10, 500)), Status::Ok);
  ASSERT_EQ(solver.addConstraint(Eq(x, 10, 500)), Status::Ok);
  ASSERT_EQ(solver.addConstraint(Eq(x, 40, 500)), Status::Ok);
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(x.value(), 10);
}

// --- Removal ---------------------------------------------------------------

TEST(LayoutSolverRemoval, RemovingConstraint_RestoresPreviousSolution) {
  Solver solver;
  Variable x("x"), y("y");
  ASSERT_EQ(solver.addConstraint(Eq(x, 10, 750)), Status::Ok);
  ASSERT_EQ(solver.addConstraint(Eq(y, x + 5)), Status::Ok);
  solver.updateVariables();
  ASSERT_DOUBLE_EQ(y.value(), 15);

  Constraint pin = Eq(x, 40);
  ASSERT_EQ(solver.addConstraint(pin), Status::Ok);
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(y.value(), 45);

  ASSERT_EQ(solver.removeConstraint(pin), Status::Ok);
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(x.value(), 10);
  EXPECT_DOUBLE_EQ(y.value(), 15);
}

TEST(LayoutSolverRemoval, RemovingInequalities_InEitherOrder) {
  for (bool lowerFirst : {false, true}) {
    Solver solver;
    Variable x("x");
    ASSERT_EQ(solver.addConstraint(Eq(x, 50, 250)), Status::Ok);
    Constraint lower = Ge(x, 80);
    Constraint upper = Le(x, 30, 750);
    ASSERT_EQ(solver.addConstraint(lower), Status::Ok);
    ASSERT_EQ(solver.addConstraint(upper), Status::Ok);
    solver.updateVariables();
    EXPECT_DOUBLE_EQ(x.value(), 80);

    ASSERT_EQ(solver.removeConstraint(lowerFirst ? lower : upper), Status::Ok);
    solver.updateVariables();
    EXPECT_DOUBLE_EQ(x.value(), lowerFirst ? 30 : 80);
    ASSERT_EQ(solver.removeConstraint(lowerFirst ? upper : lower), Status::Ok);
    solver.updateVariables();
    EXPECT_DOUBLE_EQ(x.value(), 50);
  }
}

TEST(LayoutSolverRemoval, UnknownConstraint_IsReported) {
  Solver solver;
  Variable x("x");
  Constraint c = Eq(x, 1);
  EXPECT_FALSE(solver.hasConstraint(c));
  EXPECT_EQ(solver.removeConstraint(c), Status::UnknownConstraint);
  ASSERT_EQ(solver.addConstraint(c), Status::Ok);
  EXPECT_TRUE(solver.hasConstraint(c));
  ASSERT_EQ(solver.removeConstraint(c), Status::Ok);
  EXPECT_EQ(solver.removeConstraint(c), Status::UnknownConstraint);
}

// --- Unsatisfiable ---------------------------------------------------------

TEST(LayoutSolverUnsatisfiable, ConflictingEquality_IsRejectedAndSolutionKept) {
  Solver solver;
  Variable x("x"), y("y");
  ASSERT_EQ(solver.addConstraint(Eq(x, 10)), Status::Ok);
  ASSERT_EQ(solver.addConstraint(Eq(y, x * 2)), Status::Ok);
  Constraint bad = Eq(y, 50);
  EXPECT_EQ(solver.addConstraint(bad), Status::Unsatisfiable);
  EXPECT_FALSE(solver.hasConstraint(bad));
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(x.value(), 10);
  EXPECT_DOUBLE_EQ(y.value(), 20);

  // The solver still works afterwards.
  Variable z("z");
  ASSERT_EQ(solver.addConstraint(Eq(z, y + 1)), Status::Ok);
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(z.value(), 21);
}

TEST(LayoutSolverUnsatisfiable, ConflictingInequalities_AreRejected) {
  Solver solver;
  Variable x("x");
  ASSERT_EQ(solver.addConstraint(Ge(x, 10)), Status::Ok);
  ASSERT_EQ(solver.addConstraint(Eq(x, 15, 250)), Status::Ok);
  EXPECT_EQ(solver.addConstraint(Le(x, 5)), Status::Unsatisfiable);
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(x.value(), 15);
  EXPECT_EQ(solver.addConstraint(Eq(Expression(0.0), 5)), Status::Unsatisfiable);
  EXPECT_EQ(solver.addConstraint(Le(Expression(5.0), 0)), Status::Unsatisfiable);
}

TEST(LayoutSolverUnsatisfiable, NonRequiredConflict_IsAccepted) {
  Solver solver;
  Variable x("x");
  ASSERT_EQ(solver.addConstraint(Eq(x, 10)), Status::Ok);
  EXPECT_EQ(solver.addConstraint(Eq(x, 50, 999)), Status::Ok);
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(x.value(), 10);
}

TEST(LayoutSolverUnsatisfiable, LargeConflict_ReturnsAndLeavesEveryValue) {
  // A long row of views whose widths add up past the window: the phase-one
  // search runs through the whole tableau and must still come back.
  Solver solver;
  std::vector<Variable> left, width;
  Variable window("window");
  ASSERT_EQ(solver.addConstraint(Eq(window, 500)), Status::Ok);
  for (int i = 0; i < 40; ++i) {
    left.emplace_back("left");
    width.emplace_back("width");
    ASSERT_EQ(solver.addConstraint(Ge(width[i], 5)), Status::Ok);
    ASSERT_EQ(solver.addConstraint(Eq(width[i], 10, 250)), Status::Ok);
    Expression previous = i == 0 ? Expression(0.0) : left[i - 1] + width[i - 1];
    ASSERT_EQ(solver.addConstraint(Eq(left[i], previous + 2)), Status::Ok);
  }
  ASSERT_EQ(solver.addConstraint(Le(left.back() + width.back(), window)), Status::Ok);
  solver.updateVariables();
  std::vector<double> before;
  for (const Variable& v : width) before.push_back(v.value());

  EXPECT_EQ(solver.addConstraint(Ge(left.back(), window)), Status::Unsatisfiable);
  EXPECT_EQ(solver.addConstraint(Eq(window, 100)), Status::Unsatisfiable);
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(window.value(), 500);
  for (std::size_t i = 0; i < width.size(); ++i) EXPECT_DOUBLE_EQ(width[i].value(), before[i]);
  EXPECT_DOUBLE_EQ(left.back().value(), 39 * 12 + 2);
}

// --- Redundant and degenerate systems ---------------------------------------

TEST(LayoutSolverRedundant, RepeatedRequiredEquality_IsAccepted) {
  Solver solver;
  Variable x("x"), y("y");
  Constraint first = Eq(x, 10);
  Constraint again = Eq(x, 10);
  ASSERT_EQ(solver.addConstraint(first), Status::Ok);
  ASSERT_EQ(solver.addConstraint(again), Status::Ok);
  ASSERT_EQ(solver.addConstraint(Eq(x + y, 30)), Status::Ok);
  ASSERT_EQ(solver.addConstraint(Eq(y, 20)), Status::Ok);  // implied by the others
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(x.value(), 10);
  EXPECT_DOUBLE_EQ(y.value(), 20);

  ASSERT_EQ(solver.removeConstraint(first), Status::Ok);
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(x.value(), 10);
  ASSERT_EQ(solver.removeConstraint(again), Status::Ok);
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(x.value(), 10);  // y == 20 and x + y == 30 still hold it
}

TEST(LayoutSolverRedundant, DegenerateVertex_Solves) {
  // Many inequalities all tight at the same point.
  Solver solver;
  Variable x("x"), y("y");
  for (int i = 1; i <= 10; ++i) {
    ASSERT_EQ(solver.addConstraint(Le(x + i * 1.0 * y, 10.0 + 10.0 * i)), Status::Ok);
    ASSERT_EQ(solver.addConstraint(Ge(x, 10)), Status::Ok);
    ASSERT_EQ(solver.addConstraint(Ge(y, 10)), Status::Ok);
  }
  ASSERT_EQ(solver.addConstraint(Eq(x + y, 100, 500)), Status::Ok);
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(x.value(), 10);
  EXPECT_DOUBLE_EQ(y.value(), 10);
}

TEST(LayoutSolverDeterminism, SameCalls_GiveSameSolution) {
  // x + y == 100 alone leaves a whole line of optima; the choice must not
  // depend on anything but the order of calls.
  auto run = [] {
    Solver solver;
    Variable x("x"), y("y"), z("z");
    EXPECT_EQ(solver.addConstraint(Eq(x + y, 100)), Status::Ok);
    EXPECT_EQ(solver.addConstraint(Ge(x, 0)), Status::Ok);
    EXPECT_EQ(solver.addConstraint(Ge(y, 0)), Status::Ok);
    EXPECT_EQ(solver.addConstraint(Eq(z, x - y, 500)), Status::Ok);
    solver.updateVariables();
    return std::vector<double>{x.value(), y.value(), z.value()};
  };
  std::vector<double> first = run();
  for (int i = 0; i < 5; ++i) EXPECT_EQ(run(), first);
}

// --- Edit variables ----------------------------------------------------------

// |-20-[a]-8-[b]-8-[c]-20-| with equal widths, the superview's width edited.
struct Row3 {
  Solver solver;
  Variable superWidth{"super.width"};
  Variable leading[3] = {Variable("a.leading"), Variable("b.leading"), Variable("c.leading")};
  Variable width[3] = {Variable("a.width"), Variable("b.width"), Variable("c.width")};

  Expression trailing(int i) const { return leading[i] + width[i]; }

  void build() {
    ASSERT_EQ(solver.addConstraint(Eq(leading[0], 20)), Status::Ok);
    ASSERT_EQ(solver.addConstraint(Eq(leading[1], trailing(0) + 8)), Status::Ok);
    ASSERT_EQ(solver.addConstraint(Eq(leading[2], trailing(1) + 8)), Status::Ok);
    ASSERT_EQ(solver.addConstraint(Eq(superWidth, trailing(2) + 20)), Status::Ok);
    ASSERT_EQ(solver.addConstraint(Eq(width[0], width[1])), Status::Ok);
    ASSERT_EQ(solver.addConstraint(Eq(width[1], width[2])), Status::Ok);
    for (const Variable& w : width) ASSERT_EQ(solver.addConstraint(Ge(w, 10)), Status::Ok);
    ASSERT_EQ(solver.addEditVariable(superWidth, FromPriority(999)), Status::Ok);
  }

  void expectLaidOutIn(double total) {
    solver.updateVariables();
    double each = std::max(10.0, (total - 56) / 3);
    EXPECT_NEAR(superWidth.value(), std::max(total, 86.0), 1e-9);
    for (int i = 0; i < 3; ++i) {
      EXPECT_NEAR(width[i].value(), each, 1e-9) << "view " << i << " at " << total;
      EXPECT_NEAR(leading[i].value(), 20 + i * (each + 8), 1e-9) << "view " << i;
    }
  }
};

TEST(LayoutSolverEdit, EditVariable_ResolvesWithoutRebuild) {
  Row3 row;
  row.build();
  for (double total : {356.0, 500.0, 86.0, 1000.5, 200.0, 356.0, 57.0, 900.0}) {
    ASSERT_EQ(row.solver.suggestValue(row.superWidth, total), Status::Ok);
    row.expectLaidOutIn(total);
  }
  for (int i = 0; i < 300; ++i) {
    double total = 100 + (i * 37) % 700;
    ASSERT_EQ(row.solver.suggestValue(row.superWidth, total), Status::Ok);
    row.expectLaidOutIn(total);
  }
}

TEST(LayoutSolverEdit, ValuesChangeOnlyOnUpdate) {
  Row3 row;
  row.build();
  ASSERT_EQ(row.solver.suggestValue(row.superWidth, 356), Status::Ok);
  row.solver.updateVariables();
  ASSERT_DOUBLE_EQ(row.width[0].value(), 100);
  ASSERT_EQ(row.solver.suggestValue(row.superWidth, 656), Status::Ok);
  EXPECT_DOUBLE_EQ(row.width[0].value(), 100);
  row.solver.updateVariables();
  EXPECT_DOUBLE_EQ(row.width[0].value(), 200);
}

TEST(LayoutSolverEdit, ConstraintsStillChangeBetweenEdits) {
  Row3 row;
  row.build();
  ASSERT_EQ(row.solver.suggestValue(row.superWidth, 356), Status::Ok);
  Constraint fixed = Eq(row.width[0], 40);
  Constraint neverAdded = Eq(row.width[0], row.width[1]);
  // The pin drags all three widths (they are required equal) and the
  // superview's edit has to give way.
  EXPECT_EQ(row.solver.addConstraint(fixed), Status::Ok);
  row.solver.updateVariables();
  EXPECT_NEAR(row.width[0].value(), 40, 1e-9);
  EXPECT_NEAR(row.superWidth.value(), 20 + 3 * 40 + 16 + 20, 1e-9);  // 999 edit gives way

  ASSERT_EQ(row.solver.removeConstraint(fixed), Status::Ok);
  ASSERT_EQ(row.solver.suggestValue(row.superWidth, 656), Status::Ok);
  row.expectLaidOutIn(656);
  EXPECT_EQ(row.solver.removeConstraint(neverAdded), Status::UnknownConstraint);
}

TEST(LayoutSolverEdit, EditStartsAtCurrentValue) {
  Solver solver;
  Variable x("x", 42);
  Variable y("y");
  ASSERT_EQ(solver.addConstraint(Eq(y, x + 1)), Status::Ok);
  ASSERT_EQ(solver.addEditVariable(x, FromPriority(500)), Status::Ok);
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(x.value(), 42);
  EXPECT_DOUBLE_EQ(y.value(), 43);
}

TEST(LayoutSolverEdit, EditYieldsToStrongerConstraint) {
  Solver solver;
  Variable x("x");
  ASSERT_EQ(solver.addConstraint(Le(x, 100)), Status::Ok);
  ASSERT_EQ(solver.addConstraint(Ge(x, 40, 750)), Status::Ok);
  ASSERT_EQ(solver.addEditVariable(x, FromPriority(500)), Status::Ok);
  ASSERT_EQ(solver.suggestValue(x, 300), Status::Ok);
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(x.value(), 100);
  ASSERT_EQ(solver.suggestValue(x, 10), Status::Ok);
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(x.value(), 40);
  ASSERT_EQ(solver.suggestValue(x, 70), Status::Ok);
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(x.value(), 70);
}

TEST(LayoutSolverEdit, StatusErrors) {
  Solver solver;
  Variable x("x"), y("y");
  EXPECT_EQ(solver.suggestValue(x, 1), Status::UnknownEditVariable);
  EXPECT_EQ(solver.removeEditVariable(x), Status::UnknownEditVariable);
  EXPECT_EQ(solver.addEditVariable(x, Strength::Required()), Status::RequiredEditStrength);
  EXPECT_FALSE(solver.hasEditVariable(x));
  ASSERT_EQ(solver.addEditVariable(x, FromPriority(999)), Status::Ok);
  EXPECT_TRUE(solver.hasEditVariable(x));
  EXPECT_EQ(solver.addEditVariable(x, FromPriority(500)), Status::Duplicate);
  EXPECT_EQ(solver.suggestValue(x, std::nan("")), Status::InvalidValue);
  EXPECT_EQ(solver.suggestValue(y, 3), Status::UnknownEditVariable);
}

TEST(LayoutSolverEdit, RemovingEdit_ReleasesVariable) {
  Solver solver;
  Variable x("x");
  ASSERT_EQ(solver.addConstraint(Eq(x, 5, 250)), Status::Ok);
  ASSERT_EQ(solver.addEditVariable(x, FromPriority(750)), Status::Ok);
  ASSERT_EQ(solver.suggestValue(x, 80), Status::Ok);
  solver.updateVariables();
  ASSERT_DOUBLE_EQ(x.value(), 80);
  ASSERT_EQ(solver.removeEditVariable(x), Status::Ok);
  EXPECT_FALSE(solver.hasEditVariable(x));
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(x.value(), 5);
  ASSERT_EQ(solver.addEditVariable(x, FromPriority(750)), Status::Ok);
  ASSERT_EQ(solver.suggestValue(x, 60), Status::Ok);
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(x.value(), 60);
}

TEST(LayoutSolverEdit, TwoEdits_AtDifferentPriorities) {
  // x and y edited, tied by x + y <= 100: the stronger edit gets its way.
  Solver solver;
  Variable x("x"), y("y");
  ASSERT_EQ(solver.addConstraint(Le(x + y, 100)), Status::Ok);
  ASSERT_EQ(solver.addEditVariable(x, FromPriority(750)), Status::Ok);
  ASSERT_EQ(solver.addEditVariable(y, FromPriority(250)), Status::Ok);
  for (int i = 0; i < 20; ++i) {
    double wantX = 10.0 * i, wantY = 90.0 - i;
    ASSERT_EQ(solver.suggestValue(x, wantX), Status::Ok);
    ASSERT_EQ(solver.suggestValue(y, wantY), Status::Ok);
    solver.updateVariables();
    EXPECT_DOUBLE_EQ(x.value(), wantX);
    EXPECT_DOUBLE_EQ(y.value(), std::min(wantY, 100 - wantX));
  }
}

TEST(LayoutSolverReset, Reset_ForgetsEverything) {
  Solver solver;
  Variable x("x");
  Constraint c = Eq(x, 3);
  ASSERT_EQ(solver.addConstraint(c), Status::Ok);
  ASSERT_EQ(solver.addEditVariable(x, FromPriority(10)), Status::Ok);
  solver.reset();
  EXPECT_FALSE(solver.hasConstraint(c));
  EXPECT_FALSE(solver.hasEditVariable(x));
  EXPECT_EQ(solver.addConstraint(Eq(x, 7)), Status::Ok);
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(x.value(), 7);
}

}  // namespace
}  // namespace talvo::layout
