/// @file
/// Gamma, beta and error functions, binomial coefficients, Fisher's z transform.
///
/// The gamma and beta functions here are classic series that stop at a relative change of 1e-8. The
/// distributions of chi-square, F, t and the binomial distribution do not use them: they have full
/// double precision.
#pragma once

#include "zel/base/api.h"
#include "zel/base/errors.h"

namespace zel {

/// ln Gamma(x). The error of Gamma is below 2e-10 of itself.
/// @return 0 for x <= 0
/// Method: Lanczos series with six terms (Press et al., Numerical Recipes (1986) ch. 6.1).
[[nodiscard]] ZEL_API double LnGamma(double x);

/// Regularised lower incomplete gamma function P(a, x), to about 1e-8, for a up to some thousands
/// near x = a (the fraction ends after 99 steps). Mind the order of the arguments.
/// @return 0 for x <= 0 or a <= 0
/// Method: power series for x < a + 1, else a continued fraction (Press et al., ch. 6.2).
[[nodiscard]] ZEL_API double IncompleteGamma(double x, double a);

/// ln B(a, b) by LnGamma.
/// @return 0 for a < 0 or b < 0
[[nodiscard]] ZEL_API double LnBeta(double a, double b);

/// Regularised incomplete beta function I_x(a, b), a and b above 0, to about 1e-8, for a and b up
/// to some thousands (the fraction ends after 100 steps).
/// @return 0 for x < 0, 1 for x > 1
/// Method: continued fraction (Press et al., ch. 6.3).
[[nodiscard]] ZEL_API double IncompleteBeta(double x, double a, double b);

/// Binomial coefficient, exact; the largest int where it does not fit, from C(34, 17) on.
/// @return 0 for n < 0, k < 0 or k > n
[[nodiscard]] ZEL_API int BinomCoeff(int n, int k);

/// Logarithm of the binomial coefficient by LnGamma; the absolute error is up to about 6e-10, more
/// for n above 1e5, where the three logarithms cancel.
/// @return -1 for n < 0, k < 0 or k > n
[[nodiscard]] ZEL_API double LnBinomCoeff(int n, int k);

/// Error function by IncompleteGamma(x^2, 1/2), to about 1e-8; exactly odd.
[[nodiscard]] ZEL_API double Erf(double x);

/// Fisher's z of a correlation coefficient, artanh(r).
/// @throws EZELStatisError  "FisherTransform: argument out of range" unless -1 < r < 1
[[nodiscard]] ZEL_API double FisherTransform(double r);

/// Correlation coefficient of Fisher's z, tanh(z).
[[nodiscard]] ZEL_API double FisherTransformInv(double z);

}  // namespace zel
