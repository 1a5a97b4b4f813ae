/// @file
/// Matrices as the kernels see them. Internal.
#pragma once

#include <cstddef>

#include "zel/kernels/dense.h"
#include "zel/matrix/TMatrix.h"

namespace zel::detail {

inline kernels::Matrix ViewOf(TMatrix& m) {
  const auto rows = static_cast<std::size_t>(m.NrOfRows());
  return {m.data(), rows, static_cast<std::size_t>(m.NrOfColumns()), rows};
}

inline kernels::ConstMatrix ViewOf(const TMatrix& m) { return ViewOf(const_cast<TMatrix&>(m)); }

}  // namespace zel::detail
