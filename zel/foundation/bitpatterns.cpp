#include "zel/foundation/bitpatterns.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cstdint>
#include <system_error>

#include "zel/base/errors.h"
#include "zel/base/extended_impl.h"
#include "zel/kernels/digits.h"

namespace zel {

namespace {

constexpr int kBitsOfDigit = 4;

/// @return false unless the text consists of hexadecimal digits, at most 16
bool parse(std::string_view s, std::uint64_t& value) {
  const auto isDigit = [](char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
  };
  return std::all_of(s.begin(), s.end(), isDigit) &&
         std::from_chars(s.data(), s.data() + s.size(), value, 16).ec == std::errc();
}

[[noreturn]] void fail(const char* routine, std::string_view s) {
  throw EZELError(std::string(routine) + ": invalid hex string \"" + std::string(s) + '"');
}

}  // namespace

std::string FPNumToHex(float x) {
  std::string text;
  kernels::appendDigits(text, std::bit_cast<std::uint32_t>(x), kBitsOfDigit, 8);
  return text;
}

std::string FPNumToHex(double x) {
  std::string text;
  kernels::appendDigits(text, std::bit_cast<std::uint64_t>(x), kBitsOfDigit, 16);
  return text;
}

std::string FPNumToHex(Extended x) {
  const detail::ExtendedBits bits = detail::bitsOf(x);
  std::string text;
  kernels::appendDigits(text, bits.signExponent, kBitsOfDigit, 4);
  kernels::appendDigits(text, bits.significand, kBitsOfDigit, 16);
  return text;
}

float HexToSingle(std::string_view s) {
  std::uint64_t bits = 0;
  if (s.size() != 8 || !parse(s, bits)) fail("HexToSingle", s);
  return std::bit_cast<float>(static_cast<std::uint32_t>(bits));
}

double HexToDouble(std::string_view s) {
  std::uint64_t bits = 0;
  if (s.size() != 16 || !parse(s, bits)) fail("HexToDouble", s);
  return std::bit_cast<double>(bits);
}

Extended HexToExtended(std::string_view s) {
  std::uint64_t high = 0;
  std::uint64_t low = 0;
  if (s.size() != 20 || !parse(s.substr(0, 4), high) || !parse(s.substr(4), low)) {
    fail("HexToExtended", s);
  }
  return detail::valueOf({low, static_cast<std::uint16_t>(high)});
}

}  // namespace zel
