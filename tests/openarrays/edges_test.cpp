// Copies of columns and rows, matrices, order, search and classes: small cases whose values follow
// from the rules by hand, and comparison with the matrix of the same operation.
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

using Codes = TIntArray;
const double kNan = std::nan("");

TEST(ArrayCopies, ColumnsRowsAndShapes) {
  const TInt2DArray a{{1, 2, 3}, {4, 5, 6}};  // two columns of three rows
  TIntArray v, w;
  EXPECT_EQ((Codes{CopyArrayColumn(a, 1, 1, 2, v), CopyArrayRow(a, 2, 0, 1, w),
                   CopyArrayColumn(a, 2, 0, 0, w), CopyArrayColumn(a, 2, 2, 1, w),
                   CopyArrayRow(a, -1, 0, 1, w), CopyArrayRow(a, 3, 1, 2, w)}),
            (Codes{0, 0, -3, -2, -3, -2}));
  EXPECT_TRUE(v == (TIntArray{5, 6}) && w == (TIntArray{3, 6}));
  TInt2DArray b(2, 3);
  EXPECT_EQ(
      (Codes{CopyVectorToArrayColumn(TIntArray{7, 8, 9}, 0, 0, 1, 1, b),
             CopyVectorToArrayRow(TIntArray{5, 6, 4}, 1, 2, 0, 0, b),
             CopyVectorToArrayColumn(v, 0, 2, 9, 9, b), CopyVectorToArrayRow(v, 0, 1, 0, 2, b)}),
      (Codes{0, 0, -1, -2}));
  EXPECT_EQ(b, (TInt2DArray{{6, 0, 0}, {4, 7, 8}}));
  TransposeArray(b);
  EXPECT_TRUE(b == (TInt2DArray{{6, 4}, {0, 7}, {0, 8}}) && RemoveColumn(b, 1) && RemoveRow(b, 0));
  EXPECT_FALSE(RemoveRow(b, 1) || RemoveColumn(b, -1) || RemoveColumn(b, 2));
  EXPECT_EQ(b, (TInt2DArray{{4}, {8}}));
  TInt3DArray cube(2, 2, 2);
  TDouble2DArray oblong(2, 3);
  EXPECT_EQ((Codes{FillDiagArray(cube, 3), cube(0, 0, 0), cube(1, 0, 1), cube(1, 1, 1),
                   FillArrayRix(cube), cube(1, 0, 1), FillDiagArray(oblong, 1)}),
            (Codes{0, 3, 0, 3, 0, 5, -2}));
  TDoubleArray line(5);
  EXPECT_EQ(FillRandomNormal(line, 3, -1) + FillRandomNormal(line, 3, 0), -2);
  EXPECT_EQ(line, TDoubleArray(5, 3));
  line = {1, 2, 3, 4, 5};
  EXPECT_EQ(CopyArray(line, 0, 3, 1, line) + CloneAndReverseArray(line, line), 0);  // overlapping
  EXPECT_EQ(line, (TDoubleArray{4, 3, 2, 1, 1}));
  EXPECT_EQ(CloneAndReverseArray(TDoubleArray{2.5, 3.5, 1e10, -1e10, kNan}, v), 0);
  EXPECT_EQ(v, (TIntArray{0, INT_MIN, INT_MAX, 4, 2}));
  EXPECT_TRUE(CloneArray(TDoubleArray(), v) == 0 && v.empty());
  TBool2DArray flags{{true, false}, {false, false}, {true, true}};
  TDouble2DArray numbers;
  EXPECT_EQ(BoolToNumArray(flags, 2.5, -1, numbers) + TransposeArray(flags) + InvertArray(flags),
            0);
  EXPECT_EQ(numbers, (TDouble2DArray{{2.5, -1}, {-1, -1}, {2.5, 2.5}}));
  EXPECT_EQ(flags, (TBool2DArray{{false, true, false}, {true, true, false}}));
}

