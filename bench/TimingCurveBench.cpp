// Evaluating an ease curve: once per animated value per frame.
#include <benchmark/benchmark.h>

#include "platform/QuartzCore/engine/TimingCurve.hpp"

namespace {

void BM_EaseInEaseOut(benchmark::State &state) {
  talvo::animation::TimingCurve curve(0.42, 0, 0.58, 1);
  double t = 0;
  for (auto _ : state) {
    t = t >= 1 ? 0 : t + 0.001;
    benchmark::DoNotOptimize(curve.solve(t));
  }
}
BENCHMARK(BM_EaseInEaseOut);

}  // namespace
