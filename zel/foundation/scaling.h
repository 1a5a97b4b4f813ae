/// @file
/// Round numbers of the 1-2-5 series, axis division, grids and the squashing function.
#pragma once

#include <cstdint>

#include "zel/base/api.h"
#include "zel/base/types.h"

namespace zel {

/// The 1-2-5 number (1, 2 or 5 times a power of ten) that stands for x, with the sign of x: a
/// mantissa below 1.5 becomes 1, below 3 becomes 2, below 8 becomes 5, from 8 on 10.
///
/// Exact for decimal input: the double nearest to c 10^k counts as c 10^k, so 0.3 has the mantissa
/// 3 and 8e-7 the mantissa 8. A value whose decimal logarithm is within 1e-14 of an integer counts
/// as that power of ten. The result is the double nearest to its decimal value, infinite beyond
/// the largest double. 0 gives 0; infinite values and not-a-number return unchanged.
[[nodiscard]] ZEL_API double Round125(double x);
/// The smallest 1-2-5 number >= x; otherwise like Round125.
[[nodiscard]] ZEL_API double RoundPos125(double x);
/// The largest 1-2-5 number <= x; otherwise like Round125.
[[nodiscard]] ZEL_API double RoundNeg125(double x);

/// Division of an axis from X1 to X2 into about NTicks steps of a 1-2-5 number.
/// @param NTicks  steps wanted; 0 or less: a Step of 1
/// @param Start  the first multiple of Step at or beyond X1, seen in the direction of X2; a
///   multiple up to a thousandth of a step before X1 counts. With NTicks = 0 and X2 <= X1: the
///   integer part of X1 less 1.
/// @param Step  negative if X2 < X1 (but 1 with NTicks = 0); the number of steps from X1 to X2 is
///   between NTicks and 2.5 times NTicks, up to 1e-10 in the decimal logarithm
/// @param NrSubTicks  minor intervals that divide one step evenly: 4 for a step of 2, 5 for 1 and
///   5; with NTicks = 0, 5 for ranges up to 10 and 1 above
/// If X1 = X2, or if no step can be given (a bound that is not finite, a step beyond the range of
/// the type), Start is X1, Step 0 and NrSubTicks 1.
ZEL_API void CalcScalePars(int NTicks, Extended X1, Extended X2, Extended& Start, Extended& Step,
                           std::uint16_t& NrSubTicks);

/// Lower edge of the bin that holds x, in the grid of bins of BinWidth anchored at RefPoint.
/// @param BinWidth  negative: the edge is the upper one; 0: the bin is the point x itself
/// @param Offset  receives x less the edge
/// The quotient is rounded, so an x within an ulp of an edge may count on either side of it.
[[nodiscard]] ZEL_API double HistoBinRef(double x, double RefPoint, double BinWidth,
                                         double& Offset);

/// Squashing function: Limit tanh(Slope (x - Center) / Limit), a sigmoid through (Center, 0) with
/// the given slope there, which stays between -Limit and Limit. A Limit of 0 gives 0.
[[nodiscard]] ZEL_API double Squash(double x, double Center, double Slope, double Limit);

}  // namespace zel
