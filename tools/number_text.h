/// @file
/// Numbers as the commands print them.
#pragma once

#include <string>
#include <string_view>

namespace tool {

/// The shortest decimal text that reads back as the same double; without an exponent for moderate
/// sizes.
std::string shortest(double x);

/// Fixed-point text. Where that would take many digits, five decimals and an exponent.
std::string fixedPoint(double x, int decimals);

/// Fixed-point text without zeros at the end.
std::string trimmed(double x, int decimals);

/// A number to the given significant digits, without zeros at the end.
std::string significant(double x, int digits);

/// The decimals that show a positive number to five significant digits, 0 for a large one.
int decimalsFor(double x);

/// Why a word is not a number that ParseNumber takes.
/// @param missing  says how a missing value is written, where the word may have been meant as one
std::string whyNotANumber(std::string_view word, std::string_view missing);

/// "1 value", "2 values".
std::string counted(long long n, const std::string& noun);

}  // namespace tool
