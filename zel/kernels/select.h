/// @file
/// Selection: values at sorted positions without a sort, in O(n) on average whatever the order of
/// the keys and however many are equal, O(n log n) at worst. Positions count from 0.
///
/// If a NaN is among the keys, the result is what the comb sort of the array (combSortFast with
/// firstGap n) puts at the position. Zeros of either sign are equal: which of them stands at a
/// position among zeros is not the sort's choice but any.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace zel::kernels {

/// Values at the sorted positions k and k + 1; if k is the last position, both are its value.
template <class T>
struct SelectedPair {
  T at{};
  T next{};
};

/// Reads x only; from a few thousand keys on the storage is a small part of x.
/// @param k  limited to the positions of x; an empty x gives zeros
/// @throws std::bad_alloc
/// Method: two elements of a sorted random sample bracket the position with high probability; one
/// pass counts the keys on both sides and keeps those between, and so on with these (Floyd and
/// Rivest, Comm. ACM 18, 1975, 165).
SelectedPair<double> selectPair(std::span<const double> x, std::size_t k);
SelectedPair<float> selectPair(std::span<const float> x, std::size_t k);
SelectedPair<std::int32_t> selectPair(std::span<const std::int32_t> x, std::size_t k);

/// Rearranges x such that x[k] is the value of the sorted position k, no key before it is larger
/// and none after it smaller; returns x[k]. If all keys are equal, x is not touched.
/// @param k  limited to the positions of x; an empty x gives 0
/// Does not throw; without storage it is slower.
double quickSelect(std::span<double> x, std::size_t k);
float quickSelect(std::span<float> x, std::size_t k);
std::int32_t quickSelect(std::span<std::int32_t> x, std::size_t k);

/// One step of selectPair: the pair if low and high, keys of x or its limits, enclose both of its
/// positions.
enum class Bracketing { Found, Missed, Unordered };
template <class T>
Bracketing selectBetween(std::span<const T> x, std::size_t k, T low, T high, std::span<T> room,
                         SelectedPair<T>& pair);

}  // namespace zel::kernels
