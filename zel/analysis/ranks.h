/// @file
/// Ranks with tie correction.
#pragma once

#include "zel/base/api.h"
#include "zel/vector/Zel_vector.h"

namespace zel {

/// Mean ranks (midranks) of the elements of Data: 1 for the smallest to n for the largest; equal
/// elements all get the mean of the ranks that they take up together. -0 equals 0, infinities of
/// one sign are equal. A not-a-number ranks above every number and equals nothing; several of them
/// rank in an unspecified order.
/// @param Data   null: nothing changes, 0
/// @param Ranks  resized to the length of Data; may be Data itself, or null if only ties are of
///   interest. OnChange fires once.
/// @return tie sum: t^3 - t, summed over the runs of t equal elements; 0 without ties
/// @throws EZELMath2Error  "CalcRanks: not enough memory"; Ranks is unchanged then
/// O(n log n).
ZEL_API double CalcRanks(const TVector* Data, TVector* Ranks);

}  // namespace zel
