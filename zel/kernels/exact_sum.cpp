#include "zel/kernels/exact_sum.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>

namespace zel::kernels {

namespace {

constexpr std::uint32_t kMostPending = std::uint32_t{1} << 30;

/// The 80-bit format can be taken apart by its bits.
constexpr bool kIsX87 = std::numeric_limits<Extended>::digits == 64 &&
                        std::numeric_limits<Extended>::max_exponent == 16384 &&
                        std::endian::native == std::endian::little;

/// The digit of a limb and, in `carry`, what belongs to the next one.
std::uint32_t takeDigit(std::int64_t limb, std::int64_t& carry) {
  const std::int64_t total = limb + carry;
  carry = total >> 32;
  return static_cast<std::uint32_t>(total);
}

}  // namespace

void ExactSum::accumulateBits(std::uint64_t significand, int lowestBit, bool isNegative) {
  int place = lowestBit - kLowestBit;
  if (place < 0) {
    if (place <= -64) return;
    significand >>= -place;
    place = 0;
  }
  if (significand == 0) return;
  const auto limb = static_cast<std::size_t>(place) / 32;
  const int shift = place % 32;
  const std::uint64_t low = significand << shift;
  const std::uint64_t high = shift == 0 ? 0 : significand >> (64 - shift);
  const std::int64_t mask = isNegative ? -1 : 0;
  const auto contribute = [&](std::size_t at, std::uint64_t digit) {
    FLimbs[at] += (static_cast<std::int64_t>(digit) ^ mask) - mask;
  };
  contribute(limb, low & 0xFFFFFFFFu);
  contribute(limb + 1, low >> 32);
  contribute(limb + 2, high);
  FFirst = std::min(FFirst, limb);
  FLast = std::max(FLast, limb + 2);
  if (++FSincePropagation >= kMostPending) propagate();
}

void ExactSum::countSpecial(Extended x, bool isNegative) {
  std::int64_t& count = std::isnan(x) ? FNaNs : x > 0 ? FInfinities : FNegativeInfinities;
  count += isNegative ? -1 : 1;
}

void ExactSum::accumulate(Extended x, bool isNegative) {
  constexpr int kHighestBit = kLowestBit + 32 * static_cast<int>(kDigits);
  if constexpr (kIsX87) {
    std::uint64_t significand = 0;
    std::uint16_t signExponent = 0;
    std::memcpy(&significand, &x, sizeof significand);
    std::memcpy(&signExponent, reinterpret_cast<const char*>(&x) + sizeof significand,
                sizeof signExponent);
    const int exponent = signExponent & 0x7FFF;
    const int lowestBit = exponent - 16383 - 63;
    if (lowestBit + 64 > kHighestBit) return countSpecial(x, isNegative);
    accumulateBits(significand, lowestBit, isNegative != ((signExponent & 0x8000) != 0));
  } else {
    if (!(std::abs(x) <
          std::ldexp(Extended{1},
                     std::min(kHighestBit, std::numeric_limits<Extended>::max_exponent - 1))))
      return countSpecial(x, isNegative);
    int exponent = 0;
    Extended rest = std::frexp(std::abs(x), &exponent);
    const bool changesSign = isNegative != (x < 0);
    while (rest != 0) {
      rest = std::ldexp(rest, 64);
      exponent -= 64;
      const auto piece = static_cast<std::uint64_t>(rest);
      accumulateBits(piece, exponent, changesSign);
      rest -= static_cast<Extended>(piece);
    }
  }
}

void ExactSum::propagate() {
  FSincePropagation = 0;
  if (FFirst > FLast) return;
  // The last limb in use keeps its sign; the one after it exists and is in use from now on.
  const std::size_t top = std::min(FLast + 1, kLimbs - 1);
  std::int64_t carry = 0;
  for (std::size_t i = FFirst; i < top; ++i) FLimbs[i] = takeDigit(FLimbs[i], carry);
  FLimbs[top] += carry;
  FLast = top;
}

void ExactSum::clear() {
  for (std::size_t i = FFirst; i <= FLast && i < kLimbs; ++i) FLimbs[i] = 0;
  FFirst = kLimbs;
  FLast = 0;
  FSincePropagation = 0;
  FNaNs = FInfinities = FNegativeInfinities = 0;
}

void ExactSum::negate() {
  for (std::size_t i = FFirst; i <= FLast && i < kLimbs; ++i) FLimbs[i] = -FLimbs[i];
  std::swap(FInfinities, FNegativeInfinities);
}

Twofold<Extended> ExactSum::value() const {
  using Limits = std::numeric_limits<Extended>;
  if (FNaNs != 0 || (FInfinities != 0 && FNegativeInfinities != 0)) return {Limits::quiet_NaN(), 0};
  if (FInfinities != 0) return {Limits::infinity(), 0};
  if (FNegativeInfinities != 0) return {-Limits::infinity(), 0};
  if (FFirst > FLast) return {0, 0};

  std::array<std::uint32_t, kLimbs + 1> digits;
  const auto resolve = [&](std::int64_t sign) {
    std::int64_t carry = 0;
    for (std::size_t i = FFirst; i <= FLast; ++i) digits[i] = takeDigit(sign * FLimbs[i], carry);
    digits[FLast + 1] = static_cast<std::uint32_t>(carry);
    return carry >= 0;
  };
  const bool isNegative = !resolve(1);
  if (isNegative) resolve(-1);

  std::size_t top = FLast + 1;
  while (top > FFirst && digits[top] == 0) --top;
  // Three pieces of two digits hold at least 161 bits of the sum.
  Twofold<Extended> sum{0, 0};
  const auto digit = [&](std::size_t back) -> std::uint64_t {
    return back <= top && top - back >= FFirst ? digits[top - back] : 0;
  };
  for (std::size_t piece = 0; piece < 3; ++piece) {
    const std::uint64_t bits = digit(2 * piece) << 32 | digit(2 * piece + 1);
    const int place = 32 * (static_cast<int>(top) - static_cast<int>(2 * piece + 1)) + kLowestBit;
    const Twofold<Extended> next = twoSum(sum.hi, std::ldexp(static_cast<Extended>(bits), place));
    sum = fastTwoSum(next.hi, sum.lo + next.lo);
  }
  if (!isNegative) return sum;
  return negated(sum);
}

}  // namespace zel::kernels
