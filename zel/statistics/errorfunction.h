/// @file
/// Error function.
#pragma once

#include "zel/base/api.h"

namespace zel {

/// Error function erf(x) by a rational approximation of exponential form; the error of the
/// complement is below 1.2e-7 of itself, so the result may exceed 0 by 1e-7 at x = 0. Not-a-number
/// stays.
/// Method: Press et al., Numerical Recipes (1992) ch. 6.2.
[[nodiscard]] ZEL_API double ErfApprox(double x);

}  // namespace zel
