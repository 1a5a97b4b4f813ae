/// @file
/// Distribution of the Mann-Whitney U, the number of pairs (x, y) with x > y, under the null
/// hypothesis and without ties. m and n are the sizes of the samples, both at least 1; U is in
/// 0..mn, and symmetric.
///
/// Everything is computed in extended precision, for the caller to round once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "zel/base/types.h"

namespace zel::kernels {

/// P(U = u) for u = 0..last by the recurrence over the size of the smaller sample (Harding, Appl.
/// Statist. 33 (1984) 1), carried out with probabilities instead of counts. O(min(m, n) last). last
/// <= mn / 2.
[[nodiscard]] std::vector<Extended> rankSumProbabilities(int m, int n, std::int64_t last);

/// Whether a table of that length is cheaper than values one by one.
[[nodiscard]] bool isRankSumTableCheap(int m, int n, std::int64_t last);

/// P(U = u) and P(U <= u), u <= mn / 2 (above, the caller takes the symmetry), by the cheapest
/// method:
///   - up to four values in the smaller sample: the counts are polynomials for each u modulo 12;
///   - cheap tables: the recurrence;
///   - else the integral of the generating function over a line in the complex plane, through the
///     saddle point or a little beside it, by the trapezoidal rule, which converges faster than any
///     power; the tails keep their relative precision. O(min(m, n)).
[[nodiscard]] Extended rankSumDensity(int m, int n, std::int64_t u);
[[nodiscard]] Extended rankSumLower(int m, int n, std::int64_t u);

}  // namespace zel::kernels
