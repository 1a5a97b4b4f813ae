/// @file
/// Powers of two that bring values of extreme magnitude near 1.
#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <span>

#include "zel/kernels/dense.h"
#include "zel/kernels/minmax.h"

namespace zel::kernels {

/// The e with 2^(e-1) <= largest magnitude < 2^e; 0 if nothing but zeros, infinities or
/// not-a-number is there.
[[nodiscard]] inline int largestExponent(std::span<const double> x) {
  const auto extremes = minMax(x, {0, 0});
  const double largest = std::max(-extremes.minimum, extremes.maximum);
  int exponent = 0;
  if (std::isfinite(largest)) static_cast<void>(std::frexp(largest, &exponent));
  return exponent;
}

/// The exponent of a largest magnitude if squares of such values, or products of a few, may leave
/// the range of doubles, else 0. Limited, so that powers of two with it and its negative are
/// normal.
[[nodiscard]] inline int beyondHarmless(int exponent) {
  constexpr int kHarmless = 300;
  constexpr int kMost = 1000;
  return std::abs(exponent) < kHarmless ? 0 : std::clamp(exponent, -kMost, kMost);
}

/// Exponent of the largest magnitude if squares of such values may leave the range of doubles, else
/// 0; nothing if an element is not finite.
inline std::optional<int> extremeExponent(ConstMatrix a) {
  // Magnitudes compare like their bits, not-a-number above all. Four chains hide the latency.
  std::uint64_t big[4] = {};
  for (std::size_t c = 0; c < a.columns; ++c) {
    const double* x = a.column(c);
    const auto bits = [x](std::size_t i) { return std::bit_cast<std::uint64_t>(x[i]) << 1; };
    std::size_t i = 0;
    for (; i + 4 <= a.rows; i += 4) {
      for (std::size_t k = 0; k < 4; ++k) big[k] = std::max(big[k], bits(i + k));
    }
    for (; i < a.rows; ++i) big[0] = std::max(big[0], bits(i));
  }
  const double magnitude = std::bit_cast<double>(std::max({big[0], big[1], big[2], big[3]}) >> 1);
  if (!std::isfinite(magnitude)) return {};
  return magnitude > 0 ? beyondHarmless(std::ilogb(magnitude)) : 0;
}

/// a = a 2^exponent. What falls below the range of doubles is rounded.
inline void scaleByPower(Matrix a, int exponent) {
  if (exponent == 0) return;
  const int half = exponent / 2;  // 2^exponent itself may be out of range
  const double first = std::ldexp(1.0, half);
  const double second = std::ldexp(1.0, exponent - half);
  for (std::size_t c = 0; c < a.columns; ++c) {
    for (double& x : a[c]) x = x * first * second;
  }
}

}  // namespace zel::kernels
