/// @file
/// Angles read out of a text.
#pragma once

#include <cstddef>
#include <string_view>

#include "zel/base/api.h"
#include "zel/base/types.h"

namespace zel {

/// The angle that starts at character Pos of s, in any notation of DegreeToStr: a number, which
/// alone is an angle in degrees; behind it a degree sign; behind that minutes with their mark;
/// behind these seconds with theirs. An optional sign stands in front.
///
/// Only the last part may have decimals, minutes and seconds stay below 60, and no part has an
/// exponent; what does not fit belongs no longer to the angle. Any number of blanks and tabs may
/// stand between the parts and before the marks. The marks are "°" in UTF-8 or Latin-1, "º" or "d";
/// "'", "′" or "’"; a double quote, "″", "”" or two single ones.
/// @param Pos   0-based; moved behind the angle, unchanged if there is none
/// @param Flag  true: an angle without a sign may be followed by N, S, E or W; S and W make it
///   negative
/// @param Mode  receives the notation, an ordinal of TDegreeFormat; -1 if there is no angle
/// @return degrees, within an ulp; not-a-number if there is no angle or it exceeds the largest
///   double
ZEL_API double ScanDegrees(std::string_view s, std::size_t& Pos, bool Flag, int& Mode);

}  // namespace zel
