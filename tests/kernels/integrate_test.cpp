#include "zel/kernels/integrate.h"

#include "tests/support/testing.h"

namespace zel::kernels {
namespace {

double at(const std::vector<double>& y, double p) {
  const double k = std::floor(p);
  const double left = y[static_cast<std::size_t>(k) - 1];
  return p == k ? left : left + (p - k) * (y[static_cast<std::size_t>(k)] - left);
}

double integrate(const std::vector<double>& y, double a, double b, IntegrationRule rule) {
  return kernels::integrate(std::span<const double>(y), a, b, rule);
}

// Under straight lines the integral is the sum over the pieces between all sample positions and
// bounds.
TEST(Integration, TrapezoidalIsExactForTheLines) {
  const std::vector<double> y{0, 1, 0, -3, 5, 2.5, 2, 7};
  for (double a = 1; a <= 8; a += 0.25) {
    for (double b = 1; b <= 8; b += 0.25) {
      double expected = 0;
      for (double p = std::min(a, b); p < std::max(a, b); p += 0.25)
        expected += (at(y, p) + at(y, p + 0.25)) / 8;
      EXPECT_DOUBLE_EQ(integrate(y, a, b, IntegrationRule::trapezoidal), expected) << a << " " << b;
    }
  }
}

TEST(Integration, SimpsonIntegratesCubics) {
  // With three or more samples inside every rule is exact for quadratics, up to the lines at the
  // ends.
  for (int n = 3; n < 20; ++n) {
    std::vector<double> y(static_cast<std::size_t>(n));
    for (int i = 1; i <= n; ++i) y[static_cast<std::size_t>(i - 1)] = 1 + i - 0.5 * i * i;
    const auto primitive = [](double x) { return x + x * x / 2 - x * x * x / 6; };
    // The open-ended rule for six and more samples is of third order: exact for quadratics.
    EXPECT_NEAR(integrate(y, 1, n, IntegrationRule::simpson), primitive(n) - primitive(1),
                1e-12 * n * n * n)
        << n;
  }
  const std::vector<double> y{4, 1, 7, 3, 9, 2, 6};
  EXPECT_DOUBLE_EQ(integrate(y, 1, 7, IntegrationRule::simpson),
                   3.0 / 8 * (4 + 6) + 7.0 / 6 * (1 + 2) + 23.0 / 24 * (7 + 9) + 3);
  // Ends beyond the samples inside: lines from 1.5 to 2 and from 4 to 4.25, three samples between.
  EXPECT_DOUBLE_EQ(integrate(y, 1.5, 4.25, IntegrationRule::simpson),
                   (2.5 + 1) / 2 * 0.5 + (1 + 4 * 7 + 3) / 3.0 + (3 + 4.5) / 2 * 0.25);
  EXPECT_EQ(integrate(y, 1.5, 3.5, IntegrationRule::simpson),
            integrate(y, 1.5, 3.5, IntegrationRule::trapezoidal));
}

TEST(Integration, MeanRule) {
  const std::vector<double> y{4, 1, 7, 3};
  EXPECT_DOUBLE_EQ(integrate(y, 1.5, 3.75, IntegrationRule::mean), (1 + 7) / 2.0 * 2.25);
  EXPECT_DOUBLE_EQ(integrate(y, 2.25, 2.75, IntegrationRule::mean), (1 + 7) / 2.0 * 0.5);
  EXPECT_DOUBLE_EQ(integrate(y, 2.25, 2.75, IntegrationRule::trapezoidal), (2.5 + 5.5) / 2 * 0.5);
}

TEST(Integration, ConstantsAndLimits) {
  for (const auto rule :
       {IntegrationRule::mean, IntegrationRule::trapezoidal, IntegrationRule::simpson}) {
    for (std::size_t n = 1; n < 40; ++n) {
      const std::vector<double> y(n, 0.1);
      const double expected = 0.1 * static_cast<double>(n - 1);
      EXPECT_DOUBLE_EQ(integrate(y, 1, static_cast<double>(n), rule), expected);
      EXPECT_EQ(integrate(y, kInf, -5, rule), integrate(y, 1, static_cast<double>(n), rule));
    }
    EXPECT_EQ(integrate({}, 1, 2, rule), 0);
    EXPECT_EQ(integrate({1, 2, 3}, 2.5, 2.5, rule), 0);
    EXPECT_TRUE(std::isnan(integrate({1, 2, 3}, kNaN, 2, rule)));
    EXPECT_EQ(integrate({1, kInf, 3}, 1, 3, rule), kInf);
  }
  EXPECT_DOUBLE_EQ(integrate({1.7e308, 1.7e308, 0, -1.7e308}, 1, 4, IntegrationRule::trapezoidal),
                   1.7e308);
}

}  // namespace
}  // namespace zel::kernels
