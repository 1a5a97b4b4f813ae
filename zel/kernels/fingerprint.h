/// @file
/// CRC-32 (reflected polynomial 0xEDB88320): the byte step, and the fingerprint of arrays, which feeds
/// byte k of every element to register k.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>

namespace zel::kernels {

namespace detail {
consteval std::array<std::uint32_t, 256> crc32Table() {
  std::array<std::uint32_t, 256> table{};
  for (std::uint32_t i = 0; i < 256; ++i) {
    std::uint32_t r = i;
    for (int bit = 0; bit < 8; ++bit) r = (r >> 1) ^ ((r & 1u) ? 0xEDB88320u : 0u);
    table[i] = r;
  }
  return table;
}
}  // namespace detail

inline constexpr std::array<std::uint32_t, 256> kCrc32Table = detail::crc32Table();

/// The next register of the reflected CRC-32 for one byte (start 0xFFFFFFFF, complement at the end).
[[nodiscard]] constexpr std::uint32_t crc32Step(std::uint8_t byte, std::uint32_t crc) {
  return kCrc32Table[(crc ^ byte) & 0xFFu] ^ (crc >> 8);
}

/// Registers before the first element.
inline constexpr std::uint32_t kCrc32Start = 0xFFFFFFFFu;

/// Feeds byte k (in memory order) of each element to register k. Pieces of one container can be fed one
/// after the other with the same registers. Reads the elements once, whatever their size.
/// Method: the message is reduced by exclusive ors at the exponents of a sparse multiple of the
/// polynomial (Russell, "Chorba", 2024), which works on whole elements, all registers at once.
void fingerprint(std::span<const double> x, std::span<std::uint32_t, 8> registers);
void fingerprint(std::span<const std::int32_t> x, std::span<std::uint32_t, 4> registers);

/// The complemented registers in order, each as eight upper-case hexadecimal digits.
[[nodiscard]] std::string fingerprintText(std::span<const std::uint32_t> registers);

/// Fingerprint of one contiguous array: 64 digits for doubles, 32 for integers.
[[nodiscard]] std::string fingerprintText(std::span<const double> x);
[[nodiscard]] std::string fingerprintText(std::span<const std::int32_t> x);

}  // namespace zel::kernels
