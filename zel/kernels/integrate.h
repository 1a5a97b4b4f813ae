/// @file
/// Integrals of functions given by equidistant samples, straight lines in between.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <span>
#include <utility>

#include "zel/kernels/sums.h"

namespace zel::kernels {

enum class IntegrationRule { mean, trapezoidal, simpson };

namespace detail {

inline double interpolated(std::span<const double> y, double at) {
  const auto k = static_cast<std::size_t>(at);  // 1..n
  const double fraction = at - static_cast<double>(k);
  return fraction == 0 ? y[k - 1] : y[k - 1] + fraction * (y[k] - y[k - 1]);
}

/// Sum over samples first..last, numbered from 1; 0 if first > last.
inline double sumOfSamples(std::span<const double> y, std::size_t first, std::size_t last) {
  return first > last ? 0 : sum(y.subspan(first - 1, last - first + 1)).hi;
}

/// Integral between the first and the last of the m >= 1 samples inside.
inline double innerTrapezoidal(std::span<const double> y, std::size_t low, std::size_t high) {
  return low == high ? 0 : y[low - 1] / 2 + sumOfSamples(y, low + 1, high - 1) + y[high - 1] / 2;
}

/// Newton-Cotes for 3 to 5 samples; from 6 on the formula of order 4 whose weights differ from 1 at the
/// three samples of either end only (Press et al., Numerical Recipes, 1992, eq. 4.1.14).
inline double innerSimpson(std::span<const double> y, std::size_t low, std::size_t high) {
  const auto sample = [&](std::size_t i) { return y[low - 1 + i]; };
  switch (const std::size_t m = high - low + 1; m) {
    case 1:
    case 2:
      return innerTrapezoidal(y, low, high);
    case 3:
      return (sample(0) + 4 * sample(1) + sample(2)) / 3;
    case 4:
      return 3.0 / 8 * (sample(0) + 3 * sample(1) + 3 * sample(2) + sample(3));
    case 5:
      return 2.0 / 45 * (7 * sample(0) + 32 * sample(1) + 12 * sample(2) + 32 * sample(3) + 7 * sample(4));
    default:
      return 3.0 / 8 * (sample(0) + sample(m - 1)) + 7.0 / 6 * (sample(1) + sample(m - 2)) +
             23.0 / 24 * (sample(2) + sample(m - 3)) + sumOfSamples(y, low + 3, high - 3);
  }
}

}  // namespace detail

/// Integral over [a, b] of the function whose value at i is sample i, i = 1..n, n >= 1. Bounds are limited
/// to 1..n and exchanged if reversed; a bound that is not-a-number gives not-a-number. The mean rule takes
/// the mean of the samples inside (of the two around the interval if there is none) times the width; the
/// others add straight-line pieces at the two ends to the integral between the samples inside.
[[nodiscard]] inline double integrate(std::span<const double> y, double a, double b, IntegrationRule rule) {
  if (std::isnan(a) || std::isnan(b)) return a + b;
  const auto n = static_cast<double>(y.size());
  a = std::clamp(a, 1.0, n);
  b = std::clamp(b, 1.0, n);
  if (a > b) std::swap(a, b);
  const double width = b - a;
  const auto low = static_cast<std::size_t>(std::ceil(a));
  const auto high = static_cast<std::size_t>(std::floor(b));
  const bool samplesInside = low <= high;
  if (rule == IntegrationRule::mean) {
    if (!samplesInside) return (y[low - 2] + y[low - 1]) / 2 * width;
    return detail::sumOfSamples(y, low, high) / static_cast<double>(high - low + 1) * width;
  }
  const double atA = detail::interpolated(y, a);
  const double atB = detail::interpolated(y, b);
  if (!samplesInside) return (atA + atB) / 2 * width;
  const double ends = (atA + y[low - 1]) / 2 * (static_cast<double>(low) - a) +
                      (y[high - 1] + atB) / 2 * (b - static_cast<double>(high));
  return ends + (rule == IntegrationRule::trapezoidal ? detail::innerTrapezoidal(y, low, high)
                                                      : detail::innerSimpson(y, low, high));
}

}  // namespace zel::kernels
