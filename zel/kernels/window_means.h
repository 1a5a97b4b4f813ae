/// @file
/// Means over sliding windows, flat or triangular.
#pragma once

#include <cstddef>
#include <span>

namespace zel::kernels {

/// Flat windows, or the triangular ones that two flat windows in succession make.
enum class WindowShape { flat, triangular };

/// Number of values that a window covers.
[[nodiscard]] constexpr std::size_t windowLength(std::size_t width, WindowShape shape) {
  return shape == WindowShape::flat ? width : 2 * width - 1;
}

/// Weighted means of all windows of x. Flat: of `width` values. Triangular: of 2 width - 1 values
/// with the weights 1, 2, ..., width, ..., 2, 1.
/// @param width  at least 1; at most 2^31
/// @param out    one mean for each start of a window, x.size() - windowLength + 1 of them; nothing
///   if x is shorter
///
/// Sums in double-double that double their width in every step: O(n log width), without a running
/// sum, so that nothing of a value remains once it has left the window. A mean is the exact one
/// rounded, unless the values cancel by more than 15 digits; it is finite if all values are. A
/// window with values that are not finite gives what their plain sum gives.
/// @throws std::bad_alloc  before out is touched
void windowMeans(std::span<const double> x, std::size_t width, WindowShape shape, double* out);

}  // namespace zel::kernels
