/// @file
/// Order statistics of containers, with their progress reports. Internal.
#pragma once

#include <span>

#include "zel/base/array.h"
#include "zel/base/progress.h"
#include "zel/kernels/order_statistics.h"

namespace zel::detail {

/// While somebody listens, sorts a copy with a progress step for each pass; otherwise selects, in
/// one step.
/// @throws std::bad_alloc
template <class T, class BySort, class BySelection>
auto OrderStatistic(std::span<const T> values, BySort&& bySort, BySelection&& bySelection) {
  if (MathFeedBackProc) {
    TDynArray<T, 1> work(values);
    return bySort(std::span<T>(work), [] { ProgressStep(); });
  }
  const auto result = bySelection(values);
  ProgressStep();
  return result;
}

/// @throws std::bad_alloc
template <class T>
kernels::Quartiles QuartilesOf(std::span<const T> values) {
  return OrderStatistic(
      values, [](std::span<T> work, auto pass) { return kernels::quartilesBySort(work, pass); },
      [](std::span<const T> range) { return kernels::quartilesBySelection(range); });
}

}  // namespace zel::detail
