#include "tests/matrix/matrices.h"
#include "tests/support/testing.h"

namespace zel::test {
namespace {

using Values = std::vector<double>;

class MatrixAlgebra : public WithProgress {};

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

template <class Matrix>
class MatrixProducts : public testing::Test {};
using Both = testing::Types<TMatrix, TIntMatrix>;
TYPED_TEST_SUITE(MatrixProducts, Both);

double plus(double sum, double x, double y) { return std::fma(x, y, sum); }
int plus(int sum, int x, int y) {
  const auto product = static_cast<std::uint32_t>(x) * static_cast<std::uint32_t>(y);
  return static_cast<int>(static_cast<std::uint32_t>(sum) + product);
}

/// Integers wrap. The large shapes go beyond the blocks of the kernels.
TYPED_TEST(MatrixProducts, FollowTheirDefinition) {
  using T = typename TypeParam::value_type;
  using Vector = std::conditional_t<std::is_same_v<T, int>, TIntVector, TVector>;
  constexpr int kShapes[][3] = {{1, 1, 1},    {3, 5, 2},     {20, 17, 33},
                                {35, 35, 35}, {1030, 70, 3}, {70, 1030, 3},
                                {70, 3, 70},  {0, 2, 3},     {2, 0, 3}};
  for (const auto& [rows, inner, columns] : kShapes) {
    SCOPED_TRACE(testing::Message() << rows << ' ' << inner << ' ' << columns);
    TypeParam a, b, at, bt, result;
    fillNormal(a, inner, rows, 1);
    fillNormal(b, columns, inner, 2);
    at.Clone(&a);
    bt.Clone(&b);
    at.Transpose();
    bt.Transpose();
    std::vector<T> expected{static_cast<T>(columns), static_cast<T>(rows)};
    for (int c = 1; c <= columns; ++c) {
      for (int r = 1; r <= rows; ++r) {
        T sum = 0;
        for (int k = 1; k <= inner; ++k) sum = plus(sum, a(k, r), b(c, k));
        expected.push_back(sum);
      }
    }
    Events events(a);
    EXPECT_TRUE(a.Multiply(&b, &result));
    EXPECT_EQ(contents(result), expected);
    EXPECT_TRUE(a.MultiplyTransposed(&bt, &result));
    EXPECT_EQ(contents(result), expected);
    EXPECT_TRUE(at.TransposeAndMultiply(&b, &result));
    EXPECT_EQ(contents(result), expected);
    EXPECT_EQ(events.count, 2);
    if (inner == 0 || rows == 0) continue;
    Vector x(b.Column(1)), y;
    EXPECT_TRUE(a.Multiply(&x, &y));
    EXPECT_EQ(contents(y), std::vector<T>(expected.begin() + 2, expected.begin() + 2 + rows));
    EXPECT_TRUE(at.TransposeAndMultiply(&x, &x)) << "the operand may take the result";
    EXPECT_EQ(contents(x), contents(y));
  }
}

TYPED_TEST(MatrixProducts, RefuseWhatDoesNotFit) {
  using T = typename TypeParam::value_type;
  using Vector = std::conditional_t<std::is_same_v<T, int>, TIntVector, TVector>;
  TypeParam a{{1, 2}, {3, 4}, {5, 6}};
  const TypeParam b{{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}, flat{{1, 2, 3}};
  const Vector two{1, 2}, three{1, 2, 3}, four{1, 2, 3, 4};
  TypeParam result{{7}};
  Vector vector{7};
  Events events(a);
  EXPECT_FALSE(a.Multiply(&b, &result));
  EXPECT_FALSE(a.MultiplyTransposed(&b, &result));
  EXPECT_FALSE(a.TransposeAndMultiply(&flat, &result));
  EXPECT_FALSE(a.Multiply(&a, static_cast<TypeParam*>(nullptr)));
  EXPECT_FALSE(a.Multiply(static_cast<const TypeParam*>(nullptr), &result));
  EXPECT_FALSE(a.Multiply(&three, &vector));
  EXPECT_FALSE(a.TransposeAndMultiply(&two, &vector));
  EXPECT_FALSE(a.TransposeAndMultiply(&four, &vector));
  EXPECT_EQ(contents(result), (std::vector<T>{1, 1, 7}));
  EXPECT_EQ(contents(vector), std::vector<T>{7});
  EXPECT_EQ(events.count, 0);
}

TEST_F(MatrixAlgebra, InverseAndItsFailures) {
  TMatrix one{{4}};
  Events events(one);
  EXPECT_TRUE(one.Invert());
  EXPECT_EQ(one(1, 1), 0.25);
  EXPECT_EQ(events.count, 1);
  EXPECT_EQ(ProcStat, 2);
  TMatrix two{{4, 7}, {2, 6}};
  EXPECT_TRUE(two.Invert());
  const double inverse[] = {2, 2, 0.6, -0.2, -0.7, 0.4};
  for (std::size_t k = 0; k < 6; ++k) EXPECT_NEAR(contents(two)[k], inverse[k], 1e-15) << k;
  TMatrix oblong{{1, 2}}, zeroRow{{1, 2}, {0, 0}};
  EXPECT_FALSE(oblong.Invert());
  EXPECT_FALSE(zeroRow.Invert());
  EXPECT_EQ(contents(zeroRow), (Values{2, 2, 1, 0, 2, 0}));
  TMatrix singular{{1, 2}, {2, 4}};
  Events singularEvents(singular);
  EXPECT_FALSE(singular.Invert());
  EXPECT_EQ(singularEvents.count, 1);
  EXPECT_EQ(contents(singular), (Values{2, 2, 2, 0.5, 4, 1e-100})) << "holds the factors";
}

/// Step 7 is in the substitutions.
TEST_F(MatrixAlgebra, InverseStopsWhereItIsTold) {
  TMatrix a;
  fillNormal(a, 5, 5);
  const auto before = contents(a);
  static int stop;
  Events events(a);
  for (const int step : {0, 3, 7}) {
    reset();
    fillNormal(a, 5, 5);
    events.count = 0;
    stop = step;
    AbortMathProc = step == 0;
    MathFeedBackProc = [](double done) { AbortMathProc = done >= stop; };
    EXPECT_FALSE(a.Invert());
    EXPECT_EQ(ProcStat, step);
    EXPECT_EQ(events.count, 1);
    EXPECT_EQ(contents(a) == before, step == 0);
  }
  AbortMathProc = false;
  MathFeedBackProc = [](double) { throw EMathError("enough"); };
  const auto kept = contents(a);
  EXPECT_THROW(a.Invert(), EMathError);
  EXPECT_EQ(contents(a), kept);
}

TEST_F(MatrixAlgebra, TriangularFactors) {
  TMatrix lower, upper;
  Events lowerEvents(lower), upperEvents(upper);
  int sign = 0;
  const TMatrix a{{4, 2, 8}, {2, 3, 8}, {1, 1.5, 6}};
  EXPECT_TRUE(a.LUdecomposition(&lower, &upper, sign));
  EXPECT_EQ(contents(lower), (Values{3, 3, 1, 0.5, 0.25, 0, 1, 0.5, 0, 0, 1}));
  EXPECT_EQ(contents(upper), (Values{3, 3, 4, 0, 0, 2, 2, 0, 8, 4, 2}));
  EXPECT_EQ(sign, 1);
  EXPECT_EQ(lowerEvents.count, 1 + 1 + 1) << "resize, clear, the end";
  EXPECT_EQ(upperEvents.count, 1 + 9 + 1 + 1) << "a clone, the end";
  const TMatrix swapped{{0, 1}, {1, 0}};
  EXPECT_TRUE(swapped.LUdecomposition(&lower, &upper, sign));
  EXPECT_EQ(contents(lower), (Values{2, 2, 1, 0, 0, 1}));
  EXPECT_EQ(sign, -1);
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
}

TEST_F(MatrixAlgebra, DeterminantsDoNotOverflowOnTheWay) {
  TMatrix m;
  m.Resize(0, 0);
  EXPECT_EQ(m.Determinant(), 1);
  m.Resize(4, 4);
  const auto determinant = [&](const Values& diagonal) {
    for (int i = 1; i <= 4; ++i) m.SetVal(i, i, diagonal[static_cast<std::size_t>(i - 1)]);
    return m.Determinant();
  };
  EXPECT_GT(determinant({0x1p800, 1e-70, 0x1p800, 1e-70}), 1e300);
  EXPECT_EQ(determinant({0x1p-200, 0x1p-300, 0x1p-300, 0x1p800}), 1);
  EXPECT_EQ(determinant({0x1p-200, 0x1p-300, 1e-101, 0x1p800}), 0);
  const TMatrix oblong{{1, 2}};
  EXPECT_EQ(oblong.Determinant(), 0);
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
  EXPECT_THROW_MSG(static_cast<void>(m.Norm(ntSpectral)), EZELMatrixError,
                   "near singular covariance matrix");
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
    double row = 0, column = 0;
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
  TMatrix x{{1, 1}, {1, 2}, {1, 3}, {1, 5}}, hat, projected, dependent{{1, 2}, {2, 4}, {3, 6}};
  EXPECT_TRUE(x.CalcHatMatrix(&hat));
  EXPECT_EQ(hat.NrOfRows(), 4);
  EXPECT_NEAR(hat.Trace(), 2, 1e-13) << "rank";
  hat.Multiply(&x, &projected);
  projected.Subtract(&x);
  EXPECT_LT(projected.Norm(ntFrobenius), 1e-13);
  const auto before = contents(hat);
  EXPECT_FALSE(dependent.CalcHatMatrix(&hat));
  EXPECT_FALSE(x.CalcHatMatrix(nullptr));
  EXPECT_EQ(contents(hat), before);
}

}  // namespace
}  // namespace zel::test
