/// @file
/// Digits of integers in notations whose base is a power of two.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace zel::kernels {

/// Appends exactly `digits` digits of the low bits of a value, upper case, the highest first.
/// @param bits  of a digit: 1 binary, 3 octal, 4 hexadecimal
inline void appendDigits(std::string& text, std::uint64_t value, int bits, int digits) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  const std::uint64_t mask = (std::uint64_t{1} << bits) - 1;
  const std::size_t before = text.size();
  text.resize(before + static_cast<std::size_t>(digits));
  char* place = text.data() + before;
  for (int d = digits; d-- > 0;) *place++ = kDigits[(value >> (d * bits)) & mask];
}

}  // namespace zel::kernels
