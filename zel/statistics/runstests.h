/// @file
/// Tests of a sequence for randomness.
#pragma once

#include <span>

#include "zel/base/api.h"
#include "zel/base/bitfield.h"
#include "zel/base/errors.h"
#include "zel/vector/Zel_vector.h"

namespace zel {

/// Runs test of bits 0..Size: are there fewer runs of equal bits, or clearly fewer or more, than in
/// a random order?
/// @param Bits  null: false, with p = -1
/// @param p  up to 25 bits of each kind ExactRunsTest; above, the smaller tail of the normal
///   approximation, on whichever side; 0 if all bits are equal
/// @return p < 0.05
/// Method: Wald and Wolfowitz, Ann. Math. Statist. 11 (1940) 147. O(Size).
ZEL_API bool RunsTest(const TBitFld* Bits, double& p);

/// Runs test of which elements are above the median (second quartile) of all.
/// @param Data  null or without elements: false, with p = -1
/// @param p  as in RunsTest
/// @return p < 0.05
/// @throws EZELStatisError  "RunsTestSerial: not enough memory"
/// O(n).
ZEL_API bool RunsTestSerial(const TVector* Data, double& p);

/// Probability of at most r runs in a random order of nA and nB symbols of two kinds. For nA + nB
/// up to 50 the exact fraction, rounded; beyond, right to some 1e-15 of itself in the tail too.
/// @return 0 for r < 2, and if nA or nB is below 1
/// O(min(nA, nB)) steps, for large numbers about sqrt(nA + nB).
[[nodiscard]] ZEL_API double ExactRunsTest(int nA, int nB, int r);

/// Durbin-Watson statistic of residuals in their order: the sum of their squared steps over the sum
/// of their squares, about 2 without serial correlation. For its bounds see DurbinWatsonCrit5pct.
/// @return 2 for fewer than three residuals, 0 if all are 0
/// Method: Durbin and Watson, Biometrika 37 (1950) 409.
[[nodiscard]] ZEL_API double DurbinWatson(std::span<const double> Resid);

}  // namespace zel
