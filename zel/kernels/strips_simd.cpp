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
constexpr std::size_t kLine = 8;  // numbers in a cache line
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
      // The columns are short pieces of long ones, too short for the machine to foresee the next.
      if (k % kLine == 0) {
        for (std::size_t i = 0; i < kTile; ++i) {
          hwy::Prefetch(part.column(std::min(c + kTile + i, part.columns - 1)) + k);
        }
      }
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

/// What the next tiles will need, to be fetched while the present one is computed.
struct Ahead {
  const double* right;  // part of the next columns' strips
  const double* cells;  // the next tile of the result
};

// Lines of the next columns' strips that are fetched every kLine depths, so few that they do not
// hold up the strips in use. Four tiles fetch all.
constexpr std::size_t kTilesAhead = 4;
constexpr std::size_t kLinesAhead = kColumns / kTilesAhead;

/// One tile of the result: kRows strips by kColumns.
template <std::size_t kRows>
HWY_INLINE void multiplyTile(const double* HWY_RESTRICT left, const double* HWY_RESTRICT right,
                             std::size_t depth, Start start, double* HWY_RESTRICT c,
                             std::size_t stride, Ahead ahead) {
  const TileTag d;
  TileVec sum[kColumns][kRows];
  for (std::size_t j = 0; j < kColumns; ++j) {
    for (std::size_t s = 0; s < kRows; ++s) {
      sum[j][s] = start == Start::zero ? hn::Zero(d) : hn::LoadU(d, c + j * stride + s * kTile);
    }
  }
  const auto addDepth = [&](std::size_t k) HWY_ATTR {
    TileVec rows[kRows];
    for (std::size_t s = 0; s < kRows; ++s) rows[s] = hn::Load(d, left + (s * depth + k) * kTile);
    for (std::size_t j = 0; j < kColumns; ++j) {
      const TileVec column = hn::Set(d, right[(j / kTile * depth + k) * kTile + j % kTile]);
      for (std::size_t s = 0; s < kRows; ++s) {
        sum[j][s] = fusedMultiplyAdd(rows[s], column, sum[j][s]);
      }
    }
  };
  std::size_t k = 0;
  for (; k + kLine <= depth; k += kLine) {
    for (std::size_t i = 0; i < kLinesAhead; ++i) hwy::Prefetch(ahead.right + i * kLine);
    ahead.right += kLinesAhead * kLine;
    if (k < kColumns * kLine) {
      hwy::Prefetch(ahead.cells);
      hwy::Prefetch(ahead.cells + kRows * kTile - 1);
      ahead.cells += stride;
    }
    for (std::size_t i = 0; i < kLine; ++i) addDepth(k + i);
  }
  for (; k < depth; ++k) addDepth(k);
  for (std::size_t j = 0; j < kColumns; ++j) {
    for (std::size_t s = 0; s < kRows; ++s) {
      hn::StoreU(sum[j][s], d, c + j * stride + s * kTile);
    }
  }
}

HWY_NOINLINE void multiplyAnyTile(const double* left, const double* right, std::size_t depth,
                                  Start start, std::size_t strips, double* c, std::size_t stride,
                                  Ahead ahead) {
  if constexpr (kStrips == 3) {
    if (strips == 3) return multiplyTile<3>(left, right, depth, start, c, stride, ahead);
    if (strips == 2) return multiplyTile<2>(left, right, depth, start, c, stride, ahead);
  }
  multiplyTile<1>(left, right, depth, start, c, stride, ahead);
}

/// A tile over the edge of the result is computed apart. Its surplus cells hold anything.
void multiplyEdge(const double* left, const double* right, std::size_t depth, Start start,
                  std::size_t strips, const Matrix& cells, Ahead ahead) {
  alignas(64) double edge[kColumns * kStrips * kTile] = {};
  const std::size_t stride = strips * kTile;
  if (start == Start::present) {
    for (std::size_t j = 0; j < cells.columns; ++j) {
      std::copy_n(cells.column(j), cells.rows, edge + j * stride);
    }
  }
  multiplyAnyTile(left, right, depth, start, strips, edge, stride, ahead);
  for (std::size_t j = 0; j < cells.columns; ++j) {
    std::copy_n(edge + j * stride, cells.rows, cells.column(j));
  }
}

