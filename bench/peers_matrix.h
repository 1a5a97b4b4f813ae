/// @file
/// What a user would write or call instead of the matrix class. Compiled apart, with -O3
/// -march=native.
#pragma once

#include <cstddef>

#include "bench/peers_sums.h"

namespace zel::bench {

/// Transposes a square matrix in place.
void eigenTranspose(double* a, std::size_t n);

/// Euclidean distances of all rows of a matrix stored by columns, pair by pair.
void plainDistances(const double* x, std::size_t rows, std::size_t columns, double* distances);

}  // namespace zel::bench
