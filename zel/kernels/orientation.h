/// @file
/// Senses of rotation in the plane, without rounding errors.
#pragma once

#include "zel/base/types.h"

namespace zel::kernels {

/// Sign of (b - a) x (d - c): 1 if the direction from c to d lies counter-clockwise from that from
/// a to b, -1 if clockwise, 0 if the lines are exactly parallel or a length is 0. 0 if a coordinate
/// is not finite. Method: floating-point filter, exact where it does not decide (Shewchuk, Discrete
/// Comput. Geom. 18 (1997) 305).
[[nodiscard]] int signOfTurn(TPointDouble a, TPointDouble b, TPointDouble c, TPointDouble d);

/// Sign of (b - a) x (c - a): 1 if a, b, c turn counter-clockwise, -1 clockwise, 0 if the points
/// lie exactly on a line.
[[nodiscard]] int orientation(TPointDouble a, TPointDouble b, TPointDouble c);

}  // namespace zel::kernels
