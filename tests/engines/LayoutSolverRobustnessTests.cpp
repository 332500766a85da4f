// The solver at its edges: numbers out of range, constraints whose terms
// cancel, required constraints that conflict, drags on the edges split view
// checked against fresh solvers, and updateVariables reporting what moved.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <random>
#include <vector>

#include "platform/AppKit/layout/Solver.hpp"
#include "tests/engines/LayoutSolverTestSupport.hpp"

namespace talvo::layout {
namespace {

std::vector<double> Values(Solver& solver, const std::vector<Variable>& variables) {
  solver.updateVariables();
  std::vector<double> values;
  for (const Variable& v : variables) values.push_back(v.value());
  return values;
}

// --- Removal -----------------------------------------------------------------

TEST(LayoutSolverRemoval, TermsThatOverflowTogether_AreRefusedNotHeld) {
  // Two huge coefficients of one variable sum past the double range.
  Solver solver;
  Variable v0("v0");
  Constraint c(Expression({Term{v0, -1.119237675466561e+308}, Term{v0, -1.0206867396430871e+308},
                           Term{v0, 14.599066100494838}},
                          1.5852052707344732e+308),
               Relation::LessThanOrEqual, Strength{490});
  EXPECT_EQ(solver.addConstraint(c), Status::InvalidValue);
  EXPECT_FALSE(solver.hasConstraint(c));
  EXPECT_EQ(solver.removeConstraint(c), Status::UnknownConstraint);
}

TEST(LayoutSolverRemoval, ConstraintWhoseTermsCancel_IsRemoved) {
  Solver solver;
  Variable x("x"), y("y");
  ASSERT_EQ(solver.addConstraint(Eq(x, 10)), Status::Ok);
  std::vector<Constraint> cancelled = {
      Le(Expression(y) - Expression(y), -5, 490),  // 5 <= 0 at 490: broken, errors only
      Ge(Expression(x) - Expression(x), -5),       // always true
      Eq(Expression(y) - Expression(y), 0),        // 0 == 0
      Eq(Expression(y) - Expression(y) + Expression(x), 10, 250),
  };
  for (const Constraint& c : cancelled) ASSERT_EQ(solver.addConstraint(c), Status::Ok);
  for (const Constraint& c : cancelled) {
    EXPECT_EQ(solver.removeConstraint(c), Status::Ok);
    EXPECT_FALSE(solver.hasConstraint(c));
  }
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(x.value(), 10);
}

// --- Numbers out of range ----------------------------------------------------------

TEST(LayoutSolverRange, RefusedHugeCoefficient_LeavesLaterAddsWorking) {
  Solver solver;
  Variable v3("v3"), w("w");
  Constraint huge(Expression({Term{v3, 1e300}}, 20), Relation::Equal, Strength{999});
  EXPECT_EQ(solver.addConstraint(huge), Status::InvalidValue);
  EXPECT_FALSE(solver.hasConstraint(huge));
  ASSERT_EQ(solver.addConstraint(Eq(w, 10)), Status::Ok);
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(w.value(), 10);
}

TEST(LayoutSolverRange, RefusedHugeConstraint_KeepsRequiredBound) {
  Solver solver;
  Variable v3("v3"), v4("v4");
  ASSERT_EQ(solver.addConstraint(Le(v3, -40)), Status::Ok);
  Constraint huge(Expression({Term{v3, 1e300}, Term{v4, -1e300}}, 5), Relation::GreaterThanOrEqual);
  EXPECT_EQ(solver.addConstraint(huge), Status::InvalidValue);
  EXPECT_EQ(solver.removeConstraint(huge), Status::UnknownConstraint);
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(v3.value(), -40);
}

TEST(LayoutSolverRange, RefusedUpdateConstant_KeepsSolutionAndConstant) {
  Solver solver;
  Variable x("x"), y("y");
  Constraint c = Eq(x, 40, 490);
  ASSERT_EQ(solver.addConstraint(c), Status::Ok);
  ASSERT_EQ(solver.addConstraint(Eq(y, Expression(x) + 5)), Status::Ok);
  std::vector<double> before = Values(solver, {x, y});
  for (double bad : {-1e308, 1e300, Solver::kMaxConstant * 2,
                     std::numeric_limits<double>::infinity(), std::nan("")}) {
    EXPECT_EQ(solver.updateConstant(c, bad), Status::InvalidValue) << bad;
    double constant = 0;
    ASSERT_TRUE(solver.constantOf(c, constant));
    EXPECT_EQ(constant, -40);
    EXPECT_EQ(Values(solver, {x, y}), before) << bad;
  }
  EXPECT_EQ(solver.updateConstant(c, -Solver::kMaxConstant), Status::Ok);
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(x.value(), Solver::kMaxConstant);
}

TEST(LayoutSolverRange, RefusedSuggestion_WritesNoInfinity) {
  Solver solver;
  Variable v("v");
  ASSERT_EQ(solver.addEditVariable(v, Strength{500}), Status::Ok);
  ASSERT_EQ(solver.suggestValue(v, 25), Status::Ok);
  EXPECT_EQ(solver.suggestValue(v, -1e308), Status::InvalidValue);
  EXPECT_EQ(solver.suggestValue(v, -std::numeric_limits<double>::max()), Status::InvalidValue);
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(v.value(), 25);
}

TEST(LayoutSolverRange, Limits_AreInclusiveAndRepeatedTermsCount) {
  Solver solver;
  Variable x("x"), y("y");
  EXPECT_EQ(solver.addConstraint(Eq(Solver::kMaxCoefficient * Expression(x), 0)), Status::Ok);
  EXPECT_EQ(solver.addConstraint(Eq(y, Solver::kMaxConstant)), Status::Ok);
  EXPECT_EQ(solver.addConstraint(Eq(2 * Solver::kMaxCoefficient * Expression(y), 0, 10)),
            Status::InvalidValue);
  EXPECT_EQ(solver.addConstraint(Eq(y, 2 * Solver::kMaxConstant, 10)), Status::InvalidValue);
  // Each term in range, their sum not.
  Expression twice = 0.75 * Solver::kMaxCoefficient * Expression(y) +
                     0.75 * Solver::kMaxCoefficient * Expression(y);
  EXPECT_EQ(solver.addConstraint(Eq(twice, 0, 10)), Status::InvalidValue);
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(x.value(), 0);
  EXPECT_DOUBLE_EQ(y.value(), Solver::kMaxConstant);
}

TEST(LayoutSolverRange, EditOfOutOfRangeValue_StartsAtZero) {
  Solver solver;
  Variable v("v", 1e300);
  ASSERT_EQ(solver.addEditVariable(v, Strength{500}), Status::Ok);
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(v.value(), 0);
}

// --- Conflicting required constraints ----------------------------------------

TEST(LayoutSolverConflict, RefusedAfterPhaseOne_LeavesEveryValueAndLaterCallsWork) {
  Solver solver;
  Variable x("x"), y("y"), z("z");
  ASSERT_EQ(solver.addConstraint(Ge(x, 0)), Status::Ok);
  Constraint cap = Le(x, 10);
  ASSERT_EQ(solver.addConstraint(cap), Status::Ok);
  ASSERT_EQ(solver.addConstraint(Eq(y, Expression(x) + 3)), Status::Ok);
  ASSERT_EQ(solver.addConstraint(Eq(x, 4, 250)), Status::Ok);
  std::vector<double> before = Values(solver, {x, y});
  // Needs phase one (the row has a slack with a negative coefficient) and
  // cannot be satisfied.
  EXPECT_EQ(solver.addConstraint(Eq(Expression(x) + Expression(z) - Expression(z), 20)),
            Status::Unsatisfiable);
  EXPECT_EQ(solver.addConstraint(Ge(y, 30)), Status::Unsatisfiable);
  EXPECT_EQ(Values(solver, {x, y}), before);
  ASSERT_EQ(solver.removeConstraint(cap), Status::Ok);
  ASSERT_EQ(solver.addConstraint(Eq(x, 20)), Status::Ok);
  solver.updateVariables();
  EXPECT_DOUBLE_EQ(x.value(), 20);
  EXPECT_DOUBLE_EQ(y.value(), 23);
}

// Random constraints between 12 views' edges: every refused add leaves the
// solution exactly as it was, and the constraints held at the end give a
// fresh solver the same required values.
TEST(LayoutSolverConflict, Storm_RefusalsChangeNothing) {
  std::vector<Variable> edges;
  for (int i = 0; i < 48; ++i) edges.emplace_back("edge");
  std::mt19937 random(2024);
  std::uniform_int_distribution<int> edge(0, 47), kind(0, 2), constant(-300, 300);
  Solver solver;
  std::vector<Constraint> held;
  int refused = 0;
  for (int i = 0; i < 300; ++i) {
    Expression lhs = Expression(edges[edge(random)]) - Expression(edges[edge(random)]);
    int k = kind(random);
    Constraint c = k == 0   ? Eq(lhs, Expression(edges[edge(random)]) + double(constant(random)))
                   : k == 1 ? Le(lhs, double(constant(random)), kind(random) ? 1000 : 490)
                            : Ge(lhs, double(constant(random)));
    std::vector<double> before = Values(solver, edges);
    Status status = solver.addConstraint(c);
    if (status == Status::Ok) {
      held.push_back(c);
    } else {
      ASSERT_EQ(status, Status::Unsatisfiable);
      ++refused;
      std::vector<double> after = Values(solver, edges);
      for (std::size_t j = 0; j < edges.size(); ++j) {
        ASSERT_NEAR(after[j], before[j], 1e-9) << "edge " << j << " after refusing " << i;
      }
    }
  }
  EXPECT_GT(refused, 50);
  // Every held required constraint is satisfied.
  solver.updateVariables();
  for (const Constraint& c : held) {
    if (!c.strength().isRequired()) continue;
    double value = c.expression().value();
    if (c.relation() == Relation::Equal) EXPECT_NEAR(value, 0, 1e-7);
    if (c.relation() == Relation::LessThanOrEqual) EXPECT_LE(value, 1e-7);
    if (c.relation() == Relation::GreaterThanOrEqual) EXPECT_GE(value, -1e-7);
  }
  // Removing and re-adding keeps working.
  for (std::size_t i = 0; i < held.size(); i += 7) {
    ASSERT_EQ(solver.removeConstraint(held[i]), Status::Ok);
    ASSERT_EQ(solver.addConstraint(held[i]), Status::Ok);
  }
}

// --- The edges split view ----------------------------------------------------------

// The split view the layout pass builds on edges: views chained edge to edge
// in a container, one-point dividers, heights pinned, stays at 0.5 on every
// edge, divider positions at 490.
struct EdgesSplit {
  struct Box {
    Variable left{"left"}, top{"top"}, right{"right"}, bottom{"bottom"};
  };
  Solver solver;
  Box root;
  std::vector<Box> views;
  std::vector<Constraint> positions;

