/// @file
/// Data about their means. Internal.
#pragma once

#include <cmath>
#include <cstddef>

#include "zel/analysis/results_impl.h"
#include "zel/kernels/dense.h"
#include "zel/kernels/moments.h"

namespace zel::detail {

/// Columns less their means, divided by their standard deviations if wanted.
struct Centred {
  Numbers storage;
  Numbers means;
  Numbers deviations;
  std::size_t rows;

  Centred(kernels::ConstMatrix a, bool isStandardised)
      : storage(a.rows * a.columns), means(a.columns), deviations(a.columns), rows(a.rows) {
    for (std::size_t c = 0; c < a.columns; ++c) {
      const auto moments = kernels::centredProducts(a[c], a[c]);
      means[c] = moments.meanX.hi;
      deviations[c] = std::sqrt(moments.xx.hi / (static_cast<double>(rows) - 1));
      const double scale = isStandardised && deviations[c] != 0 ? deviations[c] : 1;
      for (std::size_t r = 0; r < rows; ++r) storage[c * rows + r] = (a(r, c) - means[c]) / scale;
      if (!isStandardised) deviations[c] = 1;
    }
  }
  [[nodiscard]] kernels::Matrix view() { return {storage.data(), rows, means.size(), rows}; }
  [[nodiscard]] double divisor(std::size_t c) const {
    return deviations[c] == 0 ? 1 : deviations[c];
  }
};

}  // namespace zel::detail
