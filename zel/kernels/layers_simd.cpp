#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

#include "zel/kernels/lane_sums.h"
#include "zel/kernels/layers.h"
#include "zel/kernels/moments.h"
#include "zel/kernels/sums.h"
#include "zel/kernels/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "zel/kernels/layers_simd.cpp"
#include "hwy/foreach_target.h"  // IWYU pragma: keep
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace zel::kernels::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

#include "zel/kernels/double_double-inl.h"
#include "zel/kernels/sum_terms-inl.h"

using Tag = hn::CappedTag<double, 8>;
using Vec = hn::Vec<Tag>;
constexpr std::size_t kLanes = hn::MaxLanes(Tag());

/// s[k] and e[k] are arrays of n cells, one after the other from sums and errors on.
template <class Terms>
void addLayer(const double* x, std::size_t n, double* sums, double* errors) {
  const Tag d;
  const OnAdder unit;
  const std::size_t whole = n - n % kLanes;
  std::size_t i = 0;
  for (; i < whole; i += kLanes) {
    Vec s[Terms::kSums];
    Vec e[Terms::kSums];
    for (std::size_t k = 0; k < Terms::kSums; ++k) {
      s[k] = hn::LoadU(d, sums + k * n + i);
      e[k] = hn::LoadU(d, errors + k * n + i);
    }
    const Vec v = hn::LoadU(d, x + i);
    Terms::add(v, v, Centre<Vec>{v, v}, s, e, unit);
    for (std::size_t k = 0; k < Terms::kSums; ++k) {
      hn::StoreU(s[k], d, sums + k * n + i);
      hn::StoreU(e[k], d, errors + k * n + i);
    }
  }
  for (; i < n; ++i) {
    double s[Terms::kSums];
    double e[Terms::kSums];
    for (std::size_t k = 0; k < Terms::kSums; ++k) {
      s[k] = sums[k * n + i];
      e[k] = errors[k * n + i];
    }
    Terms::add(x[i], x[i], Centre<double>{0, 0}, s, e, unit);
    for (std::size_t k = 0; k < Terms::kSums; ++k) {
      sums[k * n + i] = s[k];
      errors[k * n + i] = e[k];
    }
  }
}

template <class Use>
HWY_INLINE void forEachLayer(const LayerStack& stack, Use&& use) {
  for (std::size_t l = 0; l < stack.layers; ++l) {
    for (std::size_t t = 0; t < stack.slots; ++t) {
      use(stack.first + l * stack.layerStride + t * stack.slotStride);
    }
  }
}

void addLayers(const LayerStack& stack, std::size_t n, double* sums, double* errors) {
  forEachLayer(stack, [&](const double* x) { addLayer<SumTerms>(x, n, sums, errors); });
}

void addLayersAndSquares(const LayerStack& stack, std::size_t n, double* sums, double* errors) {
  forEachLayer(stack, [&](const double* x) { addLayer<RawMomentTerms>(x, n, sums, errors); });
}

}  // namespace
}  // namespace zel::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zel::kernels {

HWY_EXPORT(addLayers);
HWY_EXPORT(addLayersAndSquares);