  EdgesSplit(int panels, const std::vector<double>& at) {
    double width = panels * 41.0;
    solver.addConstraint(Eq(root.left, 0));
    solver.addConstraint(Eq(root.top, 0));
    solver.addConstraint(Eq(root.right, width));
    solver.addConstraint(Eq(root.bottom, 300));
    int count = 2 * panels - 1;
    views.resize(count);
    for (int i = 0; i < count; ++i) {
      Box& box = views[i];
      bool divider = i % 2 == 1;
      double x = (i / 2) * 41.0 + (divider ? 40 : 0);
      box.left.setValue(x);
      box.right.setValue(x + (divider ? 1 : 40));
      box.bottom.setValue(300);
      solver.addConstraint(Ge(box.right, box.left));
      solver.addConstraint(Ge(box.bottom, box.top));
      for (const Variable& v : {box.left, box.top, box.right, box.bottom}) {
        solver.addEditVariable(v, Strength{0.5f});
      }
    }
    for (int i = 0; i < count; ++i) {
      Box& box = views[i];
      solver.addConstraint(Eq(box.left, i == 0 ? root.left : views[i - 1].right));
      solver.addConstraint(Eq(box.top, root.top));
      solver.addConstraint(Eq(root.bottom, box.bottom));
      if (i % 2 == 1) solver.addConstraint(Eq(Expression(box.right) - Expression(box.left), 1));
      if (i % 2 == 0 && i > 0) {
        positions.push_back(Eq(box.left, at[i / 2 - 1], 490));
        solver.addConstraint(positions.back());
      }
    }
    solver.addConstraint(Eq(root.right, views.back().right));
  }

