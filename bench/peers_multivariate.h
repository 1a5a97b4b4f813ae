/// @file
/// What a user would call instead. Compiled apart, with -O3 -march=native. Matrices are stored by
/// columns.
#pragma once

namespace zel::bench {

/// With vectors; returns the largest eigenvalue.
double eigenSymmetric(const double* a, long n);
/// With both factors; returns the largest singular value.
double eigenSvd(const double* a, long rows, long columns);
/// By a complete orthogonal decomposition.
void eigenLeastSquares(const double* a, long rows, long columns, const double* b, double* x);
void eigenPseudoInverse(const double* a, long rows, long columns, double* inverse);
/// As a product of the centred data, lower triangle.
void eigenCovariance(const double* a, long rows, long columns, double* covariance);

}  // namespace zel::bench
