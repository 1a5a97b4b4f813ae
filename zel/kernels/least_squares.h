/// @file
/// Linear least squares and the pseudo-inverse by singular value decomposition.
///
/// The matrix is reduced to its triangular factor by orthogonal transformations of blocks of rows,
/// and that factor is decomposed; all shapes are legal. Values that are not finite give false.
#pragma once

#include <span>

#include "zel/kernels/dense.h"

namespace zel::kernels {

/// Singular values below this part of the largest one count as zero.
inline constexpr double kNegligibleSingularValue = 1e-14;

/// Solves min |A x - b|.
///
/// The solution is refined with residuals in double-double until it is right to about a unit in the
/// last place, as far as the condition of A allows (Bjoerck, BIT 7 (1967) 257).
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

/// c[j] = sqrt(sum v(j, k)^2 / w[k]^2) over the w that are not 0, for the right-hand factor v and
/// the singular values w of a matrix.
void errorFactors(ConstMatrix v, std::span<const double> w, std::span<double> c);

/// p = pseudo-inverse (Moore, Penrose) of a; p has the transposed shape and must not overlap a.
/// @param tolerance  singular values below it count as zero; 0: max(rows, columns) times the
///   largest one times 1.2E-16
/// @return false if a singular value does not converge or a value is not finite; p is unchanged
/// @throws std::bad_alloc  before p is touched
[[nodiscard]] bool pseudoInverse(ConstMatrix a, double tolerance, Matrix p);

}  // namespace zel::kernels
