/// @file
/// Recursive filters, forwards and then backwards.
#pragma once

#include <cstdint>
#include <span>

namespace zel::kernels {

/// y[i] = a0 x[i] + sum over k = 1..P of (a[k - 1] x[i - k] + b[k - 1] y[i - k]).
struct RecursiveFilter {
  double a0;
  std::span<const double> a;  // at least one
  std::span<const double> b;  // as many
};

/// Filters x from index -pad up to `end` - 1, pad = P + 1, then the result backwards from there; x
/// is 0 outside. Writes the results with the indices first, first + 1, ... to out.
/// @param end    at least 0; beyond x it costs no memory. Once P results of the first pass behind x
///   are smaller than the normal numbers, `end` is taken to be there.
/// @param first  at least 0; with the results it lies before end - pad
/// @param out    may be a part of x that begins at index `first`
/// @throws std::bad_alloc  before out is touched
///
/// The first pass is stored in blocks: while `end` lies near the end of x there is one; otherwise
/// the states before the blocks are kept, and each block is computed again when the second pass
/// comes to it.
void filterBothWays(const RecursiveFilter& filter, std::span<const double> x, std::int64_t end,
                    std::int64_t first, std::span<double> out);

}  // namespace zel::kernels
