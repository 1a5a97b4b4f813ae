/// @file
/// What the readers and writers of decimal numbers share.
#pragma once

#include <charconv>
#include <cstddef>
#include <string>
#include <string_view>

#include "zel/base/types.h"

namespace zel::detail {

/// The longest number at the start of a text: optional sign, digits with at most one ".", in
/// chars_format::general also an exponent. An exponent that breaks off is not part of it.
/// @param x  receives the nearest double: beyond the largest one infinity, below the smallest one
///   0, with the sign of the number; unchanged if there is none
/// @return the length of the number, 0 if there is none
std::size_t scanNumber(std::string_view text, std::chars_format format, double& x);

/// Appends a number as text: FormatFixed, or for negative decimals the shortest text that gives the
/// same number again, with "INF" and "-INF".
void appendNumber(std::string& text, double x, int decimals);

/// The first significant digits of a number, correctly rounded (ties of the exact value to even).
struct SignificantDigits {
  std::string digits;
  int exponent = 0;  // power of ten of the first digit
};

/// @param x      finite; its sign does not count
/// @param count  of digits, 1 or more
SignificantDigits significantDigits(Extended x, int count);

}  // namespace zel::detail
