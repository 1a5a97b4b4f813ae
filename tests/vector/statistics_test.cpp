#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "tests/support/expect_message.h"
#include "zel/vector/Zel_vector.h"

namespace zel {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();

template <class V>
class VectorStatistics : public ::testing::Test {};
using Both = ::testing::Types<TVector, TIntVector>;
TYPED_TEST_SUITE(VectorStatistics, Both);

TYPED_TEST(VectorStatistics, MeanVarRules) {
  double mean = 0;
  double variance = 0;
  TypeParam{5}.MeanVar(0, 0, mean, variance);
  EXPECT_EQ(mean, 5);
  EXPECT_EQ(variance, 1);
  TypeParam{2, 4}.MeanVar(0, 0, mean, variance);
  EXPECT_EQ(mean, 3);
  EXPECT_EQ(variance, 1);
  TypeParam{9, 2, 4, 6, -7}.MeanVar(4, 2, mean, variance);
  EXPECT_EQ(mean, 4);
  EXPECT_EQ(variance, 4);
  TypeParam{7, 7, 7, 7}.MeanVar(0, 0, mean, variance);
  EXPECT_EQ(variance, 0);
}

TEST(VectorStatisticsDouble, VarianceIgnoresTheOffset) {
  // Unit spread around 1e9 + 1/3: the second moment about 0 holds no digit of it in double
  // precision.
  TVector v;
  v.Resize(999);
  for (int i = 1; i <= 999; ++i) v.SetVal(i, 1e9 + (i % 3));
  double mean = 0;
  double variance = 0;
  v.MeanVar(0, 0, mean, variance);
  EXPECT_EQ(mean, 1e9 + 1);
  EXPECT_DOUBLE_EQ(variance, 666.0 / 998);
  TVector constant;
  constant.Resize(1000);
  constant.Fill(0.1);
  constant.MeanVar(0, 0, mean, variance);
  EXPECT_EQ(variance, 0);
  EXPECT_EQ(mean, 0.1);
}

TYPED_TEST(VectorStatistics, SkewnessAndKurtosis) {
  // mean 4, s^2 = 50/3, m3 = 36, m4 = 322.5 with divisor 4 in m3 and m4.
  TypeParam v{1, 2, 3, 10};
  double skewness = 0;
  double kurtosis = 0;
  v.SkewKurt(0, 0, skewness, kurtosis);
  const double s2 = 50.0 / 3;
  const double m3 = (-27 - 8 - 1 + 216) / 4.0;
  const double m4 = (81 + 16 + 1 + 1296) / 4.0;
  EXPECT_DOUBLE_EQ(skewness, m3 / std::pow(s2, 1.5));
  EXPECT_DOUBLE_EQ(kurtosis, m4 / (s2 * s2) - 3);
  const double s = skewness;
  v.SkewKurtSample(0, 0, skewness, kurtosis);
  EXPECT_DOUBLE_EQ(skewness, s * 16 / 6);
  EXPECT_DOUBLE_EQ(kurtosis, 3.228) << "348.5 / s2^2 * 80 / 6 - 13.5";
  v.SkewKurt(1, 3, skewness, kurtosis);
  EXPECT_TRUE(skewness == 0 && kurtosis == 0) << "fewer than four values";
  TypeParam{4, 4, 4, 4, 4}.SkewKurt(0, 0, skewness, kurtosis);
  EXPECT_TRUE(skewness == 0 && kurtosis == 0) << "no spread";
}

TYPED_TEST(VectorStatistics, GeometricAndHarmonicMean) {
  EXPECT_DOUBLE_EQ((TypeParam{1, 4, 16}.GeometricMean(0, 0)), 4);
  EXPECT_EQ((TypeParam{1, 0, 4}.GeometricMean(0, 0)), 0);
  EXPECT_DOUBLE_EQ((TypeParam{1, 2, 4}.HarmonicMean(0, 0)), 12.0 / 7);
  TypeParam bad{1, 0, -1};
  bad.SetName("B");
  EXPECT_THROW_MSG(static_cast<void>(bad.GeometricMean(0, 0)), EZELVectorError,
                   "Component \"B\": negative argument passed to GeometricMean");
  EXPECT_THROW_MSG(static_cast<void>(bad.HarmonicMean(1, 2)), EZELVectorError,
                   "Component \"B\": negative or zero argument passed to HarmonicMean");
}

TYPED_TEST(VectorStatistics, MinMaxFirstWins) {
  typename TypeParam::value_type low = 0;
  typename TypeParam::value_type high = 0;
  int lowAt = 0;
  int highAt = 0;
  TypeParam v{5, 1, 9, 1, 9, 5};
  v.MinMax(0, 0, low, high, lowAt, highAt);
  EXPECT_TRUE(low == 1 && high == 9 && lowAt == 2 && highAt == 3);
  v.MinMax(4, 99, low, high, lowAt, highAt);
  EXPECT_TRUE(lowAt == 4 && highAt == 5) << "positions in the vector";
}

TEST(VectorStatisticsDouble, MinMaxStartValues) {
  double low = 0;
  double high = 0;
  int lowAt = 9;
  int highAt = 9;
  TVector{kInf, 1.7e308}.MinMax(0, 0, low, high, lowAt, highAt);
  EXPECT_TRUE(low == 1.7e308 && lowAt == 0 && high == kInf && highAt == 1);
  TVector{std::nan(""), -kInf}.MinMax(1, 1, low, high, lowAt, highAt);
  EXPECT_TRUE(lowAt == 0 && highAt == 0 && low == 1.7e308 && high == -1.7e308);
  int ilow = 0;
  int ihigh = 0;
  TIntVector{INT_MIN, INT_MAX}.MinMax(0, 0, ilow, ihigh, lowAt, highAt);
  EXPECT_TRUE(ilow == INT_MIN && lowAt == 1 && ihigh == INT_MAX && highAt == 2);
  TIntVector{INT_MIN}.MinMax(0, 0, ilow, ihigh, lowAt, highAt);
  EXPECT_TRUE(ihigh == -INT_MAX && highAt == 0);
}

TYPED_TEST(VectorStatistics, ModeAndDichotomy) {
  EXPECT_EQ((TypeParam{3, 1, 3, 2, 2}.Mode(0, 0)), 2);
  EXPECT_EQ((TypeParam{3, 1, 2}.Mode(0, 0)), 1);
  EXPECT_EQ((TypeParam{3, 1, 3, 2, 2}.Mode(1, 4)), 3);
  typename TypeParam::value_type a = 7;
  typename TypeParam::value_type b = 7;
  EXPECT_FALSE(TypeParam{5}.IsDichotomous(a, b));
  EXPECT_TRUE(a == 0 && b == 0);
  EXPECT_TRUE((TypeParam{5, 5, 5}.IsDichotomous(a, b)));
  EXPECT_TRUE(a == 5 && b == 5);
  EXPECT_TRUE((TypeParam{5, 5, 3}.IsDichotomous(a, b)));
  EXPECT_TRUE(a == 5 && b == 3);
  EXPECT_TRUE((TypeParam{5, 3, 5, 3}.IsDichotomous(a, b)));
  EXPECT_FALSE((TypeParam{5, 3, 5, 4}.IsDichotomous(a, b)));
  EXPECT_TRUE(a == 5 && b == 3);
}

TYPED_TEST(VectorStatistics, PercentilesAndQuartilesFollowTheirOwnRules) {
  TypeParam v{4, 1, 3, 2};
  EXPECT_EQ(v.Percentile(50, 0, 0), 2.5);
  EXPECT_EQ(v.Percentile(-10, 0, 0), 1);
  EXPECT_EQ(v.Percentile(250, 0, 0), 4);
  EXPECT_EQ((TypeParam{5, 1, 4, 2, 3}.Percentile(25, 0, 0)), 2);
  EXPECT_EQ(v.Percentile(50, 2, 2), 1);
  double q1 = 0;
  double q2 = 0;
  double q3 = 0;
  EXPECT_TRUE(v.Quartiles(0, 0, q1, q2, q3));
  EXPECT_TRUE(q1 == 1.25 && q2 == 2.5 && q3 == 3.75);
  TypeParam{1, 2}.Quartiles(0, 0, q1, q2, q3);
  EXPECT_TRUE(q1 == 1 && q2 == 1.5 && q3 == 2);
  TypeParam{9, 1, 2, 3}.Quartiles(2, 4, q1, q2, q3);
  EXPECT_TRUE(q1 == 1 && q2 == 2 && q3 == 3);
  TypeParam{6}.Quartiles(0, 0, q1, q2, q3);
  EXPECT_TRUE(q1 == 6 && q2 == 6 && q3 == 6);
  EXPECT_EQ(v.GetVal(1), 4) << "statistics leave the vector alone";
}

TYPED_TEST(VectorStatistics, OrderStatisticsAreTheSameWithAListener) {
  std::mt19937 random(11);
  TypeParam v;
  v.Resize(1000);
  for (int i = 1; i <= 1000; ++i)
    v.SetVal(i, static_cast<typename TypeParam::value_type>(random() % 300));
  double q[6];
  const double silent = v.Percentile(33.3, 3, 977);
  v.Quartiles(0, 0, q[0], q[1], q[2]);
  static int steps;
  steps = 0;
  ProcStat = 0;
  MathFeedBackProc = [](double) { ++steps; };
  EXPECT_EQ(v.Percentile(33.3, 3, 977), silent);
  EXPECT_EQ(ProcStat, steps);
  EXPECT_GT(steps, 20) << "a sort of 975 values makes more passes";
  v.Quartiles(0, 0, q[3], q[4], q[5]);
  MathFeedBackProc = nullptr;
  EXPECT_TRUE(q[0] == q[3] && q[1] == q[4] && q[2] == q[5]);
}

TYPED_TEST(VectorStatistics, ProductsAndCorrelation) {
  TypeParam a{1, 2, 3};
  TypeParam b{4, 5, 6};
  TypeParam shorter{1, 2};
  EXPECT_EQ(a.DotProduct(&b), 32);
  EXPECT_EQ(a.DotProduct(nullptr), 0);
  a.SetName("a");
  EXPECT_THROW_MSG(static_cast<void>(a.DotProduct(&shorter)), EZELVectorError,
                   "Component \"a\": vectors have different dimensions");
  EXPECT_THROW_MSG(static_cast<void>(a.EuclideanDistance(&shorter)), EZELVectorError,
                   "EuclideanDistance: dimensions of vectors do not match");
  EXPECT_EQ(
      (TypeParam{0, 0}.EuclideanDistance(
          std::make_unique<TypeParam>(std::initializer_list<typename TypeParam::value_type>{3, 4})
              .get())),
      5);
  EXPECT_DOUBLE_EQ(a.PearsonCorrCoeff(&b), 1);
  EXPECT_DOUBLE_EQ((TypeParam{1, 3, 2}.PearsonCorrCoeff(&a)), 0.5);
  EXPECT_EQ(a.PearsonCorrCoeff(&shorter), 0);
  EXPECT_EQ(a.PearsonCorrCoeff(nullptr), 0);
  TypeParam constant{7, 7, 7};
  EXPECT_EQ(a.PearsonCorrCoeff(&constant), 0);
}

TEST(VectorStatisticsDouble, ShiftedProductsDifferInSignAndOverlap) {
  TVector a{1, 2, 3};
  TVector b{4, 5, 6};
  EXPECT_EQ(a.Correlate(&b, 0), 32);
  EXPECT_EQ(a.Correlate(&b, 1), 2 * 4 + 3 * 5);
  EXPECT_EQ(a.Correlate(&b, -1), 1 * 5 + 2 * 6);
  EXPECT_EQ(a.Correlate(&b, 2), 0) << "an overlap of one element";
  EXPECT_EQ(a.Correlate(&b, INT_MIN), 0);
  EXPECT_EQ(a.Correlate(&b, INT_MAX), 0);
  TIntVector c{1, 2, 3};
  TIntVector d{4, 5, 6};
  EXPECT_EQ(c.Correlate(&d, 1), 1 * 5 + 2 * 6);
  EXPECT_EQ(c.Correlate(&d, -2), 3 * 4);
  EXPECT_EQ(c.Correlate(&d, 3), 0);
  EXPECT_EQ(c.Correlate(&d, INT_MIN), 0);
}

TEST(VectorStatisticsDouble, HistogramBins) {
  TVector v{0.5, 1.5, 2.5, 9, -0.1, std::nan("")};
  TIntVector histo;
  int under = -1;
  int over = -1;
  int most = -1;
  EXPECT_TRUE(v.Histogram(1, 4, 0, 2, 1, &histo, under, over, most));
  EXPECT_EQ(std::vector<int>(histo), (std::vector<int>{1, 1, 1}));
  EXPECT_TRUE(under == 0 && over == 1 && most == 1);
  EXPECT_TRUE(v.Histogram(1, 8, 0, 2, 1, &histo, under, over, most));
  EXPECT_EQ(std::vector<int>(histo), (std::vector<int>{3, 1, 1})) << "positions 7 and 8 count as 0";
  EXPECT_TRUE(under == 1 && over == 1 && most == 3);
  EXPECT_TRUE(v.Histogram(4, 1, 0, 2, 1, &histo, under, over, most));
  EXPECT_EQ(std::vector<int>(histo), (std::vector<int>{0, 0, 0})) << "no position";

  // [0, 1.6) in bins of 0.6: round(1 / 0.6) + 1 = 3 bins; a fourth does not exist.
  TVector w{1.55, 1.7, 0.0};
  EXPECT_TRUE(w.Histogram(1, 3, 0, 1.25, 0.5, &histo, under, over, most));
  EXPECT_EQ(histo.NrOfElem(), 3);
  EXPECT_EQ(std::vector<int>(histo), (std::vector<int>{1, 0, 0})) << "1.55 and 1.7 fall in bin 4";
  EXPECT_TRUE(over == 0 && most == 1);

  const std::vector<int> before(histo);
  EXPECT_FALSE(v.Histogram(1, 4, 0, 1000, 1, &histo, under, over, most));
  EXPECT_FALSE(v.Histogram(1, 4, 0, 2, 0, &histo, under, over, most));
  EXPECT_FALSE(v.Histogram(1, 4, 0, kInf, 1, &histo, under, over, most));
  EXPECT_FALSE(v.Histogram(1, 4, 0, 2, 1, nullptr, under, over, most));
  EXPECT_EQ(std::vector<int>(histo), before);
  EXPECT_TRUE(v.Histogram(1, 4, 0, 499, 1, &histo, under, over, most)) << "500 bins";
  EXPECT_FALSE(v.Histogram(1, 4, 0, 500, 1, &histo, under, over, most)) << "501 bins";

  int events = 0;
  histo.OnChange = [&](TObject*) { ++events; };
  v.Histogram(1, 4, 0, 2, 1, &histo, under, over, most);
  EXPECT_EQ(events, 1 + 1 + 3) << "resize, clear, a count for each value in a bin";
}

TEST(VectorStatisticsInt, HistogramBins) {
  TIntVector v{-1, 0, 4, 5, 9, 10};
  v.SetName("H");
  TIntVector histo;
  int under = 0;
  int over = 0;
  int most = 0;
  EXPECT_TRUE(v.Histogram(1, 6, 0, 5, 5, &histo, under, over, most));
  EXPECT_EQ(std::vector<int>(histo), (std::vector<int>{2, 2}));
  EXPECT_TRUE(under == 1 && over == 1 && most == 2);
  EXPECT_THROW_MSG(v.Histogram(1, 6, 0, 1000, 1, &histo, under, over, most), EZELVectorError,
                   "Component \"H.Histogram\": invalid number of bins");
  EXPECT_THROW(v.Histogram(1, 6, INT_MIN, INT_MAX, 1, &histo, under, over, most), EZELVectorError);
  EXPECT_TRUE(v.Histogram(1, 6, INT_MIN, INT_MAX, INT_MAX, &histo, under, over, most));
  EXPECT_EQ(histo.NrOfElem(), 3);
  EXPECT_TRUE(v.Histogram(INT_MIN, INT_MAX, 1, 1, 1, &v, under, over, most)) << "into itself";
  EXPECT_TRUE(under == INT_MAX && most == 0 && v.GetVal(1) == 0);
}

TEST(VectorStatisticsDouble, Integration) {
  TVector tent{0, 1, 0};
  EXPECT_EQ(tent.Integrate(1, 3, imTrapezoidal), 1);
  EXPECT_EQ(tent.Integrate(1.5, 2.5, imTrapezoidal), 0.75);
  EXPECT_EQ(tent.Integrate(2.5, 1.5, imTrapezoidal), 0.75);
  EXPECT_EQ(tent.Integrate(1.25, 1.75, imTrapezoidal), 0.25);
  EXPECT_EQ(tent.Integrate(1.25, 1.75, imSimple), 0.25);
  EXPECT_EQ(tent.Integrate(-kInf, kInf, imSimple), 2.0 / 3);
  EXPECT_EQ(tent.Integrate(1, 3, static_cast<TIntegMethod>(7)), 0);
  TVector v;
  for (int n = 1; n <= 12; ++n) {
    v.Resize(n);
    v.Fill(2.5);
    for (const TIntegMethod m : {imSimple, imTrapezoidal, imSimpson}) {
      EXPECT_DOUBLE_EQ(v.Integrate(0, 99, m), 2.5 * (n - 1)) << n << ' ' << int(m);
      EXPECT_EQ(v.Integrate(1, 1, m), 0);
    }
    // Cubics are exact from 3 samples on, except for the open-ended rule, whose error is of
    // order 4.
    for (int i = 1; i <= n; ++i) v.SetVal(i, double(i) * i * i);
    if (n >= 3 && n <= 5) {
      EXPECT_DOUBLE_EQ(v.Integrate(1, n, imSimpson), (std::pow(n, 4) - 1) / 4) << n;
    }
  }
}

TEST(VectorStatisticsDouble, TransformationsAreSilent) {
  TVector v{1, 2, 3, 4, 5};
  v.OnChange = [](TObject*) { FAIL(); };
  double mean = 0;
  double stddev = 0;
  v.Standardize(mean, stddev);
  EXPECT_EQ(mean, 3);
  EXPECT_DOUBLE_EQ(stddev, std::sqrt(2.5));
  EXPECT_DOUBLE_EQ(v.GetVal(5), 2 / std::sqrt(2.5));
  TVector constant{4, 4, 4};
  constant.Standardize(mean, stddev);
  EXPECT_TRUE(stddev == 0 && constant.GetVal(1) == 4);
  TVector pair{4, 4};
  pair.Standardize(mean, stddev);
  EXPECT_TRUE(stddev == 1 && pair.GetVal(1) == 0);

  TVector w{1, 2, 3, 4, 10};
  EXPECT_EQ(w.MeanCenter(), 4);
  EXPECT_EQ(w.GetVal(5), 6);
  double median = 0;
  double difference = 0;
  w.QNormalize(75, median, difference);
  EXPECT_TRUE(median == -1 && difference == 1);
  EXPECT_EQ(w.GetVal(5), 7);
  w.QNormalize(50, median, difference);
  EXPECT_TRUE(difference == 0 && w.GetVal(5) == 7);
}

}  // namespace
}  // namespace zel
