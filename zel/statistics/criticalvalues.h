/// @file
/// Tabulated critical values: Wilcoxon's signed ranks, Dean-Dixon, Grubbs, Durbin-Watson.
#pragma once

#include "zel/base/api.h"
#include "zel/statistics/significance.h"

namespace zel {

/// Critical value of Wilcoxon's signed-rank statistic of n pairs: the smaller rank sum is
/// significant if it is at most this.
///
/// Up to n = 100 a parabola over the logarithm of the level through exact values at the two-sided
/// levels 0.1, 0.05, 0.02, 0.01, 0.001, rounded; it may differ from the exact value by a unit or
/// two. Above, the normal approximation; a value beyond the integers gives the largest one.
/// @return -1 unless 8 <= n <= 1000000 and alpha is in 0.0005..0.2 (to within 1e-8)
[[nodiscard]] ZEL_API int WilcoxonSRQuantile(int n, double alpha, bool TwoSided);

/// Critical value of Dean and Dixon's ratio, three decimals: r10 for n = 3..7, r11 for 8..10, r21
/// for 11..13, r22 for 14..100. The levels hold for one end of the sample.
/// @return -1 for n outside 3..100 or a level that is none
/// Table: published rows for n = 3, 4, 8, 11, 100, the others by integration of the exact density
/// (Dixon, Ann. Math. Statist. 22 (1951) 68).
[[nodiscard]] ZEL_API double DeanDixonCriticalValues(int n, TSignifLevelEx alpha);

/// Critical value of Grubbs' statistic, the largest distance from the mean over the standard
/// deviation, from the t distribution with n - 2 degrees of freedom.
/// @return -1 for alpha outside the open interval (0, 1) and n < 3
/// Method: Grubbs, Technometrics 11 (1969) 1; Bonferroni's bound, exact for small alpha.
[[nodiscard]] ZEL_API double GrubbsCriticalValues(int n, double alpha, bool TwoSided);

/// Bounds of the 5 % significance point of the Durbin-Watson statistic for n observations and k
/// regressors beside the intercept. Tabulated with three decimals up to n = 100; fitted to the
/// exact points beyond, within 4e-5 of them.
/// @return false, with dL and dU untouched, for n - k < 5, n > 2000 and k outside 1..20
/// Table: quantiles by Imhof's integral (Biometrika 48 (1961) 419), in agreement with the published
/// ones (Savin and White, Econometrica 45 (1977) 1989).
ZEL_API bool DurbinWatsonCrit5pct(int n, int k, double& dL, double& dU);

}  // namespace zel
