/// @file
/// Measures of association and of separation.
#pragma once

#include "zel/base/api.h"
#include "zel/base/array.h"

namespace zel {

/// Goodman and Kruskal's lambdas of a contingency table.
/// @param ContTab  [row][column], the sums of the rows in the last column, those of the columns in
///   the last row, the total in the corner, as TDataTable::CreateContingencyTable makes it
/// @param LambdaA  how much the prediction of the column gains from the row, 0..1
/// @param LambdaB  how much the prediction of the row gains from the column. A lambda is 0 where
///   there is nothing to gain, all cases being in one category.
/// @return 0; -1, with both 0, if a sum does not fit its cells or there are none
ZEL_API int Lambda(const TInt2DArray& ContTab, double& LambdaA, double& LambdaB);

/// Fisher ratio (m1 - m2)^2 / (s1^2 + s2^2) of two groups of means m1, m2 and standard deviations
/// s1, s2; a denominator below 1E-6 is taken as 1E-6.
[[nodiscard]] ZEL_API double CalcFishQ(double m1, double m2, double s1, double s2);

}  // namespace zel
