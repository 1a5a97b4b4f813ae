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

std::string inSentence(const std::vector<std::string>& words) {
  std::string text;
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (i > 0) text += i + 1 == words.size() ? " and " : ", ";
    text += words[i];
  }
  return text;
}

std::string inQuotes(std::string_view text) { return '"' + printable(text, 40) + '"'; }

}  // namespace tool