void multiplyAll(const double* left, const double* right, std::size_t depth, Start start,
                 std::ptrdiff_t diagonal, const Matrix& c) {
  constexpr std::size_t kRows = kStrips * kTile;
  for (std::size_t j = 0; j < c.columns; j += kColumns) {
    const std::size_t columns = std::min(kColumns, c.columns - j);
    const double* const nextRight = right + (j + columns < c.columns ? j + columns : j) * depth;
    for (std::size_t i = 0; i < c.rows; i += kRows) {
      if (static_cast<std::ptrdiff_t>(i) >= static_cast<std::ptrdiff_t>(j + columns) + diagonal) {
        break;
      }
      const std::size_t rows = std::min(kRows, c.rows - i);
      const std::size_t strips = (rows + kTile - 1) / kTile;
      const std::size_t quarter = std::min(i / kRows, kTilesAhead - 1);
      Ahead ahead{nextRight + quarter * kLinesAhead * depth, c.column(j) + i};
      if (i + rows < c.rows) {
        ahead.cells += rows;
      } else if (j + columns < c.columns) {
        ahead.cells = c.column(j + columns);
      }
      if (columns == kColumns && rows == strips * kTile) {
        multiplyAnyTile(left + i * depth, right + j * depth, depth, start, strips, c.column(j) + i,
                        c.stride, ahead);
      } else {
        multiplyEdge(left + i * depth, right + j * depth, depth, start, strips,
                     c.block(i, j, rows, columns), ahead);
      }
    }
  }
}

/// Cells of one vector of rows and kWidth columns, straight from the factors.
template <std::size_t kWidth, class D>
HWY_INLINE void multiplyCells(D d, const ConstMatrix& a, hn::Vec<D> sign, const double* b,
                              std::size_t nextDepth, std::size_t nextColumn, Start start, double* c,
                              std::size_t stride) {
  hn::Vec<D> sum[kWidth];
  for (std::size_t j = 0; j < kWidth; ++j) {
    sum[j] = start == Start::zero ? hn::Zero(d) : hn::LoadU(d, c + j * stride);
  }
  for (std::size_t k = 0; k < a.columns; ++k) {
    const hn::Vec<D> rows = hn::Xor(hn::LoadU(d, a.column(k)), sign);
    for (std::size_t j = 0; j < kWidth; ++j) {
      sum[j] = fusedMultiplyAdd(rows, hn::Set(d, b[k * nextDepth + j * nextColumn]), sum[j]);
    }
  }
  for (std::size_t j = 0; j < kWidth; ++j) hn::StoreU(sum[j], d, c + j * stride);
}

void multiplyDirectly(const ConstMatrix& a, bool isNegated, const ConstMatrix& b, Lines lines,
                      Start start, const Matrix& c) {
  const TileTag d;
  const hn::CappedTag<double, 1> one;
  const double sign = isNegated ? -0.0 : 0.0;
  const std::size_t nextDepth = lines == Lines::columns ? 1 : b.stride;
  const std::size_t nextColumn = lines == Lines::columns ? b.stride : 1;
  const auto multiplyColumns = [&](auto width, std::size_t j) HWY_ATTR {
    const double* const columns = b.data + j * nextColumn;
    std::size_t i = 0;
    for (; i + kTile <= c.rows; i += kTile) {
      multiplyCells<width()>(d, a.block(i, 0, kTile, a.columns), hn::Set(d, sign), columns,
                             nextDepth, nextColumn, start, c.column(j) + i, c.stride);
    }
    for (; i < c.rows; ++i) {
      multiplyCells<width()>(one, a.block(i, 0, 1, a.columns), hn::Set(one, sign), columns,
                             nextDepth, nextColumn, start, c.column(j) + i, c.stride);
    }
  };
  std::size_t j = 0;
  for (; j + 4 <= c.columns; j += 4) {
    multiplyColumns(std::integral_constant<std::size_t, 4>(), j);
  }
  for (; j < c.columns; ++j) multiplyColumns(std::integral_constant<std::size_t, 1>(), j);
}

}  // namespace
}  // namespace zel::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zel::kernels {

HWY_EXPORT(pack);
HWY_EXPORT(multiplyAll);
HWY_EXPORT(multiplyDirectly);

void packStrips(ConstMatrix part, Lines lines, bool isNegated, double* to) {
  HWY_DYNAMIC_DISPATCH(pack)(part, lines, isNegated, to);
}

void multiplyStrips(const double* left, const double* right, std::size_t depth, Start start,
                    std::ptrdiff_t diagonal, Matrix c) {
  HWY_DYNAMIC_DISPATCH(multiplyAll)(left, right, depth, start, diagonal, c);
}

void multiplyUnpacked(ConstMatrix a, bool isNegated, ConstMatrix b, Lines lines, Start start,
                      Matrix c) {
  HWY_DYNAMIC_DISPATCH(multiplyDirectly)(a, isNegated, b, lines, start, c);
}

}  // namespace zel::kernels
#endif
