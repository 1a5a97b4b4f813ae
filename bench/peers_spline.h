/// @file
/// Splines of other libraries.
#pragma once

#include <span>

namespace zel::bench {

/// Natural cubic spline: built, then evaluated at every place.
void gslSpline(std::span<const double> x, std::span<const double> y, std::span<const double> places,
               std::span<double> values);

}  // namespace zel::bench
