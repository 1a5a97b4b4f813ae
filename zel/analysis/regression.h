/// @file
/// Regression on several variables: least squares, ridge, partial least squares.
///
/// Data matrices hold one variable per column and one observation per row. Results are resized to
/// what they take, and each fires OnChange when all are complete. Failed allocations raise
/// EZELMath2Error, "<routine>: not enough memory", and leave the results unchanged.
#pragma once

#include <string_view>

#include "zel/base/api.h"
#include "zel/base/types.h"
#include "zel/matrix/TMatrix.h"
#include "zel/vector/Zel_vector.h"

namespace zel {

/// Multiple linear regression: minimises |y - X b|. There is no constant unless a column of X is
/// constant.
/// @param Coeff   b, one element per column of X; the solution of least norm where columns are
///   linearly dependent
/// @param StdErr  standard errors of b: residual standard deviation (divisor rows - columns) times
///   the error factors; 0 without degrees of freedom. May be null.
/// @param NearSingular  a singular value is below 1E-14 of the largest one and was taken as 0
/// @return false, with nothing changed but NearSingular (false), if the sizes do not fit, X has no
///   column or row, another argument is null, or a value is not finite
/// Method: singular value decomposition, refined with double-double residuals. O(m n^2).
ZEL_API bool MultiLinReg(const TMatrix* XMat, const TVector* YVec, TVector* Coeff, TVector* StdErr,
                         bool& NearSingular);

/// Ridge regression: minimises |y - X b|^2 + Lambda |b|^2, for data as they are. Lambda 0 gives
/// MultiLinReg.
/// @param Lambda  at least 0
/// @param StdErr  standard errors of b for a fixed Lambda: residual standard deviation times the
///   roots of the diagonal of (X^T X + Lambda)^-1 X^T X (X^T X + Lambda)^-1, the degrees of freedom
///   being rows - trace of the hat matrix. May be null.
/// @param NearSingular  the condition of the regularised problem exceeds 1E14
/// @return as MultiLinReg; false for a negative or not-a-number Lambda
/// Method: Hoerl and Kennard, Technometrics 12 (1970) 55, by singular value decomposition.
ZEL_API bool RidgeReg(const TMatrix* XMat, const TVector* YVec, double Lambda, TVector* Coeff,
                      TVector* StdErr, bool& NearSingular);

/// Ridge regression with a constant, of standardised regressors: minimises
/// |y - mean y - Z b|^2 + Lambda |b|^2, where the columns of Z are those of X less their means,
/// divided by their standard deviations (divisor rows - 1; constant columns are divided by 1).
/// @param Coeff    coefficients for X in its own units, then the constant
/// @param StdErr   their standard errors, that of the constant being 0 by convention of the centred
///   model; may be null
/// @param Means    means of the columns of X, then that of y; may be null
/// @param StdDevs  their standard deviations; may be null
/// @return as RidgeReg; false for fewer than two rows
ZEL_API bool RidgeRegStd(const TMatrix* XMat, const TVector* YVec, double Lambda, TVector* Coeff,
                         TVector* StdErr, TVector* Means, TVector* StdDevs, bool& NearSingular);

/// Partial least squares regression of q variables Y on p variables X, both centred: factors with
/// scores T = X R that are orthonormal and whose covariance with Y is as large as possible.
/// @param NFactors     limited to 1..min(rows - 1, p); fewer come out if the covariance is
/// exhausted
/// @param Standardize  divides the columns by their standard deviations first. The coefficients are
///   those of the data in their own units in any case.
/// @param XScores      T, a column per factor, orthonormal
/// @param XLoadings    P = X^T T
/// @param YScores      U, orthogonal to the scores T of earlier factors
/// @param YLoadings    Q = Y^T T
/// @param Weights      R
/// @param Coeff        q columns; p rows of coefficients R Q^T, then the constant
/// @param XVariance    part of the sum of squares of X that each factor explains
/// @param YVariance    the same of Y
/// @param Fitted       q columns of estimates of Y
/// Results may be null.
/// @return false, with nothing changed, if X or Y is null, without columns or with less than two
///   rows, if the numbers of rows differ, or if a value is not finite
/// Method: SIMPLS (de Jong, Chemom. Intell. Lab. Syst. 18 (1993) 251). O(rows p) per factor.
ZEL_API bool SimPLS(const TMatrix* XMat, const TMatrix* YMat, int NFactors, bool Standardize,
                    TMatrix* XScores, TMatrix* XLoadings, TMatrix* YScores, TMatrix* YLoadings,
                    TMatrix* Weights, TMatrix* Coeff, TVector* XVariance, TVector* YVariance,
                    TMatrix* Fitted);

/// The names of the variables in an expression, each once, in the order of first appearance, case
/// respected. A name begins with a letter or "_" and goes on with letters, digits, "_" and "."; one
/// that a "(" follows, behind blanks or not, is a function and no variable, and the letters of a
/// number such as 1.5e-3 are none. Texts in quotation marks (" or ') are passed over. Letters
/// beyond ASCII (UTF-8) are letters.
ZEL_API void ExtractVarNames(std::string_view Expression, TStrArray& Names);

}  // namespace zel
