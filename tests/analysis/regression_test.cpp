// Regressions beside R's lm, svd and pls, on Longley's data.
#include "tests/matrix/matrices.h"
#include "tests/support/data_file.h"
#include "tests/support/testing.h"
#include "zel/analysis/Zel_math2.h"

namespace zel::test {
namespace {

/// Six regressors, a constant if wanted, and the employment.
struct Longley {
  TMatrix x, y;
  TVector target;
  explicit Longley(bool withConstant) {
    loadCsv("longley.csv", 0, 6, x);
    loadCsv("longley.csv", 6, 1, y);
    target.SetElements(y.Column(1));
    if (!withConstant) return;
    TMatrix wide;
    wide.Resize(7, 16);
    wide.Fill(1);
    wide.CopyFrom(&x, 1, 1, 6, 16, 1, 1);
    x.Clone(&wide);
  }
};

void expectRelative(const TVector& v, std::initializer_list<double> expected, double tolerance) {
  ASSERT_EQ(v.NrOfElem(), static_cast<int>(expected.size()));
  int k = 0;
  for (const double e : expected) {
    ++k;
    EXPECT_NEAR(v(k), e, tolerance * std::abs(e)) << k;
  }
}

TEST(Regression, OfLongleyHasTheCertifiedDigits) {
  Longley data(true);
  TVector b, errors;
  bool isNearSingular = true;
  ASSERT_TRUE(MultiLinReg(&data.x, &data.target, &b, &errors, isNearSingular));
  EXPECT_FALSE(isNearSingular);
  // The certified values of the NIST Statistical Reference Datasets for the data in their original
  // units, brought to those of the file: the true digits, of which R has twelve.
  expectRelative(
      b,
      {15.0618722713733e-3, -0.358191792925910e-1, -0.202022980381683e-1, -0.103322686717359e-1,
       -0.511041056535807e-1, 1.82915146461355, -3482.25863459582},
      1e-12);
  expectRelative(errors,
                 {84.9149257747669e-3, 0.334910077722432e-1, 4.88399681651699e-3,
                  2.14274163161675e-3, 0.226073200069370, 0.455478499142212, 890.420383607373},
                 1e-9);
}

TEST(Regression, RidgeAndPartialLeastSquares) {
  Longley data(false);
  TVector b, errors, means, deviations;
  bool isNearSingular = true;
  ASSERT_TRUE(
      RidgeRegStd(&data.x, &data.target, 0.5, &b, &errors, &means, &deviations, isNearSingular));
  expectRelative(
      b,
      {0.0859835815159476907, 0.0117687198010530576, -0.0096671281294404086, -0.0043257817299570053,
       0.1053175412802687394, 0.2700365499879566755, -483.92726401921243},
      1e-12);
  EXPECT_NEAR(errors(1), 0.0235283715872956038, 1e-13);
  EXPECT_NEAR(errors(6), 0.0290644797755596658, 1e-13);
  EXPECT_EQ(means(6), 1954.5);

  // pls::plsr(method = "simpls", scale = TRUE, ncomp = 2), whose coefficients are for scaled x and
  // y in its own units.
  TMatrix scores, coefficients;
  TVector variance;
  ASSERT_TRUE(SimPLS(&data.x, &data.y, 2, true, &scores, nullptr, nullptr, nullptr, nullptr,
                     &coefficients, &variance, nullptr, nullptr));
  const double expected[] = {0.85052612816135820, 0.92841911967397250, -0.32314947244306708,
                             0.45395788720854952, 0.79919423034052250, 0.83006761446966926};
  for (int i = 1; i <= 6; ++i) {
    EXPECT_NEAR(coefficients(1, i) * deviations(i), expected[i - 1], 1e-12);
  }
  EXPECT_NEAR(coefficients(1, 7), -301.17061604113513, 1e-9);
  EXPECT_NEAR(variance(1), 0.76654488595439574, 1e-13);
  EXPECT_NEAR(variance(2), 0.17041338494575701, 1e-13);
  EXPECT_EQ(scores.NrOfColumns(), 2);
  // All factors are the least-squares fit.
  ASSERT_TRUE(SimPLS(&data.x, &data.y, 9, true, nullptr, nullptr, nullptr, nullptr, nullptr,
                     &coefficients, nullptr, nullptr, nullptr));
  EXPECT_NEAR(coefficients(1, 6), 1.8291514646135489, 1e-7);
}

/// Linearly dependent columns share their part, whatever the size of the values, and are reported.
TEST(Regression, OfDependentColumns) {
  for (const double scale : {1.0, 0x1p-600, 0x1p900}) {
    TMatrix x{{1, 2, 1}, {2, 4, -1}, {-1, -2, 3}, {0, 0, 1}};
    TVector y, b;
    y.Resize(4);
    for (int r = 1; r <= 4; ++r) {
      for (int c = 1; c <= 3; ++c) x.SetVal(c, r, x(c, r) * scale);
      y.SetVal(r, 5 * x(1, r) - x(3, r));
    }
    bool isNearSingular = false;
    ASSERT_TRUE(MultiLinReg(&x, &y, &b, nullptr, isNearSingular)) << scale;
    EXPECT_TRUE(isNearSingular);
    expectRelative(b, {1, 2, -1}, 1e-13);
  }
}

TEST(Regression, RefusesWhatDoesNotFit) {
  const TMatrix x{{1, 1}, {2, 1}, {4, 1}};
  const TVector shorter{1, 2};
  TVector y{1, 2, 3}, b{7, 8};
  bool isNearSingular = true;
  EXPECT_FALSE(MultiLinReg(&x, &shorter, &b, nullptr, isNearSingular));
  EXPECT_FALSE(isNearSingular);
  EXPECT_FALSE(RidgeReg(&x, &y, -1, &b, nullptr, isNearSingular));
  EXPECT_FALSE(RidgeReg(&x, &y, kInf, &b, nullptr, isNearSingular));
  y.SetVal(2, kInf);
  EXPECT_FALSE(MultiLinReg(&x, &y, &b, nullptr, isNearSingular));
  expectRelative(b, {7, 8}, 0);
}

TEST(Regression, FailedAllocationsChangeNoResult) {
  const TMatrix x{{1, 1}, {2, 1}, {4, 1}}, design{{1, 1}, {2, 3}, {4, 1}, {0, 2}},
      target{{1}, {2}, {3}, {5}};
  const TVector y{1, 2, 3};
  TMatrix scores, loadings;
  TVector b, errors, variance;
  bool isNearSingular = true;
  const auto prepare = [&] {
    for (TVector* v : {&b, &errors, &variance}) v->SetElements(std::vector<double>{7});
    for (TMatrix* m : {&scores, &loadings}) m->Resize(1, 1), m->SetVal(1, 1, 7);
  };
  const auto unchanged = [&] {
    for (const TVector* v : {&b, &errors, &variance}) EXPECT_EQ(contents(*v), std::vector{7.0});
    for (const TMatrix* m : {&scores, &loadings}) EXPECT_EQ((*m)(1, 1), 7);
  };
  expectFailuresHarmless<EZELMath2Error>(
      [&] { EXPECT_TRUE(MultiLinReg(&x, &y, &b, &errors, isNearSingular)); },
      "MultiLinReg: not enough memory", unchanged, prepare);
  EXPECT_NEAR(b(1), 0.642857142857142857, 1e-15);
  const auto leastSquares = [&] {
    EXPECT_TRUE(SimPLS(&design, &target, 1, false, &scores, &loadings, nullptr, nullptr, nullptr,
                       nullptr, &variance, nullptr, nullptr));
  };
  expectFailuresHarmless<EZELMath2Error>(leastSquares, "SimPLS: not enough memory", unchanged,
                                         prepare);
}

}  // namespace
}  // namespace zel::test
