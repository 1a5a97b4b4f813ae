/// @file
/// Smallest and largest elements of plain arrays.
/// Indices count from 0; arrays of two and more dimensions are indexed
/// [column][row][layer][time slot]. Ranges are given by their low and their high corner.
#pragma once

#include <span>

#include "zel/base/Zel_zelbase.h"

namespace zel {

/// The largest element. Not-a-number is passed over; an array of nothing else gives it.
/// @return of an empty array -2147483648, of doubles minus the largest double
[[nodiscard]] ZEL_API double MaxArray(std::span<const double> Arr);
[[nodiscard]] ZEL_API double MaxArray(const TDouble2DArray& Arr);
[[nodiscard]] ZEL_API double MaxArray(const TDouble3DArray& Arr);
[[nodiscard]] ZEL_API double MaxArray(const TDouble4DArray& Arr);
[[nodiscard]] ZEL_API int MaxArray(std::span<const int> Arr);
[[nodiscard]] ZEL_API int MaxArray(const TInt2DArray& Arr);
[[nodiscard]] ZEL_API int MaxArray(const TInt3DArray& Arr);
[[nodiscard]] ZEL_API int MaxArray(const TInt4DArray& Arr);
/// The same with the index of its first occurrence; -1 in an empty array.
ZEL_API int MaxArray(std::span<const int> Arr, int& Pos);
ZEL_API int MaxArray(const TInt2DArray& Arr, int& ColPos, int& RowPos);

/// The smallest element, by the rules of MaxArray.
/// @return of an empty array 2147483647, of doubles the largest double
[[nodiscard]] ZEL_API double MinArray(std::span<const double> Arr);
[[nodiscard]] ZEL_API double MinArray(const TDouble2DArray& Arr);
[[nodiscard]] ZEL_API double MinArray(const TDouble3DArray& Arr);
[[nodiscard]] ZEL_API double MinArray(const TDouble4DArray& Arr);
[[nodiscard]] ZEL_API int MinArray(std::span<const int> Arr);
[[nodiscard]] ZEL_API int MinArray(const TInt2DArray& Arr);
[[nodiscard]] ZEL_API int MinArray(const TInt3DArray& Arr);
[[nodiscard]] ZEL_API int MinArray(const TInt4DArray& Arr);
/// The same with the index of its first occurrence; -1 in an empty array.
ZEL_API int MinArray(std::span<const int> Arr, int& Pos);
ZEL_API int MinArray(const TInt2DArray& Arr, int& ColPos, int& RowPos);

/// Smallest and largest element in one pass, by the rules of MaxArray.
/// @return 0; -1 if the array is empty; Min and Max are unchanged then
ZEL_API int MinMaxArray(std::span<const double> Arr, double& Min, double& Max);
ZEL_API int MinMaxArray(const TDouble2DArray& Arr, double& Min, double& Max);
ZEL_API int MinMaxArray(const TDouble3DArray& Arr, double& Min, double& Max);
ZEL_API int MinMaxArray(const TDouble4DArray& Arr, double& Min, double& Max);
ZEL_API int MinMaxArray(std::span<const float> Arr, float& Min, float& Max);
ZEL_API int MinMaxArray(std::span<const int> Arr, int& Min, int& Max);
ZEL_API int MinMaxArray(const TInt2DArray& Arr, int& Min, int& Max);
ZEL_API int MinMaxArray(const TInt3DArray& Arr, int& Min, int& Max);
ZEL_API int MinMaxArray(const TInt4DArray& Arr, int& Min, int& Max);
/// The same of a range, with the indices of the first occurrences.
/// @return 0; -1 if the array is empty, -2 if an index lies outside it or a low index is above its
///   high one; nothing changes then
ZEL_API int MinMaxArray(std::span<const double> Arr, int LowIx, int HighIx, double& Min,
                        double& Max, int& MinPos, int& MaxPos);
ZEL_API int MinMaxArray(const TDouble2DArray& Arr, int LowCol, int LowRow, int HighCol, int HighRow,
                        double& Min, double& Max, int& MinCol, int& MinRow, int& MaxCol,
                        int& MaxRow);
ZEL_API int MinMaxArray(std::span<const int> Arr, int LowIx, int HighIx, int& Min, int& Max,
                        int& MinPos, int& MaxPos);
ZEL_API int MinMaxArray(const TInt2DArray& Arr, int LowCol, int LowRow, int HighCol, int HighRow,
                        int& Min, int& Max, int& MinCol, int& MinRow, int& MaxCol, int& MaxRow);

}  // namespace zel
