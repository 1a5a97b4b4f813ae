/// @file
/// Logarithms, trigonometric and hyperbolic functions beside those of the standard library.
#pragma once

#include <cmath>

#include "zel/base/api.h"

namespace zel {

/// Decimal logarithm.
/// @throws EMathError  for x <= 0
[[nodiscard]] ZEL_API double lg(double x);
/// Binary logarithm.
/// @throws EMathError  for x <= 0
[[nodiscard]] ZEL_API double ld(double x);

/// Hyperbolic sine and cosine, the functions of the standard library themselves: after `using
/// namespace zel` a call of sinh means the same function, with or without the prefix.
using std::cosh;
using std::sinh;
/// Hyperbolic tangent, without loss of digits near 0; 1 or -1 for large |x|.
[[nodiscard]] ZEL_API double tgh(double x);

/// Tangent; x in radians.
/// @throws EMathError  if cos x is 0, which no double reaches: tg(pi / 2) is about 1.6e16
[[nodiscard]] ZEL_API double tg(double x);
/// Cotangent; x in radians. Infinite for |x| below 5.6e-309.
/// @throws EMathError  if sin x is 0, which only x = 0 reaches
[[nodiscard]] ZEL_API double cot(double x);

}  // namespace zel
