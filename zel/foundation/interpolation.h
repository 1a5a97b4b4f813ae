/// @file
/// Linear interpolation in tables and bilinear interpolation in a rectangle.
#pragma once

#include <span>

#include "zel/base/api.h"
#include "zel/base/array.h"

namespace zel {

/// Piecewise linear interpolation between pivots.
/// @param Table  column 0 the x values, all upward or all downward, column 1 the y values. The
///   direction is taken from the first and the last x.
/// @param Extrapolate  outside the table: true continues the straight line through the two pivots
///   at that end (their y where they share one x), false gives 0. An x equal to the first or the
///   last pivot already counts as outside, so without Extrapolate it gives 0.
/// @return not a number if x is not a number; exactly y at every pivot inside
/// @throws EZELMath1Error  for fewer than two pivots, or other than two columns
/// Cost: linear in the number of pivots before x.
[[nodiscard]] ZEL_API double InterpolXYTable(double x, const TDouble2DArray& Table,
                                             bool Extrapolate);

/// Linear interpolation between samples at equidistant positions.
/// @param FirstX, LastX  positions of the first and the last sample, in either order. Outside them
///   the first or the last segment is continued.
/// @param Table  at least two samples
/// @throws EZELMath1Error  for fewer than two samples, or FirstX = LastX
[[nodiscard]] ZEL_API double InterpolTable(double x, double FirstX, double LastX,
                                           std::span<const double> Table);
[[nodiscard]] ZEL_API double InterpolTable(double x, double FirstX, double LastX,
                                           std::span<const int> Table);

/// Bilinear interpolation from the corners of a rectangle: fx leads from z1 to z3 and from z2 to
/// z4, fy from the first pair to the second. Fractions outside 0..1 extrapolate.
[[nodiscard]] ZEL_API double InterpolZofXYRect(double z1, double z2, double z3, double z4,
                                               double fx, double fy);

}  // namespace zel
