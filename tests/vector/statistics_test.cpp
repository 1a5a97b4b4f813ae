#include "tests/support/testing.h"
#include "zel/vector/Zel_vector.h"

namespace zel::test {
namespace {

template <class V>
class VectorStatistics : public ::testing::Test {};
using Both = ::testing::Types<TVector, TIntVector>;
TYPED_TEST_SUITE(VectorStatistics, Both);

// The rules themselves are tested with the kernels; here each call meets its rule, range and
// errors.
TYPED_TEST(VectorStatistics, MomentsOfARange) {
  TypeParam v{99, 1, 2, 3, 10, -7};
  EXPECT_EQ(v.Sum(5, 2), 16);
  double a[6];
  v.MeanVar(5, 2, a[0], a[1]);
  v.SkewKurt(2, 5, a[2], a[3]);
  v.SkewKurtSample(5, 2, a[4], a[5]);
  const double expected[] = {4,    50.0 / 3, 0.66136223055145808651, -1.7454, 1.7636326148038882307,
                             3.228};
  for (int k = 0; k < 6; ++k) EXPECT_DOUBLE_EQ(a[k], expected[k]) << k;
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
  using T = typename TypeParam::value_type;
  T low = 0, high = 0;
  int lowAt = 0, highAt = 0;
  TypeParam v{5, 1, 9, 1, 9, 5};
  v.MinMax(4, 99, low, high, lowAt, highAt);
  EXPECT_TRUE(low == 1 && high == 9 && lowAt == 4 && highAt == 5);
  v.MinMax(6, 6, low, high);
  EXPECT_TRUE(low == 5 && high == 5);
  TypeParam{std::numeric_limits<T>::lowest()}.MinMax(0, 0, low, high, lowAt, highAt);
  EXPECT_EQ(highAt, 0) << "no element beats the value at which the search starts";
}

TYPED_TEST(VectorStatistics, ModeAndDichotomy) {
  EXPECT_EQ((TypeParam{3, 1, 3, 2, 2}.Mode(0, 0)), 2);
  EXPECT_EQ((TypeParam{3, 1, 3, 2, 2}.Mode(1, 4)), 3);
  using T = typename TypeParam::value_type;
  const std::tuple<std::vector<T>, bool, T, T> cases[] = {{{5}, false, 0, 0},
                                                          {{5, 5, 5}, true, 5, 5},
                                                          {{5, 5, 3}, true, 5, 3},
                                                          {{5, 3, 5, 3}, true, 5, 3},
                                                          {{5, 3, 5, 4}, false, 5, 3}};
  for (const auto& [values, dichotomous, first, second] : cases) {
    T a = 7, b = 7;
    EXPECT_EQ(TypeParam(values).IsDichotomous(a, b), dichotomous);
    EXPECT_TRUE(a == first && b == second) << a << ' ' << b;
  }
}

/// By selection, in one step each; by sorts while somebody listens, which report their passes.
TYPED_TEST(VectorStatistics, PercentilesAndQuartilesFollowTheirOwnRules) {
  static int steps;
  steps = 0;
  TypeParam v{9, 4, 1, 3, 2};
  for (const TMathFeedBackProc listener : {TMathFeedBackProc{}, +[](double) { ++steps; }}) {
    MathFeedBackProc = listener;
    ProcStat = 0;
    double q1 = 0, q2 = 0, q3 = 0;
    EXPECT_EQ(v.Percentile(50, 2, 5), 2.5);
    EXPECT_TRUE(v.Quartiles(2, 5, q1, q2, q3));
    EXPECT_TRUE(q1 == 1.25 && q2 == 2.5 && q3 == 3.75);
    EXPECT_EQ(ProcStat, listener ? steps : 2);
    EXPECT_EQ(v.GetVal(1), 9) << "statistics leave the vector alone";
    EXPECT_EQ(v.GetVal(2), 4);
  }
  MathFeedBackProc = nullptr;
  EXPECT_GT(steps, 4);
}

TYPED_TEST(VectorStatistics, ProductsAndCorrelation) {
  TypeParam a{1, 2, 3}, b{4, 5, 6}, mixed{1, 3, 2}, shorter{1, 2};
  a.SetName("a");
  EXPECT_EQ(a.DotProduct(&b), 32);
  EXPECT_DOUBLE_EQ(a.EuclideanDistance(&b), std::sqrt(27));
  EXPECT_DOUBLE_EQ(mixed.PearsonCorrCoeff(&a), 0.5);
  EXPECT_EQ(a.DotProduct(nullptr), 0);
  EXPECT_EQ(a.EuclideanDistance(nullptr), 0);
  EXPECT_EQ(a.PearsonCorrCoeff(nullptr), 0);
  EXPECT_EQ(a.PearsonCorrCoeff(&shorter), 0);
  EXPECT_THROW_MSG(static_cast<void>(a.DotProduct(&shorter)), EZELVectorError,
                   "Component \"a\": vectors have different dimensions");
  EXPECT_THROW_MSG(static_cast<void>(a.EuclideanDistance(&shorter)), EZELVectorError,
                   "EuclideanDistance: dimensions of vectors do not match");
  // The shifts of the two types differ in sign, and doubles need an overlap of two.
  constexpr bool isReal = std::is_same_v<TypeParam, TVector>;
  EXPECT_EQ(a.Correlate(&b, isReal ? 1 : -1), 2 * 4 + 3 * 5);
  EXPECT_EQ(a.Correlate(&b, isReal ? 2 : -2), isReal ? 0 : 3 * 4);
  EXPECT_EQ(a.Correlate(&b, INT_MIN), 0);
}

/// Positions outside the vector count as 0. What is refused leaves the histogram.
TYPED_TEST(VectorStatistics, HistogramBins) {
  using T = typename TypeParam::value_type;
  constexpr bool isReal = std::is_same_v<T, double>;
  TypeParam v{0, 1, 2, 9, -1};
  v.SetName("H");
  TIntVector histo;
  int counts[3];
  const auto histogram = [&](int low, int high, T last, T width, TIntVector* into) {
    return v.Histogram(low, high, 0, last, width, into, counts[0], counts[1], counts[2]);
  };
  for (const auto& [low, high, bins, expected] :
       {std::tuple(1, 4, std::vector{1, 1, 1}, std::vector{0, 1, 1}),
        {1, 8, {4, 1, 1}, {1, 1, 4}},
        {4, 1, {0, 0, 0}, {0, 0, 0}}}) {
    EXPECT_TRUE(histogram(low, high, 2, 1, &histo));
    EXPECT_EQ(contents(histo), bins);
    EXPECT_EQ(std::vector<int>(counts, counts + 3), expected) << "underflow, overflow, most";
  }
  EXPECT_FALSE(histogram(1, 4, 2, 1, nullptr));
  if constexpr (isReal) {
    EXPECT_FALSE(histogram(1, 4, 500, 1, &histo)) << "501 bins";
    EXPECT_FALSE(histogram(1, 4, 2, 0, &histo));
  } else {
    EXPECT_THROW_MSG(histogram(1, 4, 500, 1, &histo), EZELVectorError,
                     "Component \"H.Histogram\": invalid number of bins");
  }
  EXPECT_EQ(histo.NrOfElem(), 3);
  EXPECT_TRUE(histogram(1, 4, 499, 1, &histo));
  EXPECT_EQ(histo.NrOfElem(), 500);
  Events events(histo);
  histogram(1, 4, 2, 1, &histo);
  EXPECT_EQ(events.count, 1 + 1 + 3) << "resize, clear, a count for each value in a bin";
}

TEST(VectorStatisticsInt, HistogramOfAllIntegersAndIntoItself) {
  TIntVector v{-1, 0, 4, 5, 9, 10}, histo;
  int under = 0, over = 0, most = 0;
  EXPECT_TRUE(v.Histogram(1, 6, INT_MIN, INT_MAX, INT_MAX, &histo, under, over, most));
  EXPECT_EQ(histo.NrOfElem(), 3);
  EXPECT_TRUE(v.Histogram(1, 6, 0, 5, 0, &histo, under, over, most)) << "a width of at least 1";
  EXPECT_EQ(histo.NrOfElem(), 6);
  EXPECT_TRUE(v.Histogram(INT_MIN, INT_MAX, 1, 1, 1, &histo, under, over, most));
  EXPECT_TRUE(under == INT_MAX && over == 4 && most == 0);
  EXPECT_TRUE(v.Histogram(1, 6, 0, 5, 5, &v, under, over, most)) << "into itself";
  EXPECT_EQ(contents(v), (std::vector<int>{2, 2}));
}

TEST(VectorStatisticsDouble, IntegrationByEachMethod) {
  TVector v{0, 1, 0, 1, 5};
  EXPECT_EQ(v.Integrate(1, 3, imSimple), 2.0 / 3);
  EXPECT_EQ(v.Integrate(2.5, 1.5, imTrapezoidal), 0.75);
  EXPECT_DOUBLE_EQ(v.Integrate(1, 3, imSimpson), 4.0 / 3);
  EXPECT_EQ(v.Integrate(1, 3, static_cast<TIntegMethod>(7)), 0);
}

TEST(VectorStatisticsDouble, TransformationsAreSilent) {
  TVector v{1, 2, 3, 4, 10}, constant{4, 4, 4}, pair{4, 4};
  for (TVector* x : {&v, &constant, &pair}) x->OnChange = [](TObject*) { FAIL(); };
  EXPECT_EQ(v.MeanCenter(), 4);
  EXPECT_EQ(v.GetVal(5), 6);
  double centre = 0, scale = 0;
  v.QNormalize(75, centre, scale);
  EXPECT_TRUE(centre == -1 && scale == 1 && v(5) == 7);
  v.QNormalize(50, centre, scale);
  EXPECT_TRUE(scale == 0 && v(5) == 7);
  v.Standardize(centre, scale);
  EXPECT_EQ(centre, 1);
  EXPECT_DOUBLE_EQ(scale, std::sqrt(12.5));
  EXPECT_DOUBLE_EQ(v(5), 6 / std::sqrt(12.5));
  constant.Standardize(centre, scale);
  EXPECT_TRUE(scale == 0 && constant(1) == 4);
  pair.Standardize(centre, scale);
  EXPECT_TRUE(scale == 1 && pair(1) == 0) << "variance of two values";
}

}  // namespace
}  // namespace zel::test
