/// @file
/// Search for values: exact, nearest, and nearest in sorted data. Positions count from 0.
#pragma once

#include <algorithm>
#include <cmath>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <type_traits>

namespace zel::kernels {

/// No position.
inline constexpr std::size_t npos = static_cast<std::size_t>(-1);

/// |a - b|, exact for integers, which it does not let overflow; in double otherwise.
template <class T>
[[nodiscard]] auto distanceOf(T a, T b) {
  if constexpr (std::integral<T>) {
    static_assert(sizeof(T) <= 4);
    const std::int64_t difference = static_cast<std::int64_t>(a) - static_cast<std::int64_t>(b);
    return difference < 0 ? -difference : difference;
  } else {
    return std::fabs(static_cast<double>(a) - static_cast<double>(b));
  }
}

/// Distances of a search start below this one.
template <class T>
inline constexpr auto kFarthest = std::numeric_limits<
    decltype(distanceOf(std::remove_const_t<T>{}, std::remove_const_t<T>{}))>::max();

/// Position of the value nearest to `value` among those nearer than `best`, which takes its
/// distance; the first one if several are equally near; npos if there is none.
template <class T>
[[nodiscard]] std::size_t findNearer(std::span<T> x, std::type_identity_t<T> value,
                                     std::remove_const_t<decltype(kFarthest<T>)>& best) {
  std::size_t found = npos;
  for (std::size_t i = 0; i < x.size(); ++i) {
    const auto distance = distanceOf(x[i], value);
    if (distance < best) {
      best = distance;
      found = i;
    }
  }
  return found;
}

/// Position of the value nearest to `value`, the first one if several are equally near; npos if no
/// distance is below the largest double (nothing but infinities, NaN, or values that far away).
template <class T>
[[nodiscard]] std::size_t findNearest(std::span<T> x, std::type_identity_t<T> value) {
  auto best = kFarthest<T>;
  return findNearer(x, value, best);
}

/// First position that holds `value`, or npos.
template <class T>
[[nodiscard]] std::size_t findExact(std::span<T> x, std::type_identity_t<T> value) {
  const auto found = std::find(x.begin(), x.end(), value);
  return found == x.end() ? npos : static_cast<std::size_t>(found - x.begin());
}

/// Binary search in values sorted in the given direction: the position of a value equal to `value`
/// (any, if there are several), else of the nearer of the two that enclose it, of both the later
/// one if they are equally near. Outside the range of the values, the first or the last; npos if
/// there are none. O(log n). If x is not sorted, or holds a NaN, some valid position.
template <class T>
[[nodiscard]] std::size_t findInSorted(std::span<T> x, std::type_identity_t<T> value,
                                       bool ascending) {
  if (x.empty()) return npos;
  std::size_t low = 0;
  std::size_t high = x.size() - 1;
  while (high - low >= 2) {
    const std::size_t middle = low + (high - low) / 2;
    if (x[middle] == value) return middle;
    ((value < x[middle]) == ascending ? high : low) = middle;
  }
  // Equality first: the distance between equal infinities is not a number.
  if (x[high] == value) return high;
  if (x[low] == value) return low;
  return distanceOf(x[high], value) > distanceOf(x[low], value) ? low : high;
}

}  // namespace zel::kernels
