/// @file
/// The inner kernels of the matrix products, which work on packed factors. A strip holds as many
/// lines (rows of the left factor or columns of the right one) as a vector has lanes, interleaved:
/// the element of line i at depth k stands at [k * stripLines() + i]. Missing lines of the last
/// strip are 0.
#pragma once

#include <cstddef>
#include <cstdint>

#include "zel/kernels/dense.h"

namespace zel::kernels {

/// Strips are packed in groups of this many lines.
inline constexpr std::size_t kStripGroup = 8;

/// Rounded up to whole groups of strips.
[[nodiscard]] constexpr std::size_t paddedLines(std::size_t lines) {
  return (lines + kStripGroup - 1) / kStripGroup * kStripGroup;
}

// Blocks of a product, multiples of the group. The left block stays in the second-level cache, the
// right one in the third; the longer the depth, the more seldom the result is loaded and stored.
inline constexpr std::size_t kRowBlock = 96;
inline constexpr std::size_t kDepthBlock = 384;
inline constexpr std::size_t kColumnBlock = 2048;

enum class Lines : std::uint8_t { rows, columns };

/// Packs all lines of a part of a factor, its depth running along the other dimension, one strip
/// after the other, so that line i, if it is the first of a group, begins at to + i * depth. `to`
/// has room for paddedLines(lines) * depth numbers and is aligned to 64 bytes.
/// @param isNegated  changes all signs
void packStrips(ConstMatrix part, Lines lines, bool isNegated, double* to);

enum class Start : std::uint8_t { zero, present };

/// Adds the product of packed strips to c: for each cell one fused multiply-add per depth, upwards,
/// from 0 or from the value of the cell.
/// @param left, right  strips for the rows and the columns of c
/// @param diagonal  cells (i, j) with i > j + diagonal need not be computed and take any value;
/// they
///   are mostly left alone
void multiplyStrips(const double* left, const double* right, std::size_t depth, Start start,
                    std::ptrdiff_t diagonal, Matrix c);

/// The same straight from the factors, of which the left one is plain: faster than packing them if
/// they are small or thin.
/// @param lines      what holds the lines of b: its columns if it is plain
/// @param isNegated  changes the signs of a
void multiplyUnpacked(ConstMatrix a, bool isNegated, ConstMatrix b, Lines lines, Start start,
                      Matrix c);

}  // namespace zel::kernels
