/// @file
/// Searches: exact, nearest, binary with nearest.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <type_traits>

namespace zel::kernels {

/// "No element".
inline constexpr std::size_t npos = std::numeric_limits<std::size_t>::max();

/// Distance of two values in a type that holds it: integers in 64 bits.
template <class T>
[[nodiscard]] constexpr auto distance(T a, T b) {
  if constexpr (std::is_integral_v<T>) {
    const std::int64_t d = std::int64_t{a} - std::int64_t{b};
    return d < 0 ? -d : d;
  } else {
    return std::fabs(a - b);
  }
}

/// Index of the first element equal to value; npos if there is none.
template <class T>
[[nodiscard]] std::size_t findExact(std::span<const T> x, T value) {
  for (std::size_t i = 0; i < x.size(); ++i) {
    if (x[i] == value) return i;
  }
  return npos;
}

/// Index of the element nearest to value, the first on ties; npos if no distance lies below the largest
/// double (distances that are not-a-number, overflow or infinite values).
template <class T>
[[nodiscard]] std::size_t nearestElement(std::span<const T> x, T value) {
  using Distance = decltype(distance(value, value));
  auto best = std::numeric_limits<Distance>::max();
  std::size_t at = npos;
  for (std::size_t i = 0; i < x.size(); ++i) {
    const Distance d = distance(x[i], value);
    if (d < best) {
      best = d;
      at = i;
    }
  }
  return at;
}

/// Binary search in sorted values, at least one: index of an element equal to value, else of the nearer
/// of the two neighbours that remain, the later one on ties.
template <class T>
[[nodiscard]] std::size_t binarySearchNearest(std::span<const T> x, bool ascending, T value) {
  std::size_t low = 0;
  std::size_t high = x.size() - 1;
  while (high - low >= 2) {
    const std::size_t mid = low + (high - low) / 2;
    if (x[mid] == value) return mid;
    if ((value < x[mid]) == ascending) {
      high = mid;
    } else {
      low = mid;
    }
  }
  return distance(x[high], value) > distance(x[low], value) ? low : high;
}

}  // namespace zel::kernels
