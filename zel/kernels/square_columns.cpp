#include <algorithm>
#include <cstddef>

#include "zel/kernels/products.h"
#include "zel/kernels/scratch.h"
#include "zel/kernels/strips.h"

namespace zel::kernels {

namespace {

// Columns beyond the range are packed a few at a time, so that they stay in the second-level cache.
constexpr std::size_t kOthers = 48;
static_assert(kOthers % kStripGroup == 0);

/// Divides rows first..last-1 of the upper triangle and copies them below the diagonal, block by
/// block, since one of the two runs across the columns.
void divideAndMirror(double divisor, std::size_t first, std::size_t last, Matrix r) {
  constexpr std::size_t kBlock = 32;
  for (std::size_t row = first; row < last; row += kBlock) {
    const std::size_t rowEnd = std::min(last, row + kBlock);
    for (std::size_t column = row; column < r.columns; column += kBlock) {
      const std::size_t columnEnd = std::min(r.columns, column + kBlock);
      for (std::size_t j = column; j < columnEnd; ++j) {
        for (std::size_t i = row; i < std::min(rowEnd, j + 1); ++i) {
          r(i, j) /= divisor;
          r(j, i) = r(i, j);
        }
      }
    }
  }
}

}  // namespace

// A tile across the diagonal also computes a few cells below it. Both their indices are at least
// `first`, and the row is below `last`, so they belong to this call and to no other.
void squareColumns(ConstMatrix a, double divisor, std::size_t first, std::size_t last, Matrix r) {
  if (first >= last) return;
  const std::size_t rows = last - first;
  const std::size_t columns = a.columns - first;
  const std::size_t depthBlock = std::min(a.rows, kDepthBlock);
  const std::size_t ownSize = paddedLines(rows) * depthBlock;
  const Scratch scratch(ownSize + kOthers * depthBlock);
  double* const own = scratch.data();
  double* const others = own + ownSize;
  if (a.rows == 0) {
    for (std::size_t j = first; j < a.columns; ++j) std::fill_n(r.column(j) + first, rows, 0.0);
  }
  for (std::size_t k = 0; k < a.rows; k += kDepthBlock) {
    const std::size_t depth = std::min(kDepthBlock, a.rows - k);
    packStrips(a.block(k, first, depth, rows), Lines::columns, false, own);
    for (std::size_t j = 0; j < columns;) {
      const bool isOwn = j < rows;
      const std::size_t width =
          isOwn ? std::min(kColumnBlock, rows - j) : std::min(kOthers, columns - j);
      if (!isOwn) packStrips(a.block(k, first + j, depth, width), Lines::columns, false, others);
      for (std::size_t i = 0; i < std::min(rows, j + width); i += kRowBlock) {
        const std::size_t height = std::min(kRowBlock, rows - i);
        multiplyStrips(own + i * depth, isOwn ? own + j * depth : others, depth,
                       k == 0 ? Start::zero : Start::present,
                       static_cast<std::ptrdiff_t>(j) - static_cast<std::ptrdiff_t>(i),
                       r.block(first + i, first + j, height, width));
      }
      j += width;
    }
  }
  divideAndMirror(divisor, first, last, r);
}

}  // namespace zel::kernels
