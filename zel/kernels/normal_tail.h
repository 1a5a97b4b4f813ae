/// @file
/// A first guess of normal quantiles.
#pragma once

#include <cmath>

#include "zel/base/types.h"

namespace zel::kernels {

/// The z beyond which the normal distribution has q <= 1/2, to 5e-4 (Abramowitz and
/// Stegun 26.2.23).
[[nodiscard]] inline Extended normalTail(Extended q) {
  const Extended s = std::sqrt(-2 * std::log(q));
  return s - (2.515517L + s * (0.802853L + s * 0.010328L)) /
                 (1 + s * (1.432788L + s * (0.189269L + s * 0.001308L)));
}

}  // namespace zel::kernels
