#include "zel/analysis/Zel_math2.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <functional>
#include <limits>
#include <random>

#include "tests/base/temp_dir.h"
#include "tests/matrix/matrices.h"
#include "tests/support/expect_message.h"
#include "tests/support/same_bits.h"
#include "zel/kernels/distances.h"

namespace zel {
namespace {

using Clustering = test::WithProgress;
using Numbers = std::vector<double>;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// Whole numbers below `levels`, so that many distances are equal.
TMatrix& tied(TMatrix& m, int columns, int rows, int levels, unsigned seed) {
  std::mt19937 random(seed);
  m.Resize(columns, rows);
  for (int c = 1; c <= columns; ++c) {
    for (int r = 1; r <= rows; ++r) {
      m.SetVal(c, r, static_cast<double>(random() % static_cast<unsigned>(levels)));
    }
  }
  return m;
}

double square(const TMatrix& a, int i, const TMatrix& b, int j) {
  double sum = 0;
  for (int c = 1; c <= a.NrOfColumns(); ++c) sum += (a(c, i) - b(c, j)) * (a(c, i) - b(c, j));
  return sum;
}

struct Tree {
  TIntMatrix merges;
  TVector heights, positions;
};

/// The clustering as it is defined: every pair looked at in every step.
void searchAllPairs(const TMatrix& m, TDistMode mode, TClusterMethod method, double f, Tree& tree) {
  const int n = m.NrOfRows();
  TMatrix d;
  d.Resize(n, n);
  m.CalcDistMat(mode, &d);
  std::vector<int> id(static_cast<std::size_t>(n) + 1), size(id.size(), 1);
  for (std::size_t i = 1; i < id.size(); ++i) id[i] = static_cast<int>(i);
  tree.merges.Resize(3, n - 1);
  tree.heights.Resize(n - 1);
  tree.positions.Resize(2 * n - 1);
  const auto at = [](auto& v, int i) -> auto& { return v[static_cast<std::size_t>(i)]; };
  for (int s = 1; s < n; ++s) {
    int bi = 0, bj = 0;
    double least = std::numeric_limits<double>::max();
    for (int i = 1; i <= n; ++i) {
      for (int j = i + 1; j <= n; ++j) {
        if (at(id, i) && at(id, j) && d(i, j) < least) least = d(bi = i, bj = j);
      }
    }
    for (int i = 1; i <= n && !bj; ++i) {
      if (at(id, i)) (bi ? bj : bi) = i;
    }
    const double dij = d(bi, bj), ni = at(size, bi), nj = at(size, bj);
    for (int k = 1; k <= n; ++k) {
      const double a = d(bi, k), b = d(bj, k), nk = at(size, k);
      const double rules[] = {a < b ? a : b,
                              a > b ? a : b,
                              ((nk + ni) * a + (nk + nj) * b - nk * dij) / (ni + nj + nk),
                              (a + b) / 2,
                              f * (a + b) + (1 - 2 * f) * dij,
                              (ni * a + nj * b) / (ni + nj)};
      d.SetVal(k, bj, rules[method]);
      d.SetVal(bj, k, rules[method]);
    }
    tree.merges.SetVal(1, s, at(id, bi));
    tree.merges.SetVal(2, s, at(id, bj));
    tree.merges.SetVal(3, s, n + s);
    tree.heights.SetVal(s, dij);
    at(id, bj) = n + s;
    at(size, bj) += at(size, bi);
    at(id, bi) = at(size, bi) = 0;
  }
  // Leaves from left to right, then each union between its parts.
  int next = 0;
  const std::function<void(int)> place = [&](int node) {
    if (node <= n) return tree.positions.SetVal(node, ++next);
    place(tree.merges(1, node - n));
    place(tree.merges(2, node - n));
    const double a = tree.positions(tree.merges(1, node - n));
    tree.positions.SetVal(node, (a + tree.positions(tree.merges(2, node - n))) / 2);
  };
  place(2 * n - 1);
}

TEST_F(Clustering, MergesThePairsThatASearchOfAllPairsFinds) {
  // Ties, and what has no order at all, must go to the same pair.
  for (unsigned seed = 0; seed < 240; ++seed) {
    SCOPED_TRACE(seed);
    const int n = 2 + static_cast<int>(seed % 40);
    TMatrix m;
    const int levels = seed % 12 < 6 ? 2 + static_cast<int>(seed / 8) : 1 << 20;
    tied(m, 1 + static_cast<int>(seed % 3), n, levels, seed);
    if (seed % 5 == 0) m.SetVal(1, n / 2, kNaN);
    if (seed % 7 == 0) m.SetVal(1, n, 1e300);
    const auto method = static_cast<TClusterMethod>(seed % 6);
    const TDistMode mode = seed % 4 == 0 ? dmEuclid : seed % 4 == 1 ? dmManhattan : dmSqrEuclid;
    const double f = 0.25 * (seed % 7);
    Tree expected, found;
    searchAllPairs(m, mode, method, std::clamp(f, 0.5, 1.0), expected);
    EXPECT_EQ(AgglomClustering(nullptr, &m, mode, method, f, &found.merges, &found.heights,
                               &found.positions, {}, {}),
              0);
    EXPECT_EQ(test::contents(expected.merges), test::contents(found.merges));
    EXPECT_EQ(test::firstDifference(expected.heights.Elements(), found.heights.Elements()), "");
    EXPECT_EQ(test::firstDifference(expected.positions.Elements(), found.positions.Elements()), "");
  }
}

TEST_F(Clustering, ReportsStopsAndGivesTheEventBack) {
  TMatrix m{{0}, {1}, {5}};
  Tree tree;
  m.OnCalcDistance = [](TObject*, int, int, double& d) { d = -7; };
  AbortMathProc = true;  // cleared by the call
  Numbers percents;
  double last = 100;  // beyond it the feedback stops the call
  const auto cluster = [&](TMatrix* data) {
    const auto feedback = [&](TObject* Sender, double Count, double Percent) {
      EXPECT_EQ(Sender, &m);
      EXPECT_EQ(Count, ProcStat);
      percents.push_back(Percent);
      if (Percent > last) AbortMathProc = true;
    };
    const auto distance = [](TObject*, int i, int j, double& d) { d = i * j; };
    return AgglomClustering(&m, data, dmUser, cmSingleLink, 1, &tree.merges, &tree.heights,
                            &tree.positions, feedback, distance);
  };
  EXPECT_EQ(cluster(&m), 0);
  EXPECT_EQ(test::contents(tree.heights), (Numbers{2, 3}));
  EXPECT_EQ(percents, (Numbers{0, 100.0 / 3, 200.0 / 3}));
  last = 50;
  EXPECT_EQ(cluster(&m), -1);
  EXPECT_EQ(test::contents(tree.positions), Numbers(5));
  EXPECT_EQ(test::contents(tree.heights), Numbers(2));
  EXPECT_EQ(tree.merges.Sum(0, 0, 0, 0), 0);
  EXPECT_EQ(m.DistanceOfObjects(dmUser, 1, 2), -7) << "by the handler of before";
  EXPECT_EQ(cluster(nullptr), -1);
  for (const int n : {0, 1}) {
    m.Resize(1, n);
    EXPECT_EQ(cluster(&m), 0);
    EXPECT_EQ(tree.positions(1), n);
    EXPECT_EQ(tree.merges.NrOfRows(), 0);
  }
}

TEST_F(Clustering, PartitionsAroundMeans) {
  TMatrix m, centres;
  TIntVector assigned, sizes;
  for (unsigned seed = 0; seed < 60; ++seed) {
    SCOPED_TRACE(seed);
    const int n = 3 + static_cast<int>(seed), k = 1 + static_cast<int>(seed % 9) % n;
    tied(m, 2, n, 4, seed).SMult(0.1);
    const double within =
        kMeansClustering(&m, 0, 0, k, static_cast<int>(seed % 3), &centres, &assigned, &sizes);
    double sum = 0;
    for (int r = 1; r <= n; ++r) {
      const double own = square(m, r, centres, assigned(r));
      sum += own;
      for (int i = 1; i <= k; ++i) EXPECT_GE(square(m, r, centres, i), own - 1e-14);
    }
    EXPECT_NEAR(within, sum, 1e-12);
    for (int i = 1; i <= k; ++i) {
      EXPECT_EQ(sizes(i), std::ranges::count(assigned.Elements(), i));
      EXPECT_GE(i == 1 ? n : sizes(i - 1), sizes(i));
      for (int c = 1; c <= 2; ++c) {
        double total = 0;
        for (int r = 1; r <= n; ++r) total += assigned(r) == i ? m(c, r) : 0;
        EXPECT_NEAR(centres(c, i), sizes(i) ? total / sizes(i) : 0, 1e-14);
      }
    }
  }
  // The mean of many at one place is that place, and of equally near centres the first wins.
  TMatrix equal{{0.1}, {0.1}, {0.1}, {7}};
  EXPECT_EQ(kMeansClustering(&equal, 0, 0, 4, &centres, &assigned), 0);
  EXPECT_EQ(centres(1, 1), 0.1);

  // Equal sizes: 1, 2, 1, 1 in the order of the comb sort.
  TMatrix steps{{0}, {10}, {20}, {30}, {11}};
  TIntMatrix order{{1, 1}, {2, 2}, {1, 3}, {1, 4}};
  order.SortRows(1, false, 0, 0, 0, 0);
  kMeansClustering(&steps, 0, 0, 4, 0, &centres, &assigned, &sizes);
  for (int c = 1; c <= 4; ++c) EXPECT_EQ(assigned(order(2, c)), c);
}

TEST_F(Clustering, OfMeansStartsReportsAndStops) {
  TMatrix m{{0}, {1}, {10}, {11}}, centres;
  TIntVector assigned, sizes;
  EXPECT_EQ(kMeansClustering(&m, 0, 0, 2, 0, &centres, &assigned, &sizes), 1);
  EXPECT_EQ(ProcStat, 3);
  // Stopped in the first pass: the assignment is to the rows that were drawn, in their order.
  MathFeedBackProc = [](double) { AbortMathProc = true; };
  for (int seed = 1; seed < 9; ++seed) {
    EXPECT_EQ(kMeansClustering(&m, 0, 0, 2, seed, &centres, &assigned, &sizes), -1);
    SetRandSeed(static_cast<std::uint64_t>(seed));
    const double a = m(1, Random(4) + 1), b = m(1, Random(4) + 1);
    for (int r = 1; r <= 4; ++r) {
      EXPECT_EQ(assigned(r), std::abs(m(1, r) - b) < std::abs(m(1, r) - a) ? 2 : 1);
    }
  }
  reset();
  EXPECT_THROW_MSG(kMeansClustering(&m, 0, 0, 5, &centres, &assigned), EZELMath2Error,
                   "kMeansClustering: number of clusters is greater than number of objects");
  EXPECT_EQ(kMeansClustering(nullptr, 0, 0, 5, &centres, &assigned), 0);
  EXPECT_EQ(kMeansEstimatedSteps(1, 1, 1), 20);
  EXPECT_EQ(kMeansEstimatedSteps(10000, 10000, 5), 1784);

  // Each point lies just behind the border of the pass before, so every pass moves one.
  const int n = 1100;
  m.Resize(1, n);
  double sum = 0, border = 0;
  for (int r = 1; r < n; ++r) {
    const double next = r < 2 ? 0 : (sum / (r - 1) + (n - sum) / (n - r + 1)) / 2;
    m.SetVal(1, r, r < 3 ? next * 0.999 : (next + border) / 2);
    border = next;
    sum += m(1, r);
  }
  m.SetVal(1, n, n - sum);
  EXPECT_THROW_MSG(kMeansClustering(&m, 0, 0, 2, 0, &centres, &assigned, &sizes), EZELMath2Error,
                   "kMeansClustering: max. number of iterations exceeded");
  EXPECT_EQ(ProcStat, 1001);
  EXPECT_EQ(test::contents(sizes), (std::vector{1001, 99}));
}

/// Moves to a folder of its own.
struct InFolder {
  InFolder() {
    std::filesystem::current_path(std::filesystem::path(folder.file("")).parent_path());
  }
  ~InFolder() { std::filesystem::current_path(before); }
  zel_test::TempDir folder;
  std::filesystem::path before = std::filesystem::current_path();
};

TEST_F(Clustering, FindsCentresOfTheNearestPairs) {
  const InFolder in;
  for (unsigned seed = 0; seed < 60; ++seed) {
    SCOPED_TRACE(seed);
    const int n = 4 + static_cast<int>(seed % 20), wanted = 1 + static_cast<int>(seed % 4);
    TMatrix m, x, centres{{-1, -1}, {-1, -1}, {-1, -1}, {-1, -1}};
    tied(m, 2, n, 5, seed);
    if (seed % 9 == 0) m.SetVal(2, 3, 1e9);
    x.Clone(&m);
    const int low = seed % 3 == 0 ? 2 : 1;
    double mean = 0;
    ProcStat = 0;
    FindCenters(&m, low, n, wanted, &centres, mean);
    Numbers w(static_cast<std::size_t>(n) + 1, 1);
    int last = n;
    for (; last - low + 1 > wanted; --last) {
      int i = low, j = low + 1;
      for (int a = low; a <= last; ++a) {
        for (int b = a + 1; b <= last; ++b) {
          if (square(x, a, x, b) < square(x, i, x, j)) i = a, j = b;
        }
      }
      double &wi = w[static_cast<std::size_t>(i)], &wj = w[static_cast<std::size_t>(j)];
      for (int c = 1; c <= 2; ++c) {
        x.SetVal(c, i, (wi * x(c, i) + wj * x(c, j)) / (wi + wj));
        x.SetVal(c, j, x(c, last));
      }
      wi += wj;
      wj = w[static_cast<std::size_t>(last)];
    }
    double sum = 0;
    for (int r = low; r <= last; ++r) {
      double least = 1e10;
      for (int k = low; k <= last; ++k) {
        if (k != r) least = std::min(least, square(x, r, x, k));
      }
      sum += std::sqrt(least);
      for (int c = 1; c <= 2; ++c) EXPECT_EQ(centres(c, r - low + 1), x(c, r));
    }
    EXPECT_NEAR(mean, sum / wanted, 1e-12 * sum);
    EXPECT_EQ(ProcStat, n - low + 1 - wanted);
    EXPECT_EQ(centres(1, 4), wanted < 4 ? -1 : x(1, low + 3));
  }
  TMatrix m{{1, kNaN}, {1, 2}, {4, 2}}, centre;
  double mean = 3;
  MathFeedBackProc = [](double) {
    EXPECT_TRUE(std::filesystem::exists("MAT.$$$"));
    AbortMathProc = true;
  };
  FindCenters(&m, 0, 0, 1, &centre, mean);
  EXPECT_EQ(mean, 3) << "stopped";
  EXPECT_EQ(in.folder.count(), 0);
  reset();
  FindCenters(&m, 0, 0, 1, &centre, mean);
  EXPECT_EQ(mean, 1e5);
  EXPECT_EQ(centre(1, 1), 2) << "of all three";
  std::filesystem::create_directory("MAT.$$$");  // cannot be written
  FindCenters(&m, 2, 3, 1, &centre, mean = 3);
  EXPECT_EQ(mean, 3);
}

TEST_F(Clustering, LeavesTheResultsAloneWithoutMemory) {
  const InFolder in;
  TMatrix m, centres{{5}};
  test::fillNormal(m, 3, 40);
  TIntMatrix tree{{5}};
  TIntVector assigned{5};
  TVector heights{5};
  double mean = 5;
  const std::pair<const char*, std::function<void()>> calls[] = {
      {"kMeansClustering", [&] { kMeansClustering(&m, 0, 0, 3, &centres, &assigned); }},
      {"FindCenters", [&] { FindCenters(&m, 0, 0, 3, &centres, mean); }},
      {"AgglomClustering",
       [&] {
         AgglomClustering(nullptr, &m, dmEuclid, cmWard, 1, &tree, &heights, nullptr, {}, {});
       }},
      {"MeanDistanceKNN", [&] { MeanDistanceKNN(&m, 3, 1, 40, &heights); }},
      {"FindNearestNeighbors", [&] { FindNearestNeighbors(1, &m, 0, 0, &heights, &centres, {}); }}};
  for (const auto& [name, call] : calls) {
    test::expectFailuresHarmless<EZELMath2Error>(
        call, std::string(name).append(": not enough memory"),
        [&] {
          EXPECT_EQ(centres(1, 1) + tree(1, 1) + assigned(1) + heights(1) + mean, 25);
          EXPECT_EQ(in.folder.count(), 0);
        },
        [&] { centres.Fill(5), tree.Fill(5), assigned.Fill(5), heights.Fill(5), mean = 5; });
  }
}

TEST(Distances, FromPointsAreTheSameOnEveryMachine) {
  for (const std::size_t n : {1u, 5u, 9u, 17u, 34u}) {
    TMatrix m;
    tied(m, 3, static_cast<int>(7 + n), 4, 1).SMult(0.3);
    const kernels::ConstMatrix all{m.data(), 7 + n, 3, 7 + n};
    for (const TDistMode mode : {dmSqrEuclid, dmManhattan}) {
      test::forEachTarget([&] {
        Numbers sums(7 * n);
        std::vector<int> nearest(n);
        const auto points = all.block(0, 0, 7, 3), rows = all.block(7, 0, n, 3);
        kernels::sumsFromPoints(points, mode, rows, {sums.data(), n, 7, n});
        kernels::nearestPoints(points, rows, nearest);
        for (std::size_t r = 0; r < n; ++r) {
          std::size_t best = 0;
          for (std::size_t p = 0; p < 7; ++p) {
            EXPECT_EQ(sums[p * n + r], kernels::rowDistance(all, mode, 7 + r, p));
            if (sums[p * n + r] < sums[best * n + r]) best = p;
          }
          EXPECT_TRUE(mode == dmManhattan || nearest[r] == static_cast<int>(best));
        }
      });
    }
  }
}

}  // namespace
}  // namespace zel
