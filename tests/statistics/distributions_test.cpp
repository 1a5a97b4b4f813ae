#include <climits>
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "tests/support/expect_message.h"
#include "zel/statistics/Zel_statis.h"

namespace zel {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// At most one unit in the last place away.
testing::AssertionResult isNear(double value, double expected) {
  if (value == expected || value == std::nextafter(expected, value))
    return testing::AssertionSuccess();
  return testing::AssertionFailure() << std::hexfloat << value << " beside " << expected;
}

// All references of this file: mpmath with 60 digits, by power series and exact sums.

struct Continuous {
  double x;
  int df1, df2;
  double lower, upper, density;
};

/// Both tails and the density, and the quantile of the smaller tail: p determines x within an ulp
/// of p over x f(x).
template <class Lower, class Upper, class Density, class Quantile>
void checkContinuous(const Continuous& v, Lower lower, Upper upper, Density density,
                     Quantile quantile) {
  SCOPED_TRACE(testing::Message() << v.x << ", df " << v.df1 << " " << v.df2);
  EXPECT_TRUE(isNear(lower(v.x), v.lower));
  EXPECT_TRUE(isNear(upper(v.x), v.upper));
  EXPECT_TRUE(isNear(density(v.x), v.density));
  if (v.lower == 1) return;
  const double rounding = std::nextafter(v.lower, 2) - v.lower;
  EXPECT_NEAR(quantile(v.lower), v.x, 2 * std::abs(v.x) * 0x1p-53 + rounding / v.density);
}

TEST(ChiSquare, BothTailsDensityAndQuantile) {
  for (const Continuous& v :
       {Continuous{1e-300, 1, 0, 7.9788456080286536588e-151, 1.0, 3.9894228040143267294e+149},
        {3.5, 1, 0, 0.93863117086059782698, 0.06136882913940217302, 0.037056184523748122742},
        {1400.0, 1, 0, 1.0, 2.101014516264217495e-306, 1.0512565523214444744e-306},
        {1e-150, 3, 0, 2.659615202676217878e-226, 1.0, 3.989422804014326792e-76},
        {5.5, 7, 0, 0.40081612933364384579, 0.59918387066635615421, 0.12061899490769884685},
        {200, 150, 0, 0.99602681402917838867, 0.0039731859708216113254, 0.0005623042335940329812},
        {440, 300, 0, 0.99999976295508220352, 2.3704491779647942529e-7, 3.9297170057242838682e-8},
        {1600, 1000, 0, 1.0, 1.7420398244391630433e-30, 3.2949547891631928028e-31},
        {600, 1000, 0, 3.807423416288178169e-26, 1.0, 1.2784772598379825603e-26},
        {1003000, 1000000, 0, 0.98298322706673368491, 0.017016772933266315089,
         0.00002977703262548264525},
        {970000, 1000000, 0, 3.6118883335486621505e-102, 1.0, 5.5973818154551171577e-104}}) {
    checkContinuous(
        v, [&](double x) { return chi2DistriIntegral(x, v.df1); },
        [&](double x) { return chi2DistriComplement(x, v.df1); },
        [&](double x) { return Chi2DistriDensity(x, v.df1); },
        [&](double p) { return chi2DistriQuantile(p, v.df1); });
  }
  EXPECT_TRUE(isNear(chi2DistriQuantile(1 - 0x1p-53, 2), 106 * std::log(2.0)));  // -2 ln(1 - p)
  EXPECT_TRUE(isNear(chi2DistriQuantile(1e-300, 2), 2e-300));
  EXPECT_NEAR(chi2DistriIntegral(INT_MAX, INT_MAX), 0.5, 1e-5);
  EXPECT_EQ(Chi2DistriDensity(0, 1), kInfinity);
  EXPECT_EQ(Chi2DistriDensity(0, 2), 0.5);
  EXPECT_EQ(Chi2DistriDensity(0, 3), 0);
  EXPECT_EQ(Chi2DistriDensity(-1, 3) + Chi2DistriDensity(kInfinity, 3) + Chi2DistriDensity(1, 0),
            0);
  EXPECT_EQ(chi2DistriIntegral(5, 0) + chi2DistriIntegral(-1, 5) + chi2DistriIntegral(0, 5), 0);
  EXPECT_EQ(chi2DistriComplement(5, 0), 1);
  EXPECT_EQ(chi2DistriIntegral(kInfinity, 5), 1);
  EXPECT_TRUE(std::isnan(chi2DistriIntegral(kNaN, 5)));
  for (const double p : {0.0, 1.0, kNaN}) EXPECT_EQ(chi2DistriQuantile(p, 3), 0);
}

TEST(FDistribution, BothTailsDensityAndQuantile) {
  for (const Continuous& v :
       {Continuous{1e-300, 1, 1, 6.3661977236758135105e-151, 1.0, 3.1830988618379066755e+149},
        {4.5, 1, 1, 0.71956220199245651787, 0.28043779800754348213, 0.027282312610821396047},
        {1e15, 2, 3, 1.0, 5.8094750193111122565e-23, 8.7142125289666553134e-38},
        {3.25, 4, 7, 0.91692899597062029761, 0.083071004029379702388, 0.051935230763406088745},
        {0.01, 12, 5, 2.3576225394649767383e-9, 0.99999999764237746054, 1.3743408301901262633e-6},
        {1e5, 5, 40, 1.0, 8.4797359756174133442e-81, 1.6958018398872199668e-84},
        {1.25, 1000, 800, 0.99952678576490229446, 0.00047321423509770553948,
         0.019909359781771985708},
        {0.5, 3000, 2000, 1.1651659812227853926e-66, 1.0, 1.002019822047036296e-63},
        {1.5, 7, 100000, 0.83802111053249536498, 0.16197888946750463502, 0.34901344991194458467}}) {
    checkContinuous(
        v, [&](double x) { return FDistriIntegral(x, v.df1, v.df2); },
        [&](double x) { return FDistriComplement(x, v.df1, v.df2); },
        [&](double x) { return FDistriDensity(x, v.df1, v.df2); },
        [&](double p) { return FDistriQuantile(p, v.df1, v.df2); });
  }
  EXPECT_NEAR(FDistriQuantile(1 - 0x1p-53, 2, 2), 0x1p53, 8);  // p / (1 - p)
  EXPECT_EQ(FDistriQuantile(0.5, 50, 50), 1);
  EXPECT_EQ(FDistriDensity(0, 1, 5), kInfinity);
  EXPECT_EQ(FDistriDensity(0, 2, 5), 1);
  EXPECT_EQ(FDistriDensity(0, 3, 5) + FDistriDensity(-1, 1, 5) + FDistriDensity(1, 1, 0), 0);
  EXPECT_EQ(FDistriIntegral(2, 0, 5) + FDistriIntegral(2, 5, 0) + FDistriIntegral(-1, 5, 5), 0);
  EXPECT_EQ(FDistriIntegral(kInfinity, 5, 5), 1);
  EXPECT_TRUE(std::isnan(FDistriIntegral(kNaN, 5, 5)));
  for (const double p : {0.0, 1.0, kNaN}) EXPECT_EQ(FDistriQuantile(p, 3, 4), 0);
}

TEST(Binomial, DensityIntegralAndQuantile) {
  struct Case {
    int n;
    double p;
    int k;
    double density, lower;
  };
  for (const auto& [n, p, k, density, lower] :
       {Case{1, 0.25, 0, 0.75, 0.75},
        {20, 0.25, 3, 0.13389561519943526946, 0.22515604766431351891},
        {1000, 0.5, 200, 6.175550542739597799e-86, 8.2249936778874506839e-86},
        {1000, 0.875, 875, 0.038120302088762230801, 0.51430327555030212522},
        {100000, 1e-09, 2, 4.999450039997567421e-9, 0.99999999999983335083},
        {5000, 0.25, 1250, 0.013028459339165157352, 0.50759970944986246051}}) {
    SCOPED_TRACE(testing::Message() << n << " " << p << " " << k);
    EXPECT_TRUE(isNear(BinomDistriDensity(n, p, k), density));
    EXPECT_TRUE(isNear(BinomDistriIntegral(n, p, k), lower));
    double quantile = -1;
    EXPECT_TRUE(BinomDistriQuantile(n, p, BinomDistriIntegral(n, p, k), quantile));
    EXPECT_EQ(quantile, k);
    EXPECT_TRUE(BinomDistriQuantile(n, p, std::nextafter(lower, 1) * (1 + 1e-15), quantile));
    EXPECT_EQ(quantile, k + 1);
  }
  EXPECT_TRUE(isNear(BinomDistriDensity(60, 0.5, 60), 0x1p-60));
  EXPECT_EQ(BinomDistriDensity(5, 1, 5) + BinomDistriDensity(5, 0, 0), 2);
  EXPECT_EQ(BinomDistriDensity(5, 1, 4) + BinomDistriDensity(5, 0, 1), 0);
  EXPECT_EQ(BinomDistriDensity(5, 0.5, 6) + BinomDistriDensity(5, 1.5, 3), 0);
  EXPECT_EQ(BinomDistriIntegral(5, 0.5, -1) + BinomDistriIntegral(-1, 0.5, 3), 0);
  EXPECT_EQ(BinomDistriIntegral(5, 0.5, 5), 1);
  int k = 7;
  for (const double bad : {-0.1, 1.1, kNaN}) EXPECT_FALSE(BinomDistriQuantile(5, 0.5, bad, k));
  EXPECT_EQ(k, 0);
  EXPECT_TRUE(BinomDistriQuantile(5, 0.5, 1, k));
  EXPECT_EQ(k, 5);
}

/// One case for each way of computing it: the closed form, the table, the integral in the plane.
TEST(MannWhitneyU, DensityIntegralAndQuantile) {
  struct Case {
    int nx, ny, u;
    double density, lower;
  };
  for (const auto& [nx, ny, u, density, lower] :
       {Case{1, 6, 2, 0.14285714285714285714, 0.42857142857142857143},
        {4, 9, 17, 0.057342657342657342657, 0.46993006993006993007},
        {250, 4, 499, 0.0026402125462235586613, 0.49867976973249822285},
        {8, 10, 20, 0.0077700077700077700078, 0.041569541569541569542},
        {30, 40, 333, 0.000028115898924013736252, 0.00064901158243339184998},
        {64, 70, 2240, 0.0017710215150788724619, 0.50088551075753943623},
        {80, 90, 1200, 3.2039445878794181896e-17, 1.0624159494943312318e-15},
        {80, 90, 3600, 0.0012421558803375325121, 0.50062107794016876626},
        {150, 120, 5000, 7.8035655622895445853e-13, 7.0867495256774292188e-11}}) {
    SCOPED_TRACE(testing::Message() << nx << " " << ny << " " << u);
    EXPECT_TRUE(isNear(UDistriDensity(nx, ny, u), density));
    EXPECT_TRUE(isNear(UDistriIntegral(nx, ny, u), lower));
    EXPECT_EQ(UDistriDensity(ny, nx, nx * ny - u), UDistriDensity(nx, ny, u));
    EXPECT_TRUE(isNear(UDistriIntegral(nx, ny, nx * ny - u - 1), 1 - lower));
    EXPECT_EQ(UDistriQuantile(nx, ny, UDistriIntegral(nx, ny, u)), u);
    EXPECT_EQ(UDistriQuantile(nx, ny, UDistriIntegral(nx, ny, u) * (1 + 1e-15)), u + 1);
  }
  EXPECT_EQ(UDistriIntegral(3, 4, 12) + UDistriIntegral(3, 4, 100), 2);
  EXPECT_EQ(UDistriIntegral(3, 4, -1) + UDistriDensity(3, 4, 13) + UDistriDensity(0, 4, 0), 0);
  EXPECT_EQ(UDistriQuantile(3, 4, 0) + UDistriQuantile(0, 4, 0.5), 0);
  EXPECT_EQ(UDistriQuantile(3, 4, 1), 12);
}

TEST(Hypergeometric, ProbabilityAndRefusals) {
  EXPECT_NEAR(HyperGeoDistriDensity(0.5, 10, 5, 2), 100.0 / 252, 1e-9);
  EXPECT_NEAR(HyperGeoDistriDensity(0.45, 10, 5, 0), 6.0 / 252, 1e-9);  // 4 marked: ties to even
  EXPECT_EQ(HyperGeoDistriDensity(0.5, 10, 7, 1) + HyperGeoDistriDensity(0.5, 10, 7, 6), 0);
  const auto expectRefusal = [](double p, int npop, int nsample, const char* reason) {
    EXPECT_THROW_MSG((void)HyperGeoDistriDensity(p, npop, nsample, 0), EZELStatisError,
                     std::string("HyperGeoDistriDensity: ") + reason);
  };
  expectRefusal(1.1, 0, 5, "probability p must be between 0.0 and 1.0");
  expectRefusal(kNaN, 10, 5, "probability p must be between 0.0 and 1.0");
  expectRefusal(1, 0, 5, "npop must be greater than 0");
  expectRefusal(0, 4, 5, "nsample must not be greater than npop");
  expectRefusal(0.5, 4, 0, "nsample must not be less than 1");
}

}  // namespace
}  // namespace zel
