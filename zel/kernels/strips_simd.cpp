#include "zel/kernels/strips.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <type_traits>

#include "zel/kernels/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "zel/kernels/strips_simd.cpp"
#include "hwy/cache_control.h"
#include "hwy/foreach_target.h"  // IWYU pragma: keep
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace zel::kernels::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

#include "zel/kernels/double_double-inl.h"
#include "zel/kernels/fused_multiply_add-inl.h"
#include "zel/kernels/square_tile-inl.h"

// A tile of the result is kept in registers: three vectors by four columns in sixteen registers, by
// eight in thirty-two, which leaves room for the factors and hides the latency of the additions. An
// emulated multiply-add needs the registers for itself.
#if HWY_NATIVE_FMA && (HWY_TARGET <= HWY_AVX3 || HWY_ARCH_ARM_A64)
constexpr std::size_t kColumns = 8;
#else
constexpr std::size_t kColumns = 4;
#endif
constexpr std::size_t kStrips = HWY_NATIVE_FMA ? 3 : 1;
static_assert(kColumns % kTile == 0 && kStripGroup % kColumns == 0);

/// Strips whose lines are contiguous: a vector per depth. Some columns at a time, so that their
/// cache lines are used up by neighbouring strips.
void packRows(const ConstMatrix& part, TileVec sign, double* HWY_RESTRICT to) {
  const TileTag d;
  constexpr std::size_t kChunk = 16;
  const std::size_t whole = part.rows / kTile * kTile;
  for (std::size_t begin = 0; begin < part.columns; begin += kChunk) {
    const std::size_t end = std::min(part.columns, begin + kChunk);
    for (std::size_t r = 0; r < whole; r += kTile) {
      double* const strip = to + r * part.columns;
      for (std::size_t k = begin; k < end; ++k) {
        hn::Store(hn::Xor(hn::LoadU(d, part.column(k) + r), sign), d, strip + k * kTile);
      }
    }
    if (whole == part.rows) continue;
    double* const strip = to + whole * part.columns;
    for (std::size_t k = begin; k < end; ++k) {
      alignas(64) double lines[kTile] = {};
      std::copy(part.column(k) + whole, part.column(k) + part.rows, lines);
      hn::Store(hn::Xor(hn::Load(d, lines), sign), d, strip + k * kTile);
    }
  }
}

/// Strips whose lines are columns: transposed tile by tile.
void packColumns(const ConstMatrix& part, TileVec sign, double* HWY_RESTRICT to) {
  const TileTag d;
  const std::size_t depth = part.rows;
  for (std::size_t c = 0; c < part.columns; c += kTile) {
    const std::size_t lines = std::min(kTile, part.columns - c);
    double* const strip = to + c * depth;
    std::size_t k = 0;
    for (; k + kTile <= depth; k += kTile) {
      TileVec v[kTile];
      for (std::size_t i = 0; i < kTile; ++i) {
        v[i] = i < lines ? hn::LoadU(d, part.column(c + i) + k) : hn::Zero(d);
      }
      transposeTile(v);
      for (std::size_t i = 0; i < kTile; ++i) {
        hn::Store(hn::Xor(v[i], sign), d, strip + (k + i) * kTile);
      }
    }
    for (; k < depth; ++k) {
      alignas(64) double line[kTile] = {};
      for (std::size_t i = 0; i < lines; ++i) line[i] = part(k, c + i);
      hn::Store(hn::Xor(hn::Load(d, line), sign), d, strip + k * kTile);
    }
  }
}

void pack(const ConstMatrix& part, Lines lines, bool isNegated, double* to) {
  const TileVec sign = hn::Set(TileTag(), isNegated ? -0.0 : 0.0);
  const std::size_t count = lines == Lines::rows ? part.rows : part.columns;
  const std::size_t depth = lines == Lines::rows ? part.columns : part.rows;
  lines == Lines::rows ? packRows(part, sign, to) : packColumns(part, sign, to);
  const std::size_t packed = (count + kTile - 1) / kTile * kTile;
  std::fill(to + packed * depth, to + paddedLines(count) * depth, 0.0);
}

