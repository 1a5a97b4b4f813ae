/// @file
/// Characters of UTF-8 text. Internal.
#pragma once

#include <cstddef>
#include <string_view>

namespace zel::detail {

/// One character at the start of a text.
struct Character {
  char32_t code = 0;
  std::size_t bytes = 1;
  bool valid = false;  // false: one byte that is not part of well-formed UTF-8
};

/// Decodes the first character of a text that is not empty.
inline Character firstCharacter(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned lead = byte(0);
  if (lead < 0x80) return {lead, 1, true};
  const std::size_t bytes = lead >= 0xf0 ? 4 : lead >= 0xe0 ? 3 : 2;
  const Character malformed{lead, 1, false};
  if (lead < 0xc2 || lead > 0xf4 || text.size() < bytes) return malformed;
  char32_t code = lead & (0x7fU >> bytes);
  for (std::size_t i = 1; i < bytes; ++i) {
    if ((byte(i) & 0xc0U) != 0x80) return malformed;
    code = code << 6 | (byte(i) & 0x3fU);
  }
  constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
  const bool surrogate = code >= 0xd800 && code < 0xe000;
  if (code < kSmallest[bytes] || code > 0x10ffff || surrogate) return malformed;
  return {code, bytes, true};
}

}  // namespace zel::detail
