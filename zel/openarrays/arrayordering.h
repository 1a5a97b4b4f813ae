/// @file
/// Order of plain arrays: sorting, shuffling, division into classes.
#pragma once

#include <span>

#include "zel/base/Zel_zelbase.h"

namespace zel {

/// Comb sort that says where the elements came from: Index gets the length of Data, and Index[i] is
/// the place before the sort, counted from 1, of the element that ends at i. Equal elements are
/// never exchanged with each other, but the sort is not stable. Not-a-number is never exchanged,
/// and values around it need not be in order.
/// @return 0; -1, with nothing changed, for fewer than two elements
/// @throws EZELError  "SortArray: not enough memory"; nothing changes then
/// Method: Dobosiewicz, Inf. Process. Lett. 11 (1980) 5; shrink factor 1.3, first gap n - 1.
ZEL_API int SortArray(bool Ascending, std::span<double> Data, TIntArray& Index);
ZEL_API int SortArray(bool Ascending, std::span<int> Data, TIntArray& Index);

/// Sorts an array and keeps one of each of its values.
/// @return number of elements removed; -1, with nothing changed, for fewer than two
ZEL_API int SortAndRemoveDuplicates(TIntArray& Arr, bool Ascending);

/// Random cyclic permutation (S. Sattolo, Inf. Process. Lett. 22 (1986) 315): every element leaves
/// its place. Draws from the process-wide generator, which is not seeded.
/// @return 0; -1, with nothing changed, for fewer than two elements
ZEL_API int ShuffleArray(std::span<int> Arr);
ZEL_API int ShuffleArray(std::span<double> Arr);

/// True for the cells strictly above Threshold. Result gets the extents of Arr.
/// @return 0; -1 if the array is empty
/// @throws EZELError  "DichotomizeArray: not enough memory"; Result is unchanged then
ZEL_API int DichotomizeArray(const TDouble2DArray& Arr, double Threshold, TBool2DArray& Result);
ZEL_API int DichotomizeArray(const TInt2DArray& Arr, int Threshold, TBool2DArray& Result);
/// The same for the cells with Low <= x <= High.
ZEL_API int DichotomizeArray(const TDouble2DArray& Arr, double Low, double High,
                             TBool2DArray& Result);
ZEL_API int DichotomizeArray(const TInt2DArray& Arr, int Low, int High, TBool2DArray& Result);

/// Replaces each cell by one of NrOfLevels values equally spaced from OutputLow to OutputHigh: at
/// or below InputLow by the first, at or above InputHigh by the last; the interval between is
/// divided equally among the others. Not-a-number stays.
/// @return 0; -1 if NrOfLevels is below 3, else -2 unless InputLow < InputHigh, the last that
///   applies; nothing changes then
ZEL_API int DiscretizeArray(TDouble2DArray& Arr, int NrOfLevels, double InputLow, double InputHigh,
                            double OutputLow, double OutputHigh);

}  // namespace zel
