/// @file
/// Matrix products. Each cell of a result is one sum over the inner index, upwards, by fused
/// multiply-add, so blocking, vector width and number of threads do not show in the bits; a machine
/// without the instruction emulates it exactly.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "zel/kernels/dense.h"

namespace zel::kernels {

/// How a factor enters a product.
enum class Factor : std::uint8_t { plain, transposed };

/// c = A B, where A is a or its transpose and B is b or its transpose; the sums start at 0. The
/// shapes must fit (columns of A = rows of B; c has the rows of A and the columns of B), and c must
/// not overlap a or b. An inner extent of 0 gives zeros.
/// @throws std::bad_alloc  before c is touched
void multiply(ConstMatrix a, Factor asA, ConstMatrix b, Factor asB, Matrix c);

/// c = c - A B; each cell continues from its value, fma(-a, b, c) upwards.
/// @throws std::bad_alloc  before c is touched
void subtractProduct(ConstMatrix a, Factor asA, ConstMatrix b, Factor asB, Matrix c);

/// y = A x; y has the rows of A, x its columns, and they must not overlap.
void multiplyVector(ConstMatrix a, Factor asA, std::span<const double> x, std::span<double> y);

/// Columns first..last-1 of the square product r = (a^T a) / divisor: for each i of them and every
/// j from i on, the sum is divided and written to r(i, j) and r(j, i). Calls for different ranges
/// may run at the same time. r is square with the columns of a and must not overlap it. A call
/// reads all columns from `first` on: of a matrix of 300 columns, runs of 64 cost a tenth more than
/// a single call, runs of 16 nearly twice as much.
/// @throws std::bad_alloc  before r is touched
void squareColumns(ConstMatrix a, double divisor, std::size_t first, std::size_t last, Matrix r);

/// to = transpose of from; to has the rows of from as columns, and they must not overlap.
void transpose(ConstMatrix from, Matrix to);
/// The same in place, of a square matrix.
void transposeSquare(Matrix a);

}  // namespace zel::kernels
