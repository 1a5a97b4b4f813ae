#include "zel/kernels/sums.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "tests/support/exact.h"
#include "tests/support/same_bits.h"
#include "zel/kernels/moments.h"
#include "zel/kernels/split_sums.h"

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

/// Sum, sum of squares, mean and variance against exact arithmetic, which find some data harder.
void expectExact(const std::vector<double>& x, const std::string& name) {
  SCOPED_TRACE(name + " n=" + std::to_string(x.size()));
  const ExactPowerSums exact(x);
  const double exactMean = x.empty() ? 0 : exact.mean();
  BigInt magnitudes;
  for (const double v : x) magnitudes = magnitudes + magnitudeOf(BigInt::scaled(v));
  expectAccurate(sum(x), exact.s1, magnitudes, 1074);
  expectAccurate(sumOfSquares(x), exact.s2, exact.s2, 2148);
  EXPECT_LE(test::ulpsApart(mean(x), exactMean), name == "cancelling" ? 2 : 0);
  const MeanVariance mv = meanVariance(x);
  EXPECT_LE(test::ulpsApart(mv.mean, exactMean), name == "cancelling" ? 2 : 1);
  EXPECT_LE(test::ulpsApart(mv.variance, x.size() < 3 ? 1 : exact.variance()), 2)
      << mv.variance << " expected " << exact.variance();
}

