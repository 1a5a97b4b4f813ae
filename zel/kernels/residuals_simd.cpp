#include <algorithm>
#include <cstddef>
#include <span>

#include "zel/kernels/double_double.h"
#include "zel/kernels/residuals.h"
#include "zel/kernels/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "zel/kernels/residuals_simd.cpp"
#include "hwy/foreach_target.h"  // IWYU pragma: keep
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace zel::kernels::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

#include "zel/kernels/double_double-inl.h"

using Tag = hn::CappedTag<double, 8>;
using Vec = hn::Vec<Tag>;
constexpr std::size_t kLanes = hn::MaxLanes(Tag());

/// sum - a x, not normalised.
template <class V>
HWY_INLINE Twofold<V> without(Twofold<V> sum, V a, V x) {
  const Twofold<V> product = twoProduct(a, x);
  const Twofold<V> high = twoDiff(sum.hi, product.hi);
  return {high.hi, plus(sum.lo, minus(high.lo, product.lo))};
}

void subtractAll(ConstMatrix a, const double* x, const double* b, const double* r, double* f) {
  const Tag d;
  // Rows whose sums stay in registers from column to column.
  constexpr std::size_t kVecs = 4;
  constexpr std::size_t kRows = kVecs * kLanes;
  std::size_t i = 0;
  for (; i + kRows <= a.rows; i += kRows) {
    Twofold<Vec> sum[kVecs];
    for (std::size_t v = 0; v < kVecs; ++v) {
      sum[v] = twoDiff(hn::LoadU(d, b + i + v * kLanes), hn::LoadU(d, r + i + v * kLanes));
    }
    for (std::size_t c = 0; c < a.columns; ++c) {
      const Vec factor = hn::Set(d, x[c]);
      const double* column = a.column(c) + i;
      for (std::size_t v = 0; v < kVecs; ++v) {
        sum[v] = without(sum[v], hn::LoadU(d, column + v * kLanes), factor);
      }
    }
    for (std::size_t v = 0; v < kVecs; ++v) {
      hn::StoreU(hn::Add(sum[v].hi, sum[v].lo), d, f + i + v * kLanes);
    }
  }
  for (; i < a.rows; ++i) {
    Twofold<double> sum = twoDiff(b[i], r[i]);
    for (std::size_t c = 0; c < a.columns; ++c) sum = without(sum, a(i, c), x[c]);
    f[i] = sum.hi + sum.lo;
  }
}

}  // namespace
}  // namespace zel::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zel::kernels {

HWY_EXPORT(subtractAll);

void accurateResidual(ConstMatrix a, std::span<const double> x, std::span<const double> b,
                      std::span<const double> r, std::span<double> f) {
  HWY_DYNAMIC_DISPATCH(subtractAll)(a, x.data(), b.data(), r.data(), f.data());
}

}  // namespace zel::kernels
#endif
