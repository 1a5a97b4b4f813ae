/// @file
/// Bit patterns of floating-point numbers as hexadecimal text.
#pragma once

#include <string>
#include <string_view>

#include "zel/base/api.h"
#include "zel/base/types.h"

namespace zel {

/// The bytes of the number's form in memory (IEEE 754 single, double, 80-bit extended), the most
/// significant first, as 8, 16 or 20 upper-case hexadecimal digits. Where the platform's Extended
/// is another format, it is converted to the 80-bit one.
[[nodiscard]] ZEL_API std::string FPNumToHex(float x);
[[nodiscard]] ZEL_API std::string FPNumToHex(double x);
[[nodiscard]] ZEL_API std::string FPNumToHex(Extended x);

/// The numbers with the given bit patterns, in digits of either case. Every pattern is accepted,
/// also of not-a-number; an extended one that the processor has no use for (without the leading
/// bit) becomes a not-a-number.
/// @throws EZELError  `HexToSingle: invalid hex string "`, `HexToDouble: invalid hex string "`,
///   `HexToExtended: invalid hex string "`, then the text and a quotation mark, unless it has
///   exactly 8, 16 or 20 hexadecimal digits
[[nodiscard]] ZEL_API float HexToSingle(std::string_view s);
[[nodiscard]] ZEL_API double HexToDouble(std::string_view s);
[[nodiscard]] ZEL_API Extended HexToExtended(std::string_view s);

}  // namespace zel
