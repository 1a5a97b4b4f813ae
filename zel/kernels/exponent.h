/// @file
/// Powers of two that bring data into the middle of the double range.
#pragma once

#include <algorithm>
#include <cmath>
#include <span>

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

}  // namespace zel::kernels
