/// @file
/// Angles and floating-point numbers as text.
///
/// All digits are correctly rounded from the exact value of the argument, ties to even unless a
/// routine says otherwise. Infinite and not-a-number are written as the words INF, -INF and NAN.
#pragma once

#include <string>

#include "zel/base/api.h"
#include "zel/base/types.h"

namespace zel {

/// An angle in one of four notations, with the degree sign in UTF-8:
/// - dfDegrees: decimal degrees, 12.50°
/// - dfDegMin: whole degrees and decimal minutes, 12° 30.0'
/// - dfDegMinSec: whole degrees, whole minutes and decimal seconds, 12° 30'  0.0"
/// - dfNumber: decimal degrees without the sign, 12.50
///
/// Minutes and seconds are padded with blanks as for two digits before the point and never reach
/// 60: the angle is first rounded to Decimals decimals of the smallest unit, halves away from zero,
/// and one within 3e-12 degrees of a whole degree becomes that. A negative angle whose degrees are
/// 0 starts with -0; one that rounds to zero has no sign in the notations with minutes. ScanDegrees
/// reads what this writes, except the words for infinite (INF°) and not-a-number.
/// @param Deg       degrees
/// @param Format    values beside the four give an empty text
/// @param Decimals  of the smallest unit, limited to 0..8
[[nodiscard]] ZEL_API std::string DegreeToStr(double Deg, TDegreeFormat Format, int Decimals);

/// A number in fixed or exponential notation, right-aligned in Width characters.
/// @param Decimals  0 and above: fixed notation by strff, wider where the number needs it; -2:
///   exponential notation with two digits of the exponent, and Width asterisks where these are too
///   few; other negative values: exponential notation with four digits of the exponent
/// @param Width     of exponential notation, which fills it with digits: limited to 8..11998 for
///   two digits of the exponent, to 10..12000 for four. Where the limits change it, so does the
///   length of the result.
[[nodiscard]] ZEL_API std::string strf(Extended x, int Width, int Decimals);

/// Exponential notation with a mantissa in [0.1, 1): `0.1234E+03` for 123.4 and 4 digits, behind a
/// blank or the sign, right-aligned. Exponents beyond two digits are written in full.
/// @param Width   least number of characters, limited to 8..40
/// @param Digits  of the mantissa, limited to 2..15
[[nodiscard]] ZEL_API std::string MakeEFormat(Extended x, int Width, int Digits);

/// Engineering notation: 4.7k for 4700, 3.3m for 0.0033. The prefixes a, f, p, n, u, m, k, M, G, T
/// stand for the powers of 1000 from -6 to 4; what is smaller or larger is written with the last
/// one. The prefix is chosen by the first 15 digits, so that the double nearest to 10^-6 is 1u; the
/// number is then rounded once, in decimal digits: 999.96 with 4 digits is 1000.0.
/// @param Digits  |Digits| significant digits, at least those before the point, limited to 9; if
///   negative, the prefix stands for the decimal point (4k7)
[[nodiscard]] ZEL_API std::string EEngStr(Extended x, int Digits);

}  // namespace zel
