#include "zel/base/stringhelpers.h"

#include "zel/base/ascii_impl.h"

namespace zel {
namespace {

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

}  // namespace

std::string StripLTBlanks(std::string_view s) {
  constexpr std::string_view blanks = " \t";
  const std::size_t first = s.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return std::string(s.substr(first, s.find_last_not_of(blanks) - first + 1));
}

bool StringContains(std::string_view s, std::string_view part) {
  return s.find(part) != std::string_view::npos;
}

std::string ReplaceCharInString(std::string_view s, char a, char b) {
  std::string result(s);
  std::replace(result.begin(), result.end(), a, b);
  return result;
}

std::string RemoveControlChars(std::string_view s) {
  std::string result(s);
  std::erase_if(result, detail::isControl);
  return result;
}

std::string StripTrailingChars(char c, std::string_view s) {
  return std::string(s.substr(0, s.find_last_not_of(c) + 1));
}

std::string LowerCase(std::string_view s) {
  std::string result(s);
  std::transform(result.begin(), result.end(), result.begin(), lower);
  return result;
}

bool EqualIgnoringCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return lower(x) == lower(y); });
}

int Tokenize(std::string_view s, std::string_view delims, TStrArray& parts, bool KeepEmpty) {
  // The pieces are collected first: s may be a view of one of the strings that parts holds.
  TStrArray pieces;
  for (;;) {
    const std::size_t length = std::min(s.find_first_of(delims), s.size());
    if (length > 0 || KeepEmpty) pieces.emplace_back(s.substr(0, length));
    if (length == s.size()) break;
    s.remove_prefix(length + 1);
  }
  parts = std::move(pieces);
  return static_cast<int>(parts.size());
}

}  // namespace zel
