// Statistics of the cells of a table and transformations of its values, against plain loops.
#include "tests/support/testing.h"
#include "zel/datatable/Zel_datatable.h"
#include "zel/kernels/moments.h"
#include "zel/kernels/order_statistics.h"
#include "zel/vector/Zel_vector.h"

namespace zel {
namespace {

constexpr double kMost = std::numeric_limits<double>::max();

bool isNumeric(const TDataTable& T, int c) { return T.GetMScaleType(c) >= stInterval; }

/// Columns of all scales, states of all kinds, ties and positive values.
void fill(TDataTable& T, int columns, int rows, unsigned seed) {
  std::mt19937 random(seed);
  T.Resize(columns, rows);
  for (int c = 1; c <= columns; ++c) {
    T.SetMScaleType(c, static_cast<TMScaleType>((c + 2) % 5));
    for (int r = 1; r <= rows; ++r) {
      T.SetElem(c, r, static_cast<double>(random() % 40 + 1) / 4);
      if (random() % 3 == 0) T.SetCellState(c, r, static_cast<std::uint8_t>(random() & random()));
    }
  }
}

/// The values of the selected cells of a rectangle, column by column.
std::vector<double> selected(const TDataTable& T, int c1, int r1, int c2, int r2,
                             const std::function<bool(int c, std::uint8_t state)>& takes) {
  std::vector<double> x;
  for (int c = c1; c <= c2; ++c) {
    for (int r = r1; r <= r2; ++r) {
      const std::uint8_t state = T.GetCellState(c, r);
      if ((state & 3) == 0 && takes(c, state)) x.push_back(T.NumericData->GetVal(c, r));
    }
  }
  return x;
}

// What the kernels give for the cells that a plain loop selects.
TEST(TableStatistics, TakeTheCellsThatTheyShould) {
  for (unsigned seed = 1; seed <= 40; ++seed) {
    TDataTable T;
    fill(T, static_cast<int>(seed % 7) + 1, static_cast<int>(seed * 5 % 23) + 1, seed);
    const int n = T.NrOfColumns(), rows = T.NrOfRows();
    const int c1 = n / 3 + 1, r2 = rows - rows / 4;
    constexpr std::uint8_t kMask = 64 + 8 + 3;
    for (const bool marked : {false, true}) {
      SCOPED_TRACE(std::to_string(seed) + (marked ? " marked" : ""));
      auto x = selected(T, c1, 1, n, r2, [&](int c, std::uint8_t state) {
        return isNumeric(T, c) && (!marked || (state & (64 + 8)) != 0);
      });
      const std::span<const double> cells(x);
      const int size = static_cast<int>(x.size());
      int count = -1;
      // Reversed bounds are exchanged.
      EXPECT_EQ(marked ? T.SumOfMarkedCells(n, r2, c1, 1, kMask, count)
                       : T.SumOfNumCells(n, r2, c1, 1, count),
                std::accumulate(x.begin(), x.end(), 0.0));
      EXPECT_EQ(count, size);
      EXPECT_EQ(marked ? T.SumOfSquaredMarkedCells(c1, 1, n, r2, kMask, count)
                       : T.SumOfSquaredNumCells(c1, 1, n, r2, count),
                std::inner_product(x.begin(), x.end(), x.begin(), 0.0));
      double mean = -1, variance = -1, low = 0, high = 0, q1 = 0, q2 = 0, q3 = 0;
      EXPECT_EQ(marked ? T.MeanVarOfMarkedCells(c1, 1, n, r2, kMask, mean, variance)
                       : T.MeanVarOfNumCells(c1, 1, n, r2, mean, variance),
                size);
      const kernels::MeanVariance moments = kernels::meanVariance(cells);
      EXPECT_EQ(mean, moments.mean);
      EXPECT_EQ(variance, moments.variance);
      EXPECT_EQ(marked ? T.MinMaxOfMarkedCells(c1, 1, n, r2, kMask, low, high)
                       : T.MinMaxOfNumCells(c1, 1, n, r2, low, high),
                size);
      std::ranges::sort(x);
      EXPECT_EQ(low, x.empty() ? kMost : x.front());
      EXPECT_EQ(high, x.empty() ? -kMost : x.back());
      EXPECT_TRUE(marked ? T.QuartilesOfMarkedCells(c1, 1, n, r2, q1, q2, q3, kMask, count)
                         : T.QuartilesOfNumCells(c1, 1, n, r2, q1, q2, q3, count));
      const kernels::Quartiles quartiles = kernels::quartilesSorted(cells);
      EXPECT_EQ(std::tie(q1, q2, q3), std::tie(quartiles.q1, quartiles.q2, quartiles.q3));
      EXPECT_EQ(marked ? T.PercentileOfMarkedCells(37.5, c1, 1, n, r2, kMask, count)
                       : T.PercentileOfNumCells(37.5, c1, 1, n, r2, count),
                kernels::percentileSorted(cells, 37.5));
      EXPECT_EQ(count, size);
    }
    const auto valid = selected(T, 1, 1, n, rows, [](auto, auto) { return true; });
    EXPECT_EQ(T.CountValidCells(0, 0, 0, 0), valid.size());
    int numeric = 0, empty = 0, imputed = 0;
    double low = kMost, lowest = 0, highest = 0;
    for (int c = 1; c <= n; ++c) {
      for (int r = 1; r <= rows; ++r) {
        numeric += isNumeric(T, c) && T.GetIsNumber(c, r);
        empty += T.GetIsEmpty(c, r);
        imputed += T.GetIsImputed(c, r);
        if (T.GetIsNumber(c, r)) low = std::min(low, T.GetElem(c, r));
      }
    }
    EXPECT_EQ(T.CountNumCells(0, 0, 0, 0), numeric);
    EXPECT_EQ(T.CountEmptyCells(0, 0, 0, 0), empty);
    EXPECT_EQ(T.CountImputedCells(0, 0, 0, 0), imputed);
    EXPECT_EQ(T.MinMaxOfValidCells(0, 0, 0, 0, lowest, highest), valid.size());
    EXPECT_EQ(lowest, low) << "categories rounded";
    TVector V;
    EXPECT_EQ(T.CopyCellsToVector(0, 0, 0, 0, 0xFF, &V), valid.size());
    EXPECT_TRUE(valid.empty() || std::ranges::equal(V.Elements(), valid));
    const auto some = selected(T, 1, 1, n, 1, [](auto, auto state) { return (state & 36) != 0; });
    EXPECT_EQ(T.CopyCellsToVector(0, 1, 0, 1, 36, nullptr), some.size());
  }
}

TEST(TableStatistics, GeometricAndHarmonicMeans) {
  TDataTable T;
  T.SetName("T");
  T.Resize(1, 4);
  const TDoubleArray x{1, 2, 4, 8};
  T.CopyDataColumnFromArray(1, x);
  int n = 0;
  EXPECT_DOUBLE_EQ(T.GeometricMeanOfNumCells(0, 0, 0, 0, n), std::sqrt(8));
  EXPECT_DOUBLE_EQ(T.HarmonicMeanOfNumCells(0, 0, 0, 0, n), 4 / 1.875);
  EXPECT_EQ(n, 4);
  T.SetElem(1, 2, 0);
  EXPECT_EQ(T.GeometricMeanOfNumCells(0, 0, 0, 0, n), 0);
  EXPECT_EQ(n, 3);
  EXPECT_THROW_MSG(T.HarmonicMeanOfNumCells(0, 0, 0, 0, n), EZELDataTableError,
                   "Component \"T\": negative or zero argument passed to HarmonicMean");
  T.SetElem(1, 2, -1);
  EXPECT_THROW_MSG(T.GeometricMeanOfNumCells(0, 0, 0, 0, n), EZELDataTableError,
                   "Component \"T\": negative argument passed to GeometricMean");
  T.SetAllCellStates(2);
  EXPECT_EQ(T.GeometricMeanOfNumCells(0, 0, 0, 0, n) + T.HarmonicMeanOfNumCells(0, 0, 0, 0, n), 0);
  EXPECT_EQ(n, 0);
}

/// The definitions of the five modes, pair by pair.
double covariance(const TDataTable& T, int c1, int c2, int r1, int r2, int mode) {
  double m1 = 0, m2 = 0, unused = 0;
  T.MeanVarOfNumCells(c1, r1, c1, r2, m1, unused);
  T.MeanVarOfNumCells(c2, r1, c2, r2, m2, unused);
  std::vector<double> x, y;
  for (int r = r1; r <= r2; ++r) {
    if (!T.GetIsNumber(c1, r) || !T.GetIsNumber(c2, r)) continue;
    x.push_back(T.NumericData->GetVal(c1, r));
    y.push_back(T.NumericData->GetVal(c2, r));
  }
  double sum = 0;
  for (std::size_t i = 0; i < x.size(); ++i) {
    const double terms[] = {x[i] * y[i], (x[i] - m1) * (y[i] - m2), 0, 0, std::pow(x[i] - y[i], 2)};
    sum += terms[mode];
  }
  const double r = x.size() < 3 ? 0 : kernels::pearsonCorrelation(std::span<const double>(x), y);
  const double results[] = {0, 0, r, r * r, 0};
  return x.size() < 2 ? 0 : results[mode] + sum / (static_cast<double>(x.size()) - 1);
}

TEST(TableStatistics, Covariances) {
  TDataTable T;
  fill(T, 5, 30, 3);
  for (int mode = 0; mode <= 4; ++mode) {
    TMatrix C;
    C.Resize(5, 4);
    C.Fill(-7);
    const test::Events events(C);
    for (const int last : {4, 29}) {
      ProcStat = 0;
      ASSERT_TRUE(T.CalcCovar(&C, 2, 5, 3, last, mode));
      EXPECT_EQ(ProcStat, mode == 1 ? 8 : 4);
      for (int i = 1; i <= 4; ++i) {
        for (int j = 1; j <= 4; ++j) {
          const bool isUnit = i == j && (mode == 2 || mode == 3);
          EXPECT_NEAR(C.GetVal(i, j), isUnit ? 1 : covariance(T, i + 1, j + 1, 3, last, mode),
                      1e-11)
              << mode << ": " << i << ", " << j;
        }
      }
    }
    EXPECT_EQ(events.count, 2);
    EXPECT_EQ(C.GetVal(5, 1), -7);
    EXPECT_FALSE(T.CalcCovar(&C, 1, 5, 1, 30, mode)) << "too small";
  }
  EXPECT_FALSE(T.CalcCovar(nullptr, 1, 1, 1, 30, 0));
  TMatrix C;
  C.Resize(5, 5);
  EXPECT_FALSE(T.CalcCovar(&C, 1, 5, 1, 30, 5));
  EXPECT_TRUE(T.CalcCovar(&C, 9, 10, -5, 99, 1)) << "columns that are not there";
  EXPECT_EQ(C.GetVal(1, 2), 0);
  MathFeedBackProc = [](double) { AbortMathProc = true; };
  EXPECT_FALSE(T.CalcCovar(&C, 1, 5, 1, 30, 0));
  MathFeedBackProc = nullptr;
  AbortMathProc = false;
}

TEST(TableStatistics, ColumnsAttributesScales) {
  TDataTable T;
  T.Resize(3, 4);
  const TDoubleArray x{5, 3, 5, 3};
  T.CopyDataColumnFromArray(1, x);
  double v1 = 0, v2 = 0;
  EXPECT_TRUE(T.CheckDichotomousColumn(1, v1, v2));
  EXPECT_EQ(v1, 3);
  EXPECT_EQ(v2, 5);
  EXPECT_FALSE(T.IsConstantColumn(1));
  T.SetElem(1, 4, 4);
  EXPECT_FALSE(T.CheckDichotomousColumn(1, v1, v2));
  EXPECT_FALSE(T.CheckDichotomousColumn(2, v1, v2)) << "constant";
  EXPECT_FALSE(T.CheckDichotomousColumn(4, v1, v2)) << "outside";
  EXPECT_EQ(v1 + v2, 0);
  EXPECT_TRUE(T.IsConstantColumn(2));
  EXPECT_FALSE(T.IsConstantColumn(0));
  const int attributes[] = {2, -1, 2, 300};
  for (int r = 1; r <= 4; ++r) T.SetRowAttrib(r, attributes[r - 1]);
  EXPECT_EQ(T.RowAttribLevels(), 3);
  EXPECT_EQ(T.ColAttribLevels(), 1);
  int index = 0;
  EXPECT_EQ(T.MaxRowAttrib(0, 0, index), 300);
  EXPECT_EQ(index, 4);
  EXPECT_EQ(T.MaxRowAttrib(3, 1, index), 2);
  EXPECT_EQ(index, 1) << "the first one";
  EXPECT_EQ(T.MinRowAttrib(0, 0, index), -1);
  EXPECT_EQ(index, 2);
  T.SetColAttrib(2, 9);
  EXPECT_EQ(T.MaxColAttrib(0, 0, index), 9);
  EXPECT_EQ(T.MinColAttrib(2, 3, index), 0);
  EXPECT_EQ(index, 3);
  T.SetMScaleType(1, stOrdinal);
  T.SetMScaleType(2, stUnknown);
  EXPECT_EQ(T.FindHighestMLevel(0, 0), stInterval);
  EXPECT_EQ(T.FindHighestMLevel(2, 2), stNominal);
  EXPECT_EQ(T.FindLowestMLevel(0, 0), stUnknown);
}

TEST(TableTransforms, StandardizeByColumnsAndRows) {
  for (const bool isDivided : {false, true}) {
    TDataTable T;
    fill(T, 6, 25, 11);
    TDataTable Old;
    Old.CopyContentsFrom(&T);
    const test::Events events(T);
    TVector M, S;
    M.Resize(6);
    S.Resize(6);
    M.Fill(-1);
    isDivided ? T.StandardizeNumCellColumns(&M, &S) : T.MeanCenterNumCellColumns(&M);
    EXPECT_EQ(events.count, 1);
    for (int c = 1; c <= 6; ++c) {
      double mean = -1, variance = 1;
      if (isNumeric(Old, c)) Old.MeanVarOfNumCells(c, 0, c, 0, mean, variance);
      EXPECT_EQ(M.Elem(c), mean);
      for (int r = 1; r <= 25; ++r) {
        double x = Old(c, r);
        if (isNumeric(Old, c) && Old.GetIsNumber(c, r)) {
          x = isDivided ? (x - mean) / std::sqrt(variance) : x - mean;
        }
        ASSERT_DOUBLE_EQ(T(c, r), x) << c << ", " << r;
      }
    }
    EXPECT_THROW_MSG(T.StandardizeNumCellRows(nullptr, nullptr), EZELDataTableError,
                     "standardization of rows is not possible with nominal or ordinal variables");
    EXPECT_THROW_MSG(T.MeanCenterNumCellRows(nullptr), EZELDataTableError,
                     "mean centering of rows is not possible with nominal or ordinal variables");
    EXPECT_EQ(events.count, 1);
    for (int c = 1; c <= 6; ++c) T.SetMScaleType(c, stRatio);
    double before = 0, mean = 0, variance = 0;
    ASSERT_GT(T.MeanVarOfNumCells(0, 4, 0, 4, before, variance), 2);
    isDivided ? T.StandardizeNumCellRows(&M, nullptr) : T.MeanCenterNumCellRows(&M);
    EXPECT_EQ(events.count, 2);
    EXPECT_EQ(M.Elem(4), before);
    T.MeanVarOfNumCells(0, 4, 0, 4, mean, variance);
    EXPECT_NEAR(mean, 0, 1e-14);
    EXPECT_TRUE(!isDivided || std::abs(variance - 1) < 1e-13);
  }
  TDataTable T;
  T.Resize(2, 2);
  T.SetCellState(1, 2, 4);
  T.SetCellState(2, 2, 5);
  EXPECT_EQ(T.FillMarkedCells(3, 4), 2);
  EXPECT_EQ(T(1, 2) + T(2, 2), 6);
  EXPECT_EQ(T.FillMarkedCells(3, 64), 0);
}

}  // namespace
}  // namespace zel
