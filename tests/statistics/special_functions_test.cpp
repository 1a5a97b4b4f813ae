#include <climits>
#include <cmath>

#include <gtest/gtest.h>

#include "tests/support/expect_message.h"
#include "zel/statistics/Zel_statis.h"

namespace zel {
namespace {

/// Beside the library functions and the distributions, which have full precision.
TEST(SpecialFunctions, StayWithinTheirAccuracy) {
  for (const double x : {1e-3, 0.5, 1.0, 2.0, 3.25, 17.5, 400.0}) {
    EXPECT_NEAR(LnGamma(x), std::lgamma(x), 3e-10 + 1e-15 * std::lgamma(x)) << x;
    EXPECT_NEAR(Erf(-x), -std::erf(x), 2e-8) << x;
    EXPECT_NEAR(nDistriIntegral(-x / 20) / (std::erfc(x / 20 / std::sqrt(2)) / 2), 1, 2e-8);
    for (const int df : {1, 3, 40, 900})
      EXPECT_NEAR(IncompleteGamma(x / 2, df / 2.0), chi2DistriIntegral(x, df), 2e-8) << x << df;
    const int k = static_cast<int>(x) + 1;
    for (const double p : {0.0, 0.01, 0.3, 0.5, 0.77, 0.999, 1.0})
      EXPECT_NEAR(IncompleteBeta(p, 4, k), BinomDistriIntegral(k + 3, 1 - p, k - 1), 2e-8);
  }
  EXPECT_EQ(LnGamma(0) + LnGamma(-3) + LnBeta(-1, 2) + LnBeta(2, -1), 0);
  EXPECT_EQ(IncompleteGamma(0, 2) + IncompleteGamma(2, 0) + IncompleteBeta(-1, 2, 2), 0);
  EXPECT_NEAR(WeibullDensity(6, 2, 3), 4 / 3.0 * std::exp(-4), 1e-16);
}

TEST(SpecialFunctions, NormalQuantiles) {
  for (const double p : {1e-300, 1e-20, 1e-9, 0.001, 0.3, 0.4999, 0.5, 0.975, 1 - 1e-9})
    EXPECT_NEAR(nDistriIntegral(nDistriQuantile(p)) / p, 1, 2e-8) << p;
  EXPECT_NEAR(ConfidenceInterval(0.05, 3, 9), 1.959963984540054, 1e-7);
}

TEST(SpecialFunctions, BinomialCoefficientsAndFisherTransform) {
  for (int n = 1; n <= 33; ++n)
    for (int k = 1; k < n; ++k)
      ASSERT_EQ(BinomCoeff(n, k), BinomCoeff(n - 1, k - 1) + BinomCoeff(n - 1, k));
  EXPECT_EQ(BinomCoeff(34, 17), INT_MAX);
  EXPECT_EQ(LnBinomCoeff(2, 5) + BinomCoeff(3, 4), -1);
  EXPECT_NEAR(FisherTransformInv(FisherTransform(-0.9)), -0.9, 1e-15);
  EXPECT_THROW_MSG((void)FisherTransform(-1), EZELStatisError,
                   "FisherTransform: argument out of range");
}

/// n = 10: Marsaglia, Tsang and Wang (2003); else R's ks.test.
TEST(GoodnessOfFit, KolmogorovSmirnov) {
  EXPECT_NEAR(KSPValue(10, 0.274), 1 - 0.628479615456504275, 1e-14);
  EXPECT_NEAR(KSPValue(20000, 0.008), 0.15371596725059, 1e-12);  // powers scaled down
  EXPECT_NEAR(KSPValue(99, 0.2), 0.00060187124282240489, 1e-14);
  EXPECT_EQ(KSPValue(0, 0.5) + KSPValue(10, 0.01) + KSQuantile(0, Dot20), 1);
  EXPECT_NEAR(KSPValue(100, 0.1938), KSPValue(100, 0.1940), 2e-5);
  for (const int n : {1, 20, 21}) EXPECT_NEAR(KSPValue(n, KSQuantile(n, Dot05)), 0.05, 1e-4);
}

/// Shapiro-Wilk: R's shapiro.test; the censored one by the published formulas in mpmath.
TEST(GoodnessOfFit, LillieforsAndShapiroWilk) {
  EXPECT_NEAR(LillieforsPValue(400, LillieforsQuantile(400, 0.05)), 0.05, 0.003);
  const auto check = [](double w, int n, int m, double p) {
    EXPECT_NEAR(ShapiroWilkIntegral(w, n, m) / p, 1, 1e-10) << n;
  };
  check(0.99002325978905314, 3, 3, 0.80891767966920147);
  check(0.81696445526422501, 11, 11, 0.015731386549518347);
  check(0.90506375694787899, 12, 0, 0.18435349687300101);
  check(0.81890700687352225, 500, 500, 2.575634877591852e-23);
  check(0.9, 20, 15, 0.11474927533457821);
  for (const auto& [n, m] : {std::pair{2, 2}, {20, 21}, {20, -1}, {19, 18}, {100, 19}})
    EXPECT_EQ(ShapiroWilkIntegral(0.9, n, m), -1) << n << " " << m;
}

TEST(CriticalValues, TablesAndWhatReplacesThem) {
  EXPECT_EQ(DeanDixonCriticalValues(3, Dot001) + DeanDixonCriticalValues(100, Dot500), 1.11);
  EXPECT_EQ(DeanDixonCriticalValues(2, Dot050) + DeanDixonCriticalValues(101, Dot050), -2);
  EXPECT_EQ(WilcoxonSRQuantile(8, 0.05, true), 3);
  EXPECT_NEAR(WilcoxonSRQuantile(60, 0.05, false), 690, 2);
  EXPECT_EQ(WilcoxonSRQuantile(200, 0.025, false), 8444);  // 10050 - 1.95996 * 819.4
  EXPECT_EQ(WilcoxonSRQuantile(7, 0.05, true) + WilcoxonSRQuantile(1000001, 0.05, true), -2);
  EXPECT_NEAR(GrubbsCriticalValues(10, 0.05, true), 2.290, 5e-4);  // Grubbs (1969), table 1
}

/// Exact bounds by Imhof's integral, beside the table's rounding and the errors of the fits.
TEST(CriticalValues, DurbinWatson) {
  double dL = 7, dU = 7;
  for (const int n : {15, 5, 2001}) EXPECT_FALSE(DurbinWatsonCrit5pct(n, 11, dL, dU)) << n;
  EXPECT_EQ(dL + dU, 14);
  const auto check = [&](int n, int k, double low, double high, double error) {
    EXPECT_TRUE(DurbinWatsonCrit5pct(n, k, dL, dU));
    EXPECT_NEAR(std::hypot(dL - low, dU - high), 0, error) << n;
  };
  check(6, 1, 0.6101817654969, 1.4001448548057, 5e-4);
  check(100, 20, 1.2292815069951, 2.1635205747286, 7e-4);
  check(101, 1, 1.6558244051953, 1.6957699764792, 4e-5);
  check(2000, 20, 1.9062885276905, 1.9466831097281, 4e-5);
}

/// Goodman and Kruskal (1954): eye colour by hair colour.
TEST(Association, LambdaAndFisherRatio) {
  double a = 9, b = 9;
  TInt2DArray table{{1768, 807, 189, 47, 2811},
                    {946, 1387, 746, 53, 3132},
                    {115, 438, 288, 16, 857},
                    {2829, 2632, 1223, 116, 6800}};
  EXPECT_EQ(Lambda(table, a, b), 0);
  EXPECT_NEAR(std::hypot(a - 0.1924, b - 0.2241), 0, 7e-5);
  table[3][4] = 6801;
  EXPECT_EQ(Lambda(table, a, b), -1);
  EXPECT_EQ(Lambda({{0, 5, 5}, {0, 7, 7}, {0, 12, 12}}, a, b), 0);  // one column only
  EXPECT_EQ(a + b, 0);
  EXPECT_NEAR(CalcFishQ(5, 2, 1, 2), 1.8, 1e-15);
}

}  // namespace
}  // namespace zel
