/// @file
/// One level of a discrete wavelet transform.
#pragma once

#include <cstdint>
#include <span>

#include "zel/base/types.h"

namespace zel::kernels {

/// What stands before the start of a block of n values x[0..n-1]: x[-p] is x[n - p] (periodic), 0,
/// or x[p - 1] (mirrored at the start); indices that lie beyond the block then count modulo n. No
/// value beyond the end is needed.
enum class BlockStart : std::uint8_t { wraps, isZero, isMirrored };

/// Replaces a block by its approximations and its details, each half of it: with the taps h[0..t-1]
/// and g[k] = (-1)^k h[t-1-k],
///   approximation i = sum over k of h[k] x[2i + k - t + 2],
///   detail i        = sum over k of g[k] x[2i + k - t + 2].
/// O(n t), no allocation.
/// @param block    of even length; nothing happens to fewer than 2 values
/// @param lowPass  2, 4 or 6 taps
/// @param scratch  at least half as long as the block
void waveletForward(std::span<Extended> block, std::span<const Extended> lowPass, BlockStart start,
                    std::span<Extended> scratch);

/// The transposed operation: with the start that wraps and orthonormal taps the inverse.
void waveletInverse(std::span<Extended> block, std::span<const Extended> lowPass, BlockStart start,
                    std::span<Extended> scratch);

}  // namespace zel::kernels