/// One tile of the result: kRows strips by kColumns.
template <std::size_t kRows>
HWY_INLINE void multiplyTile(const double* HWY_RESTRICT left, const double* HWY_RESTRICT right,
                             std::size_t depth, bool isFromZero, double* HWY_RESTRICT c,
                             std::size_t stride) {
  const TileTag d;
  TileVec sum[kColumns][kRows];
  if (isFromZero) {
    for (std::size_t j = 0; j < kColumns; ++j) {
      for (std::size_t s = 0; s < kRows; ++s) sum[j][s] = hn::Zero(d);
    }
  } else {
    for (std::size_t j = 0; j < kColumns; ++j) {
      for (std::size_t s = 0; s < kRows; ++s) {
        sum[j][s] = hn::LoadU(d, c + j * stride + s * kTile);
      }
    }
  }
#ifdef PF
  for (std::size_t j = 0; j < kColumns; ++j) {
    hwy::Prefetch(c + j * stride + kRows * kTile);
    hwy::Prefetch(c + j * stride + kRows * kTile+7);
  }
#endif
  for (std::size_t k = 0; k < depth; ++k) {
#ifdef PFA
    for (std::size_t s = 0; s < kRows; ++s) hwy::Prefetch(left + ((s+kRows) * depth + k) * kTile);
#endif
    TileVec rows[kRows];
    for (std::size_t s = 0; s < kRows; ++s) rows[s] = hn::Load(d, left + (s * depth + k) * kTile);
    for (std::size_t j = 0; j < kColumns; ++j) {
      const TileVec column =
          hn::Set(d, right[(j / kTile * depth + k) * kTile + j % kTile]);
      for (std::size_t s = 0; s < kRows; ++s) {
        sum[j][s] = fusedMultiplyAdd(rows[s], column, sum[j][s]);
      }
    }
  }
  for (std::size_t j = 0; j < kColumns; ++j) {
    for (std::size_t s = 0; s < kRows; ++s) {
      hn::StoreU(sum[j][s], d, c + j * stride + s * kTile);
    }
  }
}

HWY_NOINLINE void multiplyAnyTile(const double* left, const double* right, std::size_t depth,
                     bool isFromZero, std::size_t strips, double* c, std::size_t stride) {
  if constexpr (kStrips == 3) {
    if (strips == 3) return multiplyTile<3>(left, right, depth, isFromZero, c, stride);
    if (strips == 2) return multiplyTile<2>(left, right, depth, isFromZero, c, stride);
  }
  multiplyTile<1>(left, right, depth, isFromZero, c, stride);
}

void multiplyAll(const double* left, const double* right, std::size_t depth, Start start,
                 std::ptrdiff_t diagonal, const Matrix& c) {
  const bool isFromZero = start == Start::zero;
#ifdef ROWS_OUTER
  for (std::size_t i = 0; i < c.rows; i += kStrips * kTile) {
  for (std::size_t j = 0; j < c.columns; j += kColumns) {
#else
  for (std::size_t j = 0; j < c.columns; j += kColumns) {
  for (std::size_t i = 0; i < c.rows; i += kStrips * kTile) {
#endif
    const std::size_t columns = std::min(kColumns, c.columns - j);
      if (static_cast<std::ptrdiff_t>(i) >= static_cast<std::ptrdiff_t>(j + columns) + diagonal) break;
      const std::size_t rows = std::min(kStrips * kTile, c.rows - i);
      const std::size_t strips = (rows + kTile - 1) / kTile;
#ifdef PFC
      {
        const bool l = i + kStrips*kTile >= c.rows;
        const double* nx = l ? c.column(HWY_MIN(j+kColumns, c.columns-1)) : c.column(j) + i + kStrips*kTile;
        for (std::size_t x = 0; x < kColumns; ++x) {
          __builtin_prefetch(nx + x*c.stride); __builtin_prefetch(nx + x*c.stride+7);
          __builtin_prefetch(nx + x*c.stride+11);
        }
      }
#endif
#ifdef PFB
      {
        const std::size_t piece = depth*kColumns / ((c.rows+kStrips*kTile-1)/(kStrips*kTile)) + 8;
        const double* nx = right + (j+kColumns)*depth + piece*(i/(kStrips*kTile));
        for (std::size_t x = 0; x < piece; x+=8) __builtin_prefetch(nx + x, 0, PFB);
      }
#endif
      if (columns == kColumns && rows == strips * kTile) {
        multiplyAnyTile(left + i * depth, right + j * depth, depth, isFromZero, strips,
                        c.column(j) + i, c.stride);
        continue;
      }
      // A tile over the edge is computed apart. Its surplus cells hold anything.
      alignas(64) double edge[kColumns * kStrips * kTile] = {};
      if (!isFromZero) {
        for (std::size_t x = 0; x < columns; ++x) {
          std::copy_n(c.column(j + x) + i, rows, edge + x * strips * kTile);
        }
      }
      multiplyAnyTile(left + i * depth, right + j * depth, depth, isFromZero, strips, edge,
                      strips * kTile);
      for (std::size_t x = 0; x < columns; ++x) {
        std::copy_n(edge + x * strips * kTile, rows, c.column(j + x) + i);
      }
    }
  }
}

}  // namespace
}  // namespace zel::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zel::kernels {

HWY_EXPORT(pack);
HWY_EXPORT(multiplyAll);

void packStrips(ConstMatrix part, Lines lines, bool isNegated, double* to) {
  HWY_DYNAMIC_DISPATCH(pack)(part, lines, isNegated, to);
}

void multiplyStrips(const double* left, const double* right, std::size_t depth, Start start,
                    std::ptrdiff_t diagonal, Matrix c) {
  HWY_DYNAMIC_DISPATCH(multiplyAll)(left, right, depth, start, diagonal, c);
}

}  // namespace zel::kernels
#endif
