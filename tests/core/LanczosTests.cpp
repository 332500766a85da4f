#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "core/images/Lanczos.hpp"

using namespace talvo::images;

namespace {

struct Picture {
  int width = 0, height = 0;
  std::vector<uint8_t> bytes;
  PixelView view() { return {bytes.data(), width, height, ptrdiff_t(width) * 4}; }
};

Picture Blank(int width, int height, uint8_t fill = 0) {
  return {width, height, std::vector<uint8_t>(size_t(width) * size_t(height) * 4, fill)};
}

// Hard edges (ringing), a zone plate (aliasing), noise, a transparent hole
// and a fade to transparent; premultiplied.
Picture TestPicture(int width, int height) {
  Picture p = Blank(width, height);
  uint32_t seed = 12345;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      double u = (x + 0.5) / width, v = (y + 0.5) / height;
      double r2 = (u - 0.5) * (u - 0.5) + (v - 0.5) * (v - 0.5);
      seed = seed * 1664525u + 1013904223u;
      int r = int(255 * (u < 0.5 ? 0.5 + 0.5 * std::cos(r2 * width * 1.2) : u));
      int g = ((x / 7) + (y / 5)) % 2 ? 240 : 10;
      int b = u > 0.8 ? int(seed >> 24) : int(255 * v);
      double a = v < 0.7 ? 1.0 : std::max(0.0, 1.0 - (v - 0.7) * 3);
      if ((u - 0.3) * (u - 0.3) + (v - 0.3) * (v - 0.3) < 0.01) a = 0;
      int alpha = int(std::lround(255 * a));
      uint8_t *q = &p.bytes[(size_t(y) * width + x) * 4];
      q[0] = uint8_t((r * alpha + 127) / 255);
      q[1] = uint8_t((g * alpha + 127) / 255);
      q[2] = uint8_t((b * alpha + 127) / 255);
      q[3] = uint8_t(alpha);
    }
  }
  return p;
}

// The textbook definition, in doubles and written out independently: every
// tap of the stretched kernel, edge samples clamped, weights normalised, one
// rounding at the end, colour clamped to alpha.
double L3(double x) {
  auto sinc = [](double t) { return t == 0 ? 1.0 : std::sin(M_PI * t) / (M_PI * t); };
  return std::fabs(x) < 3 ? sinc(x) * sinc(x / 3) : 0;
}

struct RefTaps {
  std::vector<int> index;
  std::vector<double> weight;
};

std::vector<RefTaps> ReferenceTaps(int source, int destination, ResampleAxis axis) {
  double stretch = axis.scale < 1 ? 1 / axis.scale : 1;
  std::vector<RefTaps> out(static_cast<size_t>(destination));
  for (int i = 0; i < destination; ++i) {
    double centre = (i + 0.5 + axis.offset) / axis.scale;
    double sum = 0;
    for (int k = int(std::floor(centre - 3 * stretch)) - 1;
         k <= int(std::ceil(centre + 3 * stretch)) + 1; ++k) {
      double w = L3((k + 0.5 - centre) / stretch);
      if (w == 0) continue;
      out[size_t(i)].index.push_back(std::clamp(k, 0, source - 1));
      out[size_t(i)].weight.push_back(w);
      sum += w;
    }
    for (double &w : out[size_t(i)].weight) w /= sum;
  }
  return out;
}

Picture Reference(const Picture &src, int dw, int dh, ResampleAxis ax, ResampleAxis ay) {
  auto tx = ReferenceTaps(src.width, dw, ax), ty = ReferenceTaps(src.height, dh, ay);
  std::vector<double> mid(size_t(dw) * size_t(src.height) * 4);
  for (int y = 0; y < src.height; ++y)
    for (int x = 0; x < dw; ++x)
      for (size_t k = 0; k < tx[size_t(x)].index.size(); ++k)
        for (int c = 0; c < 4; ++c)
          mid[(size_t(y) * dw + x) * 4 + c] +=
              tx[size_t(x)].weight[k] *
              src.bytes[(size_t(y) * src.width + size_t(tx[size_t(x)].index[k])) * 4 + c];
  Picture out = Blank(dw, dh);
  for (int y = 0; y < dh; ++y)
    for (int x = 0; x < dw; ++x) {
      double acc[4] = {0, 0, 0, 0};
      for (size_t k = 0; k < ty[size_t(y)].index.size(); ++k)
        for (int c = 0; c < 4; ++c)
          acc[c] +=
              ty[size_t(y)].weight[k] * mid[(size_t(ty[size_t(y)].index[k]) * dw + x) * 4 + c];
      long alpha = std::clamp(std::lround(acc[3]), 0L, 255L);
      uint8_t *q = &out.bytes[(size_t(y) * dw + x) * 4];
      for (int c = 0; c < 3; ++c) q[c] = uint8_t(std::clamp(std::lround(acc[c]), 0L, alpha));
      q[3] = uint8_t(alpha);
    }
  return out;
}

