// Keys and their places are exchanged together, a vector of steps at a time while the gap has at
// least its lanes: those steps touch different positions, so they may be done at once.

#include "zel/kernels/comb_order.h"

#include <algorithm>
#include <new>
#include <numeric>
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
  if (gap >= kLanes) {
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

}  // namespace

void combOrderFast(std::span<double> keys, std::span<std::uint64_t> order, std::size_t firstGap,
                   bool ascending) {
  const std::size_t n = keys.size();
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
