/// @file
/// Medians over sliding windows.
#pragma once

#include <cstddef>
#include <span>

namespace zel::kernels {

/// The second quartile (quartile rule of order_statistics.h) of every window of `width` values.
/// @param width  odd, below 2^31
/// @param out    one median for each start of a window, x.size() - width + 1 of them; nothing if x
///   is shorter
///
/// O(n log width). Windows with a value that is not a number or beyond half of the double range are
/// sorted one by one.
/// @throws std::bad_alloc  before out is touched
/// Method: sorted blocks of `width` values in linked lists, from which values leave and to which
/// they return as the window moves on (Suomela, arXiv:1406.1717, 2014).
void movingMedians(std::span<const double> x, std::size_t width, double* out);

}  // namespace zel::kernels
