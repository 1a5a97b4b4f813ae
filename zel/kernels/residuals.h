/// @file
/// Residuals of linear models, accurate enough to refine a solution.
#pragma once

#include <span>

#include "zel/kernels/dense.h"

namespace zel::kernels {

/// f = b - r - A x, each element accumulated in double-double and rounded once.
/// @param r  of the length of b, as f; f may be b or r
void accurateResidual(ConstMatrix a, std::span<const double> x, std::span<const double> b,
                      std::span<const double> r, std::span<double> f);

}  // namespace zel::kernels
