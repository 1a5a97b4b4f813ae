// If no two keys are equal, the places do not depend on the way that the sort takes, and a radix
// sort finds them. Otherwise keys and places are exchanged together, a vector of steps at a time
// while the gap has at least its lanes: those steps touch different positions, so they may be done
// at once.

#include "zel/kernels/comb_order.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <new>
#include <numeric>
#include <utility>
#include <vector>

#include "zel/kernels/comb_finish.h"

#include "zel/kernels/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "zel/kernels/comb_order.cpp"
#include "hwy/foreach_target.h"
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace zel::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// Steps i.. of a pass, as many as there are lanes.
template <bool kAscending, class D>
HWY_INLINE void orderSteps(D d, double* keys, std::uint64_t* order, std::size_t gap) {
  const hn::RebindToUnsigned<D> places;
  const auto a = hn::LoadU(d, keys);
  const auto b = hn::LoadU(d, keys + gap);
  const auto out = kAscending ? hn::Lt(b, a) : hn::Lt(a, b);
  if (hn::AllFalse(d, out)) return;
  const auto from = hn::LoadU(places, order);
  const auto to = hn::LoadU(places, order + gap);
  const auto moved = hn::RebindMask(places, out);
  hn::StoreU(hn::IfThenElse(out, b, a), d, keys);
  hn::StoreU(hn::IfThenElse(out, a, b), d, keys + gap);
  hn::StoreU(hn::IfThenElse(moved, to, from), places, order);
  hn::StoreU(hn::IfThenElse(moved, from, to), places, order + gap);
}

// A whole pass; whether a pass with gap 1 exchanged anything.
template <bool kAscending>
bool orderPass(double* keys, std::uint64_t* order, std::size_t n, std::size_t gap) {
  const hn::ScalableTag<double> d;
  constexpr std::size_t kLanes = HWY_LANES(double);
  std::size_t i = 0;
  if (gap > 1 && gap >= kLanes) {
    for (; i + kLanes <= n - gap; i += kLanes) {
      orderSteps<kAscending>(d, keys + i, order + i, gap);
    }
  }
  bool exchanged = false;
  for (; i < n - gap; ++i) {
    const double a = keys[i];
    const double b = keys[i + gap];
    if (!(kAscending ? b < a : a < b)) continue;
    exchanged = true;
    keys[i] = b;
    keys[i + gap] = a;
    std::swap(order[i], order[i + gap]);
  }
  return exchanged;
}

// The passes up to `ones` passes with gap 1; whether the sort is done.
template <bool kAscending>
bool orderPassesFrom(double* keys, std::uint64_t* order, std::size_t n, std::size_t gap,
                     std::size_t ones) {
  for (gap = combGap(gap); gap > 1; gap = combGap(gap)) {
    if (gap < n) orderPass<kAscending>(keys, order, n, gap);
  }
  for (; ones > 0; --ones) {
    if (!orderPass<kAscending>(keys, order, n, 1)) return true;
  }
  return false;
}

bool orderPasses(double* keys, std::uint64_t* order, std::size_t n, std::size_t gap, bool ascending,
                 std::size_t ones) {
  return ascending ? orderPassesFrom<true>(keys, order, n, gap, ones)
                   : orderPassesFrom<false>(keys, order, n, gap, ones);
}

}  // namespace zel::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zel::kernels {

HWY_EXPORT(orderPasses);

namespace {

// After so many passes with gap 1 a stable sort is cheaper than to go on.
constexpr std::size_t kManyOnes = 64;

// From this length the radix sort is worth its tables.
constexpr std::size_t kRadixSize = 512;
constexpr std::size_t kMostRadixKeys = 0xFFFFFFFF;

/// A key whose order is that of an unsigned integer, and where it was.
struct Placed {
  std::uint64_t key;
  std::uint64_t place;
};

/// The order of a number among all numbers but NaN; -0 is 0.
std::uint64_t orderedBits(double x) {
  const auto bits = std::bit_cast<std::uint64_t>(x + 0.0);
  return bits >> 63 != 0 ? ~bits : bits | std::uint64_t{1} << 63;
}

/// One stable pass of a radix sort by the eleven bits from `shift` on.
void radixPass(const std::vector<Placed>& from, std::vector<Placed>& to, int shift) {
  constexpr std::size_t kBuckets = 2048;
  std::array<std::uint32_t, kBuckets> next{};
  const auto bucket = [shift](const Placed& item) { return (item.key >> shift) % kBuckets; };
  for (const Placed& item : from) ++next[bucket(item)];
  std::uint32_t begin = 0;
  for (std::uint32_t& count : next) begin += std::exchange(count, begin);
  for (const Placed& item : from) to[next[bucket(item)]++] = item;
}

/// Sorts by insertion where few keys are far from their places; false, with the keys in some other
/// order, if they are not.
bool sortByInsertion(std::vector<Placed>& items) {
  std::size_t moves = 8 * items.size();
  for (std::size_t i = 1; i < items.size(); ++i) {
    const Placed item = items[i];
    std::size_t k = i;
    for (; k > 0 && item.key < items[k - 1].key; --k) {
      items[k] = items[k - 1];
      if (--moves == 0) {
        items[k - 1] = item;
        return false;
      }
    }
    items[k] = item;
  }
  return true;
}

/// Sorts keys that all differ; false, with nothing changed, if two are equal or one is NaN.
/// @throws std::bad_alloc  with nothing changed
bool sortDistinct(std::span<double> keys, std::span<std::uint64_t> order, bool ascending) {
  const std::size_t n = keys.size();
  std::vector<Placed> items(n);
  std::vector<Placed> room(n);
  for (std::size_t i = 0; i < n; ++i) {
    if (std::isnan(keys[i])) return false;
    const std::uint64_t bits = orderedBits(keys[i]);
    items[i] = {ascending ? bits : ~bits, i};
  }
  // The upper half of the bits nearly does it, unless the keys agree in all of them.
  for (const int shift : {31, 42, 53}) {
    radixPass(items, room, shift);
    items.swap(room);
  }
  if (!sortByInsertion(items)) {
    for (const int shift : {0, 11, 22, 33, 44, 55}) {
      radixPass(items, room, shift);
      items.swap(room);
    }
  }
  for (std::size_t i = 1; i < n; ++i) {
    if (items[i].key == items[i - 1].key) return false;
  }
  for (std::size_t i = 0; i < n; ++i) {
    order[i] = items[i].place;
    room[i].key = std::bit_cast<std::uint64_t>(keys[items[i].place]);
  }
  for (std::size_t i = 0; i < n; ++i) keys[i] = std::bit_cast<double>(room[i].key);
  return true;
}

}  // namespace

void combOrderFast(std::span<double> keys, std::span<std::uint64_t> order, std::size_t firstGap,
                   bool ascending) {
  const std::size_t n = keys.size();
  try {
    if (n >= kRadixSize && n <= kMostRadixKeys && sortDistinct(keys, order, ascending)) return;
  } catch (const std::bad_alloc&) {
    // The passes need no storage.
  }
  std::iota(order.begin(), order.end(), std::uint64_t{0});
  if (n < 2) return;
  const auto passes = HWY_DYNAMIC_DISPATCH(orderPasses);
  if (passes(keys.data(), order.data(), n, firstGap, ascending, kManyOnes)) return;
  try {
    finishByStableSort(keys, ascending, order);
  } catch (const std::bad_alloc&) {
    while (!passes(keys.data(), order.data(), n, 1, ascending, kManyOnes)) {
    }
  }
}

}  // namespace zel::kernels
#endif
