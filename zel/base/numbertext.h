/// @file
/// Decimal text of numbers, independent of the locale: reading whole words, fixed-point and
/// exponential writing.
#pragma once

#include <istream>
#include <optional>
#include <string>
#include <string_view>

#include "zel/base/api.h"
#include "zel/base/types.h"

namespace zel {

/// The double nearest to a decimal number: optional sign, digits with at most one ".", optional
/// exponent. The word must be nothing else: no blanks, no hexadecimal form, no words for infinity
/// or not-a-number.
/// @return no value if the word is not a number or lies beyond the largest double; what lies below
///   the smallest one gives 0 with the sign of the word
[[nodiscard]] ZEL_API std::optional<double> ParseNumber(std::string_view word);

/// Reads the next blank-delimited word as a number; the delimiter stays in the stream.
/// @return false, with x unchanged and the word consumed, if it is not a number or the stream ended
ZEL_API bool ReadNumber(std::istream& in, double& x);

/// Fixed-point text, correctly rounded (ties of the exact binary value to even), no padding.
/// Infinite and not-a-number give "INF", "-INF", "NAN"; zero and what rounds to it keep their sign.
/// @param decimals  limited to 0..16445, the decimals of the smallest extended number
[[nodiscard]] ZEL_API std::string FormatFixed(double x, int decimals);

/// Exponential text in a field of exactly width characters: the sign or a blank, one digit, ".", as
/// many digits as fit, "E", the sign and three digits of the exponent (" 1.50000E+002" for 13). The
/// digits are correctly rounded; from width 25 on the text determines the double. Infinite and
/// not-a-number give the words of FormatFixed, right-aligned.
/// @param width  limited to 9..1100
[[nodiscard]] ZEL_API std::string FormatExp(double x, int width);

/// The same for an extended value with four digits of the exponent (" 1.5000E+0002" for 13). From
/// width 29 on the text determines the number.
/// @param width  limited to 10..12000; no extended number has more digits
[[nodiscard]] ZEL_API std::string FormatExtendedExp(Extended x, int width);

/// Fixed-point text of an extended value: FormatFixed padded on the left with blanks to at least w
/// characters. A double is converted exactly, so its text is that of the double. Huge values are
/// written out, up to 4933 digits before the point, and w has no upper limit but the memory.
/// @param d  decimals, limited to 0..16445
[[nodiscard]] ZEL_API std::string strff(Extended x, int w, int d);

}  // namespace zel
