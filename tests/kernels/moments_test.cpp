#include "zel/kernels/moments.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "tests/support/exact.h"
#include "tests/support/hostile.h"

namespace zel::kernels {
namespace {

using test::BigInt;
using test::ExactPowerSums;

constexpr double kInf = std::numeric_limits<double>::infinity();

// On hostile data, in the test of the sums.
TEST(MeanVariance, SmallAndConstantData) {
  EXPECT_EQ(meanVariance(std::vector<double>{}).variance, 1);
  EXPECT_EQ(meanVariance(std::vector<double>{5}).mean, 5);
  EXPECT_EQ(meanVariance(std::vector<double>{2, 4}).variance, 1);
  EXPECT_EQ(meanVariance(std::vector<double>{2, 4, 6}).variance, 4);
  EXPECT_EQ(meanVariance(std::vector<std::int32_t>{2147483647, -2147483647, 0}).variance,
            2147483647.0 * 2147483647.0);
  for (const double c : {0.1, 1e9 + 0.1, 1e-200, -1.7e308, 5e-324}) {
    for (const std::size_t n : {3u, 1000u, 5000u}) {
      const MeanVariance mv = meanVariance(std::vector<double>(n, c));
      EXPECT_EQ(mv.mean, c);
      EXPECT_EQ(mv.variance, 0) << c;
    }
  }
}

TEST(MeanVariance, RangeAndNonFiniteValues) {
  EXPECT_EQ(meanVariance(std::vector<double>{1e200, -1e200, 0}).variance, kInf);
  EXPECT_EQ(meanVariance(std::vector<double>{1.7e308, 1.7e308, 1.6e308}).mean,
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
  const ExactPowerSums s(x, 4);
  const BigInt n(s.n);
  // n^(k-1) times the k-th central sum, integers scaled by 2^(1074 k).
  const BigInt m2 = n * s.s2 - s.s1 * s.s1;
  const BigInt m3 = n * n * s.s3 - BigInt(3) * n * s.s1 * s.s2 + BigInt(2) * s.s1 * s.s1 * s.s1;
  const BigInt m4 = n * n * n * s.s4 - BigInt(4) * n * n * s.s1 * s.s3 +
                    BigInt(6) * n * s.s1 * s.s1 * s.s2 - BigInt(3) * s.s1 * s.s1 * s.s1 * s.s1;
  if (m2.isZero()) return {0, 0};
  // Ratios that do not depend on the unit: m3^2 / m2^3 and m4 / m2^2.
  const long double count = static_cast<long double>(s.n);
  const long double ratio3 = BigInt::quotient<long double>(m3 * m3, m2 * m2 * m2);
  const long double ratio4 = BigInt::quotient<long double>(m4, m2 * m2);
  const long double sign = m3.isNegative() ? -1 : 1;
  const long double shrink = (count - 1) / count;
  return {static_cast<double>(sign * std::sqrt(ratio3 * shrink * shrink * shrink)),
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

TEST(Shape, PublishedFormulas) {
  EXPECT_EQ(shape(std::vector<double>{1, 2, 3}, ShapeForm::population).kurtosis, 0);
  // python3 -c "
  // from mpmath import *; mp.dps=30; x=[mpf(v) for v in (1,2,3,10)]; n=mpf(4); m=fsum(x)/n
  // sd=sqrt(fsum((v-m)**2 for v in x)/(n-1)); S=fsum((v-m)**3 for v in x)/n/sd**3; K=fsum((v-m)**4
  // for v in x)/n/sd**4-3
  // print(S,K,S*n*n/((n-1)*(n-2)),(K+3)*n*n*(n+1)/((n-1)*(n-2)*(n-3))-3*(n-1)**2/((n-2)*(n-3)))"
  const std::vector<std::int32_t> x{1, 2, 3, 10};
  const Shape population = shape(x, ShapeForm::population);
  const Shape sample = shape(x, ShapeForm::sample);
  EXPECT_DOUBLE_EQ(population.skewness, 0.66136223055145808651);
  EXPECT_DOUBLE_EQ(population.kurtosis, -1.7454);
  EXPECT_DOUBLE_EQ(sample.skewness, 1.7636326148038882307);
  EXPECT_DOUBLE_EQ(sample.kurtosis, 3.228);
  const std::vector<double> constant(10, 0.3);
  EXPECT_EQ(shape(constant, ShapeForm::population).skewness, 0);
  EXPECT_EQ(shape(constant, ShapeForm::population).kurtosis, 0);
  EXPECT_EQ(shape(std::vector<double>{1, 2, 3, 4, kInf}, ShapeForm::sample).kurtosis * 0 == 0,
            false);
}

/// Correlation in long double from exact sums.
double exactCorrelation(const std::vector<double>& x, const std::vector<double>& y) {
  const ExactPowerSums sx(x), sy(y);
  BigInt xy;
  for (std::size_t i = 0; i < x.size(); ++i) xy = xy + BigInt::scaled(x[i]) * BigInt::scaled(y[i]);
  const BigInt top = BigInt(sx.n) * xy - sx.s1 * sy.s1;
  if (sx.spread().isZero() || sy.spread().isZero()) return 0;
  const long double square = BigInt::quotient<long double>(top * top, sx.spread() * sy.spread());
  return static_cast<double>(top.isNegative() ? -std::sqrt(square) : std::sqrt(square));
}

TEST(Correlation, MatchesExactArithmeticOnHostileData) {
  for (const std::size_t n : {2u, 3u, 17u, 131u}) {
    const auto data = test::hostileData(n);
    for (const auto& [nameX, x] : data) {
      for (const auto& [nameY, y] : data) {
        SCOPED_TRACE(nameX + " with " + nameY + " n=" + std::to_string(n));
        EXPECT_NEAR(pearsonCorrelation(x, y), exactCorrelation(x, y), 2e-16);
      }
    }
  }
}

TEST(Correlation, Rules) {
  const std::vector<double> x{1, 2, 3}, rising{1e9 + 2, 1e9 + 4, 1e9 + 6},
      falling{3e200, 2e200, 1e200}, constant(3, 0.7);
  EXPECT_EQ(pearsonCorrelation(x, rising), 1);
  EXPECT_EQ(pearsonCorrelation(x, falling), -1);
  EXPECT_EQ(pearsonCorrelation(x, constant), 0);
  EXPECT_EQ(pearsonCorrelation(x, std::vector<double>{1, -2, 1}), 0);
  EXPECT_EQ(pearsonCorrelation(x, std::vector<double>{1, 2}), 0);
  EXPECT_EQ(pearsonCorrelation(std::vector<double>{1}, std::vector<double>{2}), 0);
  EXPECT_TRUE(std::isnan(pearsonCorrelation(x, std::vector<double>{1, kInf, 2})));
  const CentredProducts c = centredProducts(x, rising);
  EXPECT_EQ(c.xx.hi, 2);
  EXPECT_EQ(c.xy.hi, 4);
  EXPECT_EQ(c.meanY.hi, 1e9 + 4);
}

}  // namespace
}  // namespace zel::kernels
