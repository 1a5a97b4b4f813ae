/// @file
/// The comb sort of keys that says where each key came from.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "zel/kernels/comb_sort.h"

namespace zel::kernels {

/// Sorts keys exactly like combSortOrder (counted from 0), the places of equal keys included. Data
/// that would need hundreds of passes with gap 1 is finished in O(n log n), with storage for the
/// keys if it can be had.
/// @param order  of the length of keys; what it held is overwritten
void combOrderFast(std::span<double> keys, std::span<std::uint64_t> order, std::size_t firstGap,
                   bool ascending);

/// The same for other keys, pass by pass.
template <class Key>
void combOrderFast(std::span<Key> keys, std::span<std::uint64_t> order, std::size_t firstGap,
                   bool ascending) {
  combSortOrder(keys, order, std::uint64_t{0}, firstGap, ascending);
}

}  // namespace zel::kernels
