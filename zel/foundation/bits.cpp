#include "zel/foundation/bits.h"

#include <algorithm>
#include <array>
#include <bit>

namespace zel {
namespace {

constexpr auto kReversed = [] {
  std::array<std::uint8_t, 256> table{};
  for (unsigned b = 0; b < 256; ++b) {
    for (unsigned i = 0; i < 8; ++i) {
      if (b >> i & 1U) table[b] = static_cast<std::uint8_t>(table[b] | 0x80U >> i);
    }
  }
  return table;
}();

template <class T>
T reverseBytes(T x) {
  auto bytes = std::bit_cast<std::array<unsigned char, sizeof(T)>>(x);
  std::reverse(bytes.begin(), bytes.end());
  return std::bit_cast<T>(bytes);
}

}  // namespace

bool CheckPowerOfTwo(std::uint32_t n) { return (n & (n - 1)) == 0; }

std::uint8_t BitReversal(std::uint8_t b) { return kReversed[b]; }

std::uint8_t DecodeBit(int ix) {
  return ix >= 0 && ix <= 7 ? static_cast<std::uint8_t>(1U << ix) : std::uint8_t{0};
}

int DecodeLong(int ix) { return ix >= 0 && ix <= 31 ? static_cast<int>(1U << ix) : 0; }

int EncodeLong(int n) { return std::min(std::countr_zero(static_cast<std::uint32_t>(n)), 31); }

int CountBits(std::uint8_t b) { return std::popcount(b); }

std::uint16_t GrayCode(std::uint16_t w) { return static_cast<std::uint16_t>(w ^ w >> 1); }

double ConvertEndian(double x) { return reverseBytes(x); }
float ConvertEndian(float x) { return reverseBytes(x); }
std::uint16_t ConvertEndian(std::uint16_t x) { return reverseBytes(x); }
int ConvertEndian(int x) { return reverseBytes(x); }

}  // namespace zel
