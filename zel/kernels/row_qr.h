/// @file
/// QR decomposition of matrices with many rows, one block of rows at a time.
#pragma once

#include <cstddef>
#include <span>

#include "zel/kernels/dense.h"

namespace zel::kernels {

/// Orthogonal factor Q of A = Q (R; 0), kept as reflections. Each block of rows is small enough to
/// stay in the cache while it is merged into R, so a decomposition reads and writes A once. Q
/// stands for a square matrix with rows of A + n rows: the first n belong to R, which begins as
/// zeros.
///
/// Sums run over sixteen lanes and products are rounded before they are added: the same bits on
/// every machine. Method: Householder QR of stacked blocks (Demmel, Grigori, Hoemmen and Langou,
/// SIAM J. Sci. Comput. 34 (2012) A206).
class RowQr {
 public:
  /// @param a        of any shape, its values finite and of ordinary size; replaced by the vectors
  ///   of the reflections. It and the factors must outlive the object.
  /// @param factors  columns * blocks(rows, columns) numbers
  /// @param r        square with the columns of a: takes the upper triangular factor
  RowQr(Matrix a, std::span<double> factors, Matrix r);

  /// Number of blocks that a matrix of this shape is cut into.
  [[nodiscard]] static std::size_t blocks(std::size_t rows, std::size_t columns);

  /// (top; rest) becomes Q^T (top; rest). Each column has n = columns of A elements in top and the
  /// rows of A in rest.
  void applyTransposed(Matrix top, Matrix rest) const;
  /// (top; rest) becomes Q (top; rest).
  void apply(Matrix top, Matrix rest) const;

 private:
  Matrix a_;
  std::span<double> factors_;
};

}  // namespace zel::kernels
