/// @file
/// Insertion into lists of fixed length.
#pragma once

#include <algorithm>
#include <cstddef>
#include <span>

namespace zel::kernels {

/// Stores value at a position and shifts what follows one place up; the last element drops out. A
/// position outside the list does nothing.
template <class T>
void insertAt(std::span<T> list, T value, std::size_t position) {
  if (position >= list.size()) return;
  std::move_backward(list.begin() + static_cast<std::ptrdiff_t>(position), list.end() - 1, list.end());
  list[position] = value;
}

/// Merges value into a sorted list: before the first element that it does not exceed (ascending) or fall
/// below (descending).
/// @return the index where it is stored; -1, with nothing changed, if it belongs behind the last element
///   or equals one and duplicates are not allowed
/// Linear, like the shift: a binary search would find another place in a list that is not quite sorted.
template <class T>
std::ptrdiff_t mergeInto(std::span<T> list, T value, bool ascending, bool allowDuplicates) {
  if (list.empty()) return -1;
  const auto at = std::find_if(list.begin(), list.end() - 1, [&](T element) {
    return ascending ? value <= element : value >= element;
  });
  const bool beyond = ascending ? value > *at : value < *at;
  if (beyond || (value == *at && !allowDuplicates)) return -1;
  const std::ptrdiff_t index = at - list.begin();
  insertAt(list, value, static_cast<std::size_t>(index));
  return index;
}

}  // namespace zel::kernels
