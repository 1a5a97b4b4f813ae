// Sixteen lanes of doubles over vectors of any width, for the sources of the sums. Included once
// per instruction set inside its namespace, after double_double-inl.h.

// Sixteen lanes whatever the width of a vector: lane i takes the elements with index i modulo 16.
constexpr std::size_t kSumLanes = 16;
// After this many elements per lane the running sums are folded into a double-double, which bounds
// the error that plain sums of small parts pick up. A run also stays in the first-level cache when
// it is read more than once.
constexpr std::size_t kRunSteps = 128;
constexpr std::size_t kRunElements = kRunSteps * kSumLanes;
// Far enough to hide the latency of memory, near enough to stay in the first-level cache.
constexpr std::size_t kPrefetchElements = 256;

using LaneTag = hn::CappedTag<double, kSumLanes>;
using LaneVec = hn::Vec<LaneTag>;
constexpr std::size_t kVecLanes = hn::MaxLanes(LaneTag());
constexpr std::size_t kVecsPerStep = kSumLanes / kVecLanes;

/// Adds through the fused multiply-add units: a + b = 1 * a + b with one rounding, so the bits are
/// those of an addition, but on machines with as many multipliers as adders a reduction that is all
/// additions runs nearly twice as fast when they share the work. `one` comes from the caller at run
/// time, since a compiler that knew it would turn the multiplication back into an addition.
struct OnMultiplier {
  LaneVec one;
#if HWY_NATIVE_FMA
  HWY_INLINE LaneVec add(LaneVec a, LaneVec b) const { return hn::MulAdd(one, a, b); }
  HWY_INLINE LaneVec sub(LaneVec a, LaneVec b) const { return hn::NegMulAdd(one, b, a); }
#else
  HWY_INLINE LaneVec add(LaneVec a, LaneVec b) const { return hn::Add(a, b); }
  HWY_INLINE LaneVec sub(LaneVec a, LaneVec b) const { return hn::Sub(a, b); }
#endif
};

HWY_INLINE LaneVec loadLanes(LaneTag d, const double* x) { return hn::LoadU(d, x); }
HWY_INLINE LaneVec loadLanes(LaneTag d, const std::int32_t* x) {
  return hn::PromoteTo(d, hn::LoadU(hn::Rebind<std::int32_t, LaneTag>(), x));
}

/// Double-double sums of the lanes.
template <std::size_t kSums>
struct LaneSums {
  alignas(64) double hi[kSums][kSumLanes];
  alignas(64) double lo[kSums][kSumLanes];
};

/// Adds the running sums s + e of one vector to its lanes of the total; the first run replaces
/// them. The absolute error is below 2^-103 of both sums and 2^-52 of e.
HWY_INLINE void foldInto(LaneVec s, LaneVec e, bool isFirst, double* hi, double* lo) {
  const LaneTag d;
  Twofold<LaneVec> sum = {s, e};
  if (!isFirst) {
    sum = twoSum(hn::Load(d, hi), s);
    sum.lo = hn::Add(sum.lo, hn::Add(hn::Load(d, lo), e));
  }
  sum = twoSum(sum.hi, sum.lo);
  hn::Store(sum.hi, d, hi);
  hn::Store(sum.lo, d, lo);
}

/// Lane i takes lane i + width, for the widths 8, 4, 2, 1. Pairs hi, lo go to out.
template <std::size_t kSums>
HWY_INLINE void addLanes(LaneSums<kSums>& total, double* out) {
  const LaneTag d;
  for (std::size_t k = 0; k < kSums; ++k) {
    double* hi = total.hi[k];
    double* lo = total.lo[k];
    std::size_t width = kSumLanes / 2;
    for (; width >= kVecLanes; width /= 2) {
      for (std::size_t at = 0; at < width; at += kVecLanes) {
        const Twofold<LaneVec> sum =
            add(Twofold<LaneVec>{hn::Load(d, hi + at), hn::Load(d, lo + at)},
                Twofold<LaneVec>{hn::Load(d, hi + at + width), hn::Load(d, lo + at + width)});
        hn::Store(sum.hi, d, hi + at);
        hn::Store(sum.lo, d, lo + at);
      }
    }
    for (; width >= 1; width /= 2) {
      for (std::size_t at = 0; at < width; ++at) {
        const Twofold<double> sum =
            add(Twofold<double>{hi[at], lo[at]}, Twofold<double>{hi[at + width], lo[at + width]});
        hi[at] = sum.hi;
        lo[at] = sum.lo;
      }
    }
    out[2 * k] = hi[0];
    out[2 * k + 1] = lo[0];
  }
}
