/// @file
/// Singular value decomposition and what is solved by it.
#pragma once

#include "zel/base/api.h"
#include "zel/matrix/TMatrix.h"
#include "zel/vector/Zel_vector.h"

namespace zel {

/// Singular value decomposition A = U diag(W) V^T of a matrix of m rows and n columns.
/// @param A  replaced by U (m x n), whose columns are orthonormal where W is not 0
/// @param V  resized to n x n, orthogonal
/// @param W  resized to n: the singular values, not negative, in no particular order
/// @return false if a singular value took more than 30 iterations (the others are right) or an
///   element is not finite; for null or A = V. Nothing else changes in the last two cases.
/// @throws EZELMath2Error  "SingularValueDecompose: not enough memory"; A is unchanged then
/// OnChange of A, V and W fires once each. O(m n^2).
/// Method: Householder bidiagonalisation, implicitly shifted QR (Golub and Reinsch, Numer. Math. 14
/// (1970) 403).
ZEL_API bool SingularValueDecompose(TMatrix* A, TMatrix* V, TVector* W);
/// The same.
inline bool SingValDecomp(TMatrix* A, TMatrix* V, TVector* W) {
  return SingularValueDecompose(A, V, W);
}

/// Solves min |A x - b| from the decomposition A = U diag(W) V^T: x = V diag(1 / W) U^T b. Singular
/// values of 0 are passed over, so set those to 0 that are to be neglected.
/// @param MatU  m x n
/// @param MatV  n x n
/// @param VecW  n elements
/// @param VecB  m elements
/// @param VecX  resized to n elements: the solution
/// @param VecC  resized to n elements: sqrt(sum V[j, k]^2 / w[k]^2), the factors that turn the
///   residual standard deviation into standard errors of the solution; may be null
/// @return false, with nothing changed, if the sizes do not fit or another argument is null
/// @throws EZELMath2Error  "SingValEquSolve: not enough memory"
ZEL_API bool SingValEquSolve(const TMatrix* MatU, const TMatrix* MatV, const TVector* VecW,
                             const TVector* VecB, TVector* VecX, TVector* VecC);

/// Moore-Penrose pseudo-inverse.
/// @param PInv  resized to the transposed shape; may be Mat. OnChange fires once.
/// @param Tol   singular values below it count as 0; 0 takes max(rows, columns) times the largest
///   one times 1.2E-16
/// @return false, with PInv unchanged, if a singular value does not converge or an element is not
///   finite, and for null
/// @throws EZELMath2Error  "PseudoInverse: not enough memory"; PInv is unchanged then
/// O(m n^2).
ZEL_API bool PseudoInverse(const TMatrix* Mat, TMatrix* PInv, double Tol);

}  // namespace zel
