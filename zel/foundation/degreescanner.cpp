#include "zel/foundation/degreescanner.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <span>

#include "zel/base/ascii_impl.h"
#include "zel/base/numbertext_impl.h"

namespace zel {

namespace {

using detail::isLetter;

constexpr std::string_view kDegreeMarks[] = {"\xC2\xB0", "\xC2\xBA", "\xB0", "d"};
constexpr std::string_view kSecondMarks[] = {"\"", "''", "\xE2\x80\xB3", "\xE2\x80\x9D"};
constexpr std::string_view kMinuteMarks[] = {"'", "\xE2\x80\xB2", "\xE2\x80\x99"};

std::string_view withoutBlanks(std::string_view text) {
  return text.substr(std::min(text.find_first_not_of(" \t"), text.size()));
}

/// Takes a mark with blanks in front of it; the text stays if there is none.
bool takeMark(std::string_view& text, std::span<const std::string_view> marks) {
  const std::string_view at = withoutBlanks(text);
  for (const std::string_view mark : marks) {
    if (!at.starts_with(mark)) continue;
    const std::string_view behind = at.substr(mark.size());
    // A letter as a mark is not the start of a word.
    if (isLetter(mark[0]) && !behind.empty() && isLetter(behind[0])) continue;
    text = behind;
    return true;
  }
  return false;
}

struct Part {
  double value = 0;
  bool isWhole = true;  // more parts may follow
};

/// Takes digits with at most one point.
bool takeNumber(std::string_view& text, Part& part) {
  if (text.empty() || text[0] == '+' || text[0] == '-') return false;
  const std::size_t length = detail::scanNumber(text, std::chars_format::fixed, part.value);
  part.isWhole = text.substr(0, length).find('.') == std::string_view::npos;
  text.remove_prefix(length);
  return length > 0;
}

/// Takes minutes or seconds with their mark; the text and the part stay if there are none.
bool takeSixtieths(std::string_view& text, std::span<const std::string_view> marks, Part& part) {
  std::string_view rest = withoutBlanks(text);
  Part found;
  if (!takeNumber(rest, found) || !(found.value < 60)) return false;
  // Two minute marks stand for seconds.
  if (marks.data() == kMinuteMarks && withoutBlanks(rest).starts_with("''")) return false;
  if (!takeMark(rest, marks)) return false;
  text = rest;
  part = found;
  return true;
}

/// Takes the letter of a direction. 0 if there is none.
char takeDirection(std::string_view& text) {
  const std::string_view at = withoutBlanks(text);
  constexpr std::string_view kDirections = "NSEW";
  if (at.empty() || kDirections.find(at[0]) == std::string_view::npos) return '\0';
  if (at.size() > 1 && isLetter(at[1])) return '\0';
  text = at.substr(1);
  return at[0];
}

}  // namespace

double ScanDegrees(std::string_view s, std::size_t& Pos, bool Flag, int& Mode) {
  constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
  Mode = -1;
  if (Pos >= s.size()) return kNone;
  std::string_view text = s.substr(Pos);
  const bool isSigned = text[0] == '+' || text[0] == '-';
  bool negative = text[0] == '-';
  text.remove_prefix(isSigned ? 1 : 0);
  Part degrees;
  Part minutes;
  Part seconds;
  if (!takeNumber(text, degrees) || std::isinf(degrees.value)) return kNone;
  int notation = dfNumber;
  if (takeMark(text, kDegreeMarks)) {
    notation = dfDegrees;
    if (degrees.isWhole && takeSixtieths(text, kMinuteMarks, minutes)) {
      notation = dfDegMin;
      if (minutes.isWhole && takeSixtieths(text, kSecondMarks, seconds)) notation = dfDegMinSec;
    }
  }
  if (Flag && !isSigned) {
    const char direction = takeDirection(text);
    negative = direction == 'S' || direction == 'W';
  }
  Mode = notation;
  Pos = s.size() - text.size();
  const Extended rest = (Extended{60} * minutes.value + seconds.value) / 3600;
  const auto angle = static_cast<double>(degrees.value + rest);
  return negative ? -angle : angle;
}

}  // namespace zel
