#include <algorithm>
#include <cmath>

#include "zel/foundation/Zel_complex.h"

namespace zel {

Extended CpxNearZero = 1e-15L;

namespace {

/// The power of two that brings the larger part near 1; 0 where there is none.
int scalingExponent(const TComplex& a) {
  const Extended size = std::max(std::abs(a.re), std::abs(a.im));
  return size > 0 && std::isfinite(size) ? -std::ilogb(size) : 0;
}

TComplex scaled(const TComplex& a, int exponent) {
  return {std::ldexp(a.re, exponent), std::ldexp(a.im, exponent)};
}

}  // namespace

TComplex CpxDiv(const TComplex& a, const TComplex& b) {
  const auto fail = [] { throw EZELComplexError("CpxDiv: division by zero"); };
  if (b == COMPLEX_0) fail();
  const int ofA = scalingExponent(a);
  const int ofB = scalingExponent(b);
  const TComplex u = scaled(a, ofA);
  const TComplex v = scaled(b, ofB);
  const Extended d = CpxAbsSqr(v);
  const TComplex quotient =
      scaled({(u.re * v.re + u.im * v.im) / d, (u.im * v.re - u.re * v.im) / d}, ofB - ofA);
  const bool isFinite = std::isfinite(quotient.re) && std::isfinite(quotient.im);
  if (!isFinite && !std::isnan(a.re) && !std::isnan(a.im) && !std::isnan(b.re) &&
      !std::isnan(b.im)) {
    fail();
  }
  return quotient;
}

Extended CpxAbs(const TComplex& a) {
  if (std::isinf(a.re) || std::isinf(a.im)) return HUGE_VALL;
  const int exponent = scalingExponent(a);
  return std::ldexp(std::sqrt(CpxAbsSqr(scaled(a, exponent))), -exponent);
}

bool CpxIsNearEqual(const TComplex& a, const TComplex& b) { return CpxIsZero(CpxSub(a, b)); }

bool CpxIsZero(const TComplex& a) {
  return std::abs(a.re) < CpxNearZero && std::abs(a.im) < CpxNearZero;
}

TComplexPolar ConvertRectToPolar(const TComplex& a) {
  // Adding 0 takes the sign off a zero, which would make pi negative and 0 of it.
  return {CpxAbs(a), std::atan2(a.im + 0.0L, a.re + 0.0L)};
}

TComplex ConvertPolarToRect(const TComplexPolar& p) {
  return {p.r * std::cos(p.phi), p.r * std::sin(p.phi)};
}

}  // namespace zel
