/// @file
/// Comparisons of several groups: analysis of variance, of spreads, of ranks.
#pragma once

#include "zel/base/api.h"
#include "zel/base/errors.h"
#include "zel/matrix/Zel_matrix.h"
#include "zel/vector/Zel_vector.h"

namespace zel {

/// Friedman's test of treatments in blocks, by the ranks within each block; ties get their mean
/// rank, and the statistic is corrected for them.
/// @param Data  a column for each treatment, a row for each block
/// @param Chi2  statistic; 0 if no block tells the treatments apart
/// @return significance, of the chi-square distribution with one degree of freedom less than
///   treatments; -1, with Chi2 untouched, for null and fewer than three columns
/// @throws EZELStatisError  "FriedmanTest: not enough memory"
/// Method: Friedman, J. Amer. Statist. Assoc. 32 (1937) 675. O(rows columns log(columns)).
ZEL_API double FriedmanTest(const TMatrix* Data, double& Chi2);

/// One-way analysis of variance of the groups of equal Classes.
/// @param Data, Classes  as many elements; null: none
/// @param SSBetween, SSWithin, SSTotal  sums of squared deviations, in squared units of Data
/// @param DFBetween, DFWithin, DFTotal  their degrees of freedom: groups - 1, n - groups, n - 1
/// @param F  ratio of the mean squares; without spread within the groups 0, or the largest double
///   if they differ
/// @return significance, 1 - FDistriIntegral(F, DFBetween, DFWithin), its digits kept; 0 without
///   spread within the groups if they differ, -3 if they do not. With everything untouched: -4 if
///   the numbers of elements differ, -1 for fewer than two groups, -2 for as many as values.
/// @throws EZELStatisError  "Anova1F: not enough memory"
/// Two passes about the means: the sums have full precision whatever the offset of Data. O(n).
ZEL_API double Anova1F(const TVector* Data, const TIntVector* Classes, double& SSBetween,
                       double& SSWithin, double& SSTotal, int& DFBetween, int& DFWithin,
                       int& DFTotal, double& F);

/// Levene's test of equal spread: the analysis of variance of the absolute deviations from the
/// means of the groups.
/// @return significance or code, as Anova1F
/// @throws EZELStatisError  "LeveneTest: not enough memory"
/// Method: Levene, in Contributions to Probability and Statistics (1960) 278. O(n).
ZEL_API double LeveneTest(const TVector* Data, const TIntVector* Classes, double& F);

}  // namespace zel
