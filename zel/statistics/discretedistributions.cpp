#include "zel/statistics/discretedistributions.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <string>
#include <vector>

#include "zel/base/rounding.h"
#include "zel/base/types.h"
#include "zel/kernels/classic_gamma.h"
#include "zel/kernels/incomplete_beta.h"
#include "zel/kernels/normal_tail.h"
#include "zel/kernels/rank_sum.h"

namespace zel {

namespace {

bool isProbability(double p) { return p >= 0 && p <= 1; }

Extended logBinomial(int n, int k) {
  const auto logFactorial = [](int i) { return kernels::lanczosLogGamma(Extended(i) + 1); };
  return logFactorial(n) - logFactorial(k) - logFactorial(n - k);
}

/// The smallest k in 0..last for which reaches(k), which the last does; the search starts at guess
/// and strides away from it in doubling steps.
template <class Reaches>
std::int64_t firstReaching(std::int64_t last, Extended guess, Reaches&& reaches) {
  std::int64_t high = last;
  std::int64_t low = -1;  // does not reach
  std::int64_t at = RoundToInt<std::int64_t>(std::clamp<Extended>(guess, 0, Extended(last)));
  for (std::int64_t stride = 1; low + 1 < high; stride *= 2) {
    at = std::clamp(at, low + 1, high - 1);
    const bool reached = reaches(at);
    (reached ? high : low) = at;
    at += reached ? -stride : stride;
    if (at <= low || at >= high) break;
  }
  while (low + 1 < high) {
    const std::int64_t middle = low + (high - low) / 2;
    (reaches(middle) ? high : low) = middle;
  }
  return high;
}

Extended normalQuantile(double p) {
  return p < 0.5 ? -kernels::normalTail(p) : kernels::normalTail(1 - Extended{p});
}

/// P(U <= u) from the lower half of the distribution: U > u is as likely as U <= last - u - 1.
template <class Lower>
double upToU(std::int64_t last, std::int64_t u, Lower&& lower) {
  const std::int64_t above = last - u - 1;
  if (above < 0) return 1;
  return static_cast<double>(u <= above ? lower(u) : 1 - lower(above));
}

}  // namespace

double HyperGeoDistriDensity(double p, int npop, int nsample, int k) {
  const auto refuse = [](bool refused, const char* reason) {
    if (refused) throw EZELStatisError(std::string("HyperGeoDistriDensity: ") + reason);
  };
  refuse(!isProbability(p), "probability p must be between 0.0 and 1.0");
  refuse(npop < 1, "npop must be greater than 0");
  refuse(nsample > npop, "nsample must not be greater than npop");
  refuse(nsample < 1, "nsample must not be less than 1");
  const int marked = RoundToInt<int>(p * npop);
  if (k < 0 || k > marked || k > nsample || k < nsample - (npop - marked)) return 0;
  return static_cast<double>(std::exp(logBinomial(marked, k) +
                                      logBinomial(npop - marked, nsample - k) -
                                      logBinomial(npop, nsample)));
}

double BinomDistriDensity(int n, double p, int k) {
  if (n < 0 || !isProbability(p) || k < 0 || k > n) return 0;
  const Extended x = p;
  const Extended y = 1 - x;
  if (k == 0) return static_cast<double>(n == 0 ? 1 : std::exp(n * std::log1p(-x)));
  if (p == 0) return 0;
  if (k == n) return static_cast<double>(std::pow(x, Extended(n)));
  if (p == 1) return 0;
  const Extended rest = n - k;
  return static_cast<double>(kernels::betaPower(k, rest, x, y) * n / (k * rest));
}

double BinomDistriIntegral(int n, double p, int k) {
  if (n < 0 || !isProbability(p) || k < 0) return 0;
  if (k >= n) return 1;
  const Extended x = p;
  return static_cast<double>(kernels::incompleteBeta(n - k, Extended(k) + 1, 1 - x, x).lower);
}

bool BinomDistriQuantile(int n, double p, double q, double& result) {
  result = 0;
  if (n < 0 || !isProbability(p) || !isProbability(q)) return false;
  const Extended mean = Extended{p} * n;
  const Extended spread = std::sqrt(mean * (1 - p));
  const Extended guess = q == 0 ? 0 : q == 1 ? n : mean + spread * normalQuantile(q);
  result = static_cast<double>(firstReaching(n, guess, [&](std::int64_t k) {
    return BinomDistriIntegral(n, p, static_cast<int>(k)) >= q;
  }));
  return true;
}

bool BinomDistriQuantile(int n, double p, double q, int& result) {
  double number = 0;
  const bool valid = BinomDistriQuantile(n, p, q, number);
  result = static_cast<int>(number);
  return valid;
}

double UDistriDensity(int nx, int ny, int u) {
  if (nx < 1 || ny < 1 || u < 0) return 0;
  const std::int64_t mirrored = std::int64_t{nx} * ny - u;
  if (mirrored < 0) return 0;
  return static_cast<double>(kernels::rankSumDensity(nx, ny, std::min<std::int64_t>(u, mirrored)));
}

double UDistriIntegral(int nx, int ny, int u) {
  if (nx < 1 || ny < 1 || u < 0) return 0;
  return upToU(std::int64_t{nx} * ny, u,
               [&](std::int64_t at) { return kernels::rankSumLower(nx, ny, at); });
}

double UDistriQuantile(int nx, int ny, double p) {
  if (nx < 1 || ny < 1 || !(p > 0)) return 0;
  const std::int64_t last = std::int64_t{nx} * ny;
  if (p >= 1) return static_cast<double>(last);
  std::vector<Extended> lower;
  if (kernels::isRankSumTableCheap(nx, ny, last / 2)) {
    lower = kernels::rankSumProbabilities(nx, ny, last / 2);
    std::partial_sum(lower.begin(), lower.end(), lower.begin());
  }
  const auto upTo = [&](std::int64_t u) {
    return lower.empty() ? kernels::rankSumLower(nx, ny, u) : lower[static_cast<std::size_t>(u)];
  };
  const Extended size = Extended(nx) + ny + 1;
  const Extended guess = last / 2.0L + std::sqrt(last * (size / 12)) * normalQuantile(p);
  return static_cast<double>(
      firstReaching(last, guess, [&](std::int64_t u) { return upToU(last, u, upTo) >= p; }));
}

}  // namespace zel
