#include "zel/statistics/samplecomparisons.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "zel/base/array.h"
#include "zel/base/rounding.h"
#include "zel/kernels/rank_correlation.h"
#include "zel/kernels/sample.h"
#include "zel/kernels/student_t.h"
#include "zel/kernels/sums.h"
#include "zel/statistics/contingencytests.h"
#include "zel/statistics/discretedistributions.h"
#include "zel/statistics/memory_impl.h"
#include "zel/statistics/normaldistribution.h"

namespace zel {

namespace {

using Values = std::span<const double>;

Values elementsOf(const TVector* vector) { return vector ? vector->Elements() : Values(); }

/// Difference of the means, its squared standard error, degrees of freedom.
struct MeanDifference {
  double difference = 0;
  double variance = 0;
  double df = 0;
};

MeanDifference ofPairs(Values a, Values b) {
  std::vector<double> differences(a.size());
  std::ranges::transform(a, b, differences.begin(), std::minus<>());
  const auto n = static_cast<double>(a.size());
  return {kernels::rounded(kernels::accurateMean(differences)),
          kernels::sampleVariance(differences) / n, n - 1};
}

MeanDifference ofSamples(Values a, Values b, bool haveSameVariance) {
  const auto nA = static_cast<double>(a.size());
  const auto nB = static_cast<double>(b.size());
  const double varA = kernels::sampleVariance(a);
  const double varB = kernels::sampleVariance(b);
  MeanDifference result;
  result.difference = kernels::rounded(kernels::accurateMean(a) - kernels::accurateMean(b));
  if (haveSameVariance) {
    result.df = nA + nB - 2;
    result.variance = ((nA - 1) * varA + (nB - 1) * varB) / result.df * (1 / nA + 1 / nB);
  } else {
    const double ofA = varA / nA;
    result.variance = ofA + varB / nB;
    const double share = result.variance == 0 ? 0.5 : ofA / result.variance;
    result.df = 1 / (share * share / (nA - 1) + (1 - share) * (1 - share) / (nB - 1));
  }
  return result;
}

/// Values in the smaller sample at which the exact distribution of U takes some 40 ms.
constexpr double kMostExact = 1000;

/// P(U <= u) without ties for the smaller of the two tails.
double tailOfU(double u, double pairs, std::size_t nA, std::size_t nB) {
  return UDistriIntegral(static_cast<int>(nA), static_cast<int>(nB),
                         static_cast<int>(std::min(u, pairs - u)));
}

}  // namespace

double Perform2SampleTTest(const TVector* A, const TVector* B, TtTestVersion Version, double& t,
                           double& df, double& MeanA, double& MeanB, double& VarA, double& VarB,
                           int& RoundedDF) {
  const Values a = elementsOf(A);
  const Values b = elementsOf(B);
  if (a.size() < 2 || b.size() < 2) return -1;
  if (Version == ttPaired && a.size() != b.size()) return -2;
  const MeanDifference d = detail::GuardStatis(
      [&] {
        return Version == ttPaired ? ofPairs(a, b) : ofSamples(a, b, Version == ttHomoScedastic);
      },
      [] { return "Perform2SampleTTest: not enough memory"; });
  MeanA = kernels::mean(a);
  MeanB = kernels::mean(b);
  VarA = kernels::sampleVariance(a);
  VarB = kernels::sampleVariance(b);
  df = d.df;
  RoundedDF = RoundToInt<int>(d.df);
  if (d.variance == 0) {
    t = d.difference == 0 ? 0 : std::copysign(std::numeric_limits<double>::max(), d.difference);
    return d.difference == 0 ? -3 : 0;
  }
  t = d.difference / std::sqrt(d.variance);
  return 2 * kernels::studentIntegral(-std::abs(t), df);
}

double Perform2SampleTTest(const TVector* A, const TVector* B, TtTestVersion Version) {
  double t, df, meanA, meanB, varA, varB;
  int roundedDF;
  return Perform2SampleTTest(A, B, Version, t, df, meanA, meanB, varA, varB, roundedDF);
}

double PerformMannWhitneyUTest(const TVector* A, const TVector* B, bool Flag, double& p) {
  p = -1;
  const Values a = elementsOf(A);
  const Values b = elementsOf(B);
  if (a.empty() || b.empty()) return -1;
  const auto nA = static_cast<double>(a.size());
  const auto nB = static_cast<double>(b.size());
  const double n = nA + nB;
  const double pairs = nA * nB;
  double ties = 0;
  const double u = detail::GuardStatis(
      [&] {
        std::vector<double> all(a.begin(), a.end());
        all.insert(all.end(), b.begin(), b.end());
        std::vector<double> ranks(all.size());
        ties = static_cast<double>(kernels::meanRanks(all, ranks));
        return kernels::sum(Values(ranks).first(a.size())).hi - nA * (nA + 1) / 2;
      },
      [] { return "PerformMannWhitneyUTest: not enough memory"; });
  double tail;
  if (ties == 0 && std::min(nA, nB) <= kMostExact && pairs <= std::numeric_limits<int>::max()) {
    tail = detail::GuardStatis([&] { return tailOfU(u, pairs, a.size(), b.size()); },
                               [] { return "PerformMannWhitneyUTest: not enough memory"; });
  } else {
    const double variance = pairs / 12 * (n + 1 - ties / (n * (n - 1)));
    const double distance = std::abs(u - pairs / 2) - 0.5;
    tail = variance > 0 ? nDistriIntegral(-distance / std::sqrt(variance)) : 1;
  }
  p = std::min(1.0, Flag ? 2 * tail : tail);
  return u;
}

int MedianTest(std::span<const double> A, std::span<const double> B, double& Chi2, double& pChi2,
               double& Chi2Yates, double& pYates, double& pFisher) {
  Chi2 = pChi2 = 0;
  pFisher = -1;
  if (A.empty() || B.empty()) return -1;
  return detail::GuardStatis(
      [&] {
        std::vector<double> all(A.begin(), A.end());
        all.insert(all.end(), B.begin(), B.end());
        const double median = kernels::median(all);
        const auto count = [median](Values x) {
          return static_cast<int>(
              std::ranges::count_if(x, [median](double v) { return v <= median; }));
        };
        const auto sizeA = static_cast<int>(A.size());
        const auto sizeB = static_cast<int>(B.size());
        const int lowA = count(A);
        const int lowB = count(B);
        const TInt2DArray table{{sizeA - lowA, lowA, sizeA},
                                {sizeB - lowB, lowB, sizeB},
                                {sizeA + sizeB - lowA - lowB, lowA + lowB, sizeA + sizeB}};
        int result = Chi2OfContTab(table, Chi2, pChi2);
        if (Chi2OfContTabYates(table, Chi2Yates, pYates) != 0) result = -2;
        double left, right, two;
        const TInt2DArray counts{{table(0, 0), table(0, 1)}, {table(1, 0), table(1, 1)}};
        if (FisherExactTest(counts, left, right, two) == 0) pFisher = std::min(left, right);
        return result;
      },
      [] { return "MedianTest: not enough memory"; });
}

}  // namespace zel
