/// @file
/// What arrays of three and of four dimensions share: blocks, the runs of storage that they consist
/// of, searches and statistics in them. Internal.
///
/// Dimensions are numbered in the order of the interface: columns, rows, layers, time slots. The
/// elements of a block are visited in that order, the last dimension fastest; where the result does
/// not depend on it, in the order of the storage.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "zel/base/array.h"
#include "zel/kernels/minmax.h"
#include "zel/kernels/range.h"
#include "zel/kernels/search.h"
#include "zel/matrix/rules_impl.h"

namespace zel::detail {

template <int Rank>
using TGridIndex = std::array<int, static_cast<std::size_t>(Rank)>;

/// The k-th dimension of the storage, the fastest numbered 0.
template <int Rank>
constexpr std::size_t StoredDim(std::size_t k) {
  return Rank == 3 ? 2 - k : k;
}

/// A block, 1-based and clamped; never empty.
template <int Rank>
struct TGridBlock {
  TGridIndex<Rank> Low{};
  TGridIndex<Rank> High{};
  [[nodiscard]] std::size_t Size(std::size_t dim) const {
    return static_cast<std::size_t>(High[dim] - Low[dim] + 1);
  }
  [[nodiscard]] std::size_t Count() const {
    std::size_t n = 1;
    for (std::size_t d = 0; d < Rank; ++d) n *= Size(d);
    return n;
  }
};

/// The elements of an array.
template <int Rank>
struct TGridView {
  const double* Data = nullptr;
  TGridIndex<Rank> Sizes{};
  std::array<std::size_t, static_cast<std::size_t>(Rank)> Strides{};

