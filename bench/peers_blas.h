/// @file
/// OpenBLAS, with its LAPACK, on one thread. Matrices are square and stored by columns without gaps
/// unless shapes are given.
#pragma once

#include <cstddef>

namespace zel::bench {

/// c = a b
void blasMultiply(const double* a, const double* b, double* c, std::size_t n);
/// Upper triangle of c = a^T a, a of the given shape.
void blasSquare(const double* a, std::size_t rows, std::size_t columns, double* c);
/// y = a x or a^T x
void blasMultiplyVector(const double* a, bool isTransposed, const double* x, double* y,
                        std::size_t n);

/// In place; pivots has room for n. Each returns LAPACK's info, 0 for success.
int lapackLu(double* a, int* pivots, std::size_t n);
/// dgetrf and dgetri, with the workspace that dgetri asks for.
int lapackInverse(double* a, int* pivots, std::size_t n);
/// Lower triangle.
int lapackCholesky(double* a, std::size_t n);

}  // namespace zel::bench
