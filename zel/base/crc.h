/// @file
/// CRC-32, reflected polynomial 0xEDB88320.
#pragma once

#include <array>
#include <cstdint>

namespace zel {

namespace detail {

inline constexpr std::array<std::uint32_t, 256> kCRC32Table = [] {
  std::array<std::uint32_t, 256> table{};
  for (std::uint32_t i = 0; i < 256; ++i) {
    std::uint32_t crc = i;
    for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ ((crc & 1U) != 0 ? 0xEDB88320U : 0U);
    table[i] = crc;
  }
  return table;
}();

}  // namespace detail

/// The register after one more byte. Start with 0xFFFFFFFF; the complement of the last register is
/// the checksum.
[[nodiscard]] constexpr std::uint32_t CalcNextCRC32(std::uint8_t b, std::uint32_t crc) {
  return detail::kCRC32Table[(crc ^ b) & 0xFFU] ^ (crc >> 8);
}

}  // namespace zel
