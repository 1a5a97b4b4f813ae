/// @file
/// Pieces of the powers in front of the incomplete gamma and beta functions, without cancellation
/// (C. Loader, Fast and accurate computation of binomial probabilities, 2000).
#pragma once

#include <array>
#include <cmath>
#include <cstddef>

#include "zel/base/types.h"

namespace zel::kernels {

/// ln(r) - (r - 1), where u = r - 1 is given too.
[[nodiscard]] inline Extended logMinusLinear(Extended r, Extended u) {
  if (r < 0.5L || r > 2) return std::log(r) - u;
  // With s = u / (2 + u): ln(1+u) = 2 (s + s^3/3 + s^5/5 + ...), and 2 s - u = -u s.
  static constexpr auto kReciprocals = [] {
    std::array<Extended, 20> values{};
    for (std::size_t k = 0; k < values.size(); ++k) values[k] = 2 / (2 * Extended(k) + 3);
    return values;
  }();
  const Extended s = u / (2 + u);
  const Extended z = s * s;
  // s^2 is at most 1/9; the number of terms follows from it.
  const std::size_t terms = z < 1e-6L ? 4 : z < 1e-3L ? 7 : z < 0.02L ? 12 : kReciprocals.size();
  Extended sum = 0;
  for (std::size_t k = terms; k-- > 0;) sum = sum * z + kReciprocals[k];
  return s * (z * sum - u);
}

/// From here on Stirling's series is precise to the last digit.
inline constexpr Extended kStirling = 20;
// Of Stirling's series in 1/z, 1/z^3, ...
inline constexpr Extended kStirlingTerms[] = {
    1.0L / 12,        -1.0L / 360, 1.0L / 1260,       -1.0L / 1680,      1.0L / 1188,
    -691.0L / 360360, 1.0L / 156,  -3617.0L / 122400, 43867.0L / 244188, -174611.0L / 125400};

/// How many of the terms reach 2^-68.
[[nodiscard]] inline int stirlingTerms(Extended z) { return z < 100 ? 10 : z < 10000 ? 6 : 3; }

/// ln of Gamma(z) / (sqrt(2 pi) z^(z-1/2) e^-z) for z >= kStirling.
[[nodiscard]] inline Extended stirlingRemainder(Extended z) {
  const Extended w = 1 / z;
  const Extended square = w * w;
  Extended sum = 0;
  for (int k = stirlingTerms(z); k-- > 0;) sum = sum * square + kStirlingTerms[k];
  return sum * w;
}

}  // namespace zel::kernels
