/// @file
/// Student's t distribution, to full double precision, in both tails.
///
/// Everything is computed in extended precision and rounded once. Where that is the 80-bit format
/// or wider, the results are right to an ulp.
#pragma once

namespace zel::kernels {

/// Density; 0 for infinite t. df >= 1.
[[nodiscard]] double studentDensity(double t, double df);

/// P(T <= t). The lower tail keeps its relative precision down to the smallest double; for an upper
/// tail take -t. df >= 1.
/// Method: power series of the incomplete beta function about the centre, its continued fraction
/// outside (incomplete_beta.h).
[[nodiscard]] double studentIntegral(double t, double df);

/// The t with studentIntegral(t) = p, 0 < p < 1. df >= 1.
/// Method: iterations of fourth order on the integral from 0 near the centre, Newton's on the
/// logarithm of the tail outside with a last step of fourth order; two or three evaluations.
[[nodiscard]] double studentQuantile(double p, double df);

}  // namespace zel::kernels
