// Small kernels on images, correlation of pictures, test signals, Gaussian kernels.
#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "tests/support/containers.h"
#include "tests/support/expect_message.h"
#include "tests/support/same_bits.h"
#include "zel/analysis/Zel_math2.h"

namespace zel {
namespace {

using Numbers = std::vector<double>;

constexpr int kMost = std::numeric_limits<int>::max();

TDouble2DArray noise(int rows, int columns, unsigned seed) {
  TDouble2DArray a(rows, columns);
  std::mt19937_64 random(seed);
  std::normal_distribution<double> normal;
  for (double& v : a) v = normal(random);
  return a;
}

double around(const TDouble2DArray& kernel, const TDouble2DArray& data, int r, int c) {
  const int n = static_cast<int>(kernel.Length(0)), rows = static_cast<int>(data.Length(0)),
            columns = static_cast<int>(data.Length(1));
  double sum = 0;
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < n; ++j) {
      sum += kernel(i, j) * data(std::clamp(r + i - n / 2, 0, rows - 1),
                                 std::clamp(c + j - n / 2, 0, columns - 1));
    }
  }
  return sum;
}

TEST(KernelConvolve, SumsAroundEveryCellAndReportsInnerCells) {
  for (const int n : {3, 5, 11}) {
    const auto kernel = noise(n, n, 1);
    for (const auto& [rows, columns] :
         {std::pair{1, 1}, {1, 40}, {40, 1}, {2, 9}, {11, 11}, {12, 90}, {61, 37}}) {
      const auto data = noise(rows, columns, 2);
      TDouble2DArray result;
      Numbers reported, expected;
      const auto report = [&](TObject* sender, int percent) {
        EXPECT_EQ(sender, nullptr);
        reported.push_back(percent);
      };
      ASSERT_EQ(KernelConvolve(kernel, data, result, report), 0);
      TDouble2DArray sums(rows, columns);
      for (int r = 0; r < rows; ++r) {
        for (int c = 0; c < columns; ++c) sums(r, c) = around(kernel, data, r, c);
      }
      EXPECT_EQ(result, sums);
      const int step = std::max(1, (rows - n) * (columns - n) / 100);
      const int inner = std::max(rows - n + 1, 0) * std::max(columns - n + 1, 0);
      for (int k = 1; k <= inner / step; ++k) expected.push_back(k);
      EXPECT_EQ(reported, expected) << n << ' ' << rows << ' ' << columns;
      auto inPlace = data;
      ASSERT_EQ(KernelConvolve(kernel, inPlace, inPlace, {}), 0);
      EXPECT_EQ(inPlace, result);
    }
  }
  TDouble2DArray result{{1}};
  const struct {
    int rows, columns, code;
  } refused[] = {{3, 4, -1}, {2, 2, -2}, {4, 3, -2}, {1, 1, -3}, {0, 0, -3}};
  for (const auto& [rows, columns, code] : refused) {
    EXPECT_EQ(KernelConvolve(noise(rows, columns, 1), result, result, {}), code) << rows;
  }
  EXPECT_EQ(result, (TDouble2DArray{{1}}));
  const auto kernel = noise(3, 3, 1);
  const auto data = noise(9, 9, 1);
  const auto stop = [](TObject*, int) { throw EZELError("stop"); };
  EXPECT_THROW(static_cast<void>(KernelConvolve(kernel, data, result, stop)), EZELError);
  test::expectFailuresHarmless<EZELMath2Error>(
      [&] { static_cast<void>(ApplyKirschKernel(1, data, result, {})); },
      "KernelConvolve: not enough memory", [&] { EXPECT_EQ(result, (TDouble2DArray{{1}})); },
      [&] { result = TDouble2DArray{{1}}; });
  EXPECT_EQ(KernelConvolve(kernel, {}, result, {}), 0);
  EXPECT_TRUE(result.empty());
}

