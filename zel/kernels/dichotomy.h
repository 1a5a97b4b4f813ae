/// @file
/// The two values of a dichotomous variable.
#pragma once

#include <cstddef>
#include <span>

namespace zel::kernels {

/// True if the values are exactly two distinct ones, which low < high take; else both are 0. -0
/// equals 0 (the first of them is reported). A not-a-number is no value: one among the others makes
/// the result false. One pass, which ends at the third value.
template <class T>
[[nodiscard]] bool dichotomous(std::span<const T> values, T& low, T& high) {
  low = high = T{};
  if (values.size() < 2) return false;
  const T first = values.front();
  std::size_t i = 1;
  while (i < values.size() && values[i] == first) ++i;
  if (i == values.size()) return false;
  // Here other differs from first; if either is not-a-number, neither order holds.
  const T other = values[i];
  if (!(first < other) && !(other < first)) return false;
  for (; i < values.size(); ++i) {
    if (values[i] != first && values[i] != other) return false;
  }
  low = first < other ? first : other;
  high = first < other ? other : first;
  return true;
}

}  // namespace zel::kernels
