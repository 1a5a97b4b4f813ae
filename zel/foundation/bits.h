/// @file
/// Bits and bytes of integers.
#pragma once

#include <cstdint>

#include "zel/base/api.h"

namespace zel {

/// True if at most one bit of n is set: for powers of two, and for 0.
[[nodiscard]] ZEL_API bool CheckPowerOfTwo(std::uint32_t n);
/// The bits of b in reverse order: bit 0 becomes bit 7.
[[nodiscard]] ZEL_API std::uint8_t BitReversal(std::uint8_t b);
/// 2^ix for 0 <= ix <= 7, otherwise 0.
[[nodiscard]] ZEL_API std::uint8_t DecodeBit(int ix);
/// The 32-bit pattern with only bit ix set for 0 <= ix <= 31, otherwise 0. DecodeLong(31) is the
/// smallest int.
[[nodiscard]] ZEL_API int DecodeLong(int ix);
/// Index of the lowest set bit of n; 31 for 0.
[[nodiscard]] ZEL_API int EncodeLong(int n);
/// Number of set bits of b (population count).
[[nodiscard]] ZEL_API int CountBits(std::uint8_t b);
/// Reflected binary code of w: the codes of neighbouring numbers differ in one bit.
[[nodiscard]] ZEL_API std::uint16_t GrayCode(std::uint16_t w);

/// x with its bytes in reverse order, to read and write data of machines with the other byte
/// order. A real with reversed bytes is a bit pattern only, possibly of not-a-number: keep it out
/// of arithmetic.
[[nodiscard]] ZEL_API double ConvertEndian(double x);
[[nodiscard]] ZEL_API float ConvertEndian(float x);
[[nodiscard]] ZEL_API std::uint16_t ConvertEndian(std::uint16_t x);
[[nodiscard]] ZEL_API int ConvertEndian(int x);
/// Other types are refused: promotion to one of the four would reverse the wrong number of bytes.
template <class T>
T ConvertEndian(T x) = delete;

}  // namespace zel
