#include "core/images/Lanczos.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <new>

#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>
#define TALVO_LANCZOS_X86 1
#else
#define TALVO_LANCZOS_X86 0
#endif

namespace talvo::images {

namespace {

// The intermediate rows hold each channel as a signed 16-bit value with this
// many fraction bits: the ringing of the horizontal pass (about -35 to 290)
// survives to the vertical pass instead of being clipped to 0...255, and
// rounding there costs 1/128 of a level.
constexpr int kMidFractionBits = 6;
// Fraction bits of the weights. Horizontally 255 * sum|w| * 2^bits must fit
// 31 bits; vertically (290 << 6) * sum|w| * 2^bits must.
constexpr int kHorizontalMaxBits = 20;
constexpr int kVerticalMaxBits = 16;
// Sizes beyond this are refused: the ring rows and the kernels are sized by
// them, and a larger image is not something a toolkit resamples on the main
// thread.
constexpr int kMaxSide = 1 << 16;

double Sinc(double x) {
  if (x == 0) return 1;
  double px = M_PI * x;
  return std::sin(px) / px;
}

double Lanczos3(double x) {
  x = std::fabs(x);
  return x < 3 ? Sinc(x) * Sinc(x / 3) : 0;
}

bool ValidAxis(ResampleAxis axis) {
  return std::isfinite(axis.scale) && axis.scale > 0 && std::isfinite(axis.offset);
}

bool ValidView(const PixelView &view) {
  return view.pixels != nullptr && view.width > 0 && view.height > 0 && view.width <= kMaxSide &&
         view.height <= kMaxSide && view.bytesPerRow >= ptrdiff_t(view.width) * 4;
}

int16_t Saturate16(int32_t value) {
  return int16_t(std::clamp<int32_t>(value, std::numeric_limits<int16_t>::min(),
                                     std::numeric_limits<int16_t>::max()));
}

// --- Portable loops (also the reference for the vector ones) -------------

// One source row through the horizontal kernel into a row of the ring.
void HorizontalRowPortable(const uint8_t *src, const Kernel &kernel, int16_t *mid) {
  const int shift = kernel.bits - kMidFractionBits;
  const int32_t round = 1 << (shift - 1);
  const size_t stride = size_t(kernel.maxCount);
  for (size_t x = 0; x < kernel.taps.size(); ++x) {
    const KernelTaps &t = kernel.taps[x];
    const int16_t *w = &kernel.weights[x * stride];
    const uint8_t *p = src + size_t(t.first) * 4;
    int32_t acc[4] = {round, round, round, round};
    for (int k = 0; k < t.count; ++k, p += 4) {
      for (int c = 0; c < 4; ++c) acc[c] += int32_t(p[c]) * w[k];
    }
    for (int c = 0; c < 4; ++c) mid[x * 4 + c] = Saturate16(acc[c] >> shift);
  }
}

// One destination row from `rows` (one per tap) of the ring.
void VerticalRowPortable(const int16_t *const *rows, const int16_t *w, int count, int width,
                         int bits, uint8_t *dst) {
  const int shift = bits + kMidFractionBits;
  const int32_t round = 1 << (shift - 1);
  for (int x = 0; x < width; ++x) {
    int32_t acc[4] = {round, round, round, round};
    for (int k = 0; k < count; ++k) {
      const int16_t *m = rows[k] + size_t(x) * 4;
      for (int c = 0; c < 4; ++c) acc[c] += int32_t(m[c]) * w[k];
    }
    int alpha = std::clamp(acc[3] >> shift, 0, 255);
    for (int c = 0; c < 3; ++c) dst[x * 4 + c] = uint8_t(std::clamp(acc[c] >> shift, 0, alpha));
    dst[x * 4 + 3] = uint8_t(alpha);
  }
}

// --- AVX2 loops ----------------------------------------------------------

#if TALVO_LANCZOS_X86

// The horizontal kernel laid out for 4-tap steps over a source row that is
// first regrouped (below): each position's taps start at a multiple of 4
// (zero weights in front) and are padded with zero weights to a multiple of
// 4. A step is then one load, one multiply-add and one add.
struct QuadPlan {
  std::vector<int> group;  // first 4-pixel group read
  std::vector<int> quads;
  std::vector<size_t> start;     // index into weights
  std::vector<int16_t> weights;  // 4 per quad
};

QuadPlan MakeQuadPlan(const Kernel &kernel) {
  QuadPlan plan;
  size_t positions = kernel.taps.size();
  plan.group.resize(positions);
  plan.quads.resize(positions);
  plan.start.resize(positions);
  for (size_t x = 0; x < positions; ++x) {
    const KernelTaps &t = kernel.taps[x];
    int lead = t.first & 3;
    int padded = (lead + t.count + 3) & ~3;
    plan.group[x] = t.first >> 2;
    plan.quads[x] = padded / 4;
    plan.start[x] = plan.weights.size();
    plan.weights.resize(plan.weights.size() + size_t(padded), 0);
    const int16_t *w = &kernel.weights[x * size_t(kernel.maxCount)];
    std::copy(w, w + t.count, plan.weights.begin() + ptrdiff_t(plan.start[x]) + lead);
  }
  return plan;
}

// Regroups a source row once, so that the taps do not shuffle: each group of
// 4 pixels becomes r0 r1 r2 r3 g0 g1 g2 g3 b0 .. a3 as 16-bit values. The
// row buffer holds whole groups; the last one is zero-filled.
__attribute__((target("avx2"))) void RegroupRowAVX2(const uint8_t *src, int width,
                                                    int16_t *grouped) {
  const __m128i transpose = _mm_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15);
  const int whole = width / 4;
  for (int g = 0; g < whole; ++g) {
    __m128i px = _mm_loadu_si128(reinterpret_cast<const __m128i *>(src + size_t(g) * 16));
    _mm256_storeu_si256(reinterpret_cast<__m256i *>(grouped + size_t(g) * 16),
                        _mm256_cvtepu8_epi16(_mm_shuffle_epi8(px, transpose)));
  }
  if (whole * 4 < width) {
    alignas(16) uint8_t tail[16] = {};
    std::memcpy(tail, src + size_t(whole) * 16, size_t(width - whole * 4) * 4);
    __m128i px = _mm_load_si128(reinterpret_cast<const __m128i *>(tail));
    _mm256_storeu_si256(reinterpret_cast<__m256i *>(grouped + size_t(whole) * 16),
                        _mm256_cvtepu8_epi16(_mm_shuffle_epi8(px, transpose)));
  }
}

// Sums one position's quads. Multiplied pairwise by w0 w1 w2 w3 repeated,
// each 32-bit lane holds r0w0 + r1w1, r2w2 + r3w3, g0w0 + g1w1, ...; two
// neighbouring lanes make one channel.
__attribute__((target("avx2"))) inline __m256i QuadSum(const int16_t *p, const int16_t *w,
                                                       int quads) {
  __m256i acc0 = _mm256_setzero_si256(), acc1 = _mm256_setzero_si256();
  int q = 0;
  for (; q + 1 < quads; q += 2, p += 32, w += 8) {
    int64_t w0, w1;
    std::memcpy(&w0, w, sizeof w0);
    std::memcpy(&w1, w + 4, sizeof w1);
    acc0 = _mm256_add_epi32(
        acc0, _mm256_madd_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i *>(p)),
                                _mm256_set1_epi64x(w0)));
    acc1 = _mm256_add_epi32(
        acc1, _mm256_madd_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i *>(p + 16)),
                                _mm256_set1_epi64x(w1)));
  }
  if (q < quads) {
    int64_t w0;
    std::memcpy(&w0, w, sizeof w0);
    acc0 = _mm256_add_epi32(
        acc0, _mm256_madd_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i *>(p)),
                                _mm256_set1_epi64x(w0)));
  }
  return _mm256_add_epi32(acc0, acc1);
}

