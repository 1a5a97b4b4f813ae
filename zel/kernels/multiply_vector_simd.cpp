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

using NumberTag = hn::CappedTag<double, 1>;

/// Adds kColumns columns times their x to y, as far as whole vectors go.
/// @return the first row that is left
template <std::size_t kColumns, class D>
HWY_INLINE std::size_t addColumns(D d, const double* HWY_RESTRICT a, std::size_t stride,
                                  std::size_t r, std::size_t rows, const double* HWY_RESTRICT x,
                                  double* HWY_RESTRICT y) {
  hn::Vec<D> factor[kColumns];
  for (std::size_t j = 0; j < kColumns; ++j) factor[j] = hn::Set(d, x[j]);
  for (; r + hn::MaxLanes(d) <= rows; r += hn::MaxLanes(d)) {
    hn::Vec<D> sum = hn::LoadU(d, y + r);
    for (std::size_t j = 0; j < kColumns; ++j) {
      sum = fusedMultiplyAdd(hn::LoadU(d, a + j * stride + r), factor[j], sum);
    }
    hn::StoreU(sum, d, y + r);
  }
  return r;
}

template <std::size_t kColumns>
HWY_INLINE void addColumnsTo(std::size_t rows, const double* a, std::size_t stride, const double* x,
                             double* y) {
  const std::size_t r = addColumns<kColumns>(TileTag(), a, stride, 0, rows, x, y);
  addColumns<kColumns>(NumberTag(), a, stride, r, rows, x, y);
}

/// Sums run along the rows of a: several columns per pass, so that y is seldom loaded and stored,
/// and some rows at a time, so that it stays in the cache.
void sumRows(const ConstMatrix& a, const double* x, double* y) {
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

/// Sums run down kGroups * kTile columns, one in each lane, tile by transposed tile.
template <std::size_t kGroups>
HWY_INLINE void sumColumns(const double* HWY_RESTRICT a, std::size_t stride, std::size_t rows,
                           const double* HWY_RESTRICT x, double* HWY_RESTRICT y) {
  const TileTag d;
  TileVec sum[kGroups];
  for (std::size_t g = 0; g < kGroups; ++g) sum[g] = hn::Zero(d);
  std::size_t r = 0;
  for (; r + kTile <= rows; r += kTile) {
    const double* tile = a + r;
    for (std::size_t g = 0; g < kGroups; ++g) {
      TileVec v[kTile];
      for (std::size_t i = 0; i < kTile; ++i) v[i] = hn::LoadU(d, tile + i * stride);
      transposeTile(v);
      for (std::size_t i = 0; i < kTile; ++i) {
        sum[g] = fusedMultiplyAdd(v[i], hn::Set(d, x[r + i]), sum[g]);
      }
      tile += kTile * stride;
    }
  }
  for (; r < rows; ++r) {
    for (std::size_t g = 0; g < kGroups; ++g) {
      alignas(64) double row[kTile];
      for (std::size_t i = 0; i < kTile; ++i) row[i] = a[(g * kTile + i) * stride + r];
      sum[g] = fusedMultiplyAdd(hn::Load(d, row), hn::Set(d, x[r]), sum[g]);
    }
  }
  for (std::size_t g = 0; g < kGroups; ++g) hn::StoreU(sum[g], d, y + g * kTile);
}

/// All columns, kGroups * kTile at a time. The last time some may be repeated.
/// @return the first column that is left, because there are fewer
template <std::size_t kGroups>
std::size_t sumManyColumns(const ConstMatrix& a, std::size_t c, const double* x, double* y) {
  constexpr std::size_t kMany = kGroups * kTile;
  if (a.columns < kMany) return c;
  while (c < a.columns) {
    c = std::min(c, a.columns - kMany);
    sumColumns<kGroups>(a.column(c), a.stride, a.rows, x, y + c);
    c += kMany;
  }
  return c;
}

void sumAllColumns(const ConstMatrix& a, const double* x, double* y) {
  // Sixteen chains hide the latency of the additions.
  constexpr std::size_t kGroups = HWY_NATIVE_FMA ? 16 / kTile : 1;
  std::size_t c = sumManyColumns<kGroups>(a, 0, x, y);
  c = sumManyColumns<1>(a, c, x, y);
  const NumberTag d;
  for (; c < a.columns; ++c) {
    auto sum = hn::Zero(d);
    for (std::size_t r = 0; r < a.rows; ++r) {
      sum = fusedMultiplyAdd(hn::LoadU(d, a.column(c) + r), hn::LoadU(d, x + r), sum);
    }
    hn::StoreU(sum, d, y + c);
  }
}

}  // namespace
}  // namespace zel::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zel::kernels {

HWY_EXPORT(sumRows);
HWY_EXPORT(sumAllColumns);

void multiplyVector(ConstMatrix a, Factor asA, std::span<const double> x, std::span<double> y) {
  if (asA == Factor::plain) {
    HWY_DYNAMIC_DISPATCH(sumRows)(a, x.data(), y.data());
  } else {
    HWY_DYNAMIC_DISPATCH(sumAllColumns)(a, x.data(), y.data());
  }
}

}  // namespace zel::kernels
#endif
