#include "zel/kernels/minmax.h"

#include <algorithm>

#include "zel/kernels/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "zel/kernels/minmax.cpp"
#include "hwy/foreach_target.h"  // IWYU pragma: keep
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace zel::kernels::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// Small enough that the second look at the winning block costs nothing beside the pass.
constexpr std::size_t kBlock = 1024;

/// Position of the first element from `from` on that equals the value; there is one.
template <class T>
std::size_t firstEqual(const T* x, std::size_t from, std::size_t to, T value) {
  const hn::ScalableTag<T> d;
  const auto wanted = hn::Set(d, value);
  for (; from + hn::Lanes(d) <= to; from += hn::Lanes(d)) {
    const std::intptr_t lane = hn::FindFirstTrue(d, hn::Eq(hn::LoadU(d, x + from), wanted));
    if (lane >= 0) return from + static_cast<std::size_t>(lane);
  }
  while (x[from] != value) ++from;
  return from;
}

template <class T>
void findMinMax(const T* x, std::size_t n, MinMax<T>& result) {
  const hn::ScalableTag<T> d;
  const std::size_t lanes = hn::Lanes(d);
  std::size_t minBlock = kNoIndex;
  std::size_t maxBlock = kNoIndex;
  T minimum = result.minimum;
  T maximum = result.maximum;
  for (std::size_t from = 0; from < n; from += kBlock) {
    const std::size_t to = HWY_MIN(n, from + kBlock);
    auto low0 = hn::Set(d, minimum), low1 = low0;
    auto high0 = hn::Set(d, maximum), high1 = high0;
    std::size_t i = from;
    for (; i + 2 * lanes <= to; i += 2 * lanes) {
      const auto a = hn::LoadU(d, x + i);
      const auto b = hn::LoadU(d, x + i + lanes);
      // Comparisons and not Min and Max, which treat not-a-number differently on different
      // machines.
      low0 = hn::IfThenElse(hn::Lt(a, low0), a, low0);
      low1 = hn::IfThenElse(hn::Lt(b, low1), b, low1);
      high0 = hn::IfThenElse(hn::Gt(a, high0), a, high0);
      high1 = hn::IfThenElse(hn::Gt(b, high1), b, high1);
    }
    T low = hn::GetLane(hn::MinOfLanes(d, hn::Min(low0, low1)));
    T high = hn::GetLane(hn::MaxOfLanes(d, hn::Max(high0, high1)));
    for (; i < to; ++i) {
      low = x[i] < low ? x[i] : low;
      high = x[i] > high ? x[i] : high;
    }
    // Only a strictly better value moves the search to a later block, so the first occurrence wins.
    if (low < minimum) {
      minimum = low;
      minBlock = from;
    }
    if (high > maximum) {
      maximum = high;
      maxBlock = from;
    }
  }
  if (minBlock != kNoIndex) {
    result.minIndex = firstEqual(x, minBlock, HWY_MIN(n, minBlock + kBlock), minimum);
    result.minimum = x[result.minIndex];
  }
  if (maxBlock != kNoIndex) {
    result.maxIndex = firstEqual(x, maxBlock, HWY_MIN(n, maxBlock + kBlock), maximum);
    result.maximum = x[result.maxIndex];
  }
}

void findMinMaxDouble(const double* x, std::size_t n, MinMax<double>& result) {
  findMinMax(x, n, result);
}
void findMinMaxInt(const std::int32_t* x, std::size_t n, MinMax<std::int32_t>& result) {
  findMinMax(x, n, result);
}

}  // namespace
}  // namespace zel::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zel::kernels {

HWY_EXPORT(findMinMaxDouble);
HWY_EXPORT(findMinMaxInt);

MinMax<double> minMax(std::span<const double> x, MinMaxStart<double> start) {
  MinMax<double> result{start.minimum, start.maximum};
  HWY_DYNAMIC_DISPATCH(findMinMaxDouble)(x.data(), x.size(), result);
  return result;
}

MinMax<std::int32_t> minMax(std::span<const std::int32_t> x, MinMaxStart<std::int32_t> start) {
  MinMax<std::int32_t> result{start.minimum, start.maximum};
  HWY_DYNAMIC_DISPATCH(findMinMaxInt)(x.data(), x.size(), result);
  return result;
}

}  // namespace zel::kernels
#endif
