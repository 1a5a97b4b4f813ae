#include <algorithm>
#include <string>

#include "zel/analysis/regression.h"

namespace zel {

namespace {

bool isLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
         static_cast<unsigned char>(c) >= 0x80;
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// Length of the longest beginning whose characters all satisfy the condition.
template <class Condition>
std::size_t span(std::string_view text, Condition&& condition) {
  return static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), condition) -
                                  text.begin());
}

/// Length of the number that the text begins with.
std::size_t numberLength(std::string_view text) {
  std::size_t n = span(text, [](char c) { return isDigit(c) || c == '.'; });
  if (n < text.size() && (text[n] == 'e' || text[n] == 'E')) {
    std::size_t exponent = n + 1;
    if (exponent < text.size() && (text[exponent] == '+' || text[exponent] == '-')) ++exponent;
    const std::size_t digits = span(text.substr(exponent), isDigit);
    if (digits > 0) n = exponent + digits;
  }
  return n;
}

}  // namespace

void ExtractVarNames(std::string_view Expression, TStrArray& Names) {
  TStrArray names;
  for (std::string_view rest = Expression; !rest.empty();) {
    std::size_t used = 1;
    const char c = rest.front();
    if (isLetter(c)) {
      used = span(rest, [](char d) { return isLetter(d) || isDigit(d) || d == '.'; });
      const std::string_view behind = rest.substr(used);
      const std::size_t blanks = span(behind, [](char d) { return d == ' ' || d == '\t'; });
      const bool isFunction = blanks < behind.size() && behind[blanks] == '(';
      const std::string_view name = rest.substr(0, used);
      if (!isFunction && std::find(names.begin(), names.end(), name) == names.end()) {
        names.emplace_back(name);
      }
    } else if (isDigit(c) || (c == '.' && rest.size() > 1 && isDigit(rest[1]))) {
      used = numberLength(rest);
    } else if (c == '"' || c == '\'') {
      const std::size_t end = rest.find(c, 1);
      used = end == std::string_view::npos ? rest.size() : end + 1;
    }
    rest.remove_prefix(used);
  }
  Names.swap(names);
}

}  // namespace zel
