#include "utf8.h"

#include <cstdint>

namespace tool {
namespace {

bool isHarmless(char32_t c) {
  const bool control = c < 0x20 || (c >= 0x7f && c < 0xa0) || c == 0x2028 || c == 0x2029;
  const bool direction = (c >= 0x202a && c <= 0x202e) || (c >= 0x2066 && c <= 0x2069);
  return !control && !direction;
}

std::string escaped(std::uint32_t value, std::string_view prefix, int digits) {
  std::string text(prefix);
  for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4) {
    text += "0123456789abcdef"[(value >> shift) & 15U];
  }
  return text;
}

}  // namespace

Character firstCharacter(std::string_view text) {
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

std::size_t characterCount(std::string_view text) {
  std::size_t count = 0;
  for (; !text.empty(); ++count) text.remove_prefix(firstCharacter(text).bytes);
  return count;
}

std::string printable(std::string_view text, std::size_t limit) {
  std::string result;
  for (std::size_t count = 0; !text.empty(); ++count) {
    if (count == limit) return result + "...";
    const Character c = firstCharacter(text);
    if (c.valid && isHarmless(c.code)) {
      result += text.substr(0, c.bytes);
    } else if (c.code < 0x100) {
      result += escaped(c.code, "\\x", 2);
    } else {
      result += escaped(c.code, "\\u", 4);
    }
    text.remove_prefix(c.bytes);
  }
  return result;
}

std::string inQuotes(std::string_view text) { return '"' + printable(text, 40) + '"'; }

}  // namespace tool
