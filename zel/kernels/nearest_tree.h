/// @file
/// Nearest rows of all rows of a matrix, by a tree of boxes.
#pragma once

#include <cstddef>
#include <functional>
#include <span>

#include "zel/kernels/dense.h"

namespace zel::kernels {

using UseDistances = std::function<void(std::size_t row, std::span<const double> distances)>;

/// Calls use(i, distances) for each row i, in any order, with the Euclidean distances of its
/// nearest rows, itself among them, ascending. They are those of nearestRows, bit for bit; a row
/// with a value that is not finite has none.
///
/// The rows lie in a k-d tree of small leaves. The rows of a leaf search together, and pass over a
/// box that is farther from each of them than the last distance of its list.
/// @param m       of at least one column
/// @param length  most distances of a row
/// @throws std::bad_alloc  before the first call
/// O(n log n) for few columns, up to O(n^2 columns) for many.
/// Method: Friedman, Bentley and Finkel, ACM Trans. Math. Softw. 3 (1977) 209.
void nearestOfAll(ConstMatrix m, std::size_t length, const UseDistances& use);

}  // namespace zel::kernels
