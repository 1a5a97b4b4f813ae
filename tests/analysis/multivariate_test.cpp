#include "zel/analysis/Zel_math2.h"

#include <set>

#include "tests/matrix/matrices.h"
#include "tests/support/data_file.h"
#include "tests/support/testing.h"

namespace zel::test {
namespace {

using Covariances = WithProgress;

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

TEST_F(Covariances, FollowTheirFormulas) {
  const TMatrix x{{1, 2, 5, 1}, {2, 1, 5, 2}, {4, 7, 5, 4}};
  TMatrix r;
  r.Resize(4, 4);
  struct {
    int mode, c, r;
    double expected;
  } const elements[] = {{1, 1, 1, 7.0 / 3}, {1, 1, 2, 13.0 / 3}, {1, 2, 1, 13.0 / 3},
                        {2, 1, 4, 1},       {2, 1, 3, 0},        {2, 3, 3, 1},
                        {4, 1, 2, 5.5},     {0, 1, 2, 16}};
  for (const auto& e : elements) {
    ASSERT_TRUE(CalcCovar(&x, &r, 0, 0, 0, 0, e.mode));
    EXPECT_EQ(r(e.c, e.r), e.expected) << e.mode << e.c << e.r;
  }
  TMatrix small;
  EXPECT_FALSE(CalcCovar(&x, &small, 0, 0, 0, 0, 1));
}

TEST_F(Covariances, ReportAndStop) {
  TMatrix x{{1, 2, 5}, {2, 1, 5}, {4, 7, 5}, {0, 3, 5}};
  TMatrix r{{-1, -1, -1}, {-1, -1, -1}, {-1, -1, -1}};
  ASSERT_TRUE(CalcCovar(&x, &r, 1, 2, 0, 0, 1));
  EXPECT_EQ(ProcStat, 4 + 3 * 4);
  EXPECT_EQ(r(3, 3), -1) << "outside the result";
  ProcStat = 0;
  ASSERT_TRUE(CalcCovar(&x, &r, 0, 0, 2, 3, 0));
  EXPECT_EQ(ProcStat, 6 * 2) << "no pass for means";
  MathFeedBackProc = [](double) { AbortMathProc = true; };
  EXPECT_FALSE(CalcCovar(&x, &r, 0, 0, 0, 0, 1));
  MathFeedBackProc = nullptr;
  EXPECT_TRUE(CalcCovar(&x, &r, 0, 0, 0, 0, 1)) << "the request is over";
  EXPECT_FALSE(CalcCovar(&x, &r, 0, 0, 0, 0, 5));
  ASSERT_TRUE(CalcCovar(&x, &x, 0, 0, 0, 0, 1)) << "in place";
  EXPECT_EQ(x(2, 1), r(2, 1));
  EXPECT_EQ(x(3, 4), 5);
}

/// Offsets and extreme sizes cost no digits.
TEST_F(Covariances, KeepTheirDigits) {
  TMatrix x, shifted, r, s;
  fillNormal(x, 3, 1000);
  r.Resize(3, 3);
  s.Resize(3, 3);
  for (double& v : std::span(x.data(), 3000)) v = std::round(v * 1024) / 1024;
  ASSERT_TRUE(CalcCovar(&x, &r, 0, 0, 0, 0, 1));
  for (const double scale : {1.0, 0x1p-400, 0x1p400}) {
    shifted.Clone(&x);
    for (double& v : std::span(shifted.data(), 3000)) v = (v + 0x1p30) * scale;
    ASSERT_TRUE(CalcCovar(&shifted, &s, 0, 0, 0, 0, 1));
    for (int c = 1; c <= 3; ++c) {
      for (int k = 1; k <= 3; ++k) EXPECT_NEAR(s(c, k) / scale / scale, r(c, k), 2e-15);
    }
    ASSERT_TRUE(CalcCovar(&shifted, &s, 0, 0, 0, 0, 2));
    EXPECT_NEAR(s(1, 2), r(1, 2) / std::sqrt(r(1, 1) * r(2, 2)), 1e-15);
  }
}

/// prcomp(iris[, 1:4]) of R, and with scale. = TRUE.
TEST(PrincipalComponents, OfTheIrises) {
  TMatrix iris;
  loadCsv("iris.csv", 0, 4, iris);
  ASSERT_TRUE(CalcPrincComp(&iris, 0, 0, 0, 0, 1, false));
  const double variances[] = {4.228241706034864, 0.242670747928633523, 0.078209500042919336,
                              0.023835092973449434};
  for (int k = 1; k <= 4; ++k) EXPECT_NEAR(GetEigenResult(k, 0), variances[k - 1], 2e-15);
  const double first[] = {0.361386591785368583, -0.084522514064568566, 0.856670605949835129,
                          0.358289197151550776};
  const double sign = GetEigenResult(1, 1) < 0 ? -1 : 1;
  for (int i = 1; i <= 4; ++i) EXPECT_NEAR(sign * GetEigenResult(1, i), first[i - 1], 1e-14);
  ASSERT_TRUE(CalcPrincComp(&iris, 0, 0, 0, 0, 2));
  EXPECT_NEAR(GetEigenResult(1, 0), 2.918497816531997024 / 4, 2e-15);
  EXPECT_NEAR(GetEigenResult(4, 0), 0.020714836428619224 / 4, 2e-15);
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

/// One notification each; what fails leaves all three alone.
TEST(SingularValues, ResultsComeTogether) {
  TMatrix a{{3, 0}, {0, 4}, {0, 0}}, v{{7}};
  TVector w{8};
  int events = 0;
  for (TNotifyEvent* event : {&a.OnChange, &v.OnChange, &w.OnChange}) {
    *event = [&](TObject*) { ++events; };
  }
  const auto expectOld = [&] {
    EXPECT_EQ(a(2, 2), 4);
    EXPECT_EQ(v(1, 1), 7);
    EXPECT_EQ(w(1), 8);
    EXPECT_EQ(events, 0);
  };
  for (int k = 0; k < 2; ++k) {
    const FailingStorage failing(k);
    EXPECT_THROW(SingularValueDecompose(&a, &v, &w), EZELMath2Error);
    expectOld();
  }
  TMatrix bad{{1, NAN}, {0, 1}};
  EXPECT_FALSE(SingularValueDecompose(&bad, &v, &w));
  expectOld();
  ASSERT_TRUE(SingularValueDecompose(&a, &v, &w));
  EXPECT_EQ(events, 3);
  EXPECT_EQ(std::max(w(1), w(2)), 4);
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

/// Mixtures of three spectra of six bands; rows 4, 20 and 41 are pure.
struct Mixtures {
  TMatrix data, parts;
  explicit Mixtures(double scale) {
    const double spectra[3][6] = {{1, 2, 3, 4, 5, 6}, {4, 1, 4, 1, 4, 1}, {2, 7, 1, 8, 2, 8}};
    parts.Resize(3, 60);
    data.Resize(6, 60);
    for (int r = 1; r <= 60; ++r) {
      const double a = Random();
      const double b = Random() * (1 - a);
      const int pure = r == 4 ? 1 : r == 20 ? 2 : r == 41 ? 3 : 0;
      const double part[] = {a, b, 1 - a - b};
      for (int k = 1; k <= 3; ++k) parts.SetVal(k, r, pure ? pure == k : part[k - 1]);
      for (int c = 1; c <= 6; ++c) {
        double sum = 0;
        for (int k = 1; k <= 3; ++k) sum += parts(k, r) * spectra[k - 1][c - 1];
        data.SetVal(c, r, scale * sum);
      }
    }
  }
};

TEST(VertexComponents, OfNoiselessMixturesAreThePureOnes) {
  for (const bool isHigh : {true, false}) {
    for (const double scale : {1.0, 0x1p-700, 0x1p900}) {
      SetRandSeed(3);
      Mixtures mixtures(scale);
      TMatrix pure, fractions;
      TIntVector rows;
      ASSERT_TRUE(VertexCompAnalysis(&mixtures.data, 3, isHigh, &pure, &rows, &fractions));
      EXPECT_EQ((std::set<int>{rows(1), rows(2), rows(3)}), (std::set<int>{4, 20, 41}));
      for (int k = 1; k <= 3; ++k) {
        for (int c = 1; c <= 6; ++c) {
          EXPECT_NEAR(pure(c, k) / scale, mixtures.data(c, rows(k)) / scale, 1e-13);
        }
        const int spectrum = rows(k) == 4 ? 1 : rows(k) == 20 ? 2 : 3;
        for (int r = 1; r <= 60; ++r) {
          EXPECT_NEAR(fractions(k, r), mixtures.parts(spectrum, r), 1e-13);
        }
      }
    }
  }
}

TEST(VertexComponents, MoreThanTheDataSpanAreRefused) {
  Mixtures mixtures(1);
  TMatrix pure{{7}};
  for (const bool isHigh : {true, false}) {
    EXPECT_FALSE(VertexCompAnalysis(&mixtures.data, 4, isHigh, &pure, nullptr, nullptr));
    EXPECT_FALSE(VertexCompAnalysis(&mixtures.data, 1, isHigh, &pure, nullptr, nullptr));
    EXPECT_FALSE(VertexCompAnalysis(&mixtures.data, 7, isHigh, &pure, nullptr, nullptr));
  }
  mixtures.data.SetVal(2, 2, std::numeric_limits<double>::quiet_NaN());
  EXPECT_FALSE(VertexCompAnalysis(&mixtures.data, 3, true, &pure, nullptr, nullptr));
  EXPECT_EQ(pure(1, 1), 7);
  TMatrix equal{{1, 2}, {1, 2}, {1, 2}};
  EXPECT_FALSE(VertexCompAnalysis(&equal, 2, false, nullptr, nullptr, nullptr));
}

}  // namespace
}  // namespace zel::test
