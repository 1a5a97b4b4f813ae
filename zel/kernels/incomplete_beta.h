/// @file
/// The regularised incomplete beta function, and the pieces of which it consists.
#pragma once

#include "zel/base/types.h"

namespace zel::kernels {

/// I_x(a, b) and 1 - I_x(a, b).
struct BetaTails {
  Extended lower;
  Extended upper;
};

[[nodiscard]] BetaTails incompleteBeta(Extended a, Extended b, Extended x, Extended y);

/// x^a y^b / B(a, b).
[[nodiscard]] Extended betaPower(Extended a, Extended b, Extended x, Extended y);

/// I_x(a, b) a / betaPower: 1 + (a+b)/(a+1) x + (a+b)(a+b+1)/((a+1)(a+2)) x^2 + ..., whose terms
/// are all positive.
[[nodiscard]] Extended betaSeries(Extended a, Extended b, Extended x);

/// I_x(a, b) / betaPower for lambda = a y - b x > 0.
[[nodiscard]] Extended betaFraction(Extended a, Extended b, Extended x, Extended y,
                                    Extended lambda);

}  // namespace zel::kernels
