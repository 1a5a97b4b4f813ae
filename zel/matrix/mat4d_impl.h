/// @file
/// TMat4D: what its sources share. Included by them only.
#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>

#include "zel/base/guard_impl.h"
#include "zel/base/rounding.h"
#include "zel/matrix/TMat4D.h"
#include "zel/matrix/grid_impl.h"

namespace zel {

template <class Operation>
decltype(auto) TMat4D::Guarded(Operation&& operation) const {
  return detail::GuardMemory(operation,
                             [&] { return EZELMatrixError(ComponentMessage(detail::kNoMemory)); });
}

/// Reports the percentage of a work by OnPercentDone, at every hundredth of it.
class TMat4D::TPercent {
 public:
  /// @param total  steps of the work
  TPercent(const TMat4D& array, std::size_t total)
      : FArray(array), FTotal(total), FInterval(std::max<std::size_t>(1, total / 100)) {}
  /// One step is done.
  void Step() {
    if (++FDone % FInterval != 0 || !FArray.OnPercentDone) return;
    const double percent = static_cast<double>(FDone) * 100 / static_cast<double>(FTotal);
    // The sender of an event is not constant, though this work does not change it.
    auto* const sender = const_cast<TMat4D*>(&FArray);
    sender->PercDone(sender, RoundToInt<int>(percent));
  }

 private:
  const TMat4D& FArray;
  std::size_t FTotal;
  std::size_t FInterval;
  std::size_t FDone = 0;
};

}  // namespace zel
