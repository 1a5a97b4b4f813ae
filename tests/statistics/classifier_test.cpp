#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <optional>
#include <random>

#include "tests/support/containers.h"
#include "tests/support/same_bits.h"
#include "zel/kernels/confusion.h"
#include "zel/kernels/dichotomy.h"
#include "zel/statistics/Zel_statis.h"

namespace zel {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

void fill(TCFEvaluator& e, const std::vector<double>& truth, const std::vector<double>& estimates) {
  e.SetNData(static_cast<int>(truth.size()));
  for (int i = 1; i <= e.NData(); ++i) {
    e.SetTrueData(i, truth[static_cast<std::size_t>(i) - 1]);
    e.SetEstimData(i, estimates[static_cast<std::size_t>(i) - 1]);
  }
}

std::vector<double> scores(const TCFEvaluator& e) {
  return {e.TpRate(),    e.TnRate(),      e.FpRate(),       e.FnRate(),
          e.Precision(), e.NegPredVal(),  e.ThreatScore(),  e.F1Score(),
          e.Accuracy(),  e.UncertCoeff(), e.Informedness(), e.MatthewsCorr()};
}

TEST(Dichotomy, TwoValuesAndNothingElse) {
  const struct {
    std::vector<double> values;
    double low, high;
  } cases[] = {{{5, 2, 5, 2}, 2, 5}, {{1, 1, 2, 2, 1, 3}, 0, 0}, {{4, 4}, 0, 0},
               {{}, 0, 0},           {{NAN, 1}, 0, 0},           {{1, NAN}, 0, 0},
               {{1, 2, NAN}, 0, 0},  {{0, -0.0, 3}, 0, 3},       {{kInfinity, -1}, -1, kInfinity}};
  for (const auto& [values, low, high] : cases) {
    double v1 = 9, v2 = 9;
    EXPECT_EQ(kernels::dichotomous(std::span<const double>(values), v1, v2), low != high);
    EXPECT_EQ(v1, low);
    EXPECT_EQ(v2, high);
  }
}

/// Counts, scores and codes; the scores of a 2 x 2 table from exact fractions, the last from
/// mpmath.
TEST(Classifier, ConfusionMatrixAndScores) {
  TCFEvaluator e;
  EXPECT_EQ(e.TpRate(), -2) << "one object has no two classes";
  EXPECT_EQ(e.CalcConfusionMatrix(0), -2);
  fill(e, {-3, 8, 8, -3, 8, 8, -3}, {1, 2, 3, 3, 4, 5, 6});
  int tp = 7, fp = 7, tn = 7, fn = 7;
  double threshold = 7;
  EXPECT_EQ(e.GetConfMatValues(tp, fp, tn, fn, threshold), -1);
  EXPECT_EQ(tp, 7);
  EXPECT_EQ(scores(e), (std::vector<double>{-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -2, -3}));
  ASSERT_EQ(e.CalcConfusionMatrix(3), 0);  // equal to it is positive
  ASSERT_EQ(e.GetConfMatValues(tp, fp, tn, fn, threshold), 0);
  EXPECT_EQ((std::vector<int>{tp, fp, tn, fn}), (std::vector<int>{3, 2, 1, 1}));
  EXPECT_EQ(threshold, 3);
  const double uncertainty = 0.006468164160684856, matthews = 1 / std::sqrt(120.);
  const double expected[] = {3 / 4., 1 / 3., 2 / 3., 1 / 4.,      3 / 5.,  1 / 2.,
                             1 / 2., 6 / 9., 4 / 7., uncertainty, 1 / 12., matthews};
  const std::vector<double> found = scores(e);
  for (std::size_t i = 0; i < found.size(); ++i) EXPECT_NEAR(found[i], expected[i], 2e-16) << i;
  e.CalcConfusionMatrix(100);
  EXPECT_EQ(e.Precision(), 0);
  EXPECT_EQ(e.MatthewsCorr(), 0);

  e.SetTrueData(1, 5);
  EXPECT_EQ(scores(e), (std::vector<double>{-2, -2, -2, -2, -2, -2, -2, -2, -2, -2, -3, -2}));
  EXPECT_EQ(e.GetConfMatValues(tp, fp, tn, fn, threshold), -2);
  EXPECT_EQ(e.DichoV2(), 0);
  e.SetNData(8);
  EXPECT_EQ(e.GetConfMatValues(tp, fp, tn, fn, threshold), -1) << "forgotten";
}

TEST(Classifier, CountsBeyond32Bits) {
  constexpr std::int64_t kMany = std::int64_t{1} << 30;
  EXPECT_EQ((kernels::Confusion{kMany, 0, kMany, 0}).matthews(), 1);
  EXPECT_EQ((kernels::Confusion{kMany / 4 * 3, kMany / 4, kMany / 4 * 3, kMany / 4}).matthews(),
            0.5);
}

TEST(Classifier, DataComeAndGo) {
  TCFEvaluator e;
  e.SetNData(0);
  EXPECT_EQ(e.NData(), 1);
  const TMatrix m{{1, 0.5, 7}, {2, 0.25, 7}, {1, 0.75, 7}};
  EXPECT_EQ(e.CopyTrueFromMatrix(4, &m), -1);
  EXPECT_EQ(e.CopyEstFromMatrix(0, &m), -1);
  EXPECT_EQ(e.CopyEstFromMatrix(1, nullptr), -1);
  EXPECT_EQ(e.CopyTrueFromMatrix(1, &m), 0);
  EXPECT_EQ(e.NData(), -1);
  EXPECT_EQ(e.CalcConfusionMatrix(0), -1);
  EXPECT_EQ(e.SortEstimated(), -1);
  EXPECT_EQ(e.CopyEstFromMatrix(2, &m), 0);
  EXPECT_EQ(e.NData(), 3);
  double v1 = 0, v2 = 0;
  EXPECT_TRUE(e.GetActualDichoValues(v1, v2));
  EXPECT_EQ(v1, 1);
  EXPECT_EQ(v2, 2);
  EXPECT_EQ(e.SortEstimated(), 0);
  EXPECT_EQ(e.GetEstimData(1), 0.75);
  EXPECT_EQ(e.GetTrueData(3), 2) << "moves with its estimate";
  EXPECT_EQ(e.TpRate(), -1) << "sorted, but nothing counted";
  e.SetEstimData(9, 1);
  EXPECT_EQ(e.GetEstimData(0), 0);
  EXPECT_EQ(e.CopyTrueFromMatrix(3, &m), -2);
  std::optional<TCFEvaluator> fresh;
  test::expectFailuresHarmless<EZELStatisError>(
      [&] { fresh->SetNData(1000); }, "Component \"\": not enough memory on heap",
      [&] { EXPECT_EQ(fresh->NData(), 1); }, [&] { fresh.emplace(); });
}

/// The described computation, step by step, on what the evaluator has sorted.
struct SlowOptimum {
  std::vector<double> roc;  // false and true positive rate, threshold of each point
  int best = 0;
  double area = 0;
  double thresholds[3] = {};
};

SlowOptimum slowOptimum(TCFEvaluator& e) {
  SlowOptimum o;
  e.SortEstimated();
  const int n = e.NData();
  double P = 0, low = kInfinity, high = -kInfinity;
  for (int i = 1; i <= n; ++i) {
    P += e.TrueData(i) == e.DichoV2();
    if (!std::isfinite(e.EstimData(i))) continue;
    low = std::min(low, e.EstimData(i));
    high = std::max(high, e.EstimData(i));
  }
  const double N = n - P;
  double p = 0, q = 0, largest = 0;
  for (int i = 1; i <= n; ++i) {
    const double p0 = p, q0 = q;
    (e.TrueData(i) == e.DichoV2() ? p : q) += 1;
    if (i == 1 || e.EstimData(i) != e.EstimData(i - 1)) {
      o.roc.insert(o.roc.end(), {q / N, p / P, e.EstimData(i)});
    }
    if (std::abs(q / N - p / P) > largest) {
      largest = std::abs(q / N - p / P);
      o.best = static_cast<int>(o.roc.size()) / 3 - 1;
    }
    o.area += (q - q0) * (p + p0) / 2 / (N * P);
  }
  o.roc.insert(o.roc.end(), {q / N, p / P, e.EstimData(n)});
  const double s = 0.01 * (high - low);
  std::vector<double> ties[3];
  double best[3] = {};
  for (double t = low - 5 * s;
       t<high + 5 * s; t = t + s> t ? t + s : std::nextafter(t, kInfinity)) {
    e.CalcConfusionMatrix(t);
    const double score[] = {e.MatthewsCorr(), e.Accuracy(), e.Informedness()};
    for (int k = 0; k < 3; ++k) {
      if (score[k] != best[k]) ties[k].clear();
      if (score[k] < best[k]) continue;
      best[k] = score[k];
      ties[k].push_back(t);
      long double sum = 0;
      for (const double v : ties[k]) sum += v;
      o.thresholds[k] = static_cast<double>(sum / static_cast<long double>(ties[k].size()));
    }
  }
  return o;
}

/// The quick walk over sorted estimates gives what the repeated counting gives, also with ties, not
/// a number and infinities, and next to the end of the exponents.
TEST(Classifier, OptimumEqualsTheRepeatedCounts) {
  std::mt19937_64 random(7);
  std::normal_distribution<double> normal;
  const std::function<double(double)> shapes[] = {
      [&](double c) { return c + normal(random); },
      [&](double c) { return std::round(c + 2 * normal(random)); },
      [&](double c) { return -c; },
      [&](double c) { return random() % 7 == 0 ? NAN : c + normal(random); },
      [&](double c) {
        return random() % 7 == 0 ? kInfinity : random() % 7 == 0 ? -kInfinity : c + normal(random);
      },
      [&](double c) { return (c + normal(random)) * 1e-310; },
      [&](double c) { return 1e15 + 0.125 * (c + static_cast<double>(random() % 3)); }};
  for (std::size_t shape = 0; shape < std::size(shapes); ++shape) {
    for (const std::size_t n : {2u, 3u, 10u, 500u}) {
      SCOPED_TRACE(testing::Message() << "shape " << shape << ", n " << n);
      std::vector<double> truth(n), estimates(n);
      for (std::size_t i = 0; i < n; ++i) {
        truth[i] = i < 2 ? static_cast<double>(i) : static_cast<double>(random() % 2);
        estimates[i] = shapes[shape](truth[i]);
      }
      TCFEvaluator quick, slow;
      fill(quick, truth, estimates);
      fill(slow, truth, estimates);
      // Which of several objects with equal estimates comes first is part of the results.
      TMatrix sorted;
      sorted.Resize(2, quick.NData());
      for (int i = 1; i <= quick.NData(); ++i) {
        sorted.SetVal(1, i, quick.EstimData(i));
        sorted.SetVal(2, i, quick.TrueData(i));
      }
      sorted.SortRows(1, false, 0, 0, 0, 0);
      TDouble2DArray roc;
      int best = -1;
      double area = -1, thresholds[3] = {-1, -1, -1};
      ASSERT_EQ(
          quick.OptimizeThresholds(roc, best, area, thresholds[0], thresholds[1], thresholds[2]),
          0);
      const SlowOptimum o = slowOptimum(slow);
      for (int i = 1; i <= quick.NData(); ++i) {
        EXPECT_TRUE(test::sameValue(quick.EstimData(i), sorted(1, i))) << i;
        EXPECT_EQ(quick.TrueData(i), sorted(2, i)) << i;
      }
      EXPECT_EQ(test::firstDifference({roc.data(), roc.size()}, o.roc), "");
      EXPECT_EQ(best, o.best);
      EXPECT_NEAR(area, o.area, 1e-13);
      for (int k = 0; k < 3; ++k) EXPECT_EQ(thresholds[k], o.thresholds[k]) << k;
      EXPECT_EQ(quick.Threshold(), slow.Threshold());
      EXPECT_EQ(scores(quick), scores(slow));
    }
  }
}

TEST(Classifier, OptimumAtItsLimits) {
  TCFEvaluator e;
  TDouble2DArray roc{{4}};
  int best = 4;
  double area = 4, mcc = 4, accuracy = 4, informedness = 4;
  const auto optimize = [&](const std::vector<double>& truth,
                            const std::vector<double>& estimates) {
    fill(e, truth, estimates);
    return e.OptimizeThresholds(roc, best, area, mcc, accuracy, informedness);
  };
  EXPECT_EQ(optimize({1, 2, 3}, {1, 2, 3}), -1);
  const TMatrix two{{0}, {1}};
  e.CopyTrueFromMatrix(1, &two);
  EXPECT_EQ(e.OptimizeThresholds(roc, best, area, mcc, accuracy, informedness), -3);
  EXPECT_EQ(roc, (TDouble2DArray{{4}}));
  EXPECT_EQ(area, 4);
  EXPECT_EQ(optimize({1, 1, 0, 0}, {1, 2, 3, 4}), 0);
  EXPECT_EQ(area, 0) << "0 for the worst order, so 1 for the best";
  for (const double same : {2.0, kInfinity}) {
    EXPECT_EQ(optimize({0, 1, 1}, {same, same, same}), 0) << "nothing to scan";
    EXPECT_EQ(roc.Length(), 2u);
    EXPECT_EQ(accuracy, 0);
  }
  EXPECT_EQ(optimize({0, 1}, {-1.7e308, 1.7e308}), 0) << "a range beyond the doubles";
  EXPECT_EQ(mcc, accuracy);
  EXPECT_NEAR(mcc, 0, 1e307);
}

}  // namespace
}  // namespace zel
