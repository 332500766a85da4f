// Lanczos-3 resampling of premultiplied RGBA, one thread: 4096² -> 1024² and
// 512² -> 1536² with the vector loops and with the portable ones, beside the
// floor of reading the source once and writing the result once.
// `LanczosBench --write_input=DIR` writes the same pictures as raw RGBA
// (in4096.raw, in512.raw) for bench/compare-lanczos.py to give the peers.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "core/images/Lanczos.hpp"

using namespace talvo::images;

namespace {

// Hard edges, a zone plate and a fade to transparent, premultiplied.
std::vector<uint8_t> Picture(int side) {
  std::vector<uint8_t> p(size_t(side) * size_t(side) * 4);
  for (int y = 0; y < side; ++y) {
    for (int x = 0; x < side; ++x) {
      double u = double(x) / side, v = double(y) / side;
      double r2 = (u - 0.5) * (u - 0.5) + (v - 0.5) * (v - 0.5);
      int a = v < 0.75 ? 255 : int(255 * (1 - (v - 0.75) * 4));
      int r = int(255 * (u < 0.5 ? 0.5 + 0.5 * std::cos(r2 * side * 1.2) : u));
      int g = ((x / 16) + (y / 16)) & 1 ? 230 : 20;
      int b = int(255 * v);
      uint8_t *q = &p[(size_t(y) * size_t(side) + size_t(x)) * 4];
      q[0] = uint8_t(r * a / 255), q[1] = uint8_t(g * a / 255), q[2] = uint8_t(b * a / 255);
      q[3] = uint8_t(a);
    }
  }
  return p;
}

void Resample(benchmark::State &state, int from, int to, ResampleCode code) {
  std::vector<uint8_t> src = Picture(from), dst(size_t(to) * size_t(to) * 4);
  PixelView in{src.data(), from, from, ptrdiff_t(from) * 4};
  PixelView out{dst.data(), to, to, ptrdiff_t(to) * 4};
  for (auto _ : state) {
    if (!ResampleLanczos3(in, out, code)) state.SkipWithError("resample failed");
    benchmark::DoNotOptimize(dst.data());
    benchmark::ClobberMemory();
  }
  state.counters["vector"] = code == ResampleCode::Automatic && ResampleHasVectorCode();
}

void BM_Lanczos_4096_to_1024(benchmark::State &s) {
  Resample(s, 4096, 1024, ResampleCode::Automatic);
}
void BM_Lanczos_4096_to_1024_Portable(benchmark::State &s) {
  Resample(s, 4096, 1024, ResampleCode::Portable);
}
void BM_Lanczos_512_to_1536(benchmark::State &s) {
  Resample(s, 512, 1536, ResampleCode::Automatic);
}
void BM_Lanczos_512_to_1536_Portable(benchmark::State &s) {
  Resample(s, 512, 1536, ResampleCode::Portable);
}

// Reading every source byte once and writing every result byte once.
void BM_Floor_4096_to_1024(benchmark::State &state) {
  std::vector<uint8_t> src = Picture(4096), dst(size_t(1024) * 1024 * 4);
  for (auto _ : state) {
    uint64_t sum = 0;
    const uint64_t *words = reinterpret_cast<const uint64_t *>(src.data());
    for (size_t i = 0; i < src.size() / 8; ++i) sum += words[i];
    std::memset(dst.data(), int(sum & 0x7f), dst.size());
    benchmark::DoNotOptimize(dst.data());
    benchmark::ClobberMemory();
  }
}

BENCHMARK(BM_Lanczos_4096_to_1024)->Unit(benchmark::kMillisecond)->MinTime(1.0);
BENCHMARK(BM_Lanczos_4096_to_1024_Portable)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Lanczos_512_to_1536)->Unit(benchmark::kMillisecond)->MinTime(1.0);
BENCHMARK(BM_Lanczos_512_to_1536_Portable)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Floor_4096_to_1024)->Unit(benchmark::kMillisecond);

bool WriteInputs(const std::string &dir) {
  for (int side : {4096, 512}) {
    std::vector<uint8_t> p = Picture(side);
    std::string path = dir + "/in" + std::to_string(side) + ".raw";
    FILE *f = std::fopen(path.c_str(), "wb");
    if (!f) return false;
    bool ok = std::fwrite(p.data(), 1, p.size(), f) == p.size();
    ok = std::fclose(f) == 0 && ok;
    if (!ok) return false;
  }
  return true;
}

}  // namespace

int main(int argc, char **argv) {
  const char *flag = "--write_input=";
  for (int i = 1; i < argc; ++i) {
    if (std::strncmp(argv[i], flag, std::strlen(flag)) == 0) {
      return WriteInputs(argv[i] + std::strlen(flag)) ? 0 : 1;
    }
  }
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
