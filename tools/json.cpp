#include "json.h"

#include <array>
#include <charconv>
#include <cmath>

#include "utf8.h"

namespace tool {
namespace {

std::string string(std::string_view text) {
  std::string result = "\"";
  while (!text.empty()) {
    const Character c = firstCharacter(text);
    if (!c.valid) {
      result += "\xef\xbf\xbd";
    } else if (c.code == '"' || c.code == '\\') {
      result += '\\';
      result += text[0];
    } else if (c.code < 0x20) {
      constexpr char kDigits[] = "0123456789abcdef";
      result += "\\u00";
      result += kDigits[c.code >> 4U];
      result += kDigits[c.code & 15U];
    } else {
      result += text.substr(0, c.bytes);
    }
    text.remove_prefix(c.bytes);
  }
  return result + '"';
}

}  // namespace

void JsonWriter::newLine() {
  if (depth_ > 0) text_ += '\n' + std::string(static_cast<std::size_t>(2 * depth_), ' ');
}

void JsonWriter::item(std::string_view key, std::string_view value) {
  if (!first_) text_ += ',';
  newLine();
  if (!key.empty()) text_ += string(key) + ": ";
  text_ += value;
  first_ = false;
}

void JsonWriter::begin(std::string_view key, char bracket) {
  item(key, std::string_view(&bracket, 1));
  ++depth_;
  first_ = true;
}

void JsonWriter::end(char bracket) {
  --depth_;
  if (!first_) {
    text_ += '\n' + std::string(static_cast<std::size_t>(2 * depth_), ' ');
  }
  text_ += bracket;
  first_ = false;
}

void JsonWriter::add(std::string_view key, std::string_view value) { item(key, string(value)); }
void JsonWriter::add(std::string_view key, int value) { item(key, std::to_string(value)); }

void JsonWriter::add(std::string_view key, std::optional<double> value) {
  value ? add(key, *value) : addNull(key);
}

void JsonWriter::add(std::string_view key, double value) {
  if (!std::isfinite(value)) return addNull(key);
  std::array<char, 32> buffer;
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
  item(key, std::string_view(buffer.data(), static_cast<std::size_t>(result.ptr - buffer.data())));
}

}  // namespace tool
