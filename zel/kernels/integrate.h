/// @file
/// Integral of a function given by samples at 1, 2, ..., n and straight lines between them.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <type_traits>
#include <utility>

#include "zel/base/types.h"
#include "zel/kernels/double_double.h"
#include "zel/kernels/lane_sums.h"

namespace zel::kernels {

enum class IntegrationRule : std::uint8_t {
  mean,         ///< mean of the samples inside times the width
  trapezoidal,  ///< exact for the straight lines
  simpson       ///< end-corrected rules of third and higher order over the samples inside
};

namespace detail {

/// The rules in one arithmetic: pairs of doubles, where every weight enters as an undivided
/// quotient of small integers and the result is rounded once, or plain long double.
template <class Value, class T>
class Integrator {
 public:
  static constexpr bool kIsPair = std::is_same_v<Value, DoubleDouble>;
  using Number = std::conditional_t<kIsPair, double, Extended>;

  explicit Integrator(std::span<const T> samples) : FSamples(samples) {}

  /// 1 <= a < b <= n.
  [[nodiscard]] double operator()(double a, double b, IntegrationRule rule) const {
    const auto lo = static_cast<std::int64_t>(std::ceil(a));
    const auto hi = static_cast<std::int64_t>(std::floor(b));
    const std::int64_t inside = hi - lo + 1;
    const Value width = difference(b, a);
    if (rule == IntegrationRule::mean) {
      const Value mean =
          inside > 0 ? sum(lo, hi) / static_cast<Number>(inside) : (y(lo - 1) + y(lo)) / 2;
      return rounded(mean * width);
    }
    if (inside == 0) return rounded((line(a) + line(b)) / 2 * width);
    Value ends{};
    const auto left = static_cast<Number>(static_cast<double>(lo) - a);
    const auto right = static_cast<Number>(b - static_cast<double>(hi));
    if (left > 0) ends = ends + (line(a) + y(lo)) / 2 * left;
    if (right > 0) ends = ends + (y(hi) + line(b)) / 2 * right;
    return rounded(ends +
                   (rule == IntegrationRule::trapezoidal ? trapezoids(lo, hi) : simpson(lo, hi)));
  }

 private:
  [[nodiscard]] static double rounded(Value v) {
    if constexpr (kIsPair) {
      return v.hi + v.lo;
    } else {
      return static_cast<double>(v);
    }
  }

  [[nodiscard]] static Value difference(double b, double a) {
    if constexpr (kIsPair) {
      return twoDiff(b, a);
    } else {
      return static_cast<Extended>(b) - static_cast<Extended>(a);
    }
  }

  [[nodiscard]] Value y(std::int64_t i) const {
    const auto sample = static_cast<Number>(FSamples[static_cast<std::size_t>(i - 1)]);
    if constexpr (kIsPair) {
      return {sample, 0};
    } else {
      return sample;
    }
  }

  /// Value of the straight line at a position; at a sample the sample itself, whatever its
  /// neighbour is.
  [[nodiscard]] Value line(double position) const {
    const double below = std::floor(position);
    const auto i = static_cast<std::int64_t>(below);
    if (position == below) return y(i);
    return y(i) + (y(i + 1) - y(i)) * static_cast<Number>(position - below);
  }

  [[nodiscard]] Value sum(std::int64_t from, std::int64_t to) const {
    if (to < from) return {};
    const auto part = FSamples.subspan(static_cast<std::size_t>(from - 1),
                                       static_cast<std::size_t>(to - from + 1));
    const auto total = sumsOf<SumTerms, Number>(part, part)[0];
    if constexpr (kIsPair) {
      return total;
    } else {
      return total.hi;
    }
  }

  [[nodiscard]] Value trapezoids(std::int64_t lo, std::int64_t hi) const {
    if (hi == lo) return {};
    return (y(lo) + y(hi)) / 2 + sum(lo + 1, hi - 1);
  }

  [[nodiscard]] Value simpson(std::int64_t lo, std::int64_t hi) const {
    switch (hi - lo + 1) {
      case 1:
      case 2:
        return trapezoids(lo, hi);
      case 3:
        return (y(lo) + y(lo + 1) * 4 + y(lo + 2)) / 3;
      case 4:
        return (y(lo) + (y(lo + 1) + y(lo + 2)) * 3 + y(lo + 3)) * 3 / 8;
      case 5:
        return ((y(lo) + y(lo + 4)) * 7 + (y(lo + 1) + y(lo + 3)) * 32 + y(lo + 2) * 12) * 2 / 45;
      default:
        return ((y(lo) + y(hi)) * 9 + (y(lo + 1) + y(hi - 1)) * 28 + (y(lo + 2) + y(hi - 2)) * 23) /
                   24 +
               sum(lo + 3, hi - 3);
    }
  }

  std::span<const T> FSamples;
};

}  // namespace detail

/// Integral from a to b. Bounds are limited to 1..n and put in order; 0 for no samples or an
/// interval of width 0, not-a-number for a bound that is not a number. The samples inside [a, b]
/// enter by the rule, the rest of the interval up to a and b under the straight lines; with fewer
/// than three samples inside simpson is trapezoidal, with none the mean rule takes the two samples
/// that enclose the interval. Repeated in long double if a step leaves the double range.
template <class T>
[[nodiscard]] double integrate(std::span<const T> samples, double a, double b,
                               IntegrationRule rule) {
  if (std::isnan(a) || std::isnan(b)) return std::numeric_limits<double>::quiet_NaN();
  const auto n = static_cast<double>(samples.size());
  if (n == 0) return 0;
  const auto limited = [n](double bound) { return bound < 1 ? 1 : bound > n ? n : bound; };
  a = limited(a);
  b = limited(b);
  if (a > b) std::swap(a, b);
  if (a == b) return 0;
  const double fast = detail::Integrator<DoubleDouble, T>(samples)(a, b, rule);
  return std::isfinite(fast) ? fast : detail::Integrator<Extended, T>(samples)(a, b, rule);
}

}  // namespace zel::kernels
