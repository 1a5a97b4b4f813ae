/// @file
/// Comb sort with shrink factor 1.3, the one sort of the library (Dobosiewicz 1980; Lacey and Box,
/// Byte 16 (4), 1991, 315): a pass compares every pair (i, i + gap) from the front and exchanges
/// those out of order; the gap shrinks before each pass; passes with gap 1 repeat until one
/// exchanges nothing. Equal keys are never exchanged, and the sort is not stable. A NaN is neither
/// smaller nor larger than anything, so it is never exchanged; it ends up where earlier exchanges
/// left it, and the values around it need not be in order.
///
/// firstGap is the gap before the first shrink: the number of keys for an array sort, one less for
/// the sorts of containers. Fewer than two keys mean no pass at all.
#pragma once

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <span>
#include <type_traits>
#include <utility>

#include "zel/kernels/hooks.h"

namespace zel::kernels {

/// Gap of the next pass: the integer part of gap / 1.3, at least 1.
///
/// The same on every machine and exactly floor(10 gap / 13) below 2^53: one correctly rounded
/// division; the double 1.3 is off by 3.4e-17 relative, less than half a unit in the last place of
/// the quotient, so a multiple of 13 still gives its integer, and every other quotient is at least
/// 1/13 away from one.
[[nodiscard]] constexpr std::size_t combGap(std::size_t gap) {
  return std::max<std::size_t>(1, static_cast<std::size_t>(static_cast<double>(gap) / 1.3));
}

/// What a comparison step did.
enum class CombStep : std::uint8_t {
  Kept,       ///< the pair was in order
  Exchanged,  ///< the pair was exchanged
  Stop        ///< end the sort at once, without touching anything again
};

/// The passes over positions 0..n-1 for keys that the caller compares and moves himself.
/// @param step  CombStep(i, j), i < j: exchanges i and j if they are out of order
/// @param pass  called after each pass
/// @return number of passes; one that was stopped does not count
template <class Step, class PassHook = NoHook>
std::size_t combPasses(std::size_t n, std::size_t firstGap, Step&& step, PassHook&& pass = {}) {
  if (n < 2) return 0;
  std::size_t passes = 0;
  for (std::size_t gap = firstGap;;) {
    gap = combGap(gap);
    bool exchanged = false;
    for (std::size_t i = 0; gap < n - i; ++i) {
      const CombStep result = step(i, i + gap);
      if (result == CombStep::Stop) return passes;
      exchanged |= result == CombStep::Exchanged;
    }
    ++passes;
    pass();
    if (gap == 1 && !exchanged) return passes;
  }
}

/// Sorts keys of any type with operator< and reports each exchange.
/// @param exchange  called with the positions (i, i + gap) right after each exchange; if it returns
///   bool, false ends the sort at once and x is not touched again (a handler may have resized the
///   container), otherwise it returns void
/// @param pass  called after each pass
/// @return number of complete passes
template <class T, class ExchangeHook, class PassHook = NoHook>
std::size_t combSort(std::span<T> x, std::size_t firstGap, bool ascending, ExchangeHook&& exchange,
                     PassHook&& pass = {}) {
  const auto sort = [&](auto outOfOrder) {
    const auto step = [&](std::size_t i, std::size_t j) {
      if (!outOfOrder(x[i], x[j])) return CombStep::Kept;
      std::swap(x[i], x[j]);
      if constexpr (std::same_as<std::invoke_result_t<ExchangeHook&, std::size_t, std::size_t>,
                                 bool>) {
        if (!exchange(i, j)) return CombStep::Stop;
      } else {
        exchange(i, j);
      }
      return CombStep::Exchanged;
    };
    return combPasses(x.size(), firstGap, step, pass);
  };
  return ascending ? sort([](const T& low, const T& high) { return high < low; })
                   : sort([](const T& low, const T& high) { return low < high; });
}

/// Sorts keys and moves a companion of the same length by the same exchanges.
/// @return number of passes
template <class Key, class Companion, class PassHook = NoHook>
std::size_t combSortPairs(std::span<Key> keys, std::span<Companion> companion, std::size_t firstGap,
                          bool ascending, PassHook&& pass = {}) {
  const auto follow = [companion](std::size_t i, std::size_t j) {
    std::swap(companion[i], companion[j]);
  };
  return combSort(keys, firstGap, ascending, follow, pass);
}

/// Sorts keys and says where they came from: order[i] is the position before the sort, counted from
/// `first`, of the key that ends at i. order has the length of keys; what it held is overwritten.
/// @return number of passes
template <class Key, std::integral Index, class PassHook = NoHook>
std::size_t combSortOrder(std::span<Key> keys, std::span<Index> order, Index first,
                          std::size_t firstGap, bool ascending, PassHook&& pass = {}) {
  std::iota(order.begin(), order.end(), first);
  return combSortPairs(keys, order, firstGap, ascending, pass);
}

/// Call to make after each pass, without a type that the instruction sets would have to share.
struct PassReport {
  void (*call)(void* context) = nullptr;
  void* context = nullptr;
};

/// Sorts exactly like the plain passes, bit for bit (ties, signed zeros, infinities, NaN with its
/// payload), in a fraction of the time; see comb_sort_simd.cpp for how.
///
/// Passes are carried out together, so a report may come late, but there is one for each pass that
/// the plain sort makes, and x is a permutation of its keys whenever one is made. Data that would
/// need hundreds of passes with gap 1 is finished in O(n log n), with n indices of storage if they
/// can be had.
/// @return number of passes of the plain sort
std::size_t combSortFast(std::span<double> x, std::size_t firstGap, bool ascending,
                         PassReport report = {});
std::size_t combSortFast(std::span<float> x, std::size_t firstGap, bool ascending,
                         PassReport report = {});
std::size_t combSortFast(std::span<std::int32_t> x, std::size_t firstGap, bool ascending,
                         PassReport report = {});

/// The same with any callable as the pass hook.
template <class T, std::invocable PassHook>
std::size_t combSortFast(std::span<T> x, std::size_t firstGap, bool ascending, PassHook&& pass) {
  using Hook = std::remove_reference_t<PassHook>;
  if constexpr (std::same_as<std::remove_const_t<Hook>, NoHook>) {
    return combSortFast(x, firstGap, ascending);
  } else {
    const auto call = [](void* context) { static_cast<void>((*static_cast<Hook*>(context))()); };
    void* context = const_cast<void*>(static_cast<const void*>(std::addressof(pass)));
    return combSortFast(x, firstGap, ascending, PassReport{call, context});
  }
}

}  // namespace zel::kernels
