#include "tests/matrix/matrices.h"
#include "tests/support/testing.h"
#include "zel/base/Zel_univconst.h"

namespace zel::test {
namespace {

using Values = std::vector<double>;

/// A vector with the elements of a rectangle, whose statistics follow the same rules.
TVector cellsOf(const TMatrix& m, int lowCol, int lowRow, int highCol, int highRow) {
  std::vector<double> cells;
  for (int c = lowCol; c <= highCol; ++c) {
    for (int r = lowRow; r <= highRow; ++r) cells.push_back(m(c, r));
  }
  return TVector(cells);
}

/// All that a matrix finds in a rectangle and a vector in a range.
std::vector<double> statistics(const auto& x, auto... range) {
  std::vector<double> a(14);
  x.MeanVar(range..., a[0], a[1]);
  x.MinMax(range..., a[2], a[3]);
  x.SkewKurt(range..., a[4], a[5]);
  x.SkewKurtSample(range..., a[6], a[7]);
  x.Quartiles(range..., a[8], a[9], a[10]);
  a[11] = x.Sum(range...);
  a[12] = x.GeometricMean(range...);
  a[13] = x.HarmonicMean(range...);
  return a;
}

TEST(MatrixStatistics, RectanglesGiveWhatTheirElementsGive) {
  TMatrix m;
  fillNormal(m, 7, 40);
  m.SAdd(10);
  constexpr int kRectangles[][4] = {{1, 1, 7, 40}, {2, 1, 5, 40}, {3, 4, 3, 30},
                                    {1, 8, 7, 8},  {2, 3, 3, 39}, {4, 4, 4, 4}};
  for (const auto& [c1, r1, c2, r2] : kRectangles) {
    const TVector v = cellsOf(m, c1, r1, c2, r2);
    ProcStat = 0;
    EXPECT_EQ(statistics(m, c1, r1, c2, r2), statistics(v, 0, 0));
    EXPECT_EQ(ProcStat, 2) << "one step for the quartiles of each";
    TIntVector mBins, vBins;
    int mCounts[3], vCounts[3];
    EXPECT_TRUE(m.Histogram(c1, r1, c2, r2, 9, 11, 1, &mBins, mCounts[0], mCounts[1], mCounts[2]));
    v.Histogram(1, v.NrOfElem(), 9, 11, 1, &vBins, vCounts[0], vCounts[1], vCounts[2]);
    EXPECT_EQ(contents(mBins), contents(vBins));
    EXPECT_TRUE(std::equal(mCounts, mCounts + 3, vCounts));
    std::vector<double> sorted = contents(v);
    std::sort(sorted.begin(), sorted.end());
    const double n = static_cast<double>(sorted.size());
    for (const double prob : {-3.0, 0.0, 12.5, 50.0, 61.0, 99.9, 100.0, 1e9}) {
      const double rank = std::nearbyint(n * std::clamp(prob, 0.0, 100.0) / 100);
      EXPECT_EQ(m.Percentile(prob, c1, r1, c2, r2),
                sorted[static_cast<std::size_t>(std::min(rank, n - 1))]);
    }
  }
  EXPECT_EQ(m.Percentile(NAN, 0, 0, 0, 0), m.Percentile(0, 0, 0, 0, 0));
  // Two values: here the population form begins. (1, 2): mean 1.5, variance 0.5, m4 = 1/16.
  const TMatrix two{{1, 2}};
  EXPECT_EQ(statistics(two, 0, 0, 0, 0)[4], 0);
  EXPECT_EQ(statistics(two, 0, 0, 0, 0)[5], 0.0625 / 0.25 - 3);
}

TEST(MatrixStatistics, EmptyMatricesGiveTheInitialResults) {
  TMatrix m;
  m.Resize(0, 3);
  double a = 9, b = 9, c = 9;
  m.MinMax(0, 0, 0, 0, a, b);
  EXPECT_EQ((Values{a, b}), (Values{uc_MaxReal, -uc_MaxReal}));
  m.MeanVar(0, 0, 0, 0, a, b);
  EXPECT_EQ((Values{a, b}), (Values{0, 0}));
  EXPECT_FALSE(m.Quartiles(0, 0, 0, 0, a, b, c));
  EXPECT_EQ((Values{a, b, c}), (Values{0, 0, 0}));
  EXPECT_EQ(m.Percentile(50, 0, 0, 0, 0), 0);
  EXPECT_EQ(m.Sum(1, 1, 2, 2), 0);
  EXPECT_EQ(m.CountValues(0, 0, 0, 0, -1, 1), 0);
  TVector v{7, 7};
  m.EdgeVector(orVertical, eoMax, &v);
  EXPECT_EQ(contents(v), (Values{-uc_MaxDouble, -uc_MaxDouble, -uc_MaxDouble}));
  m.StandardizeRows(&v, nullptr);
  EXPECT_EQ(contents(v), (Values{0, 0, 0}));
}

TEST(MatrixStatistics, BadArgumentsOfTheMeansAreNamed) {
  TMatrix m{{-1, 4}};
  m.SetName("M");
  EXPECT_THROW_MSG(static_cast<void>(m.GeometricMean(0, 0, 0, 0)), EZELMatrixError,
                   "Component \"M\": negative argument passed to GeometricMean");
  EXPECT_THROW_MSG(static_cast<void>(m.HarmonicMean(0, 0, 0, 0)), EZELMatrixError,
                   "Component \"M\": negative or zero argument passed to HarmonicMean");
  const TMatrix row{{1, 2}};
  const TMatrix column{{1}, {2}};
  m.Resize(1, 1);
  EXPECT_THROW_MSG(static_cast<void>(m.Correlate(&row)), EZELMatrixError,
                   "Component \"M\": matrices do not match");
  EXPECT_THROW(static_cast<void>(row.Correlate(&column)), EZELMatrixError);
}

TEST(MatrixStatistics, SampledPercentiles) {
  TMatrix m;
  fillNormal(m, 20, 100);
  EXPECT_EQ(m.Percentile(30, 0, 0, 0, 0, 0), m.Percentile(30, 0, 0, 0, 0));
  EXPECT_EQ(m.Percentile(30, 1, 1, 2, 50, 100), m.Percentile(30, 1, 1, 2, 50));
  // 1500 draws: the sample's median lies between the 40th and 60th percentile but for odds of
  // 1e-14 (binomial with standard deviation 0.013).
  const double median = m.Percentile(50, 0, 0, 0, 0, 1500);
  EXPECT_GT(median, m.Percentile(40, 0, 0, 0, 0));
  EXPECT_LT(median, m.Percentile(60, 0, 0, 0, 0));
}

TEST(MatrixStatistics, CountsAndThresholds) {
  const TMatrix m{{1, 2}, {3, NAN}, {3, 4}};
  EXPECT_EQ(m.CountValues(0, 0, 0, 0, 1, 3), 4) << "both ends included";
  EXPECT_EQ(m.CountValues(1, 1, 2, 3, 1, 3), 2) << "column bounds come first";
  TBool2DArray image;
  EXPECT_EQ(m.Dichotomize(2, image), 3);
  EXPECT_EQ(image, (TBool2DArray{{false, true, true}, {false, false, true}}));
  TIntVector bins{7};
  int under = 0, over = 0, most = 0;
  EXPECT_FALSE(m.Histogram(0, 0, 0, 0, 0, 500, 1, &bins, under, over, most)) << "501 bins";
  EXPECT_FALSE(m.Histogram(0, 0, 0, 0, 0, 5, 0, &bins, under, over, most));
  EXPECT_FALSE(m.Histogram(0, 0, 0, 0, 0, 5, 1, nullptr, under, over, most));
  EXPECT_EQ(contents(bins), std::vector<int>{7});
}

TEST(MatrixStatistics, EdgeVectorsAggregateLines) {
  TMatrix m;
  fillNormal(m, 5, 37);
  m.SetVal(2, 3, NAN);
  TVector rows, columns;
  for (const TEdgeOp op : {eoMin, eoMax, eoSum, eoMean}) {
    m.EdgeVector(orVertical, op, &rows);
    m.EdgeVector(orHorizontal, op, &columns);
    const auto expected = [op](const TVector& line) {
      double low = 0, high = 0, mean = 0, variance = 0;
      line.MinMax(0, 0, low, high);
      line.MeanVar(0, 0, mean, variance);
      return op == eoMin ? low : op == eoMax ? high : op == eoSum ? line.Sum(0, 0) : mean;
    };
    for (int r = 1; r <= 37; ++r) {
      const double x = expected(cellsOf(m, 1, r, 5, r));
      EXPECT_TRUE(rows(r) == x || (std::isnan(rows(r)) && std::isnan(x))) << r;
    }
    for (int c = 3; c <= 5; ++c) EXPECT_EQ(columns(c), expected(cellsOf(m, c, 1, c, 37)));
  }
  TVector means;
  m.MeanVec(dimRows, &means);
  EXPECT_EQ(means.CRCofData(), rows.CRCofData());
  m.MeanVec(dimColumns, &means);
  EXPECT_EQ(means.CRCofData(), columns.CRCofData());
  m.MeanVec(dimColumns, nullptr);
}

/// Each column as a vector of its own would be; rows as the columns of the transpose.
TEST(MatrixStatistics, NormalisationsByColumnAndByRow) {
  TMatrix m;
  fillNormal(m, 4, 25);
  m.SAdd(3);
  m.Fill(2, 2, 0, 0, 1.5);  // no spread
  TVector centres, scales;
  const auto check = [&](auto byColumn, auto byRow, auto ofVector) {
    TMatrix copy, turned;
    copy.Clone(&m);
    turned.Clone(&m);
    turned.Transpose();
    centres.Resize(3);  // one too short, which is nobody's fault
    scales.Resize(4);
    Events events(copy);
    byColumn(copy);
    EXPECT_EQ(events.count, 1);
    byRow(turned);
    turned.Transpose();
    EXPECT_EQ(contents(turned), contents(copy));
    for (int c = 1; c <= 4; ++c) {
      TVector v(m.Column(c));
      double centre = 0, scale = 0;
      ofVector(v, centre, scale, c);
      EXPECT_EQ(contents(TVector(copy.Column(c))), contents(v)) << c;
      EXPECT_EQ(centres(c), c <= centres.NrOfElem() ? centre : 0);
      EXPECT_EQ(scales(c), scale);
    }
  };
  check([&](TMatrix& x) { x.StandardizeColumns(&centres, &scales); },
        [](TMatrix& x) { x.StandardizeRows(nullptr, nullptr); },
        [](TVector& v, double& centre, double& scale, int) { v.Standardize(centre, scale); });
  EXPECT_EQ(centres.NrOfElem(), 3);
  check([&](TMatrix& x) { x.QNormalizeColumns(80, &centres, &scales); },
        [](TMatrix& x) { x.QNormalizeRows(80, nullptr, nullptr); },
        [&](TVector& v, double& centre, double& scale, int c) {
          // Without interpolation, unlike those of a vector.
          centre = m.Percentile(50, c, 1, c, 25);
          scale = std::fabs(centre - m.Percentile(80, c, 1, c, 25));
          for (int r = 1; r <= 25 && scale > 0; ++r) v.SetVal(r, (v(r) - centre) / scale);
        });
  scales.Fill(0);
  check([&](TMatrix& x) { x.MeanCenterColumns(&centres); },
        [](TMatrix& x) { x.MeanCenterRows(nullptr); },
        [](TVector& v, double& centre, double&, int) { centre = v.MeanCenter(); });
  EXPECT_EQ(centres.NrOfElem(), 4) << "this one is resized";
}

TEST(MatrixStatistics, CorrelationOfAllElements) {
  TMatrix a, b;
  fillNormal(a, 3, 20, 1);
  fillNormal(b, 3, 20, 2);
  const TVector x(a.Elements()), y(b.Elements());
  EXPECT_EQ(a.Correlate(&b), x.PearsonCorrCoeff(&y));
  const TMatrix two{{1, 2}};
  EXPECT_EQ(two.Correlate(&two), 0) << "fewer than three elements";
  EXPECT_EQ(a.Correlate(nullptr), 0);
}

}  // namespace
}  // namespace zel::test
