/// @file
/// Directions and angles. All routines are reentrant.
#pragma once

#include "zel/base/api.h"
#include "zel/base/types.h"

namespace zel {

/// Direction of the vector (x, y) against the x axis in radians, in [0, 2 pi]. For x = 0 it is pi/2
/// if y > 0, otherwise 3 pi/2, also for the vector 0.
[[nodiscard]] ZEL_API double AngleToXAxis(double x, double y);

/// The angle in [-pi, pi] of the same direction; not-a-number if x is not finite.
[[nodiscard]] ZEL_API double CanonicalAngleRadians(double x);
/// The angle in [-180, 180] of the same direction; not-a-number if x is not finite.
[[nodiscard]] ZEL_API double CanonicalAngleDegrees(double x);

/// Rounds an angle of degrees, minutes and seconds to the next value of the series 1, 2, 3, 5, 10,
/// 15, 20, 30, 60, 90, 180, 360 of its largest unit that is not 0; smaller units become 0. 60
/// minutes are 1 degree, 60 seconds 1 minute. Beyond the series it is 360 degrees.
/// @param Up  rounds upwards, otherwise downwards; a value of the series stays
/// A negative part makes all three 0; minutes and seconds above 59 count as 59.
ZEL_API void RoundDegrees(int& Deg, int& Min, int& Sec, bool Up);

/// Converts an angle between decimal degrees (dfDegrees), degrees and decimal minutes (dfDegMin),
/// and degrees, minutes and seconds (dfDegMinSec). Parts that the new format lacks become 0. The
/// minutes and seconds of a negative angle are not negative; on the way back to degrees they are
/// added all the same, so convert the magnitude of an angle that may be negative. dfNumber leaves
/// all as it is.
/// @throws EZELMath1Error  "ConvertDegrees: invalid range of minutes", "ConvertDegrees: invalid
/// range
///   of seconds" for parts outside 0..60, whatever the formats
ZEL_API void ConvertDegrees(double& Deg, double& Min, double& Sec, TDegreeFormat FromFormat,
                            TDegreeFormat ToFormat);

}  // namespace zel
