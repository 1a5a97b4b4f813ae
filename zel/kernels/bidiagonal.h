/// @file
/// Reduction of a matrix to bidiagonal form by reflections H = 1 - f v v^T, and what is made of the
/// reflections and of plane rotations. Sums run over sixteen lanes and products are rounded before
/// they are added, so every instruction set gives the same bits.
#pragma once

#include <cstddef>

#include "zel/kernels/dense.h"
#include "zel/kernels/poll.h"

namespace zel::kernels {

/// Upper bidiagonal matrix, square with the columns of the matrix it comes from, and the factors f
/// of the reflections that lead to it. Arrays of that many elements.
struct Bidiagonal {
  double* diagonal;
  double* above;  ///< above[j] stands between columns j - 1 and j; above[0] is 0
  double* left;   ///< factor of the reflection that clears column j below the diagonal
  double* right;  ///< factor of the reflection that clears row j
};

/// Reduces a = U B V^T (Golub and Kahan 1965), reading and writing whole columns: each step takes
/// two passes over the rest of the matrix.
/// @param a     of any shape, its values finite and of ordinary size; column j takes the vector of
///   the left reflection j from row j on
/// @param v     empty or square with the columns of a; column j takes the vector of the right
///   reflection j from row j + 1 on
/// @param work  rows + columns numbers
/// @param step  asked before each column
/// @return false if a step said no
[[nodiscard]] bool reduceToBidiagonal(Matrix a, Matrix v, const Bidiagonal& b, double* work,
                                      Poll step);

/// Replaces the vectors in the columns of x by the product of their reflections, 0 to last: its
/// first columns. Column j holds a vector from row j + below on (below is 0 or 1); columns without
/// one have factor 0.
/// @param step  asked before each column
/// @return false if a step said no
[[nodiscard]] bool multiplyReflections(Matrix x, std::size_t below, const double* factors,
                                       Poll step);

/// For j = 0 .. count - 1 in turn: columns first + j and first + j + 1 become c x + s y and c y - s
/// x.
void rotateColumns(Matrix x, std::size_t first, std::size_t count, const double* c,
                   const double* s);

}  // namespace zel::kernels