  TGridView(const double* data, const TGridIndex<Rank>& sizes) : Data(data), Sizes(sizes) {
    std::size_t stride = 1;
    for (std::size_t k = 0; k < Rank; ++k) {
      const std::size_t d = StoredDim<Rank>(k);
      Strides[d] = stride;
      stride *= static_cast<std::size_t>(Sizes[d]);
    }
  }
  [[nodiscard]] const double& operator()(const TGridIndex<Rank>& at) const {
    std::size_t offset = 0;
    for (std::size_t d = 0; d < Rank; ++d) {
      offset += static_cast<std::size_t>(at[d] - 1) * Strides[d];
    }
    return Data[offset];
  }
  [[nodiscard]] bool IsWhole(const TGridBlock<Rank>& block, std::size_t dim) const {
    return block.Low[dim] == 1 && block.High[dim] == Sizes[dim];
  }
};

/// The block of a pair of bounds for each dimension.
template <int Rank, class... Bounds>
TGridBlock<Rank> ClampedBlock(const TGridIndex<Rank>& sizes, Bounds... bounds) {
  static_assert(sizeof...(Bounds) == 2 * Rank);
  const std::array<int, sizeof...(Bounds)> pairs{bounds...};
  TGridBlock<Rank> block;
  for (std::size_t d = 0; d < Rank; ++d) {
    block.Low[d] = pairs[2 * d];
    block.High[d] = pairs[2 * d + 1];
    kernels::clampRange(block.Low[d], block.High[d], sizes[d]);
  }
  return block;
}

/// Goes on to the next index of a block, the dimensions from the first-th of the storage on.
/// @return false behind the last one
template <int Rank>
bool NextStored(const TGridBlock<Rank>& block, TGridIndex<Rank>& at, std::size_t first) {
  for (std::size_t k = first; k < Rank; ++k) {
    const std::size_t d = StoredDim<Rank>(k);
    if (at[d] < block.High[d]) {
      ++at[d];
      return true;
    }
    at[d] = block.Low[d];
  }
  return false;
}

/// Calls use(at, cells) for the lines of a block along the fastest dimension, in the order of the
/// storage; `at` is the index of the first cell.
template <int Rank, class Use>
void ForEachLine(const TGridView<Rank>& grid, const TGridBlock<Rank>& block, Use&& use) {
  const std::size_t length = block.Size(StoredDim<Rank>(0));
  TGridIndex<Rank> at = block.Low;
  do {
    use(at, std::span<const double>(&grid(at), length));
  } while (NextStored(block, at, 1));
}

/// The same for parts as long as can be that are contiguous and vary in the two fastest dimensions.
template <int Rank, class Use>
void ForEachRun(const TGridView<Rank>& grid, const TGridBlock<Rank>& block, Use&& use) {
  if (!grid.IsWhole(block, StoredDim<Rank>(0))) return ForEachLine(grid, block, use);
  const std::size_t length = block.Size(StoredDim<Rank>(0)) * block.Size(StoredDim<Rank>(1));
  TGridIndex<Rank> at = block.Low;
  do {
    use(at, std::span<const double>(&grid(at), length));
  } while (NextStored(block, at, 2));
}

template <int Rank>
bool IsContiguous(const TGridView<Rank>& grid, const TGridBlock<Rank>& block) {
  bool isWhole = true;
  for (std::size_t k = 0; k < Rank; ++k) {
    const std::size_t d = StoredDim<Rank>(k);
    if (!isWhole && block.Size(d) > 1) return false;
    isWhole = isWhole && grid.IsWhole(block, d);
  }
  return true;
}

/// Calls use(cells) with the elements of a block in the order of the storage: the storage itself
/// where they are contiguous, a copy otherwise.
/// @throws std::bad_alloc
template <int Rank, class Use>
decltype(auto) WithCells(const TGridView<Rank>& grid, const TGridBlock<Rank>& block, Use&& use) {
  if (IsContiguous(grid, block)) {
    return use(std::span<const double>(&grid(block.Low), block.Count()));
  }
  TDynArray<double, 1> copy;
  copy.SetLength(block.Count());
  double* next = copy.data();
  ForEachRun(grid, block, [&](const TGridIndex<Rank>&, std::span<const double> cells) {
    next = std::copy(cells.begin(), cells.end(), next);
  });
  return use(std::span<const double>(copy));
}

/// Index of the element nearest to a value, of equally near ones the first in the order of the
/// interface; zeros if every distance is not-a-number or not below the largest double.
template <int Rank>
TGridIndex<Rank> NearestIn(const TGridView<Rank>& grid, const TGridBlock<Rank>& block,
                           double value) {
  TGridIndex<Rank> found{};
  auto best = kernels::kFarthest<double>;
  constexpr std::size_t fastest = StoredDim<Rank>(0);
  ForEachLine(grid, block, [&](TGridIndex<Rank> at, std::span<const double> cells) {
    const std::size_t i = kernels::findNearer(cells, value, best);
    if (i == kernels::npos) return;
    at[fastest] += static_cast<int>(i);
    found = at;
  });
  if (Rank == 3 || found[0] == 0) return found;
  // The storage runs otherwise: one that is as near may come first.
  ForEachLine(grid, block, [&](TGridIndex<Rank> at, std::span<const double> cells) {
    for (const double& x : cells) {
      if (kernels::distanceOf(x, value) != best) continue;
      at[fastest] += static_cast<int>(&x - cells.data());
      found = std::min(found, at);
      return;
    }
  });
  return found;
}

/// Smallest and largest element of a block; afterRun(number of cells) is called after each run.
template <int Rank, class AfterRun>
kernels::MinMaxStart<double> ExtremesIn(const TGridView<Rank>& grid, const TGridBlock<Rank>& block,
                                        AfterRun&& afterRun) {
  kernels::MinMaxStart<double> range = kExtremesStart<double>;
  ForEachRun(grid, block, [&](const TGridIndex<Rank>&, std::span<const double> cells) {
    const auto found = kernels::minMax(cells, range);
    range = {found.minimum, found.maximum};
    afterRun(cells.size());
  });
  return range;
}

/// An element of a block at random; its indices are drawn in the order of the interface.
template <int Rank>
double DrawnFrom(const TGridView<Rank>& grid, const TGridBlock<Rank>& block) {
  TGridIndex<Rank> at{};
  for (std::size_t d = 0; d < Rank; ++d) at[d] = RandomBetween(block.Low[d], block.High[d]);
  return grid(at);
}

/// A block has more elements than a sample, which is not empty.
template <int Rank>
bool IsSampled(const TGridBlock<Rank>& block, int sampleSize) {
  return sampleSize > 0 && block.Count() > static_cast<std::size_t>(sampleSize);
}

/// Percentile estimated from elements drawn with replacement.
/// @throws std::bad_alloc
template <int Rank>
double SampledPercentile(const TGridView<Rank>& grid, const TGridBlock<Rank>& block, double prob,
                         int sampleSize) {
  const auto sample = RandomSample<double>(sampleSize, [&] { return DrawnFrom(grid, block); });
  return RankedValue(std::span<const double>(sample), prob);
}

/// The indices of a source range whose counterparts exist in a target: index i goes to i + Shift.
struct TShiftedRange {
  std::int64_t Shift;
  std::int64_t First;
  std::int64_t Last;
  /// @param to      where `low` goes
  /// @param target  the indices of the target are 1..target
  TShiftedRange(std::int64_t low, std::int64_t high, std::int64_t to, std::int64_t target)
      : Shift(to - low), First(std::max(low, 1 - Shift)), Last(std::min(high, target - Shift)) {}
};

}  // namespace zel::detail
