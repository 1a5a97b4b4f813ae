/// @file
/// Search in plain arrays and comparison of them. Indices count from 0.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "zel/base/Zel_zelbase.h"

namespace zel {

/// Sum of the squared differences of the elements.
/// @return -1.0 if an array is empty, -2.0 if the lengths differ
[[nodiscard]] ZEL_API double SumOfSquaredDiffs(std::span<const double> A,
                                               std::span<const double> B);
/// The same with column Index of an array [column][row].
/// @return as above; -3.0 if there is no such column
[[nodiscard]] ZEL_API double SumOfSquaredDiffs(std::span<const double> A, const TDouble2DArray& B,
                                               int Index);

/// True if both arrays have the same shape and equal elements.
[[nodiscard]] ZEL_API bool EqualArrays(std::span<const int> A, std::span<const int> B);
[[nodiscard]] ZEL_API bool EqualArrays(const TInt2DArray& A, const TInt2DArray& B);
[[nodiscard]] ZEL_API bool EqualArrays(const TInt3DArray& A, const TInt3DArray& B);
[[nodiscard]] ZEL_API bool EqualArrays(const TInt4DArray& A, const TInt4DArray& B);

/// Index of the first element equal to Value.
/// @return -1 if the array is empty, -2 if there is none
[[nodiscard]] ZEL_API int FindInArray(int Value, std::span<const int> Arr);
/// Index of the first text that equals Value, or with Partial contains it.
/// @param IgnoreCase  the case of the letters A to Z does not count
/// @return as above
/// @throws EZELError  "FindInArray: not enough memory"
[[nodiscard]] ZEL_API int FindInArray(std::string_view Value, std::span<const std::string> Arr,
                                      bool IgnoreCase, bool Partial);

/// Binary search in values sorted in the given direction: the index of one equal to Value, else of
/// the nearer of the two that enclose it, of both the later one if they are equally near.
/// @return -1 if the array is empty; -2 if Value lies outside the range that the first and the last
///   element span, or is not-a-number
/// O(log n).
[[nodiscard]] ZEL_API int FindInSortedArray(double Value, std::span<const double> Arr,
                                            bool Ascending);

/// True if the array holds exactly two distinct values, which Value1 < Value2 take; else both are
/// 0. With not-a-number among the elements false.
[[nodiscard]] ZEL_API bool IsDichotomous(std::span<const double> Arr, double& Value1,
                                         double& Value2);
[[nodiscard]] ZEL_API bool IsDichotomous(std::span<const int> Arr, int& Value1, int& Value2);

/// Distance of two objects, which are rows of an array [column][row] described by the variables
/// (columns) FirstVar..LastVar: first 0, then as TMatrix::DistanceOfObjects.
/// @return 0; -1 for dmUser, -2 if an object lies outside the rows, -3 if a variable lies outside
///   the columns, -4 if LastVar is below FirstVar, the last that applies
ZEL_API int DistanceOfObjects(const TDouble2DArray& Arr, TDistMode Mode, int Obj1, int Obj2,
                              int FirstVar, int LastVar, double& Dist);

}  // namespace zel
