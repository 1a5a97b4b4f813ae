#include <cmath>
#include <limits>

#include "tests/matrix/matrices.h"

namespace zel {
namespace {

using test::contents;
using test::fillNormal;
using Values = std::vector<double>;

/// Counts OnChange.
struct Events {
  explicit Events(TMatrix& m) {
    m.OnChange = [this](TObject*) { ++count; };
  }
  int count = 0;
};

class MatrixAlgebra : public test::WithProgress {};

TEST_F(MatrixAlgebra, ElementwiseArithmetic) {
  TMatrix a{{1, 2}, {3, 4}};
  const TMatrix b{{10, 20}, {30, 40}};
  const TMatrix other{{1, 2}};
  Events events(a);
  EXPECT_TRUE(a.Add(&b));
  EXPECT_EQ(contents(a), (Values{2, 2, 11, 33, 22, 44}));
  EXPECT_TRUE(a.Subtract(&b));
  a.SMult(3);
  a.SAdd(1);
  EXPECT_EQ(contents(a), (Values{2, 2, 4, 10, 7, 13}));
  TMatrix result;
  Events resultEvents(result);
  EXPECT_TRUE(a.EMult(&b, &result));
  EXPECT_EQ(contents(result), (Values{2, 2, 40, 300, 140, 520}));
  EXPECT_EQ(events.count, 5);
  EXPECT_EQ(resultEvents.count, 2) << "one for the size, one for the contents";
  EXPECT_TRUE(a.EMult(&a, &a));
  EXPECT_EQ(a(2, 2), 169);
  events.count = 0;
  EXPECT_FALSE(a.Add(&other));
  EXPECT_FALSE(a.Subtract(nullptr));
  EXPECT_FALSE(a.EMult(&other, &result));
  EXPECT_FALSE(a.EMult(&b, nullptr));
  EXPECT_EQ(events.count, 0);
}

TEST_F(MatrixAlgebra, FiveProductsFollowTheirDefinition) {
  for (const auto& [rows, inner, columns] :
       std::vector<std::array<int, 3>>{{1, 1, 1}, {3, 5, 2}, {20, 17, 33}, {0, 2, 3}, {2, 0, 3}}) {
    TMatrix a;
    TMatrix b;
    TMatrix at;
    TMatrix bt;
    fillNormal(a, inner, rows, 1);
    fillNormal(b, columns, inner, 2);
    at.Clone(&a);
    bt.Clone(&b);
    at.Transpose();
    bt.Transpose();
    std::vector<double> expected{static_cast<double>(columns), static_cast<double>(rows)};
    for (int c = 1; c <= columns; ++c) {
      for (int r = 1; r <= rows; ++r) {
        double sum = 0;
        for (int k = 1; k <= inner; ++k) sum = std::fma(a(k, r), b(c, k), sum);
        expected.push_back(sum);
      }
    }
    TMatrix result;
    Events events(a);
    EXPECT_TRUE(a.Multiply(&b, &result));
    EXPECT_EQ(contents(result), expected);
    EXPECT_TRUE(a.MultiplyTransposed(&bt, &result));
    EXPECT_EQ(contents(result), expected);
    EXPECT_TRUE(at.TransposeAndMultiply(&b, &result));
    EXPECT_EQ(contents(result), expected);
    EXPECT_EQ(events.count, 2);
    if (inner == 0 || rows == 0 || columns == 0) continue;
    TVector x;
    x.Resize(inner);
    b.CopyColToVec(&x, 1, 0, 0);
    TVector y;
    EXPECT_TRUE(a.Multiply(&x, &y));
    EXPECT_EQ(contents(y), (Values{expected.begin() + 2, expected.begin() + 2 + rows}));
    EXPECT_TRUE(at.TransposeAndMultiply(&x, &x)) << "the operand may take the result";
    EXPECT_EQ(contents(x), contents(y));
  }
}

TEST_F(MatrixAlgebra, ProductsRefuseWhatDoesNotFit) {
  TMatrix a{{1, 2}, {3, 4}, {5, 6}};
  const TMatrix b{{1, 2, 3}, {4, 5, 6}, {7, 8, 9}};
  const TVector three{1, 2, 3};
  const TVector two{1, 2};
  TMatrix result{{7}};
  TVector vector{7};
  Events events(a);
  EXPECT_FALSE(a.Multiply(&b, &result));
  EXPECT_FALSE(a.MultiplyTransposed(&b, &result));
  EXPECT_FALSE(b.CalcDistMat(dmEuclid, &result) == 0);
  const TMatrix flat{{1, 2, 3}};
  EXPECT_FALSE(a.TransposeAndMultiply(&flat, &result));
  EXPECT_FALSE(a.Multiply(&a, nullptr));
  EXPECT_FALSE(a.Multiply(static_cast<const TMatrix*>(nullptr), &result));
  EXPECT_FALSE(a.Multiply(&three, &vector));
  EXPECT_FALSE(a.TransposeAndMultiply(&two, &vector));
  EXPECT_EQ(contents(result), (Values{1, 1, 7}));
  EXPECT_EQ(contents(vector), (Values{7}));
  EXPECT_EQ(events.count, 0);
}

TEST_F(MatrixAlgebra, FailedAllocationsChangeNothing) {
  TMatrix a;
  fillNormal(a, 30, 30);
  TMatrix result{{7}};
  TMatrix oblong;
  fillNormal(oblong, 3, 5);
  const auto before = contents(a);
  const auto unchanged = [&] {
    EXPECT_EQ(contents(a), before);
    EXPECT_EQ(contents(result), (Values{1, 1, 7}));
    EXPECT_EQ(oblong.NrOfRows(), 5);
  };
  const std::string message = "Component \"\": not enough memory on heap";
  const auto intoResult = [&](auto operation) {
    test::expectFailuresHarmless(operation, message, unchanged, [&] {
      result.Resize(1, 1);
      result.Fill(7);
    });
  };
  intoResult([&] { a.Multiply(&a, &result); });
  intoResult([&] { a.TransposeAndMultiply(&a, &result); });
  intoResult([&] { a.EMult(&a, &result); });
  intoResult([&] { a.CalcHatMatrix(&result); });
  intoResult([&] { static_cast<void>(a.Determinant()); });
  intoResult([&] { static_cast<void>(a.Norm(ntSpectral)); });
  test::expectFailuresHarmless([&] { a.Invert(); }, message, unchanged,
                               [&] { fillNormal(a, 30, 30); });
  fillNormal(a, 30, 30);
  test::expectFailuresHarmless([&] { oblong.Transpose(); }, message, unchanged,
                               [&] { fillNormal(oblong, 3, 5); });
}

TEST_F(MatrixAlgebra, InverseAndItsFailures) {
  TMatrix one{{4}};
  Events events(one);
  EXPECT_TRUE(one.Invert());
  EXPECT_EQ(one(1, 1), 0.25);
  EXPECT_EQ(events.count, 1);
  EXPECT_EQ(ProcStat, 2);
  TMatrix zeroRow{{1, 2}, {0, 0}};
  EXPECT_FALSE(zeroRow.Invert());
  EXPECT_EQ(contents(zeroRow), (Values{2, 2, 1, 0, 2, 0}));
  TMatrix singular{{1, 2}, {2, 4}};
  Events singularEvents(singular);
  EXPECT_FALSE(singular.Invert());
  EXPECT_EQ(singularEvents.count, 1);
  EXPECT_EQ(contents(singular), (Values{2, 2, 2, 0.5, 4, 1e-100})) << "holds the factors";
  TMatrix oblong{{1, 2}};
  EXPECT_FALSE(oblong.Invert());
  TMatrix a;
  TMatrix inverse;
  TMatrix product;
  fillNormal(a, 40, 40);
  inverse.Clone(&a);
  EXPECT_TRUE(inverse.Invert());
  a.Multiply(&inverse, &product);
  for (int i = 1; i <= 40; ++i) product.SetVal(i, i, product(i, i) - 1);
  EXPECT_LT(product.Norm(ntColwise), 40 * 0x1p-52 * a.Norm(ntColwise) * inverse.Norm(ntColwise));
}

TEST_F(MatrixAlgebra, InverseStopsWhereItIsTold) {
  TMatrix a;
  fillNormal(a, 5, 5);
  const auto before = contents(a);
  AbortMathProc = true;
  EXPECT_FALSE(a.Invert());
  EXPECT_EQ(ProcStat, 0);
  EXPECT_EQ(contents(a), before);
  AbortMathProc = false;
  MathFeedBackProc = [](double done) { AbortMathProc = done >= 3; };
  Events events(a);
  EXPECT_FALSE(a.Invert());
  EXPECT_EQ(ProcStat, 3);
  EXPECT_EQ(events.count, 1);
  EXPECT_NE(contents(a), before);
  AbortMathProc = false;
  ProcStat = 0;
  MathFeedBackProc = [](double done) { AbortMathProc = done >= 7; };
  EXPECT_FALSE(a.Invert()) << "in the substitutions";
  EXPECT_EQ(ProcStat, 7);
  MathFeedBackProc = [](double) { throw EMathError("enough"); };
  const auto kept = contents(a);
  AbortMathProc = false;
  EXPECT_THROW(a.Invert(), EMathError);
  EXPECT_EQ(contents(a), kept);
}

TEST_F(MatrixAlgebra, TriangularFactors) {
  const TMatrix swapped{{0, 1}, {1, 0}};
  TMatrix lower;
  TMatrix upper;
  int sign = 0;
  EXPECT_TRUE(swapped.LUdecomposition(&lower, &upper, sign));
  EXPECT_EQ(sign, -1);
  EXPECT_EQ(contents(lower), (Values{2, 2, 1, 0, 0, 1}));
  EXPECT_EQ(contents(upper), (Values{2, 2, 1, 0, 0, 1}));
  EXPECT_EQ(swapped.Determinant(), -1);
  const TMatrix zeroRow{{0, 0}, {1, 2}};
  EXPECT_FALSE(zeroRow.LUdecomposition(&lower, &upper, sign));
  EXPECT_EQ(sign, 1);
  EXPECT_EQ(contents(lower), (Values{2, 2, 0, 0, 0, 0}));
  EXPECT_EQ(contents(upper), contents(zeroRow));
  EXPECT_FALSE(swapped.LUdecomposition(&lower, &lower, sign));
  EXPECT_FALSE(swapped.LUdecomposition(nullptr, &lower, sign));
  const TMatrix oblong{{1, 2}};
  EXPECT_FALSE(oblong.LUdecomposition(&lower, &upper, sign));

  TMatrix a;
  fillNormal(a, 25, 25);
  EXPECT_TRUE(a.LUdecomposition(&lower, &upper, sign));
  TMatrix product;
  lower.Multiply(&upper, &product);
  // Every row of the product is a row of the matrix, each of them once.
  double distance = 0;
  std::vector<int> taken(25);
  for (int r = 1; r <= 25; ++r) {
    int best = 0;
    double nearest = 1;
    for (int s = 1; s <= 25; ++s) {
      double d = 0;
      for (int c = 1; c <= 25; ++c) d = std::max(d, std::fabs(product(c, r) - a(c, s)));
      if (d < nearest) {
        nearest = d;
        best = s;
      }
    }
    ASSERT_GT(best, 0);
    ++taken[static_cast<std::size_t>(best - 1)];
    distance = std::max(distance, nearest);
  }
  EXPECT_EQ(taken, std::vector<int>(25, 1));
  EXPECT_LT(distance, 25 * 0x1p-52 * a.Norm(ntFrobenius));
}

TEST_F(MatrixAlgebra, DeterminantsDoNotOverflowOnTheWay) {
  TMatrix m;
  m.Resize(0, 0);
  EXPECT_EQ(m.Determinant(), 1);
  m.Resize(4, 4);
  for (int i = 1; i <= 4; ++i) m.SetVal(i, i, i % 2 == 0 ? 1e-70 : 0x1p800);
  EXPECT_GT(m.Determinant(), 1e300);
  m.SetVal(1, 1, 0x1p-200);
  m.SetVal(3, 3, 0x1p-300);
  m.SetVal(2, 2, 0x1p-300);
  m.SetVal(4, 4, 0x1p800);
  EXPECT_EQ(m.Determinant(), 1);
  m.SetVal(3, 3, 1e-101);
  EXPECT_EQ(m.Determinant(), 0);
  const TMatrix oblong{{1, 2}};
  EXPECT_EQ(oblong.Determinant(), 0);
  // Determinant of the Hilbert matrix of order 3: 1 / 2160.
  const TMatrix hilbert{
      {1, 1.0 / 2, 1.0 / 3}, {1.0 / 2, 1.0 / 3, 1.0 / 4}, {1.0 / 3, 1.0 / 4, 1.0 / 5}};
  EXPECT_NEAR(hilbert.Determinant() * 2160, 1, 1e-13);
}

TEST_F(MatrixAlgebra, Cholesky) {
  TMatrix a{{4, 9}, {2, 3}};  // the upper triangle is not read
  TMatrix lower;
  Events events(a);
  EXPECT_TRUE(a.CholeskyDecomp(&lower));
  EXPECT_EQ(contents(lower), (Values{2, 2, 2, 1, 0, std::sqrt(2.0)}));
  EXPECT_EQ(contents(a), (Values{2, 2, 4, 2, 1, 3}));
  EXPECT_EQ(events.count, 0);
  TMatrix indefinite{{1, 2}, {2, 1}};
  EXPECT_FALSE(indefinite.CholeskyDecomp(&lower));
  EXPECT_FALSE(indefinite.CholeskyDecomp(nullptr));
  EXPECT_FALSE(indefinite.CholeskyDecomp(&indefinite));
}

TEST_F(MatrixAlgebra, Norms) {
  const TMatrix m{{1, -2}, {3, 4}};
  EXPECT_EQ(m.Norm(ntColwise), 6);
  EXPECT_EQ(m.Norm(ntRowwise), 7);
  EXPECT_EQ(m.Norm(ntFrobenius), std::sqrt(30.0));
  // Singular values of [1 -2; 3 4]: the roots of 15 +- sqrt(125).
  EXPECT_NEAR(m.Norm(ntSpectral), std::sqrt(15 + std::sqrt(125.0)), 1e-14);
  EXPECT_EQ(ProcStat, 8) << "four steps per column";
  TMatrix empty;
  empty.Resize(0, 2);
  for (const TNormType nt : {ntColwise, ntRowwise, ntSpectral, ntFrobenius}) {
    EXPECT_EQ(empty.Norm(nt), 0);
  }
  AbortMathProc = true;
  try {
    static_cast<void>(m.Norm(ntSpectral));
    ADD_FAILURE();
  } catch (const EZELMatrixError& error) {
    EXPECT_STREQ(error.what(), "near singular covariance matrix");
  }
}

TEST_F(MatrixAlgebra, Balancing) {
  TMatrix oblong{{1, 2}};
  EXPECT_FALSE(oblong.Balance());
  TMatrix diagonal{{1, 0}, {0, 5}};
  EXPECT_TRUE(diagonal.Balance());
  EXPECT_EQ(contents(diagonal), (Values{2, 2, 1, 0, 0, 5}));
  TMatrix m{{1, 1e6, 3}, {1e-4, 2, 10}, {5, 1e-3, 3}};
  Events events(m);
  EXPECT_TRUE(m.Balance());
  EXPECT_EQ(events.count, 0);
  for (int i = 1; i <= 3; ++i) {
    double row = 0;
    double column = 0;
    for (int j = 1; j <= 3; ++j) {
      if (j == i) continue;
      row += std::fabs(m(j, i));
      column += std::fabs(m(i, j));
    }
    EXPECT_NEAR(row / column, 1, 0.12) << i;
    EXPECT_EQ(m(i, i), i);
  }
  TMatrix triangular{{0, 1, NAN}, {0, 0, 1e300}, {0, 0, 0}};
  EXPECT_TRUE(triangular.Balance()) << "comes to an end";
}

TEST_F(MatrixAlgebra, TraceAndDifferences) {
  TMatrix m{{1, 2}, {3, 4}};
  EXPECT_EQ(m.Trace(), 5);
  TMatrix squares{{1}, {4}, {9}, {16}};
  Events events(squares);
  for (const int order : {0, -1, 4, 11}) squares.Diff(order);
  EXPECT_EQ(events.count, 0);
  EXPECT_EQ(squares.Trace(), 0);
  squares.Diff(2);
  EXPECT_EQ(contents(squares), (Values{1, 2, 2, 2}));
  EXPECT_EQ(events.count, 1);
}

TEST_F(MatrixAlgebra, HatMatrixProjects) {
  TMatrix x{{1, 1}, {1, 2}, {1, 3}, {1, 5}};
  TMatrix hat;
  EXPECT_TRUE(x.CalcHatMatrix(&hat));
  EXPECT_EQ(hat.NrOfRows(), 4);
  EXPECT_NEAR(hat.Trace(), 2, 1e-13) << "rank";
  TMatrix projected;
  hat.Multiply(&x, &projected);
  projected.Subtract(&x);
  EXPECT_LT(projected.Norm(ntFrobenius), 1e-13);
  TMatrix dependent{{1, 2}, {2, 4}, {3, 6}};
  const auto before = contents(hat);
  EXPECT_FALSE(dependent.CalcHatMatrix(&hat));
  EXPECT_FALSE(x.CalcHatMatrix(nullptr));
  EXPECT_EQ(contents(hat), before);
}

}  // namespace
}  // namespace zel
