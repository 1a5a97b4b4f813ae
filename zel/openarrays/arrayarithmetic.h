/// @file
/// Arithmetic of plain arrays, cell by cell and as matrices. An array of two dimensions is indexed
/// [column][row].
#pragma once

#include <span>

#include "zel/base/Zel_zelbase.h"

namespace zel {

/// Sum of two arrays of the same shape, cell by cell; integers wrap modulo 2^32, here and below.
/// Result gets the extents of the operands and may be one of them.
/// @return 0; -1 if an operand is empty, -2 if the shapes differ
/// @throws EZELError  "<routine>: not enough memory"; Result is unchanged then, here and below
ZEL_API int AddArrays(std::span<const double> A, std::span<const double> B, TDoubleArray& Result);
ZEL_API int AddArrays(const TDouble2DArray& A, const TDouble2DArray& B, TDouble2DArray& Result);
ZEL_API int AddArrays(const TDouble3DArray& A, const TDouble3DArray& B, TDouble3DArray& Result);
ZEL_API int AddArrays(const TDouble4DArray& A, const TDouble4DArray& B, TDouble4DArray& Result);
ZEL_API int AddArrays(std::span<const int> A, std::span<const int> B, TIntArray& Result);
ZEL_API int AddArrays(const TInt2DArray& A, const TInt2DArray& B, TInt2DArray& Result);
ZEL_API int AddArrays(const TInt3DArray& A, const TInt3DArray& B, TInt3DArray& Result);
ZEL_API int AddArrays(const TInt4DArray& A, const TInt4DArray& B, TInt4DArray& Result);

/// Difference A - B, otherwise as AddArrays.
ZEL_API int SubtractArrays(std::span<const double> A, std::span<const double> B,
                           TDoubleArray& Result);
ZEL_API int SubtractArrays(const TDouble2DArray& A, const TDouble2DArray& B,
                           TDouble2DArray& Result);
ZEL_API int SubtractArrays(const TDouble3DArray& A, const TDouble3DArray& B,
                           TDouble3DArray& Result);
ZEL_API int SubtractArrays(const TDouble4DArray& A, const TDouble4DArray& B,
                           TDouble4DArray& Result);
ZEL_API int SubtractArrays(std::span<const int> A, std::span<const int> B, TIntArray& Result);
ZEL_API int SubtractArrays(const TInt2DArray& A, const TInt2DArray& B, TInt2DArray& Result);
ZEL_API int SubtractArrays(const TInt3DArray& A, const TInt3DArray& B, TInt3DArray& Result);
ZEL_API int SubtractArrays(const TInt4DArray& A, const TInt4DArray& B, TInt4DArray& Result);

/// Product cell by cell (Hadamard product), otherwise as AddArrays.
ZEL_API int MultiplyArraysElemw(std::span<const double> A, std::span<const double> B,
                                TDoubleArray& Result);
ZEL_API int MultiplyArraysElemw(const TDouble2DArray& A, const TDouble2DArray& B,
                                TDouble2DArray& Result);
ZEL_API int MultiplyArraysElemw(std::span<const int> A, std::span<const int> B, TIntArray& Result);
ZEL_API int MultiplyArraysElemw(const TInt2DArray& A, const TInt2DArray& B, TInt2DArray& Result);

/// Every cell times a factor. Result gets the extents of Source and may be it.
/// @return 0; -1 if Source is empty
ZEL_API int MultiplyArrayByScalar(std::span<const double> Source, double Factor,
                                  TDoubleArray& Result);
ZEL_API int MultiplyArrayByScalar(const TDouble2DArray& Source, double Factor,
                                  TDouble2DArray& Result);
ZEL_API int MultiplyArrayByScalar(const TDouble3DArray& Source, double Factor,
                                  TDouble3DArray& Result);
ZEL_API int MultiplyArrayByScalar(const TDouble4DArray& Source, double Factor,
                                  TDouble4DArray& Result);
ZEL_API int MultiplyArrayByScalar(std::span<const int> Source, int Factor, TIntArray& Result);
ZEL_API int MultiplyArrayByScalar(const TInt2DArray& Source, int Factor, TInt2DArray& Result);
ZEL_API int MultiplyArrayByScalar(const TInt3DArray& Source, int Factor, TInt3DArray& Result);
ZEL_API int MultiplyArrayByScalar(const TInt4DArray& Source, int Factor, TInt4DArray& Result);
/// The same in place.
ZEL_API int MultiplyArrayByScalar(std::span<double> Arr, double Factor);
ZEL_API int MultiplyArrayByScalar(TDouble2DArray& Arr, double Factor);
ZEL_API int MultiplyArrayByScalar(TDouble3DArray& Arr, double Factor);
ZEL_API int MultiplyArrayByScalar(TDouble4DArray& Arr, double Factor);
ZEL_API int MultiplyArrayByScalar(std::span<int> Arr, int Factor);
ZEL_API int MultiplyArrayByScalar(TInt2DArray& Arr, int Factor);
ZEL_API int MultiplyArrayByScalar(TInt3DArray& Arr, int Factor);
ZEL_API int MultiplyArrayByScalar(TInt4DArray& Arr, int Factor);

/// Every cell plus a scalar, otherwise as MultiplyArrayByScalar.
ZEL_API int AddScalarToArray(std::span<const double> Source, double Scalar, TDoubleArray& Result);
ZEL_API int AddScalarToArray(const TDouble2DArray& Source, double Scalar, TDouble2DArray& Result);
ZEL_API int AddScalarToArray(const TDouble3DArray& Source, double Scalar, TDouble3DArray& Result);
ZEL_API int AddScalarToArray(const TDouble4DArray& Source, double Scalar, TDouble4DArray& Result);
ZEL_API int AddScalarToArray(std::span<const int> Source, int Scalar, TIntArray& Result);
ZEL_API int AddScalarToArray(const TInt2DArray& Source, int Scalar, TInt2DArray& Result);
ZEL_API int AddScalarToArray(const TInt3DArray& Source, int Scalar, TInt3DArray& Result);
ZEL_API int AddScalarToArray(const TInt4DArray& Source, int Scalar, TInt4DArray& Result);

/// Adds an increment to every cell.
/// @return 0; -1 if the array is empty
ZEL_API int IncArray(std::span<double> Arr, double Increment);
ZEL_API int IncArray(TDouble2DArray& Arr, double Increment);
ZEL_API int IncArray(TDouble3DArray& Arr, double Increment);
ZEL_API int IncArray(TDouble4DArray& Arr, double Increment);
ZEL_API int IncArray(std::span<int> Arr, int Increment);
ZEL_API int IncArray(TInt2DArray& Arr, int Increment);
ZEL_API int IncArray(TInt3DArray& Arr, int Increment);
ZEL_API int IncArray(TInt4DArray& Arr, int Increment);

/// Absolute value of every cell; the smallest integer stays what it is.
/// @return 0; -1 if the array is empty
ZEL_API int AbsValArray(std::span<double> Arr);
ZEL_API int AbsValArray(TDouble2DArray& Arr);
ZEL_API int AbsValArray(TDouble3DArray& Arr);
ZEL_API int AbsValArray(TDouble4DArray& Arr);
ZEL_API int AbsValArray(std::span<int> Arr);
ZEL_API int AbsValArray(TInt2DArray& Arr);
ZEL_API int AbsValArray(TInt3DArray& Arr);
ZEL_API int AbsValArray(TInt4DArray& Arr);

/// Adds Factor times Source to the array, cell by cell. Multiplies and adds separately.
/// @return 0; -1 if an array is empty, -2 if the shapes differ
ZEL_API int AccumulateArray(std::span<double> Arr, std::span<const double> Source, double Factor);
ZEL_API int AccumulateArray(TDouble2DArray& Arr, const TDouble2DArray& Source, double Factor);
ZEL_API int AccumulateArray(TDouble3DArray& Arr, const TDouble3DArray& Source, double Factor);
ZEL_API int AccumulateArray(TDouble4DArray& Arr, const TDouble4DArray& Source, double Factor);
ZEL_API int AccumulateArray(std::span<int> Arr, std::span<const int> Source, int Factor);
ZEL_API int AccumulateArray(TInt2DArray& Arr, const TInt2DArray& Source, int Factor);
ZEL_API int AccumulateArray(TInt3DArray& Arr, const TInt3DArray& Source, int Factor);
ZEL_API int AccumulateArray(TInt4DArray& Arr, const TInt4DArray& Source, int Factor);

/// Negates every cell.
/// @return 0; -1 if the array is empty
ZEL_API int InvertArray(std::span<bool> Arr);
ZEL_API int InvertArray(TBool2DArray& Arr);
/// Inverse of a square matrix, by LU decomposition with implicit row scaling and partial pivoting.
/// Adds 1 to ProcStat, calls MathFeedBackProc and polls AbortMathProc for each column of the
/// decomposition and of the inverse.
/// @return 0; -1 if the array is empty, -2 if it is not square, both unchanged; -3 after an abort,
///   or if the matrix is singular: a row holds nothing but zeros (the array is unchanged), or a
///   pivot is below 1E-100 in magnitude (the array then holds what the decomposition has made of
///   it)
/// @throws EZELMatrixError  "InvertArray: not enough memory on heap"; the array is unchanged then
/// O(n^3). Method: Forsythe and Moler, Computer Solution of Linear Algebraic Systems (1967).
ZEL_API int InvertArray(TDouble2DArray& Arr);

/// Sum of the diagonal.
/// @return 0; -1 if the array is empty, -2 if it is not square; Trace is unchanged then
ZEL_API int TraceOfArray(const TDouble2DArray& Arr, double& Trace);
ZEL_API int TraceOfArray(const TInt2DArray& Arr, int& Trace);

/// Matrix product A B of arrays [column][row]: Result gets the columns of B and the rows of A, and
/// may be an operand. Each cell is one sum over the inner index, upwards, by fused multiply-add.
/// @return 0; -1 if an operand is empty; -2 if A has not as many columns as B has rows
/// @throws EZELError  "MultiplyArrays: not enough memory"; Result is unchanged then
ZEL_API int MultiplyArrays(const TDouble2DArray& A, const TDouble2DArray& B,
                           TDouble2DArray& Result);
ZEL_API int MultiplyArrays(const TInt2DArray& A, const TInt2DArray& B, TInt2DArray& Result);
/// The row vector A B: an element for each column of B.
/// @return -2 if A has not as many elements as B has rows
ZEL_API int MultiplyArrays(std::span<const double> A, const TDouble2DArray& B,
                           TDoubleArray& Result);
ZEL_API int MultiplyArrays(std::span<const int> A, const TInt2DArray& B, TIntArray& Result);
/// The column vector A B: an element for each row of A.
/// @return -2 if B has not as many elements as A has columns
ZEL_API int MultiplyArrays(const TDouble2DArray& A, std::span<const double> B,
                           TDoubleArray& Result);
ZEL_API int MultiplyArrays(const TInt2DArray& A, std::span<const int> B, TIntArray& Result);

/// Sum of the products of the elements.
/// @return 0; -1 if a vector is empty, -2 if they differ in length; Result is unchanged then
ZEL_API int VectorDotProduct(std::span<const double> A, std::span<const double> B, double& Result);
ZEL_API int VectorDotProduct(std::span<const int> A, std::span<const int> B, int& Result);

/// Cross product of two vectors of three elements. Result gets three elements and may be an
/// operand.
/// @return 0; -1 if a vector is empty, -2 if one has not three elements
ZEL_API int VectorCrossProduct(std::span<const double> A, std::span<const double> B,
                               TDoubleArray& Result);
ZEL_API int VectorCrossProduct(std::span<const int> A, std::span<const int> B, TIntArray& Result);

/// Hat matrix X (X^T X)^-1 X^T of regression, of an array [column][row] with an object in each row.
/// HatMat gets the rows of X as columns and rows.
/// @return that of InvertArray for X^T X: 0; -1 if the array is empty; -3 if the product is
///   singular; HatMat is unchanged unless it is 0
/// @throws EZELError  "CalcHatMatrix: not enough memory"
ZEL_API int CalcHatMatrix(const TDouble2DArray& Arr, TDouble2DArray& HatMat);

}  // namespace zel