TEST(ArrayStatistics, ExtremesSpreadAndPercentiles) {
  const TInt2DArray a{{3, 1}, {1, 5}, {5, 4}};
  int n[6];
  EXPECT_EQ((Codes{MaxArray(a, n[0], n[1]), n[0], n[1], MinArray(a, n[0], n[1]), n[0], n[1],
                   MaxArray(TIntArray(4, INT_MIN), n[0]), n[0], MaxArray(TIntArray(), n[0]), n[0]}),
            (Codes{5, 1, 1, 1, 0, 1, INT_MIN, 0, INT_MIN, -1}));
  EXPECT_EQ(MinMaxArray(a, 1, 1, 2, 1, n[0], n[1], n[2], n[3], n[4], n[5]), 0);
  EXPECT_EQ(Codes(n, n + 6), (Codes{4, 5, 2, 1, 1, 1}));
  TSingleArray singles(3000, 2);
  singles[2999] = -HUGE_VALF;
  singles[0] = NAN;
  float low = 0, high = 0;
  EXPECT_TRUE(MinMaxArray(singles, low, high) == 0 && low == -HUGE_VALF && high == 2);
  EXPECT_EQ(MaxArray(TDoubleArray{kNan, -HUGE_VAL}), -HUGE_VAL);
  double mean = 0, spread = 0;
  for (const double scale : {1e-310, 1.0, 1e300}) {
    EXPECT_EQ(StdDevArray(TDoubleArray{scale, 2 * scale, 3 * scale}, 0, 2, spread), 0);
    EXPECT_DOUBLE_EQ(spread, scale);
    StdDevArray(TDoubleArray{scale, 3 * scale}, 0, 1, spread);
    EXPECT_DOUBLE_EQ(spread, scale * std::sqrt(2));
  }
  // Long runs, which are summed apart, and a sum beyond the range.
  TDouble2DArray long2(3, 1000);
  FillArray(long2, 1e308, 0, 0, 2, 600);
  EXPECT_TRUE(MeanArray(long2, 1, 0, 2, 601, mean) == 0 && mean < 1e308 && mean > 0.998e308);
  FillArray(long2, 1, 0, 1, 1, 998);
  EXPECT_TRUE(MeanArray(long2, 0, 1, 1, 999, mean) == 0 && mean == 998.0 / 999);
  EXPECT_EQ(MeanVarArray(TIntArray{9, 1, 2, 9}, 1, 2, mean, spread), 0);
  EXPECT_TRUE(mean == 1.5 && spread == 0.5);
  for (const auto& [prob, value] : {std::pair(50, 3), {100, 4}, {12, 1}, {13, 2}, {-1, 1}}) {
    EXPECT_EQ(PercentileArray(prob, TDouble2DArray{{0, 1, 2}, {0, 3, 4}}, 9, 1, -3, 9), value);
    EXPECT_EQ(PercentileArray(prob, TDoubleArray{3, 1, 4, 2}), value);
  }
}

class ArrayMatrices : public test::WithProgress {};

TEST_F(ArrayMatrices, AreThoseOfTheMatrix) {
  TMatrix a, b, result;
  test::fillNormal(a, 4, 6);
  test::fillNormal(b, 3, 4);
  const auto arrayOf = [](const TMatrix& m) {
    TDouble2DArray cells;
    m.CopyToArray(cells, 0, 0, 0, 0);
    return cells;
  };
  const TDouble2DArray x = arrayOf(a);
  const TDouble2DArray y = arrayOf(b);
  TDouble2DArray z;
  a.CalcHatMatrix(&result);
  EXPECT_TRUE(CalcHatMatrix(x, z) == 0 && z == arrayOf(result));
  a.Multiply(&b, &result);
  EXPECT_TRUE(MultiplyArrays(x, y, z) == 0 && z == arrayOf(result));
  TDoubleArray v;
  EXPECT_TRUE(MultiplyArrays(x, y[2], v) == 0 && std::ranges::equal(v, z[2]));
  double dot = 0;
  EXPECT_EQ(MultiplyArrays(x[0].first(4), y, v) + VectorDotProduct(x[0].first(4), y[1], dot), 0);
  EXPECT_NEAR(v[1], dot, 1e-15);
  EXPECT_EQ(EdgeVector(TInt2DArray{{1, 2}, {9, 4}}, orVertical, eoMean, v) + v[0] * 9 + v[1], 48);
  const TDouble2DArray objects{{9, 0, 9}, {1, 0, 4}, {2, 0, 6}};
  EXPECT_TRUE(DistanceOfObjects(objects, dmManhattan, 2, 0, 1, 2, dot) == 0 && dot == 7);
  TDouble2DArray square{{2, 1}, {1, 1}};
  ProcStat = 0;
  EXPECT_EQ(InvertArray(square) + TraceOfArray(square, dot), 0);
  EXPECT_TRUE(square == (TDouble2DArray{{1, -1}, {-1, 2}}) && ProcStat == 4 && dot == 3);
  TDouble2DArray singular{{1, 2}, {2, 4}};
  EXPECT_EQ(
      (Codes{DistanceOfObjects(x, dmUser, 0, 0, 0, 0, dot),
             DistanceOfObjects(x, dmUser, 0, 6, 0, 0, dot),
             DistanceOfObjects(x, dmDice, 0, 6, 0, 4, dot),
             DistanceOfObjects(x, dmDice, 0, 6, 9, 4, dot), CalcHatMatrix(singular, z),
             InvertArray(singular), InvertArray(z), TraceOfArray(x, dot), MultiplyArrays(y, x, z)}),
      (Codes{-1, -2, -3, -4, -3, -3, -2, -2, -2}));
  TIntArray w{1, 0, 0};
  EXPECT_TRUE(VectorCrossProduct(w, TIntArray{2, 3, 4}, w) == 0 && w == (TIntArray{0, -4, 3}));
  const test::FailingStorage fail(0);
  EXPECT_THROW_MSG(InvertArray(square), EZELMatrixError, "InvertArray: not enough memory on heap");
}

