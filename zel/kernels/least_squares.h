/// @file
/// Linear least squares and the pseudo-inverse by singular value decomposition.
#pragma once

#include <span>

#include "zel/kernels/dense.h"

namespace zel::kernels {

/// Solves min |A x - b|.
/// @param a             observations in the rows, any number of them; left as it is
/// @param b             one value per row of a
/// @param x             one value per column: the solution, of least norm if singular values are
///   taken as zero
/// @param errorFactors  empty or one value per column: sqrt(sum V[j, k]^2 / w[k]^2); times the
///   residual standard deviation the standard error of x[j]
/// @param nearSingular  a singular value was below 1E-14 of the largest one and is taken as zero
/// @return false if a singular value does not converge or a value is not finite; x is unchanged
/// @throws std::bad_alloc  before x is touched
[[nodiscard]] bool svdLeastSquares(ConstMatrix a, std::span<const double> b, std::span<double> x,
                                   std::span<double> errorFactors, bool& nearSingular);

}  // namespace zel::kernels
