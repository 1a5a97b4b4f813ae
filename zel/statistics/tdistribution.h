/// @file
/// Student's t distribution.
#pragma once

#include "zel/base/api.h"

namespace zel {

/// Distribution function P(T <= t) of Student's t with df degrees of freedom, right to an ulp for
/// df up to the largest integer. The lower tail keeps its relative precision down to the smallest
/// double; take the upper tail as tDistriIntegral(-t, df).
/// @return 0.5 for df below 1, so that a two-sided significance made from it is 1; not-a-number
///   for a t that is none
/// Method: power series and continued fraction of the incomplete beta function in extended
/// precision (DiDonato and Morris, ACM TOMS 18 (1992) 360).
[[nodiscard]] ZEL_API double tDistriIntegral(double t, int df);

/// Density of Student's t, right to an ulp.
/// @return 0 for df below 1
[[nodiscard]] ZEL_API double tDistriDensity(double t, int df);

/// The t with tDistriIntegral(t, df) = p, right to an ulp; infinite where it exceeds the doubles.
/// @return 0 for df below 1 and for p outside the open interval (0, 1)
/// Method: Newton iterations on the integral.
[[nodiscard]] ZEL_API double tDistriQuantile(double p, int df);

}  // namespace zel
