/// @file
/// Comparisons of two samples: t tests, Mann-Whitney, median test.
#pragma once

#include <span>

#include "zel/base/api.h"
#include "zel/base/errors.h"
#include "zel/statistics/significance.h"
#include "zel/vector/Zel_vector.h"

namespace zel {

/// Student's t test of two samples for equal means.
/// @param A, B     the samples; null: no values. For ttPaired element i of both is a pair.
/// @param Version  ttPaired: mean of the differences A - B against 0; ttHomoScedastic: equal
///   variances, pooled; ttHeteroScedastic: different variances (Welch)
/// @param t        statistic, positive if the mean of A is the larger; if there is no spread 0, or
///   the largest double with its sign if the means differ
/// @param df       degrees of freedom; a fraction for ttHeteroScedastic
/// @param MeanA, MeanB, VarA, VarB  of each sample, divisor n - 1
/// @param RoundedDF  df, rounded
/// @return two-sided significance with df as it is, its digits kept in the tail; without spread 0
///   if the means differ, -3 if they do not. With everything untouched: -1 if a sample has fewer
///   than two values, -2 if the pairs are not complete.
/// @throws EZELStatisError  "Perform2SampleTTest: not enough memory"
/// Method: Student, Biometrika 6 (1908) 1; Welch, Biometrika 34 (1947) 28. O(n).
ZEL_API double Perform2SampleTTest(const TVector* A, const TVector* B, TtTestVersion Version,
                                   double& t, double& df, double& MeanA, double& MeanB,
                                   double& VarA, double& VarB, int& RoundedDF);
/// The significance alone.
ZEL_API double Perform2SampleTTest(const TVector* A, const TVector* B, TtTestVersion Version);

/// Mann and Whitney's test (Wilcoxon's rank sum test): is one of two samples shifted?
///
/// Without ties, and with at most 1000 values in the smaller sample and 2^31 - 1 pairs, the
/// significance is that of UDistriIntegral; otherwise that of the normal approximation with the
/// variance corrected for ties and U for continuity. A not-a-number ranks above every number.
/// @param A, B  the samples; null: no values
/// @param Flag  true: two-sided; false: one-sided, to the side on which U lies
/// @param p     significance; 1 if all values are equal, -1 if a sample has no values
/// @return U, the number of pairs in which the value of A is the larger, equal ones counted half;
///   -1 if a sample has no values
/// @throws EZELStatisError  "PerformMannWhitneyUTest: not enough memory"
/// Method: Mann and Whitney, Ann. Math. Statist. 18 (1947) 50. O(n log n), and up to some 40 ms for
/// the exact distribution.
ZEL_API double PerformMannWhitneyUTest(const TVector* A, const TVector* B, bool Flag, double& p);

/// Median test: the fourfold table of the two samples and of the values above and up to the median
/// of all (second quartile).
/// @param Chi2, pChi2  chi-square and its significance
/// @param Chi2Yates, pYates  the same with Yates's correction
/// @param pFisher  the smaller tail of Fisher's exact test; -1 for more than 1000 values
/// @return 0; -2 if no value is above the median, Chi2Yates and pYates being 0 then; -1 if a
///   sample is empty: Chi2 and pChi2 are 0 then, pFisher -1, the others untouched
/// @throws EZELStatisError  "MedianTest: not enough memory"
/// Method: Mood, Introduction to the Theory of Statistics (1950). O(n).
ZEL_API int MedianTest(std::span<const double> A, std::span<const double> B, double& Chi2,
                       double& pChi2, double& Chi2Yates, double& pYates, double& pFisher);

}  // namespace zel
