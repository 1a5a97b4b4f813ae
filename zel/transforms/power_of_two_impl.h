/// @file
/// The lengths of transforms. Internal.
#pragma once

#include <bit>

namespace zel {

/// The lengths that the transforms take: 1, 2, 4, ..., 2^23 (8 388 608).
inline constexpr int longestTransform = 1 << 23;

[[nodiscard]] constexpr bool isTransformLength(int n) noexcept {
  return n >= 1 && n <= longestTransform && std::has_single_bit(static_cast<unsigned>(n));
}

}  // namespace zel
