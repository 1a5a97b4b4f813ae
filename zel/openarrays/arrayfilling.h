/// @file
/// Filling of plain arrays. Indices count from 0; arrays of two and more dimensions are indexed
/// [column][row][layer][time slot].
#pragma once

#include <span>

#include "zel/base/Zel_zelbase.h"

namespace zel {

/// Sets every cell.
/// @return 0; -1 if the array is empty
ZEL_API int FillArray(std::span<double> Arr, double Value);
ZEL_API int FillArray(TDouble2DArray& Arr, double Value);
ZEL_API int FillArray(TDouble3DArray& Arr, double Value);
ZEL_API int FillArray(TDouble4DArray& Arr, double Value);
ZEL_API int FillArray(std::span<int> Arr, int Value);
ZEL_API int FillArray(TInt2DArray& Arr, int Value);
ZEL_API int FillArray(TInt3DArray& Arr, int Value);
ZEL_API int FillArray(TInt4DArray& Arr, int Value);
ZEL_API int FillArray(std::span<bool> Arr, bool Value);
ZEL_API int FillArray(TBool2DArray& Arr, bool Value);

/// Sets the cells of a range.
/// @return 0; -1 if the array is empty; -2 if an index lies outside it or a low index is above its
///   high one, and nothing changes
ZEL_API int FillArray(std::span<double> Arr, double Value, int LowIx, int HighIx);
ZEL_API int FillArray(TDouble2DArray& Arr, double Value, int LowCol, int LowRow, int HighCol,
                      int HighRow);
ZEL_API int FillArray(TDouble3DArray& Arr, double Value, int LowCol, int LowRow, int LowLayer,
                      int HighCol, int HighRow, int HighLayer);
ZEL_API int FillArray(TDouble4DArray& Arr, double Value, int LowCol, int LowRow, int LowLayer,
                      int LowTSlot, int HighCol, int HighRow, int HighLayer, int HighTSlot);
ZEL_API int FillArray(std::span<int> Arr, int Value, int LowIx, int HighIx);
ZEL_API int FillArray(TInt2DArray& Arr, int Value, int LowCol, int LowRow, int HighCol,
                      int HighRow);
ZEL_API int FillArray(TInt3DArray& Arr, int Value, int LowCol, int LowRow, int LowLayer,
                      int HighCol, int HighRow, int HighLayer);
ZEL_API int FillArray(TInt4DArray& Arr, int Value, int LowCol, int LowRow, int LowLayer,
                      int LowTSlot, int HighCol, int HighRow, int HighLayer, int HighTSlot);
ZEL_API int FillArray(std::span<bool> Arr, bool Value, int LowIx, int HighIx);
ZEL_API int FillArray(TBool2DArray& Arr, bool Value, int LowCol, int LowRow, int HighCol,
                      int HighRow);

/// Sets each cell to its place in the order of storage, counted from 0: [c][r] to c times the
/// number of rows plus r, and so on with the last index fastest. Integers wrap modulo 2^32.
/// @return 0; -1 if the array is empty
ZEL_API int FillArrayRix(std::span<double> Arr);
ZEL_API int FillArrayRix(TDouble2DArray& Arr);
ZEL_API int FillArrayRix(TDouble3DArray& Arr);
ZEL_API int FillArrayRix(std::span<int> Arr);
ZEL_API int FillArrayRix(TInt2DArray& Arr);
ZEL_API int FillArrayRix(TInt3DArray& Arr);

/// Sets the cells whose indices are all equal, and every other one to 0.
/// @return 0; -1 if the array is empty, -2 if its extents differ
ZEL_API int FillDiagArray(TDouble2DArray& Arr, double Value);
ZEL_API int FillDiagArray(TDouble3DArray& Arr, double Value);
ZEL_API int FillDiagArray(TDouble4DArray& Arr, double Value);
ZEL_API int FillDiagArray(TInt2DArray& Arr, int Value);
ZEL_API int FillDiagArray(TInt3DArray& Arr, int Value);
ZEL_API int FillDiagArray(TInt4DArray& Arr, int Value);

/// Seeds the process-wide generator from the clock and fills with uniform deviates: doubles u
/// (RangeHigh - RangeLow) + RangeLow, integers the integer part below of that, so that RangeHigh
/// itself is drawn only if it equals RangeLow; u in [0, 1) is one draw for each cell, in the order
/// of storage.
/// @return 0; -1 if the array is empty, -2 if RangeLow is above RangeHigh; nothing is seeded then
ZEL_API int FillRandomUniform(std::span<double> Arr, double RangeLow, double RangeHigh);
ZEL_API int FillRandomUniform(TDouble2DArray& Arr, double RangeLow, double RangeHigh);
ZEL_API int FillRandomUniform(TDouble3DArray& Arr, double RangeLow, double RangeHigh);
ZEL_API int FillRandomUniform(TDouble4DArray& Arr, double RangeLow, double RangeHigh);
ZEL_API int FillRandomUniform(std::span<int> Arr, int RangeLow, int RangeHigh);
ZEL_API int FillRandomUniform(TInt2DArray& Arr, int RangeLow, int RangeHigh);
ZEL_API int FillRandomUniform(TInt3DArray& Arr, int RangeLow, int RangeHigh);
ZEL_API int FillRandomUniform(TInt4DArray& Arr, int RangeLow, int RangeHigh);

/// Seeds the process-wide generator from the clock and fills with normal deviates (GRandom).
/// @return 0; -1 if the array is empty, -2 if StdDev is negative; nothing is seeded then
ZEL_API int FillRandomNormal(std::span<double> Arr, double Mean, double StdDev);
ZEL_API int FillRandomNormal(TDouble2DArray& Arr, double Mean, double StdDev);
ZEL_API int FillRandomNormal(TDouble3DArray& Arr, double Mean, double StdDev);
ZEL_API int FillRandomNormal(TDouble4DArray& Arr, double Mean, double StdDev);

}  // namespace zel