int MaxDifference(const Picture &a, const Picture &b) {
  int worst = 0;
  for (size_t i = 0; i < a.bytes.size(); ++i)
    worst = std::max(worst, std::abs(a.bytes[i] - b.bytes[i]));
  return worst;
}

struct Case {
  int sw, sh, dw, dh;
};

}  // namespace

TEST(Lanczos, WithinOneLevelOfTheDoublePrecisionReference) {
  // Whole shrinks, fractional shrinks, enlargements and mixed axes; widths
  // that are not multiples of the vector steps.
  const Case cases[] = {{512, 256, 128, 64}, {200, 300, 66, 100}, {64, 48, 192, 144},
                        {97, 61, 211, 37},   {33, 40, 7, 13},     {300, 5, 100, 9}};
  for (const Case &c : cases) {
    SCOPED_TRACE(testing::Message() << c.sw << "x" << c.sh << " -> " << c.dw << "x" << c.dh);
    Picture src = TestPicture(c.sw, c.sh);
    ResampleAxis ax{double(c.dw) / c.sw, 0}, ay{double(c.dh) / c.sh, 0};
    Picture expected = Reference(src, c.dw, c.dh, ax, ay);
    Picture fast = Blank(c.dw, c.dh), portable = Blank(c.dw, c.dh);
    ASSERT_TRUE(ResampleLanczos3(src.view(), fast.view()));
    ASSERT_TRUE(ResampleLanczos3(src.view(), portable.view(), ax, ay, ResampleCode::Portable));
    EXPECT_LE(MaxDifference(fast, expected), 1);
    // The vector loops compute the same integers in another order.
    EXPECT_EQ(fast.bytes, portable.bytes);
  }
}

TEST(Lanczos, OffsetsAndScalesOtherThanTheSizeRatio) {
  // Core Image crops a scaled image: 200 x 300 at 1/3 keeps 66 columns and
  // may start part-way in; the rows are read from an offset.
  Picture src = TestPicture(200, 300);
  ResampleAxis ax{1.0 / 3, 0}, ay{1.0 / 3, 0.5};
  Picture expected = Reference(src, 66, 99, ax, ay);
  Picture out = Blank(66, 99);
  ASSERT_TRUE(ResampleLanczos3(src.view(), out.view(), ax, ay));
  EXPECT_LE(MaxDifference(out, expected), 1);
}

TEST(Lanczos, UniformImagesStayExactlyUniformToTheEdge) {
  const uint8_t colours[][4] = {
      {255, 0, 0, 255}, {10, 20, 30, 40}, {255, 255, 255, 255}, {0, 0, 0, 0}, {1, 0, 0, 1}};
  const Case cases[] = {{64, 64, 16, 16}, {17, 9, 51, 27}, {100, 100, 33, 71}};
  for (const auto &colour : colours) {
    for (const Case &c : cases) {
      Picture src = Blank(c.sw, c.sh);
      for (size_t i = 0; i < src.bytes.size(); ++i) src.bytes[i] = colour[i % 4];
      Picture out = Blank(c.dw, c.dh, 0x55);
      ASSERT_TRUE(ResampleLanczos3(src.view(), out.view()));
      for (size_t i = 0; i < out.bytes.size(); ++i) {
        ASSERT_EQ(out.bytes[i], colour[i % 4]) << "byte " << i;
      }
    }
  }
}

TEST(Lanczos, EdgeColourIsNotBlendedWithTransparency) {
  // A red frame around a blue centre: the corners of a 4x shrink read only
  // red (the clamped edge), never the transparent outside.
  Picture src = Blank(64, 64);
  for (int y = 0; y < 64; ++y)
    for (int x = 0; x < 64; ++x) {
      bool centre = x >= 24 && x < 40 && y >= 24 && y < 40;
      uint8_t *q = &src.bytes[(size_t(y) * 64 + x) * 4];
      q[0] = centre ? 0 : 255, q[1] = 0, q[2] = centre ? 255 : 0, q[3] = 255;
    }
  Picture out = Blank(16, 16);
  ASSERT_TRUE(ResampleLanczos3(src.view(), out.view()));
  for (int corner : {0, 15, 15 * 16, 16 * 16 - 1}) {
    const uint8_t *q = &out.bytes[size_t(corner) * 4];
    EXPECT_EQ(q[0], 255);
    EXPECT_EQ(q[1], 0);
    EXPECT_EQ(q[2], 0);
    EXPECT_EQ(q[3], 255);
  }
}

TEST(Lanczos, ColourNeverExceedsAlphaAfterRinging) {
  // Opaque white next to a transparent field rings above alpha without the
  // clamp; premultiplied colour must stay <= alpha.
  Picture src = Blank(40, 40);
  for (int y = 0; y < 40; ++y)
    for (int x = 0; x < 20; ++x) std::fill_n(&src.bytes[(size_t(y) * 40 + x) * 4], 4, 255);
  for (Case c : {Case{40, 40, 120, 120}, Case{40, 40, 13, 13}}) {
    Picture out = Blank(c.dw, c.dh);
    ASSERT_TRUE(ResampleLanczos3(src.view(), out.view()));
    int overshoot = 0;
    for (size_t i = 0; i < out.bytes.size(); i += 4) {
      for (int ch = 0; ch < 3; ++ch) overshoot += out.bytes[i + size_t(ch)] > out.bytes[i + 3];
    }
    EXPECT_EQ(overshoot, 0);
  }
}

