#include "zel/base/numbertext.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <limits>
#include <system_error>
#include <utility>

#include "zel/base/ascii_impl.h"
#include "zel/base/numbertext_impl.h"
#include "zel/base/textreading.h"

namespace zel {
namespace {

using detail::isDigit;

constexpr int kMostDecimals = 16445;

/// Power of ten of the leading non-zero digit of a well-formed unsigned number. Only its sign is of
/// interest, so an exponent beyond any double may be cut.
std::ptrdiff_t decimalExponent(std::string_view number) {
  const std::size_t mark = std::min(number.find_first_of("eE"), number.size());
  const std::string_view mantissa = number.substr(0, mark);
  const std::size_t lead = mantissa.find_first_of("123456789");
  if (lead == std::string_view::npos) return std::numeric_limits<std::ptrdiff_t>::min();
  const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
  const auto leadPower = lead < point ? static_cast<std::ptrdiff_t>(point - lead) - 1
                                      : -static_cast<std::ptrdiff_t>(lead - point);
  // An exponent that outweighs every digit of the mantissa decides alone.
  const auto most = static_cast<std::ptrdiff_t>(number.size()) + 100000;
  std::ptrdiff_t exponent = 0;
  bool negative = false;
  for (const char c : number.substr(std::min(mark + 1, number.size()))) {
    if (isDigit(c)) {
      exponent = std::min(exponent * 10 + (c - '0'), most);
    } else {
      negative = c == '-';
    }
  }
  return leadPower + (negative ? -exponent : exponent);
}

std::string specialWord(Extended x) { return std::isnan(x) ? "NAN" : x > 0 ? "INF" : "-INF"; }

std::string padded(const std::string& text, std::size_t width) {
  return text.size() < width ? std::string(width - text.size(), ' ') + text : text;
}

/// Right-aligned in at least width characters.
template <class F>
std::string fixedText(F x, int decimals, std::size_t width = 0) {
  if (!std::isfinite(x)) return padded(specialWord(x), width);
  decimals = std::clamp(decimals, 0, kMostDecimals);
  // Without an allocation for what is usually written; the rest is tried with growing room.
  std::array<char, 64> near;
  std::string far;
  char* first = near.data();
  std::size_t room = near.size();
  for (;;) {
    const auto result = std::to_chars(first, first + room, x, std::chars_format::fixed, decimals);
    if (result.ec == std::errc()) {
      const auto length = static_cast<std::size_t>(result.ptr - first);
      std::string text(std::max(length, width), ' ');
      std::copy_n(first, length, text.end() - static_cast<std::ptrdiff_t>(length));
      return text;
    }
    far.resize(std::max(room, static_cast<std::size_t>(decimals)) +
               std::numeric_limits<F>::max_exponent10);
    first = far.data();
    room = far.size();
  }
}

template <class F>
detail::SignificantDigits digitsOf(F x, int count) {
  // Beside the digits: the point, "e", the sign and up to four digits of the exponent.
  std::string text(static_cast<std::size_t>(count) + 8, '\0');
  char* const last = text.data() + text.size();
  const auto end =
      std::to_chars(text.data(), last, std::abs(x), std::chars_format::scientific, count - 1).ptr;
  const std::size_t mark = text.find('e');
  detail::SignificantDigits number;
  const char* const exponent = text.data() + mark + 1;
  std::from_chars(exponent + (*exponent == '+' ? 1 : 0), end, number.exponent);
  text.resize(mark);
  if (count > 1) text.erase(1, 1);
  number.digits = std::move(text);
  return number;
}

/// Sign or blank, digits with a point behind the first, "E", sign and at least the given number of
/// digits of the exponent; in width characters.
std::string expText(Extended x, int width, int exponentDigits) {
  const auto field = static_cast<std::size_t>(width);
  if (!std::isfinite(x)) return padded(specialWord(x), field);
  const int frame = 5 + exponentDigits;  // sign, digit, point, "E", sign of the exponent
  const auto [digits, exponent] = detail::significantDigits(x, width - frame + 1);
  const std::string power = std::to_string(std::abs(exponent));
  std::string text;
  text.reserve(field);
  text += std::signbit(x) ? '-' : ' ';
  text += digits[0];
  text += '.';
  text.append(digits, 1);
  text += 'E';
  text += exponent < 0 ? '-' : '+';
  text.append(static_cast<std::size_t>(exponentDigits) - power.size(), '0');
  return text += power;
}

}  // namespace

std::size_t detail::scanNumber(std::string_view text, std::chars_format format, double& x) {
  const std::size_t plus = text.starts_with('+') ? 1 : 0;
  text.remove_prefix(plus);
  const bool negative = plus == 0 && text.starts_with('-');
  const std::string_view magnitude = text.substr(negative ? 1 : 0);
  // Keeps out the words for infinity and not-a-number, and a second sign.
  if (magnitude.empty() || (!isDigit(magnitude[0]) && magnitude[0] != '.')) return 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), x, format);
  if (error == std::errc::invalid_argument) return 0;
  const auto length = static_cast<std::size_t>(end - text.data());
  if (error == std::errc::result_out_of_range) {
    const bool large = decimalExponent(text.substr(0, length).substr(negative ? 1 : 0)) > 0;
    x = large ? std::numeric_limits<double>::infinity() : 0.0;
    if (negative) x = -x;
  }
  return plus + length;
}

detail::SignificantDigits detail::significantDigits(Extended x, int count) {
  // The digits of a double have a faster exact method.
  const auto narrow = static_cast<double>(x);
  return narrow == x ? digitsOf(narrow, count) : digitsOf(x, count);
}

std::optional<double> ParseNumber(std::string_view word) {
  double x = 0;
  const std::size_t length = detail::scanNumber(word, std::chars_format::general, x);
  if (length == 0 || length != word.size() || std::isinf(x)) return std::nullopt;
  return x;
}

bool ReadNumber(std::istream& in, double& x) {
  const auto number = ParseNumber(ReadNextWordInTextFile(in));
  if (number) x = *number;
  return number.has_value();
}

std::string FormatFixed(double x, int decimals) { return fixedText(x, decimals); }

std::string FormatExp(double x, int width) { return expText(x, std::clamp(width, 9, 1100), 3); }

std::string FormatExtendedExp(Extended x, int width) {
  return expText(x, std::clamp(width, 10, 12000), 4);
}

std::string strff(Extended x, int w, int d) {
  const auto narrow = static_cast<double>(x);
  const auto width = static_cast<std::size_t>(std::max(w, 0));
  // The text of a double has a faster exact method.
  return narrow == x ? fixedText(narrow, d, width) : fixedText(x, d, width);
}

namespace detail {

void appendNumber(std::string& text, double x, int decimals) {
  if (decimals >= 0 || !std::isfinite(x)) {
    text += FormatFixed(x, std::max(decimals, 0));
    return;
  }
  char digits[32];
  text.append(digits, std::to_chars(digits, digits + sizeof digits, x).ptr);
}

}  // namespace detail

}  // namespace zel
