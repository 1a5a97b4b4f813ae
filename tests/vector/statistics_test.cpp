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

template <class V>
class VectorStatistics : public ::testing::Test {};
using Both = ::testing::Types<TVector, TIntVector>;
TYPED_TEST_SUITE(VectorStatistics, Both);

// The rules themselves are tested with the kernels; here each call meets its rule, range and
// errors.
TYPED_TEST(VectorStatistics, MomentsOfARange) {
  TypeParam v{9, 2, 4, 6, -7};
  EXPECT_EQ(v.Sum(4, 2), 12);
  double mean = 0;
  double variance = 0;
  v.MeanVar(4, 2, mean, variance);
  EXPECT_TRUE(mean == 4 && variance == 4);
  TypeParam w{99, 1, 2, 3, 10};
  double skewness = 0;
  double kurtosis = 0;
  w.SkewKurt(2, 5, skewness, kurtosis);
  EXPECT_DOUBLE_EQ(skewness, 0.66136223055145808651);
  EXPECT_DOUBLE_EQ(kurtosis, -1.7454);
  w.SkewKurtSample(5, 2, skewness, kurtosis);
  EXPECT_DOUBLE_EQ(skewness, 1.7636326148038882307);
  EXPECT_DOUBLE_EQ(kurtosis, 3.228);
}

TYPED_TEST(VectorStatistics, GeometricAndHarmonicMean) {
  EXPECT_EQ((TypeParam{-5, 1, 2, 4}.GeometricMean(2, 4)), 2);
  EXPECT_DOUBLE_EQ((TypeParam{-5, 1, 2, 4}.HarmonicMean(2, 4)), 12.0 / 7);
  TypeParam bad{1, 0, -1};
  bad.SetName("B");
  EXPECT_THROW_MSG(static_cast<void>(bad.GeometricMean(0, 0)), EZELVectorError,
                   "Component \"B\": negative argument passed to GeometricMean");
  EXPECT_THROW_MSG(static_cast<void>(bad.HarmonicMean(1, 2)), EZELVectorError,
                   "Component \"B\": negative or zero argument passed to HarmonicMean");
}

TYPED_TEST(VectorStatistics, MinMaxGivesPositionsInTheVector) {
  typename TypeParam::value_type low = 0;
  typename TypeParam::value_type high = 0;
  int lowAt = 0;
  int highAt = 0;
  TypeParam v{5, 1, 9, 1, 9, 5};
  v.MinMax(4, 99, low, high, lowAt, highAt);
  EXPECT_TRUE(low == 1 && high == 9 && lowAt == 4 && highAt == 5);
  v.MinMax(6, 6, low, high);
  EXPECT_TRUE(low == 5 && high == 5);
  TypeParam least{std::numeric_limits<typename TypeParam::value_type>::lowest()};
  least.MinMax(0, 0, low, high, lowAt, highAt);
  EXPECT_EQ(highAt, 0) << "no element beats the value at which the search starts";
}

TYPED_TEST(VectorStatistics, ModeAndDichotomy) {
  EXPECT_EQ((TypeParam{3, 1, 3, 2, 2}.Mode(0, 0)), 2);
  EXPECT_EQ((TypeParam{3, 1, 3, 2, 2}.Mode(1, 4)), 3);
  using T = typename TypeParam::value_type;
  struct Case {
    std::vector<T> values;
    bool dichotomous;
    T first, second;
  };
  for (const auto& [values, dichotomous, first, second] :
       std::vector<Case>{{{5}, false, 0, 0},
                         {{5, 5, 5}, true, 5, 5},
                         {{5, 5, 3}, true, 5, 3},
                         {{5, 3, 5, 3}, true, 5, 3},
                         {{5, 3, 5, 4}, false, 5, 3}}) {
    T a = 7;
    T b = 7;
    EXPECT_EQ(TypeParam(values).IsDichotomous(a, b), dichotomous);
    EXPECT_TRUE(a == first && b == second) << a << ' ' << b;
  }
}

