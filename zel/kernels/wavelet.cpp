#include "zel/kernels/wavelet.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <type_traits>

namespace zel::kernels {
namespace {

/// A tap of the filter as two doubles, which together hold the 64 bits of its significand: loading
/// and adding them is much cheaper than loading one 80-bit number, which the processor does in
/// microcode.
class SplitTap {
 public:
  SplitTap() = default;
  explicit SplitTap(Extended value)
      : FHigh(static_cast<double>(value)), FLow(static_cast<double>(value - FHigh)) {}
  [[nodiscard, gnu::always_inline]] Extended operator()() const {
#if defined(__GNUC__)
    // Made anew for each use: the eight registers are for the sums and the samples.
    asm volatile("" : : : "memory");
#endif
    return Extended{FHigh} + FLow;
  }

 private:
  double FHigh = 0;
  double FLow = 0;
};

/// Where the extended type has other digits, or the same as double.
class PlainTap {
 public:
  PlainTap() = default;
  explicit PlainTap(Extended value) : FValue(value) {}
  Extended operator()() const { return FValue; }

 private:
  Extended FValue = 0;
};

using Tap = std::conditional_t<std::numeric_limits<Extended>::digits == 64, SplitTap, PlainTap>;

/// The low-pass taps as K pairs. A step back is a step whose even taps come in reverse order: from
/// approximation and detail it makes an even and an odd value, as the step makes those from these.
template <std::size_t K>
struct Taps {
  struct Pair {
    Tap even, odd;
  };
  std::array<Pair, K> pairs;
  Taps(std::span<const Extended> h, bool isBack) {
    for (std::size_t q = 0; q < K; ++q) {
      pairs[q] = {Tap(h[2 * (isBack ? K - 1 - q : q)]), Tap(h[2 * q + 1])};
    }
  }
};

/// The sums that are under way, the oldest first: K - 1 approximations and details, or pairs of
/// restored neighbours.
template <std::size_t K>
struct Sums {
  std::array<Extended, K - 1> first{};
  std::array<Extended, K - 1> second{};

  /// Drops the oldest.
  [[gnu::always_inline]] void shift(Extended newFirst, Extended newSecond) {
    for (std::size_t k = 0; k + 2 < K; ++k) {
      first[k] = first[k + 1];
      second[k] = second[k + 1];
    }
    first[K - 2] = newFirst;
    second[K - 2] = newSecond;
  }
};

template <>
struct Sums<1> {};

/// Two neighbouring samples are loaded once and go into all K approximations and details that they
/// are part of; the oldest are complete then. On the way back the samples are an approximation and
/// a detail. The order leaves no more than eight numbers alive.
template <std::size_t K>
[[gnu::always_inline]] inline void step(const Taps<K>& taps, Sums<K>& sums, Extended even,
                                        Extended odd, Extended* approximation, Extended* detail) {
  const auto& [evenTap, oddTap] = taps.pairs[0];
  if constexpr (K == 1) {
    *approximation = evenTap() * even + oddTap() * odd;
    *detail = oddTap() * even - evenTap() * odd;
  } else {
    auto& low = sums.first;
    auto& high = sums.second;
    const auto& [lastEven, lastOdd] = taps.pairs[K - 1];
    Extended tap = lastEven();
    low[0] += tap * even;
    const Extended negative = tap * odd;
    *approximation = low[0] + lastOdd() * odd;
    const Extended newHigh = lastOdd() * even - negative;
    tap = evenTap();
    const Extended first = tap * even;
    high[0] -= tap * odd;
    *detail = high[0] + oddTap() * even;
    const Extended newLow = first + oddTap() * odd;
    if constexpr (K == 3) {
      tap = taps.pairs[1].even();
      low[1] += tap * even;
      high[1] -= tap * odd;
      tap = taps.pairs[1].odd();
      low[1] += tap * odd;
      high[1] += tap * even;
    }
    sums.shift(newLow, newHigh);
  }
}

/// Index in a block of n values of the one that counts as `before` places before its start.
std::size_t indexBefore(std::size_t before, std::size_t n, BlockStart start) {
  return start == BlockStart::isMirrored ? (before - 1) % n : (n - before % n) % n;
}

template <std::size_t K>
void forward(std::span<Extended> x, std::span<const Extended> lowPass, BlockStart start,
             std::span<Extended> details) {
  const Taps<K> taps(lowPass, false);
  Sums<K> sums;
  for (std::size_t before = 2 * (K - 1); before > 0; before -= 2) {
    const auto sample = [&](std::size_t b) {
      return start == BlockStart::isZero ? Extended{0} : x[indexBefore(b, x.size(), start)];
    };
    Extended unused = 0;
    step(taps, sums, sample(before), sample(before - 1), &unused, &unused);
  }
  // The approximations replace samples that have been read.
  const std::size_t half = x.size() / 2;
  for (std::size_t i = 0; i < half; ++i) {
    step(taps, sums, x[2 * i], x[2 * i + 1], &x[i], &details[i]);
  }
  std::copy_n(details.begin(), half, x.begin() + static_cast<std::ptrdiff_t>(half));
}

template <std::size_t K>
void inverse(std::span<Extended> x, std::span<const Extended> lowPass, BlockStart start,
             std::span<Extended> approximations) {
  constexpr std::size_t kLag = K - 1;
  const Taps<K> taps(lowPass, true);
  Sums<K> sums;
  const std::size_t half = x.size() / 2;
  std::copy_n(x.begin(), half, approximations.begin());
  // The first pairs fall before the start.
  std::array<Extended, 2 * K> before{};
  for (std::size_t i = 0; i < kLag; ++i) {
    const bool exists = i < half;
    step(taps, sums, exists ? approximations[i] : 0, exists ? x[half + i] : 0, &before[2 * i],
         &before[2 * i + 1]);
  }
  // The others replace approximations, which are in the scratch, and details that have been read.
  for (std::size_t i = kLag; i < half; ++i) {
    Extended* const pair = &x[2 * (i - kLag)];
    step(taps, sums, approximations[i], x[half + i], pair, pair + 1);
  }
  for (std::size_t i = std::max(half, kLag); i < half + kLag; ++i) {
    Extended* const pair = &x[2 * (i - kLag)];
    step<K>(taps, sums, 0, 0, pair, pair + 1);
  }
  if (start == BlockStart::isZero) return;
  for (std::size_t k = 0; k < 2 * kLag; ++k) {
    x[indexBefore(2 * kLag - k, x.size(), start)] += before[k];
  }
}

template <class Run>
void withOrder(std::size_t taps, Run&& run) {
  using std::integral_constant;
  switch (taps) {
    case 2:
      return run(integral_constant<std::size_t, 1>{});
    case 4:
      return run(integral_constant<std::size_t, 2>{});
    default:
      return run(integral_constant<std::size_t, 3>{});
  }
}

}  // namespace

void waveletForward(std::span<Extended> block, std::span<const Extended> lowPass, BlockStart start,
                    std::span<Extended> scratch) {
  if (block.size() < 2) return;
  withOrder(lowPass.size(),
            [&](auto order) { forward<order.value>(block, lowPass, start, scratch); });
}

void waveletInverse(std::span<Extended> block, std::span<const Extended> lowPass, BlockStart start,
                    std::span<Extended> scratch) {
  if (block.size() < 2) return;
  withOrder(lowPass.size(),
            [&](auto order) { inverse<order.value>(block, lowPass, start, scratch); });
}

}  // namespace zel::kernels
