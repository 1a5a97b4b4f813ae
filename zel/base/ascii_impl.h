/// @file
/// Classes of ASCII characters, whatever the locale.
#pragma once

namespace zel::detail {

constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }
constexpr bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

}  // namespace zel::detail
