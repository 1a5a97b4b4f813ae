/// @file
/// Association of variables, eigenvectors, principal components, distances.
///
/// Data matrices hold one variable per column and one observation per row.
#pragma once

#include "zel/base/api.h"
#include "zel/matrix/TMatrix.h"
#include "zel/vector/Zel_vector.h"

namespace zel {

/// Association of the variables LowCol..HighCol over the observations LowRow..HighRow, in the
/// first n rows and columns of CovMat, n being the number of variables. With m observations, the
/// sum of products of deviations from the means s = sum (x - mean x)(y - mean y) gives
///
/// | Mode | element |
/// |---|---|
/// | 0 | sum x y / (m - 1) |
/// | 1 | covariance s / (m - 1) |
/// | 2 | correlation s / sqrt(sum (x - mean x)^2 sum (y - mean y)^2), with a diagonal of 1 |
/// | 3 | its square |
/// | 4 | sum (x - y)^2 / (m - 1) |
///
/// A constant variable has correlation 0 with all others. Identical ones have exactly 1. Fewer than
/// two observations give values that are not finite. Sums of products are those of short runs,
/// added in double-double.
///
/// Clears AbortMathProc first; setting it later stops the work. Progress: for Mode above 0 one step
/// for each observation, then for each element of the lower triangle a step of m. CovMat fires
/// OnChange once.
/// @param LowCol, HighCol, LowRow, HighRow  limited to the matrix; (0, 0) is the whole dimension
/// @param CovMat  at least n x n; other cells stay. It may be InMat.
/// @return false if CovMat is too small or a matrix is null or Mode is none of these (nothing is
///   computed), and if stopped (some elements are missing)
/// @throws EZELMath2Error  "CalcCovar: not enough memory"; CovMat is unchanged then
/// Cost: O(m n^2).
ZEL_API bool CalcCovar(const TMatrix* InMat, TMatrix* CovMat, int LowCol, int HighCol, int LowRow,
                       int HighRow, int Mode);

/// Eigenvalues and unit eigenvectors of a symmetric matrix, kept until the next call for
/// GetEigenResult. They come in the order in which the rotations leave them, not sorted. The
/// storage is one for the whole process and not synchronised.
///
/// Clears AbortMathProc first; setting it later stops the work. Progress: a step for each sweep and
/// for each element above the diagonal in it.
/// @param Mat  its diagonal and the elements above it (column number greater than row number) are
///   read; those above are destroyed, without notification
/// @return false for more than 10000 columns, fewer rows than columns, or null (nothing changes);
///   without convergence after 100 sweeps, as for elements that are not finite; if stopped
/// @throws EZELMath2Error  "CalcEigVec: not enough memory"; nothing changes then
/// Method: cyclic Jacobi with thresholds (Rutishauser, Numer. Math. 9 (1966) 1). O(n^3) a sweep,
/// some ten sweeps.
ZEL_API bool CalcEigVec(TMatrix* Mat);
/// Eigenvalue EigIx (VecElem = 0) or component VecElem of eigenvector EigIx, both numbered from 1;
/// 0 outside and if nothing is stored.
[[nodiscard]] ZEL_API double GetEigenResult(int EigIx, int VecElem);
/// Order of the last matrix that CalcEigVec took; 0 before.
[[nodiscard]] ZEL_API int GetEigenSize();
/// Releases what CalcEigVec stored. The size stays.
ZEL_API void RemoveEigenMatrix();

/// Principal components: CalcCovar, then CalcEigVec of its result. The positive eigenvalues stand
/// first, in descending order, each with its vector; the result is read by GetEigenResult.
/// @param Mode    that of CalcCovar: 1 and 2 for components of the covariances and the correlations
/// @param Scaled  divides the eigenvalues by the sum of their magnitudes, if that is not 0: the
///   parts of the total variance that the components explain
/// @return false if one of the two fails
ZEL_API bool CalcPrincComp(const TMatrix* Mat, int LowCol, int HighCol, int LowRow, int HighRow,
                           int Mode, bool Scaled);
/// The same with Scaled.
ZEL_API bool CalcPrincComp(const TMatrix* Mat, int LowCol, int HighCol, int LowRow, int HighRow,
                           int Mode);

/// Mahalanobis distance sqrt((x - y)^T S (x - y)), S being an inverse covariance matrix.
/// @throws EZELVectorError  "MahalanobisDistance: dimensions of vectors do not match";
///   "MahalanobisDistance: inverse covariance matrix is not quadratric"; "MahalanobisDistance:
///   dimension of vectors and inverse covariance matrix do not match"; "MahalanobisDistance: the
///   inverse covariance matrix must be symmetric and positive definite" for a negative square. Null
///   does not match anything.
[[nodiscard]] ZEL_API double MahalanobisDistance(const TVector* x, const TVector* y,
                                                 const TMatrix* InvCov);

/// Fisher's discriminant ratio (Mean1 - Mean2)^2 / (StdDev1^2 + StdDev2^2); the denominator is at
/// least 1E-6.
[[nodiscard]] ZEL_API double CalcFishQ(double Mean1, double Mean2, double StdDev1, double StdDev2);

}  // namespace zel
