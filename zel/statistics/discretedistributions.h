/// @file
/// Binomial and hypergeometric distribution, and that of the Mann-Whitney U.
#pragma once

#include "zel/base/api.h"
#include "zel/base/errors.h"

namespace zel {

/// Probability of k marked items in a sample of nsample without replacement from npop items, of
/// which round(p npop) are marked (ties to even). The relative error is some 1e-9, more for npop
/// above 1e5: exponentials of sums of LnGamma.
/// @return 0 for a k that cannot occur
/// @throws EZELStatisError  in this order, "HyperGeoDistriDensity: " followed by
///   "probability p must be between 0.0 and 1.0", "npop must be greater than 0",
///   "nsample must not be greater than npop", "nsample must not be less than 1"
[[nodiscard]] ZEL_API double HyperGeoDistriDensity(double p, int npop, int nsample, int k);

/// Probability of k successes in n trials of success probability p, right to an ulp or two.
/// @return 0 for k outside 0..n, n < 0 and p outside [0, 1]
[[nodiscard]] ZEL_API double BinomDistriDensity(int n, double p, int k);

/// Probability of at most k successes, right to an ulp or two in the lower tail too.
/// @return 0 for k < 0, 1 for k >= n; 0 for n < 0 and p outside [0, 1]
/// Method: incomplete beta function in extended precision.
[[nodiscard]] ZEL_API double BinomDistriIntegral(int n, double p, int k);

/// The smallest k with BinomDistriIntegral(n, p, k) >= q.
/// @param p  success probability
/// @param q  probability that k reaches
/// @param result  k, a whole number; 0 if an argument is refused
/// @return false for n < 0, and p or q outside [0, 1]
ZEL_API bool BinomDistriQuantile(int n, double p, double q, double& result);
/// The same with an integer result.
ZEL_API bool BinomDistriQuantile(int n, double p, double q, int& result);

/// Probability of U = u for samples of nx and ny values without ties under the null hypothesis of
/// one continuous distribution. U counts the pairs in which the value of the first sample is the
/// larger; 0 <= u <= nx ny, symmetric. Right to an ulp for sizes up to some thousands.
/// @return 0 for u outside 0..nx ny and sizes below 1
/// Method, with m the smaller size: closed forms for m <= 4; for small samples and small u the
/// exact recurrence (Harding, Appl. Statist. 33 (1984) 1), at most some 40 ms and 4 MB; else the
/// integral of the generating function through its saddle point, some 100 m evaluations and no
/// storage.
[[nodiscard]] ZEL_API double UDistriDensity(int nx, int ny, int u);

/// Probability of U <= u. Full relative precision in the lower tail; for an upper tail use the
/// symmetry, P(U >= u) = UDistriIntegral(nx, ny, nx ny - u).
/// @return 0 for u < 0, 1 for u >= nx ny; 0 for sizes below 1
[[nodiscard]] ZEL_API double UDistriIntegral(int nx, int ny, int u);

/// The smallest u with UDistriIntegral(nx, ny, u) >= p.
/// @return 0 for p <= 0 and sizes below 1, nx ny for p >= 1
/// One table for small samples, else some ten calls of UDistriIntegral.
[[nodiscard]] ZEL_API double UDistriQuantile(int nx, int ny, double p);

}  // namespace zel
