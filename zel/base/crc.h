/// @file
/// CRC-32, one byte at a time.
#pragma once

#include <cstdint>

#include "zel/base/api.h"

namespace zel {

/// The register after one more byte: reflected CRC-32, polynomial 0xEDB88320. Start with 0xFFFFFFFF
/// and complement the last register.
[[nodiscard]] ZEL_API std::uint32_t CalcNextCRC32(std::uint8_t b, std::uint32_t crc);

}  // namespace zel
