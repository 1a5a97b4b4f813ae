/// @file
/// Clamping of 1-based index ranges, the one rule of all containers.
#pragma once

#include <algorithm>
#include <utility>

namespace zel::kernels {

/// Each bound is limited to 1..n, then a reversed pair is exchanged. n >= 1.
inline void clampBounds(int& low, int& high, int n) {
  low = std::clamp(low, 1, n);
  high = std::clamp(high, 1, n);
  if (low > high) std::swap(low, high);
}

/// The same, but (0, 0) selects the whole dimension. For n = 0 the range is empty: (1, 0).
inline void clampRange(int& low, int& high, int n) {
  if (n < 1 || (low == 0 && high == 0)) {
    low = 1;
    high = n < 1 ? 0 : n;
  } else {
    clampBounds(low, high, n);
  }
}

}  // namespace zel::kernels
