#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <span>
#include <type_traits>

#include "zel/kernels/products.h"
#include "zel/kernels/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "zel/kernels/multiply_vector_simd.cpp"
#include "hwy/foreach_target.h"  // IWYU pragma: keep
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace zel::kernels::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

#include "zel/kernels/double_double-inl.h"
#include "zel/kernels/fused_multiply_add-inl.h"
#include "zel/kernels/square_tile-inl.h"

/// Adds kColumns columns times their x to as many cells of y as a vector has lanes.
template <std::size_t kColumns, class D>
HWY_INLINE void addColumns(D d, const double* HWY_RESTRICT a, std::size_t stride,
                           const double* HWY_RESTRICT x, double* HWY_RESTRICT y) {
  auto sum = hn::LoadU(d, y);
  for (std::size_t j = 0; j < kColumns; ++j) {
    sum = fusedMultiplyAdd(hn::LoadU(d, a + j * stride), hn::Set(d, x[j]), sum);
  }
  hn::StoreU(sum, d, y);
}

template <std::size_t kColumns>
HWY_INLINE void addColumnsTo(std::size_t rows, const double* a, std::size_t stride, const double* x,
                             double* y) {
  const hn::CappedTag<double, 1> one;
  std::size_t r = 0;
  for (; r + kTile <= rows; r += kTile) addColumns<kColumns>(TileTag(), a + r, stride, x, y + r);
  for (; r < rows; ++r) addColumns<kColumns>(one, a + r, stride, x, y + r);
}

/// Sums run along the rows of a: several columns per pass, so that y is seldom loaded and stored,
/// and some rows at a time, so that it stays in the cache.
void sweepColumns(const ConstMatrix& a, const double* x, double* y) {
  constexpr std::size_t kRowBlock = 2048;
  constexpr std::size_t kColumns = HWY_NATIVE_FMA ? 8 : 2;
  std::fill_n(y, a.rows, 0.0);
  for (std::size_t r = 0; r < a.rows; r += kRowBlock) {
    const std::size_t rows = std::min(kRowBlock, a.rows - r);
    std::size_t c = 0;
    for (; c + kColumns <= a.columns; c += kColumns) {
      addColumnsTo<kColumns>(rows, a.column(c) + r, a.stride, x + c, y + r);
    }
    for (; c < a.columns; ++c) addColumnsTo<1>(rows, a.column(c) + r, a.stride, x + c, y + r);
  }
}

/// Sums run down kGroups * kTile columns of a, one lane each. Columns past the last repeat it.
template <std::size_t kGroups>
HWY_INLINE void sumColumns(const ConstMatrix& a, std::size_t first, const double* HWY_RESTRICT x,
                           double* HWY_RESTRICT y) {
  const TileTag d;
  constexpr std::size_t kCount = kGroups * kTile;
  const double* column[kCount];
  for (std::size_t i = 0; i < kCount; ++i) column[i] = a.column(std::min(first + i, a.columns - 1));
  TileVec sum[kGroups];
  for (std::size_t g = 0; g < kGroups; ++g) sum[g] = hn::Zero(d);
  std::size_t r = 0;
  for (; r + kTile <= a.rows; r += kTile) {
    for (std::size_t g = 0; g < kGroups; ++g) {
      TileVec v[kTile];
      for (std::size_t i = 0; i < kTile; ++i) v[i] = hn::LoadU(d, column[g * kTile + i] + r);
      transposeTile(v);
      for (std::size_t i = 0; i < kTile; ++i) {
        sum[g] = fusedMultiplyAdd(v[i], hn::Set(d, x[r + i]), sum[g]);
      }
    }
  }
  alignas(64) double lane[kCount];
  for (; r < a.rows; ++r) {
    for (std::size_t i = 0; i < kCount; ++i) lane[i] = column[i][r];
    for (std::size_t g = 0; g < kGroups; ++g) {
      sum[g] = fusedMultiplyAdd(hn::Load(d, lane + g * kTile), hn::Set(d, x[r]), sum[g]);
    }
  }
  for (std::size_t g = 0; g < kGroups; ++g) hn::Store(sum[g], d, lane + g * kTile);
  std::copy_n(lane, std::min(kCount, a.columns - first), y + first);
}

void sumAllColumns(const ConstMatrix& a, const double* x, double* y) {
  // Sixteen chains or more hide the latency of the additions.
  constexpr std::size_t kGroups = HWY_NATIVE_FMA ? 16 / kTile : 1;
  std::size_t c = 0;
  for (; c + kGroups * kTile <= a.columns; c += kGroups * kTile) sumColumns<kGroups>(a, c, x, y);
  if constexpr (kGroups > 1) {
    for (; c < a.columns; c += kTile) sumColumns<1>(a, c, x, y);
  } else if (c < a.columns) {
    sumColumns<kGroups>(a, c, x, y);
  }
}

}  // namespace
}  // namespace zel::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zel::kernels {

HWY_EXPORT(sweepColumns);
HWY_EXPORT(sumAllColumns);

void multiplyVector(ConstMatrix a, Factor asA, std::span<const double> x, std::span<double> y) {
  if (asA == Factor::plain) {
    HWY_DYNAMIC_DISPATCH(sweepColumns)(a, x.data(), y.data());
  } else {
    HWY_DYNAMIC_DISPATCH(sumAllColumns)(a, x.data(), y.data());
  }
}

}  // namespace zel::kernels
#endif
