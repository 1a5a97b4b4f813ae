#include "zel/statistics/criticalvalues.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>

#include "zel/analysis/TCurveFit.h"
#include "zel/base/rounding.h"
#include "zel/kernels/horner.h"
#include "zel/statistics/normaldistribution.h"
#include "zel/statistics/tdistribution.h"

namespace zel {

namespace {

constexpr int kWilcoxonFirst = 8;
constexpr int kDixonFirst = 3;
constexpr int kTabulated = 100;
constexpr std::array kWilcoxonLevels = {0.1, 0.05, 0.02, 0.01, 0.001};
constexpr int kWilcoxon[kTabulated - kWilcoxonFirst + 1][kWilcoxonLevels.size()] = {
#include "zel/statistics/wilcoxon.inc"
};
constexpr int kDixon[kTabulated - kDixonFirst + 1][9] = {
#include "zel/statistics/deandixon.inc"
};

constexpr int kWatsonFirst = 6;
constexpr int kMostRegressors = 20;
struct Bounds {
  int low, high;
};
constexpr Bounds kWatson[kTabulated - kWatsonFirst + 1][kMostRegressors] = {
#include "zel/statistics/durbinwatson.inc"
};
struct Fit {
  double to200[7], to500[7], beyond[2];
};
constexpr Fit kWatsonFits[kMostRegressors][2] = {
#include "zel/statistics/durbinwatsonfits.inc"
};

double watsonBeyondTable(int n, const Fit& fit) {
  const double base = 2 + std::sqrt(4.0 / n) * nDistriQuantile(0.05);
  if (n <= 200) return base + kernels::horner(fit.to200, n - 150);
  if (n <= 500) return base + kernels::horner(fit.to500, n - 350);
  return base + 1 / (fit.beyond[0] * n + fit.beyond[1]);
}

}  // namespace

int WilcoxonSRQuantile(int n, double alpha, bool TwoSided) {
  if (n < kWilcoxonFirst || n > 1000000) return -1;
  if (!(alpha >= 0.000499999 && alpha <= 0.20000001)) return -1;
  if (n > kTabulated) {
    const double size = n;
    const double z = nDistriQuantile(TwoSided ? alpha / 2 : alpha);
    const double spread = std::sqrt(size * (size + 1) * (2 * size + 1) / 24);
    return RoundToInt<int>(size * (size + 1) / 4 + z * spread);
  }
  // Levels that a sample of this size can reach.
  const std::size_t levels = n == 8 ? 3 : n <= 10 ? 4 : kWilcoxonLevels.size();
  TCurveFit fit;
  for (std::size_t i = 0; i < levels; ++i)
    fit.EnterStatValue(std::log(kWilcoxonLevels[i]), kWilcoxon[n - kWilcoxonFirst][i]);
  double k0, k1, k2, quality;
  fit.CalcParabolFit(k0, k1, k2, quality);
  const double x = std::log(TwoSided ? alpha : 2 * alpha);
  return std::max(0, RoundToInt<int>(k0 + x * (k1 + x * k2)));
}

double DeanDixonCriticalValues(int n, TSignifLevelEx alpha) {
  if (n < kDixonFirst || n > kTabulated || alpha >= std::size(kDixon[0])) return -1;
  return kDixon[n - kDixonFirst][alpha] / 1000.0;
}

double GrubbsCriticalValues(int n, double alpha, bool TwoSided) {
  if (!(alpha > 0 && alpha < 1) || n <= 2) return -1;
  const double size = n;
  // The lower quantile has the same square, and a small level keeps its digits.
  const double tail = alpha / (TwoSided ? 2 : 1) / size;
  const double t = tDistriQuantile(std::max(tail, std::numeric_limits<double>::min()), n - 2);
  return (size - 1) / std::sqrt(size) * std::sqrt(1 / ((size - 2) / t / t + 1));
}

bool DurbinWatsonCrit5pct(int n, int k, double& dL, double& dU) {
  if (k < 1 || k > kMostRegressors || n < 5 || n > 2000 || n - k < 5) return false;
  if (n <= kTabulated) {
    const auto [low, high] = kWatson[n - kWatsonFirst][k - 1];
    dL = low / 1000.0;
    dU = high / 1000.0;
    return true;
  }
  const auto& [low, high] = kWatsonFits[k - 1];
  dL = watsonBeyondTable(n, low);
  dU = watsonBeyondTable(n, high);
  return true;
}

}  // namespace zel
