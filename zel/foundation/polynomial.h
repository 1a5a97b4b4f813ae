/// @file
/// Polynomials.
#pragma once

#include <span>

#include "zel/base/api.h"

namespace zel {

/// Polynomial with coefficients in ascending order: the sum of Coeffs[i] x^i for i = 0..Order.
/// Powers by repeated multiplication, kept like the sum in extended precision and rounded once. A
/// zero coefficient takes no part where its power has overflowed.
/// @throws EZELMath1Error  if Order is negative or beyond the last coefficient
[[nodiscard]] ZEL_API double Polynomial(std::span<const double> Coeffs, int Order, double x);

/// Polynomial in x - Center: the sum of Coeffs[i] (x - Center)^i; the difference is rounded to
/// double.
/// @throws EZELMath1Error  like Polynomial, with the same message
[[nodiscard]] ZEL_API double CenteredPolynomial(std::span<const double> Coeffs, int Order,
                                                double Center, double x);

}  // namespace zel
