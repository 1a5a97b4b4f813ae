#include <algorithm>
#include <cmath>
#include <vector>

#include "zel/analysis/TCurveFit.h"
#include "zel/analysis/memory_impl.h"
#include "zel/base/Zel_univconst.h"
#include "zel/kernels/error_function.h"
#include "zel/kernels/rank_correlation.h"
#include "zel/kernels/sums.h"

namespace zel {

namespace {
constexpr int kLeastForRanks = 3;
}

void TCurveFit::BasicRankCounts() {
  kernels::Concordance counts;
  if (FNumData >= kLeastForRanks) {
    counts = detail::GuardFit("BasicRankCounts",
                              [&] { return kernels::concordance(Values(1), Values(2)); });
  }
  FKendallConcord = counts.concordant;
  FKendallDiscord = counts.discordant;
  FKendallTies1 = counts.tiedOnlyInY;
  FKendallTies2 = counts.tiedOnlyInX;
  FKendallValid = true;
}

double TCurveFit::KendallsTau(double& p) {
  p = 0;
  if (!FKendallValid) BasicRankCounts();
  const std::int64_t untied = FKendallConcord + FKendallDiscord;
  const auto inX = static_cast<double>(untied + FKendallTies1);
  const auto inY = static_cast<double>(untied + FKendallTies2);
  // Two roots: the product of the counts is beyond the integers that a double holds.
  const double den = std::sqrt(inX) * std::sqrt(inY);
  if (den == 0) return 0;
  const auto excess = static_cast<double>(FKendallConcord - FKendallDiscord);
  const double tau = inX == inY ? excess / inX : excess / den;
  const double n = FNumData;
  const double sigma = std::sqrt((4 * n + 10) / (9 * n * (n - 1)));
  p = 1 -
      kernels::errorFunctionApproximation(std::abs(tau / sigma) / static_cast<double>(uc_sqrt2));
  return tau;
}

double TCurveFit::GetKruskalGamma() {
  if (!FKendallValid) BasicRankCounts();
  const std::int64_t untied = FKendallConcord + FKendallDiscord;
  if (untied == 0) return 0;
  return static_cast<double>(FKendallConcord - FKendallDiscord) / static_cast<double>(untied);
}

double TCurveFit::GetSpearman() const {
  if (FNumData < kLeastForRanks) return 0;
  return detail::GuardFit("GetSpearman", [&] {
    const auto count = static_cast<std::size_t>(FNumData);
    std::vector<double> ranks(2 * count);
    const auto ofX = std::span(ranks).first(count);
    const auto ofY = std::span(ranks).last(count);
    const Extended tiesX = kernels::meanRanks(Values(1), ofX);
    const Extended tiesY = kernels::meanRanks(Values(2), ofY);
    const kernels::DoubleDouble squares = kernels::sumOfSquaredDifferences(ofX, ofY);
    const Extended d = static_cast<Extended>(squares.hi) + static_cast<Extended>(squares.lo);
    const Extended n = FNumData;
    const Extended cube = n * (n * n - 1);
    if (tiesX == 0 && tiesY == 0) return static_cast<double>(1 - 6 * d / cube);
    if (tiesX == cube || tiesY == cube) return 0.0;
    const Extended numerator = cube - 6 * d - (tiesX + tiesY) / 2;
    return static_cast<double>(
        std::clamp<Extended>(numerator / std::sqrt((cube - tiesX) * (cube - tiesY)), -1, 1));
  });
}

}  // namespace zel
