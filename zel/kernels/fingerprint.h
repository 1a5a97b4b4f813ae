/// @file
/// Fingerprint of arrays by CRC-32: byte k of every element is fed to register k.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>

#include "zel/base/crc.h"

namespace zel::kernels {

/// Registers before the first element.
inline constexpr std::uint32_t kCrc32Start = 0xFFFFFFFFu;

/// Feeds byte k (in memory order) of each element to register k. Pieces of one container can be fed
/// one after the other with the same registers. Reads the elements once, whatever their size.
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
