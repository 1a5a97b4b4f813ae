/// @file
/// What the rank correlations are made from: mean ranks, ties, concordant and discordant pairs.
#pragma once

#include <cstdint>
#include <span>

#include "zel/base/types.h"

namespace zel::kernels {

/// Writes the ranks 1..n; equal values get the mean of theirs. A not-a-number ranks above every
/// number and equals nothing. O(n log n).
/// @param ranks  of the length of x
/// @return the sum of t (t^2 - 1) over the runs of t equal values: 0 without ties
/// @throws std::bad_alloc
[[nodiscard]] Extended meanRanks(std::span<const double> x, std::span<double> ranks);

/// Of the n (n - 1) / 2 pairs of points.
struct Concordance {
  std::int64_t concordant = 0;
  std::int64_t discordant = 0;
  std::int64_t tiedOnlyInY = 0;
  std::int64_t tiedOnlyInX = 0;
  bool operator==(const Concordance&) const = default;
};

/// Exact counts over the length of the shorter span, by the order of the values: differences that
/// would over- or underflow do not matter, infinities of one sign are equal. A point with a
/// not-a-number belongs to no pair. O(n log n).
/// @throws std::bad_alloc
/// Method: Knight, J. Am. Stat. Assoc. 61 (1966) 436.
[[nodiscard]] Concordance concordance(std::span<const double> x, std::span<const double> y);

}  // namespace zel::kernels
