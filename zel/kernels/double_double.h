/// @file
/// Arithmetic with unevaluated sums of two numbers: about 106 bits from doubles, 128 from the
/// 80-bit format. Methods: Dekker, Numer. Math. 18 (1971) 224; Ogita, Rump and Oishi, SIAM J. Sci.
/// Comput. 26 (2005) 1955; Joldes, Muller and Popescu, ACM TOMS 44 (2017) 15.
///
/// Nothing here repairs a value beyond the range of the number type: infinities and overflows end
/// as not-a-number in a low part, and the callers test for it.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace zel::kernels {

#include "zel/kernels/double_double-inl.h"

using DoubleDouble = Twofold<double>;

template <class T>
[[nodiscard]] inline Twofold<T> negated(Twofold<T> a) {
  return {-a.hi, -a.lo};
}

template <class T>
[[nodiscard]] inline Twofold<T> operator+(Twofold<T> a, Twofold<T> b) {
  return add(a, b);
}
template <class T>
[[nodiscard]] inline Twofold<T> operator-(Twofold<T> a, Twofold<T> b) {
  return add(a, negated(b));
}
template <class T>
[[nodiscard]] inline Twofold<T> operator*(Twofold<T> a, Twofold<T> b) {
  return multiply(a, b);
}
template <class T>
[[nodiscard]] inline Twofold<T> operator*(Twofold<T> a, std::type_identity_t<T> b) {
  return multiply(a, b);
}
/// Quotient, within 15 * 2^-106 of the exact one.
template <class T>
[[nodiscard]] inline Twofold<T> operator/(Twofold<T> a, Twofold<T> b) {
  const T quotient = a.hi / b.hi;
  const Twofold<T> back = multiply(b, quotient);
  return fastTwoSum(quotient, ((a.hi - back.hi) + (a.lo - back.lo)) / b.hi);
}
template <class T>
[[nodiscard]] inline Twofold<T> operator/(Twofold<T> a, std::type_identity_t<T> b) {
  const T quotient = a.hi / b;
  const Twofold<T> back = twoProduct(quotient, b);
  return fastTwoSum(quotient, ((a.hi - back.hi) + (a.lo - back.lo)) / b);
}

/// Square root; 0 for 0, not-a-number below.
template <class T>
[[nodiscard]] inline Twofold<T> sqrt(Twofold<T> a) {
  const T root = std::sqrt(a.hi);
  if (!(root > 0)) return {root, 0};
  const Twofold<T> back = twoProduct(root, root);
  return fastTwoSum(root, ((a.hi - back.hi) + (a.lo - back.lo)) / (2 * root));
}

/// Both parts are finite: no step of the computation has left the range of T.
template <class T>
[[nodiscard]] inline bool isFinite(Twofold<T> a) {
  return std::isfinite(a.hi) && std::isfinite(a.lo);
}

/// A count as a pair; exact.
template <class T>
[[nodiscard]] inline Twofold<T> twofoldOf(std::size_t n) {
  const T high = static_cast<T>(n >> 32) * T(4294967296.0);
  return twoSum(high, static_cast<T>(n & 0xFFFFFFFFu));
}

}  // namespace zel::kernels
