/// @file
/// Null distributions of statistics that compare a sample with a distribution: Kolmogorov-Smirnov,
/// Lilliefors, Shapiro-Wilk.
#pragma once

#include "zel/base/api.h"
#include "zel/base/errors.h"
#include "zel/statistics/significance.h"

namespace zel {

/// Probability that the one-sample Kolmogorov-Smirnov statistic of n values is at least d.
///
/// Up to n d^2 = 3.76 (7.24 for n < 100) right to about 1e-13 of the complement; beyond, the
/// asymptotic form with 7 digits. O(m^3 log n) time and O(m^2) memory for m = 2 n d.
/// @return 1 for n < 1 and d <= 0; not-a-number for a d that is none
/// @throws EZELStatisError  "KSPValue: not enough memory"
/// Method: Marsaglia, Tsang and Wang, J. Statist. Softw. 8 (2003) 18.
[[nodiscard]] ZEL_API double KSPValue(int n, double d);

/// Critical value of the one-sample Kolmogorov-Smirnov statistic, from a table with three decimals
/// for n <= 20 (Massey, J. Amer. Statist. Assoc. 46 (1951) 68), else c / sqrt(n).
/// @return -1 for n < 1 or a level that is none
[[nodiscard]] ZEL_API double KolmogSmir1SampleTestStat(int n, TSignifLevel alpha);

/// Critical value whose KSPValue is within 0.0001 of the level: the tabulated one, refined.
/// @return -1 for n < 1 or a level that is none
/// @throws EZELStatisError  as KSPValue
[[nodiscard]] ZEL_API double KSQuantile(int n, TSignifLevel alpha);

/// Probability that the Lilliefors statistic of n values is at least d. Meant for results up to
/// 0.1; larger ones only say that there is no significance.
/// @return -1 for n <= 5
/// Method: Dallal and Wilkinson, Amer. Statist. 40 (1986) 294.
[[nodiscard]] ZEL_API double LillieforsPValue(int n, double d);

/// Critical value of the Lilliefors statistic for a sample of n values: a fit with polynomials of
/// degree 6 in 1 - alpha.
/// @return not-a-number where n is so small that the fit has no value
[[nodiscard]] ZEL_API double LillieforsQuantile(int n, double alpha);

/// Probability that the Shapiro-Wilk W of a normal sample is at most w: the significance of the
/// test, for 3 <= n <= 5000 (to be taken with caution beyond).
/// @param w  statistic; 0 for w <= 0, 1 for w >= 1
/// @param n  size of the sample
/// @param m  how many of the n values were observed; the others are known to be larger. m = n, and
///   m = 0 too, is a complete sample.
/// @return -1 for n < 3, m < 0 or m > n, and for m < n if n < 20 or more than 0.8 n values are
///   missing
/// Method: Royston, Statist. Comput. 2 (1992) 117 and Appl. Statist. 44 (1995) 547 (algorithm AS
/// R94); censored samples: Royston, The Statistician 42 (1993) 37. Exact for n = 3.
[[nodiscard]] ZEL_API double ShapiroWilkIntegral(double w, int n, int m);

}  // namespace zel
