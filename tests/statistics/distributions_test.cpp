#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>

#include "tests/support/expect_message.h"
#include "zel/statistics/Zel_statis.h"

namespace zel {
namespace {

/// At most one unit in the last place away.
testing::AssertionResult isNear(double value, double expected) {
  if (value == expected || value == std::nextafter(expected, value))
    return testing::AssertionSuccess();
  return testing::AssertionFailure() << std::hexfloat << value << " beside " << expected;
}

// All references of this file: mpmath with 60 digits, by power series and exact sums.

/// df2 = 0: chi-square.
void check(double x, int df1, int df2, double lower, double upper, double density) {
  SCOPED_TRACE(testing::Message() << x << ", df " << df1 << " " << df2);
  const bool chi = df2 == 0;
  EXPECT_TRUE(isNear(chi ? chi2DistriIntegral(x, df1) : FDistriIntegral(x, df1, df2), lower));
  EXPECT_TRUE(isNear(chi ? chi2DistriComplement(x, df1) : FDistriComplement(x, df1, df2), upper));
  EXPECT_TRUE(isNear(chi ? Chi2DistriDensity(x, df1) : FDistriDensity(x, df1, df2), density));
  // p determines x within an ulp of p over the density.
  const double slack = x * 0x1p-52 + (std::nextafter(lower, 2) - lower) / density;
  const double quantile = chi ? chi2DistriQuantile(lower, df1) : FDistriQuantile(lower, df1, df2);
  EXPECT_NEAR(quantile, lower == 1 ? 0 : x, slack);
}

TEST(Distributions, ChiSquareAndFInBothTails) {
  check(1e-300, 1, 0, 7.9788456080286537e-151, 1, 3.9894228040143267e+149);
  check(1400, 1, 0, 1, 2.1010145162642175e-306, 1.0512565523214445e-306);
  check(5.5, 7, 0, 0.40081612933364385, 0.59918387066635615, 0.12061899490769885);
  check(200, 150, 0, 0.99602681402917839, 0.0039731859708216113, 0.00056230423359403298);
  check(1600, 1000, 0, 1, 1.7420398244391630e-30, 3.2949547891631928e-31);
  check(970000, 1000000, 0, 3.6118883335486622e-102, 1, 5.5973818154551172e-104);
  check(1e-300, 1, 1, 6.3661977236758135e-151, 1, 3.1830988618379067e+149);
  check(0.5, 3000, 2000, 1.1651659812227854e-66, 1, 1.0020198220470363e-63);
  check(1.5, 7, 100000, 0.83802111053249536, 0.16197888946750464, 0.34901344991194458);
  EXPECT_TRUE(isNear(chi2DistriQuantile(1 - 0x1p-53, 2), 106 * std::log(2.0)));  // -2 ln(1 - p)
  EXPECT_NEAR(FDistriQuantile(1 - 0x1p-53, 2, 2), 0x1p53, 8);                    // p / (1 - p)
}

TEST(Distributions, ChiSquareAndFOutsideTheDomain) {
  EXPECT_EQ(Chi2DistriDensity(0, 1) + FDistriDensity(0, 1, 5), HUGE_VAL);
  EXPECT_EQ(Chi2DistriDensity(0, 2) + FDistriDensity(0, 2, 5), 1.5);
  EXPECT_EQ(chi2DistriIntegral(5, 0) + FDistriIntegral(2, 0, 5) + FDistriQuantile(1, 3, 4), 0);
  EXPECT_EQ(chi2DistriIntegral(HUGE_VAL, 5) + FDistriIntegral(HUGE_VAL, 5, 5), 2);
}

TEST(Distributions, Binomial) {
  int quantile = -1;
  const auto checkAt = [&](int n, double p, int k, double density, double lower) {
    EXPECT_TRUE(isNear(BinomDistriDensity(n, p, k), density));
    EXPECT_TRUE(isNear(BinomDistriIntegral(n, p, k), lower));
    EXPECT_TRUE(BinomDistriQuantile(n, p, BinomDistriIntegral(n, p, k), quantile));
    EXPECT_EQ(quantile, k);
    EXPECT_TRUE(BinomDistriQuantile(n, p, std::min(1.0, lower * (1 + 1e-15)), quantile));
    EXPECT_EQ(quantile, lower == 1 ? k : k + 1);
  };
  checkAt(20, 0.25, 3, 0.13389561519943527, 0.22515604766431352);
  checkAt(100000, 1e-09, 2, 4.9994500399975674e-9, 0.99999999999983335);
  checkAt(5000, 0.25, 1250, 0.013028459339165157, 0.50759970944986246);
  checkAt(5, 0.5, 5, 0x1p-5, 1);
  EXPECT_EQ(BinomDistriDensity(5, 1, 4) + BinomDistriDensity(5, 0, 1), 0);
  EXPECT_FALSE(BinomDistriQuantile(5, 0.5, 1.1, quantile));
}

/// Cases for each way of computing it: the closed form, the table, the integral in the plane.
TEST(Distributions, MannWhitneyU) {
  const auto checkAt = [](int nx, int ny, int u, double density, double lower) {
    EXPECT_TRUE(isNear(UDistriDensity(nx, ny, u), density));
    EXPECT_TRUE(isNear(UDistriIntegral(nx, ny, u), lower));
    EXPECT_EQ(UDistriDensity(ny, nx, nx * ny - u), UDistriDensity(nx, ny, u));
    EXPECT_TRUE(isNear(UDistriIntegral(nx, ny, nx * ny - u - 1), 1 - lower));
    EXPECT_EQ(UDistriQuantile(nx, ny, UDistriIntegral(nx, ny, u)), u);
    EXPECT_EQ(UDistriQuantile(nx, ny, lower * (1 + 1e-15)), u + 1);
  };
  checkAt(250, 4, 499, 0.0026402125462235587, 0.49867976973249822);
  checkAt(30, 40, 333, 2.8115898924013736e-5, 0.00064901158243339185);
  checkAt(80, 90, 1200, 3.2039445878794162e-17, 1.0624159494943312e-15);
  checkAt(150, 120, 5000, 7.8035655622895446e-13, 7.0867495256774292e-11);
  EXPECT_EQ(UDistriIntegral(3, 4, -1) + UDistriDensity(3, 4, 13) + UDistriDensity(0, 4, 0), 0);
}

TEST(Distributions, Hypergeometric) {
  EXPECT_NEAR(HyperGeoDistriDensity(0.5, 10, 5, 2), 100.0 / 252, 1e-9);
  EXPECT_NEAR(HyperGeoDistriDensity(0.45, 10, 5, 0), 6.0 / 252, 1e-9);  // 4 marked: ties to even
  const auto expectRefusal = [](double p, int npop, int nsample, const char* reason) {
    EXPECT_THROW_MSG((void)HyperGeoDistriDensity(p, npop, nsample, 0), EZELStatisError,
                     std::string("HyperGeoDistriDensity: ") + reason);
  };
  expectRefusal(NAN, 0, 5, "probability p must be between 0.0 and 1.0");
  expectRefusal(1, 0, 5, "npop must be greater than 0");
  expectRefusal(0, 4, 5, "nsample must not be greater than npop");
  expectRefusal(0.5, 4, 0, "nsample must not be less than 1");
}

}  // namespace
}  // namespace zel
