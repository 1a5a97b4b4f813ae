/// @file
/// Integers as text: decimal, hexadecimal, octal, binary, Roman.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "zel/base/api.h"

namespace zel {

/// Exactly Digits decimal digits of |value|, leading zeros kept, higher digits cut off, with "-" in
/// front of a negative value: Decimal(-42, 5) is -00042, Decimal(987, 2) is 87.
/// @param Digits  limited to 1..255
[[nodiscard]] ZEL_API std::string Decimal(int value, std::uint8_t Digits);
/// Exactly Digits upper-case hexadecimal digits of the low 4 Digits bits (two's complement).
/// @param Digits  limited to 1..8
[[nodiscard]] ZEL_API std::string Hex(int value, std::uint8_t Digits);
/// Exactly Digits octal digits of the low 3 Digits bits.
/// @param Digits  limited to 1..11
[[nodiscard]] ZEL_API std::string Octal(int value, std::uint8_t Digits);
/// Exactly Digits binary digits of the low Digits bits.
/// @param Digits  limited to 1..32
[[nodiscard]] ZEL_API std::string Bin(int value, std::uint8_t Digits);
/// Roman numeral of 1 <= value < 30000, thousands as often "M" as it takes; otherwise empty.
[[nodiscard]] ZEL_API std::string Roman(int value);

/// The integer that a text is: an optional sign and decimal digits, leading blanks and tabs
/// allowed.
/// @return Default for every other text and for values beyond the range of int
[[nodiscard]] ZEL_API int StrToIntDefault(std::string_view s, int Default);

}  // namespace zel
