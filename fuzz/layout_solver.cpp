// The layout solver driven by sequences of operations: add and remove
// constraints, add, remove and suggest edit variables, update constants,
// write values back, reset; numbers from ordinary to extreme (huge, tiny,
// NaN, infinite).
//
// Beyond the sanitizers and libFuzzer's time limit it checks what the
// solver promises: a call that reports failure leaves the constraint or
// edit variable as it was (held or not held), and bookkeeping answers agree
// with the statuses.
#include <fuzzer/FuzzedDataProvider.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <vector>

#include "platform/AppKit/layout/Solver.hpp"

namespace {

using talvo::layout::Constraint;
using talvo::layout::Expression;
using talvo::layout::Relation;
using talvo::layout::Solver;
using talvo::layout::Status;
using talvo::layout::Strength;
using talvo::layout::Term;
using talvo::layout::Variable;

enum Op : uint8_t {
  AddConstraint,
  RemoveConstraint,
  AddEdit,
  RemoveEdit,
  Suggest,
  UpdateConstant,
  UpdateVariables,
  Reset,
  OpCount
};

double Number(FuzzedDataProvider &in) {
  static const double kExtremes[] = {0.0,
                                     1.0,
                                     -1.0,
                                     8.0,
                                     1e-300,
                                     1e300,
                                     -1e300,
                                     std::numeric_limits<double>::max(),
                                     std::numeric_limits<double>::min(),
                                     std::numeric_limits<double>::denorm_min(),
                                     std::numeric_limits<double>::infinity(),
                                     std::numeric_limits<double>::quiet_NaN(),
                                     1e15,
                                     0.5};
  switch (in.ConsumeIntegralInRange<int>(0, 3)) {
    case 0: return in.PickValueInArray(kExtremes);
    case 1: return in.ConsumeIntegralInRange<int>(-1000, 1000);
    case 2: return in.ConsumeFloatingPoint<double>();
    default: return in.ConsumeProbability<double>() * 2000.0 - 1000.0;
  }
}

Strength PickStrength(FuzzedDataProvider &in) {
  static const float kPriorities[] = {1000.0f, 999.0f, 750.0f, 490.0f, 250.0f, 50.0f, 1.0f,
                                      0.0f,    -5.0f,  1e-30f, 1001.0f};
  if (in.ConsumeBool()) return Strength{in.PickValueInArray(kPriorities)};
  return Strength{in.ConsumeFloatingPoint<float>()};
}

void Check(bool condition, const char *what) {
  if (!condition) {
    std::fprintf(stderr, "layout solver: %s\n", what);
    std::abort();
  }
}

}  // namespace

// TALVO_FUZZ_TRACE=1 prints each operation, to turn a reproducer into a test.
bool Tracing() {
  static const bool tracing = std::getenv("TALVO_FUZZ_TRACE") != nullptr;
  return tracing;
}

