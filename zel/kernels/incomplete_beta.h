/// @file
/// The regularised incomplete beta function I_x(a, b), below the distributions F, binomial, beta
/// and t, and the pieces of which it consists.
///
/// Everything is computed in extended precision, for the caller to round once. Where that is the
/// 80-bit format, both tails rounded to double were within 1.33 units in the last place (1.01 for
/// tails above 1e-200) at 9400 points with a and b from 1e-9 and 1e-3 to 1e10, in both tails down
/// to 1e-300, compared with exact sums and mpmath. The error is that of the exponential: some 2^-64
/// times the logarithm of the tail. A call takes about 1 us, at most some 5 us, for parameters of
/// any size.
///
/// Methods, for the tail that x cuts off below the mean (above it a, x and b, y change places):
///   - a < 2, b x < 1 and x < 1/2: power series in x, with the power's distance from 1 computed
///   apart
///     so that the upper tail is not a difference;
///   - a and b >= 2000 and a y - b x up to a tenth of the smaller: asymptotic expansion about the
///     error function (BASYM), at most some ten terms;
///   - else the continued fraction (BFRAC), at most some 150 steps.
/// The last two are those of DiDonato and Morris, ACM TOMS 18 (1992) 360.
#pragma once

#include "zel/base/types.h"

namespace zel::kernels {

/// I_x(a, b) and 1 - I_x(a, b).
struct BetaTails {
  Extended lower;
  Extended upper;
};

/// For a, b > 0, finite, up to 1e10. y is 1 - x, given so that neither loses digits when it is
/// small; the smaller of the two is taken for exact. x <= 0 gives {0, 1}, y <= 0 {1, 0},
/// not-a-number not-a-number. Both tails keep their relative precision.
[[nodiscard]] BetaTails incompleteBeta(Extended a, Extended b, Extended x, Extended y);
/// The same for a caller who knows lambda = a y - b x more precisely than x and y, which for large
/// parameters decides the precision.
[[nodiscard]] BetaTails incompleteBeta(Extended a, Extended b, Extended x, Extended y,
                                       Extended lambda);

/// x^a y^b / B(a, b) for 0 < x, y = 1 - x.
[[nodiscard]] Extended betaPower(Extended a, Extended b, Extended x, Extended y);
[[nodiscard]] Extended betaPower(Extended a, Extended b, Extended x, Extended y, Extended lambda);

/// I_x(a, b) a / betaPower: 1 + (a+b)/(a+1) x + (a+b)(a+b+1)/((a+1)(a+2)) x^2 + ..., whose terms
/// are all positive. Meant for x away from 1 and x (a+b) up to a few times a+1: the number of terms
/// grows without bounds elsewhere.
[[nodiscard]] Extended betaSeries(Extended a, Extended b, Extended x);

/// I_x(a, b) / betaPower by the continued fraction, for lambda = a y - b x >= 0, which the caller
/// may know more precisely than by this formula.
[[nodiscard]] Extended betaFraction(Extended a, Extended b, Extended x, Extended y,
                                    Extended lambda);

}  // namespace zel::kernels