TYPED_TEST(VectorStatistics, PercentilesAndQuartilesFollowTheirOwnRules) {
  TypeParam v{4, 1, 3, 2};
  EXPECT_EQ(v.Percentile(50, 0, 0), 2.5);
  EXPECT_EQ(v.Percentile(50, 2, 2), 1);
  double q1 = 0;
  double q2 = 0;
  double q3 = 0;
  EXPECT_TRUE(v.Quartiles(0, 0, q1, q2, q3));
  EXPECT_TRUE(q1 == 1.25 && q2 == 2.5 && q3 == 3.75);
  TypeParam{9, 1, 2, 3}.Quartiles(2, 4, q1, q2, q3);
  EXPECT_TRUE(q1 == 1 && q2 == 2 && q3 == 3);
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
  TypeParam mixed{1, 3, 2};
  TypeParam shorter{1, 2};
  a.SetName("a");
  EXPECT_EQ(a.DotProduct(&b), 32);
  EXPECT_EQ(a.DotProduct(nullptr), 0);
  EXPECT_THROW_MSG(static_cast<void>(a.DotProduct(&shorter)), EZELVectorError,
                   "Component \"a\": vectors have different dimensions");
  EXPECT_DOUBLE_EQ(a.EuclideanDistance(&b), std::sqrt(27));
  EXPECT_EQ(a.EuclideanDistance(nullptr), 0);
  EXPECT_THROW_MSG(static_cast<void>(a.EuclideanDistance(&shorter)), EZELVectorError,
                   "EuclideanDistance: dimensions of vectors do not match");
  EXPECT_DOUBLE_EQ(mixed.PearsonCorrCoeff(&a), 0.5);
  EXPECT_EQ(a.PearsonCorrCoeff(&shorter), 0);
  EXPECT_EQ(a.PearsonCorrCoeff(nullptr), 0);
}

TEST(VectorStatisticsDouble, ShiftedProductsDifferInSignAndOverlap) {
  TVector a{1, 2, 3};
  TVector b{4, 5, 6};
  EXPECT_EQ(a.Correlate(&b, 1), 2 * 4 + 3 * 5);
  EXPECT_EQ(a.Correlate(&b, 2), 0) << "an overlap of one element";
  EXPECT_EQ(a.Correlate(&b, INT_MIN), 0);
  TIntVector c{1, 2, 3};
  TIntVector d{4, 5, 6};
  EXPECT_EQ(c.Correlate(&d, 1), 1 * 5 + 2 * 6);
  EXPECT_EQ(c.Correlate(&d, -2), 3 * 4);
  EXPECT_EQ(c.Correlate(&d, INT_MIN), 0);
}

TEST(VectorStatisticsDouble, HistogramBins) {
  TVector v{0.5, 1.5, 2.5, 9, -0.1, std::nan("")};
  TIntVector histo;
  int under = -1;
  int over = -1;
  int most = -1;
  const auto bins = [&](int low, int high, double last) {
    EXPECT_TRUE(v.Histogram(low, high, 0, last, 1, &histo, under, over, most)) << last;
    return std::vector<int>(histo);
  };
  EXPECT_EQ(bins(1, 4, 2), (std::vector<int>{1, 1, 1}));
  EXPECT_TRUE(under == 0 && over == 1 && most == 1);
  EXPECT_EQ(bins(1, 8, 2), (std::vector<int>{3, 1, 1})) << "positions 7 and 8 count as 0";
  EXPECT_TRUE(under == 1 && over == 1 && most == 3);
  EXPECT_EQ(bins(4, 1, 2), (std::vector<int>{0, 0, 0})) << "no position";
  EXPECT_FALSE(v.Histogram(1, 4, 0, 500, 1, &histo, under, over, most)) << "501 bins";
  EXPECT_FALSE(v.Histogram(1, 4, 0, 2, 0, &histo, under, over, most));
  EXPECT_FALSE(v.Histogram(1, 4, 0, 2, 1, nullptr, under, over, most));
  EXPECT_EQ(histo.NrOfElem(), 3);
  EXPECT_EQ(bins(1, 4, 499).size(), 500U);

  int events = 0;
  histo.OnChange = [&](TObject*) { ++events; };
  bins(1, 4, 2);
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

TEST(VectorStatisticsDouble, IntegrationByEachMethod) {
  TVector v{0, 1, 0, 1, 5};
  EXPECT_EQ(v.Integrate(1, 3, imSimple), 2.0 / 3);
  EXPECT_EQ(v.Integrate(2.5, 1.5, imTrapezoidal), 0.75);
  EXPECT_DOUBLE_EQ(v.Integrate(1, 3, imSimpson), 4.0 / 3);
  EXPECT_EQ(v.Integrate(1, 3, static_cast<TIntegMethod>(7)), 0);
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
