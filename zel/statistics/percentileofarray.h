/// @file
/// Percentiles of parts of arrays.
#pragma once

#include <span>

#include "zel/base/api.h"
#include "zel/base/errors.h"

namespace zel {

/// A percentile that is one of the values: of the m = HighIx - LowIx + 1 values of a range, the one
/// at the sorted place round(m Percent / 100) counted from 0, at most m - 1; ties round to even.
/// @param LowIx, HighIx  counted from 0
/// @param Percent  0..100
/// @param Value    0 if an argument is refused
/// @return 0; -2 for a Percent outside 0..100, else -3 for HighIx < LowIx, else -1 for an index
///   outside the array
/// @throws EZELStatisError  "PercentileOfArray: not enough memory"
/// By selection, O(m). Data stays as it is.
ZEL_API int PercentileOfArray(std::span<const double> Data, int LowIx, int HighIx, double Percent,
                              double& Value);

}  // namespace zel
