/// @file
/// Least-squares fits of points of the plane that have closed forms.
///
/// The normal equations are formed about the means, with sums in double-double (extended precision
/// where squares and higher powers leave the double range), and solved in it, so that neither an
/// offset of the data nor large residuals cost digits. All functions use the length of the shorter
/// span. Not-a-number or infinite values make the results not-a-number.
#pragma once

#include <optional>
#include <span>

namespace zel::kernels {

/// y = k0 + k1 x + k2 x^2
struct ParabolaFit {
  double k0 = 0;
  double k1 = 0;
  double k2 = 0;
  double determination = 0;
};

/// With only two different x it is the line, with one the constant. n >= 1.
[[nodiscard]] ParabolaFit fitParabola(std::span<const double> x, std::span<const double> y);

struct CircleFit {
  double x = 0;
  double y = 0;
  double radius = 0;
};

/// Minimises the sum of squares of (x - cx)^2 + (y - cy)^2 - r^2; exact for points on a circle.
/// Nothing if the points lie on a line, as far as double-double can tell, or there are none.
/// Method: Kasa, IEEE Trans. Instrum. Meas. 25 (1976) 8.
[[nodiscard]] std::optional<CircleFit> fitCircle(std::span<const double> x,
                                                 std::span<const double> y);

}  // namespace zel::kernels
