/// @file
/// Weibull distribution.
#pragma once

#include "zel/base/api.h"

namespace zel {

/// Density of the Weibull distribution with shape beta and scale eta.
/// @return 0 for x <= 0 or eta <= 0
[[nodiscard]] ZEL_API double WeibullDensity(double x, double beta, double eta);

}  // namespace zel