__attribute__((target("avx2"))) void HorizontalRowAVX2(const int16_t *grouped, const QuadPlan &plan,
                                                       int shift, int16_t *mid) {
  const __m256i round = _mm256_set1_epi32(1 << (shift - 1));
  const __m128i count = _mm_cvtsi32_si128(shift);
  // Lanes after hadd: A.r A.g B.r B.g | A.b A.a B.b B.a.
  const __m256i order = _mm256_setr_epi32(0, 1, 4, 5, 2, 3, 6, 7);
  const size_t positions = plan.group.size();
  for (size_t x = 0; x < positions; x += 2) {
    __m256i a =
        QuadSum(grouped + size_t(plan.group[x]) * 16, &plan.weights[plan.start[x]], plan.quads[x]);
    __m256i b = x + 1 < positions ? QuadSum(grouped + size_t(plan.group[x + 1]) * 16,
                                            &plan.weights[plan.start[x + 1]], plan.quads[x + 1])
                                  : _mm256_setzero_si256();
    __m256i sums = _mm256_permutevar8x32_epi32(_mm256_hadd_epi32(a, b), order);
    sums = _mm256_sra_epi32(_mm256_add_epi32(sums, round), count);
    __m256i packed = _mm256_permute4x64_epi64(_mm256_packs_epi32(sums, sums), 0x08);
    __m128i two = _mm256_castsi256_si128(packed);
    if (x + 1 < positions) {
      _mm_storeu_si128(reinterpret_cast<__m128i *>(mid + x * 4), two);
    } else {
      _mm_storel_epi64(reinterpret_cast<__m128i *>(mid + x * 4), two);
    }
  }
}

