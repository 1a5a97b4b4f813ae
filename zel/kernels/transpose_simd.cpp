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

// Tiles are handled in cells of eight by eight, which fill whole cache lines in both matrices, and
// cells in blocks of few columns, for the sake of the translation buffers.
constexpr std::size_t kCell = 8;
constexpr std::size_t kBlock = 32;

HWY_INLINE void loadTransposed(const double* from, std::size_t stride, TileVec (&tile)[kTile]) {
  for (std::size_t i = 0; i < kTile; ++i) tile[i] = hn::LoadU(TileTag(), from + i * stride);
  transposeTile(tile);
}

HWY_INLINE void store(const TileVec (&tile)[kTile], double* to, std::size_t stride) {
  for (std::size_t i = 0; i < kTile; ++i) hn::StoreU(tile[i], TileTag(), to + i * stride);
}

/// Calls tile(r, c) for each tile of the whole cells, then rest(r, c) for each other element.
template <class Tile, class Rest>
HWY_INLINE void forTiles(std::size_t rows, std::size_t columns, Tile tile, Rest rest) {
  const std::size_t cellRows = rows / kCell * kCell;
  const std::size_t cellColumns = columns / kCell * kCell;
  for (std::size_t c = 0; c < cellColumns; c += kCell) {
    for (std::size_t r = 0; r < cellRows; r += kCell) {
      for (std::size_t i = r; i < r + kCell; i += kTile) {
        for (std::size_t j = c; j < c + kCell; j += kTile) tile(i, j);
      }
    }
  }
  for (std::size_t c = 0; c < columns; ++c) {
    for (std::size_t r = c < cellColumns ? cellRows : 0; r < rows; ++r) rest(r, c);
  }
}

void transposeBlock(const ConstMatrix& from, const Matrix& to) {
  forTiles(
      from.rows, from.columns,
      [&](std::size_t r, std::size_t c) HWY_ATTR {
        TileVec tile[kTile];
        loadTransposed(from.column(c) + r, from.stride, tile);
        store(tile, to.column(r) + c, to.stride);
      },
      [&](std::size_t r, std::size_t c) { to(c, r) = from(r, c); });
}

/// Exchanges the block above the diagonal with its mirror image below it.
void exchangeBlocks(const Matrix& upper, const Matrix& lower) {
  const std::size_t stride = upper.stride;
  forTiles(
      upper.rows, upper.columns,
      [&](std::size_t r, std::size_t c) HWY_ATTR {
        double* const above = upper.column(c) + r;
        double* const below = lower.column(r) + c;
        TileVec tile[kTile];
        TileVec mirror[kTile];
        loadTransposed(above, stride, tile);
        loadTransposed(below, stride, mirror);
        store(tile, below, stride);
        store(mirror, above, stride);
      },
      [&](std::size_t r, std::size_t c) { std::swap(upper(r, c), lower(c, r)); });
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

/// Blocks on the diagonal are transposed by cells, and cells on the diagonal one by one.
void transposeByBlocks(const Matrix& a, std::size_t block) {
  for (std::size_t c = 0; c < a.columns; c += block) {
    const std::size_t columns = std::min(block, a.columns - c);
    for (std::size_t r = 0; r < c; r += block) {
      exchangeBlocks(a.block(r, c, block, columns), a.block(c, r, columns, block));
    }
    if (block > kCell) {
      transposeByBlocks(a.block(c, c, columns, columns), kCell);
      continue;
    }
    for (std::size_t i = c; i < c + columns; ++i) {
      for (std::size_t j = c; j < i; ++j) std::swap(a(i, j), a(j, i));
    }
  }
}

void transposeInPlace(const Matrix& a) { transposeByBlocks(a, kBlock); }

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
