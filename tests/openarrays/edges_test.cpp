// Copies of columns and rows, matrices, order, search and classes: small cases with values that
// follow from the rules by hand, and comparison with the matrix of the same operation.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <set>

#include "tests/matrix/matrices.h"
#include "tests/support/expect_message.h"
#include "tests/support/failing_storage.h"
#include "zel/openarrays/Zel_openarrays.h"

namespace zel {
namespace {

const double kNan = std::nan("");

TEST(ArrayCopies, ColumnsRowsAndShapes) {
  const TInt2DArray a{{1, 2, 3}, {4, 5, 6}};  // two columns of three rows
  TIntArray v{9};
  EXPECT_EQ(CopyArrayColumn(a, 1, 1, 2, v), 0);
  EXPECT_EQ(v, (TIntArray{5, 6}));
  EXPECT_EQ(CopyArrayRow(a, 2, 0, 1, v), 0);
  EXPECT_EQ(v, (TIntArray{3, 6}));
  EXPECT_EQ(CopyArrayColumn(a, 2, 0, 0, v), -3);
  EXPECT_EQ(CopyArrayColumn(a, 2, 2, 1, v), -2);
  EXPECT_EQ(CopyArrayRow(a, -1, 0, 1, v), -3);
  EXPECT_EQ(CopyArrayRow(a, 3, 1, 2, v), -2);
  EXPECT_EQ(v, (TIntArray{3, 6}));

  TInt2DArray b(2, 3);
  EXPECT_EQ(CopyVectorToArrayColumn(TIntArray{7, 8, 9}, 0, 0, 1, 1, b), 0);
  EXPECT_EQ(CopyVectorToArrayRow(TIntArray{5, 6, 4}, 1, 2, 0, 0, b), 0);
  EXPECT_EQ(b, (TInt2DArray{{6, 0, 0}, {4, 7, 8}}));
  EXPECT_EQ(CopyVectorToArrayColumn(v, 0, 2, 9, 9, b), -1);
  EXPECT_EQ(CopyVectorToArrayRow(v, 0, 1, 0, 2, b), -2);

  TransposeArray(b);
  EXPECT_EQ(b, (TInt2DArray{{6, 4}, {0, 7}, {0, 8}}));
  EXPECT_TRUE(RemoveColumn(b, 1) && RemoveRow(b, 0));
  EXPECT_EQ(b, (TInt2DArray{{4}, {8}}));
  EXPECT_FALSE(RemoveRow(b, 1) || RemoveColumn(b, -1) || RemoveColumn(b, 2));

  TDoubleArray line{1, 2, 3, 4, 5};
  EXPECT_EQ(CopyArray(line, 0, 3, 1, line), 0);  // overlapping
  EXPECT_EQ(line, (TDoubleArray{1, 1, 2, 3, 4}));
  EXPECT_EQ(CopyArray(line, 1, line), -2);
  EXPECT_EQ(CloneAndReverseArray(line, line), 0);
  EXPECT_EQ(line, (TDoubleArray{4, 3, 2, 1, 1}));
  EXPECT_EQ(CloneAndReverseArray(TDoubleArray{2.5, 3.5, 1e10, -1e10, kNan}, v), 0);
  EXPECT_EQ(v, (TIntArray{0, INT_MIN, INT_MAX, 4, 2}));
  EXPECT_EQ(CloneArray(TDoubleArray(), v), 0);
  EXPECT_TRUE(v.empty());

  const TBool2DArray flags{{true, false}, {false, false}, {true, true}};
  TDouble2DArray numbers;
  EXPECT_EQ(BoolToNumArray(flags, 2.5, -1, numbers), 0);
  EXPECT_EQ(numbers, (TDouble2DArray{{2.5, -1}, {-1, -1}, {2.5, 2.5}}));
  TBool2DArray turned = flags;
  EXPECT_EQ(TransposeArray(turned) + InvertArray(turned), 0);
  EXPECT_EQ(turned, (TBool2DArray{{false, true, false}, {true, true, false}}));
  EXPECT_EQ(CountTrueCellsOfArray(turned), 3);
}

TEST(ArrayExtremes, FirstOccurrencesAndLimits) {
  const TInt2DArray a{{3, 1}, {1, 5}, {5, 4}};
  int column = 9;
  int row = 9;
  EXPECT_EQ(MaxArray(a, column, row), 5);
  EXPECT_EQ(column * 10 + row, 11);
  EXPECT_EQ(MinArray(a, column, row), 1);
  EXPECT_EQ(column * 10 + row, 1);
  int least = 0;
  int most = 0;
  int highColumn = 0;
  int highRow = 0;
  EXPECT_EQ(MinMaxArray(a, 1, 1, 2, 1, least, most, column, row, highColumn, highRow), 0);
  EXPECT_EQ((TIntArray{least, most, column, row, highColumn, highRow}),
            (TIntArray{4, 5, 2, 1, 1, 1}));
  EXPECT_EQ(MinMaxArray(a, 1, 0, 0, 1, least, most, column, row, highColumn, highRow), -2);
  EXPECT_EQ(MaxArray(TIntArray(3, INT_MIN), row), INT_MIN);
  EXPECT_EQ(row, 0);
  EXPECT_EQ(MaxArray(TIntArray(), row), INT_MIN);
  EXPECT_EQ(row, -1);
  EXPECT_EQ(MaxArray(TDoubleArray{kNan, -HUGE_VAL, -HUGE_VAL}), -HUGE_VAL);
  EXPECT_TRUE(std::isnan(MinArray(TDoubleArray{kNan, kNan})));
  TSingleArray singles(3000, 2);
  singles[2500] = -HUGE_VALF;
  singles[0] = NAN;
  float low = 0;
  float high = 0;
  EXPECT_EQ(MinMaxArray(singles, low, high), 0);
  EXPECT_EQ(low, -HUGE_VALF);
  EXPECT_EQ(high, 2);
}

TEST(ArrayStatistics, SpreadAtTheEndsOfTheRangeAndPercentiles) {
  double result = 0;
  for (const double scale : {1e-310, 1.0, 1e300}) {
    EXPECT_EQ(StdDevArray(TDoubleArray{scale, 2 * scale, 3 * scale}, 0, 2, result), 0);
    EXPECT_DOUBLE_EQ(result, scale);
    EXPECT_EQ(StdDevArray(TDoubleArray{scale, 3 * scale}, 0, 1, result), 0);
    EXPECT_DOUBLE_EQ(result, scale * std::sqrt(2));
  }
  double mean = 0;
  EXPECT_EQ(MeanVarArray(TIntArray{9, 1, 2, 9}, 1, 2, mean, result), 0);
  EXPECT_EQ(mean, 1.5);
  EXPECT_EQ(result, 0.5);
  const TDouble2DArray a{{1, 2}, {3, 4}};
  for (const auto& [prob, value] : {std::pair(50, 3), {100, 4}, {12, 1}, {13, 2}, {-1, 1}}) {
    EXPECT_EQ(PercentileArray(prob, a, -3, 0, 9, 1), value);
    EXPECT_EQ(PercentileArray(prob, TDoubleArray{3, 1, 4, 2}), value);
  }
  EXPECT_EQ(PercentileArray(100, a, 9, 0, 8, 0), 3);
  EXPECT_EQ(PercentileArray(50, TDoubleArray()), 0);
}

class ArrayMatrices : public test::WithProgress {};

TEST_F(ArrayMatrices, AreThoseOfTheMatrix) {
  TMatrix a;
  TMatrix b;
  TMatrix product;
  TDouble2DArray x;
  TDouble2DArray y;
  TDouble2DArray expected;
  test::fillNormal(a, 4, 6);
  test::fillNormal(b, 3, 4);
  a.CopyToArray(x, 0, 0, 0, 0);
  b.CopyToArray(y, 0, 0, 0, 0);
  TDouble2DArray hat;
  EXPECT_EQ(CalcHatMatrix(x, hat), 0);
  a.CalcHatMatrix(&product);
  product.CopyToArray(expected, 0, 0, 0, 0);
  EXPECT_EQ(hat, expected);
  TDoubleArray left;
  EXPECT_EQ(MultiplyArrays(x[0].first(4), y, left), 0);
  TDoubleArray right;
  EXPECT_EQ(MultiplyArrays(x, y[2], right), 0);
  TDouble2DArray both;
  EXPECT_EQ(MultiplyArrays(x, y, both), 0);
  a.Multiply(&b, &product);
  product.CopyToArray(expected, 0, 0, 0, 0);
  EXPECT_EQ(both, expected);
  EXPECT_EQ(TDoubleArray(both[2].begin(), both[2].end()), right);
  double dot = 0;
  EXPECT_EQ(VectorDotProduct(x[0].first(4), y[1], dot), 0);
  EXPECT_NEAR(left[1], dot, 1e-15);
  EXPECT_EQ(MultiplyArrays(y, x, both), -2);
  for (const bool horizontal : {true, false}) {
    for (const TEdgeOp op : {eoMin, eoMax, eoSum, eoMean}) {
      TVector edge;
      TDoubleArray values;
      a.EdgeVector(horizontal ? orHorizontal : orVertical, op, &edge);
      EXPECT_EQ(EdgeVector(x, horizontal ? orHorizontal : orVertical, op, values), 0);
      EXPECT_EQ(values, TDoubleArray(edge.begin(), edge.end()));
    }
  }
  for (const TDistMode mode : {dmTanimoto, dmManhattan, dmEuclid, dmSqrEuclid, dmDice}) {
    TMatrix part;
    part.Resize(2, 6);
    part.CopyFrom(&a, 2, 1, 3, 6, 1, 1);
    EXPECT_EQ(DistanceOfObjects(x, mode, 5, 1, 1, 2, dot), 0);
    EXPECT_EQ(dot, part.DistanceOfObjects(mode, 6, 2));
  }
  EXPECT_EQ(DistanceOfObjects(x, dmUser, 0, 0, 0, 0, dot), -1);
  EXPECT_EQ(DistanceOfObjects(x, dmUser, 0, 6, 0, 0, dot), -2);
  EXPECT_EQ(DistanceOfObjects(x, dmDice, 0, 6, 0, 4, dot), -3);
  EXPECT_EQ(DistanceOfObjects(x, dmDice, 0, 6, 9, 4, dot), -4);

  TDouble2DArray square{{2, 1}, {1, 1}};
  ProcStat = 0;
  EXPECT_EQ(InvertArray(square), 0);
  EXPECT_EQ(square, (TDouble2DArray{{1, -1}, {-1, 2}}));
  EXPECT_EQ(ProcStat, 4);
  EXPECT_EQ(TraceOfArray(square, dot), 0);
  EXPECT_EQ(dot, 3);
  TDouble2DArray singular{{1, 2}, {2, 4}};
  EXPECT_EQ(InvertArray(singular), -3);
  EXPECT_EQ(InvertArray(x), -2);
  EXPECT_EQ(TraceOfArray(x, dot), -2);
  {
    const test::FailingStorage fail(0);
    EXPECT_THROW_MSG(InvertArray(square), EZELMatrixError,
                     "InvertArray: not enough memory on heap");
  }
  {
    const test::FailingStorage fail(0);
    EXPECT_THROW_MSG(MultiplyArrays(x, y, both), EZELError, "MultiplyArrays: not enough memory");
  }
  TIntArray cross{1, 0, 0};
  EXPECT_EQ(VectorCrossProduct(cross, TIntArray{2, 3, 4}, cross), 0);
  EXPECT_EQ(cross, (TIntArray{0, -4, 3}));
}

TEST(ArrayOrder, SortsShufflesAndClasses) {
  for (const bool ascending : {true, false}) {
    TDoubleArray x{3, 1, 2, 1};
    const TDoubleArray before = x;
    TIntArray places;
    EXPECT_EQ(SortArray(ascending, x, places), 0);
    EXPECT_TRUE(ascending ? std::ranges::is_sorted(x) : std::ranges::is_sorted(x, std::greater()));
    for (std::size_t i = 0; i < x.size(); ++i) {
      EXPECT_EQ(x[i], before[static_cast<std::size_t>(places[i] - 1)]);
    }
    TIntArray y{3, 1, 3, 1, 2};
    EXPECT_EQ(SortAndRemoveDuplicates(y, ascending), 2);
    EXPECT_EQ(y, (ascending ? TIntArray{1, 2, 3} : TIntArray{3, 2, 1}));
  }
  TIntArray single{1};
  TIntArray places;
  EXPECT_EQ(SortArray(true, single, places) + SortAndRemoveDuplicates(single, true) +
                ShuffleArray(single),
            -3);
  std::set<TIntArray> seen;
  for (int k = 0; k < 1000; ++k) {
    TIntArray x{0, 1, 2, 3};
    ShuffleArray(x);
    for (int i = 0; i < 4; ++i) EXPECT_NE(x[static_cast<std::size_t>(i)], i);
    seen.insert(x);
  }
  EXPECT_EQ(seen.size(), 6u);  // the cyclic permutations of four elements

  TBool2DArray flags;
  const TDouble2DArray a{{1, 2, 3, kNan}};
  EXPECT_EQ(DichotomizeArray(a, 2, flags), 0);
  EXPECT_EQ(flags, (TBool2DArray{{false, false, true, false}}));
  EXPECT_EQ(DichotomizeArray(TInt2DArray{{1, 2, 3, 4}}, 2, 3, flags), 0);
  EXPECT_EQ(flags, (TBool2DArray{{false, true, true, false}}));
  TDouble2DArray levels{{-1, 0, 0.1, 4.9, 5, 9.9, 10, 11}};
  EXPECT_EQ(DiscretizeArray(levels, 2, 10, 0, 0, 3), -2);
  EXPECT_EQ(DiscretizeArray(levels, 2, 0, 10, 0, 3), -1);
  EXPECT_EQ(DiscretizeArray(levels, 4, 0, 10, 0, 3), 0);
  EXPECT_EQ(levels, (TDouble2DArray{{0, 0, 1, 1, 2, 2, 3, 3}}));
}

TEST(ArraySearch, CodesAndPositions) {
  EXPECT_EQ(SumOfSquaredDiffs(TDoubleArray{1, 2}, TDoubleArray{4, 6}), 25);
  EXPECT_EQ(SumOfSquaredDiffs(TDoubleArray(3), TDoubleArray(4)), -2);
  const TDouble2DArray b{{0, 0}, {1, 3}};
  EXPECT_EQ(SumOfSquaredDiffs(TDoubleArray{1, 2}, b, 1), 1);
  EXPECT_EQ(SumOfSquaredDiffs(TDoubleArray{1, 2}, b, 2), -3);
  EXPECT_EQ(SumOfSquaredDiffs(TDoubleArray{1}, b, 2), -2);
  EXPECT_TRUE(EqualArrays(TInt2DArray{{1, 2}}, TInt2DArray{{1, 2}}));
  EXPECT_FALSE(EqualArrays(TInt2DArray{{1, 2}}, TInt2DArray{{1}, {2}}));
  EXPECT_EQ(FindInArray(2, TIntArray{1, 2, 2}), 1);
  EXPECT_EQ(FindInArray(3, TIntArray{1, 2}), -2);
  const TStrArray words{"Hello", "World"};
  EXPECT_EQ(FindInArray("lo", words, false, true), 0);
  EXPECT_EQ(FindInArray("lo", words, false, false), -2);
  EXPECT_EQ(FindInArray("WORLD", words, true, false), 1);
  EXPECT_EQ(FindInArray("ORL", words, false, true), -2);
  EXPECT_EQ(FindInArray("ORL", words, true, true), 1);
  EXPECT_EQ(FindInArray("", TStrArray(), true, true), -1);
  for (const auto& [value, place] :
       {std::pair(4.0, 2), {1.0, 0}, {7.0, 3}, {0.9, -2}, {7.1, -2}, {kNan, -2}}) {
    EXPECT_EQ(FindInSortedArray(value, TDoubleArray{1, 3, 5, 7}, true), place) << value;
  }
  EXPECT_EQ(FindInSortedArray(4, TDoubleArray{7, 5, 3, 1}, false), 2);
  double low = 0;
  double high = 0;
  EXPECT_TRUE(IsDichotomous(TDoubleArray{5, 2, 5, 2}, low, high));
  EXPECT_EQ(low * 10 + high, 25);
  EXPECT_FALSE(IsDichotomous(TDoubleArray{1, 2, 3}, low, high));
}

}  // namespace
}  // namespace zel
