/// @file
/// Completion of symmetric matrices.
#pragma once

#include <algorithm>
#include <cstddef>

#include "zel/kernels/dense.h"
#include "zel/kernels/products.h"

namespace zel::kernels {

/// Copies the strict lower triangle of a square matrix to the upper one, block by block.
inline void mirrorLower(Matrix m) {
  constexpr std::size_t kBlock = 64;
  const std::size_t n = m.columns;
  for (std::size_t c = 0; c < n; c += kBlock) {
    const std::size_t columns = std::min(kBlock, n - c);
    for (std::size_t i = c; i < c + columns; ++i) {
      for (std::size_t j = i + 1; j < c + columns; ++j) m(i, j) = m(j, i);
    }
    for (std::size_t r = c + columns; r < n; r += kBlock) {
      const std::size_t rows = std::min(kBlock, n - r);
      transpose(m.block(r, c, rows, columns), m.block(c, r, columns, rows));
    }
  }
}

}  // namespace zel::kernels
