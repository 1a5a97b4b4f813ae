/// @file
/// Minimum and maximum with the positions of their first occurrence.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>

namespace zel::kernels {

/// "No element" as a position.
inline constexpr std::size_t kNoIndex = std::numeric_limits<std::size_t>::max();

template <class T>
struct MinMax {
  T minimum;
  T maximum;
  std::size_t minIndex = kNoIndex;  ///< 0-based; kNoIndex if no element is below the start value
  std::size_t maxIndex = kNoIndex;
};

/// Values that the search starts from.
template <class T>
struct MinMaxStart;
template <>
struct MinMaxStart<double> {
  double minimum = 1.7e308;
  double maximum = -1.7e308;
};
template <>
struct MinMaxStart<std::int32_t> {
  std::int32_t minimum = 2147483647;
  std::int32_t maximum = -2147483647;
};

/// An element strictly below the minimum so far (strictly above the maximum) replaces it, so the
/// first of equal elements wins (-0 and 0 are equal) and not-a-number never does. One pass; a
/// second look at one block finds each position.
[[nodiscard]] MinMax<double> minMax(std::span<const double> x, MinMaxStart<double> start = {});
[[nodiscard]] MinMax<std::int32_t> minMax(std::span<const std::int32_t> x,
                                          MinMaxStart<std::int32_t> start = {});

/// The first of the least elements, if it is below the largest double; no maximum is looked for.
[[nodiscard]] inline MinMax<double> least(std::span<const double> x) {
  using Limits = std::numeric_limits<double>;
  return minMax(x, {.minimum = Limits::max(), .maximum = Limits::infinity()});
}

/// No element differs from the first.
template <class T>
[[nodiscard]] bool isConstant(std::span<const T> x) {
  return std::all_of(x.begin(), x.end(), [&](T v) { return v == x.front(); });
}

}  // namespace zel::kernels
