/// @file
/// Numbers read out of a text.
///
/// A scanner reads the longest number that starts at character Pos of s (0-based, a byte) and moves
/// Pos behind it. It skips nothing: a blank at Pos is no number. Where no number starts, Pos stays;
/// that is how a caller tells it from every success. The IsValid routines ask whether a scanner
/// takes the whole of a text. Nothing depends on the locale and nothing is thrown. The time is
/// linear in the length of the number.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "zel/base/api.h"
#include "zel/base/types.h"

namespace zel {

/// An unsigned number in hexadecimal (either case), octal or binary digits, without a prefix.
/// @return 0, with Pos unchanged, if there is none or it has more than 64 bits. What Hex, Octal and
///   Bin have written becomes the integer again by a cast to int.
ZEL_API std::uint64_t ScanHex(std::string_view s, std::size_t& Pos);
ZEL_API std::uint64_t ScanOctal(std::string_view s, std::size_t& Pos);
ZEL_API std::uint64_t ScanBin(std::string_view s, std::size_t& Pos);
/// An integer: an optional sign and decimal digits.
/// @return 0, with Pos unchanged, if there is none or it lies beyond 64 bits
ZEL_API std::int64_t ScanDecimal(std::string_view s, std::size_t& Pos);

/// A floating-point number: an optional sign, digits with at most one decimal separator, an
/// optional exponent ("e" or "E", an optional sign and digits; one that breaks off is not part of
/// the number).
/// @param Flag  true: the words INF, INFINITY and NAN are numbers too, in either case, with an
///   optional sign
/// @param Mode  the decimal separator, an ordinal of TDecPSep: 0 ".", 1 ",", 2 either; other values
///   as 0
/// @return the nearest double, correctly rounded; infinite beyond the largest one and 0 below the
///   smallest one, with the sign of the number; not-a-number, with Pos unchanged, if there is none
ZEL_API double ScanFPNum(std::string_view s, bool Flag, int Mode, std::size_t& Pos);

/// The text is a number for ScanHex, ScanOctal, ScanBin or ScanDecimal, and nothing else.
[[nodiscard]] ZEL_API bool IsValidHex(std::string_view s);
[[nodiscard]] ZEL_API bool IsValidOct(std::string_view s);
[[nodiscard]] ZEL_API bool IsValidBin(std::string_view s);
[[nodiscard]] ZEL_API bool IsValidDecInt(std::string_view s);

/// The text is a number for ScanFPNum, of any size, and nothing else.
[[nodiscard]] ZEL_API bool IsValidFPNum(std::string_view s, TDecPSep DecSep);
/// The same, but not beyond the largest double.
/// @param Flag  true: the words for infinity and not-a-number are valid too
[[nodiscard]] ZEL_API bool IsValidDouble(std::string_view s, bool Flag, TDecPSep DecSep);

}  // namespace zel
