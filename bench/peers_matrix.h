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

/// Reduces runs of n values that follow one another: value i of the result is the mean, the
/// maximum, the standard deviation (divisor runs) of value i of all runs.
void eigenMeanOfRuns(const double* x, std::size_t n, std::size_t runs, double* result);
void eigenMaximumOfRuns(const double* x, std::size_t n, std::size_t runs, double* result);
void eigenDeviationOfRuns(const double* x, std::size_t n, std::size_t runs, double* result);

}  // namespace zel::bench
