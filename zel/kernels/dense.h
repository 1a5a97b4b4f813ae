/// @file
/// Views of dense matrices stored by columns.
#pragma once

#include <cstddef>
#include <span>
#include <type_traits>

namespace zel::kernels {

/// Column-major view: the element in row r and column c is data[c * stride + r], both from 0.
/// Extents of 0 are legal. Copies are cheap; nothing is owned.
template <class T>
struct MatrixSpan {
  T* data = nullptr;
  std::size_t rows = 0;
  std::size_t columns = 0;
  std::size_t stride = 0;  ///< distance between neighbouring columns, at least rows

  [[nodiscard]] T* column(std::size_t c) const { return data + c * stride; }
  [[nodiscard]] std::span<T> operator[](std::size_t c) const { return {column(c), rows}; }
  [[nodiscard]] T& operator()(std::size_t r, std::size_t c) const { return data[c * stride + r]; }
  [[nodiscard]] bool empty() const { return rows == 0 || columns == 0; }

  /// The part that begins at row r and column c.
  [[nodiscard]] MatrixSpan block(std::size_t r, std::size_t c, std::size_t nRows,
                                 std::size_t nColumns) const {
    return {data + c * stride + r, nRows, nColumns, stride};
  }

  operator MatrixSpan<const T>() const requires(!std::is_const_v<T>) {
    return {data, rows, columns, stride};
  }
};

using Matrix = MatrixSpan<double>;
using ConstMatrix = MatrixSpan<const double>;

}  // namespace zel::kernels
