#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>

#include "zel/base/Zel_zelbase.h"
#include "zel/statistics/Zel_statis.h"

namespace zel {
namespace {

/// The values of their own distribution function are uniform if the draws follow it; bounds of five
/// deviations of the first two moments.
template <class Distribution>
void check(const TRandGen& generator, Distribution&& F) {
  double sum = 0, squares = 0;
  for (int i = 0; i < 40000; ++i) {
    const double value = F(generator.Random());
    sum += value / 40000;
    squares += value * value / 40000;
  }
  EXPECT_NEAR(sum, 1 / 2.0, 0.0072);
  EXPECT_NEAR(squares, 1 / 3.0, 0.0075);
}

TEST(RandGen, DrawsFollowTheDistribution) {
  SetRandSeed(5);
  TRandGen g;
  g.SetHighBorder(40);
  g.SetResolution(10);  // uniform, falling off in the last bin
  check(g, [](double x) { return (x - std::pow(std::max(x - 36, 0.0), 2) / 8) / 38; });
  g.SetResolution(1000);
  g.NormalDistri(5, 1);
  check(g, [](double x) { return nDistriIntegral(x - 5); });
  g.Chi2Distri(1);  // infinite at 0
  EXPECT_NEAR((g.Probability(1) + g.Probability(2)) / 2 * 0.04, chi2DistriIntegral(0.04, 1), 1e-15);
  g.FDistri(8, 9);
  EXPECT_TRUE(g.Standardize());
  check(g, [](double x) { return FDistriIntegral(x, 8, 9); });
}

TEST(RandGen, TableAndBins) {
  TRandGen g;
  g.SetLowBorder(2);
  g.SetHighBorder(4);
  g.SetResolution(5);
  for (int i = 1; i <= 10; ++i) g.SetProbability(i, i == 3 ? 1.7 : -1);
  EXPECT_EQ(g.GetProbability(3) + g.Probability(4) + g.Probability(0) + g.Probability(11), 1);
  EXPECT_EQ(g.GetLambda(0) + g.GetLambda(6) + g.GetLambda(11), 9);
  EXPECT_EQ(g.IndexOfLambda(1.9) + g.IndexOfLambda(2) + g.IndexOfLambda(2.5), 0 + 1 + 3);
  EXPECT_EQ(g.IndexOfLambda(4) + g.IndexOfLambda(4.1), 22);
  for (int i = 1; i <= 10; ++i) g.SetProbability(i, i % 2 ? 0.5 : 0.25);
  EXPECT_TRUE(g.Standardize());
  EXPECT_EQ(g.Probability(2), 0.5);
  g.Normalize();
  EXPECT_EQ(g.Probability(1) - g.Probability(2), 1);
  for (int i = 1; i <= 10; ++i) g.SetProbability(i, 0);
  EXPECT_FALSE(g.Standardize());
  EXPECT_GE(g.Random(), 2);  // after all attempts
}

/// Each rule written out as it is stated: walks over gaps, exponentials.
TEST(DensityEstimate, FollowsTheRules) {
  for (const double radius : {0.0, 0.1, 0.5, 2.5, 100.0}) {
    TVector x{3, 1, 1, 1, 4.5, 9, 4.25, 2, 1, 7, 7.125, 20}, density;
    int calls = 0, minIx = -1, maxIx = -1;
    EstimateProbDensity(&x, &density, -5, 25, -1, radius, 60, minIx, maxIx,
                        [&](TObject*, double percent, double count) {
                          EXPECT_EQ(count, ++calls);
                          EXPECT_NEAR(percent, 100 * count / 72, 1e-12);
                        });
    std::vector<double> expected(61);
    for (int i = 1; i <= 12; ++i) {
      double sum = 0, count = 0;
      const auto isNear = [&](int j) { return std::abs(x.Elem(j) - x.Elem(i)) < radius; };
      for (int j = std::min(i + 1, 12); isNear(j) && j > 1; --j, ++count)
        sum += x.Elem(j) - x.Elem(j - 1);
      for (int j = std::max(i - 1, 1); isNear(j) && j < 12; ++j, ++count)
        sum += x.Elem(j + 1) - x.Elem(j);
      const double width = count == 0 ? radius : (sum == 0 ? radius : sum) / count;
      const double h = width == 0 ? 1 : width;
      for (std::size_t k = 0; k <= 60; ++k)
        expected[k] += nDistriDensity((-5 + static_cast<double>(k) / 2 - x.Elem(i)) / h) / h / 12;
    }
    for (std::size_t k = 0; k < 61; ++k) EXPECT_NEAR(density.Elements()[k], expected[k], 1e-14);
    EXPECT_EQ(calls, 12 + 61);
    EXPECT_EQ(minIx, std::ranges::min_element(expected) - expected.begin() + 1);
    EXPECT_EQ(maxIx, std::ranges::max_element(expected) - expected.begin() + 1);
  }
}

}  // namespace
}  // namespace zel
