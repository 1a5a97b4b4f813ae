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
#include "tests/support/data_file.h"
#include "tests/support/expect_message.h"
#include "tests/support/same_bits.h"

namespace zel {
namespace {

using Clustering = test::WithProgress;
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

template <class Vector>
bool holds(const Vector& v, std::vector<typename Vector::value_type> values) {
  return std::ranges::equal(v.Elements(), values);
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
  std::vector<int> order;
  const std::function<void(int)> visit = [&](int node) {
    if (node <= n) return order.push_back(node);
    for (int side = 1; side <= 2; ++side) visit(tree.merges(side, node - n));
  };
  visit(2 * n - 1);
  for (int r = 1; r <= n; ++r) tree.positions.SetVal(at(order, r - 1), r);
  for (int s = 1; s < n; ++s) {
    const double sum = tree.positions(tree.merges(1, s)) + tree.positions(tree.merges(2, s));
    tree.positions.SetVal(n + s, sum / 2);
  }
}

TEST_F(Clustering, MergesThePairsThatASearchOfAllPairsFinds) {
  // Ties, and what has no order at all, must go to the same pair.
  for (unsigned seed = 0; seed < 240; ++seed) {
    const int n = 2 + static_cast<int>(seed % 40);
    TMatrix m;
    const int levels = seed % 12 < 6 ? 2 + static_cast<int>(seed / 8) : 1 << 20;
    tied(m, 1 + static_cast<int>(seed % 3), n, levels, seed);
    if (seed % 5 == 0) m.SetVal(1, n / 2, kNaN);
    if (seed % 7 == 0) m.SetVal(1, n, 1e300);
    const auto method = static_cast<TClusterMethod>(seed / 3 % 6);
    const TDistMode mode = seed % 4 == 0 ? dmEuclid : seed % 4 == 1 ? dmManhattan : dmSqrEuclid;
    // The parameter is limited to 0.5..1.
    const double f = seed % 3 == 0 ? 0.625 : seed % 3 == 1 ? 0.2 : 3;
    SCOPED_TRACE(seed);
    Tree expected, found;
    searchAllPairs(m, mode, method, std::clamp(f, 0.5, 1.0), expected);
    EXPECT_EQ(AgglomClustering(nullptr, &m, mode, method, f, &found.merges, &found.heights,
                               &found.positions, {}, {}),
              0);
    const auto merges = expected.merges.Elements();
    EXPECT_TRUE(std::ranges::equal(merges, found.merges.Elements()));
    EXPECT_EQ(test::firstDifference(expected.heights.Elements(), found.heights.Elements()), "");
    EXPECT_EQ(test::firstDifference(expected.positions.Elements(), found.positions.Elements()), "");
  }
}

TEST_F(Clustering, HasTheHeightsThatOthersFind) {
  // R 4.2.2: sum(hclust(dist(USArrests), m)$height) for m = single, complete, ward.D, mcquitty (the
  // flexible method with 0.5 is the same) and average.
  const double sums[] = {774.392496240412356,  1681.39110001442850,  4959.41604021575586,
                         1256.431160694822665, 1256.431160694822665, 1217.511868508923726};
  TMatrix m;
  test::loadCsv("USArrests.csv", 1, 4, m);
  for (const auto method : {cmSingleLink, cmCompleteLink, cmWard, cmAvgLink, cmFlexLink, cmUpgma}) {
    TVector heights;
    AgglomClustering(nullptr, &m, dmEuclid, method, 0.5, nullptr, &heights, nullptr, {}, {});
    EXPECT_NEAR(heights.Sum(0, 0), sums[method], 1e-9) << int{method};
  }
}

TEST_F(Clustering, ReportsStopsAndGivesTheEventBack) {
  TMatrix m{{0}, {1}, {5}};
  Tree tree;
  int before = 0;
  m.OnCalcDistance = [&](TObject*, int, int, double&) { ++before; };
  AbortMathProc = true;  // cleared by the call
  std::vector<double> percents;
  double stopAt = 1000;
  const auto run = [&] {
    const auto feedback = [&](TObject* Sender, double Count, double Percent) {
      EXPECT_EQ(Sender, &m);
      EXPECT_EQ(Count, ProcStat);
      percents.push_back(Percent);
      AbortMathProc = AbortMathProc || Percent > stopAt;
    };
    return AgglomClustering(&m, &m, dmUser, cmSingleLink, 1, &tree.merges, &tree.heights,
                            &tree.positions, feedback,
                            [](TObject*, int i, int j, double& d) { d = i * j; });
  };
  EXPECT_EQ(run(), 0);
  EXPECT_TRUE(holds(tree.positions, {1, 2, 3, 1.5, 2.25}));
  EXPECT_EQ(percents, (std::vector<double>{0, 100.0 / 3, 200.0 / 3}));
  EXPECT_EQ(ProcStat, 2);
  stopAt = 50;
  EXPECT_EQ(run(), -1);
  EXPECT_TRUE(holds(tree.positions, {0, 0, 0, 0, 0}));
  EXPECT_TRUE(holds(tree.heights, {0, 0}));
  EXPECT_EQ(tree.merges.Sum(0, 0, 0, 0), 0);
  EXPECT_EQ(m.DistanceOfObjects(dmUser, 1, 2), 0);
  EXPECT_EQ(before, 1) << "the own handler is back";
  for (const int n : {0, 1}) {
    m.Resize(1, n);
    EXPECT_EQ(run(), 0);
    EXPECT_TRUE(holds(tree.positions, {1.0 * n}));
    EXPECT_EQ(tree.merges.NrOfRows(), 0);
  }
  EXPECT_EQ(
      AgglomClustering(nullptr, nullptr, dmEuclid, cmWard, 1, nullptr, nullptr, nullptr, {}, {}),
      -1);
}

TEST_F(Clustering, PartitionsAroundMeans) {
  TMatrix m;
  test::loadCsv("iris.csv", 0, 4, m);
  TMatrix centres;
  TIntVector assigned, sizes;
  // R 4.2.2: kmeans(iris[, 1:4], iris[1:3, 1:4], algorithm = "Lloyd"), 12 passes.
  EXPECT_NEAR(kMeansClustering(&m, 7, 8, 3, 0, &centres, &assigned, &sizes), 78.855665825977269,
              1e-12);
  EXPECT_TRUE(holds(sizes, {61, 50, 39}));
  EXPECT_NEAR(centres(1, 1), 5.88360655737704974, 1e-15);
  EXPECT_NEAR(centres(4, 3), 2.05384615384615321, 1e-15);
  EXPECT_EQ(assigned(1), 2);

  // Many at one place: their mean is that place, and of equally near centres the first wins. Sizes
  // 4, 4, 8 become 8 and then what the sort leaves.
  for (unsigned seed = 0; seed < 60; ++seed) {
    const int n = 3 + static_cast<int>(seed), k = 1 + static_cast<int>(seed % 9) % n;
    tied(m, 2, n, 4, seed);
    m.SMult(0.1);
    const double within =
        kMeansClustering(&m, 0, 0, k, static_cast<int>(seed % 3), &centres, &assigned, &sizes);
    std::vector<int> counts(static_cast<std::size_t>(k));
    TMatrix sums;
    sums.Resize(2, k);
    double sum = 0;
    for (int r = 1; r <= n; ++r) {
      const int own = assigned(r);
      ++counts[static_cast<std::size_t>(own - 1)];
      sum += square(m, r, centres, own);
      for (int c = 1; c <= 2; ++c) sums.SetVal(c, own, sums(c, own) + m(c, r));
      for (int i = 1; i <= k; ++i) {
        EXPECT_GE(square(m, r, centres, i), square(m, r, centres, own) - 1e-14) << seed;
      }
    }
    EXPECT_NEAR(within, sum, 1e-12);
    EXPECT_TRUE(holds(sizes, counts));
    EXPECT_TRUE(std::ranges::is_sorted(counts, std::greater()));
    for (int i = 1; i <= k; ++i) {
      for (int c = 1; c <= 2; ++c) {
        EXPECT_NEAR(centres(c, i), sizes(i) ? sums(c, i) / sizes(i) : 0, 1e-14);
      }
    }
  }
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
  TMatrix m{{0}, {1}, {10}, {11}};
  TMatrix centres;
  TIntVector assigned, sizes;
  EXPECT_EQ(kMeansClustering(&m, 0, 0, 2, 0, &centres, &assigned, &sizes), 1);
  EXPECT_EQ(ProcStat, 3);
  MathFeedBackProc = [](double) { AbortMathProc = true; };
  EXPECT_EQ(kMeansClustering(&m, 0, 0, 2, 5, &centres, &assigned, &sizes), -1);
  const int next = Random(1000);
  SetRandSeed(5);
  const double first = m(1, Random(4) + 1), second = m(1, Random(4) + 1);
  EXPECT_EQ(next, Random(1000));
  for (int r = 1; r <= 4; ++r) {
    EXPECT_EQ(assigned(r), std::abs(m(1, r) - second) < std::abs(m(1, r) - first) ? 2 : 1);
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
  ProcStat = 0;
  EXPECT_THROW_MSG(kMeansClustering(&m, 0, 0, 2, 0, &centres, &assigned, &sizes), EZELMath2Error,
                   "kMeansClustering: max. number of iterations exceeded");
  EXPECT_EQ(ProcStat, 1001);
  EXPECT_TRUE(holds(sizes, {1001, 99}));
  EXPECT_EQ(assigned(1), 1);
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
    const int n = 4 + static_cast<int>(seed % 20), wanted = 1 + static_cast<int>(seed % 4);
    TMatrix m, x, centres;
    tied(m, 2, n, 5, seed);
    if (seed % 9 == 0) m.SetVal(2, 3, 1e9);
    x.Clone(&m);
    const int low = seed % 3 == 0 ? 2 : 1;
    centres.Resize(2, 4);
    centres.Fill(-1);
    double mean = 0;
    ProcStat = 0;
    FindCenters(&m, low, n, wanted, &centres, mean);
    std::vector<double> w(static_cast<std::size_t>(n) + 1, 1);
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
    for (int r = 1; r <= wanted; ++r) {
      double least = 1e10;
      for (int k = low; k <= last; ++k) {
        if (k != low + r - 1) least = std::min(least, square(x, low + r - 1, x, k));
      }
      sum += std::sqrt(least);
      for (int c = 1; c <= 2; ++c) EXPECT_EQ(centres(c, r), x(c, low + r - 1)) << seed;
    }
    EXPECT_NEAR(mean, sum / wanted, 1e-12 * sum) << seed;
    EXPECT_EQ(ProcStat, n - low + 1 - wanted);
    EXPECT_EQ(centres(1, 4), wanted < 4 ? -1 : x(1, low + 3));
    EXPECT_EQ(in.folder.count(), 0);
  }
  TMatrix m{{1, kNaN}, {1, 2}, {4, 2}}, centre;
  double mean = 3;
  MathFeedBackProc = [](double) {
    EXPECT_TRUE(std::filesystem::exists("MAT.$$$"));
    AbortMathProc = true;
  };
  FindCenters(&m, 0, 0, 1, &centre, mean);
  EXPECT_EQ(mean, 3) << "stopped";
  reset();
  FindCenters(&m, 0, 0, 1, &centre, mean);
  EXPECT_EQ(mean, 1e5);
  EXPECT_EQ(centre(1, 1), 2) << "of all three";
  EXPECT_EQ(in.folder.count(), 0);
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
  const std::pair<const char*, std::function<void()>> routines[] = {
      {"kMeansClustering", [&] { kMeansClustering(&m, 0, 0, 3, &centres, &assigned); }},
      {"FindCenters", [&] { FindCenters(&m, 0, 0, 3, &centres, mean); }},
      {"AgglomClustering",
       [&] {
         AgglomClustering(nullptr, &m, dmEuclid, cmWard, 1, &tree, &heights, nullptr, {}, {});
       }},
      {"MeanDistanceKNN", [&] { MeanDistanceKNN(&m, 3, 1, 40, &heights); }},
      {"FindNearestNeighbors", [&] { FindNearestNeighbors(1, &m, 0, 0, &heights, &centres, {}); }}};
  for (const auto& [name, routine] : routines) {
    test::expectFailuresHarmless<EZELMath2Error>(
        routine, std::string(name).append(": not enough memory"),
        [&] {
          EXPECT_EQ(centres(1, 1) + tree(1, 1) + assigned(1) + heights(1) + mean, 25);
          EXPECT_EQ(in.folder.count(), 0);
        },
        [&] { centres.Fill(5), tree.Fill(5), assigned.Fill(5), heights.Fill(5), mean = 5; });
  }
}

TEST(Distances, OfCentresAreTheSameOnEveryMachine) {
  const InFolder in;
  test::expectSameBits([] {
    std::vector<double> all;
    for (const int n : {7, 9, 17, 34}) {
      TMatrix m, centres{{0, 0, 0}, {0, 0, 0}, {0, 0, 0}};
      tied(m, 3, n, 4, 1).SMult(0.3);
      double mean = 0;
      FindCenters(&m, 0, 0, 3, &centres, mean);
      all.insert(all.end(), centres.begin(), centres.end());
      all.push_back(kMeansClustering(&m, 0, 0, 7, &centres, nullptr));
      all.insert(all.end(), centres.begin(), centres.end());
    }
    return all;
  });
}

}  // namespace
}  // namespace zel
