/// @file
/// Fisher's F distribution.
#pragma once

#include "zel/base/api.h"

namespace zel {

/// Distribution function P(X <= x) with df1 degrees of freedom in the numerator and df2 in the
/// denominator, right to an ulp or two in the lower tail too.
/// @return 0 for degrees of freedom below 1 and x <= 0, so that a significance made from it is 1;
///   not-a-number for an x that is none
/// Method: incomplete beta function in extended precision (DiDonato and Morris, ACM TOMS 18 (1992)
/// 360).
[[nodiscard]] ZEL_API double FDistriIntegral(double x, int df1, int df2);

/// Upper tail P(X > x) = 1 - FDistriIntegral(x, df1, df2), without the loss of digits.
/// @return 1 for degrees of freedom below 1 and x <= 0
[[nodiscard]] ZEL_API double FDistriComplement(double x, int df1, int df2);

/// Density with df1 and df2 degrees of freedom.
/// @return infinity for df1 = 1 at x = 0; 0 for degrees of freedom below 1 and x < 0
[[nodiscard]] ZEL_API double FDistriDensity(double x, int df1, int df2);

/// The x with FDistriIntegral(x, df1, df2) = p, right to an ulp or two; infinite where it exceeds
/// the doubles.
/// @return 0 for degrees of freedom below 1 and for p outside the open interval (0, 1)
/// Method: Halley iterations on the logarithm of the smaller tail.
[[nodiscard]] ZEL_API double FDistriQuantile(double p, int df1, int df2);

}  // namespace zel
