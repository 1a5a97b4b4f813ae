#include "zel/kernels/sums.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <numeric>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "tests/support/exact.h"
#include "tests/support/hostile.h"
#include "tests/support/simd_targets.h"
#include "zel/kernels/moments.h"

namespace zel::kernels {
namespace {

using test::BigInt;
using test::ExactPowerSums;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kMax = std::numeric_limits<double>::max();

/// s is the exact sum, given as an integer times 2^-scale, to the promised accuracy, and hi is its
/// rounding.
void expectAccurate(DoubleDouble s, const BigInt& exact, const BigInt& magnitudes, int scale) {
  EXPECT_EQ(s.hi, s.hi + s.lo);
  if (!std::isfinite(s.hi) || std::abs(s.hi) < 1e-270) {  // no room for a low part
    EXPECT_EQ(s.hi, BigInt::quotient<double>(exact, 1, -scale));
    return;
  }
  const BigInt unit = BigInt(1) << (scale - 1074);
  const BigInt error = exact - (BigInt::scaled(s.hi) + BigInt::scaled(s.lo)) * unit;
  // Either small beside the result or, after cancellation, beside the terms.
  const double relative = exact.isZero() ? 1 : std::abs(BigInt::quotient<double>(error, exact));
  EXPECT_TRUE(relative <= 0x1p-57 ||
              std::abs(BigInt::quotient<double>(error, magnitudes)) <= 0x1p-84)
      << relative;
}

BigInt magnitudeOf(const BigInt& x) { return x.isNegative() ? -x : x; }

TEST(Sums, MatchExactArithmeticOnHostileData) {
  for (const std::size_t n : test::kLengths) {
    for (const auto& [name, x] : test::hostileData(n)) {
      SCOPED_TRACE(name + " n=" + std::to_string(n));
      const ExactPowerSums exact(x);
      BigInt magnitudes;
      for (const double v : x) magnitudes = magnitudes + magnitudeOf(BigInt::scaled(v));
      expectAccurate(sum(x), exact.s1, magnitudes, 1074);
      expectAccurate(sumOfSquares(x), exact.s2, exact.s2, 2148);
      EXPECT_LE(test::ulpsApart(mean(x), n > 0 ? exact.mean() : 0), name == "cancelling" ? 2 : 0);
    }
  }
}

TEST(Sums, ProductsAndDifferencesEnterExactly) {
  const auto data = test::hostileData(141);
  for (const auto& [nameX, x] : data) {
    for (const auto& [nameY, y] : data) {
      SCOPED_TRACE(nameX + " with " + nameY);
      BigInt products, magnitudes, squares;
      for (std::size_t i = 0; i < x.size(); ++i) {
        const BigInt p = BigInt::scaled(x[i]) * BigInt::scaled(y[i]);
        const BigInt d = BigInt::scaled(x[i]) - BigInt::scaled(y[i]);
        products = products + p;
        magnitudes = magnitudes + magnitudeOf(p);
        squares = squares + d * d;
      }
      expectAccurate(sumOfProducts(x, y), products, magnitudes, 2148);
      expectAccurate(sumOfSquaredDifferences(x, y), squares, squares, 2148);
    }
  }
}

TEST(Sums, NonFiniteElementsActLikeInAPlainLoop) {
  for (const std::size_t n : {1u, 20u, 3000u}) {
    std::vector<double> x(n, 1.5);
    x[n / 2] = -kInf;
    EXPECT_EQ(sum(x).hi, -kInf);
    EXPECT_EQ(mean(x), -kInf);
    EXPECT_EQ(sumOfSquares(x).hi, kInf);
    EXPECT_EQ(euclideanNorm(x), kInf);
    EXPECT_EQ(sumOfProducts(x, x).hi, kInf);
    x.push_back(kInf);
    EXPECT_TRUE(std::isnan(sum(x).hi));
    EXPECT_EQ(sumOfSquares(x).hi, kInf);
    x[0] = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(std::isnan(sumOfSquares(x).hi));
    EXPECT_TRUE(std::isnan(euclideanNorm(x)));
  }
}

TEST(Sums, IntermediatesMayLeaveTheDoubleRange) {
  std::vector<double> x(40, kMax);
  EXPECT_EQ(sum(x).hi, kInf);
  EXPECT_EQ(mean(x), kMax);
  EXPECT_EQ(mean(std::vector<double>{kMax, 0, 0}), kMax / 3);
  for (int i = 0; i < 39; ++i) x.push_back(-kMax);
  EXPECT_EQ(sum(x).hi, kMax);
  x.push_back(-kMax);
  x.push_back(3e-310);
  EXPECT_EQ(sum(x).hi, 3e-310);
  EXPECT_DOUBLE_EQ(euclideanNorm(std::vector<double>{3e200, -4e200}), 5e200);
  EXPECT_DOUBLE_EQ(euclideanNorm(std::vector<double>{3e-200, 4e-200}), 5e-200);
  EXPECT_DOUBLE_EQ(euclideanDistance(std::vector<double>{3e300, 0}, std::vector<double>{0, -4e300}),
                   5e300);
  // The shorter of two spans decides.
  EXPECT_EQ(
      sumOfProducts(std::vector<double>{1e200, 1e200, 2, 7}, std::vector<double>{1e200, -1e200, 3})
          .hi,
      6);
}

TEST(Sums, IntegersAreExact) {
  std::mt19937_64 random(7);
  std::vector<std::int32_t> x(777), y(777);
  for (auto& v : x) v = static_cast<std::int32_t>(random());
  for (auto& v : y) v = static_cast<std::int32_t>(random());
  x[3] = y[3] = std::numeric_limits<std::int32_t>::min();
  std::int64_t total = 0;
  for (const auto v : x) total += v;
  EXPECT_EQ(sum(x).hi, static_cast<double>(total));
  EXPECT_EQ(integerSum(x), total);
  BigInt products;
  for (std::size_t i = 0; i < x.size(); ++i) products = products + BigInt(x[i]) * BigInt(y[i]);
  EXPECT_EQ(sumOfProducts(x, y).hi, BigInt::quotient<double>(products, 1));
  EXPECT_EQ(sumOfSquares(x).hi, ExactPowerSums(x).sumOfSquares());
}

TEST(Sums, ShiftedCrossProducts) {
  const std::vector<double> x{1, 2, 3}, y{4, 5, 6}, one{7};
  EXPECT_EQ(shiftedCrossProduct(x, y, 1), 2 * 4 + 3 * 5);
  EXPECT_EQ(shiftedCrossProduct(x, y, -1), 1 * 5 + 2 * 6);
  EXPECT_EQ(shiftedCrossProduct(x, y, 2), 0) << "an overlap of one element counts as none";
  EXPECT_EQ(shiftedCrossProduct(one, one, 0), 0);
  const std::vector<std::int32_t> i{1, 2, 3}, j{4, 5, 6};
  EXPECT_EQ(integerShiftedCrossProduct(i, j, 1), 1 * 5 + 2 * 6);
  EXPECT_EQ(integerShiftedCrossProduct(i, j, -2), 3 * 4);
  for (const auto shift :
       {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()}) {
    EXPECT_EQ(shiftedCrossProduct(x, y, shift), 0);
    EXPECT_EQ(integerShiftedCrossProduct(i, j, shift), 0);
  }
}

TEST(Means, KeepDigitsAndRange) {
  using V = std::vector<double>;
  EXPECT_EQ(geometricMean(V{1, 2, 4}), 2);
  EXPECT_EQ(geometricMean(V{4, 0, 1}), 0);
  EXPECT_EQ(geometricMean(V{0, -1}), std::nullopt);
  EXPECT_EQ(geometricMean(V(1000, 3e-300)), 3e-300);
  EXPECT_EQ(geometricMean(V(999, kMax)), kMax);
  EXPECT_EQ(geometricMean(V{1e300, 1e-300}), 1);
  EXPECT_EQ(geometricMean(V{2, kInf}), kInf);
  EXPECT_EQ(harmonicMean(std::vector<std::int32_t>{3, 6}), 4);
  EXPECT_EQ(harmonicMean(V{1, 0}), std::nullopt);
  EXPECT_EQ(harmonicMean(V{1, -2}), std::nullopt);
  EXPECT_EQ(harmonicMean(V(5, 4e-320)), 4e-320) << "1 / x is beyond the double range";
  EXPECT_EQ(harmonicMean(V{kInf, 1}), 2);
  // python3 -c "from mpmath import *; mp.dps=40; print(fprod(range(1,101))**(mpf(1)/100),
  // 10000/fsum(mpf(1)/k for k in range(1,10001)))"
  std::vector<std::int32_t> many(10000);
  std::iota(many.begin(), many.end(), 1);
  EXPECT_EQ(geometricMean(std::span(many).first(100)), 37.99268934483429240);
  EXPECT_EQ(harmonicMean(V(many.begin(), many.end())), 1021.700297618584556);
}

/// Every result of the reductions, to be compared bit by bit.
std::array<double, 13> allResults(const std::vector<double>& x, const std::vector<double>& y) {
  const DoubleDouble a = sum(x), b = sumOfSquares(x), c = sumOfProducts(x, y),
                     d = sumOfSquaredDifferences(x, y);
  const auto [mean, variance] = meanVariance(x);
  const auto [skewness, kurtosis] = shape(x, ShapeForm::population);
  return {a.hi,
          a.lo,
          b.hi,
          b.lo,
          c.hi,
          c.lo,
          d.hi,
          d.lo,
          mean,
          variance,
          skewness,
          kurtosis,
          pearsonCorrelation(x, y)};
}

// Factors too large to be split, with products of ordinary size: without a fused multiply-add the
// error terms need another way.
TEST(Sums, HugeTimesTinyHasTheSameBitsOnEveryInstructionSet) {
  std::mt19937_64 random(5);
  std::vector<double> x(300), y(300);
  for (std::size_t i = 0; i < x.size(); ++i) {
    const int exponent = i % 3 == 0 ? 1010 : i % 3 == 1 ? -1010 : 0;
    x[i] = std::ldexp(1 + static_cast<double>(random() >> 12) * 0x1p-52, exponent);
    y[i] = std::ldexp(1 + static_cast<double>(random() >> 12) * 0x1p-52, -exponent);
  }
  BigInt exact;
  for (std::size_t i = 0; i < x.size(); ++i)
    exact = exact + BigInt::scaled(x[i]) * BigInt::scaled(y[i]);
  const DoubleDouble expected = sumOfProducts(x, y);
  expectAccurate(expected, exact, exact, 2148);
  test::forEachTarget([&] {
    EXPECT_EQ(sumOfProducts(x, y).hi, expected.hi);
    EXPECT_EQ(sumOfProducts(x, y).lo, expected.lo);
  });
}

TEST(Sums, HaveTheSameBitsOnEveryInstructionSet) {
  for (const std::size_t n : {0u, 1u, 7u, 100u, 2047u, 5003u}) {
    const auto data = test::hostileData(n);
    for (std::size_t i = 0; i < data.size(); ++i) {
      SCOPED_TRACE(data[i].name + " n=" + std::to_string(n));
      const auto& x = data[i].values;
      const auto& y = data[(i + 1) % data.size()].values;
      const auto expected = allResults(x, y);
      test::forEachTarget([&] {
        const auto results = allResults(x, y);
        for (std::size_t k = 0; k < results.size(); ++k) {
          EXPECT_TRUE(test::sameValue(expected[k], results[k]))
              << k << ": " << expected[k] << " " << results[k];
        }
      });
    }
  }
}

}  // namespace
}  // namespace zel::kernels