TEST(Lanczos, RowPaddingOnBothSidesIsRespected) {
  Picture src = TestPicture(30, 20);
  std::vector<uint8_t> padded(size_t(20) * 200, 0xEE);
  for (int y = 0; y < 20; ++y)
    std::copy_n(&src.bytes[size_t(y) * 120], 120, &padded[size_t(y) * 200]);
  std::vector<uint8_t> out(size_t(7) * 64, 0xCD);
  ASSERT_TRUE(ResampleLanczos3({padded.data(), 30, 20, 200}, {out.data(), 11, 7, 64}));
  Picture tight = Blank(11, 7);
  ASSERT_TRUE(ResampleLanczos3(src.view(), tight.view()));
  for (int y = 0; y < 7; ++y) {
    EXPECT_TRUE(
        std::equal(&out[size_t(y) * 64], &out[size_t(y) * 64 + 44], &tight.bytes[size_t(y) * 44]));
    EXPECT_EQ(out[size_t(y) * 64 + 44], 0xCD);  // beyond the row: untouched
  }
}

TEST(Lanczos, BadInputIsRefusedAndNothingIsWritten) {
  Picture src = TestPicture(8, 8);
  Picture dst = Blank(4, 4, 0x77);
  const double nan = std::nan(""), inf = INFINITY;
  EXPECT_FALSE(ResampleLanczos3({nullptr, 8, 8, 32}, dst.view()));
  EXPECT_FALSE(ResampleLanczos3(src.view(), {nullptr, 4, 4, 16}));
  EXPECT_FALSE(ResampleLanczos3({src.bytes.data(), 0, 8, 32}, dst.view()));
  EXPECT_FALSE(ResampleLanczos3({src.bytes.data(), -8, 8, 32}, dst.view()));
  EXPECT_FALSE(ResampleLanczos3(src.view(), {dst.bytes.data(), 4, -1, 16}));
  EXPECT_FALSE(ResampleLanczos3({src.bytes.data(), 8, 8, 31}, dst.view()));  // rows overlap
  EXPECT_FALSE(ResampleLanczos3({src.bytes.data(), 1 << 20, 1, 1 << 22}, dst.view()));
  EXPECT_FALSE(ResampleLanczos3(src.view(), dst.view(), {nan, 0}, {1, 0}));
  EXPECT_FALSE(ResampleLanczos3(src.view(), dst.view(), {1, 0}, {inf, 0}));
  EXPECT_FALSE(ResampleLanczos3(src.view(), dst.view(), {0, 0}, {1, 0}));
  EXPECT_FALSE(ResampleLanczos3(src.view(), dst.view(), {-2, 0}, {1, 0}));
  EXPECT_FALSE(ResampleLanczos3(src.view(), dst.view(), {1, nan}, {1, 0}));
  EXPECT_TRUE(std::all_of(dst.bytes.begin(), dst.bytes.end(), [](uint8_t b) { return b == 0x77; }));
  // Sampling far outside the source reads the edge pixel.
  ASSERT_TRUE(ResampleLanczos3(src.view(), dst.view(), {0.5, 1e9}, {0.5, -1e9}));
  EXPECT_TRUE(std::equal(dst.bytes.begin(), dst.bytes.begin() + 4, &src.bytes[7 * 4]));
}

TEST(Lanczos, KernelWeightsSumToOneInFixedPointAndStayInside) {
  for (ResampleAxis axis :
       {ResampleAxis{0.25, 0}, ResampleAxis{3, 0}, ResampleAxis{0.01, 0}, ResampleAxis{1, 0.5}}) {
    const int source = 100, destination = int(std::ceil(source * axis.scale));
    Kernel k = MakeLanczos3Kernel(source, destination, axis, 16);
    ASSERT_EQ(k.taps.size(), size_t(destination));
    for (size_t i = 0; i < k.taps.size(); ++i) {
      int32_t sum = 0;
      for (int j = 0; j < k.taps[i].count; ++j)
        sum += k.weights[i * size_t(k.maxCount) + size_t(j)];
      EXPECT_EQ(sum, 1 << k.bits);
      EXPECT_GE(k.taps[i].first, 0);
      EXPECT_LE(k.taps[i].first + k.taps[i].count, source);
    }
  }
  // 6 taps when enlarging, 6 / scale when shrinking.
  EXPECT_LE(MakeLanczos3Kernel(100, 300, {3, 0}, 14).maxCount, 7);
  EXPECT_GE(MakeLanczos3Kernel(400, 100, {0.25, 0}, 14).maxCount, 23);
  EXPECT_TRUE(MakeLanczos3Kernel(0, 10, {1, 0}, 14).taps.empty());
}
