#include "zel/kernels/lane_sums.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "zel/kernels/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "zel/kernels/lane_sums.cpp"
#include "hwy/cache_control.h"
#include "hwy/foreach_target.h"  // IWYU pragma: keep
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace zel::kernels::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

#include "zel/kernels/double_double-inl.h"
#include "zel/kernels/sum_terms-inl.h"

#include "zel/kernels/lanes-inl.h"

/// The elements after the last whole step, filled up with values that contribute exactly 0.
struct PaddedStep {
  alignas(64) double x[kSumLanes];
  alignas(64) double y[kSumLanes];
};

/// Sums of up to kRunSteps steps, not yet normalised, and of the padded step if there is one.
template <class Terms, class T>
HWY_INLINE void sumRun(const T* HWY_RESTRICT x, const T* HWY_RESTRICT y, std::size_t steps,
                       const PaddedStep* tail, const Centre<double>& centre, double one,
                       LaneSums<Terms::kSums>& out) {
  const LaneTag d;
  // As many vectors side by side as leave their sums in sixteen registers and hide the latency of
  // the additions; what does not fit takes another walk over the run.
  constexpr std::size_t kWidth = HWY_MAX(std::size_t{1}, HWY_MIN(kVecsPerStep, 4 / Terms::kSums));
  const OnMultiplier unit{hn::Set(d, one)};
  const Centre<LaneVec> c{hn::Set(d, centre.x), hn::Set(d, centre.y)};
  for (std::size_t first = 0; first < kSumLanes; first += kWidth * kVecLanes) {
    LaneVec s[kWidth][Terms::kSums];
    LaneVec e[kWidth][Terms::kSums];
    for (std::size_t j = 0; j < kWidth; ++j) {
      for (std::size_t k = 0; k < Terms::kSums; ++k) s[j][k] = e[j][k] = hn::Zero(d);
    }
    for (std::size_t i = first; i < first + steps * kSumLanes; i += kSumLanes) {
      for (std::size_t j = 0; j < kWidth; ++j) {
        const std::size_t at = i + j * kVecLanes;
        hwy::Prefetch(x + at + kPrefetchElements);
        Terms::add(loadLanes(d, x + at), loadLanes(d, y + at), c, s[j], e[j], unit);
      }
    }
    for (std::size_t j = 0; j < kWidth; ++j) {
      const std::size_t at = first + j * kVecLanes;
      if (tail != nullptr) {
        Terms::add(hn::Load(d, tail->x + at), hn::Load(d, tail->y + at), c, s[j], e[j], unit);
      }
      for (std::size_t k = 0; k < Terms::kSums; ++k) {
        hn::Store(s[j][k], d, out.hi[k] + at);
        hn::Store(e[j][k], d, out.lo[k] + at);
      }
    }
  }
}

/// Adds the run to every lane of the total.
template <std::size_t kSums>
HWY_INLINE void foldRun(const LaneSums<kSums>& run, bool isFirst, LaneSums<kSums>& total) {
  const LaneTag d;
  for (std::size_t k = 0; k < kSums; ++k) {
    for (std::size_t at = 0; at < kSumLanes; at += kVecLanes) {
      foldInto(hn::Load(d, run.hi[k] + at), hn::Load(d, run.lo[k] + at), isFirst, total.hi[k] + at,
               total.lo[k] + at);
    }
  }
}

/// All sums of the terms over n elements; y may be x where the terms use one array only. Padding is
/// centre.x and centre.y, whose contribution is 0 for every kind of terms (plain sums have centre
/// 0).
template <class Terms, class T>
void sumLanes(const T* HWY_RESTRICT x, const T* HWY_RESTRICT y, std::size_t n,
              const Centre<double>& centre, double one, double* out) {
  LaneSums<Terms::kSums> total;
  LaneSums<Terms::kSums> run;
  PaddedStep tail;
  for (std::size_t start = 0; start == 0 || start < n; start += kRunElements) {
    const std::size_t count = HWY_MIN(n - start, kRunElements);
    const std::size_t steps = count / kSumLanes;
    const std::size_t rest = count % kSumLanes;
    for (std::size_t i = 0; rest > 0 && i < kSumLanes; ++i) {
      tail.x[i] = i < rest ? static_cast<double>(x[start + steps * kSumLanes + i]) : centre.x;
      tail.y[i] = i < rest ? static_cast<double>(y[start + steps * kSumLanes + i]) : centre.y;
    }
    sumRun<Terms>(x + start, y + start, steps, rest > 0 ? &tail : nullptr, centre, one, run);
    foldRun(run, start == 0, total);
  }
  addLanes(total, out);
}

template <class T>
void sumsOfKind(SumKind kind, const T* x, const T* y, std::size_t n, double centreX, double centreY,
                double one, double* out) {
  const Centre<double> c{centreX, centreY};
  switch (kind) {
    case SumKind::sum:
      return sumLanes<SumTerms>(x, y, n, c, one, out);
    case SumKind::squares:
      return sumLanes<SquareTerms>(x, y, n, c, one, out);
    case SumKind::products:
      return sumLanes<ProductTerms>(x, y, n, c, one, out);
    case SumKind::squaredDifferences:
      return sumLanes<SquaredDifferenceTerms>(x, y, n, c, one, out);
    case SumKind::rawMoments:
      return sumLanes<RawMomentTerms>(x, y, n, c, one, out);
    case SumKind::centredMoments:
      return sumLanes<CentredMomentTerms>(x, y, n, c, one, out);
    case SumKind::centredPowers:
      return sumLanes<CentredPowerTerms>(x, y, n, c, one, out);
    case SumKind::centredProducts:
      return sumLanes<CentredProductTerms>(x, y, n, c, one, out);
    case SumKind::centredCross:
      return sumLanes<CentredCrossTerms>(x, y, n, c, one, out);
  }
}

void sumsOfDoubles(SumKind kind, const double* x, const double* y, std::size_t n, double centreX,
                   double centreY, double one, double* out) {
  sumsOfKind(kind, x, y, n, centreX, centreY, one, out);
}

void sumsOfIntegers(SumKind kind, const std::int32_t* x, const std::int32_t* y, std::size_t n,
                    double centreX, double centreY, double one, double* out) {
  sumsOfKind(kind, x, y, n, centreX, centreY, one, out);
}

}  // namespace
}  // namespace zel::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zel::kernels {

HWY_EXPORT(sumsOfDoubles);
HWY_EXPORT(sumsOfIntegers);

namespace {
// Read at run time on purpose, see OnMultiplier.
volatile double gOne = 1;
}  // namespace

void laneSums(SumKind kind, const double* x, const double* y, std::size_t n,
              const Centre<double>& centre, double* out) {
  HWY_DYNAMIC_DISPATCH(sumsOfDoubles)(kind, x, y, n, centre.x, centre.y, gOne, out);
}

void laneSums(SumKind kind, const std::int32_t* x, const std::int32_t* y, std::size_t n,
              const Centre<double>& centre, double* out) {
  HWY_DYNAMIC_DISPATCH(sumsOfIntegers)(kind, x, y, n, centre.x, centre.y, gOne, out);
}

}  // namespace zel::kernels
#endif
