/// @file
/// Sums of products of deviations between the columns of a matrix.
#pragma once

#include <cstddef>
#include <span>

#include "zel/kernels/dense.h"

namespace zel::kernels {

/// r(i, j) = sum over the rows of f[i] (a(., i) - c[i]) times f[j] (a(., j) - c[j]), for i in
/// first..last-1 and j = 0..i. The factors f are powers of two.
///
/// Runs of rows go through the product kernel, and their sums are added in double-double: the error
/// is that of a short run, however many rows there are.
/// @param r  of last - first rows and at least `last` columns; the cells with j > i are scratch
/// @throws std::bad_alloc  before r is touched
void crossProducts(ConstMatrix a, std::span<const double> c, std::span<const double> f,
                   std::size_t first, std::size_t last, Matrix r);

}  // namespace zel::kernels
