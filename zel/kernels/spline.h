/// @file
/// Cubic splines through and near given points.
#pragma once

#include <optional>
#include <span>

namespace zel::kernels {

/// First derivatives prescribed at the ends; an end without one is natural (second derivative 0).
struct SplineEnds {
  std::optional<double> first;
  std::optional<double> last;
};

/// Second derivatives of the interpolating cubic spline at its knots. O(n).
/// @param x  strictly increasing, at least 2 values; y and the result have its length
void splineSecondDerivatives(std::span<const double> x, std::span<const double> y,
                             const SplineEnds& ends, std::span<double> second);

/// The spline at a place; beyond the ends the tangent there. O(log n).
/// @return not-a-number if `at` is not-a-number
[[nodiscard]] double splineValue(std::span<const double> x, std::span<const double> y,
                                 std::span<const double> second, double at);

/// Piece i is a[i] + b[i] u + c[i] u^2 + d[i] u^3 with u = t - x[i], from x[i] on; the last one is
/// the tangent at the last knot.
struct CubicPieces {
  std::span<double> a, b, c, d;
};

/// The natural cubic spline g that minimises
///   (1 - s) sum of w (y - g(x))^2 + s h^3 integral of g''^2, h = (x[n-1] - x[0]) / (n - 1),
/// s being `smoothing` limited to 0..1: for 0 it interpolates, for 1 it is the regression line.
/// O(n) in double-double, so that even the longest data and the strongest smoothing cost no digits.
/// @param x  strictly increasing, at least 2 values; y, w and the parts of the result have its
///   length
/// @param w  positive
/// @return false, with nothing written, if a result or a step leaves the double range (values that
///   are not finite do)
/// @throws std::bad_alloc  before anything is written
/// Method: Reinsch, Numer. Math. 10 (1967) 177; Green and Silverman, Nonparametric Regression and
/// Generalized Linear Models (1994) ch. 2.
[[nodiscard]] bool penalizedSpline(std::span<const double> x, std::span<const double> y,
                                   std::span<const double> w, double smoothing, CubicPieces pieces);

/// The pieces at a place; before the first knot its tangent. O(log n).
/// @return not-a-number if `at` is not-a-number
[[nodiscard]] double piecewiseCubic(std::span<const double> x, const CubicPieces& pieces,
                                    double at);

}  // namespace zel::kernels
