/// @file
/// The 80-bit extended format from and to any floating type.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <concepts>
#include <cstdint>
#include <cstring>
#include <limits>

#include "zel/base/littleendian_impl.h"
#include "zel/base/types.h"

namespace zel::detail {

/// An 80-bit extended value: the 64-bit significand with its explicit leading bit, and the 15-bit
/// biased exponent below the sign bit.
struct ExtendedBits {
  std::uint64_t significand = 0;
  std::uint16_t signExponent = 0;
  bool operator==(const ExtendedBits&) const = default;
};

inline constexpr std::uint64_t kExtendedLeadingBit = std::uint64_t{1} << 63;
inline constexpr std::uint16_t kExtendedMaxExponent = 0x7FFF;
inline constexpr std::uint16_t kExtendedSign = 0x8000;
inline constexpr int kExtendedBias = 16383;

/// Not a number by its encoding: a leading bit must be there unless the exponent is 0. The
/// processor takes these for invalid operands, the C library for anything.
inline bool isInvalid(const ExtendedBits& bits) {
  return (bits.signExponent & kExtendedMaxExponent) != 0 &&
         (bits.significand & kExtendedLeadingBit) == 0;
}

/// Rounds to nearest, ties to even, where F has more digits. Every not-a-number becomes the quiet
/// one.
template <std::floating_point F>
ExtendedBits packExtended(F x) {
  ExtendedBits bits;
  if (std::isnan(x)) {
    bits = {kExtendedLeadingBit | (kExtendedLeadingBit >> 1), kExtendedMaxExponent};
  } else if (std::isinf(x)) {
    bits = {kExtendedLeadingBit, kExtendedMaxExponent};
  } else if (x != 0) {
    int exponent = 0;
    std::frexp(x, &exponent);
    exponent = std::max(exponent, 2 - kExtendedBias);  // below: a denormal number
    const F scaled = std::ldexp(std::abs(x), 64 - exponent);
    F whole = std::floor(scaled);
    const F rest = scaled - whole;
    if (rest > F(0.5) || (rest == F(0.5) && std::fmod(whole, F(2)) != 0)) ++whole;
    if (whole >= std::ldexp(F(1), 64)) {
      whole = std::ldexp(F(1), 63);
      ++exponent;
    }
    bits.significand = static_cast<std::uint64_t>(whole);
    const int biased = exponent - 1 + kExtendedBias;
    if (biased >= kExtendedMaxExponent) {
      bits = {kExtendedLeadingBit, kExtendedMaxExponent};
    } else if ((bits.significand & kExtendedLeadingBit) != 0) {
      bits.signExponent = static_cast<std::uint16_t>(biased);
    }
  }
  if (std::signbit(x)) bits.signExponent |= kExtendedSign;
  return bits;
}

/// Invalid encodings give not-a-number; a leading bit with exponent 0 counts, as on the processor.
/// What F cannot hold is rounded.
template <std::floating_point F>
F unpackExtended(const ExtendedBits& bits) {
  const int exponent = bits.signExponent & kExtendedMaxExponent;
  F x = std::numeric_limits<F>::quiet_NaN();
  if (!isInvalid(bits)) {
    if (exponent != kExtendedMaxExponent) {
      x = std::ldexp(static_cast<F>(bits.significand), std::max(exponent, 1) - kExtendedBias - 63);
    } else if (bits.significand == kExtendedLeadingBit) {
      x = std::numeric_limits<F>::infinity();
    }
  }
  return (bits.signExponent & kExtendedSign) != 0 ? -x : x;
}

// Packing would lose the payload of a not-a-number.
inline constexpr bool kIsX87 = std::numeric_limits<Extended>::digits == 64;

/// The bits of the platform's extended type.
inline ExtendedBits bitsOf(Extended x) {
  if constexpr (kIsX87) {
    std::array<char, 10> bytes{};
    std::memcpy(bytes.data(), &x, bytes.size());
    return {getLittle<8>(bytes.data()), static_cast<std::uint16_t>(getLittle<2>(bytes.data() + 8))};
  } else {
    return packExtended(x);
  }
}

/// The value with the given bits; a not-a-number for invalid ones.
inline Extended valueOf(ExtendedBits bits) {
  if constexpr (kIsX87) {
    if (isInvalid(bits)) return std::numeric_limits<Extended>::quiet_NaN();
    // A leading bit with exponent 0 means exponent 1, which is the encoding to work with.
    const bool lacksExponent = (bits.signExponent & kExtendedMaxExponent) == 0 &&
                               (bits.significand & kExtendedLeadingBit) != 0;
    if (lacksExponent) bits.signExponent |= 1U;
    std::array<char, 10> bytes{};
    putLittle<8>(bytes.data(), bits.significand);
    putLittle<2>(bytes.data() + 8, bits.signExponent);
    Extended x = 0;
    std::memcpy(&x, bytes.data(), bytes.size());
    return x;
  } else {
    return unpackExtended<Extended>(bits);
  }
}

}  // namespace zel::detail
