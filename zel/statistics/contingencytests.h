/// @file
/// Tests of counts: contingency tables, comparisons of two distributions of counts, agreement of
/// two partitions.
///
/// Tables are [row][column]. Where margins are said to belong to a table, they are its last row and
/// column, as TDataTable::CreateContingencyTable makes them: the sums of the rows in the last
/// column, those of the columns in the last row, the total in the corner. They are taken as given.
#pragma once

#include <span>

#include "zel/base/api.h"
#include "zel/base/array.h"

namespace zel {

/// Pearson's chi-square test of independence of a table with margins.
/// @param Chi2  sum of (O - E)^2 / E over the cells with expected counts E above 0
/// @param p     significance, for (rows - 1) (columns - 1) degrees of freedom of the data part
/// @return 0; -1, with both 0, for fewer than three rows or columns, margins included
ZEL_API int Chi2OfContTab(const TInt2DArray& ContTab, double& Chi2, double& p);

/// Chi-square test of a fourfold table with margins, by Yates's formula
/// N (|ad - bc| - N/2)^2 / (product of the margins); the difference may be negative.
/// @return 0; with both 0 -1 if the table is not 3 by 3, -2 if a margin is 0
ZEL_API int Chi2OfContTabYates(const TInt2DArray& ContTab, double& Chi2, double& p);

/// Chi-square comparison of an observed and an expected distribution of counts, scaled to each
/// other. Neighbouring bins are pooled from the first on until more than 5 are expected and the
/// next bin expects some too.
/// @param Observed, Expected  counts of the same bins
/// @param Chi2    sum over the pooled bins of (a sqrt(SumExp / SumObs) - b sqrt(SumObs / SumExp))^2
///   / b, for a observed and b expected. A last one without expected counts, which needs negative
///   ones in others, is left out.
/// @param p       significance, 1 without a degree of freedom
/// @param DF      pooled bins - 1
/// @param SumObs, SumExp  totals, limited to the largest integer; always filled in
/// @return 0; with Chi2 and p 0 and DF -1: -3 if a total is 0, with no bins at all too, else -1 if
///   the numbers of bins differ
ZEL_API int PerformChi2DistComp(std::span<const int> Observed, std::span<const int> Expected,
                                double& Chi2, double& p, int& DF, int& SumObs, int& SumExp);

/// Probability of a fourfold table without margins among all with the same margins
/// (hypergeometric), right to some 2e-15 of itself. Mirror images of a table have exactly its
/// value.
/// @return 0; with p = 0 -1 if the table is not 2 by 2, else -2 for a total above 1000, else -3
///   for a negative cell
ZEL_API int Prob2x2Contingency(const TInt2DArray& ContTab, double& p);

/// Fisher's exact test of a fourfold table without margins.
///
/// The tails are those of the cell that runs over all tables with the same margins: in the first
/// row, the one in the first column if that has the smallest sum, else the second column; where a
/// row has the smallest sum, its first cell.
/// @param pLeft, pRight  probability of at most and of at least its count
/// @param pTwo  probability of all tables that are not more probable than this one; as in
///   Prob2x2Contingency, mirror images are equally probable
/// @return 0; with all three 0 the codes of Prob2x2Contingency
/// Method: Fisher, J. R. Statist. Soc. 98 (1935) 39.
ZEL_API int FisherExactTest(const TInt2DArray& ContTab, double& pLeft, double& pRight,
                            double& pTwo);

/// Adjusted Rand index of the two partitions that a table with margins crosses: 1 for the same
/// partition, 0 on average for independent ones.
/// @return 1 where nothing can be adjusted: both put all in one class, or each in its own; 0 for a
///   table without data
/// Method: Hubert and Arabie, J. Classif. 2 (1985) 193.
[[nodiscard]] ZEL_API double AdjustedRandIx(const TInt2DArray& ContTab);

}  // namespace zel
