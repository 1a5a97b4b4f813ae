/// @file
/// Error function, to about seven digits.
#pragma once

#include <cmath>

#include "zel/kernels/horner.h"

namespace zel::kernels {

/// erf(x) by a rational approximation of exponential form; the error of the complement is below
/// 1.2e-7 of itself, so the result may exceed 0 by 1e-7 at x = 0. Not-a-number stays.
/// Method: Press et al., Numerical Recipes (1992) ch. 6.2.
[[nodiscard]] inline double errorFunctionApproximation(double x) {
  constexpr double kCoefficients[] = {-1.26551223, 1.00002368, 0.37409196,  0.09678418,
                                      -0.18628806, 0.27886807, -1.13520398, 1.48851587,
                                      -0.82215223, 0.17087277};
  const double t = 1 / (1 + std::fabs(x) / 2);
  const double complement = t * std::exp(-x * x + horner(kCoefficients, t));
  return 1 - (x < 0 ? 2 - complement : complement);
}

}  // namespace zel::kernels
