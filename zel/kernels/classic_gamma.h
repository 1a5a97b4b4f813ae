/// @file
/// The classic approximations of the gamma and incomplete gamma and beta functions, which stop at a
/// relative change of 1e-8 (Press et al., Numerical Recipes (1986) ch. 6). In extended precision,
/// so that rounding adds nothing to their own errors.
#pragma once

#include <cmath>

#include "zel/base/types.h"

namespace zel::kernels {

inline constexpr Extended kClassicPrecision = 1e-8L;

/// ln Gamma(x), x > 0, by Lanczos' series with six terms.
[[nodiscard]] inline Extended lanczosLogGamma(Extended x) {
  constexpr Extended kCoefficients[] = {76.18009173L,  -86.50532033L,  24.01409822L,
                                        -1.231739516L, 0.00120858003L, -5.36382e-06L};
  Extended sum = 1;
  Extended at = x;
  for (const Extended c : kCoefficients) {
    sum += c / at;
    at += 1;
  }
  const Extended base = x + 4.5L;
  return (x - 0.5L) * std::log(base) - base + std::log(2.5066282746310007L * sum);
}

/// P(a, x) and Q(a, x), each without the cancellation of 1 minus the other where it is the one that
/// the method gives.
struct ClassicTails {
  Extended lower;
  Extended upper;
};

[[nodiscard]] inline ClassicTails classicIncompleteGamma(Extended a, Extended x) {
  if (x <= 0 || a <= 0) return {0, 1};
  if (std::isinf(x)) return {1, 0};
  const Extended front = std::exp(a * std::log(x) - x - lanczosLogGamma(a));
  if (x < a + 1) {
    constexpr int kMostTerms = 1 << 24;  // enough for a = 1e12
    Extended term = 1 / a;
    Extended sum = term;
    Extended under = a;
    for (int i = 0; i < kMostTerms; ++i) {
      under += 1;
      term *= x / under;
      sum += term;
      if (!(std::abs(term) >= kClassicPrecision * std::abs(sum))) break;
    }
    return {front * sum, 1 - front * sum};
  }
  constexpr int kMostSteps = 99;
  Extended a0 = 1;
  Extended a1 = x;
  Extended b0 = 0;
  Extended b1 = 1;
  Extended scale = 1;
  Extended value = 0;
  Extended previous = 0;
  for (int i = 1; i <= kMostSteps; ++i) {
    const Extended n = i;
    a0 = (a1 + (n - a) * a0) * scale;
    b0 = (b1 + (n - a) * b0) * scale;
    a1 = x * a0 + n * scale * a1;
    b1 = x * b0 + n * scale * b1;
    if (a1 == 0) continue;
    scale = 1 / a1;
    value = b1 * scale;
    if (std::abs((value - previous) / value) < kClassicPrecision) break;
    previous = value;
  }
  return {1 - front * value, front * value};
}

/// The continued fraction of I_x(a, b).
[[nodiscard]] inline Extended classicBetaFraction(Extended a, Extended b, Extended x) {
  constexpr int kMostSteps = 100;
  Extended am = 1;
  Extended bm = 1;
  Extended az = 1;
  Extended bz = 1 - (a + b) * x / (a + 1);
  for (int i = 1; i <= kMostSteps; ++i) {
    const Extended m = i;
    const Extended even = m * (b - m) * x / ((a + 2 * m - 1) * (a + 2 * m));
    const Extended ap = az + even * am;
    const Extended bp = bz + even * bm;
    const Extended odd = -(a + m) * (a + b + m) * x / ((a + 2 * m) * (a + 2 * m + 1));
    const Extended app = ap + odd * az;
    const Extended bpp = bp + odd * bz;
    am = ap / bpp;
    bm = bp / bpp;
    const Extended next = app / bpp;
    bz = 1;
    const bool settled = std::abs(next - az) < kClassicPrecision * std::abs(next);
    az = next;
    if (settled) break;
  }
  return az;
}

}  // namespace zel::kernels
