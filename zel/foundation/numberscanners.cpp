#include "zel/foundation/numberscanners.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>
#include <system_error>

#include "zel/base/ascii_impl.h"
#include "zel/base/numbertext_impl.h"
#include "zel/base/stringhelpers.h"

namespace zel {

namespace {

using detail::isDigit;
using detail::isLetter;

template <class I>
I scanInteger(std::string_view s, std::size_t& Pos, int base, std::size_t skip = 0) {
  I value = 0;
  if (Pos >= s.size() || s.size() - Pos <= skip) return value;
  const auto [end, error] =
      std::from_chars(s.data() + Pos + skip, s.data() + s.size(), value, base);
  if (error != std::errc()) return 0;
  Pos = static_cast<std::size_t>(end - s.data());
  return value;
}

template <class Scan>
bool isWhole(std::string_view s, Scan&& scan) {
  std::size_t pos = 0;
  scan(s, pos);
  return pos == s.size() && pos > 0;
}

std::size_t behindDigits(std::string_view text, std::size_t at) {
  while (at < text.size() && isDigit(text[at])) ++at;
  return at;
}

/// scanNumber with another decimal separator.
std::size_t scanWith(std::string_view text, TDecPSep separator, double& x) {
  constexpr auto kGeneral = std::chars_format::general;
  if (separator == dpsPoint) return detail::scanNumber(text, kGeneral, x);
  const bool isSigned = !text.empty() && (text[0] == '+' || text[0] == '-');
  const std::size_t point = behindDigits(text, isSigned ? 1 : 0);
  if (point == text.size() || (text[point] != ',' && text[point] != '.')) {
    return detail::scanNumber(text, kGeneral, x);
  }
  if (text[point] == '.') {
    return detail::scanNumber(separator == dpsBoth ? text : text.substr(0, point), kGeneral, x);
  }
  // The number with a point in place of the comma.
  std::size_t end = behindDigits(text, point + 1);
  if (end < text.size() && (text[end] == 'e' || text[end] == 'E')) {
    ++end;
    if (end < text.size() && (text[end] == '+' || text[end] == '-')) ++end;
    end = behindDigits(text, end);
  }
  std::array<char, 64> near;
  if (end > near.size()) {
    std::string far(text.substr(0, end));
    far[point] = '.';
    return detail::scanNumber(far, kGeneral, x);
  }
  text.copy(near.data(), end);
  near[point] = '.';
  return detail::scanNumber({near.data(), end}, kGeneral, x);
}

/// A word for infinity or not-a-number.
std::size_t scanWord(std::string_view text, double& x) {
  struct Word {
    std::string_view letters;
    double value;
  };
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  constexpr Word kWords[] = {{"infinity", kInfinity},
                             {"inf", kInfinity},
                             {"nan", std::numeric_limits<double>::quiet_NaN()}};
  const bool isSigned = !text.empty() && (text[0] == '+' || text[0] == '-');
  const bool negative = isSigned && text[0] == '-';
  text.remove_prefix(isSigned ? 1 : 0);
  for (const Word& word : kWords) {
    if (!EqualIgnoringCase(text.substr(0, word.letters.size()), word.letters)) continue;
    x = negative ? -word.value : word.value;
    return word.letters.size() + (isSigned ? 1 : 0);
  }
  return 0;
}

}  // namespace

std::uint64_t ScanHex(std::string_view s, std::size_t& Pos) {
  return scanInteger<std::uint64_t>(s, Pos, 16);
}
std::uint64_t ScanOctal(std::string_view s, std::size_t& Pos) {
  return scanInteger<std::uint64_t>(s, Pos, 8);
}
std::uint64_t ScanBin(std::string_view s, std::size_t& Pos) {
  return scanInteger<std::uint64_t>(s, Pos, 2);
}
std::int64_t ScanDecimal(std::string_view s, std::size_t& Pos) {
  const bool plus = Pos < s.size() && s[Pos] == '+';
  if (plus && s.substr(Pos).starts_with("+-")) return 0;
  return scanInteger<std::int64_t>(s, Pos, 10, plus ? 1 : 0);
}

double ScanFPNum(std::string_view s, bool Flag, int Mode, std::size_t& Pos) {
  double x = std::numeric_limits<double>::quiet_NaN();
  if (Pos >= s.size()) return x;
  const auto separator =
      Mode == dpsComma || Mode == dpsBoth ? static_cast<TDecPSep>(Mode) : dpsPoint;
  const std::string_view text = s.substr(Pos);
  std::size_t length = scanWith(text, separator, x);
  if (length == 0 && Flag) length = scanWord(text, x);
  Pos += length;
  return x;
}

bool IsValidHex(std::string_view s) { return isWhole(s, ScanHex); }
bool IsValidOct(std::string_view s) { return isWhole(s, ScanOctal); }
bool IsValidBin(std::string_view s) { return isWhole(s, ScanBin); }
bool IsValidDecInt(std::string_view s) { return isWhole(s, ScanDecimal); }

bool IsValidFPNum(std::string_view s, TDecPSep DecSep) {
  return isWhole(s, [DecSep](std::string_view text, std::size_t& pos) {
    ScanFPNum(text, false, DecSep, pos);
  });
}

bool IsValidDouble(std::string_view s, bool Flag, TDecPSep DecSep) {
  double x = 0;
  return isWhole(s, [&](std::string_view text,
                        std::size_t& pos) { x = ScanFPNum(text, Flag, DecSep, pos); }) &&
         (std::isfinite(x) || isLetter(s.back()));
}

}  // namespace zel
