#include "zel/foundation/integertext.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <system_error>

#include "zel/kernels/digits.h"

namespace zel {

namespace {

std::string digitsOf(int value, int bits, int digits, int most) {
  std::string text;
  // Negative values go on with ones.
  kernels::appendDigits(text, static_cast<std::uint64_t>(std::int64_t{value}), bits,
                        std::clamp(digits, 1, most));
  return text;
}

}  // namespace

std::string Decimal(int value, std::uint8_t Digits) {
  const auto width = std::max<std::size_t>(Digits, 1);
  std::string text = std::to_string(std::abs(std::int64_t{value}));
  if (text.size() > width) text.erase(0, text.size() - width);
  text.insert(0, width - text.size(), '0');
  if (value < 0) text.insert(0, 1, '-');
  return text;
}

std::string Hex(int value, std::uint8_t Digits) { return digitsOf(value, 4, Digits, 8); }
std::string Octal(int value, std::uint8_t Digits) {
  // The eleventh digit holds the two highest bits of 32.
  std::string text;
  kernels::appendDigits(text, static_cast<std::uint32_t>(value), 3, std::clamp<int>(Digits, 1, 11));
  return text;
}
std::string Bin(int value, std::uint8_t Digits) { return digitsOf(value, 1, Digits, 32); }

std::string Roman(int value) {
  struct Numeral {
    int value;
    const char* letters;
  };
  constexpr Numeral kNumerals[] = {{1000, "M"}, {900, "CM"}, {500, "D"}, {400, "CD"}, {100, "C"},
                                   {90, "XC"},  {50, "L"},   {40, "XL"}, {10, "X"},   {9, "IX"},
                                   {5, "V"},    {4, "IV"},   {1, "I"}};
  constexpr int kEnd = 30000;
  std::string text;
  if (value < 1 || value >= kEnd) return text;
  for (const Numeral& numeral : kNumerals) {
    for (; value >= numeral.value; value -= numeral.value) text += numeral.letters;
  }
  return text;
}

int StrToIntDefault(std::string_view s, int Default) {
  s.remove_prefix(std::min(s.find_first_not_of(" \t"), s.size()));
  if (s.starts_with('+')) {
    s.remove_prefix(1);
    if (s.starts_with('-')) return Default;
  }
  int value = 0;
  const auto [end, error] = std::from_chars(s.data(), s.data() + s.size(), value);
  return error == std::errc() && end == s.data() + s.size() ? value : Default;
}

}  // namespace zel