TEST(ArrayOrder, SortsShufflesAndClasses) {
  TIntArray places;
  TDoubleArray x{3, 1, 2};
  TIntArray y{3, 1, 3, 1, 2};
  TIntArray one{1};
  EXPECT_EQ((Codes{SortArray(true, x, places), SortAndRemoveDuplicates(y, true),
                   SortArray(true, one, y), SortAndRemoveDuplicates(one, true), ShuffleArray(one)}),
            (Codes{0, 2, -1, -1, -1}));
  EXPECT_TRUE(x == (TDoubleArray{1, 2, 3}) && places == (TIntArray{2, 3, 1}));
  EXPECT_EQ(y, (TIntArray{1, 2, 3}));
  std::set<TIntArray> seen;
  for (int k = 0; k < 1000; ++k) {
    y = {0, 1, 2, 3};
    ShuffleArray(y);
    seen.insert(y);
    EXPECT_TRUE(y[0] != 0 && y[1] != 1 && y[2] != 2 && y[3] != 3);
  }
  EXPECT_EQ(seen.size(), 6u);  // the cyclic permutations of four elements
  TBool2DArray flags;
  EXPECT_EQ(DichotomizeArray(TDouble2DArray{{1, 2, 3, kNan}}, 2, flags), 0);
  EXPECT_EQ(flags, (TBool2DArray{{false, false, true, false}}));
  EXPECT_EQ(DichotomizeArray(TInt2DArray{{1, 2, 3, 4}}, 2, 3, flags), 0);
  EXPECT_EQ(flags, (TBool2DArray{{false, true, true, false}}));
  TDouble2DArray levels{{-1, 0, 0.1, 4.9, 5, 9.9, 10, 11}};
  EXPECT_EQ((Codes{DiscretizeArray(levels, 2, 10, 0, 0, 3), DiscretizeArray(levels, 2, 0, 10, 0, 3),
                   DiscretizeArray(levels, 4, 0, 10, 0, 3)}),
            (Codes{-2, -1, 0}));
  EXPECT_EQ(levels, (TDouble2DArray{{0, 0, 1, 1, 2, 2, 3, 3}}));
}

TEST(ArraySearch, CodesAndPositions) {
  const TDoubleArray v{1, 2};
  const TDouble2DArray b{{0, 0}, {1, 3}};
  EXPECT_EQ((TDoubleArray{SumOfSquaredDiffs(v, TDoubleArray{4, 6}), SumOfSquaredDiffs(v, b, 1),
                          SumOfSquaredDiffs(v, TDoubleArray(3)), SumOfSquaredDiffs(v, b, 2),
                          SumOfSquaredDiffs(TDoubleArray{1}, b, 2)}),
            (TDoubleArray{25, 1, -2, -3, -2}));
  const TInt2DArray c{{1, 2}};
  const TStrArray words{"Hello", "World"};
  const TDoubleArray odd{1, 3, 5, 7};
  EXPECT_EQ((Codes{EqualArrays(c, c), EqualArrays(c, TInt2DArray{{1}, {2}}),
                   FindInArray(2, TIntArray{1, 2, 2}), FindInArray(3, TIntArray{1, 2}),
                   FindInArray("lo", words, false, true), FindInArray("lo", words, false, false),
                   FindInArray("WORLD", words, true, false), FindInArray("ORL", words, false, true),
                   FindInArray("ORL", words, true, true), FindInArray("", {}, true, true),
                   FindInSortedArray(4, odd, true), FindInSortedArray(7, odd, true),
                   FindInSortedArray(0.9, odd, true), FindInSortedArray(kNan, odd, true),
                   FindInSortedArray(4, TDoubleArray{7, 5, 3, 1}, false)}),
            (Codes{1, 0, 1, -2, 0, -2, 1, -2, 1, -1, 2, 3, -2, -2, 2}));
  double low = 0, high = 0;
  EXPECT_TRUE(IsDichotomous(TDoubleArray{5, 2, 5, 2}, low, high) && low == 2 && high == 5);
}

}  // namespace
}  // namespace zel
