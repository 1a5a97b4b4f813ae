/// @file
/// The side of a line on which a point lies, without rounding errors.
#pragma once

#include "zel/base/types.h"

namespace zel::kernels {

/// Sign of (b - a) x (c - a): 1 if a, b, c turn counter-clockwise, -1 clockwise, 0 if the points
/// lie exactly on a line. 0 if a coordinate is not finite. Method: floating-point filter, exact
/// where it does not decide (Shewchuk, Discrete Comput. Geom. 18 (1997) 305).
[[nodiscard]] int orientation(TPointDouble a, TPointDouble b, TPointDouble c);

}  // namespace zel::kernels
