/// @file
/// Sorting of plain arrays, selection, and insertion into arrays of fixed length.
#pragma once

#include <span>

#include "zel/base/api.h"
#include "zel/base/types.h"

namespace zel {

/// Comb sort with shrink factor 1.3 and first gap n, in place, not stable.
///
/// Each of its passes adds 1 to ProcStat and calls MathFeedBackProc. Cost: O(n log n) in practice.
/// A not-a-number is never exchanged, and values around it need not be in order. Arrays of fewer
/// than two elements are left alone without a pass.
/// Method: Dobosiewicz, Inf. Process. Lett. 11 (1980) 5.
ZEL_API void SortArray(std::span<double> Data, bool Ascending);
ZEL_API void SortArray(std::span<float> Data, bool Ascending);
ZEL_API void SortArray(std::span<int> Data, bool Ascending);
/// The same for NumElem elements at Data: double for vkDouble and vkReal, float for vkSingle, int
/// for vkInteger and vkLongint. A null Data, a NumElem below 2 and other kinds do nothing.
ZEL_API void SortArray(void* Data, int NumElem, TVarKind VarKind, bool Ascending);

/// Order statistic: the value that sorting Data[LowIx..HighIx] upward would bring to index k.
/// Rearranges the range around it: nothing before k is larger, nothing after it smaller.
/// @param k  0-based index in Data, not in the range; limited to LowIx..HighIx
/// @param LowIx, HighIx  0-based, limited to the array
/// @return 0 if the range is empty. With not-a-number in the range: what SortArray would put there.
/// Cost: O(HighIx - LowIx), whatever the order of the values and however many are equal.
/// Method: Floyd and Rivest, Commun. ACM 18 (1975) 165.
[[nodiscard]] ZEL_API double QuickSelect(std::span<double> Data, int k, int LowIx, int HighIx);

/// Inserts Value into a sorted array of fixed length, whose last element drops out.
///
/// Value goes before the first element that is not before it in the order. Cost: linear.
/// @return the index of Value; -1, and the array unchanged, if Value lies beyond the last element,
///   or if it equals an element and AllowDuplicates is false
ZEL_API int SortIntoArray(std::span<double> Data, double Value, bool Ascending,
                          bool AllowDuplicates);
ZEL_API int SortIntoArray(std::span<float> Data, float Value, bool Ascending, bool AllowDuplicates);
ZEL_API int SortIntoArray(std::span<int> Data, int Value, bool Ascending, bool AllowDuplicates);
/// The same for NumElem elements at Data, of the type that SortArray takes for VarKind; Value
/// points to one more. A null pointer, a NumElem below 1 and other kinds give -1.
ZEL_API int SortIntoArray(void* Data, int NumElem, TVarKind VarKind, const void* Value,
                          bool Ascending, bool AllowDuplicates);

/// Moves the elements from the 0-based Position on one place up, whereby the last one drops out,
/// and stores Value there. A Position outside the array does nothing.
ZEL_API void InsertIntoArray(std::span<double> Data, double Value, int Position);
ZEL_API void InsertIntoArray(std::span<float> Data, float Value, int Position);
ZEL_API void InsertIntoArray(std::span<int> Data, int Value, int Position);
/// The same for untyped arrays, with the arguments of the untyped SortIntoArray.
ZEL_API void InsertIntoArray(void* Data, int NumElem, TVarKind VarKind, const void* Value,
                             int Position);

}  // namespace zel
