/// @file
/// Numbers and intervals: limits, rounding with limits, sign and remainder.
#pragma once

#include <concepts>
#include <cstdint>
#include <type_traits>

#include "zel/base/api.h"
#include "zel/base/types.h"

namespace zel {

namespace detail {
template <class T>
concept Number = std::integral<T> || std::floating_point<T>;

/// The type in which numbers of mixed types are compared.
template <Number... T>
using CommonNumber =
    std::conditional_t<(std::integral<T> && ...), std::int64_t,
                       std::conditional_t<(std::same_as<T, Extended> || ...), Extended, double>>;
}  // namespace detail

/// x limited to the interval between Low and High, which may be given in either order. x that is
/// not a number is returned as it is.
[[nodiscard]] ZEL_API double ConfineValue(double x, double Low, double High);
[[nodiscard]] ZEL_API float ConfineValue(float x, float Low, float High);
[[nodiscard]] ZEL_API int ConfineValue(int x, int Low, int High);

/// The same for arguments of mixed or other types, ConfineValue(0.5, 0, 1) for example: 64-bit
/// integers if all are integers, otherwise double (Extended if one argument is).
template <detail::Number X, detail::Number L, detail::Number H>
[[nodiscard]] detail::CommonNumber<X, L, H> ConfineValue(X x, L Low, H High) {
  using C = detail::CommonNumber<X, L, H>;
  const auto value = static_cast<C>(x);
  auto low = static_cast<C>(Low);
  auto high = static_cast<C>(High);
  if (low > high) {
    const C kept = low;
    low = high;
    high = kept;
  }
  return value < low ? low : value > high ? high : value;
}

/// True if x lies in the closed interval between Low and High, which may be given in either order.
[[nodiscard]] ZEL_API bool WithinBounds(double x, double Low, double High);
/// The same with the interval widened by Tolerance at both ends; a negative Tolerance narrows it.
[[nodiscard]] ZEL_API bool WithinBounds(double x, double Low, double High, double Tolerance);

/// x rounded to the nearest integer, ties to even, then raised to Low, then lowered to High (so
/// High wins if Low > High). Values beyond 64 bits are limited before they are rounded;
/// not-a-number is 0.
[[nodiscard]] ZEL_API std::int64_t RoundLimit(Extended x, std::int64_t Low, std::int64_t High);

/// Smallest integer >= x (ceiling), limited to the range of int; 0 for not-a-number.
[[nodiscard]] ZEL_API int IntPos(double x);
/// Largest integer <= x (floor), limited to the range of int; 0 for not-a-number.
[[nodiscard]] ZEL_API int IntNeg(double x);

/// 1 for x >= 0, otherwise -1: zero of either sign gives 1, not-a-number -1.
[[nodiscard]] ZEL_API int Signum(double x);

/// Remainder of the truncating real division, frac(a / b) b: it has the sign of a and is smaller
/// than b in magnitude. Exact, also where the quotient itself would round: modr(1, 0.1) is a little
/// below 0.1, because the double 0.1 is a little above a tenth. 0 for b = 0; not a number if a is
/// not finite.
[[nodiscard]] ZEL_API double modr(double a, double b);

}  // namespace zel
