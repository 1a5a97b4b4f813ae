#include "tests/matrix/matrices.h"
#include "tests/support/testing.h"

namespace zel::test {
namespace {

using Values = std::vector<double>;

constexpr TDistMode kStandardModes[] = {dmTanimoto, dmManhattan, dmEuclid, dmSqrEuclid, dmDice};

TEST(Distances, TwoRows) {
  const TMatrix m{{1, 2, 2}, {3, 0, 1}, {0, 0, 0}};
  EXPECT_EQ(m.DistanceOfObjects(dmTanimoto, 1, 2), 5.0 / (9 + 10 - 5));
  EXPECT_EQ(m.DistanceOfObjects(dmManhattan, 1, 2), 5);
  EXPECT_EQ(m.DistanceOfObjects(dmEuclid, 1, 2), 3);
  EXPECT_EQ(m.DistanceOfObjects(dmSqrEuclid, 1, 2), 9);
  EXPECT_EQ(m.DistanceOfObjects(dmDice, 1, 2), 10.0 / 19);
  EXPECT_EQ(m.DistanceOfObjects(dmTanimoto, 1, 1), 1);
  EXPECT_EQ(m.DistanceOfObjects(dmTanimoto, 3, 3), 0);
  EXPECT_EQ(m.DistanceOfObjects(dmDice, 3, 3), 0);
  EXPECT_EQ(m.DistanceOfObjects(dmEuclid, 1, 99), 3) << "a missing row is 0";
  EXPECT_EQ(m.DistanceOfObjects(dmManhattan, 0, 2), 4);
  EXPECT_EQ(m.DistanceOfObjects(static_cast<TDistMode>(9), 1, 2), 0);
  EXPECT_EQ(m.DistanceOfObjects(dmUser, 1, 2), 0);
}

/// Every remainder of the blocks, on every instruction set, bit for bit what single pairs give.
TEST(Distances, AllPairsAreThoseOfSinglePairs) {
  forEachTarget([] {
    for (const int rows : {1, 2, 3, 4, 5, 8, 11, 16, 17, 31, 70}) {
      TMatrix m;
      fillNormal(m, 1 + rows % 7, rows);
      if (rows == 17) m.SetVal(1, 3, NAN);
      if (rows == 31) m.Fill(0, 0, 5, 6, 0);
      TMatrix d;
      d.Resize(rows, rows);
      for (const TDistMode mode : kStandardModes) {
        d.Fill(9);
        EXPECT_EQ(m.CalcDistMat(mode, &d), 0);
        for (int i = 1; i <= rows; ++i) {
          for (int j = 1; j <= rows; ++j) {
            const double expected = i == j ? 0 : m.DistanceOfObjects(mode, i, j);
            ASSERT_TRUE(d(i, j) == expected || (std::isnan(d(i, j)) && std::isnan(expected)))
                << rows << " rows, mode " << int{mode} << ": " << i << ", " << j;
          }
        }
      }
    }
  });
}

TEST(Distances, MatricesThatDoNotFitAreRefused) {
  const TMatrix m{{1, 2}, {3, 4}, {5, 6}, {7, 8}};
  TMatrix d{{1, 2, 3}, {4, 5, 6}, {7, 8, 9}};
  const auto before = contents(d);
  Events events(d);
  EXPECT_EQ(m.CalcDistMat(dmEuclid, &d), -2);
  EXPECT_EQ(m.CalcDistMat(dmEuclid, nullptr), -3);
  EXPECT_EQ(contents(d), before);
  EXPECT_EQ(events.count, 0);
  d.Resize(4, 3);
  EXPECT_EQ(m.CalcDistMat(dmEuclid, &d), -1);
  d.Resize(4, 4);
  events.count = 0;
  EXPECT_EQ(m.CalcDistMat(dmEuclid, &d), 0);
  EXPECT_EQ(events.count, 1);
  TMatrix copy, expected;
  copy.Clone(&d);
  expected.Resize(4, 4);
  copy.CalcDistMat(dmSqrEuclid, &expected);
  d.CalcDistMat(dmSqrEuclid, &d);
  EXPECT_EQ(contents(d), contents(expected)) << "a matrix may take its own distances";
}

TEST(Distances, UsersMeasure) {
  TMatrix m{{1}, {2}, {4}};
  m.OnCalcDistance = [&](TObject* sender, int i, int j, double& d) {
    EXPECT_EQ(sender, &m);
    EXPECT_EQ(d, 0);
    EXPECT_LT(i, j);
    d = 10 * i + j;
  };
  TMatrix d;
  d.Resize(3, 3);
  EXPECT_EQ(m.CalcDistMat(dmUser, &d), 0);
  EXPECT_EQ(contents(d), (Values{3, 3, 0, 12, 13, 12, 0, 23, 13, 23, 0}));
}

}  // namespace
}  // namespace zel::test
