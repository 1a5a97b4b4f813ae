#include "tests/matrix/matrices.h"
#include "tests/support/testing.h"

namespace zel::test {
namespace {

using Values = std::vector<double>;

TEST(Matrix, StartsWithOneCellAndLimitsItsPrecisions) {
  TMatrix m;
  EXPECT_EQ(contents(m), (Values{1, 1, 0}));
  EXPECT_EQ(m.DataID(), "");
  EXPECT_EQ(m.Precision(1), 15);
  EXPECT_EQ(m.Precision(2), -1);
  m.SetFPrecis(-5, 40);
  m.SetPrecision(7, -7);
  EXPECT_EQ(m.GetFPrecis(1), 25);
  EXPECT_EQ(m.GetFPrecis(2), -1);
  EXPECT_THROW((TMatrix{{1, 2}, {3}}), EZELMatrixError);
}

TEST(Matrix, ResizeKeepsCommonCellsAndNothingElse) {
  TMatrix m{{1, 2}, {3, 4}};
  Events events(m);
  EXPECT_TRUE(m.Resize(3, 3));
  EXPECT_EQ(contents(m), (Values{3, 3, 1, 3, 0, 2, 4, 0, 0, 0, 0}));
  EXPECT_TRUE(m.Resize(3, 3));
  EXPECT_EQ(events.count, 1) << "no event for the size it has";
  m.SetNrOfRows(1);
  m.SetNrOfColumns(2);
  EXPECT_EQ(contents(m), (Values{2, 1, 1, 2}));
  m.SetNrOfRows(-4);
  EXPECT_EQ(m.NrOfColumns(), 2);
  EXPECT_EQ(m.NrOfRows(), 0);
  m.SetVal(1, 1, 5);
  EXPECT_EQ(m.GetVal(1, 1), 0);
  m.Resize(2, 2);
  EXPECT_EQ(contents(m), (Values{2, 2, 0, 0, 0, 0})) << "cut cells do not come back";
  EXPECT_EQ(events.count, 5);
  m.ResizeAndClear(2, 2);
  EXPECT_EQ(events.count, 6);
}

TEST(Matrix, IndicesOutsideReadZeroAndWriteNothing) {
  TMatrix m{{1, 2}, {3, 4}};
  Events events(m);
  for (const int bad : {0, -1, 3, INT_MAX, INT_MIN}) {
    m.SetVal(bad, 1, 9);
    m.SetVal(1, bad, 9);
    EXPECT_EQ(m.GetVal(bad, 1), 0);
    EXPECT_EQ(m.Elem(1, bad), 0);
    m.ExchangeColumns(1, bad);
    m.ExchangeRows(bad, 2);
  }
  EXPECT_EQ(events.count, 0);
  EXPECT_EQ(contents(m), (Values{2, 2, 1, 3, 2, 4}));
  EXPECT_TRUE(m.Column(0).empty());
  EXPECT_EQ(m.Column(2)[1], 4);
  std::ostringstream text;
  text << m;
  EXPECT_EQ(text.str(), "{{1, 2}, {3, 4}}");
}

TEST(Matrix, AssignTakesAllButTheProgressHandler) {
  TMatrix a{{1, 2, 3}};
  a.SetDataID("id");
  a.SetFPrecis(1, 3);
  Events events(a);
  a.OnPercentDone = [](TObject*, int) {};
  a.OnCalcDistance = [](TObject*, int, int, double& d) { d = 7; };
  TMatrix b;
  b.Assign(&a);
  EXPECT_EQ(contents(b), contents(a));
  EXPECT_EQ(b.DataID(), "id");
  EXPECT_EQ(b.Precision(1), 3);
  EXPECT_EQ(b.DistanceOfObjects(dmUser, 1, 1), 7);
  EXPECT_FALSE(b.OnPercentDone);
  EXPECT_EQ(events.count, 0);
  b.Changed();
  EXPECT_EQ(events.count, 1);
  TMatrix empty;
  empty.Resize(0, 3);
  b.Assign(&empty);
  b.Resize(1, 3);
  EXPECT_EQ(contents(b), (Values{1, 3, 0, 0, 0}));
  TVector v;
  EXPECT_THROW(b.Assign(&v), EConvertError);
  EXPECT_THROW(b.AssignTo(&v), EConvertError);
}

TEST(Matrix, FillsReachTheirRectangleAndTellOnce) {
  TMatrix m;
  m.Resize(3, 3);
  Events events(m);
  m.Fill(2);
  m.Fill(2, 3, 9, 2, 5);
  m.FillDiag(1);
  EXPECT_EQ(contents(m), (Values{3, 3, 1, 2, 2, 2, 1, 5, 2, 5, 1}));
  SetRandSeed(42);
  m.FillRandomUniform(3, 3, 0, 0, -1, 1);
  SetRandSeed(42);
  for (int r = 1; r <= 3; ++r) EXPECT_EQ(m(3, r), Random() * 2 - 1);
  m.FillRandomGauss(1, 1, 1, 1, 100, 0);
  EXPECT_EQ(m(1, 1), 100);
  EXPECT_EQ(events.count, 5);
  m.Resize(0, 3);
  m.Fill(8);
  m.Fill(0, 0, 0, 0, 8);
  m.FillRandomGauss(0, 1);
  EXPECT_EQ(events.count, 9);
  m.Resize(1, 3);
  EXPECT_EQ(contents(m), (Values{1, 3, 0, 0, 0}));
}

/// Any bounds and places, with and without a handler, against the rule spelled out.
TEST(Matrix, CopiesPutEachCellWhereItBelongs) {
  std::mt19937 random(5);
  const auto any = [&] { return static_cast<int>(random() % 12) - 3; };
  const TVector v{1, 2, 3, 4, 5, 6};
  const TInt2DArray array{{1, 2, 3}, {4, 5, 6}};
  for (int trial = 0; trial < 400; ++trial) {
    SCOPED_TRACE(trial);
    TMatrix source, target, expected;
    fillNormal(source, trial % 5, trial % 7, 1);
    fillNormal(target, 4, 5, 2);
    expected.Clone(&target);
    Events events(target);
    if (trial % 2 == 0) target.OnChange = nullptr;
    int bounds[4] = {any(), any(), any(), any()};  // column low, row low, column high, row high
    if (trial / 3 % 4 == 0) bounds[0] = bounds[2] = 0;
    const int col = any(), row = any();
    const int kind = trial % 3;
    int nCols = 2, nRows = 3;
    if (kind == 0) {
      target.CopyFrom(&source, bounds[0], bounds[1], bounds[2], bounds[3], col, row);
      const int size[2] = {source.NrOfColumns(), source.NrOfRows()};
      for (int k = 0; k < 4; ++k) bounds[k] = std::max(1, std::min(bounds[k], size[k % 2]));
      if (bounds[0] > bounds[2]) std::swap(bounds[0], bounds[2]);
      if (bounds[1] > bounds[3]) std::swap(bounds[1], bounds[3]);
      nCols = std::min(bounds[2], size[0]) - bounds[0] + 1;
      nRows = std::min(bounds[3], size[1]) - bounds[1] + 1;
    } else if (kind == 1) {
      const bool across = trial % 4 < 2;
      target.CopyFromVec(across ? dimColumns : dimRows, &v, bounds[0], bounds[1], col, row);
      v.MakeValidElemRange(bounds[0], bounds[1]);
      nCols = across ? bounds[1] - bounds[0] + 1 : 1;
      nRows = across ? 1 : bounds[1] - bounds[0] + 1;
    } else {
      target.CopyFromArray(array, col, row);
    }
    int stored = 0;
    for (int i = 0; i < nCols; ++i) {
      for (int j = 0; j < nRows; ++j) {
        if (col + i < 1 || col + i > 4 || row + j < 1 || row + j > 5) continue;
        expected.SetVal(col + i, row + j,
                        kind == 0   ? source(bounds[0] + i, bounds[1] + j)
                        : kind == 1 ? v(bounds[0] + i + j)
                                    : array(i, j));
        ++stored;
      }
    }
    EXPECT_EQ(contents(target), contents(expected));
    EXPECT_EQ(events.count, trial % 2 == 1 ? stored + (kind < 2 ? 1 : 0) : 0);
  }
}

TEST(Matrix, CopiesAtTheEndsOfTheIntegersAndWithinOneMatrix) {
  TMatrix m{{1, 2}, {3, 4}};
  TMatrix other;
  other.CopyFrom(&m, 0, 0, 2, 2, INT_MAX, INT_MAX);
  other.CopyFrom(&m, 0, 0, 2, 2, INT_MIN, 1);
  EXPECT_EQ(contents(other), (Values{1, 1, 0}));
  other.CopyFrom(nullptr, 1, 1, 1, 1, 1, 1);
  m.Resize(2, 4);
  m.CopyFrom(&m, 1, 1, 2, 3, 1, 2);
  EXPECT_EQ(contents(m), (Values{2, 4, 1, 1, 1, 1, 2, 2, 2, 2})) << "proceeds downwards";
}

TEST(Matrix, RowsAndColumnsGoToTheFrontOfAVector) {
  const TMatrix m{{1, 2, 3}, {4, 5, 6}};
  TVector v{9, 9, 9, 9};
  m.CopyRowToVec(&v, 7, 2, 3);
  EXPECT_EQ(contents(v), (Values{5, 6, 0, 0}));
  m.CopyColToVec(&v, -1, 0, 0);
  EXPECT_EQ(contents(v), (Values{1, 4, 0, 0}));
  TVector single;
  m.CopyRowToVec(&single, 1, 0, 0);
  EXPECT_EQ(contents(single), (Values{1}));
  m.CopyRowToVec(nullptr, 1, 0, 0);
}

TEST(Matrix, ArraysTakeARectangle) {
  const TMatrix m{{2.5, 3.5, 1e300}, {-2.5, NAN, -0.5}};
  TDouble2DArray d(9, 9);
  m.CopyToArray(d, 2, 1, 1, 1);
  EXPECT_EQ(d, (TDouble2DArray{{2.5}, {3.5}}));
  TInt2DArray i;
  m.CopyToArray(i, 0, 0, 0, 0);
  EXPECT_EQ(i, (TInt2DArray{{2, -2}, {4, 0}, {INT_MAX, 0}}));
}

TEST(Matrix, FailedAllocationsNameItAndChangeNothing) {
  TMatrix a, oblong, result, distances;
  TVector means;
  TDouble2DArray array;
  means.Resize(30);
  a.SetName("A");
  double q = 0;
  Events events(a);
  const auto prepare = [&] {
    fillNormal(a, 30, 30);
    fillNormal(oblong, 3, 5);
    result.ResizeAndClear(1, 1);
    distances.Resize(30, 30);
    distances.Fill(3);
    array = {};
    events.count = 0;
  };
  const auto state = [&] {
    return std::vector{contents(a), contents(oblong), contents(result), contents(distances)};
  };
  prepare();
  const auto before = state();
  const std::string nameless = "Component \"\": not enough memory on heap";
  const std::string named = "Component \"A\": not enough memory on heap";
  const auto expectHarmless = [&](const std::string& message, auto operation) {
    expectFailuresHarmless(
        operation, message,
        [&] {
          EXPECT_EQ(state(), before);
          EXPECT_EQ(events.count, 0);
        },
        prepare);
  };
  expectHarmless(named, [&] { a.Resize(40, 35); });
  expectHarmless(named, [&] { static_cast<void>(a.Percentile(40, 1, 1, 2, 1)); });
  expectHarmless(named, [&] { a.Quartiles(0, 0, 0, 0, q, q, q); });
  expectHarmless(named, [&] { a.MeanVar(1, 1, 3, 1, q, q); });
  expectHarmless(named, [&] { a.MeanVec(dimRows, &means); });
  expectHarmless(named, [&] { a.CopyToArray(array, 0, 0, 0, 0); });
  expectHarmless(named, [&] { a.Multiply(&a, &result); });
  expectHarmless(named, [&] { a.TransposeAndMultiply(&a, &result); });
  expectHarmless(named, [&] { a.EMult(&a, &result); });
  expectHarmless(named, [&] { a.Invert(); });
  expectHarmless(named, [&] { static_cast<void>(a.Determinant()); });
  expectHarmless(named, [&] { static_cast<void>(a.Norm(ntSpectral)); });
  expectHarmless(named, [&] { a.CalcDistMat(dmManhattan, &distances); });
  expectHarmless(nameless, [&] { oblong.Transpose(); });
  a.SetName("");
  a.OnChange = nullptr;  // which a product on the way fires
  expectHarmless(nameless, [&] { a.CalcHatMatrix(&result); });
  a.SetName("A");
  prepare();
  EXPECT_THROW_MSG(a.Resize(INT_MAX, INT_MAX), EZELMatrixError, named);
  EXPECT_EQ(state(), before);
  const FailingStorage fail(0);
  EXPECT_THROW_MSG(TMatrix(), EZELMatrixError, nameless);
}

TEST(Matrix, ProgressGoesToItsHandler) {
  TMatrix m;
  m.PercDone(&m, 10);
  int percent = 0;
  m.OnPercentDone = [&](TObject* sender, int done) { percent = sender == &m ? done : -1; };
  m.PercDone(&m, 20);
  EXPECT_EQ(percent, 20);
}

}  // namespace
}  // namespace zel::test
