#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "zel/kernels/elementwise.h"
#include "zel/kernels/histogram.h"
#include "zel/kernels/integrate.h"

namespace zel::kernels {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr std::int32_t kIntMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kIntMax = std::numeric_limits<std::int32_t>::max();

TEST(Binning, NumberOfBins) {
  EXPECT_EQ(numberOfBins(0.0, 2.0, 1.0), 3);
  EXPECT_EQ(numberOfBins(2.0, 0.0, 1.0), 3);
  EXPECT_EQ(numberOfBins(0.0, 2.5, 1.0), 3) << "halves go to the even number";
  EXPECT_EQ(numberOfBins(0.0, 3.5, 1.0), 5);
  for (const double width : {0.0, -1.0, kNan, 1e-320}) EXPECT_EQ(numberOfBins(0.0, 2.0, width), 0) << width;
  EXPECT_EQ(numberOfBins(-kInf, 2.0, 1.0), 0);
  EXPECT_EQ(numberOfBins(-1e308, 1e308, 1e300), 0) << "the range leaves the doubles";
  EXPECT_EQ(numberOfBins(0.0, 1e300, 1.0), kIntMax);
  EXPECT_EQ(numberOfBins(0, 999, 2), 500);
  EXPECT_EQ(numberOfBins(5, 0, 0), 0);
  EXPECT_EQ(numberOfBins(kIntMin, kIntMax, kIntMax), 3);
  EXPECT_EQ(numberOfBins(kIntMin, kIntMax, 1), kIntMax);
}

/// What a counter makes of some values.
template <class T>
struct Counted {
  std::vector<int> bins;
  int underflow, overflow, most;
  bool operator==(const Counted&) const = default;
};

template <class T>
Counted<T> counted(T first, T last, T width, int bins, const std::vector<T>& values) {
  std::vector<int> counts(static_cast<std::size_t>(bins));
  HistogramCounter counter(first, last, width, bins, [&](int bin, std::int64_t times) {
    growCount(counts.at(static_cast<std::size_t>(bin)), times);
    return counts[static_cast<std::size_t>(bin)];
  });
  for (const T x : values) counter.add(x);
  return {counts, counter.underflow(), counter.overflow(), counter.maxCount()};
}

TEST(Binning, CountsRealValues) {
  EXPECT_EQ(counted<double>(0, 2, 1, 3, {0.5, 1.5, 2.5, 9.0, -1e-300, 0.0, 3.0, kNan, kInf, -kInf}),
            (Counted<double>{{2, 1, 1}, 2, 3, 2}));
  // 0..2.4 in steps of 1 is rounded to three bins but reaches to 3.4: what lies beyond is dropped.
  EXPECT_EQ(counted<double>(0, 2.4, 1, 3, {3.2, 3.2, 3.2, 1.0}), (Counted<double>{{0, 1, 0}, 0, 0, 1}));
}

TEST(Binning, IntegersDoNotOverflow) {
  EXPECT_EQ(counted<int>(kIntMin, kIntMax, kIntMax, 3, {kIntMin, -2, -1, kIntMax - 1, kIntMax}),
            (Counted<int>{{2, 1, 2}, 0, 0, 2}));
  EXPECT_EQ(counted<int>(10, 11, 1, 2, {9, 10, 11, 12, kIntMin}), (Counted<int>{{1, 1}, 2, 1, 1}));
  int count = kIntMax - 1;
  growCount(count, std::int64_t{1} << 40);
  EXPECT_EQ(count, kIntMax);
}

double at(const std::vector<double>& y, double p) {
  const double k = std::floor(p);
  const double left = y[static_cast<std::size_t>(k) - 1];
  return p == k ? left : left + (p - k) * (y[static_cast<std::size_t>(k)] - left);
}

double integrate(const std::vector<double>& y, double a, double b, IntegrationRule rule) {
  return kernels::integrate(std::span<const double>(y), a, b, rule);
}

// Under straight lines the integral is the sum over the pieces between all sample positions and bounds.
TEST(Integration, TrapezoidalIsExactForTheLines) {
  const std::vector<double> y{0, 1, 0, -3, 5, 2.5, 2, 7};
  for (double a = 1; a <= 8; a += 0.25) {
    for (double b = 1; b <= 8; b += 0.25) {
      double expected = 0;
      for (double p = std::min(a, b); p < std::max(a, b); p += 0.25) expected += (at(y, p) + at(y, p + 0.25)) / 8;
      EXPECT_DOUBLE_EQ(integrate(y, a, b, IntegrationRule::trapezoidal), expected) << a << " " << b;
    }
  }
}

TEST(Integration, SimpsonIntegratesCubics) {
  // With three or more samples inside every rule is exact for quadratics, up to the lines at the ends.
  for (int n = 3; n < 20; ++n) {
    std::vector<double> y(static_cast<std::size_t>(n));
    for (int i = 1; i <= n; ++i) y[static_cast<std::size_t>(i - 1)] = 1 + i - 0.5 * i * i;
    const auto primitive = [](double x) { return x + x * x / 2 - x * x * x / 6; };
    // The open-ended rule for six and more samples is of third order: exact for quadratics.
    EXPECT_NEAR(integrate(y, 1, n, IntegrationRule::simpson), primitive(n) - primitive(1), 1e-12 * n * n * n) << n;
  }
  const std::vector<double> y{4, 1, 7, 3, 9, 2, 6};
  EXPECT_DOUBLE_EQ(integrate(y, 1, 7, IntegrationRule::simpson),
                   3.0 / 8 * (4 + 6) + 7.0 / 6 * (1 + 2) + 23.0 / 24 * (7 + 9) + 3);
  // Ends beyond the samples inside: lines from 1.5 to 2 and from 4 to 4.25, three samples between.
  EXPECT_DOUBLE_EQ(integrate(y, 1.5, 4.25, IntegrationRule::simpson),
                   (2.5 + 1) / 2 * 0.5 + (1 + 4 * 7 + 3) / 3.0 + (3 + 4.5) / 2 * 0.25);
  EXPECT_EQ(integrate(y, 1.5, 3.5, IntegrationRule::simpson), integrate(y, 1.5, 3.5, IntegrationRule::trapezoidal));
}

TEST(Integration, MeanRule) {
  const std::vector<double> y{4, 1, 7, 3};
  EXPECT_DOUBLE_EQ(integrate(y, 1.5, 3.75, IntegrationRule::mean), (1 + 7) / 2.0 * 2.25);
  EXPECT_DOUBLE_EQ(integrate(y, 2.25, 2.75, IntegrationRule::mean), (1 + 7) / 2.0 * 0.5);
  EXPECT_DOUBLE_EQ(integrate(y, 2.25, 2.75, IntegrationRule::trapezoidal), (2.5 + 5.5) / 2 * 0.5);
}

TEST(Integration, ConstantsAndLimits) {
  for (const auto rule : {IntegrationRule::mean, IntegrationRule::trapezoidal, IntegrationRule::simpson}) {
    for (std::size_t n = 1; n < 40; ++n) {
      const std::vector<double> y(n, 0.1);
      const double expected = 0.1 * static_cast<double>(n - 1);
      EXPECT_DOUBLE_EQ(integrate(y, 1, static_cast<double>(n), rule), expected);
      EXPECT_EQ(integrate(y, kInf, -5, rule), integrate(y, 1, static_cast<double>(n), rule));
    }
    EXPECT_EQ(integrate({}, 1, 2, rule), 0);
    EXPECT_EQ(integrate({1, 2, 3}, 2.5, 2.5, rule), 0);
    EXPECT_TRUE(std::isnan(integrate({1, 2, 3}, kNan, 2, rule)));
    EXPECT_EQ(integrate({1, kInf, 3}, 1, 3, rule), kInf);
  }
  EXPECT_DOUBLE_EQ(integrate({1.7e308, 1.7e308, 0, -1.7e308}, 1, 4, IntegrationRule::trapezoidal), 1.7e308);
}

TEST(Elementwise, IntegersWrap) {
  std::vector<int> x{kIntMax, 1, 65536};
  const std::vector<int> y{1, 2, 3};
  add<int>(x, y);
  EXPECT_EQ(x, (std::vector<int>{kIntMin, 3, 65539}));
  absolute<int>(x);
  EXPECT_EQ(x[0], kIntMin);
  subtract<int>(x, y);
  scale<int>(x, 65536);
  EXPECT_EQ(x, (std::vector<int>{-65536, 65536, 0}));
}

}  // namespace
}  // namespace zel::kernels
