/// @file
/// Estimate of a probability density.
#pragma once

#include <functional>

#include "zel/base/api.h"
#include "zel/vector/TVector.h"

namespace zel {

/// Progress of an estimate: Sender is null, Count the steps that are done.
using TDensityFeedback = std::function<void(TObject* Sender, double Percent, double Count)>;

/// Kernel estimate of a probability density, with a Gaussian at each value whose width follows the
/// distances of the values around it.
///
/// The width at x[i] is the mean of the gaps between neighbouring values that a walk down from
/// x[i+1] and a walk up from x[i-1] cross while they are closer than Radius to x[i], so that the
/// gaps around x[i] count in both walks; the walk down starts at the largest value, and the walk up
/// at the smallest, where there is none beyond, and only gaps between values count. The width is
/// Radius if no gap counts, Radius over their number if all are 0. The standard deviation of the
/// Gaussian is the width times Factor, or Factor where that is 0.
/// @param Data      sorted in place, ascending, with notification
/// @param Density   resized to NumSteps + 1 values: the density at LowX + k (HighX - LowX) /
///   NumSteps. OnChange fires once. May be Data.
/// @param Factor    taken as 1 for 0 and below
/// @param NumSteps  limited to 10..10000
/// @param MinIx, MaxIx  position in Density of the first smallest and the first largest value;
///   untouched if no value is below the largest double, or above 0
/// @param Callback  called after each value and after each point; may be empty
/// Nothing happens if a vector is missing. O(n log n + n NumSteps).
/// @throws EZELStatisError  "EstimateProbDensity: not enough memory"; Density is as it was
ZEL_API void EstimateProbDensity(TVector* Data, TVector* Density, double LowX, double HighX,
                                 double Factor, double Radius, int NumSteps, int& MinIx, int& MaxIx,
                                 const TDensityFeedback& Callback);

}  // namespace zel
