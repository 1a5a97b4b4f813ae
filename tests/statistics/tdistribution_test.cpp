#include <algorithm>
#include <climits>
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "zel/statistics/Zel_statis.h"

namespace zel {
namespace {

struct Reference {
  double t;
  int df;
  double upperTail;
  double density;
};

// By mpmath with 40 digits: the density from its definition, the tail from the hypergeometric
// function 1/2 - t f(t) 2F1(1, (df+1)/2; 3/2; t^2/(df+t^2)) for t^2 < 3, else by quadrature.
constexpr Reference kReferences[] = {
    {0.25, 1, 0.42202086962263067454, 0.29958577523180298498},
    {1e300, 1, 3.1830988618379065482e-301, 0},
    {1.75, 2, 0.11111111111111111111, 0.08779149519890260631},
    {3.5, 3, 0.019740518809641399973, 0.014224018801529706195},
    {1.5, 7, 0.088649243494985016577, 0.12626306128596108161},
    {40, 7, 7.9510899924251852343e-10, 1.3860526854567152449e-10},
    {2.5, 30, 0.0090578245340333470509, 0.021057019220621631723},
    {30, 100, 4.1901662793441460847e-52, 1.2584163368965667527e-51},
    {1.6875, 1000, 0.045909546810447490361, 0.096095286047150908401},
    {37.5, 1000000000, 4.6076336253126563915e-308, 1.729087138954193395e-306},
    {0.0625, 1000000000, 0.47508233097699839106, 0.39816385658656947597}};

/// At most one unit in the last place away.
testing::AssertionResult isNear(double value, double expected) {
  if (value == expected || value == std::nextafter(expected, value))
    return testing::AssertionSuccess();
  return testing::AssertionFailure() << std::hexfloat << value << " beside " << expected;
}

TEST(TDistribution, BothTailsAndDensity) {
  for (const auto& [t, df, tail, density] : kReferences) {
    SCOPED_TRACE(testing::Message() << "t " << t << ", df " << df);
    EXPECT_TRUE(isNear(tDistriIntegral(-t, df), tail));
    EXPECT_TRUE(isNear(tDistriIntegral(t, df), 1 - tail));
    EXPECT_TRUE(isNear(tDistriDensity(t, df), density));
    EXPECT_EQ(tDistriDensity(-t, df), tDistriDensity(t, df));
  }
}

/// The quantile of an exact tail, and for every region the t that leads back to its probability.
TEST(TDistribution, QuantilesInvertTheIntegral) {
  EXPECT_TRUE(isNear(tDistriQuantile(0x1p-60, 1), -366986312910250153.3));  // -cot(pi p)
  EXPECT_TRUE(isNear(tDistriQuantile(0x1p-1060, 2), -0x1p529 * std::sqrt(2.0)));
  EXPECT_TRUE(isNear(tDistriQuantile(0.975, 1000000000), 1.9599639869123253));
  for (const int df : {1, 2, 3, 8, 50, 3000, INT_MAX}) {
    for (const double p : {1e-300, 1e-40, 1e-9, 0.01, 0.16, 0.17, 0.18, 0.3, 0.49, 0.5 - 0x1p-50}) {
      const double t = tDistriQuantile(p, df);
      // A unit of t moves the tail by a unit times t f(t) / tail, which is below df and below t^2.
      const double slack = p * 0x1p-52 * (1 + std::min(static_cast<double>(df), t * t + 1));
      EXPECT_NEAR(tDistriIntegral(t, df), p, slack) << p << ", df " << df;
    }
    EXPECT_EQ(tDistriQuantile(0.5, df), 0);
    EXPECT_EQ(tDistriQuantile(0.75, df), -tDistriQuantile(0.25, df));
  }
}

TEST(TDistribution, ArgumentsOutsideTheDomain) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(tDistriIntegral(3, 0), 0.5);
  EXPECT_EQ(tDistriDensity(3, -1), 0);
  EXPECT_EQ(tDistriQuantile(0.9, 0), 0);
  for (const double p : {0.0, 1.0, -1.0, 2.0, static_cast<double>(NAN)}) {
    EXPECT_EQ(tDistriQuantile(p, 5), 0);
  }
  EXPECT_EQ(tDistriQuantile(5e-324, 1), -kInfinity);
  EXPECT_EQ(tDistriIntegral(kInfinity, 5), 1);
  EXPECT_EQ(tDistriIntegral(-kInfinity, 5), 0);
  EXPECT_EQ(tDistriDensity(kInfinity, 5), 0);
  EXPECT_TRUE(std::isnan(tDistriIntegral(NAN, 5)));
  EXPECT_TRUE(std::isnan(tDistriDensity(NAN, 5)));
}

TEST(ErrorFunction, ApproximatesTheLibraryFunction) {
  for (double x = -6; x <= 6; x += 0.03125) EXPECT_NEAR(ErfApprox(x), std::erf(x), 1.2e-7) << x;
  EXPECT_EQ(ErfApprox(1e300), 1);
  EXPECT_EQ(ErfApprox(-1e300), -1);
}

}  // namespace
}  // namespace zel
