#include "zel/kernels/products.h"

#include <algorithm>
#include <cstddef>

#include "zel/kernels/scratch.h"
#include "zel/kernels/strips.h"

namespace zel::kernels {

namespace {

constexpr std::size_t kSmall = 16;

/// Packing the factors would cost more than it saves.
bool isThin(Factor asA, std::size_t rows, std::size_t columns, std::size_t inner) {
  if (std::max({rows, columns, inner}) <= kSmall) return true;
  return asA == Factor::plain && (inner <= 8 || (columns <= 8 && inner <= 64));
}

/// Rows r.. and columns c.. of a factor as it enters the product.
ConstMatrix part(ConstMatrix m, Factor as, std::size_t r, std::size_t c, std::size_t rows,
                 std::size_t columns) {
  return as == Factor::plain ? m.block(r, c, rows, columns) : m.block(c, r, columns, rows);
}

void addProduct(ConstMatrix a, Factor asA, ConstMatrix b, Factor asB, bool isNegated, Start start,
                Matrix c) {
  if (c.empty()) return;
  const std::size_t inner = asA == Factor::plain ? a.columns : a.rows;
  const Lines linesOfB = asB == Factor::plain ? Lines::columns : Lines::rows;
  if (isThin(asA, c.rows, c.columns, inner)) {
    double plain[kSmall * kSmall];
    if (asA == Factor::transposed) {
      transpose(a, {plain, c.rows, inner, c.rows});
      a = {plain, c.rows, inner, c.rows};
    }
    multiplyUnpacked(a, isNegated, b, linesOfB, start, c);
    return;
  }
  const std::size_t depthBlock = std::min(inner, kDepthBlock);
  const std::size_t leftSize = paddedLines(std::min(c.rows, kRowBlock)) * depthBlock;
  const std::size_t rightSize = paddedLines(std::min(c.columns, kColumnBlock)) * depthBlock;
  const Scratch scratch(leftSize + rightSize);
  double* const left = scratch.data();
  double* const right = left + leftSize;
  for (std::size_t j = 0; j < c.columns; j += kColumnBlock) {
    const std::size_t columns = std::min(kColumnBlock, c.columns - j);
    for (std::size_t k = 0; k < inner; k += kDepthBlock) {
      const std::size_t depth = std::min(kDepthBlock, inner - k);
      packStrips(part(b, asB, k, j, depth, columns), linesOfB, false, right);
      for (std::size_t i = 0; i < c.rows; i += kRowBlock) {
        const std::size_t rows = std::min(kRowBlock, c.rows - i);
        packStrips(part(a, asA, i, k, rows, depth),
                   asA == Factor::plain ? Lines::rows : Lines::columns, isNegated, left);
        multiplyStrips(left, right, depth, k == 0 ? start : Start::present,
                       static_cast<std::ptrdiff_t>(rows), c.block(i, j, rows, columns));
      }
    }
  }
}

}  // namespace

void multiply(ConstMatrix a, Factor asA, ConstMatrix b, Factor asB, Matrix c) {
  const std::size_t inner = asA == Factor::plain ? a.columns : a.rows;
  if (inner == 0) {
    for (std::size_t j = 0; j < c.columns; ++j) std::fill_n(c.column(j), c.rows, 0.0);
    return;
  }
  addProduct(a, asA, b, asB, false, Start::zero, c);
}

void subtractProduct(ConstMatrix a, Factor asA, ConstMatrix b, Factor asB, Matrix c) {
  addProduct(a, asA, b, asB, true, Start::present, c);
}

}  // namespace zel::kernels
