/// @file
/// Complex numbers in extended precision. The routines are reentrant; CpxNearZero is one variable
/// of the whole process.
#pragma once

#include "zel/base/api.h"
#include "zel/base/errors.h"
#include "zel/base/types.h"

namespace zel {

/// A complex number in rectangular form.
struct TComplex {
  Extended re = 0;
  Extended im = 0;
  bool operator==(const TComplex&) const = default;
};

/// A complex number in polar form: magnitude and angle in radians.
struct TComplexPolar {
  Extended r = 0;
  Extended phi = 0;
  bool operator==(const TComplexPolar&) const = default;
};

/// Tolerance of CpxIsNearEqual and CpxIsZero; 1E-15 at first. Not synchronised.
extern ZEL_API Extended CpxNearZero;

inline constexpr TComplex COMPLEX_0{0, 0};
inline constexpr TComplex COMPLEX_1{1, 0};

/// re + i im
[[nodiscard]] constexpr TComplex Cpx(Extended re, Extended im) { return {re, im}; }
[[nodiscard]] constexpr TComplex CpxAdd(const TComplex& a, const TComplex& b) {
  return {a.re + b.re, a.im + b.im};
}
[[nodiscard]] constexpr TComplex CpxSub(const TComplex& a, const TComplex& b) {
  return {a.re - b.re, a.im - b.im};
}
[[nodiscard]] constexpr TComplex CpxMult(const TComplex& a, const TComplex& b) {
  return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}
/// a / b. The divisor is scaled by a power of two first, so only a quotient out of range fails.
/// @throws EZELComplexError  "CpxDiv: division by zero" for b = 0, and if a part of the quotient is
///   not finite without an argument being not-a-number
[[nodiscard]] ZEL_API TComplex CpxDiv(const TComplex& a, const TComplex& b);
/// Conjugate.
[[nodiscard]] constexpr TComplex CpxConj(const TComplex& a) { return {a.re, -a.im}; }
[[nodiscard]] constexpr TComplex CpxNeg(const TComplex& a) { return {-a.re, -a.im}; }
/// Magnitude; does not overflow on the way.
[[nodiscard]] ZEL_API Extended CpxAbs(const TComplex& a);
/// Square of the magnitude.
[[nodiscard]] constexpr Extended CpxAbsSqr(const TComplex& a) { return a.re * a.re + a.im * a.im; }
/// Both parts are exactly equal.
[[nodiscard]] constexpr bool CpxIsEqual(const TComplex& a, const TComplex& b) { return a == b; }
/// Both parts differ by less than CpxNearZero.
[[nodiscard]] ZEL_API bool CpxIsNearEqual(const TComplex& a, const TComplex& b);
/// Both parts are below CpxNearZero in magnitude.
[[nodiscard]] ZEL_API bool CpxIsZero(const TComplex& a);
/// Polar form with phi in (-pi, pi]; phi is 0 for 0.
[[nodiscard]] ZEL_API TComplexPolar ConvertRectToPolar(const TComplex& a);
/// Rectangular form (r cos phi, r sin phi).
[[nodiscard]] ZEL_API TComplex ConvertPolarToRect(const TComplexPolar& p);

}  // namespace zel
