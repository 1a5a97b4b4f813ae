#include "zel/statistics/chisquaredistribution.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "zel/base/types.h"
#include "zel/kernels/incomplete_gamma.h"
#include "zel/kernels/normal_tail.h"
#include "zel/kernels/tail_quantile.h"

namespace zel {

namespace {

kernels::GammaTails tails(double chi2, int df) {
  return kernels::incompleteGamma(Extended(df) / 2, Extended{chi2} / 2);
}

/// Where the iteration for the gamma distribution begins: Wilson and Hilferty, or the leading term
/// of the power series far down.
Extended firstGuess(Extended a, bool lower, Extended tail) {
  const Extended z = kernels::normalTail(tail);
  const Extended root = 1 - 1 / (9 * a) + (lower ? -z : z) / (3 * std::sqrt(a));
  const Extended cube = a * root * root * root;
  if (root > 0.3L || !lower) return std::max(cube, 1e-3L);
  return std::exp((std::log(tail) + std::lgamma(a + 1)) / a);
}

}  // namespace

double chi2DistriIntegral(double chi2, int df) {
  return df < 1 ? 0 : static_cast<double>(tails(chi2, df).lower);
}

double chi2DistriComplement(double chi2, int df) {
  return df < 1 ? 1 : static_cast<double>(tails(chi2, df).upper);
}

double Chi2DistriDensity(double x, int df) {
  if (df < 1 || x < 0 || std::isinf(x)) return 0;
  if (x == 0) return df == 1 ? std::numeric_limits<double>::infinity() : df == 2 ? 0.5 : 0;
  return static_cast<double>(kernels::gammaPower(Extended(df) / 2, Extended{x} / 2) / x);
}

double chi2DistriQuantile(double p, int df) {
  if (df < 1 || !(p > 0 && p < 1)) return 0;
  const Extended a = Extended(df) / 2;
  const bool lower = p < 0.5;
  const Extended tail = lower ? Extended{p} : 1 - Extended{p};
  const Extended x =
      kernels::tailQuantile(lower, tail, firstGuess(a, lower, tail), [&](Extended at) {
        const auto [below, above] = kernels::incompleteGamma(a, at);
        const Extended slope = kernels::gammaPower(a, at);
        return kernels::TailAt{lower ? below : above, lower ? slope : -slope, a - at};
      });
  return static_cast<double>(2 * x);
}

}  // namespace zel
