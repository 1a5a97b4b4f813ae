#include "zel/kernels/sums.h"

#include "tests/support/exact.h"
#include "tests/support/testing.h"
#include "zel/kernels/moments.h"
#include "zel/kernels/split_sums.h"

namespace zel::kernels {
namespace {

using test::BigInt;
using test::ExactPowerSums;

using V = std::vector<double>;

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

TEST(Sums, MatchExactArithmeticOnHostileData) {
  for (const std::size_t n : test::kLengths) {
    for (const auto& [name, x] : unitBreakers(n)) expectExact(x, name);
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

/// Correlation in long double from exact sums.
double exactCorrelation(const ExactPowerSums& x, const ExactPowerSums& y, const BigInt& products) {
  if (x.spread().isZero() || y.spread().isZero()) return 0;
  const BigInt top = BigInt(x.n) * products - x.s1 * y.s1;
  const long double square = BigInt::quotient<long double>(top * top, x.spread() * y.spread());
  return static_cast<double>(top.isNegative() ? -std::sqrt(square) : std::sqrt(square));
}

TEST(Sums, OfTwoArraysAndCorrelationsMatchExactArithmeticOnHostileData) {
  for (const std::size_t n : {2u, 3u, 17u, 141u}) {
    const auto data = test::hostileData(n);
    for (const auto& [nameX, x] : data) {
      for (const auto& [nameY, y] : data) {
        SCOPED_TRACE(nameX + " with " + nameY + " n=" + std::to_string(n));
        BigInt products, magnitudes, squares;
        for (std::size_t i = 0; i < n; ++i) {
          const BigInt p = BigInt::scaled(x[i]) * BigInt::scaled(y[i]);
          const BigInt d = BigInt::scaled(x[i]) - BigInt::scaled(y[i]);
          products = products + p;
          magnitudes = magnitudes + magnitudeOf(p);
          squares = squares + d * d;
        }
        expectAccurate(sumOfProducts(x, y), products, magnitudes, 2148);
        expectAccurate(sumOfSquaredDifferences(x, y), squares, squares, 2148);
        EXPECT_NEAR(pearsonCorrelation(x, y),
                    exactCorrelation(ExactPowerSums(x), ExactPowerSums(y), products), 2e-16);
      }
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
  EXPECT_EQ(mean(V{kMax, 0, 0}), kMax / 3);
  for (int i = 0; i < 39; ++i) x.push_back(-kMax);
  EXPECT_EQ(sum(x).hi, kMax);
  x.push_back(-kMax);
  x.push_back(3e-310);
  EXPECT_EQ(sum(x).hi, 3e-310);
  EXPECT_DOUBLE_EQ(euclideanNorm(V{3e200, -4e200}), 5e200);
  EXPECT_DOUBLE_EQ(euclideanNorm(V{3e-200, 4e-200}), 5e-200);
  EXPECT_DOUBLE_EQ(euclideanDistance(V{3e300, 0}, V{0, -4e300}), 5e300);
  // The shorter of two spans decides.
  EXPECT_EQ(sumOfProducts(V{1e200, 1e200, 2, 7}, V{1e200, -1e200, 3}).hi, 6);
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

TEST(MeanVariance, IntegersAndConstantData) {
  EXPECT_EQ(meanVariance(std::vector<std::int32_t>{2147483647, -2147483647, 0}).variance,
            2147483647.0 * 2147483647.0);
  for (const double c : {0.1, 1e9 + 0.1, 1e-200, -1.7e308, 5e-324}) {
    for (const std::size_t n : {3u, 1000u, 5000u}) {
      const MeanVariance mv = meanVariance(V(n, c));
      EXPECT_EQ(mv.mean, c);
      EXPECT_EQ(mv.variance, 0) << c;
    }
  }
}

TEST(MeanVariance, RangeAndNonFiniteValues) {
  EXPECT_EQ(meanVariance(V{1e200, -1e200, 0}).variance, kInf);
  EXPECT_EQ(meanVariance(V{1.7e308, 1.7e308, 1.6e308}).mean,
            (1.7e308 / 3 + 1.7e308 / 3) + 1.6e308 / 3);
  std::vector<double> x(100, 1);
  x[60] = kInf;
  EXPECT_EQ(meanVariance(x).mean, kInf);
  EXPECT_TRUE(std::isnan(meanVariance(x).variance));
  x[3] = -kInf;
  EXPECT_TRUE(std::isnan(meanVariance(x).mean));
}

/// The two formulas in long double from the exact central moments.
Shape exactShape(const std::vector<double>& x) {
  const ExactPowerSums s(x);
  if (s.spread().isZero()) return {0, 0};
  BigInt m2, m3, m4;  // sums of powers of the deviations times n
  for (const double v : x) {
    const BigInt d = BigInt(s.n) * BigInt::scaled(v) - s.s1, d2 = d * d;
    m2 = m2 + d2;
    m3 = m3 + d2 * d;
    m4 = m4 + d2 * d2;
  }
  const auto n = static_cast<long double>(s.n), shrink = (n - 1) / n;
  const long double ratio3 = n * BigInt::quotient<long double>(m3 * m3, m2 * m2 * m2);
  const long double ratio4 = n * BigInt::quotient<long double>(m4, m2 * m2);
  const long double skewness = std::sqrt(ratio3 * shrink * shrink * shrink);
  return {static_cast<double>(m3.isNegative() ? -skewness : skewness),
          static_cast<double>(ratio4 * shrink * shrink - 3)};
}

TEST(Shape, MatchesExactCentralMomentsOnHostileData) {
  for (const std::size_t n : {4u, 5u, 31u, 131u, 2049u}) {
    for (const auto& [name, x] : test::hostileData(n)) {
      SCOPED_TRACE(name + " n=" + std::to_string(n));
      const Shape actual = shape(x, ShapeForm::population);
      const Shape expected = exactShape(x);
      EXPECT_NEAR(actual.skewness, expected.skewness, 1e-15 * (1 + std::abs(expected.skewness)));
      EXPECT_NEAR(actual.kurtosis, expected.kurtosis, 1e-15 * (1 + std::abs(expected.kurtosis)));
    }
  }
}

TEST(Shape, OfASampleAndOfTooFewOrInfiniteValues) {
  EXPECT_EQ(shape(V{1, 2, 3}, ShapeForm::population).kurtosis, 0);
  // python3 -c "
  // from mpmath import *; mp.dps=30; x=[mpf(v) for v in (1,2,3,10)]; n=mpf(4); m=fsum(x)/n
  // sd=sqrt(fsum((v-m)**2 for v in x)/(n-1)); S=fsum((v-m)**3 for v in x)/n/sd**3; K=fsum((v-m)**4
  // for v in x)/n/sd**4-3
  // print(S*n*n/((n-1)*(n-2)),(K+3)*n*n*(n+1)/((n-1)*(n-2)*(n-3))-3*(n-1)**2/((n-2)*(n-3)))"
  const std::vector<std::int32_t> x{1, 2, 3, 10};
  const Shape sample = shape(x, ShapeForm::sample);
  EXPECT_DOUBLE_EQ(sample.skewness, 1.7636326148038882307);
  EXPECT_DOUBLE_EQ(sample.kurtosis, 3.228);
  EXPECT_FALSE(std::isfinite(shape(V{1, 2, 3, 4, kInf}, ShapeForm::sample).kurtosis));
}

TEST(Correlation, Rules) {
  const std::vector<double> x{1, 2, 3}, rising{1e9 + 2, 1e9 + 4, 1e9 + 6},
      falling{3e200, 2e200, 1e200}, constant(3, 0.7);
  EXPECT_EQ(pearsonCorrelation(x, rising), 1);
  EXPECT_EQ(pearsonCorrelation(x, falling), -1);
  EXPECT_EQ(pearsonCorrelation(x, constant), 0);
  EXPECT_EQ(pearsonCorrelation(x, V{1, -2, 1}), 0);
  EXPECT_EQ(pearsonCorrelation(x, V{1, 2}), 0);
  EXPECT_EQ(pearsonCorrelation(V{1}, V{2}), 0);
  EXPECT_TRUE(std::isnan(pearsonCorrelation(x, V{1, kInf, 2})));
  const CentredProducts c = centredProducts(x, rising);
  EXPECT_EQ(c.xx.hi, 2);
  EXPECT_EQ(c.xy.hi, 4);
  EXPECT_EQ(c.meanY.hi, 1e9 + 4);
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
    const auto data = unitBreakers(n);
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

/// |exact * 2^-scale - value| <= error, which may be at most so much of the value.
void expectWithinBound(const BoundedSum& s, const BigInt& exact, int scale, double most) {
  if (!std::isfinite(s.error)) {
    EXPECT_EQ(most, kInf);
    return;
  }
  EXPECT_TRUE(most == kInf || s.error <= most * std::abs(s.value.hi)) << s.error;
  const BigInt value =
      (BigInt::scaled(s.value.hi) + BigInt::scaled(s.value.lo)) * (BigInt(1) << (scale - 1074));
  EXPECT_LE(std::abs(BigInt::quotient<double>(exact - value, 1, -scale)), s.error);
}

// If the bounds were useless on ordinary data, every caller would silently take the slow way.
TEST(SplitSums, BoundsHoldAndAreTightOnOrdinaryData) {
  for (const std::size_t n : {17u, 2051u, 5000u}) {
    for (const auto& [name, x] : unitBreakers(n)) {
      SCOPED_TRACE(name + " n=" + std::to_string(n));
      const bool isOrdinary = name == "uniform" || name == "offset -40" || name == "offset 1e9" ||
                              name == "outlier first" || name == "sorted" ||
                              name == "rises with every run";
      expectWithinBound(splitSum(x.data(), n), ExactPowerSums(x).s1, 1074,
                        n == 5000 && isOrdinary ? 0x1p-57 : kInf);
      for (const double centre : {0.0, x[n / 2]}) {
        V d = x;
        for (double& v : d) v -= centre;
        if (std::isinf(d[0] - d[n - 1])) continue;
        expectWithinBound(splitMoments(x.data(), n, centre).squares, ExactPowerSums(d).s2, 2148,
                          n == 5000 && isOrdinary ? 0x1p-58 : kInf);
      }
    }
  }
}

}  // namespace
}  // namespace zel::kernels
