/// @file
/// The Shapiro-Wilk statistic.
#pragma once

#include <cstddef>
#include <span>

namespace zel::kernels {

/// W of a sorted sample: the squared correlation of its values with Royston's approximation of the
/// best weights of normal order statistics (Statist. Comput. 2 (1992) 117, algorithm AS R94).
/// @param sorted  at least two different values
/// @param n       size of the sample, at least 3 and that of sorted; if there are fewer values,
///   these are the smallest of the sample
/// @throws std::bad_alloc
/// O(n).
[[nodiscard]] double shapiroWilk(std::span<const double> sorted, std::size_t n);

}  // namespace zel::kernels
