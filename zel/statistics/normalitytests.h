/// @file
/// Tests of normality.
#pragma once

#include "zel/base/api.h"
#include "zel/base/errors.h"
#include "zel/vector/Zel_vector.h"

namespace zel {

/// Kolmogorov-Smirnov statistic: the largest distance of the sample's steps from the distribution
/// function of the standard normal distribution. Its significance is KSPValue(n, D).
/// @param Data    values to compare as they are; null: 0
/// @param Sorted  true: they ascend already; false: Data is sorted, with the events of SortElems
/// @return D, with the precision of nDistriIntegral; not-a-number elements make it meaningless
/// The distribution function is evaluated only where the maximum can be, O(sqrt(n)) times for a
/// sample that is about normal. The sort is O(n log n).
ZEL_API double PerformKSNormalityTest(TVector* Data, bool Sorted);

/// Lilliefors statistic: the same after Data has been standardised in place (TVector::Standardize,
/// no event). Its significance is LillieforsPValue(n, D).
/// Method: Lilliefors, J. Amer. Statist. Assoc. 62 (1967) 399.
ZEL_API double PerformLillieforsTest(TVector* Data, bool Sorted);

/// Shapiro and Wilk's test of normality, for 3 to 5000 values, of a complete sample or one whose
/// largest values are missing.
/// @param Data  the values in any order; null: none
/// @param n     size of the sample with the missing values; 0: that of Data
/// @param W     statistic, close to 1 for a normal sample
/// @param p     significance, by ShapiroWilkIntegral
/// @return 0; with W = 0 and p = -1: -1 for fewer than three values, -2 for fewer than n that
///   ShapiroWilkIntegral does not take, and for an n below their number, -3 if they are all equal
///   or not all finite
/// @throws EZELStatisError  "ShapiroWilkTest: not enough memory"
/// Method: Royston, Statist. Comput. 2 (1992) 117 and Appl. Statist. 44 (1995) 547 (algorithm AS
/// R94). O(n log n).
ZEL_API int ShapiroWilkTest(const TVector* Data, int n, double& W, double& p);

}  // namespace zel