// Eight destination pixels (32 channels) at a time; rows are taken in
// pairs, interleaved so that one multiply-add applies both rows' weights
// (`pairs` holds them as w_even | w_odd << 16; an odd count is padded with
// the last row at weight 0). The ring rows are padded to a multiple of 8
// pixels, so reads never run off.
__attribute__((target("avx2"))) inline __m128i FinishFour(__m256i lo, __m256i hi,
                                                          __m128i shiftCount) {
  const __m128i alphaMask = _mm_setr_epi8(3, 3, 3, 3, 7, 7, 7, 7, 11, 11, 11, 11, 15, 15, 15, 15);
  lo = _mm256_sra_epi32(lo, shiftCount);
  hi = _mm256_sra_epi32(hi, shiftCount);
  // Per 128-bit lane, packing lo with hi restores the channel order.
  __m256i words = _mm256_packs_epi32(lo, hi);
  __m256i bytes = _mm256_packus_epi16(words, words);
  __m128i px = _mm256_castsi256_si128(_mm256_permute4x64_epi64(bytes, 0x08));
  return _mm_min_epu8(px, _mm_shuffle_epi8(px, alphaMask));  // colour <= alpha
}

__attribute__((target("avx2"))) void VerticalRowAVX2(const int16_t *const *rows,
                                                     const int32_t *pairs, int pairCount, int width,
                                                     int bits, uint8_t *dst) {
  const int shift = bits + kMidFractionBits;
  const __m256i round = _mm256_set1_epi32(1 << (shift - 1));
  const __m128i shiftCount = _mm_cvtsi32_si128(shift);
  for (int x = 0; x < width; x += 8) {
    const size_t at = size_t(x) * 4;
    __m256i lo0 = round, hi0 = round, lo1 = round, hi1 = round;
    for (int k = 0; k < pairCount; ++k) {
      const int16_t *ra = rows[2 * k] + at, *rb = rows[2 * k + 1] + at;
      const __m256i weights = _mm256_set1_epi32(pairs[k]);
      __m256i a = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(ra));
      __m256i b = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(rb));
      lo0 = _mm256_add_epi32(lo0, _mm256_madd_epi16(_mm256_unpacklo_epi16(a, b), weights));
      hi0 = _mm256_add_epi32(hi0, _mm256_madd_epi16(_mm256_unpackhi_epi16(a, b), weights));
      a = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(ra + 16));
      b = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(rb + 16));
      lo1 = _mm256_add_epi32(lo1, _mm256_madd_epi16(_mm256_unpacklo_epi16(a, b), weights));
      hi1 = _mm256_add_epi32(hi1, _mm256_madd_epi16(_mm256_unpackhi_epi16(a, b), weights));
    }
    __m128i first = FinishFour(lo0, hi0, shiftCount);
    __m128i second = FinishFour(lo1, hi1, shiftCount);
    if (x + 8 <= width) {
      _mm_storeu_si128(reinterpret_cast<__m128i *>(dst + at), first);
      _mm_storeu_si128(reinterpret_cast<__m128i *>(dst + at + 16), second);
    } else {
      alignas(16) uint8_t tail[32];
      _mm_store_si128(reinterpret_cast<__m128i *>(tail), first);
      _mm_store_si128(reinterpret_cast<__m128i *>(tail + 16), second);
      std::memcpy(dst + at, tail, size_t(width - x) * 4);
    }
  }
}

bool CPUHasAVX2() {
  static const bool has = __builtin_cpu_supports("avx2");
  return has;
}

#endif  // TALVO_LANCZOS_X86