// The kernel is the response to a unit impulse, turned round.
TEST(EdgeOperators, TurnClockwiseAroundTheirCentres) {
  TDouble2DArray impulse(5, 5), r;
  impulse(2, 2) = 1;
  const auto expectTurns = [&](auto apply, Numbers ring, double centre) {
    for (int direction = 0; direction < 8; ++direction) {
      ASSERT_EQ(apply(direction, impulse, r, {}), 0);
      EXPECT_EQ((Numbers{r(3, 3), r(3, 2), r(3, 1), r(2, 1), r(1, 1), r(1, 2), r(1, 3), r(2, 3)}),
                ring)
          << direction;
      EXPECT_EQ(r(2, 2), centre);
      std::rotate(ring.begin(), ring.end() - 1, ring.end());
    }
    for (const int direction : {-1, 8}) EXPECT_EQ(apply(direction, impulse, r, {}), -1);
  };
  expectTurns(ApplyCompassKernel, {-1, -1, -1, 1, 1, 1, 1, 1}, -2);
  expectTurns(ApplyKirschKernel, {-3, -3, -3, -3, 5, 5, 5, -3}, 0);
}

void fillWithNoise(TBitmap& image, unsigned seed) {
  std::mt19937 random(seed);
  for (int y = 0; y < image.Height(); ++y) {
    for (TColor& color : image.Row(y)) color = static_cast<TColor>(random() & 0xFFFFFFu);
  }
}

TEST(ImageCorrelation, IsThatOfThePixelsInTheAreas) {
  TBitmap a(17, 12), b(20, 15);
  fillWithNoise(a, 1);
  fillWithNoise(b, 2);
  const std::pair<TRect, TRect> areas[] = {{{0, 0, 16, 11}, {3, 2, 19, 13}},
                                           {{-4, -3, 12, 20}, {5, -1, 21, 22}},
                                           {{14, 10, 30, 30}, {-9, -9, 7, 11}},
                                           {{-40, 3, 14, 5}, {1, 13, 55, 15}}};
  for (int mode = icmRed; mode <= icmGrayValues; ++mode) {
    const auto value = [&](TColor color) {
      double hsi[3];
      const int r = RedOf(color), g = GreenOf(color), b = BlueOf(color);
      RGBtoHSI(r, g, b, hsi[0], hsi[1], hsi[2]);
      const double values[] = {
          1.0 * r, 1.0 * b, 1.0 * g, hsi[2], hsi[0], hsi[1], 1.0 * RGBtoGray(r, g, b)};
      return values[mode];
    };
    for (const auto& [area1, area2] : areas) {
      TCurveFit fit;
      const int right = area2.Left - area1.Left, down = area2.Top - area1.Top;
      for (int y = area1.Top; y <= area1.Bottom; ++y) {
        for (int x = area1.Left; x <= area1.Right; ++x) {
          fit.EnterStatValue(value(a.GetPixel(x, y)), value(b.GetPixel(x + right, y + down)));
        }
      }
      EXPECT_NEAR(CalcImgCorrelation(&a, &b, area1, area2, static_cast<TImgCompareMode>(mode)),
                  fit.GetRxy(), 1e-14)
          << mode;
    }
  }
  TBitmap wide(1300, 1), other(1300, 1);
  fillWithNoise(wide, 3);
  fillWithNoise(other, 4);
  TCurveFit fit;
  for (int x = 0; x < 1300; ++x) {
    fit.EnterStatValue(GreenOf(wide.GetPixel(x, 0)), GreenOf(other.GetPixel(x, 0)));
  }
  const TRect row{0, 0, 1299, 0};
  EXPECT_NEAR(CalcImgCorrelation(&wide, &other, row, row, icmGreen), fit.GetRxy(), 1e-15);
  const TRect all{0, 0, 16, 11};
  EXPECT_EQ(CalcImgCorrelation(&a, &a, all, all, icmHue), 1);
  EXPECT_EQ(CalcImgCorrelation(&a, nullptr, all, all, icmRed), 0);
  for (const TRect& area : {TRect{0, 0, 0, 1}, TRect{5, 5, 2, 2}}) {
    EXPECT_EQ(CalcImgCorrelation(&a, &b, area, area, icmRed), 0) << "two pixels, none";
  }
  const TRect huge{-kMost, -kMost, kMost, kMost};
  EXPECT_NEAR(CalcImgCorrelation(&a, &a, huge, huge, icmRed), 1, 1e-15);
  EXPECT_THROW_MSG(static_cast<void>(CalcImgCorrelation(&a, &b, all, {0, 0, 16, 12}, icmRed)),
                   EZELMath2Error, "image ranges to compare are not of equal size");
}