void TraceConstraint(const char *what, const Constraint &c, Status status) {
  if (!Tracing()) return;
  std::fprintf(stderr, "%s #%llu:", what, (unsigned long long)c.id());
  for (const Term &term : c.expression().terms()) {
    std::fprintf(stderr, " %+.17g*%s", term.coefficient, term.variable.name().c_str());
  }
  std::fprintf(stderr, " %+.17g %s 0 @%g -> %s\n", c.expression().constant(),
               c.relation() == Relation::Equal ? "==" : (c.relation() == Relation::LessThanOrEqual ? "<=" : ">="),
               c.strength().priority, talvo::layout::StatusName(status));
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  FuzzedDataProvider in(data, size);
  std::vector<Variable> variables;
  for (int i = 0, n = in.ConsumeIntegralInRange<int>(1, 8); i < n; ++i) {
    variables.emplace_back("v" + std::to_string(i));
  }
  std::vector<Constraint> constraints;
  Solver solver;

  for (int step = 0; step < 64 && in.remaining_bytes() > 0; ++step) {
    switch (in.ConsumeIntegralInRange<int>(0, OpCount - 1)) {
      case AddConstraint: {
        std::vector<Term> terms;
        for (int t = 0, n = in.ConsumeIntegralInRange<int>(0, 4); t < n; ++t) {
          terms.push_back(Term{variables[in.ConsumeIntegralInRange<size_t>(0, variables.size() - 1)],
                               Number(in)});
        }
        static const Relation kRelations[] = {Relation::Equal, Relation::LessThanOrEqual,
                                              Relation::GreaterThanOrEqual};
        Constraint c(Expression(std::move(terms), Number(in)), in.PickValueInArray(kRelations),
                     PickStrength(in));
        // Sometimes the same handle again: a duplicate.
        if (!constraints.empty() && in.ConsumeIntegralInRange<int>(0, 7) == 0) {
          c = constraints[in.ConsumeIntegralInRange<size_t>(0, constraints.size() - 1)];
        }
        bool held = solver.hasConstraint(c);
        Status status = solver.addConstraint(c);
        TraceConstraint("add", c, status);
        Check(status != Status::Ok || solver.hasConstraint(c), "added but not held");
        if (status != Status::Ok) Check(solver.hasConstraint(c) == held, "a failed add changed it");
        constraints.push_back(c);
        break;
      }
      case RemoveConstraint: {
        if (constraints.empty()) break;
        const Constraint &c = constraints[in.ConsumeIntegralInRange<size_t>(0, constraints.size() - 1)];
        bool held = solver.hasConstraint(c);
        Status status = solver.removeConstraint(c);
        TraceConstraint("remove", c, status);
        if ((status == Status::Ok) != held) {
          std::fprintf(stderr, "remove answered %s for a constraint %s\n",
                       talvo::layout::StatusName(status), held ? "held" : "not held");
        }
        Check((status == Status::Ok) == held, "remove disagrees with hasConstraint");
        Check(!solver.hasConstraint(c), "removed but still held");
        break;
      }
      case AddEdit: {
        const Variable &v = variables[in.ConsumeIntegralInRange<size_t>(0, variables.size() - 1)];
        bool had = solver.hasEditVariable(v);
        Status status = solver.addEditVariable(v, PickStrength(in));
        if (Tracing()) std::fprintf(stderr, "edit %s -> %s\n", v.name().c_str(), talvo::layout::StatusName(status));
        if (status == Status::Ok) Check(!had && solver.hasEditVariable(v), "edit add bookkeeping");
        else Check(solver.hasEditVariable(v) == had, "a failed edit add changed it");
        break;
      }
      case RemoveEdit: {
        const Variable &v = variables[in.ConsumeIntegralInRange<size_t>(0, variables.size() - 1)];
        bool had = solver.hasEditVariable(v);
        Status status = solver.removeEditVariable(v);
        if (Tracing()) std::fprintf(stderr, "unedit %s -> %s\n", v.name().c_str(), talvo::layout::StatusName(status));
        Check((status == Status::Ok) == had, "edit remove disagrees with hasEditVariable");
        Check(!solver.hasEditVariable(v), "edit removed but still there");
        break;
      }
      case Suggest: {
        const Variable &v = variables[in.ConsumeIntegralInRange<size_t>(0, variables.size() - 1)];
        double value = Number(in);
        Status status = solver.suggestValue(v, value);
        if (Tracing()) std::fprintf(stderr, "suggest %s %.17g -> %s\n", v.name().c_str(), value, talvo::layout::StatusName(status));
        break;
      }
      case UpdateConstant: {
        if (constraints.empty()) break;
        const Constraint &c = constraints[in.ConsumeIntegralInRange<size_t>(0, constraints.size() - 1)];
        double before = 0.0;
        bool held = solver.constantOf(c, before);
        double wanted = Number(in);
        Status status = solver.updateConstant(c, wanted);
        if (Tracing()) std::fprintf(stderr, "constant #%llu %.17g -> %s\n", (unsigned long long)c.id(), wanted, talvo::layout::StatusName(status));
        double after = 0.0;
        Check(solver.constantOf(c, after) == held, "updateConstant changed whether it is held");
        if (held && status == Status::Ok) Check(after == wanted, "the new constant is not kept");
        if (held && status != Status::Ok) {
          Check(after == before || (std::isnan(after) && std::isnan(before)),
                "a failed update changed the constant");
        }
        break;
      }
      case UpdateVariables:
        solver.updateVariables();
        break;
      case Reset:
        if (in.ConsumeIntegralInRange<int>(0, 3) == 0) {
          solver.reset();
          if (Tracing()) std::fprintf(stderr, "reset\n");
          for (const Constraint &c : constraints) Check(!solver.hasConstraint(c), "reset kept a constraint");
        }
        break;
    }
  }
  solver.updateVariables();
  return 0;
}
