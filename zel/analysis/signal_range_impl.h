/// @file
/// The range of a signal that a filter takes. Internal.
#pragma once

#include <algorithm>
#include <cstddef>
#include <span>
#include <utility>

#include "zel/vector/Zel_vector.h"

namespace zel::detail {

/// Elements LowElem..HighElem; the bounds are limited to the vector, then ordered.
inline std::span<const double> SignalRange(const TVector& signal, int LowElem, int HighElem) {
  int low = std::clamp(LowElem, 1, signal.NrOfElem());
  int high = std::clamp(HighElem, 1, signal.NrOfElem());
  if (low > high) std::swap(low, high);
  return signal.Elements().subspan(static_cast<std::size_t>(low - 1),
                                   static_cast<std::size_t>(high - low + 1));
}

}  // namespace zel::detail
