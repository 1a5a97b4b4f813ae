/// @file
/// Lists of fixed length that keep the best values seen so far in order.
#pragma once

#include <algorithm>
#include <cstddef>
#include <span>
#include <type_traits>

#include "zel/kernels/search.h"

namespace zel::kernels {

/// Moves the values from `position` on one place up, dropping the last, and stores `value` there.
/// @return false, and nothing happens, if the position is not in the list
template <class T>
bool insertAt(std::span<T> list, const std::type_identity_t<T>& value, std::size_t position) {
  if (position >= list.size()) return false;
  const T kept = value;  // it may be one of the list
  const auto at = list.begin() + static_cast<std::ptrdiff_t>(position);
  std::move_backward(at, list.end() - 1, list.end());
  *at = kept;
  return true;
}

/// Place of `value` in a list sorted in the given direction: the first that it does not come after,
/// or the last. npos if it comes after all values, or if it equals the one at its place and
/// duplicates are not allowed.
///
/// Binary search. A NaN comes after nothing, so one takes the last place; a list that ends with a
/// NaN is searched from the front, which finds the first such place whatever the list holds.
template <class T>
[[nodiscard]] std::size_t placeInSorted(std::span<const T> list,
                                        const std::type_identity_t<T>& value, bool ascending,
                                        bool allowDuplicates) {
  if (list.empty()) return npos;
  const auto comesLater = [&](const T& other) {
    return ascending ? !(value <= other) : !(value >= other);
  };
  const bool ordered = list.back() == list.back();
  const auto place = ordered ? std::partition_point(list.begin(), list.end(), comesLater)
                             : std::find_if_not(list.begin(), list.end(), comesLater);
  const auto at = std::min(static_cast<std::size_t>(place - list.begin()), list.size() - 1);
  const T& other = list[at];
  if (ascending ? value > other : value < other) return npos;
  if (value == other && !allowDuplicates) return npos;
  return at;
}

/// Merges `value` into a sorted list of fixed length; the last value drops out.
/// @return its place, or npos and the list untouched, as placeInSorted
template <class T>
std::size_t sortInto(std::span<T> list, const std::type_identity_t<T>& value, bool ascending,
                     bool allowDuplicates) {
  const std::size_t place =
      placeInSorted(std::span<const T>(list), value, ascending, allowDuplicates);
  insertAt(list, value, place);
  return place;
}

}  // namespace zel::kernels
