/// @file
/// The tests of hypotheses as a user would write them. Compiled apart, with -O3 -march=native.
#pragma once

#include <vector>

namespace zel::bench {

using Sample = std::vector<double>;

/// Two-sided significance of the pooled t test, by GSL.
double gslTTest(const Sample& a, const Sample& b);
/// Significance of a one-way analysis, from running sums of each group.
double plainAnova(const Sample& x, const std::vector<int>& classes);
/// Significance with the correction for ties, from sorts of both samples together.
double plainMannWhitney(const Sample& a, const Sample& b);
/// Significance, from ranks that a sort of each row gives. The table row by row.
double plainFriedman(const Sample& table, int rows, int columns);
/// Number of runs about the median.
double plainRuns(const Sample& x);
/// Lilliefors statistic with std::erfc.
double plainLilliefors(const Sample& x);
/// W with the normal quantile of GSL.
double gslShapiroWilk(const Sample& x);
double plainDurbinWatson(const Sample& x);

}  // namespace zel::bench
