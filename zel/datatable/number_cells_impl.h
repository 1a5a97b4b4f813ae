/// @file
/// Numbers of cells as text. Internal.
#pragma once

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include "zel/base/numbertext.h"
#include "zel/base/stringhelpers.h"

namespace zel::detail {

/// @param precision  decimals; negative: the shortest text that gives the same number again. What
///   is not finite is INF, -INF or NAN.
inline void appendNumber(std::string& text, double x, int precision) {
  if (precision >= 0 || !std::isfinite(x)) {
    text += FormatFixed(x, std::max(precision, 0));
    return;
  }
  char digits[32];
  text.append(digits, std::to_chars(digits, digits + sizeof digits, x).ptr);
}

/// The number that is the whole text; the words for what is not finite in any case of letters.
inline std::optional<double> numberOf(std::string_view text) {
  using Limits = std::numeric_limits<double>;
  if (const auto x = ParseNumber(text)) return x;
  if (EqualIgnoringCase(text, "NAN")) return Limits::quiet_NaN();
  if (EqualIgnoringCase(text, "INF")) return Limits::infinity();
  if (EqualIgnoringCase(text, "-INF")) return -Limits::infinity();
  return std::nullopt;
}

}  // namespace zel::detail
