/// @file
/// String helpers. Characters are bytes: what they do to ASCII characters leaves UTF-8 text valid.
#pragma once

#include <algorithm>
#include <iterator>
#include <ranges>
#include <string>
#include <string_view>

#include "zel/base/api.h"
#include "zel/base/array.h"

namespace zel {

/// Copy without leading and trailing blanks and tabs.
[[nodiscard]] ZEL_API std::string StripLTBlanks(std::string_view s);

/// True if part occurs in s, case respected; an empty part always does.
[[nodiscard]] ZEL_API bool StringContains(std::string_view s, std::string_view part);

/// Copy with every character a replaced by b.
[[nodiscard]] ZEL_API std::string ReplaceCharInString(std::string_view s, char a, char b);

/// Copy without the control characters, codes 0 to 31 and 127.
[[nodiscard]] ZEL_API std::string RemoveControlChars(std::string_view s);

/// Copy without the run of characters c at the end.
[[nodiscard]] ZEL_API std::string StripTrailingChars(char c, std::string_view s);

/// Copy with the letters A to Z in lower case.
[[nodiscard]] ZEL_API std::string LowerCase(std::string_view s);

/// Equality that does not distinguish the case of the letters A to Z.
[[nodiscard]] ZEL_API bool EqualIgnoringCase(std::string_view a, std::string_view b);

/// Position of s in a list of strings, compared by EqualIgnoringCase.
/// @param list  a random-access range of anything that converts to std::string_view
/// @param n     how many entries count, limited to 0..length of the list
/// @return 0-based index of the first match, -1 if there is none
template <std::ranges::random_access_range List>
requires std::convertible_to<std::ranges::range_reference_t<const List>, std::string_view>
[[nodiscard]] int StringIx(std::string_view s, const List& list, int n) {
  const auto first = std::ranges::begin(list);
  const auto length = std::ranges::distance(list);
  const auto last = first + std::clamp<decltype(length)>(n, 0, length);
  const auto found = std::find_if(
      first, last, [s](std::string_view entry) { return EqualIgnoringCase(s, entry); });
  return found == last ? -1 : static_cast<int>(found - first);
}
/// The same with the whole list.
template <std::ranges::random_access_range List>
requires std::convertible_to<std::ranges::range_reference_t<const List>, std::string_view>
[[nodiscard]] int StringIx(std::string_view s, const List& list) {
  return StringIx(s, list, static_cast<int>(std::ranges::distance(list)));
}

/// Splits s at every character of delims.
/// @param parts      receives the pieces in order
/// @param KeepEmpty  false: delimiters in a row, at the start or the end separate like a single
/// one,
///   so no piece is empty; true: m delimiters always give m + 1 pieces
/// @return number of pieces
ZEL_API int Tokenize(std::string_view s, std::string_view delims, TStrArray& parts,
                     bool KeepEmpty = false);

}  // namespace zel