bool Resample(const PixelView &source, const PixelView &destination, ResampleAxis ax,
              ResampleAxis ay, bool vector) {
  Kernel kx = MakeLanczos3Kernel(source.width, destination.width, ax, kHorizontalMaxBits);
  Kernel ky = MakeLanczos3Kernel(source.height, destination.height, ay, kVerticalMaxBits);
  if (kx.taps.empty() || ky.taps.empty()) return false;
  const int dw = destination.width, dh = destination.height;
  // Ring rows are padded to whole 8-pixel steps for the vertical loop.
  const size_t rowLength = size_t((dw + 7) & ~7) * 4;
  const int ringRows = ky.maxCount;
  std::vector<int16_t> ring;
  std::vector<const int16_t *> rows;
  std::vector<int32_t> pairs;
  std::vector<int16_t> grouped;
#if TALVO_LANCZOS_X86
  QuadPlan plan;
#endif
  try {
    ring.assign(rowLength * size_t(ringRows), 0);
    rows.resize(size_t(ringRows) + 1);
    pairs.resize(size_t(ringRows + 1) / 2);
#if TALVO_LANCZOS_X86
    if (vector) {
      plan = MakeQuadPlan(kx);
      grouped.assign(size_t((source.width + 3) / 4) * 16, 0);
    }
#endif
  } catch (const std::bad_alloc &) {
    return false;
  }
  // Rows [low, high) of the horizontal pass are in the ring, row r in slot
  // r % ringRows.
  int low = 0, high = 0;
  for (int y = 0; y < dh; ++y) {
    const KernelTaps &t = ky.taps[size_t(y)];
    if (t.first < low || t.first >= high) low = high = t.first;
    for (; high < t.first + t.count; ++high) {
      const uint8_t *src = source.pixels + ptrdiff_t(high) * source.bytesPerRow;
      int16_t *mid = &ring[size_t(high % ringRows) * rowLength];
#if TALVO_LANCZOS_X86
      if (vector) {
        RegroupRowAVX2(src, source.width, grouped.data());
        HorizontalRowAVX2(grouped.data(), plan, kx.bits - kMidFractionBits, mid);
        continue;
      }
#endif
      HorizontalRowPortable(src, kx, mid);
    }
    low = std::max(low, high - ringRows);
    for (int k = 0; k < t.count; ++k) {
      rows[size_t(k)] = &ring[size_t((t.first + k) % ringRows) * rowLength];
    }
    const int16_t *w = &ky.weights[size_t(y) * size_t(ky.maxCount)];
    uint8_t *dst = destination.pixels + ptrdiff_t(y) * destination.bytesPerRow;
#if TALVO_LANCZOS_X86
    if (vector) {
      rows[size_t(t.count)] = rows[size_t(t.count - 1)];
      const int pairCount = (t.count + 1) / 2;
      for (int k = 0; k < pairCount; ++k) {
        uint16_t odd = 2 * k + 1 < t.count ? uint16_t(w[2 * k + 1]) : 0;
        pairs[size_t(k)] = int32_t(uint32_t(uint16_t(w[2 * k])) | uint32_t(odd) << 16);
      }
      VerticalRowAVX2(rows.data(), pairs.data(), pairCount, dw, ky.bits, dst);
      continue;
    }
#endif
    VerticalRowPortable(rows.data(), w, t.count, dw, ky.bits, dst);
  }
  return true;
}

}  // namespace

