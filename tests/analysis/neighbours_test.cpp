#include "zel/analysis/neighbours.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <tuple>
#include <utility>

#include "tests/matrix/matrices.h"
#include "zel/base/Zel_univconst.h"

namespace zel {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

using Pairs = std::vector<std::pair<double, int>>;

/// Rows low..high by distance, then row; those without distance left out.
Pairs sorted(const TMatrix& m, int low, int high, const TVector& probe) {
  Pairs all;
  for (int r = low; r <= high; ++r) {
    double sum = 0;
    for (int c = 1; c <= probe.NrOfElem(); ++c) sum += std::pow(m(c, r) - probe(c), 2);
    if (!std::isnan(sum)) all.emplace_back(std::sqrt(sum), r);
  }
  std::ranges::sort(all);
  return all;
}

TEST(Neighbours, AreThoseOfASort) {
  for (int n : {1, 2, 7, 99, 260, 700}) {
    TMatrix m, list;
    test::fillNormal(m, 2, n, 3);
    for (int r = 1; r <= n; ++r) m.SetVal(1, r, std::round(2 * m(1, r)));  // ties, but not by root
    for (int r = 1; r <= n; ++r) m.SetVal(2, r, std::round(m(2, r)) * 0.7);
    if (n > 50) m.SetVal(1, 50, kNaN);
    if (n > 300) m.SetVal(2, 60, 1e9);
    for (const auto& probe : {TVector{0.3}, TVector{1, 0.7}, TVector{0, -0.7, 3}}) {
      list.Resize(2, 120);
      list.Fill(-1);
      FindNearestNeighbors(110, &m, n, 0, &probe, &list, {});  // exchanged and clamped
      const Pairs expected = sorted(m, 1, n, probe);
      const int k = std::min(n, 100);
      for (int i = 1; i <= 120; ++i) {
        const auto at = static_cast<std::size_t>(i - 1);
        const bool there = at < expected.size() && i <= k;
        EXPECT_EQ(list(1, i), there ? expected[at].second : i <= k ? 0 : -1) << n << ' ' << i;
        EXPECT_EQ(list(2, i), there ? expected[at].first : i <= k ? uc_MaxDouble : -1);
      }
    }
    TVector means{};
    means.Resize(n + 1);
    means.SetVal(n + 1, -1);
    for (const int wanted : {60, 4}) {
      MeanDistanceKNN(&m, wanted, n + 9, -4, &means);
      for (int r = 1; r <= n; ++r) {
        const Pairs expected = sorted(m, 1, n, TVector{m(1, r), m(2, r)});
        const std::size_t k = std::min<std::size_t>(expected.size(), wanted == 60 ? 50 : 4);
        double sum = 0;
        for (std::size_t i = 0; i < k; ++i) sum += expected[i].first;
        if (r == 50 && n > 50) {
          EXPECT_TRUE(std::isnan(means(r)));
        } else {
          EXPECT_NEAR(means(r), sum / static_cast<double>(k), 1e-14 * (1 + means(r)));
        }
      }
    }
    EXPECT_EQ(means(n + 1), -1);
    MeanDistanceKNN(&m, 0, n, n, &means);
    EXPECT_EQ(means(n), 0) << "itself alone";
  }
}

TEST(Neighbours, OfAllRowsAmongScatteredOnes) {
  for (const int columns : {1, 3, 6}) {
    TMatrix m;
    test::fillNormal(m, columns, 900);
    TVector means, probe;
    means.Resize(900);
    probe.Resize(columns);
    MeanDistanceKNN(&m, 10, 1, 900, &means);
    for (int r = 1; r <= 900; ++r) {
      for (int c = 1; c <= columns; ++c) probe.SetVal(c, m(c, r));
      double sum = 0;
      const Pairs expected = sorted(m, 1, 900, probe);
      for (std::size_t i = 0; i < 10; ++i) sum += expected[i].first;
      ASSERT_NEAR(means(r), sum / 10, 1e-14) << columns << ' ' << r;
    }
  }
}

TEST(Neighbours, ByACallersDistance) {
  TMatrix m, list{{-1, -1}, {-1, -1}};
  m.Resize(1, 9);
  FindNearestNeighbors(2, &m, 3, 8, nullptr, &list, [](int row) { return std::abs(row - 6.5); });
  EXPECT_TRUE(std::ranges::equal(list.Elements(), std::vector{6.0, 7.0, 0.5, 0.5}));
  FindNearestNeighbors(2, &m, 3, 8, nullptr, &list, {});
  FindNearestNeighbors(0, &m, 3, 8, nullptr, &list, [](int) { return 0.0; });
  EXPECT_EQ(list(1, 1), 6) << "untouched";
}

TEST(Neighbours, EstimateByEachMode) {
  // Distances 0, 1, 2, 3 from 0; mean 1.5.
  const TMatrix line{{0}, {1}, {-2}, {3}, {50}};
  const TVector targets{10, 20, 40, 90, 1000};
  const double g = std::exp(-4 / 9.0), w = 2.25;  // 1.5 times the width
  const double gauss[] = {1, g, std::pow(g, 4), std::pow(g, 9)};
  const std::tuple<TKnnWMode, double, double> cases[] = {
      {kwmGauss, 1,
       (10 + 20 * gauss[1] + 40 * gauss[2] + 90 * gauss[3]) / (1 + gauss[1] + gauss[2] + gauss[3])},
      {kwmAverage, 1, 40},
      {kwmMedian, 1, 30},
      {kwmLinear, 1.5, (10 + 20 * (1 - 1 / w) + 40 * (1 - 2 / w)) / (3 - 3 / w)},
      {kwmLinear, 0, 0},
      {static_cast<TKnnWMode>(9), 1, 0}};
  const TVector origin{0};
  double estimate = -1, distance = -1;
  for (const auto& [mode, width, expected] : cases) {
    EstimateByKNN(&line, &targets, 4, mode, width, &origin, estimate, distance);
    EXPECT_NEAR(estimate, expected, 1e-13) << int{mode};
    EXPECT_EQ(distance, 1.5);
  }
  // Every weight is below the doubles beside the nearest; at distance 0 the scale is 0.001.
  const TMatrix far{{1}, {1.5}};
  EstimateByKNN(&far, &targets, 2, kwmGauss, 100, &origin, estimate, distance);
  EXPECT_EQ(estimate, 10);
  EstimateByKNN(&line, &targets, 1, kwmLinear, 1, &origin, estimate, distance);
  EXPECT_EQ(estimate, 10);
  EXPECT_EQ(distance, 0);
  const TVector nowhere{kNaN};
  EstimateByKNN(&line, &targets, 3, kwmAverage, 1, &nowhere, estimate, distance);
  EXPECT_EQ(estimate, 0);
  EXPECT_EQ(distance, uc_MaxDouble);
  EstimateByKNN(nullptr, &targets, 3, kwmAverage, 1, &nowhere, estimate = 1, distance);
  EXPECT_EQ(estimate, 0);
}

TEST(Neighbours, EstimateAQuadraticSurfaceExactly) {
  const auto surface = [](double x, double y, double z) {
    return 3 - x + 2 * y + x * x - 0.5 * y * y + z * z + 4 * x * y - x * z + 2 * y * z;
  };
  TMatrix m;
  test::fillNormal(m, 3, 400, 5);
  TVector t;
  t.Resize(400);
  for (int r = 1; r <= 400; ++r) t.SetVal(r, surface(m(1, r), m(2, r), m(3, r)));
  double estimate = 0, distance = 0;
  const TVector probe{0.2, -0.3, 0.1};
  EstimateByKNN(&m, &t, 40, kwmBiQuad, 1, &probe, estimate, distance);
  EXPECT_NEAR(estimate, surface(0.2, -0.3, 0.1), 1e-12);
  t.Fill(kNaN);
  EstimateByKNN(&m, &t, 40, kwmBiQuad, 1, &probe, estimate, distance);
  EXPECT_EQ(estimate, 0) << "no fit";
}

}  // namespace
}  // namespace zel
