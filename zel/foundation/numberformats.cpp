#include "zel/foundation/numberformats.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "zel/base/numbertext.h"
#include "zel/base/numbertext_impl.h"
#include "zel/kernels/double_double.h"

namespace zel {

namespace {

constexpr std::string_view kDegreeSign = "\xC2\xB0";

std::uint64_t powerOfTen(int exponent) {
  std::uint64_t power = 1;
  for (; exponent > 0; --exponent) power *= 10;
  return power;
}

/// The magnitude of an angle in whole degrees and whole units of the last decimal.
struct Divided {
  double degrees;
  std::uint64_t units;  // less than a degree
};

/// Exact but for the described rounding: neither large angles nor many decimals lose anything.
Divided divide(double magnitude, std::uint64_t unitsPerDegree) {
  constexpr double kSnap = 3e-12;
  const auto scale = static_cast<double>(unitsPerDegree);
  double degrees = std::trunc(magnitude);
  const auto exact = kernels::twoProduct(magnitude - degrees, scale);
  double units = std::floor(exact.hi);
  const double excess = exact.hi - units;
  if (excess > 0.5 || (excess == 0.5 && exact.lo >= 0)) ++units;
  if (scale - units <= kSnap * scale) {
    ++degrees;
    units = 0;
  } else if (units <= kSnap * scale) {
    units = 0;
  }
  return {degrees, static_cast<std::uint64_t>(units)};
}

/// units / 10^decimals, right-aligned.
std::string decimalText(std::uint64_t units, int decimals, int width) {
  const auto places = static_cast<std::size_t>(decimals);
  std::string text = std::to_string(units);
  if (text.size() <= places) text.insert(0, places + 1 - text.size(), '0');
  if (places > 0) text.insert(text.size() - places, 1, '.');
  const auto field = static_cast<std::size_t>(width);
  if (text.size() < field) text.insert(0, field - text.size(), ' ');
  return text;
}

}  // namespace

std::string DegreeToStr(double Deg, TDegreeFormat Format, int Decimals) {
  Decimals = std::clamp(Decimals, 0, 8);
  std::string text;
  if (Format > dfNumber) return text;
  const bool divided = Format == dfDegMin || Format == dfDegMinSec;
  if (!divided || !std::isfinite(Deg)) {
    text = strff(Deg, 1, Decimals);
    return Format == dfNumber ? text : text.append(kDegreeSign);
  }
  const std::uint64_t perMinute =
      Format == dfDegMin ? powerOfTen(Decimals) : 60 * powerOfTen(Decimals);
  const auto [degrees, units] = divide(std::abs(Deg), 60 * perMinute);
  if (Deg < 0 && (degrees > 0 || units > 0)) text = '-';
  text.append(strff(degrees, 1, 0)).append(kDegreeSign).append(" ");
  if (Format == dfDegMin) {
    return text.append(decimalText(units, Decimals, Decimals + 3)).append("'");
  }
  return text.append(decimalText(units / perMinute, 0, 2))
      .append("' ")
      .append(decimalText(units % perMinute, Decimals, Decimals + 3))
      .append("\"");
}

std::string strf(Extended x, int Width, int Decimals) {
  constexpr int kTwoDigitExponent = -2;
  if (Decimals >= 0) return strff(x, Width, Decimals);
  if (Decimals != kTwoDigitExponent) return FormatExtendedExp(x, Width);
  Width = std::clamp(Width, 8, 11998);
  if (!std::isfinite(x)) return strff(x, Width, 0);
  std::string text = FormatExtendedExp(x, Width + 2);
  const std::size_t exponent = text.find('E') + 2;
  const bool fits = text.compare(exponent, 2, "00") == 0;
  text.erase(exponent, 2);
  if (!fits) text.assign(text.size(), '*');
  return text;
}

std::string MakeEFormat(Extended x, int Width, int Digits) {
  Digits = std::clamp(Digits, 2, 15);
  Width = std::clamp(Width, 8, 40);
  if (!std::isfinite(x)) return strff(x, Width, 0);
  const auto [digits, lead] = detail::significantDigits(x, Digits);
  const int exponent = x == 0 ? 0 : lead + 1;
  std::string text = std::signbit(x) ? "-0." : " 0.";
  text.append(digits).append(exponent < 0 ? "E-" : "E+");
  if (std::abs(exponent) < 10) text += '0';
  text.append(std::to_string(std::abs(exponent)));
  const auto field = static_cast<std::size_t>(Width);
  if (text.size() < field) text.insert(0, field - text.size(), ' ');
  return text;
}

std::string EEngStr(Extended x, int Digits) {
  constexpr std::string_view kPrefixes = "afpnum kMGT";
  constexpr int kLowest = -6;
  constexpr int kHighest = 4;
  Digits = std::clamp(Digits, -9, 9);
  const int wanted = std::max(std::abs(Digits), 1) - 1;
  if (x == 0) return strff(0, 1, wanted);
  if (!std::isfinite(x)) return strff(x, 1, 0);
  // The doubles nearest to powers of ten must count as these, also those that lie below.
  constexpr int kSure = 15;
  const int exponent = detail::significantDigits(x, kSure).exponent;
  const int third = exponent >= 0 ? exponent / 3 : -((2 - exponent) / 3);
  const int power = std::clamp(third, kLowest, kHighest);
  const int places = exponent - 3 * power;  // power of ten of the first digit, with the prefix
  const int decimals = std::max(0, wanted - places);
  const int count = places + decimals + 1;
  auto number = detail::significantDigits(x, count);
  // More digits than kSure may show that it lies below the power of ten: one of them is too many.
  if (number.exponent < exponent) number = detail::significantDigits(x, count - 1);
  std::string& text = number.digits;
  const int lead = number.exponent - 3 * power;
  if (lead < 0) text.insert(0, static_cast<std::size_t>(-lead), '0');
  const auto whole = static_cast<std::size_t>(std::max(lead, 0)) + 1;
  text.resize(whole + static_cast<std::size_t>(decimals), '0');  // where it has rounded up
  const bool marksPoint = Digits < 0 && power != 0;
  const char prefix = kPrefixes[static_cast<std::size_t>(power - kLowest)];
  if (decimals > 0) text.insert(whole, 1, marksPoint ? prefix : '.');
  if (power != 0 && (!marksPoint || decimals == 0)) text += prefix;
  if (std::signbit(x)) text.insert(0, 1, '-');
  return text;
}

}  // namespace zel
