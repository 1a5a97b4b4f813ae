#include "zel/base/numbertext.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include "zel/base/textreading.h"

namespace zel {
namespace {

constexpr int kMostDecimals = 16445;

bool isDigit(char c) { return c >= '0' && c <= '9'; }

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

template <class F>
std::string fixedText(F x, int decimals) {
  if (!std::isfinite(x)) return specialWord(x);
  decimals = std::clamp(decimals, 0, kMostDecimals);
  std::string text(32 + static_cast<std::size_t>(decimals), '\0');
  for (;;) {
    char* const last = text.data() + text.size();
    const auto result = std::to_chars(text.data(), last, x, std::chars_format::fixed, decimals);
    if (result.ec == std::errc()) {
      text.resize(static_cast<std::size_t>(result.ptr - text.data()));
      return text;
    }
    // Only numbers with many digits before the point come here.
    text.resize(text.size() + std::numeric_limits<F>::max_exponent10 + 1);
  }
}

}  // namespace

std::optional<double> ParseNumber(std::string_view word) {
  if (word.starts_with('+')) {
    word.remove_prefix(1);
    if (word.starts_with('-')) return std::nullopt;
  }
  const std::string_view magnitude = word.substr(word.starts_with('-') ? 1 : 0);
  if (magnitude.empty() || (!isDigit(magnitude[0]) && magnitude[0] != '.')) return std::nullopt;
  double x = 0;
  const char* const last = word.data() + word.size();
  const auto [end, error] = std::from_chars(word.data(), last, x);
  if (end != last || error == std::errc::invalid_argument) return std::nullopt;
  if (error == std::errc::result_out_of_range) {
    if (decimalExponent(magnitude) > 0) return std::nullopt;
    return word[0] == '-' ? -0.0 : 0.0;
  }
  if (std::isinf(x)) return std::nullopt;
  return x;
}

bool ReadNumber(std::istream& in, double& x) {
  const auto number = ParseNumber(ReadNextWordInTextFile(in));
  if (number) x = *number;
  return number.has_value();
}

std::string FormatFixed(double x, int decimals) { return fixedText(x, decimals); }

std::string FormatExp(double x, int width) {
  width = std::clamp(width, 9, 1100);
  const auto field = static_cast<std::size_t>(width);
  if (!std::isfinite(x)) return padded(specialWord(x), field);
  constexpr int kFrame = 8;  // sign, digit, point, "E", exponent sign and digits
  std::string digits(field + 8, '\0');
  char* const last = digits.data() + digits.size();
  const auto result = std::to_chars(digits.data(), last, std::abs(x), std::chars_format::scientific,
                                    width - kFrame);
  digits.resize(static_cast<std::size_t>(result.ptr - digits.data()));
  const std::size_t mark = digits.find('e');
  std::string text(1, std::signbit(x) ? '-' : ' ');
  text.append(digits, 0, mark);
  text += 'E';
  text += digits[mark + 1];
  // to_chars writes two exponent digits where two are enough.
  if (digits.size() - mark < 5) text += '0';
  text.append(digits, mark + 2);
  return text;
}

std::string strff(Extended x, int w, int d) {
  const auto narrow = static_cast<double>(x);
  // The text of a double has a faster exact method.
  return padded(narrow == x ? fixedText(narrow, d) : fixedText(x, d),
                static_cast<std::size_t>(std::max(w, 0)));
}

}  // namespace zel
