/// @file
/// Transposition and reversal of plain arrays, removal of rows and columns. An array of two
/// dimensions is indexed [column][row].
#pragma once

#include <span>

#include "zel/base/Zel_zelbase.h"

namespace zel {

/// Replaces an array by its transpose.
/// @return 0; -1 if it is empty
ZEL_API int TransposeArray(TDouble2DArray& Arr);
ZEL_API int TransposeArray(TInt2DArray& Arr);
ZEL_API int TransposeArray(TBool2DArray& Arr);

/// Reverses the order along one dimension, of which the first is 1.
/// @return 0; -1 if the array is empty, -2 if it has no such dimension
ZEL_API int FlipDimArray(std::span<double> Arr, int Dim);
ZEL_API int FlipDimArray(TDouble2DArray& Arr, int Dim);
ZEL_API int FlipDimArray(TDouble3DArray& Arr, int Dim);
ZEL_API int FlipDimArray(TDouble4DArray& Arr, int Dim);
ZEL_API int FlipDimArray(std::span<int> Arr, int Dim);
ZEL_API int FlipDimArray(TInt2DArray& Arr, int Dim);
ZEL_API int FlipDimArray(TInt3DArray& Arr, int Dim);
ZEL_API int FlipDimArray(TInt4DArray& Arr, int Dim);

/// Removes a row.
/// @return false, and nothing changes, if there is none of this number
ZEL_API bool RemoveRow(TDouble2DArray& Arr, int Row);
ZEL_API bool RemoveRow(TInt2DArray& Arr, int Row);

/// Removes a column.
/// @return false, and nothing changes, if there is none of this number
ZEL_API bool RemoveColumn(TDouble2DArray& Arr, int Col);
ZEL_API bool RemoveColumn(TInt2DArray& Arr, int Col);

}  // namespace zel