TEST(Sums, MatchExactArithmeticOnHostileData) {
  for (const std::size_t n : test::kLengths) {
    for (const auto& [name, x] : test::hostileData(n)) expectExact(x, name);
  }
  std::mt19937_64 random(3);
  std::normal_distribution<double> normal;
  std::vector<double> x(20000);
  for (const double offset : {1e6, 1e12, 5.0}) {
    for (auto& v : x) v = offset + normal(random);
    expectExact(x, "long with offset");
  }
  // The mean of centred data is pure rounding noise of the centring, and still has to be right.
  const double centre = mean(x);
  for (auto& v : x) v -= centre;
  expectExact(x, "long and centred");
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

// Factors too large to be split, with products of ordinary size: without a fused multiply-add the
// error terms need another way.
TEST(Sums, HugeTimesTinyHasTheSameBitsOnEveryInstructionSet) {
  std::mt19937_64 random(5);
  std::vector<double> x(300), y(300);
  BigInt exact;
  for (std::size_t i = 0; i < x.size(); ++i) {
    const int exponent = i % 3 == 0 ? 1010 : i % 3 == 1 ? -1010 : 0;
    x[i] = std::ldexp(1 + static_cast<double>(random() >> 12) * 0x1p-52, exponent);
    y[i] = std::ldexp(1 + static_cast<double>(random() >> 12) * 0x1p-52, -exponent);
    exact = exact + BigInt::scaled(x[i]) * BigInt::scaled(y[i]);
  }
  test::expectSameBits([&] {
    const DoubleDouble s = sumOfProducts(x, y);
    expectAccurate(s, exact, exact, 2148);
    return std::vector{s.hi, s.lo};
  });
}

TEST(Sums, HaveTheSameBitsOnEveryInstructionSet) {
  for (const std::size_t n : {0u, 1u, 7u, 100u, 2047u, 5003u}) {
    const auto data = test::hostileData(n);
    for (std::size_t i = 0; i < data.size(); ++i) {
      SCOPED_TRACE(data[i].name + " n=" + std::to_string(n));
      const auto& x = data[i].values;
      const auto& y = data[(i + 1) % data.size()].values;
      test::expectSameBits([&] {
        const auto [mean, variance] = meanVariance(x);
        const auto [skewness, kurtosis] = shape(x, ShapeForm::population);
        std::vector results{mean, variance, skewness, kurtosis, pearsonCorrelation(x, y)};
        for (const DoubleDouble s :
             {sum(x), sumOfSquares(x), sumOfProducts(x, y), sumOfSquaredDifferences(x, y)}) {
          results.insert(results.end(), {s.hi, s.lo});
        }
        return results;
      });
    }
  }
}

/// |exact * 2^-scale - value| <= error.
void expectWithinBound(const BoundedSum& s, const BigInt& exact, int scale) {
  if (!std::isfinite(s.error)) return;
  const BigInt value =
      (BigInt::scaled(s.value.hi) + BigInt::scaled(s.value.lo)) * (BigInt(1) << (scale - 1074));
  EXPECT_LE(std::abs(BigInt::quotient<double>(exact - value, 1, -scale)), s.error);
}

/// Data made for the checks of the units: what is too large for the first unit, or only in one
/// lane, or cancels at once, or shrinks from run to run.
std::vector<test::NamedData> unitBreakers(std::size_t n) {
  auto all = test::hostileData(n);
  const auto add = [&](const char* name, auto value) {
    std::vector<double> x(n);
    for (std::size_t i = 0; i < n; ++i) x[i] = value(i);
    all.push_back({name, std::move(x)});
  };
  add("pair of outliers in one lane", [](std::size_t i) {
    return i == 40 ? 1e30 : i == 56 ? -1e30 : 0.1;
  });
  add("one outlier in the last lane",
      [n](std::size_t i) { return i == n - 1 - n % 16 ? 3e14 : 1.1; });
  add("falls with every run",
      [](std::size_t i) { return std::ldexp(1.7, -9 * static_cast<int>(i / 2048)); });
  add("rises with every run",
      [](std::size_t i) { return std::ldexp(-1.3, 9 * static_cast<int>(i / 2048)); });
  add("at the limit of the check", [](std::size_t i) { return i < 16 ? 1.0 : 63.999; });
  add("just past the limit", [](std::size_t i) {
    return i < 16 ? 1.0 : i % 5 == 0 ? 64.5 : -64.5;
  });
  return all;
}

TEST(SplitSums, BoundsHoldOnHostileDataWithTheSameBitsOnEveryInstructionSet) {
  for (const std::size_t n : {16u, 17u, 129u, 1450u, 2048u, 2051u, 7003u}) {
    for (const auto& data : unitBreakers(n)) {
      const auto& x = data.values;
      SCOPED_TRACE(data.name + " n=" + std::to_string(n));
      expectWithinBound(splitSum(x.data(), n), ExactPowerSums(x).s1, 1074);
      for (const double centre : {0.0, x[n / 2]}) {
        std::vector<double> d(n);
        for (std::size_t i = 0; i < n; ++i) d[i] = x[i] - centre;
        if (std::isinf(d[0] - d[n - 1])) continue;
        const ExactPowerSums exact(d);
        const SplitMoments m = splitMoments(x.data(), n, centre);
        expectWithinBound(m.sum, exact.s1, 1074);
        expectWithinBound(m.squares, exact.s2, 2148);
      }
      test::expectSameBits([&] {
        const SplitMoments m = splitMoments(x.data(), n, x[n / 2]);
        std::vector<double> results;
        for (const BoundedSum& s : {splitSum(x.data(), n), m.sum, m.squares}) {
          results.insert(results.end(), {s.value.hi, s.value.lo, s.error});
        }
        return results;
      });
    }
  }
}

// If the bounds were useless, every caller would silently take the slow way.
TEST(SplitSums, BoundsAreTightOnOrdinaryDataAndInfiniteOnUnsuitable) {
  for (const auto& [name, x] : test::hostileData(5000)) {
    if (name != "uniform" && name != "offset -40" && name != "outlier first" && name != "sorted")
      continue;
    const BoundedSum s = splitSum(x.data(), x.size());
    EXPECT_LE(s.error, 0x1p-57 * std::abs(s.value.hi)) << name;
    const SplitMoments m = splitMoments(x.data(), x.size(), 0);
    EXPECT_LE(m.squares.error, 0x1p-58 * m.squares.value.hi) << name;
  }
  for (const double bad : {std::nan(""), kInf, 1e200}) {
    for (const std::size_t at : {0u, 100u, 2999u}) {
      std::vector<double> x(3000, 0.5);
      x[at] = bad;
      EXPECT_EQ(splitSum(x.data(), x.size()).error, kInf) << bad;
      EXPECT_EQ(splitMoments(x.data(), x.size(), 0.25).squares.error, kInf) << bad;
    }
  }
}

}  // namespace
}  // namespace zel::kernels
