/// @file
/// Integers as little-endian bytes, whatever the byte order of the machine.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zel::detail {

/// Writes the N low bytes of value.
template <std::size_t N>
inline void putLittle(char* bytes, std::uint64_t value) {
  for (std::size_t i = 0; i < N; ++i) bytes[i] = static_cast<char>((value >> (8 * i)) & 0xFFU);
}

/// The unsigned number in N bytes.
template <std::size_t N>
[[nodiscard]] inline std::uint64_t getLittle(const char* bytes) {
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < N; ++i) {
    value |= std::uint64_t{static_cast<unsigned char>(bytes[i])} << (8 * i);
  }
  return value;
}

}  // namespace zel::detail
