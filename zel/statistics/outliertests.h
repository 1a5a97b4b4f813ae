/// @file
/// Tests for one outlier in a sample of a normal distribution.
#pragma once

#include "zel/base/api.h"
#include "zel/base/errors.h"
#include "zel/statistics/significance.h"
#include "zel/vector/Zel_vector.h"

namespace zel {

/// Dean and Dixon's test: the gap beside the smallest or the largest value, relative to a range.
///
/// For the sorted values x_1..x_n and their mirror image: (x_2 - x_1) / (x_n - x_1) for n = 3..7,
/// (x_2 - x_1) / (x_{n-1} - x_1) for n = 8..10, (x_3 - x_1) / (x_{n-1} - x_1) for n = 11..13,
/// (x_3 - x_1) / (x_{n-2} - x_1) for n = 14..100; 0 where there is no range.
/// @param Data   null: no values
/// @param alpha  level for one end; as the end is not chosen beforehand, that of the test is about
///   twice as high
/// @param Q      the larger ratio, of the smallest value if both are equal
/// @return position of the first value equal to the outlier; 0 if Q does not exceed
///   DeanDixonCriticalValues(n, alpha)
/// @throws EZELStatisError  with Q = 0: "DeanDixonTest: number of data points is too low" (n < 3)
///   or "... too high" (n > 100)
/// Method: Dean and Dixon, Anal. Chem. 23 (1951) 636; Dixon, Ann. Math. Statist. 22 (1951) 68.
ZEL_API int DeanDixonTest(const TVector* Data, TSignifLevelEx alpha, double& Q);

/// Grubbs' test: the largest distance from the mean, in standard deviations.
/// @param Data   null: no values
/// @param alpha  level, two-sided
/// @param G      the distance; 0 if all values are equal or some is not-a-number
/// @return position of the value, the first of equally distant ones; 0 if G does not exceed
///   GrubbsCriticalValues(n, alpha, true)
/// @throws EZELStatisError  with G = 0: "GrubbsTest: invalid level of significance" unless
///   0 < alpha < 1, else "GrubbsTest: number of data points is too low" for n < 4
/// Method: Grubbs, Technometrics 11 (1969) 1. O(n).
ZEL_API int GrubbsTest(const TVector* Data, double alpha, double& G);

}  // namespace zel