Kernel MakeLanczos3Kernel(int source, int destination, ResampleAxis axis, int maxBits) {
  Kernel kernel;
  if (source <= 0 || destination <= 0 || source > kMaxSide || destination > kMaxSide ||
      !ValidAxis(axis) || maxBits < 1 || maxBits > 22) {
    return kernel;
  }
  // Shrinking widens the kernel to cover every source pixel under the
  // destination pixel; the scale is bounded so the tap count stays sane.
  const double stretch = axis.scale < 1 ? 1 / std::max(axis.scale, 1.0 / kMaxSide) : 1;
  const double support = 3 * stretch;
  const int window = int(std::ceil(2 * support)) + 2;
  std::vector<double> weights, dense;
  std::vector<int> firsts(static_cast<size_t>(destination)), counts(firsts.size());
  try {
    weights.assign(size_t(destination) * size_t(window), 0);
  } catch (const std::bad_alloc &) {
    return kernel;
  }
  double largest = 0;
  for (int i = 0; i < destination; ++i) {
    // The centre in source pixels; pixel k's centre lies at k + 0.5.
    const double centre = (i + 0.5 + axis.offset) / axis.scale;
    const double lowEdge = std::floor(centre - support);
    // Far outside the source every tap lands on the edge pixel.
    const double clampedLow = std::clamp(lowEdge, -support - 2, source + support + 2);
    const int low = int(clampedLow);
    dense.assign(size_t(window), 0);
    int first = std::clamp(low, 0, source - 1);
    int last = first;
    double sum = 0;
    for (int j = 0; j < window; ++j) {
      const int k = low + j;
      const double w =
          (clampedLow == lowEdge) ? Lanczos3((k + 0.5 - centre) / stretch) : (j == 0 ? 1.0 : 0.0);
      if (w == 0) continue;
      // Samples beyond an edge read the edge pixel: their weight moves there.
      const int at = std::clamp(k, 0, source - 1);
      dense[size_t(at - first)] += w;
      last = std::max(last, at);
      sum += w;
    }
    if (!(sum > 0)) {
      // Not expected for Lanczos-3 at unit spacing; stay defined anyway.
      dense.assign(size_t(window), 0);
      dense[0] = 1;
      sum = 1;
      last = first;
    }
    int count = last - first + 1;
    for (int j = 0; j < count; ++j) {
      dense[size_t(j)] /= sum;
      largest = std::max(largest, std::fabs(dense[size_t(j)]));
    }
    std::copy(dense.begin(), dense.begin() + count, weights.begin() + ptrdiff_t(i) * window);
    firsts[size_t(i)] = first;
    counts[size_t(i)] = count;
  }
  // As many fraction bits as the largest weight leaves room for in 16 bits
  // (with slack for the correction below).
  int bits = maxBits;
  while (bits > 1 && largest * double(1 << bits) + 64 > 32767) --bits;
  kernel.bits = bits;
  const int32_t one = 1 << bits;
  std::vector<int32_t> quantised(weights.size());
  for (int i = 0; i < destination; ++i) {
    const double *w = &weights[size_t(i) * size_t(window)];
    int32_t *q = &quantised[size_t(i) * size_t(window)];
    int count = counts[size_t(i)];
    int32_t total = 0;
    int biggest = 0;
    for (int j = 0; j < count; ++j) {
      q[j] = int32_t(std::lround(w[j] * one));
      total += q[j];
      if (q[j] > q[biggest]) biggest = j;
    }
    // Exactly one in fixed point, so that a uniform row stays uniform.
    q[biggest] += one - total;
    // Taps that rounded to nothing are dropped from both ends.
    int begin = 0, end = count;
    while (begin < end - 1 && q[begin] == 0) ++begin;
    while (end > begin + 1 && q[end - 1] == 0) --end;
    std::copy(q + begin, q + end, q);
    firsts[size_t(i)] += begin;
    counts[size_t(i)] = end - begin;
    kernel.maxCount = std::max(kernel.maxCount, end - begin);
  }
  kernel.taps.resize(size_t(destination));
  kernel.weights.assign(size_t(destination) * size_t(kernel.maxCount), 0);
  for (int i = 0; i < destination; ++i) {
    const int32_t *q = &quantised[size_t(i) * size_t(window)];
    kernel.taps[size_t(i)] = {firsts[size_t(i)], counts[size_t(i)]};
    std::copy(q, q + counts[size_t(i)], kernel.weights.begin() + ptrdiff_t(i) * kernel.maxCount);
  }
  return kernel;
}

bool ResampleLanczos3(const PixelView &source, const PixelView &destination, ResampleAxis x,
                      ResampleAxis y, ResampleCode code) {
  if (!ValidView(source) || !ValidView(destination) || !ValidAxis(x) || !ValidAxis(y)) {
    return false;
  }
  bool vector = code == ResampleCode::Automatic && ResampleHasVectorCode();
  return Resample(source, destination, x, y, vector);
}

bool ResampleLanczos3(const PixelView &source, const PixelView &destination, ResampleCode code) {
  if (!ValidView(source) || !ValidView(destination)) return false;
  return ResampleLanczos3(source, destination, {double(destination.width) / source.width, 0},
                          {double(destination.height) / source.height, 0}, code);
}

bool ResampleHasVectorCode() {
#if TALVO_LANCZOS_X86
  return CPUHasAVX2();
#else
  return false;
#endif
}

}  // namespace talvo::images
