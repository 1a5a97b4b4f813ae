#include "zel/kernels/window_means.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

#include "zel/kernels/scratch.h"
#include "zel/kernels/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "zel/kernels/window_means.cpp"
#include "hwy/foreach_target.h"  // IWYU pragma: keep
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace zel::kernels::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

#include "zel/kernels/double_double-inl.h"

constexpr std::size_t kBlocks = 8;

/// Between these widths the time does not grow with the width, and the sums lose nothing that
/// counts.
constexpr bool isByBlocks(std::size_t width) { return width >= 24 && width <= 4096; }

/// Values hi + lo; without lo they are plain numbers.
struct Values {
  const double* hi;
  const double* lo;
};

/// Calls body(d, i) for vectors that cover 0..n-1, the last ones of one lane.
template <class Body>
HWY_INLINE void forVectors(std::size_t n, Body&& body) {
  const hn::CappedTag<double, 8> d;
  const hn::CappedTag<double, 1> one;
  std::size_t i = 0;
  for (; i + hn::Lanes(d) <= n; i += hn::Lanes(d)) body(d, i);
  for (; i < n; ++i) body(one, i);
}

/// The low parts are only added up: they are errors, and errors of errors do not count.
template <bool kHasLow, class D>
HWY_INLINE void addTo(D d, Twofold<hn::Vec<D>>& sum, const double* hi, const double* lo) {
  const Twofold<hn::Vec<D>> s = twoSum(sum.hi, hn::LoadU(d, hi));
  sum.hi = s.hi;
  sum.lo = hn::Add(sum.lo, s.lo);
  if constexpr (kHasLow) sum.lo = hn::Add(sum.lo, hn::LoadU(d, lo));
}

/// Sums of 2 `width` values, or one more, from those of `width` values in hi and lo.
template <bool kHasLow, bool kOneMore>
void widen(const Values& x, std::size_t width, double* hi, double* lo, std::size_t n) {
  forVectors(n, [&](auto d, std::size_t i) HWY_ATTR {
    Twofold<hn::Vec<decltype(d)>> sum{hn::LoadU(d, hi + i), hn::LoadU(d, lo + i)};
    addTo<true>(d, sum, hi + i + width, lo + i + width);
    if constexpr (kOneMore) addTo<kHasLow>(d, sum, x.hi + i + 2 * width, x.lo + i + 2 * width);
    hn::StoreU(sum.hi, d, hi + i);
    hn::StoreU(sum.lo, d, lo + i);
  });
}

/// Sums of `width` values, from each of the first `count`, in place of hi and lo: these take
/// count + width - 1 numbers.
template <bool kHasLow>
void sumWindows(const Values& x, std::size_t width, double* hi, double* lo, std::size_t count) {
  // The width grows bit by bit from the highest; the sums that a later step needs shrink to count.
  int bit = static_cast<int>(std::bit_width(width)) - 1;
  std::size_t done = 1;
  std::size_t n = count + width - 1;
  std::copy_n(x.hi, n, hi);
  if constexpr (kHasLow) {
    std::copy_n(x.lo, n, lo);
  } else {
    std::fill_n(lo, n, 0.0);
  }
  while (bit-- > 0) {
    const std::size_t wider = width >> bit;
    n = count + width - wider;
    wider % 2 == 1 ? widen<kHasLow, true>(x, done, hi, lo, n)
                   : widen<kHasLow, false>(x, done, hi, lo, n);
    done = wider;
  }
}

/// The same for windows that start in as many whole groups of kBlocks blocks of `width` values as
/// there are; returns their number. Each window is the end of a block and the beginning of the next
/// (van Herk, Pattern Recogn. Lett. 13 (1992) 517); the lanes belong to neighbouring blocks.
/// @param ends  room for 2 kBlocks width numbers
template <bool kHasLow>
std::size_t sumBlocks(const Values& x, std::size_t width, double* hi, double* lo, std::size_t count,
                      double* ends) {
  const hn::CappedTag<double, kBlocks> d;
  using Vec = hn::Vec<decltype(d)>;
  constexpr std::size_t kLanes = hn::MaxLanes(hn::CappedTag<double, kBlocks>());
  constexpr std::size_t kVectors = kBlocks / kLanes;
  const hn::RebindToSigned<decltype(d)> di;
  const auto step = static_cast<std::int64_t>(width);
  const auto places =
      hn::Mul(hn::ConvertTo(d, hn::Iota(di, 0)), hn::Set(d, static_cast<double>(step)));
  const auto strides = hn::ConvertTo(di, places);
  const auto addAt = [&](Twofold<Vec>& sum, std::size_t v, std::size_t at) HWY_ATTR {
    const std::size_t from = at + v * kLanes * width;
    const Twofold<Vec> s = twoSum(sum.hi, hn::GatherIndex(d, x.hi + from, strides));
    sum.hi = s.hi;
    sum.lo = hn::Add(sum.lo, s.lo);
    if constexpr (kHasLow) sum.lo = hn::Add(sum.lo, hn::GatherIndex(d, x.lo + from, strides));
  };
  std::size_t done = 0;
  for (; done + kBlocks * width <= count; done += kBlocks * width) {
    Twofold<Vec> sums[kVectors];
    for (auto& sum : sums) sum = {hn::Zero(d), hn::Zero(d)};
    for (std::size_t o = width; o-- > 0;) {
      for (std::size_t v = 0; v < kVectors; ++v) {
        addAt(sums[v], v, done + o);
        double* const to = ends + 2 * (o * kBlocks + v * kLanes);
        hn::StoreU(sums[v].hi, d, to);
        hn::StoreU(sums[v].lo, d, to + kLanes);
      }
    }
    for (auto& sum : sums) sum = {hn::Zero(d), hn::Zero(d)};
    for (std::size_t o = 0; o < width; ++o) {
      for (std::size_t v = 0; v < kVectors; ++v) {
        const double* const from = ends + 2 * (o * kBlocks + v * kLanes);
        const Twofold<Vec> s = twoSum(hn::LoadU(d, from), sums[v].hi);
        const Vec low = hn::Add(hn::Add(s.lo, hn::LoadU(d, from + kLanes)), sums[v].lo);
        const std::size_t at = done + o + v * kLanes * width;
        hn::ScatterIndex(s.hi, d, hi + at, strides);
        hn::ScatterIndex(low, d, lo + at, strides);
        if (o + 1 < width) addAt(sums[v], v, done + width + o);
      }
    }
  }
  return done;
}