TEST(TestSignals, FollowTheirFormulas) {
  TDoubleArray y(50, 3.0);
  ASSERT_EQ(CreateSigmoidArray(y, 0.7, -2, 5, 20), 0);
  EXPECT_EQ(y[19], 0.5) << "half way up at the centre";
  for (int i = 1; i <= 50; ++i) {
    const double expected = 5 * (1 + std::tanh(0.35 * (i - 20))) / 2 - 2;
    ASSERT_NEAR(y[static_cast<std::size_t>(i - 1)], expected, 1e-14);
  }
  ASSERT_EQ(CreateSigmoidArray(y, 1e308, 0, 1, -kMost), 0);
  EXPECT_EQ(y[0], 1);
  ASSERT_EQ(CreateGaussianPeaks(TPeakParamsList{{10, 2, 3}, {30, 5, -1}}, y), 0);
  EXPECT_NEAR(y[11], 3 / std::exp(1) - std::exp(-std::pow(18 / 5.0, 2)), 1e-15);
  ASSERT_EQ(CreateGaussianPeaks(TPeakParamsList{{1, 1, 1}}, y), 0);
  EXPECT_DOUBLE_EQ(y[26], std::exp(-26 * 26));
  y[29] = -1;
  TDoubleArray two(2, 9.0);
  EXPECT_EQ(CreateSigmoidArray(two, 1, 0, 1, 1), -1);
  EXPECT_EQ(CreateGaussianPeaks({}, two), -2);
  EXPECT_EQ(two, TDoubleArray(2, 9.0));
  EXPECT_EQ(CreateGaussianPeaks({}, y), -1);
  EXPECT_NEAR(y[29], -1, 1e-15) << "unchanged";

  TDouble2DArray peak(6, 9), flat(1, 9);
  ASSERT_EQ(Gauss2D(2, 7, 1.5, 4, peak), 0);
  EXPECT_NEAR(peak(4, 4), 4 * std::exp(-(9 + 4) / 2.25), 1e-15);
  EXPECT_EQ(Gauss2D(2, 7, 0, 4, peak), -1);
  EXPECT_EQ(Gauss2D(2, 7, 0, 4, flat), -2);
  EXPECT_EQ(peak(1, 6), 4);
}

TEST(GaussKernels, DependOnTheDistance) {
  const TVector x{1, 2}, y{3, 2, 1};
  const TMatrix rows{{9, 9, 9}, {3, 2, 1}};
  EXPECT_DOUBLE_EQ(CalcGaussKernel(&x, &y, 2), std::exp(-5 / 4.0));
  EXPECT_DOUBLE_EQ(CalcGaussKernelMat(&x, &rows, 2, 2), std::exp(-5 / 4.0));
  EXPECT_DOUBLE_EQ(CalcGaussKernelMat(&y, &rows, 9, 2), std::exp(-14 / 4.0));
  EXPECT_DOUBLE_EQ(CalcGaussKernel(&y, &x, 2), std::exp(-1.0)) << "the third element has no part";
  EXPECT_EQ(CalcGaussKernel(&x, &y, 0), std::exp(-20));
  EXPECT_EQ(CalcGaussKernel(&x, &x, 1e-200), 1);
  EXPECT_EQ(CalcGaussKernel(&x, nullptr, 1), 0);
  TMatrix wide;
  wide.Resize(1000, 1);
  wide.Fill(0.125);
  const TVector shorter(Numbers(600, 0.5));
  EXPECT_DOUBLE_EQ(CalcGaussKernelMat(&shorter, &wide, 1, 3), std::exp(-90.625 / 9.0));
  for (int c = 1; c <= 1000; ++c) wide.SetVal(c, 1, 1.0 / c);
  test::expectSameBits([&] { return Numbers{CalcGaussKernelMat(&shorter, &wide, 1, 3)}; });
}

}  // namespace
}  // namespace zel
