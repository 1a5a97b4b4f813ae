/// @file
/// Results as numbers on their way into vectors and matrices. Internal.
#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include "zel/kernels/dense.h"
#include "zel/matrix/TMatrix.h"
#include "zel/vector/Zel_vector.h"

namespace zel::detail {

using Numbers = std::vector<double>;

/// Resizes and fills without a notification; null takes nothing.
inline void put(const Numbers& values, TVector* to) {
  if (to) to->SetElements(values);
}

/// Fires OnChange; a missing result has none.
template <class Result>
void announce(Result* result) {
  if (result) result->Changed();
}

inline void put(kernels::ConstMatrix values, TMatrix* to) {
  if (!to) return;
  to->Resize(static_cast<int>(values.columns), static_cast<int>(values.rows));
  for (std::size_t c = 0; c < values.columns; ++c) {
    std::copy_n(values.column(c), values.rows, to->data() + c * values.rows);
  }
}

}  // namespace zel::detail
