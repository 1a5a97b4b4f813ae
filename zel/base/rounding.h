/// @file
/// Rounding of reals to integers: one rule, nearest with ties to even, limited before it converts.
#pragma once

#include <cmath>
#include <concepts>
#include <limits>

namespace zel {

/// Nearest integral value, ties to even, whatever the rounding mode of the thread is.
template <std::floating_point F>
[[nodiscard]] inline F RoundEven(F x) {
  const F below = std::floor(x);
  const F excess = x - below;  // exact: both share an exponent range or below is x
  if (excess < F(0.5)) return below;
  if (excess > F(0.5)) return below + 1;
  if (excess == F(0.5)) return std::fmod(below, F(2)) == 0 ? below : below + 1;
  return x;  // infinite or not a number
}

/// RoundEven as an integer type; values beyond the range give its nearest end, not-a-number gives
/// 0.
template <std::integral I, std::floating_point F>
[[nodiscard]] inline I RoundToInt(F x) {
  const F rounded = RoundEven(x);
  if (rounded >= static_cast<F>(std::numeric_limits<I>::max()))
    return std::numeric_limits<I>::max();
  if (rounded <= static_cast<F>(std::numeric_limits<I>::min()))
    return std::numeric_limits<I>::min();
  return std::isnan(rounded) ? I{0} : static_cast<I>(rounded);
}

/// Truncation toward zero as an integer type, limited like RoundToInt.
template <std::integral I, std::floating_point F>
[[nodiscard]] inline I TruncToInt(F x) {
  return RoundToInt<I>(std::trunc(x));
}

/// Fractional part with the sign of x; exact. 0 for infinite x.
template <std::floating_point F>
[[nodiscard]] inline F Frac(F x) {
  return std::isinf(x) ? F(0) : x - std::trunc(x);
}

}  // namespace zel
