#include "zel/analysis/Zel_math2.h"

#include <gtest/gtest.h>

namespace zel {
namespace {

TEST(Eigenvectors, OfTwoVariablesComeInStorageOrder) {
  TMatrix a{{2, 1}, {1, 2}};
  ASSERT_TRUE(CalcEigVec(&a));
  EXPECT_EQ(GetEigenSize(), 2);
  EXPECT_NEAR(GetEigenResult(1, 0), 1, 1e-15);
  EXPECT_NEAR(GetEigenResult(2, 0), 3, 1e-15);
  EXPECT_NEAR(GetEigenResult(1, 1), -GetEigenResult(1, 2), 1e-15);
  EXPECT_NEAR(GetEigenResult(2, 1), GetEigenResult(2, 2), 1e-15);
  EXPECT_EQ(GetEigenResult(0, 1), 0);
  RemoveEigenMatrix();
  EXPECT_EQ(GetEigenResult(1, 0), 0);
  EXPECT_EQ(GetEigenSize(), 2);
}

/// A V = V diag(lambda) across the block and chunk sizes of the solver; CalcPrincComp in order.
TEST(Eigenvectors, SatisfyTheirEquation) {
  for (const int n : {1, 7, 9, 40, 90}) {
    TMatrix data;
    data.Resize(n, n + 5);
    data.FillRandomGauss(0, 1);
    TMatrix covariance;
    covariance.Resize(n, n);
    ASSERT_TRUE(CalcCovar(&data, &covariance, 0, 0, 0, 0, 1));
    ASSERT_TRUE(CalcPrincComp(&data, 0, 0, 0, 0, 1, false));
    for (int k = 1; k <= n; ++k) {
      if (k > 1) {
        EXPECT_LE(GetEigenResult(k, 0), GetEigenResult(k - 1, 0));
      }
      for (int i = 1; i <= n; ++i) {
        double sum = 0;
        for (int j = 1; j <= n; ++j) sum += covariance(j, i) * GetEigenResult(k, j);
        EXPECT_NEAR(sum, GetEigenResult(k, 0) * GetEigenResult(k, i), 1e-12 * n);
      }
    }
  }
}

TEST(Covariances, FollowTheirFormulas) {
  const TMatrix x{{1, 2, 5, 1}, {2, 1, 5, 2}, {4, 7, 5, 4}};
  TMatrix r;
  r.Resize(4, 4);
  ASSERT_TRUE(CalcCovar(&x, &r, 0, 0, 0, 0, 1));
  EXPECT_DOUBLE_EQ(r(1, 1), 7.0 / 3);
  EXPECT_DOUBLE_EQ(r(1, 2), r(2, 1));
  ASSERT_TRUE(CalcCovar(&x, &r, 0, 0, 0, 0, 2));
  EXPECT_EQ(r(1, 4), 1);
  EXPECT_EQ(r(1, 3), 0);
  EXPECT_EQ(r(3, 3), 1);
  ASSERT_TRUE(CalcCovar(&x, &r, 0, 0, 0, 0, 4));
  EXPECT_DOUBLE_EQ(r(1, 2), 11.0 / 2);
  ASSERT_TRUE(CalcCovar(&x, &r, 0, 0, 0, 0, 0));
  EXPECT_DOUBLE_EQ(r(1, 2), 16);
  TMatrix small;
  EXPECT_FALSE(CalcCovar(&x, &small, 0, 0, 0, 0, 1));
}

TEST(PseudoInverse, OfADeficientMatrixGivesItBack) {
  TMatrix a{{1, 2, 3}, {2, 4, 6}, {1, 0, 1}, {0, 5, 5}};
  TMatrix p, ap, apa;
  ASSERT_TRUE(PseudoInverse(&a, &p, 0));
  EXPECT_EQ(p.NrOfColumns(), 4);
  ASSERT_TRUE(a.Multiply(&p, &ap));
  ASSERT_TRUE(ap.Multiply(&a, &apa));
  for (int c = 1; c <= 3; ++c) {
    for (int r = 1; r <= 4; ++r) EXPECT_NEAR(apa(c, r), a(c, r), 1e-13);
  }
}

TEST(Regression, RecoversExactCoefficients) {
  TMatrix x{{1, 2, 1}, {2, -1, 1}, {4, 0, 1}, {3, 7, 1}, {5, 1, 1}};
  TVector y, b, e;
  y.Resize(5);
  for (int i = 1; i <= 5; ++i) y.SetVal(i, 3 * x(1, i) - 2 * x(2, i) + 0.5);
  bool near = true;
  ASSERT_TRUE(MultiLinReg(&x, &y, &b, &e, near));
  EXPECT_FALSE(near);
  EXPECT_NEAR(b(1), 3, 1e-14);
  EXPECT_NEAR(b(2), -2, 1e-14);
  EXPECT_NEAR(b(3), 0.5, 1e-14);
  TMatrix xOnly{{1, 2}, {2, -1}, {4, 0}, {3, 7}, {5, 1}};
  ASSERT_TRUE(RidgeRegStd(&xOnly, &y, 0, &b, nullptr, nullptr, nullptr, near));
  EXPECT_NEAR(b(3), 0.5, 1e-13);
  TMatrix target;
  target.Resize(1, 5);
  for (int i = 1; i <= 5; ++i) target.SetVal(1, i, y(i));
  TMatrix coefficients;
  ASSERT_TRUE(SimPLS(&xOnly, &target, 2, true, nullptr, nullptr, nullptr, nullptr, nullptr,
                     &coefficients, nullptr, nullptr, nullptr));
  EXPECT_NEAR(coefficients(1, 1), 3, 1e-12);
  EXPECT_NEAR(coefficients(1, 2), -2, 1e-12);
  EXPECT_NEAR(coefficients(1, 3), 0.5, 1e-12);
}

TEST(VariableNames, AreNeitherFunctionsNorNumbers) {
  TStrArray names;
  ExtractVarNames("a1*sin(x) + 1.5e-3*b_2 - x/log (y.z) + 'text' + 2e", names);
  EXPECT_EQ(names, (TStrArray{"a1", "x", "b_2", "y.z", "e"}));
}

TEST(Mahalanobis, WithTheIdentityIsEuclidean) {
  const TVector x{1, 2}, y{4, 6};
  const TMatrix one{{1, 0}, {0, 1}}, negative{{-1, 0}, {0, -1}};
  EXPECT_DOUBLE_EQ(MahalanobisDistance(&x, &y, &one), 5);
  EXPECT_THROW((void)MahalanobisDistance(&x, &y, &negative), EZELVectorError);
}

}  // namespace
}  // namespace zel
