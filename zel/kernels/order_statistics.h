/// @file
/// Percentiles, quartiles and mode: each rule once, for sorted data and by selection.
///
/// Interpolation is evaluated as written, a[k] + f (a[k+1] - a[k]). So beside an infinite value the
/// result is infinite or NaN: between -inf and inf, between two equal infinities, and also for f =
/// 0 if a[k+1] is infinite. With a NaN among the values the sorted order is the one that the comb
/// sort leaves.
#pragma once

#include <algorithm>
#include <cmath>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <type_traits>
#include <vector>

#include "zel/base/rounding.h"
#include "zel/kernels/comb_sort.h"
#include "zel/kernels/hooks.h"
#include "zel/kernels/select.h"

namespace zel::kernels {

/// A place among sorted values a[0..n-1]: the fraction f of the way from a[k] to a[k+1], or a[k]
/// itself.
struct OrderPosition {
  std::size_t k = 0;
  double fraction = 0;
  bool interpolated = false;

  template <class T>
  [[nodiscard]] double value(SelectedPair<T> pair) const {
    const auto a = static_cast<double>(pair.at);
    return interpolated ? a + fraction * (static_cast<double>(pair.next) - a) : a;
  }
};

/// The percentile rule: position (n - 1) prob / 100 counted from 0 (Hyndman and Fan, Am. Stat. 50,
/// 1996, 361, definition 7). prob in percent, limited to 0..100, not NaN; n >= 1.
[[nodiscard]] inline OrderPosition percentilePosition(std::size_t n, double prob) {
  prob = std::clamp(prob, 0.0, 100.0);
  const double position = static_cast<double>(n - 1) * prob / 100;
  const double whole = std::trunc(position);
  const auto k = static_cast<std::size_t>(whole);
  // A prob just below 100 may round up to the last position.
  if (prob == 100 || k >= n - 1) return {n - 1};
  return {k, position - whole, true};
}

/// The quartile rule: position (n + 1) q counted from 1 (definition 6 there), limited to the
/// values. 0 <= q <= 1, n >= 1.
[[nodiscard]] inline OrderPosition quartilePosition(std::size_t n, double q) {
  const double position = static_cast<double>(n + 1) * q;
  const double whole = std::trunc(position);
  const auto k = static_cast<std::size_t>(whole);
  if (k < 1) return {0};
  if (k >= n) return {n - 1};
  return {k - 1, position - whole, true};
}

/// The rank rule, without interpolation: rank n prob / 100 counted from 0, rounded to the nearest,
/// ties to even, at most n - 1. prob in percent, limited to 0..100; NaN counts as 0; n >= 1.
[[nodiscard]] inline std::size_t percentileRank(std::size_t n, double prob) {
  const double rank = static_cast<double>(n) * std::clamp(prob, 0.0, 100.0) / 100;
  return std::min(n - 1, static_cast<std::size_t>(RoundToInt<std::int64_t>(rank)));
}

/// Percentile of sorted values by the percentile rule; 0 if there are none, NaN for a NaN prob.
template <class T>
[[nodiscard]] double percentileSorted(std::span<T> sorted, double prob) {
  if (sorted.empty()) return 0;
  if (std::isnan(prob)) return prob;
  const auto position = percentilePosition(sorted.size(), prob);
  const std::size_t next = std::min(position.k + 1, sorted.size() - 1);
  return position.value(SelectedPair<std::remove_const_t<T>>{sorted[position.k], sorted[next]});
}

/// The same of values in any order, in O(n); they are only read.
/// @throws std::bad_alloc
template <class T>
[[nodiscard]] double percentileBySelection(std::span<T> x, double prob) {
  if (x.empty()) return 0;
  if (std::isnan(prob)) return prob;
  const auto position = percentilePosition(x.size(), prob);
  return position.value(selectPair(x, position.k));
}

/// The same by the array sort of work, with its report after each pass.
template <class T, class PassHook>
[[nodiscard]] double percentileBySort(std::span<T> work, double prob, PassHook&& pass) {
  combSortFast(work, work.size(), true, pass);
  return percentileSorted(work, prob);
}

struct Quartiles {
  double q1 = 0;
  double q2 = 0;
  double q3 = 0;
};

/// Quartiles of sorted values by the quartile rule; 0 if there are none.
template <class T>
[[nodiscard]] Quartiles quartilesSorted(std::span<T> sorted) {
  if (sorted.empty()) return {};
  const auto at = [&](double q) {
    const auto position = quartilePosition(sorted.size(), q);
    const std::size_t next = std::min(position.k + 1, sorted.size() - 1);
    return position.value(SelectedPair<std::remove_const_t<T>>{sorted[position.k], sorted[next]});
  };
  return {at(0.25), at(0.5), at(0.75)};
}

/// The same of values in any order, in O(n); they are only read.
/// @throws std::bad_alloc
template <class T>
[[nodiscard]] Quartiles quartilesBySelection(std::span<T> x) {
  // Below this size one sort is faster than three selections.
  constexpr std::size_t kSortedSize = 2000;
  if (x.size() <= kSortedSize) {
    std::vector<std::remove_const_t<T>> work(x.begin(), x.end());
    combSortFast(std::span(work), work.size(), true);
    return quartilesSorted(std::span(work));
  }
  const auto at = [&](double q) {
    const auto position = quartilePosition(x.size(), q);
    return position.value(selectPair(x, position.k));
  };
  return {at(0.25), at(0.5), at(0.75)};
}

/// The same by the array sort of work, with its report after each pass.
template <class T, class PassHook>
[[nodiscard]] Quartiles quartilesBySort(std::span<T> work, PassHook&& pass) {
  combSortFast(work, work.size(), true, pass);
  return quartilesSorted(work);
}

/// Mode of sorted values: the most frequent one, the first among equally frequent ones (the
/// smallest if sorted ascending); 0 if there are none. A NaN equals nothing.
template <class T>
[[nodiscard]] std::remove_const_t<T> modeSorted(std::span<T> sorted) {
  if (sorted.empty()) return {};
  std::size_t mode = 0;
  std::size_t longest = 0;
  std::size_t run = 0;
  for (std::size_t i = 1; i < sorted.size(); ++i) {
    run = sorted[i] == sorted[i - 1] ? run + 1 : 0;
    if (run > longest) {
      longest = run;
      mode = i;
    }
  }
  return sorted[mode];
}

/// The same by the array sort of work, with its report after each pass.
template <class T, class PassHook>
[[nodiscard]] T modeBySort(std::span<T> work, PassHook&& pass) {
  combSortFast(work, work.size(), true, pass);
  return modeSorted(work);
}

}  // namespace zel::kernels