  std::vector<double> frames() {
    solver.updateVariables();
    std::vector<double> values;
    for (const Box& box : views) {
      for (const Variable& v : {box.left, box.top, box.right, box.bottom}) values.push_back(v.value());
    }
    return values;
  }
};

TEST(LayoutSolverEdgesSplit, DragMatchesAFreshSolver) {
  const int panels = 8;
  std::vector<double> at;
  for (int k = 1; k < panels; ++k) at.push_back(k * 41.0);
  EdgesSplit dragged(panels, at);
  int divider = 3;
  // Past both neighbours and back: the positions on either side give way.
  for (double to : {130.0, 150.0, 90.0, 40.0, 300.0, 123.0, 164.0}) {
    ASSERT_EQ(dragged.solver.updateConstant(dragged.positions[divider], -to), Status::Ok) << to;
    std::vector<double> moved = at;
    moved[divider] = to;
    EdgesSplit fresh(panels, moved);
    std::vector<double> got = dragged.frames(), want = fresh.frames();
    ASSERT_EQ(got.size(), want.size());
    for (std::size_t i = 0; i < got.size(); ++i) {
      EXPECT_NEAR(got[i], want[i], 1e-9) << "value " << i << " with the divider at " << to;
    }
  }
}

// --- updateVariables(changed) -------------------------------------------------------

TEST(LayoutSolverUpdate, ChangedLists_ExactlyTheMovedVariables) {
  const int panels = 6;
  std::vector<double> at;
  for (int k = 1; k < panels; ++k) at.push_back(k * 41.0);
  EdgesSplit split(panels, at);
  std::vector<Variable> all;
  for (const EdgesSplit::Box& box : split.views) {
    for (const Variable& v : {box.left, box.top, box.right, box.bottom}) all.push_back(v);
  }
  std::vector<Variable> changed;
  split.solver.updateVariables(&changed);
  // First update: every variable is new to the solver and is written.
  EXPECT_EQ(changed.size(), all.size() + 4);

  changed.clear();
  split.solver.updateVariables(&changed);
  EXPECT_TRUE(changed.empty());

  std::vector<double> before;
  for (const Variable& v : all) before.push_back(v.value());
  ASSERT_EQ(split.solver.updateConstant(split.positions[2], -(3 * 41.0 + 10)), Status::Ok);
  changed.clear();
  split.solver.updateVariables(&changed);
  ASSERT_FALSE(changed.empty());
  for (std::size_t i = 0; i < all.size(); ++i) {
    bool listed = std::find(changed.begin(), changed.end(), all[i]) != changed.end();
    EXPECT_EQ(listed, all[i].value() != before[i]) << "variable " << i;
  }
  // Listed once each.
  for (std::size_t i = 0; i < changed.size(); ++i) {
    for (std::size_t j = i + 1; j < changed.size(); ++j) EXPECT_NE(changed[i], changed[j]);
  }
  // Dragging back restores the frames, and the plain update agrees.
  ASSERT_EQ(split.solver.updateConstant(split.positions[2], -3 * 41.0), Status::Ok);
  split.solver.updateVariables();
  for (std::size_t i = 0; i < all.size(); ++i) EXPECT_DOUBLE_EQ(all[i].value(), before[i]) << i;
}


// Found by fuzzing: weak constraints with coefficients in the hundreds, added
// and removed around edit variables, leave a weight of rounding residue in
// the objective (-5e-7 on a slack no row bounds). Removing a held constraint
// then answered InternalError; the residue is dropped instead.
TEST(LayoutSolverRobustness, RoundingResidueInTheObjectiveIsNotUnbounded) {
  Solver s;
  Variable v[8] = {Variable("v0"), Variable("v1"), Variable("v2"), Variable("v3"),
                   Variable("v4"), Variable("v5"), Variable("v6"), Variable("v7")};
  std::map<int, Constraint> c;
  s.reset();
  s.addEditVariable(v[2], Strength{1.0f});
  s.reset();
  s.removeEditVariable(v[1]);
  s.suggestValue(v[1], -1.321275998114985e+308);
  s.suggestValue(v[3], -1.5302479408492495e+307);
  s.removeEditVariable(v[0]);
  s.addEditVariable(v[0], Strength{1.0f});
  s.addEditVariable(v[3], Strength{1.0f});
  s.suggestValue(v[2], -9.587697983094496e+307);
  s.suggestValue(v[0], -1);
  if(!c.count(4)) c.emplace(4, Constraint(Expression(std::vector<Term>{Term{v[0],-1},Term{v[0],+384.29796335549327},Term{v[1],+1},Term{v[3],-729.93091246779795}}, +4.9406564584124654e-324), Relation::LessThanOrEqual, Strength{(float)-3.40282e+38}));
  EXPECT_EQ(s.addConstraint(c.at(4)), Status::Ok);
  if(!c.count(5)) c.emplace(5, Constraint(Expression(std::vector<Term>{Term{v[3],+236},Term{v[1],+0},Term{v[1],-464}}, +149), Relation::LessThanOrEqual, Strength{(float)-2.06838e+38}));
  EXPECT_EQ(s.addConstraint(c.at(5)), Status::Ok);
  s.suggestValue(v[1], -1.321275998114985e+308);
  if(!c.count(6)) c.emplace(6, Constraint(Expression(std::vector<Term>{Term{v[0],+77.316395354627502},Term{v[0],-21.524604158448938},Term{v[0],-303},Term{v[1],-303}}, -303), Relation::GreaterThanOrEqual, Strength{(float)999}));
  EXPECT_EQ(s.addConstraint(c.at(6)), Status::Ok);
  EXPECT_EQ(s.removeConstraint(c.at(6)), Status::Ok);
  EXPECT_EQ(s.removeConstraint(c.at(6)), Status::UnknownConstraint);
  EXPECT_EQ(s.removeConstraint(c.at(5)), Status::Ok);
  s.addEditVariable(v[3], Strength{1.0f});
  s.suggestValue(v[2], 4.5823550890725376e+307);
  if(!c.count(7)) c.emplace(7, Constraint(Expression(std::vector<Term>{Term{v[0],-1},Term{v[0],+0},Term{v[0],+1e-300},Term{v[0],+0}}, -1), Relation::LessThanOrEqual, Strength{(float)999}));
  EXPECT_EQ(s.addConstraint(c.at(7)), Status::Ok);
  s.suggestValue(v[0], 0);
  if(!c.count(8)) c.emplace(8, Constraint(Expression(std::vector<Term>{Term{v[1],+1},Term{v[3],-729.93096071560149},Term{v[0],-744}}, +0), Relation::Equal, Strength{(float)-3.399e+38}));
  EXPECT_EQ(s.addConstraint(c.at(8)), Status::Ok);
  s.removeEditVariable(v[1]);
  if(!c.count(9)) c.emplace(9, Constraint(Expression(std::vector<Term>{Term{v[1],-464}}, +147), Relation::LessThanOrEqual, Strength{(float)-2.06838e+38}));
  EXPECT_EQ(s.addConstraint(c.at(9)), Status::Ok);
  EXPECT_EQ(s.removeConstraint(c.at(9)), Status::Ok);
  EXPECT_EQ(s.removeConstraint(c.at(9)), Status::UnknownConstraint);
  EXPECT_EQ(s.removeConstraint(c.at(9)), Status::UnknownConstraint);
  EXPECT_EQ(s.removeConstraint(c.at(9)), Status::UnknownConstraint);
  EXPECT_EQ(s.removeConstraint(c.at(9)), Status::UnknownConstraint);
  EXPECT_EQ(s.removeConstraint(c.at(9)), Status::UnknownConstraint);
  EXPECT_EQ(s.removeConstraint(c.at(9)), Status::UnknownConstraint);
  EXPECT_EQ(s.removeConstraint(c.at(9)), Status::UnknownConstraint);
  EXPECT_EQ(s.removeConstraint(c.at(9)), Status::UnknownConstraint);
  EXPECT_EQ(s.removeConstraint(c.at(6)), Status::UnknownConstraint);
  EXPECT_EQ(s.removeConstraint(c.at(9)), Status::UnknownConstraint);
  s.addEditVariable(v[0], Strength{1.0f});
  EXPECT_EQ(s.removeConstraint(c.at(8)), Status::Ok);
  s.updateVariables();
  for (const Variable& variable : v) EXPECT_TRUE(std::isfinite(variable.value()));
}

}  // namespace
}  // namespace talvo::layout
