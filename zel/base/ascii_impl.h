/// @file
/// Classes of ASCII characters, whatever the locale.
#pragma once

namespace zel::detail {

constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }
constexpr bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
/// What separates words: blank, tab and line ends.
constexpr bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }
/// Codes 0 to 31 and 127.
constexpr bool isControl(char c) { return static_cast<unsigned char>(c) < 32 || c == 127; }

}  // namespace zel::detail
