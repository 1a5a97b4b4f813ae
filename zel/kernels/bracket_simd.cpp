#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

#include "zel/kernels/bracket.h"

#include "zel/kernels/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "zel/kernels/bracket_simd.cpp"
#include "hwy/foreach_target.h"
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace zel::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// Counts lanes by subtracting masks, which are -1 where true.
template <class DI, class D, class M>
HWY_INLINE hn::Vec<DI> countLanes(DI di, D d, hn::Vec<DI> count, M mask) {
  return hn::Sub(count, hn::BitCast(di, hn::VecFromMask(d, mask)));
}

template <class DI>
HWY_INLINE std::size_t total(DI di, hn::Vec<DI> count) {
  return static_cast<std::size_t>(hn::GetLane(hn::SumOfLanes(di, count)));
}

// No branch depends on a key, since which keys are inside is as good as random. Inside keys are
// rare, so they are collected in two steps: vectors that hold any, then their keys.
template <class T>
BracketCounts place(std::span<const T> x, T low, T high, std::span<T> inside) {
  // Also the most that a 32-bit lane has to count.
  constexpr std::size_t kChunk = kBracketSlack - 1;
  const hn::ScalableTag<T> d;
  const hn::RebindToSigned<decltype(d)> di;
  const std::size_t lanes = hn::Lanes(d);
  const auto lowLanes = hn::Set(d, low);
  const auto highLanes = hn::Set(d, high);
  std::uint32_t hit[kChunk];
  BracketCounts counts;
  std::size_t aboveLow = 0;
  std::size_t belowHigh = 0;
  for (std::size_t begin = 0; begin < x.size(); begin += kChunk) {
    const std::size_t end = std::min(x.size(), begin + kChunk);
    if (inside.size() - counts.inside < kBracketSlack) {
      counts.overflow = true;
      return counts;
    }
    auto below = hn::Zero(di);
    auto above = hn::Zero(di);
    auto moreThanLow = hn::Zero(di);
    auto lessThanHigh = hn::Zero(di);
    auto unordered = hn::Zero(di);
    std::size_t hits = 0;
    std::size_t i = begin;
    for (; i + lanes <= end; i += lanes) {
      const auto keys = hn::LoadU(d, x.data() + i);
      const auto overLow = hn::Lt(lowLanes, keys);
      const auto underHigh = hn::Lt(keys, highLanes);
      below = countLanes(di, d, below, hn::Lt(keys, lowLanes));
      above = countLanes(di, d, above, hn::Lt(highLanes, keys));
      moreThanLow = countLanes(di, d, moreThanLow, overLow);
      lessThanHigh = countLanes(di, d, lessThanHigh, underHigh);
      unordered = countLanes(di, d, unordered, hn::Not(hn::Eq(keys, keys)));
      hit[hits] = static_cast<std::uint32_t>(i - begin);
      hits += !hn::AllFalse(d, hn::And(overLow, underHigh));
    }
    std::size_t found = counts.inside;
    for (std::size_t h = 0; h < hits; ++h) {
      const T* const keys = x.data() + begin + hit[h];
      for (std::size_t lane = 0; lane < lanes; ++lane) {
        inside[found] = keys[lane];
        found += (low < keys[lane]) & (keys[lane] < high);
      }
    }
    counts.below += total(di, below);
    counts.above += total(di, above);
    aboveLow += total(di, moreThanLow);
    belowHigh += total(di, lessThanHigh);
    counts.unordered |= total(di, unordered) > 0;
    for (; i < end; ++i) {
      const T key = x[i];
      counts.below += key < low;
      counts.above += high < key;
      aboveLow += low < key;
      belowHigh += key < high;
      counts.unordered |= key != key;
      inside[found] = key;
      found += low < key && key < high;
    }
    counts.inside = found;
    if (counts.unordered) return counts;
  }
  counts.atLow = x.size() - counts.below - aboveLow;
  counts.atHigh = low == high ? 0 : x.size() - counts.above - belowHigh;
  return counts;
}

BracketCounts placeDoubles(std::span<const double> x, double low, double high,
                           std::span<double> inside) {
  return place(x, low, high, inside);
}
BracketCounts placeFloats(std::span<const float> x, float low, float high,
                          std::span<float> inside) {
  return place(x, low, high, inside);
}
BracketCounts placeIntegers(std::span<const std::int32_t> x, std::int32_t low, std::int32_t high,
                            std::span<std::int32_t> inside) {
  return place(x, low, high, inside);
}

}  // namespace zel::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zel::kernels {

HWY_EXPORT(placeDoubles);
HWY_EXPORT(placeFloats);
HWY_EXPORT(placeIntegers);

BracketCounts placeKeys(std::span<const double> x, double low, double high,
                        std::span<double> inside) {
  return HWY_DYNAMIC_DISPATCH(placeDoubles)(x, low, high, inside);
}
BracketCounts placeKeys(std::span<const float> x, float low, float high, std::span<float> inside) {
  return HWY_DYNAMIC_DISPATCH(placeFloats)(x, low, high, inside);
}
BracketCounts placeKeys(std::span<const std::int32_t> x, std::int32_t low, std::int32_t high,
                        std::span<std::int32_t> inside) {
  return HWY_DYNAMIC_DISPATCH(placeIntegers)(x, low, high, inside);
}

}  // namespace zel::kernels
#endif
