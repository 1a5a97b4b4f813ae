/// @file
/// Standard normal distribution.
#pragma once

#include "zel/base/api.h"

namespace zel {

/// Density of the standard normal distribution.
[[nodiscard]] ZEL_API double nDistriDensity(double x);

/// Distribution function of the standard normal distribution by the incomplete gamma function. The
/// relative error is up to about 1e-8, in the lower tail too; take an upper tail as
/// nDistriIntegral(-x).
[[nodiscard]] ZEL_API double nDistriIntegral(double x);

/// The x with nDistriIntegral(x) = p, to a relative error of p of 1e-8, down to the smallest p. For
/// p close to 1 take minus the quantile of 1 - p, whose error is relative to that smaller
/// probability.
/// @return 0 for p outside the open interval (0, 1)
/// Method: bisection about a rational approximation (Abramowitz and Stegun 26.2.23).
[[nodiscard]] ZEL_API double nDistriQuantile(double p);

/// Half the width of the confidence interval of a mean with confidence 1 - alpha, when the standard
/// deviation sigma is known: z(1 - alpha/2) sigma / sqrt(n).
/// @return 0 for alpha outside (0, 2); not finite for n < 1
[[nodiscard]] ZEL_API double ConfidenceInterval(double alpha, double sigma, int n);

}  // namespace zel
