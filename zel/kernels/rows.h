/// @file
/// Rows of a matrix that is stored by columns, as contiguous spans.
#pragma once

#include <algorithm>
#include <cstddef>
#include <span>
#include <type_traits>
#include <vector>

#include "zel/kernels/dense.h"

namespace zel::kernels {

/// Calls use(r, row) for each row in order; what it changes in a row of a mutable matrix is stored.
/// Rows are moved in blocks, so that a column is read a cache line at a time.
/// @throws std::bad_alloc  before the first call
template <class T, class Use>
void forEachRow(MatrixSpan<T> m, Use&& use) {
  constexpr std::size_t kBlock = 16;
  const std::size_t n = m.columns;
  std::vector<std::remove_const_t<T>> block(n * std::min(kBlock, m.rows));
  for (std::size_t first = 0; first < m.rows; first += kBlock) {
    const std::size_t rows = std::min(kBlock, m.rows - first);
    for (std::size_t c = 0; c < n; ++c) {
      for (std::size_t k = 0; k < rows; ++k) block[k * n + c] = m(first + k, c);
    }
    for (std::size_t k = 0; k < rows; ++k) use(first + k, std::span<T>(block.data() + k * n, n));
    if constexpr (!std::is_const_v<T>) {
      for (std::size_t c = 0; c < n; ++c) {
        for (std::size_t k = 0; k < rows; ++k) m(first + k, c) = block[k * n + c];
      }
    }
  }
}

/// Calls use(c, column) for each column in order.
template <class T, class Use>
void forEachColumn(MatrixSpan<T> m, Use&& use) {
  for (std::size_t c = 0; c < m.columns; ++c) use(c, m[c]);
}

}  // namespace zel::kernels
