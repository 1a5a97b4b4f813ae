#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>

#include "zel/base/Zel_zelbase.h"
#include "zel/statistics/Zel_statis.h"

namespace zel {
namespace {

/// Largest distance between the distribution function of the draws and F.
template <class Distribution>
double distance(const TRandGen& generator, Distribution&& F) {
  std::vector<double> x(20000);
  SetRandSeed(5);
  for (double& v : x) v = generator.Random();
  std::ranges::sort(x);
  double d = 0;
  const double n = static_cast<double>(x.size());
  for (std::size_t i = 0; i < x.size(); ++i)
    d = std::max(d, std::abs(F(x[i]) - (static_cast<double>(i) + 0.5) / n));
  return d;
}

/// sqrt(n) d exceeds 1.95 in one of a thousand samples.
TEST(RandGen, DrawsFollowTheDistribution) {
  constexpr double kMost = 0.0138;
  TRandGen g;
  g.SetHighBorder(10);
  EXPECT_LT(distance(g, [](double x) { return x / 10; }), kMost);
  g.SetResolution(1000);
  g.NormalDistri(5, 1);
  EXPECT_LT(distance(g, [](double x) { return nDistriIntegral(x - 5); }), kMost);
  g.SetHighBorder(40);
  g.Chi2Distri(1);  // infinite at 0
  EXPECT_NEAR((g.Probability(1) + g.Probability(2)) / 2 * 0.04, chi2DistriIntegral(0.04, 1), 1e-15);
  g.Chi2Distri(6);
  EXPECT_TRUE(g.Standardize());
  EXPECT_LT(distance(g, [](double x) { return chi2DistriIntegral(x, 6); }), kMost);
  g.FDistri(8, 9);
  EXPECT_LT(distance(g, [](double x) { return FDistriIntegral(x, 8, 9); }), kMost);
  g.SetLowBorder(-40);
  g.tDistri(4);
  EXPECT_LT(distance(g, [](double x) { return tDistriIntegral(x, 4); }), kMost);
  g.WeibullDistri(2, 9);
  EXPECT_LT(distance(g, [](double x) { return 1 - std::exp(-x * x / 81); }), kMost);
}

TEST(RandGen, TableAndBins) {
  TRandGen g;
  g.SetLowBorder(2);
  g.SetHighBorder(4);
  g.SetResolution(5);
  for (int i = 1; i <= 10; ++i) g.SetProbability(i, 0);
  EXPECT_FALSE(g.Standardize());
  EXPECT_GE(g.Random(), 2);  // after all attempts
  g.SetProbability(3, 1.7);
  g.SetProbability(4, -1);
  g.SetProbability(6, 0.25);
  EXPECT_EQ(g.GetProbability(3), 1);
  EXPECT_EQ(g.Probability(4) + g.Probability(0) + g.Probability(11), 0);
  EXPECT_EQ(g.GetLambda(0) + g.GetLambda(6) + g.GetLambda(11), 9);
  EXPECT_EQ(g.IndexOfLambda(1.9) + g.IndexOfLambda(2), 1);
  EXPECT_EQ(g.IndexOfLambda(2.5), 3);
  EXPECT_EQ(g.IndexOfLambda(4) + g.IndexOfLambda(4.1), 22);
  for (int i = 1; i <= 10; ++i) g.SetProbability(i, i % 2 ? 0.5 : 0.25);
  EXPECT_TRUE(g.Standardize());
  EXPECT_EQ(g.Probability(2), 0.5);
  g.Normalize();
  EXPECT_EQ(g.Probability(1) - g.Probability(2), 1);
  g.SetResolution(5000);
  EXPECT_EQ(g.Probability(4000) + g.Probability(4001), 1);
}

/// The estimate with each rule written out as it is stated: walks over gaps, exponentials.
std::vector<double> slowEstimate(std::vector<double> x, double radius) {
  std::ranges::sort(x);
  const std::size_t n = x.size();
  std::vector<double> density(61);
  for (std::size_t i = 0; i < n; ++i) {
    double sum = 0, count = 0;
    const auto isNear = [&](std::size_t j) { return std::abs(x[j] - x[i]) < radius; };
    for (std::size_t j = std::min(i + 1, n - 1); isNear(j) && j > 0; --j, ++count)
      sum += x[j] - x[j - 1];
    for (std::size_t j = i > 0 ? i - 1 : 0; isNear(j) && j < n - 1; ++j, ++count)
      sum += x[j + 1] - x[j];
    double h = count == 0 ? radius : (sum == 0 ? radius : sum) / count;
    if (h == 0) h = 1;
    for (std::size_t k = 0; k <= 60; ++k) {
      const double z = (-5 + static_cast<double>(k) / 2 - x[i]) / h;
      density[k] += std::exp(-z * z / 2) / h / static_cast<double>(n) / std::sqrt(2 * M_PI);
    }
  }
  return density;
}

TEST(DensityEstimate, MatchesTheRulesWrittenOut) {
  const std::vector<double> values{3, 1, 1, 1, 4.5, 9, 4.25, 2, 1, 7, 7.125, 20};
  for (const double radius : {0.0, 0.1, 0.5, 2.5, 100.0}) {
    TVector data(values), density;
    int calls = 0, changes = 0, minIx = -1, maxIx = -1;
    density.OnChange = [&](TObject*) { ++changes; };
    EstimateProbDensity(&data, &density, -5, 25, -1, radius, 60, minIx, maxIx,
                        [&](TObject* sender, double percent, double count) {
                          EXPECT_EQ(sender, nullptr);
                          EXPECT_EQ(count, ++calls);
                          EXPECT_NEAR(percent, 100 * count / 72, 1e-12);
                        });
    const auto expected = slowEstimate(values, radius);
    ASSERT_EQ(density.NrOfElem(), 61);
    for (std::size_t k = 0; k < 61; ++k) EXPECT_NEAR(density.Elements()[k], expected[k], 1e-14);
    EXPECT_EQ(calls, 12 + 61);
    EXPECT_EQ(changes, 1);
    EXPECT_TRUE(std::ranges::is_sorted(data.Elements()));
    const auto [least, most] = std::ranges::minmax_element(density.Elements());
    EXPECT_EQ(minIx, least - density.Elements().begin() + 1);
    EXPECT_EQ(density.Elem(maxIx), *most);
  }
  TVector one{5};
  int minIx = 7, maxIx = 8;
  EstimateProbDensity(&one, &one, 1000, 2000, 1, 1, 3, minIx, maxIx, nullptr);
  EXPECT_EQ(one.NrOfElem(), 11);
  EXPECT_EQ(minIx, 1);
  EXPECT_EQ(maxIx, 8);
}

}  // namespace
}  // namespace zel
