#include "tests/matrix/matrices.h"
#include "tests/support/testing.h"

namespace zel::test {
namespace {

using Values = std::vector<double>;

/// Small integers, positive and negative.
void fillSmall(TMat3D& m, int columns, int rows, int layers) {
  m.Resize(columns, rows, layers);
  SetRandSeed(1);
  m.FillRandomGauss(0, 9);
  for (int c = 1; c <= columns; ++c) {
    for (int r = 1; r <= rows; ++r) {
      for (int l = 1; l <= layers; ++l) m.SetVal(c, r, l, std::round(m(c, r, l)));
    }
  }
}

Values contents(const TMat3D& m) {
  Values all{1.0 * m.NrOfColumns(), 1.0 * m.NrOfRows(), 1.0 * m.NrOfLayers()};
  all.insert(all.end(), m.begin(), m.end());
  return all;
}

TEST(Mat3D, SizesAndEvents) {
  TMat3D m;
  Events events(m);
  EXPECT_EQ(contents(m), (Values{1, 1, 1, 0}));
  for (const int bad : {0, -1, INT_MIN}) {
    EXPECT_TRUE(m.Resize(bad, 5, 5));
    m.SetNrOfLayers(bad);
  }
  EXPECT_TRUE(m.Resize(1, 1, 1));
  EXPECT_EQ(events.count, 0);
  m.Resize(2, 2, 2);
  m.SetVal(1, 2, 2, 5);
  m.SetVal(2, 1, 1, 6);
  m.SetVal(3, 1, 1, 7);
  m.Fill(m(0, 1, 1));
  m.Fill(-0.0);
  EXPECT_TRUE(std::signbit(m(1, 1, 1)));
  EXPECT_EQ(events.count, 1) << "neither SetVal nor Fill fires";
  m.FillDiag(3);
  m.SetVal(1, 2, 2, 5);
  m.SetNrOfRows(3);
  m.SetNrOfColumns(1);
  EXPECT_EQ(contents(m), (Values{1, 3, 2, 3, 0, 0, 5, 0, 0}));
  TMat3D copy;
  Events copied(copy);
  copy.Clone(&m);
  copy.Clone(nullptr);
  EXPECT_EQ(contents(copy), contents(m));
  EXPECT_EQ(copied.count, 2);
  EXPECT_EQ(events.count, 4);
  m.ResizeAndClear(1, 3, 2);
  EXPECT_EQ(events.count, 4);
  EXPECT_EQ(*std::max_element(m.begin(), m.end()), 0);
  SetRandSeed(5);
  m.FillRandomUniform(2, 3);
  SetRandSeed(5);
  for (const double x : m) EXPECT_EQ(x, Random() * (3.0 - 2.0) + 2.0);
  m.FillRandomGauss(0, 1);
  EXPECT_EQ(events.count, 6);
  m.SetName("M");
  m.Fill(2);
  const Values before = contents(m);
  expectFailuresHarmless([&] { m.Resize(9, 9, 9), m.Resize(1, 3, 2); },
                         "Component \"M\": not enough memory on heap",
                         [&] { EXPECT_EQ(contents(m), before); });
  EXPECT_THROW_MSG(m.Resize(INT_MAX, INT_MAX, INT_MAX), EZELMatrixError,
                   "Component \"M\": not enough memory on heap");
  const FailingStorage failing(0);
  m.Fill(0);
  EXPECT_EQ(m(1, 3, 2), 0) << "clearing does without memory";
}

TEST(Mat3D, StatisticsOfBlocksAreThoseOfPlainLoops) {
  TMat3D m;
  fillSmall(m, 5, 4, 3);
  std::mt19937 random(3);
  const auto bound = [&] { return static_cast<int>(random() % 8); };
  for (int k = 0; k < 600; ++k) {
    int c1 = bound(), c2 = bound(), r1 = bound(), r2 = bound(), l1 = bound(), l2 = bound();
    if (k % 3 == 0) l1 = l2 = 0;
    if (k % 6 == 0) r1 = r2 = 0;
    const double prob = static_cast<double>(random() % 101);
    int a = 0, b = 0, e = 0;
    double low = 0, high = 0, mean = 0, variance = 0;
    m.MinMax(c1, c2, r1, r2, l1, l2, low, high);
    m.MeanVar(c1, c2, r1, r2, l1, l2, mean, variance);
    m.Find(c1, c2, r1, r2, l1, l2, 2.5, a, b, e);
    const double percentile = m.Percentile(prob, c1, c2, r1, r2, l1, l2);
    EXPECT_EQ(m.Percentile(prob, c1, c2, r1, r2, l1, l2, 60), percentile);
    m.MakeValidColRange(c1, c2);
    m.MakeValidRowRange(r1, r2);
    m.MakeValidLayerRange(l1, l2);
    Values cells;
    std::vector<std::array<int, 3>> places;
    for (int c = c1; c <= c2; ++c) {
      for (int r = r1; r <= r2; ++r) {
        for (int l = l1; l <= l2; ++l) {
          cells.push_back(m(c, r, l));
          places.push_back({c, r, l});
        }
      }
    }
    const TVector column(cells);
    TMatrix plain;
    plain.Resize(1, column.NrOfElem());
    plain.CopyFromVec(dimRows, &column, 0, 0, 1, 1);
    double expected[4];
    plain.MinMax(0, 0, 0, 0, expected[0], expected[1]);
    column.MeanVar(0, 0, expected[2], expected[3]);
    EXPECT_EQ((Values{low, high, mean, variance}), Values(expected, expected + 4));
    EXPECT_EQ((std::array{a, b, e}), places[static_cast<std::size_t>(column.Find(0, 0, 2.5) - 1)]);
    EXPECT_EQ(percentile, plain.Percentile(prob, 0, 0, 0, 0));
  }
  const double sampled = m.Percentile(100, 2, 4, 1, 3, 2, 3, 17);
  double low = 0, high = 0;
  m.MinMax(2, 4, 1, 3, 2, 3, low, high);
  EXPECT_GE(sampled, low);
  EXPECT_LE(sampled, high);
  EXPECT_EQ(m.CRCofData(), TVector(m.Elements()).CRCofData()) << "the size does not enter";
}

TEST(Mat3D, LayersGoToMatricesAndBack) {
  TMat3D m;
  fillSmall(m, 4, 3, 2);
  m.SetName("M");
  Events events(m);
  TMatrix layer;
  m.CopyLayerToMatrix(&layer, 4, 2, 0, 0, 2);
  ASSERT_EQ(layer.NrOfColumns(), 3);
  ASSERT_EQ(layer.NrOfRows(), 3);
  for (int c = 1; c <= 3; ++c) {
    for (int r = 1; r <= 3; ++r) EXPECT_EQ(layer(c, r), m(c + 1, r, 2));
  }
  const Values before = contents(m);
  for (const int bad : {0, 3}) {
    const std::string message = "Component \"M\": specified layer beyond data range";
    EXPECT_THROW_MSG(m.CopyLayerToMatrix(&layer, 1, 1, 1, 1, bad), EZELMatrixError, message);
    EXPECT_THROW_MSG(m.CopyMatrixToLayer(&layer, 1, 1, 1, 1, bad, 1, 1), EZELMatrixError, message);
    m.CopyLayerToMatrix(nullptr, 1, 1, 1, 1, bad);
  }
  m.CopyMatrixToLayer(&layer, 3, 2, 1, 3, 1, 1, 1);
  EXPECT_EQ(contents(m), before) << "a reversed range copies nothing";
  const TMatrix source{{1, 2}, {3, 4}};
  m.CopyMatrixToLayer(&source, 0, 2, 2, INT_MAX, 1, 0, 3);
  m.CopyMatrixToLayer(&source, INT_MIN, 1, 1, 1, 1, INT_MIN + 3, 1);
  EXPECT_EQ(m(1, 3, 1), 3);
  EXPECT_EQ(m(2, 3, 1), 4);
  EXPECT_EQ(m(3, 1, 1), 0);
  EXPECT_EQ(m(4, 1, 1), 1) << "zeros before the source, then its first cell";
  EXPECT_EQ(m(1, 1, 2), before[4]);
  EXPECT_EQ(events.count, 0);

  TMatrix target;
  target.Resize(3, 2);
  Events stored(target);
  target.CopyFrom(&m, 9, 0, 3, 2, 77, 2, 1);
  EXPECT_EQ(test::contents(target),
            (Values{3, 2, 0, 0, m(3, 1, 2), m(3, 2, 2), m(4, 1, 2), m(4, 2, 2)}));
  EXPECT_EQ(stored.count, 5);
}

}  // namespace
}  // namespace zel::test
