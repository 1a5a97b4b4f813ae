#include <algorithm>
#include <cstddef>
#include <utility>

#include "zel/kernels/products.h"
#include "zel/kernels/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "zel/kernels/transpose_simd.cpp"
#include "hwy/foreach_target.h"  // IWYU pragma: keep
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace zel::kernels::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

#include "zel/kernels/square_tile-inl.h"

// A cell of eight by eight fills whole cache lines in both matrices.
constexpr std::size_t kCell = 8;
// Few enough columns for the translation buffers, which matter more than the caches here.
#ifndef TB
#define TB 32
#endif
constexpr std::size_t kBlock = TB;

struct CellVecs {
  TileVec v[kCell][kCell / kTile];
};

/// The cell transposed.
HWY_INLINE CellVecs loadTransposed(const double* from, std::size_t stride) {
  const TileTag d;
  CellVecs cell;
  for (std::size_t c = 0; c < kCell / kTile; ++c) {
    for (std::size_t r = 0; r < kCell / kTile; ++r) {
      TileVec tile[kTile];
      for (std::size_t i = 0; i < kTile; ++i) {
        tile[i] = hn::LoadU(d, from + (c * kTile + i) * stride + r * kTile);
      }
      transposeTile(tile);
      for (std::size_t i = 0; i < kTile; ++i) cell.v[r * kTile + i][c] = tile[i];
    }
  }
  return cell;
}

HWY_INLINE void store(const CellVecs& cell, double* to, std::size_t stride) {
  for (std::size_t i = 0; i < kCell; ++i) {
    for (std::size_t c = 0; c < kCell / kTile; ++c) {
      hn::StoreU(cell.v[i][c], TileTag(), to + i * stride + c * kTile);
    }
  }
}

void transposeBlock(const ConstMatrix& from, const Matrix& to) {
  const std::size_t rows = from.rows / kCell * kCell;
  const std::size_t columns = from.columns / kCell * kCell;
  for (std::size_t r = 0; r < rows; r += kCell) {
    for (std::size_t c = 0; c < columns; c += kCell) {
      store(loadTransposed(from.column(c) + r, from.stride), to.column(r) + c, to.stride);
    }
  }
  for (std::size_t c = 0; c < from.columns; ++c) {
    for (std::size_t r = c < columns ? rows : 0; r < from.rows; ++r) to(c, r) = from(r, c);
  }
}

void transposeAll(const ConstMatrix& from, const Matrix& to) {
  for (std::size_t c = 0; c < from.columns; c += kBlock) {
    const std::size_t columns = std::min(kBlock, from.columns - c);
    for (std::size_t r = 0; r < from.rows; r += kBlock) {
      const std::size_t rows = std::min(kBlock, from.rows - r);
      transposeBlock(from.block(r, c, rows, columns), to.block(c, r, columns, rows));
    }
  }
}

/// Exchanges the block above the diagonal with its mirror image below it.
void exchangeBlocks(const Matrix& upper, const Matrix& lower) {
  const std::size_t rows = upper.rows / kCell * kCell;
  const std::size_t columns = upper.columns / kCell * kCell;
  for (std::size_t c = 0; c < columns; c += kCell) {
    for (std::size_t r = 0; r < rows; r += kCell) {
      double* const above = upper.column(c) + r;
      double* const below = lower.column(r) + c;
      const CellVecs cell = loadTransposed(above, upper.stride);
      store(loadTransposed(below, upper.stride), above, upper.stride);
      store(cell, below, upper.stride);
    }
  }
  for (std::size_t c = 0; c < upper.columns; ++c) {
    for (std::size_t r = c < columns ? rows : 0; r < upper.rows; ++r) {
      std::swap(upper(r, c), lower(c, r));
    }
  }
}

void transposeInPlace(const Matrix& a) {
  for (std::size_t c = 0; c < a.columns; c += kBlock) {
    const std::size_t columns = std::min(kBlock, a.columns - c);
    for (std::size_t r = 0; r < c; r += kBlock) {
      exchangeBlocks(a.block(r, c, kBlock, columns), a.block(c, r, columns, kBlock));
    }
    for (std::size_t i = c; i < c + columns; ++i) {
      for (std::size_t j = c; j < i; ++j) std::swap(a(i, j), a(j, i));
    }
  }
}

}  // namespace
}  // namespace zel::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zel::kernels {

HWY_EXPORT(transposeAll);
HWY_EXPORT(transposeInPlace);

void transpose(ConstMatrix from, Matrix to) { HWY_DYNAMIC_DISPATCH(transposeAll)(from, to); }

void transposeSquare(Matrix a) { HWY_DYNAMIC_DISPATCH(transposeInPlace)(a); }

}  // namespace zel::kernels
#endif
