#include "zel/statistics/normaldistribution.h"

#include <algorithm>
#include <cmath>

#include "zel/base/types.h"
#include "zel/kernels/classic_gamma.h"

namespace zel {

namespace {

/// Both tails by the one incomplete gamma function, so that the lower keeps its digits.
double integral(double x) {
  const auto [inside, outside] = kernels::classicIncompleteGamma(0.5L, Extended{x} * x / 2);
  return static_cast<double>((x > 0 ? 1 + inside : outside) / 2);
}

}  // namespace

double nDistriDensity(double x) { return 0.3989422804014327 * std::exp(-x * x / 2); }

double nDistriIntegral(double x) { return integral(x); }

double nDistriQuantile(double p) {
  if (!(p > 0 && p < 1)) return 0;
  constexpr double kPrecision = 1e-8;
  const double u = -2 * std::log(std::min(p, 1 - p));
  const double t = std::sqrt(u);
  const double distance = t - (2.515517 + 0.802853 * t + 0.010328 * u) /
                                  (1 + 1.432788 * t + 0.189269 * u + 0.001308 * u * t);
  const double start = p < 0.5 ? -distance : distance;
  const double reach = 0.1 * std::max(std::abs(start), 0.1);
  double low = start - reach;
  double high = start + reach;
  while (true) {
    const double middle = (low + high) / 2;
    const double reached = integral(middle);
    // The integral stops at 1e-8 too: it may step over p between two neighbouring numbers.
    if (std::abs(reached - p) / p < kPrecision || middle == low || middle == high) return middle;
    (reached > p ? high : low) = middle;
  }
}

double ConfidenceInterval(double alpha, double sigma, int n) {
  return nDistriQuantile(1 - alpha / 2) * sigma / std::sqrt(static_cast<double>(n));
}

}  // namespace zel
