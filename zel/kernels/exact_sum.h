/// @file
/// Running sums without rounding.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "zel/base/types.h"
#include "zel/kernels/double_double.h"

namespace zel::kernels {

/// Sum of extended numbers that is kept exactly: whatever was added and then subtracted again is as
/// if it had never been there, and the order does not matter.
///
/// Numbers from 2^4160 on in magnitude count as infinite; bits below 2^-4480 are dropped. Infinite
/// and not-a-number terms are counted, so they too can be taken back. Up to 2^62 terms. A term
/// costs some twenty instructions. Method: fixed-point superaccumulator with delayed carries
/// (Kulisch 1986; Neal 2015, arXiv:1505.05571).
class ExactSum {
 public:
  void add(Extended x) { accumulate(x, false); }
  void subtract(Extended x) { accumulate(x, true); }
  /// Changes the sign of the sum.
  void negate();
  void clear();

  /// The sum as hi + lo, within 2^-126 of itself; lo is 0 if it is not finite. hi is infinite if
  /// infinite terms of one sign are there, not-a-number for both signs or a not-a-number term.
  [[nodiscard]] Twofold<Extended> value() const;

 private:
  // Digits of 32 bits in 64-bit limbs: the carries of 2^30 terms fit into the upper half.
  static constexpr int kLowestBit = -4480;
  static constexpr std::size_t kDigits = (4480 + 4160) / 32;
  static constexpr std::size_t kLimbs = kDigits + 2;

  void accumulate(Extended x, bool isNegative);
  void accumulateBits(std::uint64_t significand, int lowestBit, bool isNegative);
  void countSpecial(Extended x, bool isNegative);
  void propagate();

  std::array<std::int64_t, kLimbs> FLimbs{};
  std::size_t FFirst = kLimbs;  // limbs in use
  std::size_t FLast = 0;
  std::uint32_t FSincePropagation = 0;
  std::int64_t FNaNs = 0;
  std::int64_t FInfinities = 0;
  std::int64_t FNegativeInfinities = 0;
};

}  // namespace zel::kernels
