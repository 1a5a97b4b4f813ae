/// @file
/// Rules of statistics that containers of any number of dimensions share. Internal.
#pragma once

#include <cmath>
#include <cstddef>
#include <span>
#include <vector>

#include "zel/base/Zel_univconst.h"
#include "zel/base/array.h"
#include "zel/base/random.h"
#include "zel/kernels/minmax.h"
#include "zel/kernels/order_statistics.h"

namespace zel::detail {

/// Start values of the searches for extremes.
template <class T>
inline constexpr kernels::MinMaxStart<T> kExtremesStart{};
template <>
inline constexpr kernels::MinMaxStart<double> kExtremesStart<double>{uc_MaxDouble, -uc_MaxDouble};

/// Percentile by the rank rule, without interpolation; a not-a-number prob counts as 0. At least
/// one value.
/// @throws std::bad_alloc
template <class T>
double RankedValue(std::span<const T> values, double prob) {
  const std::size_t rank = kernels::percentileRank(values.size(), std::isnan(prob) ? 0 : prob);
  return static_cast<double>(kernels::selectPair(values, rank).at);
}

/// Inverse of a square array, in place, at least one by one: LU decomposition with implicit row
/// scaling and partial pivoting. A progress step and a poll of AbortMathProc for each column of the
/// decomposition and of the inverse.
/// @return false after an abort, or if a row holds nothing but zeros or a pivot is below 1E-100 in
///   magnitude; cells then holds what the decomposition has made of it
/// @throws std::bad_alloc
[[nodiscard]] bool InvertCells(TDouble2DArray& cells);

/// Index drawn from low..high.
inline int RandomBetween(int low, int high) { return low + Random(high - low + 1); }

/// Elements that draw() yields one after the other, once the process-wide generator has been seeded
/// from the clock.
/// @throws std::bad_alloc  before the generator is seeded
template <class T, class Draw>
std::vector<T> RandomSample(int size, Draw&& draw) {
  std::vector<T> sample(static_cast<std::size_t>(size));
  Randomize();
  for (T& x : sample) x = draw();
  return sample;
}

}  // namespace zel::detail