/// Sums of `width` values, the cheaper way.
template <bool kHasLow>
void sumAll(const Values& x, std::size_t width, double* hi, double* lo, std::size_t count,
            double* ends) {
  const std::size_t done =
      isByBlocks(width) ? sumBlocks<kHasLow>(x, width, hi, lo, count, ends) : 0;
  if (done == count) return;
  sumWindows<kHasLow>({x.hi + done, x.lo + done}, width, hi + done, lo + done, count - done);
}

/// Sums over the windows that start at the first `count` of x.
Values sumTile(const double* x, std::size_t width, WindowShape shape, double* work,
               std::size_t length, std::size_t count) {
  double* const hi = work;
  double* const lo = work + length;
  double* const ends = work + 5 * length;
  if (shape == WindowShape::flat) {
    sumAll<false>({x, x}, width, hi, lo, count, ends);
    return {hi, lo};
  }
  sumAll<false>({x, x}, width, hi, lo, count + width - 1, ends);
  double* const hi2 = work + 2 * length;
  double* const lo2 = work + 3 * length;
  sumAll<true>({hi, lo}, width, hi2, lo2, count, ends);
  return {hi2, lo2};
}

/// (hi + lo) / divisor with about 100 bits, rounded.
template <class V>
HWY_INLINE V quotient(Twofold<V> sum, V divisor) {
  const V q = over(sum.hi, divisor);
  const Twofold<V> back = twoProduct(q, divisor);
  const V rest = plus(minus(minus(sum.hi, back.hi), back.lo), sum.lo);
  return plus(q, over(rest, divisor));
}

/// The means; false if one is not finite.
bool divide(const Values& sums, double divisor, double* out, std::size_t count) {
  bool isFinite = true;
  forVectors(count, [&](auto d, std::size_t i) HWY_ATTR {
    const auto mean = quotient<hn::Vec<decltype(d)>>(
        {hn::LoadU(d, sums.hi + i), hn::LoadU(d, sums.lo + i)}, hn::Set(d, divisor));
    hn::StoreU(mean, d, out + i);
    isFinite &= hn::AllTrue(d, hn::IsFinite(mean));
  });
  return isFinite;
}

/// The windows of a tile that are not finite once more, from values made so small that no sum
/// overflows.
void repeatScaled(const double* x, std::size_t width, WindowShape shape, double divisor,
                  double* work, std::size_t length, double* out, std::size_t count) {
  constexpr double kSmall = 0x1p-64;
  double* const scaled = work + 4 * length;
  const std::size_t used = count + windowLength(width, shape) - 1;
  for (std::size_t i = 0; i < used; ++i) scaled[i] = x[i] * kSmall;
  const Values sums = sumTile(scaled, width, shape, work, length, count);
  constexpr double kMost = std::numeric_limits<double>::max() * kSmall;
  for (std::size_t i = 0; i < count; ++i) {
    if (std::isfinite(out[i])) continue;
    const double mean = quotient<double>({sums.hi[i], sums.lo[i]}, divisor);
    out[i] = std::isfinite(mean) ? std::clamp(mean, -kMost, kMost) / kSmall : sums.hi[i];
  }
}

void meansOfTile(const double* x, std::size_t width, WindowShape shape, double divisor,
                 double* work, std::size_t length, double* out, std::size_t count) {
  const Values sums = sumTile(x, width, shape, work, length, count);
  if (divide(sums, divisor, out, count)) return;
  repeatScaled(x, width, shape, divisor, work, length, out, count);
}

}  // namespace
}  // namespace zel::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zel::kernels {

HWY_EXPORT(meansOfTile);

void windowMeans(std::span<const double> x, std::size_t width, WindowShape shape, double* out) {
  const std::size_t more = windowLength(width, shape) - 1;
  if (x.size() <= more) return;
  const std::size_t count = x.size() - more;
  // The sums of a tile stay in the cache; what neighbouring tiles compute twice stays small.
  constexpr std::size_t kTile = 512;
  const std::size_t tile = std::min(count, std::max(kTile, 8 * width));
  const std::size_t length = tile + more;
  const Scratch work(5 * length + 16 * width);
  const auto w = static_cast<double>(width);
  const double divisor = shape == WindowShape::flat ? w : w * w;
  for (std::size_t at = 0; at < count; at += tile) {
    HWY_DYNAMIC_DISPATCH(meansOfTile)
    (x.data() + at, width, shape, divisor, work.data(), length, out + at,
     std::min(tile, count - at));
  }
}

}  // namespace zel::kernels
#endif
