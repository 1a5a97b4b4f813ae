/// @file
/// Chi-square distribution.
#pragma once

#include "zel/base/api.h"

namespace zel {

/// Distribution function P(X <= chi2) with df degrees of freedom, right to an ulp in the lower
/// tail too, for every df.
/// @return 0 for df below 1 and chi2 <= 0, so that a significance made from it is 1; not-a-number
///   for a chi2 that is none
/// Method: power series, continued fraction, and Temme's uniform expansion for large df, in
/// extended precision (Gil, Segura and Temme, SIAM J. Sci. Comput. 34 (2012) A2965).
[[nodiscard]] ZEL_API double chi2DistriIntegral(double chi2, int df);

/// Upper tail P(X > chi2) = 1 - chi2DistriIntegral(chi2, df), without the loss of digits.
/// @return 1 for df below 1 and chi2 <= 0
[[nodiscard]] ZEL_API double chi2DistriComplement(double chi2, int df);

/// Density with df degrees of freedom.
/// @return infinity for df = 1 at x = 0; 0 for df below 1 and x < 0
[[nodiscard]] ZEL_API double Chi2DistriDensity(double x, int df);

/// The x with chi2DistriIntegral(x, df) = p, right to an ulp or two.
/// @return 0 for df below 1 and for p outside the open interval (0, 1)
/// Method: Halley iterations on the logarithm of the smaller tail.
[[nodiscard]] ZEL_API double chi2DistriQuantile(double p, int df);

}  // namespace zel
