#include "zel/base/crc.h"

#include <array>

namespace zel {
namespace {

constexpr std::array<std::uint32_t, 256> kTable = [] {
  std::array<std::uint32_t, 256> table{};
  for (std::uint32_t i = 0; i < 256; ++i) {
    std::uint32_t crc = i;
    for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ ((crc & 1U) != 0 ? 0xEDB88320U : 0U);
    table[i] = crc;
  }
  return table;
}();

}  // namespace

std::uint32_t CalcNextCRC32(std::uint8_t b, std::uint32_t crc) {
  return kTable[(crc ^ b) & 0xFFU] ^ (crc >> 8);
}

}  // namespace zel
