/// @file
/// Quantile of a distribution on the positive numbers whose two tails are known.
#pragma once

#include <algorithm>
#include <cmath>

#include "zel/base/types.h"

namespace zel::kernels {

/// A tail T at x, and how it changes with u = ln x.
struct TailAt {
  Extended tail;
  Extended slope;  ///< dT/du
  Extended bend;   ///< d ln|dT/du| / du
};

/// The x > 0 at which the lower or upper tail that `at` evaluates is `tail`, to the precision of
/// these. Halley iterations on ln T over ln x: for densities that are log-concave over ln x, like
/// those of gamma and F, this is a concave function and almost a line in the far tails, so the
/// steps end up on one side of the solution and close in on it from any start. 0 or infinity where
/// x leaves the range.
template <class Evaluate>
[[nodiscard]] Extended tailQuantile(bool lower, Extended tail, Extended start, Evaluate&& at) {
  constexpr int kMostSteps = 500;
  constexpr Extended kMostRise = 40;
  // A step of third order from this close leaves an error below the roundoff.
  constexpr Extended kEnough = 1e-7L;
  Extended x = start;
  for (int k = 0; k < kMostSteps && x > 0 && !std::isinf(x); ++k) {
    const TailAt here = at(x);
    if (!(here.tail > 0)) {  // the tail has underflowed
      x *= lower ? 2 : 0.5L;
      continue;
    }
    const Extended ratio = here.tail / tail;
    const Extended distance =
        std::abs(ratio - 1) < 0.5L ? std::log1p((here.tail - tail) / tail) : std::log(ratio);
    const Extended rate = here.slope / here.tail;
    const Extended newton = -distance / rate;
    const Extended curvature = newton * (here.bend - rate) / 2;
    const Extended step = std::min(newton / (1 + std::clamp(curvature, -0.5L, 0.5L)), kMostRise);
    x = std::abs(step) > 0.5L ? x * std::exp(step) : x + x * std::expm1(step);
    if (std::abs(step) <= kEnough) break;
  }
  return x;
}

}  // namespace zel::kernels
