#include "number_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <system_error>

#include "utf8.h"
#include "zel/base/numbertext.h"

namespace tool {
namespace {

template <class... Format>
std::string text(double x, Format... format) {
  std::array<char, 64> buffer;
  const auto [end, error] =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), x, format...);
  return error == std::errc() ? std::string(buffer.data(), end) : std::string("?");
}

bool isModerate(double x) { return x == 0 || (std::abs(x) >= 1e-6 && std::abs(x) < 1e15); }

}  // namespace

std::string shortest(double x) {
  return isModerate(x) ? text(x, std::chars_format::fixed) : text(x);
}

std::string fixedPoint(double x, int decimals) {
  if (decimals <= 10 && std::abs(x) < 1e15) return zel::FormatFixed(x, decimals);
  return text(x, std::chars_format::scientific, 5);
}

std::string trimmed(double x, int decimals) {
  std::string number = fixedPoint(x, decimals);
  if (number.find('e') == std::string::npos && number.find('.') != std::string::npos) {
    number.erase(number.find_last_not_of('0') + 1);
    if (number.back() == '.') number.pop_back();
  }
  return number;
}

std::string significant(double x, int digits) {
  return text(x, std::chars_format::general, digits);
}

int decimalsFor(double x) {
  const double places = 4 - std::floor(std::log10(x));
  return places > 0 ? static_cast<int>(places) : 0;
}

std::string whyNotANumber(std::string_view word, std::string_view missing) {
  double ignored = 0;
  const std::string_view digits = word.starts_with('+') ? word.substr(1) : word;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), ignored);
  if (error == std::errc::result_out_of_range && end == digits.data() + digits.size()) {
    return inQuotes(word) + " is too large for a double";
  }
  std::string pointed(word);
  std::replace(pointed.begin(), pointed.end(), ',', '.');
  if (zel::ParseNumber(pointed)) {
    return inQuotes(word) + " is not a number: the decimal separator is a point";
  }
  return inQuotes(word) + " is not a number (" + std::string(missing) + ')';
}

std::string counted(long long n, const std::string& noun) {
  return std::to_string(n) + ' ' + noun + (n == 1 ? "" : "s");
}

}  // namespace tool
