/// @file
/// Smoothing spline through arrays of values.
#pragma once

#include <span>

#include "zel/base/api.h"

namespace zel {

/// Natural cubic smoothing spline of the values n1..n2 of x, y and w: the twice differentiable
/// function g that minimises
///
///     (1 - s) sum_i w[i] (y[i] - g(x[i]))^2 + s h^3 integral of g''(t)^2 dt,
///
/// s being Smooth limited to 0..1 and h = (x[n2] - x[n1]) / (n2 - n1) the mean spacing, which makes
/// the result independent of the units of x. s = 0 interpolates, s = 1 gives the weighted
/// regression line; the weight that the roughness gets beside the residuals is s / (1 - s) h^3. For
/// x[i] <= t <= x[i+1]
///
///     g(t) = a[i] + b[i] u + c[i] u^2 + d[i] u^3, u = t - x[i];
///
/// a[i] is the smoothed value at x[i], and the element n2 holds the tangent at the end, along which
/// g goes on (c and d are 0); before x[n1] it is a[n1] + b[n1] u. Elements outside n1..n2 are not
/// touched. The results may be the arrays of the data.
/// @param n1, n2   0-based; at least two values
/// @param Smooth   a number
/// @param x        strictly increasing, finite
/// @param y        finite
/// @param w        weights above 0, finite; a multiple of all of them shifts the balance against
///   the roughness
/// @return false, with nothing written, if an argument is not so, an array does not reach n2, or a
///   coefficient exceeds the doubles
/// O(n) steps in double-double arithmetic, O(n) working memory.
/// Method: Reinsch, Numer. Math. 10 (1967) 177; Green and Silverman, Nonparametric Regression and
/// Generalized Linear Models (1994) ch. 2.
ZEL_API bool PenalizedCubicSpline(int n1, int n2, double Smooth, std::span<const double> x,
                                  std::span<const double> y, std::span<const double> w,
                                  std::span<double> a, std::span<double> b, std::span<double> c,
                                  std::span<double> d);

}  // namespace zel
