/// @file
/// Element in the centre of a power of a matrix, beyond the range of doubles.
#pragma once

#include "zel/base/types.h"
#include "zel/kernels/dense.h"

namespace zel::kernels {

/// value 10^exponent
struct ScaledNumber {
  Extended value;
  int exponent;
};

/// Centre of a^n, n >= 1, for a square matrix of odd extent. All powers are scaled down by 1e140
/// when their centre exceeds that. O(rows^3 log n).
/// @throws std::bad_alloc, std::length_error
[[nodiscard]] ScaledNumber centreOfPower(ConstMatrix a, int n);

}  // namespace zel::kernels
