#include "zel/statistics/specialfunctions.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "zel/base/types.h"
#include "zel/kernels/classic_gamma.h"

namespace zel {

namespace {

bool isOutside(int n, int k) { return n < 0 || k < 0 || k > n; }

Extended logGamma(Extended x) { return x > 0 ? kernels::lanczosLogGamma(x) : 0; }

}  // namespace

double LnGamma(double x) { return x <= 0 ? 0 : static_cast<double>(kernels::lanczosLogGamma(x)); }

double IncompleteGamma(double x, double a) {
  return static_cast<double>(kernels::classicIncompleteGamma(a, x).lower);
}

double LnBeta(double a, double b) {
  if (a < 0 || b < 0) return 0;
  return static_cast<double>(logGamma(a) + logGamma(b) - logGamma(Extended{a} + b));
}

double IncompleteBeta(double x, double a, double b) {
  if (x < 0) return 0;
  if (x > 1) return 1;
  const Extended y = 1 - Extended{x};
  const Extended n = Extended{a} + b;
  const Extended front = x == 0 || y == 0 ? 0
                                          : std::exp(logGamma(n) - logGamma(a) - logGamma(b) +
                                                     a * std::log(Extended{x}) + b * std::log(y));
  const Extended result = x < (Extended{a} + 1) / (n + 2)
                              ? front * kernels::classicBetaFraction(a, b, x) / a
                              : 1 - front * kernels::classicBetaFraction(b, a, y) / b;
  return static_cast<double>(result);
}

int BinomCoeff(int n, int k) {
  if (isOutside(n, k)) return 0;
  constexpr int kMost = std::numeric_limits<int>::max();
  const int steps = std::min(k, n - k);
  std::uint64_t coefficient = 1;  // C(n - steps + j, j), which at least doubles with each step
  for (int j = 1; j <= steps; ++j) {
    coefficient =
        coefficient * static_cast<std::uint64_t>(n - steps + j) / static_cast<std::uint64_t>(j);
    if (coefficient > static_cast<std::uint64_t>(kMost)) return kMost;
  }
  return static_cast<int>(coefficient);
}

double LnBinomCoeff(int n, int k) {
  if (isOutside(n, k)) return -1;
  return static_cast<double>(logGamma(Extended{1} + n) - logGamma(Extended{1} + k) -
                             logGamma(Extended{1} + n - k));
}

double Erf(double x) {
  const double magnitude = IncompleteGamma(x * x, 0.5);
  return x < 0 ? -magnitude : magnitude;
}

double FisherTransform(double r) {
  if (r <= -1 || r >= 1) throw EZELStatisError("FisherTransform: argument out of range");
  return std::atanh(r);
}

double FisherTransformInv(double z) { return std::tanh(z); }

}  // namespace zel