namespace {

[[nodiscard]] bool isPlain(const LayerStack& stack) {
  return stack.divisor == 0 || stack.divisor == stack.count();
}

[[nodiscard]] DoubleDouble divisorOf(const LayerStack& stack) {
  return twofoldOf<double>(isPlain(stack) ? stack.count() : stack.divisor);
}

/// Cells whose sums stay in the first-level cache.
constexpr std::size_t kChunk = 512;

/// The elements of a cell.
std::vector<double> elementsOf(const LayerStack& stack, std::size_t cell) {
  std::vector<double> x;
  x.reserve(stack.count());
  for (std::size_t l = 0; l < stack.layers; ++l) {
    for (std::size_t t = 0; t < stack.slots; ++t) {
      x.push_back(stack.first[l * stack.layerStride + t * stack.slotStride + cell]);
    }
  }
  return x;
}

void means(const LayerStack& stack, std::span<double> result) {
  double sums[kChunk] = {};
  double errors[kChunk] = {};
  HWY_DYNAMIC_DISPATCH(addLayers)(stack, result.size(), sums, errors);
  const DoubleDouble n = divisorOf(stack);
  for (std::size_t i = 0; i < result.size(); ++i) {
    const DoubleDouble sum = twoSum(sums[i], errors[i]);
    if (isFinite(sum)) {
      result[i] = (sum / n).hi;
    } else {
      result[i] = mean(std::span<const double>(elementsOf(stack, i)));
      if (!isPlain(stack)) result[i] = result[i] / n.hi * static_cast<double>(stack.count());
    }
  }
}

/// Standard deviation with the divisor n.
double deviationOf(const std::vector<double>& x) {
  const auto n = static_cast<double>(x.size());
  if (x.size() == 1) return x[0] - x[0];
  if (x.size() == 2) return std::fabs(x[0] / 2 - x[1] / 2);
  return std::sqrt(meanVariance(std::span<const double>(x)).variance * ((n - 1) / n));
}

void deviations(const LayerStack& stack, std::span<double> result) {
  double sums[2 * kChunk] = {};
  double errors[2 * kChunk] = {};
  const std::size_t cells = result.size();
  HWY_DYNAMIC_DISPATCH(addLayersAndSquares)(stack, cells, sums, errors);
  const DoubleDouble n = divisorOf(stack);
  // Of the plain sums of the rounding errors, relative to the sum of the magnitudes.
  const double sumError = 0x1p-104 * n.hi * n.hi;
  for (std::size_t i = 0; i < cells; ++i) {
    const DoubleDouble sum = twoSum(sums[i], errors[i]);
    const DoubleDouble squares = twoSum(sums[cells + i], errors[cells + i]);
    const DoubleDouble s = squares - sum * sum / n;
    if (!isPlain(stack)) {
      result[i] = s.hi > 0 ? sqrt(s / n).hi : 0 * s.hi;
      continue;
    }
    const bool isAccurate = isFinite(sum) && isFinite(s) && squares.hi >= kSmallSquares &&
                            s.hi * 0x1p-55 >= squares.hi * sumError;
    result[i] = isAccurate ? sqrt(s / n).hi : deviationOf(elementsOf(stack, i));
  }
}

/// @tparam kSign  1 for the maximum, -1 for the minimum
template <int kSign>
void extremes(const LayerStack& stack, std::span<double> result) {
  std::fill(result.begin(), result.end(), kSign * std::numeric_limits<double>::lowest());
  for (std::size_t l = 0; l < stack.layers; ++l) {
    for (std::size_t t = 0; t < stack.slots; ++t) {
      const double* const x = stack.first + l * stack.layerStride + t * stack.slotStride;
      for (std::size_t i = 0; i < result.size(); ++i) {
        const bool isBeyond = kSign > 0 ? x[i] > result[i] : x[i] < result[i];
        result[i] = isBeyond ? x[i] : result[i];
      }
    }
  }
}

}  // namespace

void reduceLayers(LayerOp op, const LayerStack& stack, std::span<double> result) {
  for (std::size_t first = 0; first < result.size(); first += kChunk) {
    const auto part = result.subspan(first, std::min(kChunk, result.size() - first));
    LayerStack shifted = stack;
    shifted.first += first;
    switch (op) {
      case LayerOp::mean:
        means(shifted, part);
        break;
      case LayerOp::maximum:
        extremes<1>(shifted, part);
        break;
      case LayerOp::minimum:
        extremes<-1>(shifted, part);
        break;
      case LayerOp::standardDeviation:
        deviations(shifted, part);
        break;
    }
  }
}

}  // namespace zel::kernels
#endif
